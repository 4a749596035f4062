// Sampling along destination rows.
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/WarpPlain.h"
#include "kernels/geometry/WarpVectors.h"

namespace qv::QV_LEVEL {

namespace {

#if QV_HAS_VECTORS

// Vector rows keep positions and byte offsets in 32-bit lanes. A position next to the source's edge
// may overshoot it by a few steps; one of a column that is not wanted may be anything: clamped, it
// is harmless.
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
      for (int i = 0; i < (kIsLine ? 2 : 4); ++i) coeff_[axis][i] = SplatFloat(s.coeff[axis][i]);
    }
    MoveTo(skipped);
  }
  QV_INLINE void MoveTo(int column) {
    static constexpr float kIota[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    t_ = AddFloat(LoadFloats(kIota), SplatFloat(static_cast<float>(column - half_)));
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

// What kLanes32 pixels need of their positions: the offset of their first taps, and along either
// axis the weights of two taps (linear) or the offset of a table entry (cubic).
//
// A run is prepared as a whole before any of it is fetched: the chain from a column to its fetch is
// long, and with the fetches in between a processor could not look ahead over more than one of
// them.
struct Prepared {
  alignas(kVecBytes) int offset[kLanes32], x[kLanes32], y[kLanes32];
};

// Weights (2^14 - f, f) of a pair of pixels, as 16-bit halves.
QV_INLINE Vec PairWeights(Vec fraction) {
  return Add32(ShiftLeft32<16>(fraction), Sub32(Splat32(1 << kWarpBits), fraction));
}

// False if a pixel needs bytes that cannot be fetched, or taps beyond the edge.
template <IppiInterpolation kMethod, int kChannels, bool kInside>
QV_INLINE bool Prepare(const View& view, Vec px, Vec py, Prepared& out) {
  if constexpr (!kInside) px = Clamp32(px, view.highX), py = Clamp32(py, view.highY);
  Vec ix = ShiftRightSigned32<kWarpBits>(px), iy = ShiftRightSigned32<kWarpBits>(py);
  if constexpr (kMethod == InterpolateLinear) {
    // On the last pixel the pair is the one before it, with all the weight on its second half.
    if constexpr (!kInside) ix = Min32(ix, view.lastX), iy = Min32(iy, view.lastY);
    Store(out.x, PairWeights(Sub32(px, ShiftLeft32<kWarpBits>(ix))));
    Store(out.y, PairWeights(Sub32(py, ShiftLeft32<kWarpBits>(iy))));
  }
  // Its sign tells: the fetch ends past its row, or a tap is missing at either end.
  Vec bad = Zero();
  if constexpr (kMethod == InterpolateCubic) {
    const Vec one = Splat32(1), mask = Splat32((kCubicPhases - 1) * 8);  // entries are 8 bytes
    Store(out.x, And(ShiftRight32<kWarpBits - kCubicBits - 3>(px), mask));
    Store(out.y, And(ShiftRight32<kWarpBits - kCubicBits - 3>(py), mask));
    bad = Or(Sub32(Sub32(view.lastX, one), ix), Sub32(Sub32(view.lastY, one), iy));
    ix = Sub32(ix, one), iy = Sub32(iy, one);
    bad = Or(bad, Or(ix, iy));
  }
  Store(out.offset, OffsetOf<kChannels>(view, ix, iy));
  if constexpr (kInside) return true;
  constexpr int kFetched =
      kMethod == InterpolateNearest || kChannels == 1 ? 4 : kMethod == InterpolateLinear ? 8 : 16;
  constexpr int kPixels = (kFetched + kChannels - 1) / kChannels;
  bad = Or(bad, Sub32(Add32(view.lastX, Splat32(2 - kPixels)), ix));
  return !AnyNegative32(bad);
}

template <int kChannels, bool kGathers>
QV_INLINE void FinishNearest(const View& view, const Prepared& p, Byte* out) {
  const Vec pixels = Fetch32<kGathers>(view.first, p.offset);
  if constexpr (kChannels == 1)
    StoreLowBytes32(out, pixels);
  else
    StoreTriples(out, pixels);
}

template <int kChannels, bool kGathers>
QV_INLINE void FinishLinear(const View& view, const Prepared& p, Byte* out) {
  const Byte* const below = view.first + view.stepBytes;
  const Vec wx = Load(p.x), wy = Load(p.y);
  // Of 16-bit pairs of neighbours in both rows, 2^21 times the value.
  const auto mix = [=](Vec upper, Vec lower) {
    const Vec u = ShiftRight32<7>(MulAddPairs16(upper, wx));
    const Vec l = ShiftLeft32<9>(MulAddPairs16(lower, wx));
    return Add32(MulAddPairs16(Or(u, And(l, Splat32(-0x10000))), wy), Splat32(kLinearRound));
  };
  if constexpr (kChannels == 1) {
    const Vec upper = Fetch32<kGathers>(view.first, p.offset);
    const Vec lower = Fetch32<kGathers>(below, p.offset);
    StoreLowBytes32(out, ShiftRight32<21>(mix(SpreadPair<0, 1>(upper), SpreadPair<0, 1>(lower))));
  } else {
    const PixelPairs upper = FetchPairs<kGathers>(view.first, p.offset);
    const PixelPairs lower = FetchPairs<kGathers>(below, p.offset);
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
QV_INLINE void FinishCubic(const View& view, const Prepared& p, Byte* out) {
  const Byte* const table = reinterpret_cast<const Byte*>(kCubicTable.tap);
  const Vec x01 = Fetch64<kGathers, 0>(table, p.x), x23 = Fetch64<kGathers, 1>(table, p.x);
  const Vec y01 = Fetch64<kGathers, 0>(table, p.y), y23 = Fetch64<kGathers, 1>(table, p.y);
  const Vec evenX = EvenLanes32(x01, x23), oddX = OddLanes32(x01, x23);
  const Vec evenY = EvenLanes32(y01, y23), oddY = OddLanes32(y01, y23);
  if constexpr (kChannels == 1) {
    Vec row[4];
    for (int i = 0; i < 4; ++i) {
      const Vec taps = Fetch32<kGathers>(view.first + i * view.stepBytes, p.offset);
      const Vec bytes = Splat32(0x00FF00FF);
      row[i] = ShiftRightSigned32<8>(Add32(MulAddPairs16(And(taps, bytes), evenX),
                                           MulAddPairs16(ShiftRight16<8>(taps), oddX)));
    }
    StoreLimited32(out, SumRows(row, evenY, oddY));
  } else {
    const auto pixels = [&]<int kPart>() {
      Vec row[4];
      for (int i = 0; i < 4; ++i) {
        const Vec taps = Fetch128<kPart>(view.first + i * view.stepBytes, p.offset);
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

// Where fetches would pass the end of a row, or taps the edges: the bytes that count are brought
// together first. Out of line, to keep the loop around it tight.
template <IppiInterpolation kMethod, int kChannels, bool kGathers>
__attribute__((noinline)) void FinishAtEdge(const WarpSource& s, const View& view, Vec px, Vec py,
                                            const Prepared& p, Byte* out) {
  if constexpr (kMethod == InterpolateNearest) {
    for (int i = 0; i < kLanes32; ++i)
      memcpy(out + kChannels * i, view.first + p.offset[i], kChannels);
  } else {
    constexpr bool kLinear = kMethod == InterpolateLinear;
    constexpr int kRows = kLinear ? 2 : 4, kApart = kLinear ? 8 : 16;
    Byte taps[kRows][kApart * kLanes32];
    int x[kLanes32], y[kLanes32];
    Store(x, ShiftRightSigned32<kWarpBits>(Clamp32(px, view.highX)));
    Store(y, ShiftRightSigned32<kWarpBits>(Clamp32(py, view.highY)));
    Prepared near = p;
    for (int i = 0; i < kLanes32; ++i) {
      near.offset[i] = kApart * i;
      const bool isBeyond = kMethod == InterpolateCubic && (x[i] < 1 || x[i] > s.width - 3);
      for (int r = 0; r < kRows; ++r) {
        Byte* const to = taps[r] + kApart * i;
        if constexpr (kMethod == InterpolateLinear) {
          CopyTaps<2 * kChannels>(view.first + p.offset[i] + r * view.stepBytes, to);
        } else if (isBeyond) {
          Byte four[4 * kChannels];
          for (int k = 0; k < 4; ++k)
            memcpy(four + k * kChannels, TapAt<kChannels>(s, x[i] - 1 + k, y[i] - 1 + r),
                   kChannels);
          CopyTaps<4 * kChannels>(four, to);
        } else {
          CopyTaps<4 * kChannels>(TapAt<kChannels>(s, x[i] - 1, y[i] - 1 + r), to);
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

// Columns begin .. begin + n - 1 of a run, at which `positions` stand. A run of less than a vector
// is sampled aside, and the last vector of any other one overlaps the one before it.
template <IppiInterpolation kMethod, int kChannels, bool kGathers, bool kInside, class Positions>
QV_INLINE void SampleRun(const WarpSource& s, const View& view, int begin, int n, Byte* out,
                         Positions positions) {
  constexpr int kMost = kWarpBlock / kLanes32;
  Prepared prepared[kMost];
  bool isReady[kMost];
  const int vectors = (n + kLanes32 - 1) / kLanes32, end = n > kLanes32 ? n - kLanes32 : 0;
#pragma GCC unroll 1
  for (int k = 0; k < vectors; ++k) {
    if (k + 1 == vectors && k > 0) positions.MoveTo(begin + end);
    isReady[k] = Prepare<kMethod, kChannels, kInside>(view, positions.At(0), positions.At(1),
                                                      prepared[k]);
    positions.Advance();
  }
  Byte part[kLanes32 * kChannels];
#pragma GCC unroll 1
  for (int k = 0; k < vectors; ++k) {
    const int i = k + 1 < vectors ? k * kLanes32 : end;
    Byte* const to = n < kLanes32 ? part : out + i * kChannels;
    if (!kInside && !isReady[k]) {
      positions.MoveTo(begin + i);
      FinishAtEdge<kMethod, kChannels, kGathers>(s, view, positions.At(0), positions.At(1),
                                                 prepared[k], to);
    } else if constexpr (kMethod == InterpolateNearest) {
      FinishNearest<kChannels, kGathers>(view, prepared[k], to);
    } else if constexpr (kMethod == InterpolateLinear) {
      FinishLinear<kChannels, kGathers>(view, prepared[k], to);
    } else {
      FinishCubic<kChannels, kGathers>(view, prepared[k], to);
    }
  }
  if (n < kLanes32) memcpy(out, part, static_cast<size_t>(n) * kChannels);
}

template <IppiInterpolation kMethod, int kChannels, bool kGathers>
void WarpRowVectors(const WarpSource& s, const WarpSegment* segments, int count, int first,
                    int last, Byte* dst) {
  const View view = MakeView(s);
  // Segments that are shorter than a vector are lined up here. They share an aligned block of a
  // vector at least, and vectors may read past its last column, to no effect.
  int x[2 * kLanes32] = {}, y[2 * kLanes32] = {};
  for (const WarpSegment *g = segments, *const end = segments + count; g != end; ++g) {
    const bool isShort = g->count < kLanes32;
    const int length = isShort ? kLanes32 : g->count, start = g->first & -length;
    const int begin = (first > start ? first : start) - start;
    const int n = (last - start < length ? last - start + 1 : length) - begin;
    // A run of less than a vector may look past the segment's columns.
    const bool isInside = n >= kLanes32 && g->isInside;
    Byte* const out = dst + static_cast<ptrdiff_t>(start + begin) * kChannels;
    const auto run = [&]<bool kInside>(auto positions) __attribute__((always_inline)) {
      SampleRun<kMethod, kChannels, kGathers, kInside>(s, view, begin, n, out, positions);
    };
    if (isShort) {
      for (;; ++g) {
        for (int i = 0; i < g->count; ++i) {
          const int column = g->first + i;
          x[column - start] = static_cast<int>(PositionAt(*g, 0, column));
          y[column - start] = static_cast<int>(PositionAt(*g, 1, column));
        }
        if (g + 1 == end || (g[1].first & -length) != start) break;
      }
      run.template operator()<false>(Listed{x, y, begin});
    } else if (IsLine(*g)) {
      if (isInside)
        run.template operator()<true>(Curve<true>(*g, begin));
      else
        run.template operator()<false>(Curve<true>(*g, begin));
    } else if (isInside) {
      run.template operator()<true>(Curve<false>(*g, begin));
    } else {
      run.template operator()<false>(Curve<false>(*g, begin));
    }
  }
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
