#include "kernels/resize/FilterImage.h"

#include <stdint.h>

#include "kernels/resize/WorkMemory.h"

namespace qv {

namespace {

// Taps or spans of the three axes x, chroma and y in one piece of work memory.
struct AxesLayout {
  WorkLayout layout;
  uint64_t at[3], weights[3];

  explicit AxesLayout(const AxisTaps (&axes)[3]) {
    for (int k = 0; k < 3; ++k) {
      at[k] = layout.Add<int>(axes[k].count);
      weights[k] = layout.Add<short>(static_cast<uint64_t>(axes[k].count) * axes[k].taps);
    }
  }
  void Place(char* memory, AxisTaps (&axes)[3]) const {
    for (int k = 0; k < 3; ++k) {
      axes[k].first = reinterpret_cast<int*>(memory + at[k]);
      axes[k].weights = reinterpret_cast<short*>(memory + weights[k]);
    }
  }
};

WorkLayout BytesLayout(long long bytes) {
  WorkLayout layout;
  layout.Add<char>(static_cast<uint64_t>(bytes));
  return layout;
}

// The kernel of the task's layout.
template <class Kernel, class Columns, class Rows>
IppStatus Run(const FilterTask& task, const Columns& x, const Rows& y, long long scratchBytes,
              const Kernel& grey, const Kernel& triples, const Kernel& pairs) {
  const WorkMemory scratch(BytesLayout(scratchBytes));
  if (!scratch) return StatusMemAllocErr;
  const Kernel& kernel = task.layout == Layout::kGrey      ? grey
                         : task.layout == Layout::kTriples ? triples
                                                              : pairs;
  return kernel(task.src, task.srcStep, x, y, task.dst, task.dstStep, scratch.At<char>(0));
}

IppStatus RunTaps(const FilterTask& task, const FilterColumns& x, const AxisTaps& y) {
  return Run(task, x, y, FilterScratchBytes(task.layout, x, y), FilterRows_8u_C1,
             FilterRows_8u_C3, FilterRows422_8u_C2);
}

IppStatus RunSpans(const FilterTask& task, const AreaColumns& x, const AxisSpans& y) {
  return Run(task, x, y, AreaScratchBytes(task.layout, x, y), AreaRows_8u_C1, AreaRows_8u_C3,
             AreaRows422_8u_C2);
}

// The sample that the first interval begins with if all of them are two whole samples inside the
// region, else -1.
int FirstOfHalves(const AxisArea& area) {
  const double start = area.first * area.inverse - area.origin;
  const double end = start + 2.0 * area.count;
  const bool fits = area.inverse == 2 && start >= 0 && end <= area.sourceLength;
  return fits && start == static_cast<int>(start) ? static_cast<int>(start) : -1;
}

AxisTaps PlanTaps(const AxisPositions& positions, int interpolation) {
  return {positions.count, TapCount(interpolation, positions.sourceLength), nullptr, nullptr};
}

}  // namespace

uint64_t FilterTapsBytes(const int (&counts)[3], int interpolation) {
  AxisTaps axes[3];
  for (int k = 0; k < 3; ++k)
    axes[k] = {counts[k], TapCount(interpolation, kMaxTaps), nullptr, nullptr};
  return AxesLayout(axes).layout.bytes();
}

IppStatus FilterImage(const FilterTask& task, int interpolation, const AxisPositions& x,
                      const AxisPositions& chroma, const AxisPositions& y, void* tapsMemory) {
  const bool pairs = task.layout == Layout::kPairs422;
  const AxisPositions none = {};
  const AxisPositions* const positions[3] = {&x, pairs ? &chroma : &none, &y};
  AxisTaps axes[3];
  for (int k = 0; k < 3; ++k) axes[k] = PlanTaps(*positions[k], interpolation);
  AxesLayout(axes).Place(static_cast<char*>(tapsMemory), axes);
  for (int k = 0; k < 3; ++k) BuildTaps(*positions[k], interpolation, &axes[k]);
  return RunTaps(task, {axes[0], axes[1]}, axes[2]);
}

IppStatus AverageImage(const FilterTask& task, const AxisArea& x, const AxisArea& chroma,
                       const AxisArea& y) {
  const bool pairs = task.layout == Layout::kPairs422;
  const int firstX = FirstOfHalves(x), firstY = FirstOfHalves(y);
  if (!pairs && firstX >= 0 && firstY >= 0) {
    const bool grey = task.layout == Layout::kGrey;
    return (grey ? HalveRows_8u_C1 : HalveRows_8u_C3)(
        task.src + static_cast<ptrdiff_t>(firstY) * task.srcStep +
            static_cast<ptrdiff_t>(firstX) * (grey ? 1 : 3),
        task.srcStep, task.dst, task.dstStep, {x.count, y.count});
  }
  const AxisArea none = {};
  const AxisArea* const areas[3] = {&x, pairs ? &chroma : &none, &y};
  AxisTaps axes[3];
  int most = 1;
  for (int k = 0; k < 3; ++k) {
    axes[k] = {areas[k]->count, AreaTapCount(*areas[k]), nullptr, nullptr};
    if (axes[k].taps > most) most = axes[k].taps;
  }
  if (most <= kMaxAreaTaps) {
    const AxesLayout layout(axes);
    const WorkMemory memory(layout.layout);
    if (!memory) return StatusMemAllocErr;
    layout.Place(memory.At<char>(0), axes);
    for (int k = 0; k < 3; ++k) BuildAreaTaps(*areas[k], &axes[k]);
    return RunTaps(task, {axes[0], axes[1]}, axes[2]);
  }
  WorkLayout layout;
  uint64_t at[3];
  for (int k = 0; k < 3; ++k) at[k] = layout.Add<AreaSpan>(areas[k]->count);
  const WorkMemory memory(layout);
  if (!memory) return StatusMemAllocErr;
  AxisSpans spans[3];
  for (int k = 0; k < 3; ++k) {
    spans[k] = {areas[k]->count, 0, memory.At<AreaSpan>(at[k])};
    BuildSpans(*areas[k], &spans[k]);
  }
  return RunSpans(task, {spans[0], spans[1]}, spans[2]);
}

}  // namespace qv
