#include "kernels/resize/FilterImage.h"

#include <stdint.h>

#include <new>

namespace qv {

namespace {

// Work memory of one call, handed out in pieces; `bytes` is computed wide so that a demand no
// memory can meet fails here instead of wrapping round.
class WorkMemory {
 public:
  explicit WorkMemory(long long bytes)
      : base_(bytes <= PTRDIFF_MAX
                  ? new (std::nothrow) unsigned char[static_cast<size_t>(bytes)]
                  : nullptr),
        next_(base_) {}
  ~WorkMemory() { delete[] base_; }
  WorkMemory(const WorkMemory&) = delete;
  WorkMemory& operator=(const WorkMemory&) = delete;

  bool IsThere() const { return base_ != nullptr; }

  // Aligned for ints: counts of shorts are handed out last or rounded up by ShortBytes.
  template <class T>
  T* Take(long long bytes) {
    unsigned char* const p = next_;
    next_ += bytes;
    return reinterpret_cast<T*>(p);
  }

 private:
  unsigned char* base_;
  unsigned char* next_;
};

long long IntBytes(long long n) { return n * static_cast<long long>(sizeof(int)); }
long long ShortBytes(long long n) { return (n + 1) / 2 * 4; }

long long TapBytes(const AxisTaps& taps) {
  return IntBytes(taps.count) + ShortBytes(static_cast<long long>(taps.count) * taps.taps);
}

void PlaceTaps(WorkMemory& memory, AxisTaps* taps) {
  taps->first = memory.Take<int>(IntBytes(taps->count));
  taps->weights =
      memory.Take<short>(ShortBytes(static_cast<long long>(taps->count) * taps->taps));
}

IppStatus RunTaps(const FilterTask& task, const FilterColumns& x, const AxisTaps& y) {
  WorkMemory scratch(FilterScratchBytes(task.layout, x, y));
  if (!scratch.IsThere()) return StatusMemAllocErr;
  const auto kernel = task.layout == RowLayout::kGray      ? FilterRows_8u_C1
                      : task.layout == RowLayout::kTriples ? FilterRows_8u_C3
                                                           : FilterRows422_8u_C2;
  return kernel(task.src, task.srcStep, x, y, task.dst, task.dstStep, scratch.Take<void>(0));
}

IppStatus RunSpans(const FilterTask& task, const AreaColumns& x, const AxisSpans& y) {
  WorkMemory scratch(AreaScratchBytes(task.layout, x, y));
  if (!scratch.IsThere()) return StatusMemAllocErr;
  const auto kernel = task.layout == RowLayout::kGray      ? AreaRows_8u_C1
                      : task.layout == RowLayout::kTriples ? AreaRows_8u_C3
                                                           : AreaRows422_8u_C2;
  return kernel(task.src, task.srcStep, x, y, task.dst, task.dstStep, scratch.Take<void>(0));
}

// True if every interval is two whole samples inside the region.
bool HalvesExactly(const AxisArea& area) {
  return area.inverse == 2 && area.count <= area.sourceLength / 2;
}

AxisTaps PlanTaps(const AxisPositions& positions, int interpolation) {
  return {positions.count, TapCount(interpolation, positions.sourceLength), nullptr, nullptr};
}

}  // namespace

IppStatus FilterImage(const FilterTask& task, int interpolation, const AxisPositions& x,
                      const AxisPositions& chroma, const AxisPositions& y) {
  const bool pairs = task.layout == RowLayout::kPairs422;
  FilterColumns columns = {PlanTaps(x, interpolation), {}};
  if (pairs) columns.chroma = PlanTaps(chroma, interpolation);
  AxisTaps rows = PlanTaps(y, interpolation);
  WorkMemory memory(TapBytes(columns.luma) + TapBytes(columns.chroma) + TapBytes(rows));
  if (!memory.IsThere()) return StatusMemAllocErr;
  PlaceTaps(memory, &columns.luma);
  PlaceTaps(memory, &columns.chroma);
  PlaceTaps(memory, &rows);
  BuildTaps(x, interpolation, &columns.luma);
  if (pairs) BuildTaps(chroma, interpolation, &columns.chroma);
  BuildTaps(y, interpolation, &rows);
  return RunTaps(task, columns, rows);
}

IppStatus AverageImage(const FilterTask& task, const AxisArea& x, const AxisArea& chroma,
                       const AxisArea& y) {
  const bool pairs = task.layout == RowLayout::kPairs422;
  if (!pairs && HalvesExactly(x) && HalvesExactly(y)) {
    const auto halve = task.layout == RowLayout::kGray ? HalveRows_8u_C1 : HalveRows_8u_C3;
    return halve(task.src, task.srcStep, task.dst, task.dstStep, {x.count, y.count});
  }
  const AxisArea none = {};
  const AxisArea* const areas[3] = {&x, pairs ? &chroma : &none, &y};
  int most = 1, taps[3];
  for (int k = 0; k < 3; ++k) {
    taps[k] = AreaTapCount(*areas[k]);
    if (taps[k] > most) most = taps[k];
  }
  if (most <= kMaxTaps) {
    AxisTaps axis[3];
    long long bytes = 0;
    for (int k = 0; k < 3; ++k) {
      axis[k] = {areas[k]->count, taps[k], nullptr, nullptr};
      bytes += TapBytes(axis[k]);
    }
    WorkMemory memory(bytes);
    if (!memory.IsThere()) return StatusMemAllocErr;
    for (int k = 0; k < 3; ++k) {
      PlaceTaps(memory, &axis[k]);
      BuildAreaTaps(*areas[k], &axis[k]);
    }
    return RunTaps(task, {axis[0], axis[1]}, axis[2]);
  }
  const auto spanBytes = [](const AxisArea& area) {
    return static_cast<long long>(area.count) * static_cast<long long>(sizeof(AreaSpan));
  };
  WorkMemory memory(spanBytes(x) + spanBytes(*areas[1]) + spanBytes(y));
  if (!memory.IsThere()) return StatusMemAllocErr;
  AxisSpans axis[3];
  for (int k = 0; k < 3; ++k) {
    axis[k] = {areas[k]->count, 0, memory.Take<AreaSpan>(spanBytes(*areas[k]))};
    BuildSpans(*areas[k], &axis[k]);
  }
  return RunSpans(task, {axis[0], axis[1]}, axis[2]);
}

}  // namespace qv
