// Transposition, the heart of a quarter turn.
#include "kernels/geometry/Geometry.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

template <int kChannels>
void TransposePlain(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep, int width,
                    int height) {
  for (int r = 0; r < height; ++r)
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < kChannels; ++i)
        dst[r * dstStep + c * kChannels + i] = src[c * srcStep + r * kChannels + i];
}

}  // namespace

void Transpose_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  TransposePlain<1>(src, srcStep, dst, dstStep, size.width, size.height);
}

void Transpose_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  TransposePlain<3>(src, srcStep, dst, dstStep, size.width, size.height);
}

}  // namespace qv::QV_LEVEL
