// The samples of a frame one channel at a time, whatever the layout.
#ifndef QV_TOOLS_QVTOOL_IO_SAMPLES_H
#define QV_TOOLS_QVTOOL_IO_SAMPLES_H

#include "io/Frame.h"

namespace qvtool {

// Where the samples of a channel lie: every `spacing` bytes in rows `step` bytes apart, one for
// 2^shiftX columns and 2^shiftY rows of pixels.
struct Channel {
  unsigned char* data;
  int step, spacing;
  int columns, rows;
  int shiftX, shiftY;

  unsigned char* Row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * step; }
  unsigned char& At(int x, int y) const {
    return Row(y)[static_cast<std::ptrdiff_t>(x) * spacing];
  }

  // The samples of the pixels of a region, rounded outwards.
  Channel Cut(const IppiRect& region) const;
};

// Channel 0 to 2 is grey or B, G, R or Y, Cb, Cr; 3 is alpha. The frame must have it. The luma of a
// packed frame of odd width has one column more than the frame.
Channel ChannelOf(const Frame& frame, int channel);

// Copies the samples between channels of one grid. A column that only `to` has repeats the last.
void CopyChannel(const Channel& from, const Channel& to);

void FillChannel(const Channel& channel, unsigned char value);

}  // namespace qvtool

#endif
