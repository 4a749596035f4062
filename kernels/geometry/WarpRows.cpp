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

// Positions of a segment's columns.
QV_INLINE void FindPositions(const WarpSegment& s, int* x, int* y) {
  static constexpr float kIota[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  if (s.count < kLanes32) {
    for (int i = 0; i < s.count; ++i) {
      x[i] = static_cast<int>(PositionAt(s, 0, s.first + i));
      y[i] = static_cast<int>(PositionAt(s, 1, s.first + i));
    }
    return;
  }
  // An affine segment's cubic is a line: the terms left out are zeros.
  const bool isLine = s.coeff[0][3] == 0 && s.coeff[0][2] == 0 && s.coeff[1][3] == 0 &&
                      s.coeff[1][2] == 0;
  const auto fill = [&](int* out, const float* c, long long base) {
    VecF t = AddF(LoadF(kIota), SplatF(static_cast<float>(-s.count / 2)));
    for (int i = 0; i < s.count; i += kLanes32) {
      VecF p = SplatF(c[1]);
      if (!isLine)
        p = AddF(MulF(AddF(MulF(SplatF(c[3]), t), SplatF(c[2])), t), SplatF(c[1]));
      p = AddF(MulF(p, t), SplatF(c[0]));
      Store(out + i, Add32(Truncate(p), Splat32(static_cast<int>(base))));
      t = AddF(t, SplatF(kLanes32));
    }
  };
  fill(x, s.coeff[0], s.base[0]);
  fill(y, s.coeff[1], s.base[1]);
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

// Each sampler does kLanes32 pixels, whose positions are at x and y, or returns false if a pixel needs
// bytes that it cannot fetch.

template <int kChannels>
QV_INLINE bool SampleNearestLanes(const View& view, const int* x, const int* y, Byte* out) {
  const Vec offset =
      OffsetOf<kChannels>(view, ShiftRightSigned32<kWarpBits>(Clamp32(Load(x), view.highX)),
                          ShiftRightSigned32<kWarpBits>(Clamp32(Load(y), view.highY)));
  int at[kLanes32];
  Store(at, offset);
  if constexpr (kChannels == 1) {
    for (int i = 0; i < kLanes32; ++i) out[i] = view.first[at[i]];
    return true;
  } else {
    // Four bytes a pixel; the next pixel's three go over the fourth.
    if (AnyGreater32(offset, Splat32(static_cast<int>(view.bytes) - 4))) return false;
    for (int i = 0; i < kLanes32 - 1; ++i) memcpy(out + 3 * i, view.first + at[i], 4);
    memcpy(out + 3 * (kLanes32 - 1), view.first + at[kLanes32 - 1], 3);
    return true;
  }
}

// Weights (2^14 - f, f) of a pair of pixels, as 16-bit halves.
QV_INLINE Vec PairWeights(Vec fraction) {
  return Add32(ShiftLeft32<16>(fraction), Sub32(Splat32(1 << kWarpBits), fraction));
}

template <int kChannels>
QV_INLINE bool SampleLinearLanes(const View& view, const int* x, const int* y, Byte* out) {
  const Vec px = Clamp32(Load(x), view.highX), py = Clamp32(Load(y), view.highY);
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
  if constexpr (kChannels == 1) {
    const Vec taps = Pair16(Gather32(view.first, offset), Gather32(below, offset));
    // Words (00, 01, 10, 11) of each pixel become sums along x, then along y.
    const Vec round = Splat32(64);
    const Vec low = MulAddPairs16(InterleaveLow8(taps, Zero()), InterleaveLow32(wx, wx));
    const Vec high = MulAddPairs16(InterleaveHigh8(taps, Zero()), InterleaveHigh32(wx, wx));
    const Vec t = PackSigned32(ShiftRightSigned32<7>(Add32(low, round)),
                               ShiftRightSigned32<7>(Add32(high, round)));
    StoreAsBytes(out, ShiftRightSigned32<21>(Add32(MulAddPairs16(t, wy), Splat32(1 << 20))));
  } else {
    const auto half = [&](Vec upper, Vec lower, Vec wx2, Vec wy2) {
      const auto pixel = [&](Vec u, Vec l, Vec wxp, Vec wyp) {
        const Vec round = Splat32(64);
        const Vec tu = ShiftRightSigned32<7>(Add32(MulAddPairs16(u, wxp), round));
        const Vec tl = ShiftRightSigned32<7>(Add32(MulAddPairs16(l, wxp), round));
        return ShiftRightSigned32<21>(
            Add32(MulAddPairs16(Or(tu, ShiftLeft32<16>(tl)), wyp), Splat32(1 << 20)));
      };
      return PackSigned32(
          pixel(SpreadPairs<0>(upper), SpreadPairs<0>(lower), InterleaveLow64(wx2, wx2),
                InterleaveLow64(wy2, wy2)),
          pixel(SpreadPairs<1>(upper), SpreadPairs<1>(lower), InterleaveHigh64(wx2, wx2),
                InterleaveHigh64(wy2, wy2)));
    };
    const Vec v01 = half(Gather64<0>(view.first, offset), Gather64<0>(below, offset),
                         InterleaveLow32(wx, wx), InterleaveLow32(wy, wy));
    const Vec v23 = half(Gather64<1>(view.first, offset), Gather64<1>(below, offset),
                         InterleaveHigh32(wx, wx), InterleaveHigh32(wy, wy));
    StoreTriples(out, PackUnsigned16(v01, v23));
  }
  return true;
}

// Sums down the four rows, whose sums along x have 6 fractional bits; the weights are those of rows 0
// and 2, and of rows 1 and 3.
QV_INLINE Vec SumRows(const Vec row[4], Vec even, Vec odd) {
  const Vec sum = Add32(MulAddPairs16(Pair16(row[0], row[2]), even),
                        MulAddPairs16(Pair16(row[1], row[3]), odd));
  return ShiftRightSigned32<20>(Add32(sum, Splat32(1 << 19)));
}

template <int kChannels>
QV_INLINE bool SampleCubicLanes(const View& view, const int* x, const int* y, Byte* out) {
  const Vec px = Clamp32(Load(x), view.highX), py = Clamp32(Load(y), view.highY);
  const Vec one = Splat32(1);
  const Vec ix = Sub32(ShiftRightSigned32<kWarpBits>(px), one);
  const Vec iy = Sub32(ShiftRightSigned32<kWarpBits>(py), one);
  // Taps beyond the edge are the plain rows' business: the last first tap is two before lastX.
  const Vec two = Splat32(2);
  if (AnyGreater32(Zero(), Min32(ix, iy)) || AnyGreater32(ix, Sub32(view.lastX, two)) ||
      AnyGreater32(iy, Sub32(view.lastY, two)))
    return false;
  const Vec offset = OffsetOf<kChannels>(view, ix, iy);
  const Vec mask = Splat32(kCubicPhases - 1);
  const Vec phaseX = And(ShiftRight32<kWarpBits - kCubicBits>(px), mask);
  const Vec phaseY = And(ShiftRight32<kWarpBits - kCubicBits>(py), mask);
  const Vec evenX = GatherTable32(&kCubicTable.tap[0][0], phaseX);
  const Vec oddX = GatherTable32(&kCubicTable.tap[0][2], phaseX);
  const Vec evenY = GatherTable32(&kCubicTable.tap[0][0], phaseY);
  const Vec oddY = GatherTable32(&kCubicTable.tap[0][2], phaseY);
  const Vec round = Splat32(128);
  if constexpr (kChannels == 1) {
    Vec row[4];
    for (int i = 0; i < 4; ++i) {
      const Vec taps = Gather32(view.first + i * view.stepBytes, offset);
      const Vec bytes = Splat32(0x00FF00FF);
      const Vec sum = Add32(MulAddPairs16(And(taps, bytes), evenX),
                            MulAddPairs16(And(ShiftRight32<8>(taps), bytes), oddX));
      row[i] = ShiftRightSigned32<8>(Add32(sum, round));
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
        const Vec sum =
            Add32(MulAddPairs16(SpreadTaps<0>(taps), SplatInLanes32<kPart>(evenX)),
                  MulAddPairs16(SpreadTaps<1>(taps), SplatInLanes32<kPart>(oddX)));
        row[i] = ShiftRightSigned32<8>(Add32(sum, round));
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
QV_INLINE void SampleLanes(const WarpSource& s, const View& view, const int* x, const int* y,
                           int count, Byte* out) {
  const bool done = kMethod == WarpNearest  ? SampleNearestLanes<kChannels>(view, x, y, out)
                    : kMethod == WarpLinear ? SampleLinearLanes<kChannels>(view, x, y, out)
                                            : SampleCubicLanes<kChannels>(view, x, y, out);
  if (done) return;
  for (int i = 0; i < count; ++i) SamplePixel<kChannels>(s, x[i], y[i], out + kChannels * i);
}

template <WarpMethod kMethod, int kChannels>
void WarpRowVectors(const WarpSource& s, const WarpSegment* segments, int count, int first,
                    int last, Byte* dst) {
  const View view = MakeView(s, kChannels);
  // Vectors may read past a block's last column, to no effect.
  int x[kWarpBlock + kLanes32] = {}, y[kWarpBlock + kLanes32] = {};
  for (const WarpSegment *g = segments, *const end = segments + count; g != end;) {
    const int block = g->first & -kWarpBlock;
    for (; g != end && (g->first & -kWarpBlock) == block; ++g)
      FindPositions(*g, x + (g->first - block), y + (g->first - block));
    const int begin = (first > block ? first : block) - block;
    const int n = (last - block < kWarpBlock ? last - block + 1 : kWarpBlock) - begin;
    Byte* const out = dst + static_cast<ptrdiff_t>(block + begin) * kChannels;
    const bool covered = CoverWithBlocks<kLanes32>(n, [&](ptrdiff_t i) {
      SampleLanes<kMethod, kChannels>(s, view, x + begin + i, y + begin + i, kLanes32,
                                      out + i * kChannels);
    });
    if (covered) continue;
    Byte part[kLanes32 * kChannels];
    SampleLanes<kMethod, kChannels>(s, view, x + begin, y + begin, n, part);
    memcpy(out, part, static_cast<size_t>(n) * kChannels);
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
