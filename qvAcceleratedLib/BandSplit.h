// The band frame: how an operation cuts its image and runs one kernel call per band.
#ifndef QV_QVACCELERATEDLIB_BANDSPLIT_H
#define QV_QVACCELERATEDLIB_BANDSPLIT_H

#include <stddef.h>
#include <stdint.h>

#include "qvAcceleratedLib/BandTeam.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/FloatEnvironment.h"

namespace qv {

// A pointer moved by whole rows or bytes; a null pointer stays null, for the kernel to find. Sizes
// and steps are not checked yet, so the distance may lead anywhere: addresses wrap, pointers must
// not.
template <class Pointer>
Pointer Advance(Pointer p, long long bytes) {
  if (!p) return p;
  return reinterpret_cast<Pointer>(reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(bytes));
}

// Some rows, or columns of an operation that cuts strips, of the whole extent.
struct Band {
  long long first;
  int length;

  // Where it begins in an image with this step.
  template <class Pointer>
  Pointer At(Pointer image, long long step) const {
    return Advance(image, first * step);
  }
};

// An extent cut into bands of equal size, the last of which takes the remainder. A count of 1 is
// the uncut extent; a count below 1 has no band.
struct Bands {
  int count;
  int rows;    // of every band but the last
  int extent;  // of all bands together

  // Bands i to i + n - 1, in 64 bits on every platform: callers multiply with a step before
  // anything is checked.
  constexpr Band Of(int i, int n = 1) const {
    const long long first = static_cast<long long>(i) * rows;
    return {first, i + n == count ? static_cast<int>(extent - first) : n * rows};
  }
};

// A band is worth a thread only if it is larger than this.
constexpr int MinRowsPerBand = 64;

// As many bands as the budget allows and as keep each larger than MinRowsPerBand.
constexpr Bands PlanBands(int extent, int budget) {
  int count = budget;
  while (count > 1 && extent / count <= MinRowsPerBand) --count;
  return {count, count > 1 ? extent / count : extent, extent};
}

// How many bands a resize may have: each has its rows of the source and of the destination.
constexpr int ResizeBands(IppiSize srcSize, IppiSize dstSize, int budget) {
  return PlanBands(srcSize.height < dstSize.height ? srcSize.height : dstSize.height, budget).count;
}

// The same with bands that start on even rows, for images with subsampled chroma.
constexpr Bands PlanEvenBands(int extent, int budget) {
  Bands bands = PlanBands(extent, budget);
  if (bands.count > 1) bands.rows -= bands.rows % 2;
  return bands;
}

// A single long row cut into pieces of columns: the whole budget, or no cut at all if a piece would
// be shorter than MinColumnsPerPiece.
constexpr int MinColumnsPerPiece = 4096;

constexpr Bands PlanPieces(int columns, int budget) {
  const int piece = columns / budget;
  return piece < MinColumnsPerPiece ? Bands{1, columns, columns} : Bands{budget, piece, columns};
}

// Has run(first, n) done for all bands, by the team if there are several.
template <class Run>
IppStatus ShareBands(const Bands& bands, const Work& work, const Run& run) {
  if (bands.count == 1) return run(0, 1);
  return RunOnTeam(
      bands.count, work,
      [](const void* self, int first, int n) -> IppStatus {
        return (*static_cast<const Run*>(self))(first, n);
      },
      &run);
}

// Calls body(band) for every band and returns the status of the last one (StatusOk if there is
// none). Several bands run on the team of threads; where no other thread has time for them, the
// calling thread does all in one piece, whose status must be that of the last band.
template <class Body>
IppStatus RunBands(const Bands& bands, const Work& work, const Body& body) {
  return ShareBands(bands, work, [&](int first, int n) { return body(bands.Of(first, n)); });
}

// The same for a body that computes with floating-point numbers, and whose bands may have statuses
// of their own: they stay apart whoever does them.
template <class Body>
IppStatus RunFloatBands(const Bands& bands, const Work& work, const Body& body) {
  return ShareBands(bands, work, [&](int first, int n) {
    const FloatEnvironment environment;
    for (; n > 1; ++first, --n) body(bands.Of(first));
    return body(bands.Of(first));
  });
}

}  // namespace qv

#endif
