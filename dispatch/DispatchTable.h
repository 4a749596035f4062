// How a kernel's table is filled from the rows that its levels have: a gap takes the best lower
// level's.
//
// `Own` tells what there is: Own::Rows, the type of the rows; Own::kLevels, a LevelSet with the
// plain level in it; Own::kRows, for each level of the roll a pointer to its rows, null for those
// that are not in kLevels; and Own::kWidth, the number of the argument with the width by which
// wide levels are chosen, or -1.
#ifndef QV_DISPATCH_DISPATCHTABLE_H
#define QV_DISPATCH_DISPATCHTABLE_H

#include "dispatch/Dispatched.h"
#include "dispatch/Levels.h"

namespace qv {

// The WideLevels that the roll tells apart.
constexpr int kWideLevels = [] {
  int highest = 0;
  for (const LevelInfo& level : kLevels) highest = level.wide > highest ? level.wide : highest;
  return highest + 1;
}();

template <class Own>
constexpr typename Own::Rows* ServingRows(int slot, int wide) {
  return Own::kRows[static_cast<int>(ServingLevel(Own::kLevels, slot, wide))];
}

constexpr int WidthOf(int width) { return width; }
constexpr int WidthOf(IppiSize size) { return size.width; }

// The width that argument `number` has.
template <int number, class First, class... Rest>
constexpr int WidthIn(const First& first, const Rest&... rest) {
  if constexpr (number == 0)
    return WidthOf(first);
  else
    return WidthIn<number - 1>(rest...);
}

// The highest WideLevel up to `wide` of which `width` fills a vector, or 0.
constexpr int WideLevelFor(int width, int wide) {
  while (wide > 0 && width < VectorBytesOf(wide)) --wide;
  return wide;
}

// The last slot of a kernel that gains from wider vectors: chooses once more, by WideLevel.
template <class Own, class Rows = typename Own::Rows>
struct WideForwarder;

template <class Own, class Result, class... Args>
struct WideForwarder<Own, Result(Args...)> {
  struct Table {
    Result (*rows[kWideLevels])(Args...);
  };
  static constexpr Table kTable = [] {
    Table table = {};
    for (int wide = 0; wide < kWideLevels; ++wide)
      table.rows[wide] = ServingRows<Own>(kSlots - 1, wide);
    return table;
  }();

  static Result Forward(Args... args) {
    int wide = Current(WideLevel);
    if constexpr (Own::kWidth >= 0) wide = WideLevelFor(WidthIn<Own::kWidth>(args...), wide);
    return kTable.rows[wide](args...);
  }
};

template <class Own>
constexpr auto MakeDispatched() {
  Dispatched<typename Own::Rows> kernel = {};
  for (int slot = 0; slot < kSlots; ++slot) kernel.slot[slot] = ServingRows<Own>(slot, 0);
  if constexpr (ServingLevel(Own::kLevels, kSlots - 1, kWideLevels - 1) !=
                ServingLevel(Own::kLevels, kSlots - 1, 0))
    kernel.slot[kSlots - 1] = &WideForwarder<Own>::Forward;
  return kernel;
}

}  // namespace qv

#endif
