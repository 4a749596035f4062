// What the fuzzers leave out, all of it, and why. Everything else is fair: a call that is not left
// out here must neither crash nor differ between levels.
#ifndef QV_TESTS_FUZZ_CONTRACT_H
#define QV_TESTS_FUZZ_CONTRACT_H

#include <cstddef>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/fuzz/Input.h"

namespace qv::test::contract {

// Null pointers that the documentation says are not checked: the value of qvSet for type 2, the
// checksum of qvAdler32, all pointers of the alpha merges, of qvGetPerspectiveTransform and
// qvGetRotateBound, and the matrices of the warps. Everywhere else a pointer is null now and then.
inline bool MayBeNull(Input& in, const char* name) { return in.Rarely(name); }

// Destination rows that overlap each other, but for qvDeinterlace, which says what they then hold:
// bands write them in any order, so no result is right. The rows of a source may overlap, lie in
// one place or run backwards.
inline int DisjointStep(int step, std::ptrdiff_t rowBytes, std::ptrdiff_t rows) {
  const long long apart = step < 0 ? -static_cast<long long>(step) : step;
  return rows > 1 && apart < rowBytes ? static_cast<int>(rowBytes) : step;
}

// Sources and destinations that overlap, but for those that may be the same image: images are
// placed apart by construction (see Call).

// Memory that no host of a test has, and time that no test has: a call that will work on its
// images works on at most this many bytes of each. Calls that are refused may name any size.
constexpr int kMostBytes = 32 << 10;

inline IppiSize Fitting(IppiSize size, int bytesAPixel) {
  const long long bytes = static_cast<long long>(size.width) * size.height;
  if (size.width < 1 || size.height < 1 || bytes <= kMostBytes / bytesAPixel) return size;
  // Long rows and high columns both, since bands need height and vectors width; never more of
  // either.
  const int height = 1 + (size.height - 1) % 700;
  return {1 + (size.width - 1) % (kMostBytes / bytesAPixel / height), height};
}

// A warp into a region that begins above row 0, in several bands: those that begin above row 0 are
// refused and the others are not, so the budget shows. Such a region gets too few rows for that.
inline IppiRect Refusable(IppiRect dstRoi) {
  if (dstRoi.y < 0 && dstRoi.height > 128) dstRoi.height = 1 + dstRoi.height % 128;
  return dstRoi;
}

// Images that no address space holds: a region's origin lies within an image that starts at the
// pointer, so the distance between them is limited, as is that of the first row from the last one.
#if defined(_WIN32)
constexpr bool kWide = false;  // it sets memory aside for what is only reserved elsewhere
#else
constexpr bool kWide = sizeof(void*) == 8;
#endif
constexpr long long kMostSpan = kWide ? 6ll << 30 : 8ll << 20;
constexpr long long kMostOffset = kWide ? 1ll << 45 : 1ll << 28;

inline IppiRect Addressable(IppiRect roi) {
  constexpr int kMost = 1 << 10;
  return kWide ? roi : IppiRect{roi.x % kMost, roi.y % kMost, roi.width, roi.height};
}

// The step, or an exact one if it leads too far; `y` is the first of the rows.
inline int ReachingStep(int step, std::ptrdiff_t rowBytes, std::ptrdiff_t rows, std::ptrdiff_t y) {
  const long long apart = step < 0 ? -static_cast<long long>(step) : step;
  const bool reaches =
      apart * (rows - 1) + rowBytes <= kMostSpan && apart * (y < 0 ? -y : y) <= kMostOffset;
  return reaches ? step : static_cast<int>(step < 0 ? -rowBytes : rowBytes);
}

// Differences between one band and several that the documentation states: positions of qvResize,
// and the second image of qvWarpPerspectiveEx. And those between one number of bands and another:
// the status of qvResize and of the warps is that of the last band. Families pass one of these.
enum class Bands {
  kSame,           // bytes and status do not depend on the budget
  kStatusMayVary,  // bytes do not, the status is the last band's
  kSeveralDiffer   // several bands make other bytes than one, however many they are; as above
};

}  // namespace qv::test::contract

#endif
