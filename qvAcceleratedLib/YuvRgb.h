// Conversion between luma and chroma in eight layouts and pixels in five, by the matrices of ITU-R
// BT.601, BT.709 and BT.2020: what qv_yuv_to_rgb and qv_rgb_to_yuv do, with the codes of qv.h.
#ifndef QV_YUVRGB_H
#define QV_YUVRGB_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/qv.h"

namespace qv {

QV_HIDDEN IppStatus YuvToRgb(int yuvLayout, const unsigned char* const planes[],
                             const int steps[], int rgbLayout, unsigned char* dst, int dstStep,
                             IppiSize size, int matrix, int range, int siting);

QV_HIDDEN IppStatus RgbToYuv(int rgbLayout, const unsigned char* src, int srcStep, int yuvLayout,
                             unsigned char* const planes[], const int steps[], IppiSize size,
                             int matrix, int range, int siting);

}  // namespace qv

#endif
