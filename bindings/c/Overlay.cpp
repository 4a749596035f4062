// A foreground over a frame as a function of C.
#include "qvAcceleratedLib/Overlay.h"

#include "qvAcceleratedLib/qv.h"

int qv_over(int frame_channels, unsigned char* frame, int frame_step, qv_size frame_size,
            int fg_channels, const unsigned char* fg, int fg_step, qv_size fg_size,
            const unsigned char* alpha, int alpha_step, int x, int y, int opacity,
            int alpha_type) {
  return qv::Over(
      {frame, frame_step, {frame_size.width, frame_size.height}, frame_channels},
      {fg, fg_step, {fg_size.width, fg_size.height}, fg_channels, alpha, alpha_step, x, y, opacity,
       alpha_type});
}
