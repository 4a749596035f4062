#include "kernels/resize/Positions.h"

namespace qv {

namespace {

// Truncated toward zero, limited to 0 .. last; 0 for NaN.
int LimitedIndex(double x, int last) { return x < last ? (x > 0 ? static_cast<int>(x) : 0)
                                                       : (x >= last ? last : 0); }

// A sum that reaches memory as a double even where the processor computes in wider registers.
double Rounded(double x) {
#if defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ != 0
  volatile double stored = x;
  return stored;
#else
  return x;
#endif
}

// Positions one step after the other, added up in doubles.
struct Walk {
  double at, step;

  double Next() {
    const double here = at;
    at = Rounded(at + step);
    return here;
  }
};

Walk NearestWalk(Axis axis) {
  const double step = Rounded(1 / axis.factor);
  return {Rounded(0.5 * step), step};
}

Walk AlignedWalk(Axis axis) {
  const double scaled = Rounded(axis.length * axis.factor);
  return {0, scaled > 1 ? Rounded((axis.length - 1) / (scaled - 1)) : 0};
}

// A position of 0 or more as two neighbouring samples.
void SplitPosition(double position, int last, int* index, unsigned short* weight) {
  const int whole = LimitedIndex(position, last);
  if (whole == last) {
    *index = last > 0 ? last - 1 : 0;
    *weight = last > 0 ? 16384 : 0;
  } else {
    const auto fraction = static_cast<float>(position - whole);
    *index = whole;
    *weight = static_cast<unsigned short>(fraction * 16384.0 + 1e-07);
  }
}

double BandPosition(const BandAxis& axis, const Span& span, int i) {
  return (static_cast<double>(span.first) + i + 0.5) / axis.factor - 0.5 -
         axis.shift / axis.factor - axis.start;
}

}  // namespace

int WrittenExtent(Axis axis, int available) {
  const double extent = Rounded(Rounded(axis.length * axis.factor) + 1e-07);
  if (extent >= available) return available;
  if (extent >= 1) return static_cast<int>(extent);
  return extent < 0.5 ? 0 : 1;
}

void NearestIndices(Axis axis, int count, int* index) {
  Walk walk = NearestWalk(axis);
  for (int i = 0; i < count; ++i) index[i] = LimitedIndex(walk.Next(), axis.length - 1);
}

void AlignedPositions(Axis axis, int count, double* position) {
  Walk walk = AlignedWalk(axis);
  for (int i = 0; i < count; ++i) position[i] = walk.Next();
}

int NearestIndex(Axis axis, int i) {
  Walk walk = NearestWalk(axis);
  while (--i >= 0) walk.Next();
  return LimitedIndex(walk.Next(), axis.length - 1);
}

double AlignedPosition(Axis axis, int i) {
  Walk walk = AlignedWalk(axis);
  while (--i >= 0) walk.Next();
  return walk.Next();
}

void AlignedTaps(Axis axis, int count, int* index, unsigned short* weight) {
  Walk walk = AlignedWalk(axis);
  for (int i = 0; i < count; ++i)
    SplitPosition(walk.Next(), axis.length - 1, index + i, weight + i);
}

bool ProjectRegion(BandAxis axis, int start, int size, Span* span) {
  const double end = static_cast<double>(start) + size;
  double low = axis.start * axis.factor + axis.shift;
  double high = (static_cast<double>(axis.start) + axis.length) * axis.factor + axis.shift;
  // In this form a limit also takes the place of NaN, such as 0 times infinity.
  if (!(low > start)) low = start;
  if (!(high < end)) high = end;
  low += 0.4999999999;
  high += 0.4999999999;
  if (!(low < end + 1) || !(high > -1)) return false;
  // Both are now within the range of a 64-bit integer, low within [start, end + 1).
  const auto first = static_cast<long long>(low), past = static_cast<long long>(high);
  if (past < first) return false;
  *span = {first, static_cast<int>(past - first)};
  return true;
}

void BandNearestIndices(BandAxis axis, Span span, int* index) {
  const double shift = axis.shift / axis.factor;
  for (int i = 0; i < span.count; ++i) {
    const double position = (static_cast<double>(span.first) + i + 0.5) / axis.factor - shift;
    // Truncation and limits commute, and a whole number taken off before truncating would turn
    // positions left of the region into its second sample: limit first, then count from the region.
    const double limited = position + 1e-10 > axis.start ? position + 1e-10 : axis.start;
    const double last = static_cast<double>(axis.start) + axis.length - 1;
    index[i] = static_cast<int>((limited < last ? limited : last)) - axis.start;
  }
}

void BandTaps(BandAxis axis, Span span, int* index, unsigned short* weight) {
  for (int i = 0; i < span.count; ++i) {
    const double position = BandPosition(axis, span, i);
    SplitPosition(position > 0 ? position : 0, axis.length - 1, index + i, weight + i);
  }
}

void BandPositions(BandAxis axis, Span span, double* position) {
  constexpr double kReach = 8;
  const double high = axis.length + kReach;
  for (int i = 0; i < span.count; ++i) {
    const double x = BandPosition(axis, span, i);
    position[i] = x > -kReach ? (x < high ? x : high) : -kReach;
  }
}

}  // namespace qv
