// Sampling along destination rows.
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/WarpPlain.h"
#include "kernels/geometry/WarpVectors.h"

namespace qv::QV_LEVEL {

namespace {

#if QV_HAS_VECTORS

// Vector rows keep positions and byte offsets in 32-bit lanes. A position next to the source's edge may
// overshoot it by a few steps; one of a column that is not wanted may be anything: clamped, it is
// harmless.
bool FitsLanes(const WarpSource& s, int channels) {
  constexpr int kExtent = (1 << (31 - kWarpBits)) - kWarpBlock;
  return s.width <= kExtent && s.height <= kExtent &&
         static_cast<long long>(s.height) * s.step + static_cast<long long>(s.width) * channels <
             0x7FFFFFFF;
}

// The positions along a segment, kLanes32 columns at a time. A line leaves the terms out that are
// zeros: the same sum.
template <bool kIsLine>
class Curve {
 public:
  // From column `skipped` of the segment on.
  QV_INLINE Curve(const WarpSegment& s, int skipped) : half_(s.count / 2) {
    for (int axis = 0; axis < 2; ++axis) {
      base_[axis] = Splat32(static_cast<int>(s.base[axis]));
      for (int i = 0; i < (kIsLine ? 2 : 4); ++i) coeff_[axis][i] = SplatF(s.coeff[axis][i]);
    }
    MoveTo(skipped);
  }
  QV_INLINE void MoveTo(int column) {
    static constexpr float kIota[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    t_ = AddF(LoadF(kIota), SplatF(static_cast<float>(column - half_)));
  }
  QV_INLINE void Advance() { t_ = AddF(t_, SplatF(kLanes32)); }
  QV_INLINE Vec At(int axis) const {
    const VecF* const c = coeff_[axis];
    VecF p = c[1];
    if constexpr (!kIsLine) p = AddF(MulF(AddF(MulF(c[3], t_), c[2]), t_), p);
    return Add32(Truncate(AddF(MulF(p, t_), c[0])), base_[axis]);
  }

 private:
  VecF t_, coeff_[2][4];
  Vec base_[2];
  int half_;
};

// Positions that were worked out before.
struct Listed {
  const int *x, *y;
  int column;
  QV_INLINE void MoveTo(int to) { column = to; }
  QV_INLINE void Advance() { column += kLanes32; }
  QV_INLINE Vec At(int axis) const { return Load((axis == 0 ? x : y) + column); }
};

QV_INLINE bool IsLine(const WarpSegment& s) {
  return s.coeff[0][3] == 0 && s.coeff[0][2] == 0 && s.coeff[1][3] == 0 && s.coeff[1][2] == 0;
}

// A source as vector rows see it.
struct View {
  const Byte* first;
  Vec step, highX, highY;  // of clamped positions
  Vec lastX, lastY;        // largest index of a pair's first pixel
  ptrdiff_t stepBytes;
  ptrdiff_t bytes;         // up to the end of the last pixel
};

QV_INLINE View MakeView(const WarpSource& s, int channels) {
  return {s.first,
          Splat32(s.step),
          Splat32((s.width - 1) << kWarpBits),
          Splat32((s.height - 1) << kWarpBits),
          Splat32(s.width - 2),
          Splat32(s.height - 2),
          s.step,
          static_cast<ptrdiff_t>(s.height - 1) * s.step + static_cast<ptrdiff_t>(s.width) * channels};
}

template <int kChannels>
QV_INLINE Vec OffsetOf(const View& view, Vec x, Vec y) {
  if constexpr (kChannels == 3) x = Add32(x, Add32(x, x));
  return Add32(MulLow32(y, view.step), x);
}

// Each sampler does the kLanes32 pixels at positions (px, py), or returns false if one of them needs
// bytes that it cannot fetch.

template <int kChannels>
QV_INLINE bool SampleNearestLanes(const View& view, Vec px, Vec py, Byte* out) {
  const Vec offset =
      OffsetOf<kChannels>(view, ShiftRightSigned32<kWarpBits>(Clamp32(px, view.highX)),
                          ShiftRightSigned32<kWarpBits>(Clamp32(py, view.highY)));
  if (AnyGreater32(offset, Splat32(static_cast<int>(view.bytes) - 4))) return false;
  const Vec pixels = Gather32(view.first, offset);
  if constexpr (kChannels == 1)
    StoreLowBytes(out, pixels);
  else
    StoreTriples(out, pixels);
  return true;
}

// Weights (2^14 - f, f) of a pair of pixels, as 16-bit halves.
QV_INLINE Vec PairWeights(Vec fraction) {
  return Add32(ShiftLeft32<16>(fraction), Sub32(Splat32(1 << kWarpBits), fraction));
}

template <int kChannels>
QV_INLINE bool SampleLinearLanes(const View& view, Vec px, Vec py, Byte* out) {
  px = Clamp32(px, view.highX), py = Clamp32(py, view.highY);
  // On the last pixel the pair is the one before it, with all the weight on its second half.
  const Vec ix = Min32(ShiftRightSigned32<kWarpBits>(px), view.lastX);
  const Vec iy = Min32(ShiftRightSigned32<kWarpBits>(py), view.lastY);
  const Vec wx = PairWeights(Sub32(px, ShiftLeft32<kWarpBits>(ix)));
  const Vec wy = PairWeights(Sub32(py, ShiftLeft32<kWarpBits>(iy)));
  const Vec offset = OffsetOf<kChannels>(view, ix, iy);
  const int fetched = kChannels == 1 ? 4 : 8;
  if (AnyGreater32(offset, Splat32(static_cast<int>(view.bytes - view.stepBytes) - fetched)))
    return false;
  const Byte* const below = view.first + view.stepBytes;
  // Of 16-bit pairs of neighbours in both rows, 2^21 times the value.
  const auto mix = [=](Vec upper, Vec lower) {
    const Vec u = ShiftRight32<7>(MulAddPairs16(upper, wx));
    const Vec l = ShiftLeft32<9>(MulAddPairs16(lower, wx));
    return Add32(MulAddPairs16(Or(u, And(l, Splat32(-0x10000))), wy), Splat32(kLinearRound));
  };
  if constexpr (kChannels == 1) {
    StoreLowBytes(out, ShiftRight32<21>(mix(SpreadPair<0, 1>(Gather32(view.first, offset)),
                                            SpreadPair<0, 1>(Gather32(below, offset)))));
  } else {
    const PixelPairs upper = GatherPairs(view.first, offset), lower = GatherPairs(below, offset);
    const Vec b = ShiftRight32<21>(mix(upper.b, lower.b));
    const Vec g = And(ShiftRight32<13>(mix(upper.g, lower.g)), Splat32(0xFF00));
    const Vec r = And(ShiftRight32<5>(mix(upper.r, lower.r)), Splat32(0xFF0000));
    StoreTriples(out, Or(Or(b, g), r));
  }
  return true;
}

// Sums down the four rows, whose sums along x have 6 fractional bits; the weights are those of rows 0
// and 2, and of rows 1 and 3.
QV_INLINE Vec SumRows(const Vec row[4], Vec even, Vec odd) {
  const Vec sum = Add32(MulAddPairs16(Pair16(row[0], row[2]), even),
                        MulAddPairs16(Pair16(row[1], row[3]), odd));
  return ShiftRightSigned32<20>(Add32(sum, Splat32(kCubicRound)));
}

template <int kChannels>
QV_INLINE bool SampleCubicLanes(const View& view, Vec px, Vec py, Byte* out) {
  px = Clamp32(px, view.highX), py = Clamp32(py, view.highY);
  const Vec one = Splat32(1);
  const Vec ix = Sub32(ShiftRightSigned32<kWarpBits>(px), one);
  const Vec iy = Sub32(ShiftRightSigned32<kWarpBits>(py), one);
  // Taps beyond the edge are the plain rows' business: the last first tap is two before lastX.
  const Vec two = Splat32(2);
  if (AnyGreater32(Zero(), Min32(ix, iy)) || AnyGreater32(ix, Sub32(view.lastX, two)) ||
      AnyGreater32(iy, Sub32(view.lastY, two)))
    return false;
  const Vec offset = OffsetOf<kChannels>(view, ix, iy);
  // Table entries are 8 bytes.
  const Vec mask = Splat32((kCubicPhases - 1) * 8);
  const Vec phaseX = And(ShiftRight32<kWarpBits - kCubicBits - 3>(px), mask);
  const Vec phaseY = And(ShiftRight32<kWarpBits - kCubicBits - 3>(py), mask);
  const Byte* const table = reinterpret_cast<const Byte*>(kCubicTable.tap);
  const Vec x01 = Gather64<0>(table, phaseX), x23 = Gather64<1>(table, phaseX);
  const Vec y01 = Gather64<0>(table, phaseY), y23 = Gather64<1>(table, phaseY);
  const Vec evenX = EvenLanes32(x01, x23), oddX = OddLanes32(x01, x23);
  const Vec evenY = EvenLanes32(y01, y23), oddY = OddLanes32(y01, y23);
  if constexpr (kChannels == 1) {
    Vec row[4];
    for (int i = 0; i < 4; ++i) {
      const Vec taps = Gather32(view.first + i * view.stepBytes, offset);
      const Vec bytes = Splat32(0x00FF00FF);
      row[i] = ShiftRightSigned32<8>(Add32(MulAddPairs16(And(taps, bytes), evenX),
                                           MulAddPairs16(ShiftRight16<8>(taps), oddX)));
    }
    StoreAsBytes(out, SumRows(row, evenY, oddY));
  } else {
    if (AnyGreater32(offset, Splat32(static_cast<int>(view.bytes - 3 * view.stepBytes) - 16)))
      return false;
    int at[kLanes32];
    Store(at, offset);
    const auto pixels = [&]<int kPart>() {
      Vec row[4];
      for (int i = 0; i < 4; ++i) {
        const Vec taps = Gather128<kPart>(view.first + i * view.stepBytes, at);
        row[i] = ShiftRightSigned32<8>(
            Add32(MulAddPairs16(SpreadTaps<0>(taps), SplatInLanes32<kPart>(evenX)),
                  MulAddPairs16(SpreadTaps<1>(taps), SplatInLanes32<kPart>(oddX))));
      }
      return SumRows(row, SplatInLanes32<kPart>(evenY), SplatInLanes32<kPart>(oddY));
    };
    const Vec v01 = PackSigned32(pixels.template operator()<0>(), pixels.template operator()<1>());
    const Vec v23 = PackSigned32(pixels.template operator()<2>(), pixels.template operator()<3>());
    StoreTriples(out, PackUnsigned16(v01, v23));
  }
  return true;
}

template <WarpMethod kMethod, int kChannels>
QV_INLINE bool SampleLanes(const View& view, Vec px, Vec py, Byte* out) {
  if constexpr (kMethod == WarpNearest) return SampleNearestLanes<kChannels>(view, px, py, out);
  if constexpr (kMethod == WarpLinear) return SampleLinearLanes<kChannels>(view, px, py, out);
  return SampleCubicLanes<kChannels>(view, px, py, out);
}

// Out of line, to keep the loops around it tight.
template <int kChannels>
__attribute__((noinline)) void SamplePlainly(const WarpSource& s, Vec px, Vec py, Byte* out,
                                             int count) {
  int x[kLanes32], y[kLanes32];
  Store(x, px);
  Store(y, py);
  for (int i = 0; i < count; ++i) SamplePixel<kChannels>(s, x[i], y[i], out + kChannels * i);
}

// Columns begin .. begin + n - 1 of a run, at which `positions` stand.
template <WarpMethod kMethod, int kChannels, class Positions>
QV_INLINE void SampleRun(const WarpSource& s, const View& view, int begin, int n, Byte* out,
                         Positions positions) {
  if (n < kLanes32) {
    Byte part[kLanes32 * kChannels];
    const Vec px = positions.At(0), py = positions.At(1);
    if (!SampleLanes<kMethod, kChannels>(view, px, py, part))
      SamplePlainly<kChannels>(s, px, py, part, n);
    memcpy(out, part, static_cast<size_t>(n) * kChannels);
    return;
  }
  // The last vector overlaps the one before it.
  for (int i = 0;;) {
    const Vec px = positions.At(0), py = positions.At(1);
    if (!SampleLanes<kMethod, kChannels>(view, px, py, out + i * kChannels))
      SamplePlainly<kChannels>(s, px, py, out + i * kChannels, kLanes32);
    i += kLanes32;
    if (i + kLanes32 <= n) {
      positions.Advance();
    } else {
      if (i == n) break;
      i = n - kLanes32;
      positions.MoveTo(begin + i);
    }
  }
}

template <WarpMethod kMethod, int kChannels>
void WarpRowVectors(const WarpSource& s, const WarpSegment* segments, int count, int first,
                    int last, Byte* dst) {
  const View view = MakeView(s, kChannels);
  // Segments that are shorter than a vector are lined up here. They share an aligned block of a vector
  // at least, and vectors may read past its last column, to no effect.
  int x[2 * kLanes32] = {}, y[2 * kLanes32] = {};
  for (const WarpSegment *g = segments, *const end = segments + count; g != end; ++g) {
    const bool isShort = g->count < kLanes32;
    const int length = isShort ? kLanes32 : g->count, start = g->first & -length;
    const int begin = (first > start ? first : start) - start;
    const int n = (last - start < length ? last - start + 1 : length) - begin;
    Byte* const out = dst + static_cast<ptrdiff_t>(start + begin) * kChannels;
    if (isShort) {
      for (;; ++g) {
        for (int i = 0, column = g->first; i < g->count; ++i, ++column) {
          x[column - start] = static_cast<int>(PositionAt(*g, 0, column));
          y[column - start] = static_cast<int>(PositionAt(*g, 1, column));
        }
        if (g + 1 == end || (g[1].first & -length) != start) break;
      }
      SampleRun<kMethod, kChannels>(s, view, begin, n, out, Listed{x, y, begin});
    } else if (IsLine(*g)) {
      SampleRun<kMethod, kChannels>(s, view, begin, n, out, Curve<true>(*g, begin));
    } else {
      SampleRun<kMethod, kChannels>(s, view, begin, n, out, Curve<false>(*g, begin));
    }
  }
}

#endif

template <int kChannels>
QV_INLINE void WarpRow(const WarpSource& s, const WarpSegment* segments, int count, int first,
                       int last, Byte* dst) {
#if QV_HAS_VECTORS
  if (FitsLanes(s, kChannels) && s.width >= 2 && s.height >= 2) {
    if (s.method == WarpNearest)
      WarpRowVectors<WarpNearest, kChannels>(s, segments, count, first, last, dst);
    else if (s.method == WarpLinear)
      WarpRowVectors<WarpLinear, kChannels>(s, segments, count, first, last, dst);
    else
      WarpRowVectors<WarpCubic, kChannels>(s, segments, count, first, last, dst);
    return;
  }
#endif
  WarpRowPlain<kChannels>(s, segments, count, first, last, dst);
}

}  // namespace

void WarpRow_8u_C1(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, Byte* dst) {
  WarpRow<1>(*source, segments, count, first, last, dst);
}

void WarpRow_8u_C3(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, Byte* dst) {
  WarpRow<3>(*source, segments, count, first, last, dst);
}

}  // namespace qv::QV_LEVEL
