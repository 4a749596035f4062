// Luma and chroma to pixels and back as functions of C.
#include "qvAcceleratedLib/YuvRgb.h"

#include "qvAcceleratedLib/qv.h"

int qv_yuv_to_rgb(int yuv_layout, const unsigned char* const planes[], const int steps[],
                  int rgb_layout, unsigned char* dst, int dst_step, qv_size size, int matrix,
                  int range, int siting) {
  return qv::YuvToRgb(yuv_layout, planes, steps, rgb_layout, dst, dst_step,
                      {size.width, size.height}, matrix, range, siting);
}

int qv_rgb_to_yuv(int rgb_layout, const unsigned char* src, int src_step, int yuv_layout,
                  unsigned char* const planes[], const int steps[], qv_size size, int matrix,
                  int range, int siting) {
  return qv::RgbToYuv(rgb_layout, src, src_step, yuv_layout, planes, steps,
                      {size.width, size.height}, matrix, range, siting);
}
