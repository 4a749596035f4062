// The band frame: how an operation cuts its image and runs one kernel call per band.
#ifndef QV_QVACCELERATEDLIB_BANDSPLIT_H
#define QV_QVACCELERATEDLIB_BANDSPLIT_H

#include <omp.h>
#include <stddef.h>
#include <stdint.h>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/FloatEnvironment.h"
#include "qvAcceleratedLib/Fork.h"

namespace qv {

// An extent (rows, or columns of an operation that cuts strips) cut into bands of equal size, the
// last of which takes the remainder. A count of 1 is the uncut extent; a count below 1 has no band.
struct Bands {
  int count;
  int rows;    // of every band but the last
  int extent;  // of all bands together

  // In 64 bits on every platform: callers multiply it with a step before anything is checked.
  constexpr long long First(int i) const { return static_cast<long long>(i) * rows; }
  constexpr int Height(int i) const { return i == count - 1 ? extent - i * rows : rows; }
};

// A band is worth a thread only if it is larger than this.
constexpr int MinRowsPerBand = 64;

// As many bands as the budget allows and as keep each larger than MinRowsPerBand.
constexpr Bands PlanBands(int extent, int budget) {
  int count = budget;
  while (count > 1 && extent / count <= MinRowsPerBand) --count;
  return {count, count > 1 ? extent / count : extent, extent};
}

// The same with bands that start on even rows, for images with subsampled chroma.
constexpr Bands PlanEvenBands(int extent, int budget) {
  Bands bands = PlanBands(extent, budget);
  if (bands.count > 1) bands.rows -= bands.rows % 2;
  return bands;
}

// A single long row cut into pieces of columns: the whole budget, or no cut at all if a piece would be
// shorter than MinColumnsPerPiece.
constexpr int MinColumnsPerPiece = 4096;

constexpr Bands PlanPieces(int columns, int budget) {
  const int piece = columns / budget;
  return piece < MinColumnsPerPiece ? Bands{1, columns, columns} : Bands{budget, piece, columns};
}

// A pointer moved by whole rows or bytes; a null pointer stays null, for the kernel to find. Sizes and
// steps are not checked yet, so the distance may lead anywhere: addresses wrap, pointers must not.
template <class Pointer>
Pointer Advance(Pointer p, long long bytes) {
  if (!p) return p;
  return reinterpret_cast<Pointer>(reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(bytes));
}

// Calls body(i) for every band i and returns the status of the last band (StatusOk if there is
// none). Bands run on the OpenMP team, or one after another if the caller is in a parallel region
// already or lost its team in a fork.
template <class Body>
IppStatus RunBands(const Bands& bands, const Body& body) {
  if (bands.count == 1) return body(0);
  IppStatus status = StatusOk;
  const int last = bands.count - 1;
  if (omp_in_parallel() || IsForkedThread) {
    for (int i = 0; i <= last; ++i) status = body(i);
    return status;
  }
#pragma omp parallel for schedule(static)
  for (int i = 0; i <= last; ++i) {
    const IppStatus bandStatus = body(i);
    if (i == last) status = bandStatus;
  }
  return status;
}

// The same for a body that computes with floating-point numbers.
template <class Body>
IppStatus RunFloatBands(const Bands& bands, const Body& body) {
  return RunBands(bands, [&](int i) {
    const FloatEnvironment environment;
    return body(i);
  });
}

}  // namespace qv

#endif
