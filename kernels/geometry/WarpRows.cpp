// Sampling along destination rows.
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/WarpPlain.h"
#include "kernels/geometry/WarpVectors.h"

namespace qv::QV_LEVEL {

namespace {

#if QV_HAS_VECTORS

// Vector rows keep positions and byte offsets in 32-bit lanes. A position next to the source's edge
// may overshoot it by a few steps. Lanes past a segment's end may hold anything: nothing is fetched
// by them.
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
  QV_INLINE Curve(const WarpSegment& s, int skipped) {
    static constexpr float kIota[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    for (int axis = 0; axis < 2; ++axis) {
      base_[axis] = Splat32(static_cast<int>(s.base[axis]));
      for (int i = 0; i < (kIsLine ? 2 : 4); ++i) coeff_[axis][i] = SplatFloat(s.coeff[axis][i]);
    }
    t_ = AddFloat(LoadFloats(kIota), SplatFloat(static_cast<float>(skipped - s.count / 2)));
  }
  QV_INLINE void Advance() { t_ = AddFloat(t_, SplatFloat(kLanes32)); }
  QV_INLINE Vec At(int axis) const {
    const Floats* const c = coeff_[axis];
    Floats p = c[1];
    if constexpr (!kIsLine) p = AddFloat(MulFloat(AddFloat(MulFloat(c[3], t_), c[2]), t_), p);
    return Add32(TruncatedInts(AddFloat(MulFloat(p, t_), c[0])), base_[axis]);
  }

 private:
  Floats t_, coeff_[2][4];
  Vec base_[2];
};

// A source as vector rows see it.
struct View {
  const Byte* first;
  Vec step, highX, highY;  // of clamped positions
  Vec lastX, lastY;        // largest index of a pair's first pixel
  ptrdiff_t stepBytes;
};

QV_INLINE View MakeView(const WarpSource& s) {
  return {s.first,
          Splat32(s.step),
          Splat32((s.width - 1) << kWarpBits),
          Splat32((s.height - 1) << kWarpBits),
          Splat32(s.width - 2),
          Splat32(s.height - 2),
          s.step};
}

template <int kChannels>
QV_INLINE Vec OffsetOf(const View& view, Vec x, Vec y) {
  if constexpr (kChannels == 3) x = Add32(x, Add32(x, x));
  return Add32(MulLow32(y, view.step), x);
}

// What the pixels of a row need of their positions, column by column: the offset of the first tap,
// at kX and kY along either axis the weights of two taps (linear) or the offset of a table entry
// (cubic). Of rows that may pass the edges also: at kLack what is below 0 if the fetch ends past
// its row, or if a tap is missing at either end; at kLeft and kTop the pixel to the left of the
// position and above it (cubic). All in one array, since finishing has few registers to spare.
//
// A row is prepared as a whole before any of it is fetched: the chain from a column to its fetch is
// long, and a fetch waits whose offset is still on its way to memory.
constexpr int kPreparedColumns = kWarpColumns + kLanes32;  // a vector may begin at the last one
enum { kX = kPreparedColumns, kY = 2 * kX, kLack = 3 * kX, kLeft = 4 * kX, kTop = 5 * kX };
struct Prepared {
  alignas(kVecBytes) int values[6 * kPreparedColumns];
};

// Weights (2^14 - f, f) of a pair of pixels, as 16-bit halves.
QV_INLINE Vec PairWeights(Vec fraction) {
  return Add32(ShiftLeft32<16>(fraction), Sub32(Splat32(1 << kWarpBits), fraction));
}

template <IppiInterpolation kMethod, int kChannels, bool kInside>
QV_INLINE void Prepare(const View& view, Vec px, Vec py, int* out) {
  if constexpr (!kInside) px = Clamp32(px, view.highX), py = Clamp32(py, view.highY);
  Vec ix = ShiftRightSigned32<kWarpBits>(px), iy = ShiftRightSigned32<kWarpBits>(py);
  Vec lack = Zero();
  if constexpr (kMethod == InterpolateLinear) {
    // On the last pixel the pair is the one before it, with all the weight on its second half.
    if constexpr (!kInside) ix = Min32(ix, view.lastX), iy = Min32(iy, view.lastY);
    const auto fraction = [](Vec position, Vec whole) {
      if constexpr (kInside) return And(position, Splat32((1 << kWarpBits) - 1));
      return Sub32(position, ShiftLeft32<kWarpBits>(whole));
    };
    Store(out + kX, PairWeights(fraction(px, ix)));
    Store(out + kY, PairWeights(fraction(py, iy)));
  }
  if constexpr (kMethod == InterpolateCubic) {
    const Vec one = Splat32(1), mask = Splat32((kCubicPhases - 1) * 8);  // entries are 8 bytes
    Store(out + kX, And(ShiftRight32<kWarpBits - kCubicBits - 3>(px), mask));
    Store(out + kY, And(ShiftRight32<kWarpBits - kCubicBits - 3>(py), mask));
    if constexpr (!kInside) {
      Store(out + kLeft, ix);
      Store(out + kTop, iy);
      lack = Or(Sub32(Sub32(view.lastX, one), ix), Sub32(Sub32(view.lastY, one), iy));
      lack = Or(lack, Or(Sub32(ix, one), Sub32(iy, one)));
    }
    ix = Sub32(ix, one), iy = Sub32(iy, one);
  }
  Store(out, OffsetOf<kChannels>(view, ix, iy));
  if constexpr (!kInside) {
    constexpr int kFetched =
        kMethod == InterpolateNearest || kChannels == 1 ? 4 : kMethod == InterpolateLinear ? 8 : 16;
    constexpr int kPixels = (kFetched + kChannels - 1) / kChannels;
    lack = Or(lack, Sub32(Add32(view.lastX, Splat32(2 - kPixels)), ix));
    Store(out + kLack, lack);
  }
}

template <IppiInterpolation kMethod, int kChannels, bool kInside, bool kIsLine>
QV_INLINE void PrepareAlong(const View& view, const WarpSegment& s, int skipped, int begin, int end,
                            Prepared& out) {
  Curve<kIsLine> curve(s, skipped);
  for (int i = begin; i < end; i += kLanes32) {
    Prepare<kMethod, kChannels, kInside>(view, curve.At(0), curve.At(1), out.values + i);
    curve.Advance();
  }
}

// Columns first .. last. What the last vector of a segment holds past its end, the next segment
// overwrites.
template <IppiInterpolation kMethod, int kChannels, bool kInside>
QV_INLINE void PrepareRow(const View& view, const WarpSegment* segments, int count, int first,
                          int last, Prepared& out) {
  for (const WarpSegment* g = segments; g != segments + count; ++g) {
    const int skipped = g->first < first ? first - g->first : 0;
    const int begin = g->first + skipped - first, rest = g->count - skipped;
    const int end = last - first + 1 - begin < rest ? last - first + 1 : begin + rest;
    if (g->isLine)
      PrepareAlong<kMethod, kChannels, kInside, true>(view, *g, skipped, begin, end, out);
    else
      PrepareAlong<kMethod, kChannels, kInside, false>(view, *g, skipped, begin, end, out);
  }
}

template <int kChannels, bool kGathers>
QV_INLINE void FinishNearest(const View& view, const int* p, Byte* out) {
  Vec pixels[1];
  Fetch32<kGathers>(Rows<1>(view.first, 0), p, pixels);
  if constexpr (kChannels == 1)
    StoreLowBytes32(out, pixels[0]);
  else
    StoreTriples(out, pixels[0]);
}

template <int kChannels, bool kGathers>
QV_INLINE void FinishLinear(const View& view, const int* p, Byte* out) {
  const Rows<2> rows(view.first, view.stepBytes);
  const Vec wx = Load(p + kX), wy = Load(p + kY);
  // Of 16-bit pairs of neighbours in both rows, 2^21 times the value.
  const auto mix = [=](Vec upper, Vec lower) {
    const Vec u = ShiftRight32<7>(MulAddPairs16(upper, wx));
    const Vec l = ShiftLeft32<9>(MulAddPairs16(lower, wx));
    return Add32(MulAddPairs16(Or(u, And(l, Splat32(-0x10000))), wy), Splat32(kLinearRound));
  };
  if constexpr (kChannels == 1) {
    Vec row[2];
    Fetch32<kGathers>(rows, p, row);
    StoreLowBytes32(out, ShiftRight32<21>(mix(SpreadPair<0, 1>(row[0]), SpreadPair<0, 1>(row[1]))));
  } else {
    PixelPairs pairs[2];
    FetchPairs<kGathers>(rows, p, pairs);
    const PixelPairs &upper = pairs[0], &lower = pairs[1];
    const Vec b = ShiftRight32<21>(mix(upper.b, lower.b));
    const Vec g = And(ShiftRight32<13>(mix(upper.g, lower.g)), Splat32(0xFF00));
    const Vec r = And(ShiftRight32<5>(mix(upper.r, lower.r)), Splat32(0xFF0000));
    StoreTriples(out, Or(Or(b, g), r));
  }
}

// Sums down the four rows, whose sums along x have 6 fractional bits; the weights are those of rows
// 0 and 2, and of rows 1 and 3.
QV_INLINE Vec SumRows(const Vec row[4], Vec even, Vec odd) {
  const Vec sum = Add32(MulAddPairs16(Pair16(row[0], row[2]), even),
                        MulAddPairs16(Pair16(row[1], row[3]), odd));
  return ShiftRightSigned32<20>(Add32(sum, Splat32(kCubicRound)));
}

template <int kChannels, bool kGathers>
QV_INLINE void FinishCubic(const View& view, const int* p, Byte* out) {
  const Rows<4> rows(view.first, view.stepBytes);
  const Byte* const table = reinterpret_cast<const Byte*>(kCubicTable.tap);
  const Vec x01 = Fetch64<kGathers, 0>(table, p + kX), x23 = Fetch64<kGathers, 1>(table, p + kX);
  const Vec y01 = Fetch64<kGathers, 0>(table, p + kY), y23 = Fetch64<kGathers, 1>(table, p + kY);
  const Vec evenX = EvenLanes32(x01, x23), oddX = OddLanes32(x01, x23);
  const Vec evenY = EvenLanes32(y01, y23), oddY = OddLanes32(y01, y23);
  if constexpr (kChannels == 1) {
    Vec row[4];
    Fetch32<kGathers>(rows, p, row);
    for (int i = 0; i < 4; ++i) {
      const Vec bytes = Splat32(0x00FF00FF);
      row[i] = ShiftRightSigned32<8>(Add32(MulAddPairs16(And(row[i], bytes), evenX),
                                           MulAddPairs16(ShiftRight16<8>(row[i]), oddX)));
    }
    StoreLimited32(out, SumRows(row, evenY, oddY));
  } else {
    const auto pixels = [&]<int kPart>() {
      Vec row[4];
      for (int i = 0; i < 4; ++i) {
        const Vec taps = Fetch128<kPart>(rows.first[i], p);
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
}

// A few neighbours, stored in one piece and as wide as they are fetched: a processor hands no fetch
// what several stores, or a narrower one, have just written.
template <int kBytes>
QV_INLINE void CopyTaps(const Byte* from, Byte* to) {
  if constexpr (kBytes == 2) {
    const uint32_t word = static_cast<uint32_t>(from[0] | from[1] << 8);
    memcpy(to, &word, sizeof word);
  } else if constexpr (kBytes == 4) {
    memcpy(to, from, 4);
  } else if constexpr (kBytes == 6) {
    Store64(to, InterleaveLow32(Load32(from), ShiftBytesDown<2>(Load32(from + 2))));
  } else {
    static_assert(kBytes == 12);
    Store128(to, InterleaveLow64(Load64(from), Load32(from + 8)));
  }
}

// The nearest pixels of n columns, one at a time.
template <int kChannels>
QV_INLINE void CopyNearest(const View& view, const int* p, int n, Byte* out) {
  for (int i = 0; i < n; ++i) memcpy(out + kChannels * i, view.first + p[i], kChannels);
}

// Where fetches would pass the end of a row, or taps the edges: the bytes that count are brought
// together first. Out of line, to keep the loop around it tight.
template <IppiInterpolation kMethod, int kChannels, bool kGathers>
__attribute__((noinline)) void FinishAtEdge(const WarpSource& s, const View& view, const int* p,
                                            Byte* out) {
  if constexpr (kMethod == InterpolateNearest) {
    CopyNearest<kChannels>(view, p, kLanes32, out);
  } else {
    constexpr bool kLinear = kMethod == InterpolateLinear;
    constexpr int kRows = kLinear ? 2 : 4, kApart = kLinear ? 8 : 16;
    Byte taps[kRows][kApart * kLanes32];
    const int *const left = p + kLeft, *const top = p + kTop;
    int near[kLack];  // as far as that is needed
    Store(near + kX, Load(p + kX));
    Store(near + kY, Load(p + kY));
    for (int i = 0; i < kLanes32; ++i) {
      near[i] = kApart * i;
      for (int r = 0; r < kRows; ++r) {
        Byte* const to = taps[r] + kApart * i;
        if constexpr (kMethod == InterpolateLinear) {
          CopyTaps<2 * kChannels>(view.first + p[i] + r * view.stepBytes, to);
        } else if (left[i] < 1 || left[i] > s.width - 3) {
          Byte four[4 * kChannels];
          for (int k = 0; k < 4; ++k)
            memcpy(four + k * kChannels, TapAt<kChannels>(s, left[i] - 1 + k, top[i] - 1 + r),
                   kChannels);
          CopyTaps<4 * kChannels>(four, to);
        } else {
          CopyTaps<4 * kChannels>(TapAt<kChannels>(s, left[i] - 1, top[i] - 1 + r), to);
        }
      }
    }
    View nearby = view;
    nearby.first = taps[0];
    nearby.stepBytes = sizeof taps[0];
    if constexpr (kMethod == InterpolateLinear)
      FinishLinear<kChannels, kGathers>(nearby, near, out);
    else
      FinishCubic<kChannels, kGathers>(nearby, near, out);
  }
}

// A row of less than a vector is filled up with its first pixel, a vector at a time: one that is
// read right after some of its lanes were stored would wait for them.
__attribute__((noinline)) void FillUp(Prepared& p, int n) {
  static constexpr int kWanted[32] = {-1, -1, -1, -1, -1, -1, -1, -1,
                                      -1, -1, -1, -1, -1, -1, -1, -1};
  const Vec wanted = Load(kWanted + 16 - n);
  for (int field = 0; field <= kTop; field += kPreparedColumns) {
    int* const first = p.values + field;
    Store(first, Select(wanted, Load(first), Splat32(*first)));
  }
}

template <IppiInterpolation kMethod, int kChannels, bool kGathers, bool kInside>
QV_INLINE void WarpRowWhere(const WarpSource& s, const WarpSegment* segments, int count, int first,
                            int last, Byte* dst) {
  const View view = MakeView(s);
  Prepared p;
  PrepareRow<kMethod, kChannels, kInside>(view, segments, count, first, last, p);
  const auto finish = [&](int i, Byte* to) QV_INLINE_LAMBDA {
    const int* const at = Opaque(p.values + i);
    if (!kInside && AnyNegative32(Load(at + kLack)))
      FinishAtEdge<kMethod, kChannels, kGathers>(s, view, at, to);
    else if constexpr (kMethod == InterpolateNearest)
      FinishNearest<kChannels, kGathers>(view, at, to);
    else if constexpr (kMethod == InterpolateLinear)
      FinishLinear<kChannels, kGathers>(view, at, to);
    else
      FinishCubic<kChannels, kGathers>(view, at, to);
  };
  Byte* const out = dst + static_cast<ptrdiff_t>(first) * kChannels;
  const int n = last - first + 1, whole = n & -kLanes32;
  for (int i = 0; i < whole; i += kLanes32) finish(i, out + i * kChannels);
  if (whole == n) return;
  // The last vector overlaps the one before it. A row of less than a vector is sampled aside.
  const bool isShort = whole == 0;
  if (isShort && kMethod == InterpolateNearest) {
    CopyNearest<kChannels>(view, p.values, n, out);
    return;
  }
  const int rest = isShort ? 0 : n - kLanes32;
  Byte part[kLanes32 * kChannels];
  if (isShort) FillUp(p, n);
  finish(rest, isShort ? part : out + rest * kChannels);
  if (isShort) memcpy(out, part, static_cast<size_t>(n) * kChannels);
}

template <IppiInterpolation kMethod, int kChannels, bool kGathers>
void WarpRowVectors(const WarpSource& s, const WarpSegment* segments, int count, int first,
                    int last, Byte* dst) {
  bool isInside = true;
  for (int i = 0; i < count; ++i) isInside &= segments[i].isInside;
  if (isInside)
    WarpRowWhere<kMethod, kChannels, kGathers, true>(s, segments, count, first, last, dst);
  else
    WarpRowWhere<kMethod, kChannels, kGathers, false>(s, segments, count, first, last, dst);
}

template <int kChannels, bool kGathers>
QV_INLINE void WarpRowBy(const WarpSource& s, const WarpSegment* segments, int count, int first,
                         int last, Byte* dst) {
  if (s.method == InterpolateNearest)
    WarpRowVectors<InterpolateNearest, kChannels, kGathers>(s, segments, count, first, last, dst);
  else if (s.method == InterpolateLinear)
    WarpRowVectors<InterpolateLinear, kChannels, kGathers>(s, segments, count, first, last, dst);
  else
    WarpRowVectors<InterpolateCubic, kChannels, kGathers>(s, segments, count, first, last, dst);
}

#endif

template <int kChannels>
QV_INLINE void WarpRow(const WarpSource& s, const WarpSegment* segments, int count, int first,
                       int last, Byte* dst) {
#if QV_HAS_VECTORS
  if (FitsLanes(s, kChannels) && s.width >= 2 && s.height >= 2) {
    if (kHasGather && QuickGathers)
      WarpRowBy<kChannels, kHasGather>(s, segments, count, first, last, dst);
    else
      WarpRowBy<kChannels, false>(s, segments, count, first, last, dst);
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
