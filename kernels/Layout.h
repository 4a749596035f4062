// How the pixels of an image lie in memory: what planning and rows know it by.
#ifndef QV_KERNELS_LAYOUT_H
#define QV_KERNELS_LAYOUT_H

namespace qv {

enum class Layout {
  kGrey,            // one byte a pixel
  kPairs,           // two interleaved bytes
  kTriples,         // three interleaved bytes
  kQuads,           // four interleaved bytes
  kTriplesOfQuads,  // the first three of four interleaved bytes; the fourth is not stored to
  kPairs422,        // packed 4:2:2: Y0, Cb, Y1, Cr for two pixels
  kThreePlanes,     // planes of one byte a pixel, given by an array of pointers
  kFourPlanes
};

// Bytes from one pixel of a row to the next, of planar layouts in each plane; of packed 4:2:2 half
// the bytes of a pair. Always inlined: row sources of several levels share this header.
__attribute__((always_inline)) constexpr int PixelBytes(Layout layout) {
  switch (layout) {
    case Layout::kTriples: return 3;
    case Layout::kQuads:
    case Layout::kTriplesOfQuads: return 4;
    case Layout::kPairs:
    case Layout::kPairs422: return 2;
    default: return 1;
  }
}

__attribute__((always_inline)) constexpr int PlaneCount(Layout layout) {
  return layout == Layout::kThreePlanes ? 3 : layout == Layout::kFourPlanes ? 4 : 1;
}

}  // namespace qv

#endif
