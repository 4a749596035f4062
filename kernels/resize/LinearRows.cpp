// Linear rows: each source row interpolated once into 16-bit values with 6 fractional bits, two of
// which make a destination row.
#include "kernels/level/Level.h"
#include "kernels/resize/ByteGather.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

using Value = unsigned short;

// One source row: h = (p1 * w + p0 * (16384 - w) + 128) >> 8, plus `bias`.
static void InterpolateRow(const Byte* row, const LinearTables& t, int bias, Value* out) {
  ForEachValue(t, [&](ptrdiff_t k, LinearSides s) {
    out[k] = static_cast<Value>(
        ((row[s.right] * s.weight + row[s.left] * (kWeightOne - s.weight) + 128) >> 8) + bias);
  });
}

// Calls blend(upper, lower, i) for every destination row i, with the two source rows that it lies
// between as fill(y, out) makes them. They are kept until rows further down are wanted.
template <class Fill, class Blend>
QV_INLINE void WalkRows(const LinearTables& t, Value* upper, Value* lower, Fill fill,
                        Blend blend) {
  int upperRow = -1, lowerRow = -1;  // the source rows that are held
  for (int i = 0; i < t.height; ++i) {
    const int y = t.y.first[i];
    if (y != upperRow) {
      Value* const old = upper;
      if (y == lowerRow) {
        upper = lower;
        lower = old;
        lowerRow = -1;
      } else {
        fill(y, upper);
      }
      upperRow = y;
    }
    if (lowerRow != y + t.y.neighbour) {
      lowerRow = y + t.y.neighbour;
      fill(lowerRow, lower);
    }
    blend(upper, lower, i);
  }
}

#if QV_HAS_VECTORS

// Vector rows carry the vertical rounding, half of a byte's unit, with every value.
constexpr int kHalf = 32;

// (lower * w + upper * (16384 - w) + 2^19) >> 20 in 16-bit lanes. Let u be the nearer row, whose
// weight is not the smaller one, d the other and w its weight, at most 8192. The sum is
// 16384 * u + (d - u) * w + 2^19, and dropping its low 14 bits first changes nothing:
//   (u + 32 + floor((d - u) * w / 16384)) >> 6.
// The floor is the high half of (u - d) * (-4 * w), whose factors are within -16320 .. 16320 and
// -32768 .. 0.
static void BlendRows(const Value* upper, const Value* lower, int w, Byte* dst, ptrdiff_t bytes) {
  const bool upperIsNearer = w <= kWeightOne / 2;
  const Value* const near = upperIsNearer ? upper : lower;
  const Value* const far = upperIsNearer ? lower : upper;
  const Vec factor = Splat16(-4 * (upperIsNearer ? w : kWeightOne - w));
  const auto half = [&](ptrdiff_t k) {
    const Vec u = Load(near + k);
    return ShiftRight16<6>(Add16(u, MulHighSigned16(Sub16(u, Load(far + k)), factor)));
  };
  const auto block = [&](ptrdiff_t k) {
    return PackBytesInOrder(half(k), half(k + kVecBytes / 2));
  };
  ptrdiff_t k = 0;
  for (; k <= bytes - kVecBytes; k += kVecBytes) Store(dst + k, block(k));
  if (k == bytes) return;
  if constexpr (kHasMaskedBytes) {
    StorePart(dst + k, block(k), FirstOf64(bytes, k));
  } else if (bytes >= kVecBytes) {
    Store(dst + bytes - kVecBytes, block(bytes - kVecBytes));
  } else {
    Byte last[kVecBytes];
    Store(last, block(k));
    memcpy(dst, last, static_cast<size_t>(bytes));
  }
}

// The blended rows of an image, each stored at once or, if the fourth bytes of its pixels are to
// stay, by way of a line of its own.
class Blender {
 public:
  Blender(Byte* dst, int dstStep, const LinearTables& t, Byte* line)
      : dst_(dst), dstStep_(dstStep), t_(t), line_(line) {}
  QV_INLINE void operator()(const Value* upper, const Value* lower, int i) const {
    Part(upper, lower, i, 0, ptrdiff_t{t_.width} * PixelBytes(t_.layout));
  }
  // Values `first` to end - 1, where `first` is a multiple of 4.
  QV_INLINE void Part(const Value* upper, const Value* lower, int i, ptrdiff_t first,
                      ptrdiff_t end) const {
    Byte* const to = RowAt(dst_, dstStep_, i) + first;
    BlendRows(upper + first, lower + first, t_.y.weight[i], DropsFourth(t_) ? line_ : to,
              end - first);
    if (DropsFourth(t_)) StoreThirds(to, end - first);
  }

 private:
  void StoreThirds(Byte* row, ptrdiff_t bytes) const {
    if constexpr (kHasMaskedBytes) {
      for (ptrdiff_t k = 0; k < bytes; k += kVecBytes) {
        const unsigned long long part = FirstOf64(bytes, k) & 0x7777777777777777;
        StorePart(row + k, LoadPart(line_ + k, part), part);
      }
    } else {
      for (ptrdiff_t k = 0; k < bytes; k += 4) memcpy(row + k, line_ + k, 3);
    }
  }

  Byte* dst_;
  int dstStep_;
  const LinearTables& t_;
  Byte* line_;
};

// As InterpolateRow, from pairs of bytes (p0, p1) and twice the weight, below 32768:
//   h = 64 * p0 + (((p1 - p0) * w + 128) >> 8),
// since 16384 * p0 has no low bits; and the second term is the rounded product of 64 * (p1 - p0)
// and 2 * w.
QV_INLINE Vec InterpolateVector(Vec pairs, const Value* twiceWeight) {
  const Vec difference = MulAddBytes(pairs, Splat16(64 * 256 + (256 - 64)));
  const Vec left = Add16(MulAddBytes(pairs, Splat16(64)), Splat16(kHalf));
  return Add16(left, MulRounded15(difference, Load(twiceWeight)));
}

// A row of values; meanwhile the same bytes of row `next` are fetched.
template <int kLoads>
QV_INLINE void InterpolatePairs(const ByteGather& g, const Byte* row, const Byte* next,
                                const Value* twiceWeight, ptrdiff_t vectors, Value* out) {
  for (ptrdiff_t v = 0; v < vectors; ++v) {
    const ptrdiff_t k = v * (kVecBytes / 2);
    const Vec pairs = GatherBytes<kLoads>(g, row, v);
    FetchAhead<kLoads>(g, next, v);
    Store(out + k, InterpolateVector(pairs, twiceWeight + k));
  }
}

// The same where the pairs are the row's bytes as they are.
static void InterpolateBytes(const Byte* row, const Byte* next, const Value* twiceWeight,
                             ptrdiff_t vectors, Value* out) {
  for (ptrdiff_t v = 0; v < vectors; ++v) {
    const ptrdiff_t k = v * (kVecBytes / 2);
    __builtin_prefetch(next + 2 * k);
    Store(out + k, InterpolateVector(Load(row + 2 * k), twiceWeight + k));
  }
}

// Columns are done in as many strips as keep both rows of values and the tables in the first cache
// level: for each vector of pairs three vectors of values and weights, and its indices.
static ptrdiff_t LinearStrips(ptrdiff_t vectors, int loads) {
  constexpr ptrdiff_t kStripBytes = ptrdiff_t{32} << 10;
  const ptrdiff_t bytes = vectors * kVecBytes * (3 + (kHasBytePermute ? 1 : loads));
  return (bytes + kStripBytes - 1) / kStripBytes;
}

// False if shuffles do not serve this resize.
static bool ShuffledRows(const Byte* src, int srcStep, const LinearTables& t, const Blender& blend,
                         Value* first, Value* second, Byte* work) {
  const LinearGather plan = PlanLinearGather(t, kGatherShape, work);
  const ByteGather g = plan.pairs;
  if (g.loads == 0) return false;
  const ptrdiff_t vectors = plan.vectors, plain = plan.bare;
  const Value* const twiceWeight = plan.twiceWeight;
  const ptrdiff_t bytes = ptrdiff_t{t.width} * PixelBytes(t.layout);
  const ptrdiff_t strips = LinearStrips(vectors, g.loads);
  const int lastRow = t.y.first[t.height - 1] + t.y.neighbour;
  Byte copy[kPaddedRow] = {};
  WithLoads(g.loads, [&]<int kLoads>() {
    for (ptrdiff_t n = 0; n < strips; ++n) {
      const ptrdiff_t from = vectors * n / strips, to = vectors * (n + 1) / strips;
      const ptrdiff_t k = from * (kVecBytes / 2), end = to * (kVecBytes / 2);
      const ptrdiff_t bare = plain <= from ? 0 : plain < to ? plain - from : to - from;
      const ByteGather part = PartOf(g, from + bare);
      const ptrdiff_t picked = k + bare * (kVecBytes / 2);
      WalkRows(
          t, first, second,
          [&](int y, Value* out) {
            const Byte* row = RowAt(src, srcStep, y);
            const Byte* const next = RowAt(src, srcStep, y < lastRow ? y + 1 : y);
            if (g.isPadded) {
              CopyShortRow(row, g.readable, copy);
              row = copy;
            }
            if (bare > 0)
              InterpolateBytes(row + 2 * k, next + 2 * k, twiceWeight + k, bare, out + k);
            InterpolatePairs<kLoads>(part, row, next, twiceWeight + picked, to - from - bare,
                                     out + picked);
          },
          [&](const Value* upper, const Value* lower, int i) {
            blend.Part(upper, lower, i, k, end < bytes ? end : bytes);
          });
    }
  });
  return true;
}

#else

static void PlainRows(const Byte* src, int srcStep, Byte* dst, int dstStep, const LinearTables& t,
                      Value* first, Value* second) {
  const ptrdiff_t bytes = ptrdiff_t{t.width} * PixelBytes(t.layout);
  WalkRows(
      t, first, second,
      [&](int y, Value* out) { InterpolateRow(RowAt(src, srcStep, y), t, 0, out); },
      [&](const Value* upper, const Value* lower, int i) {
        Byte* const to = RowAt(dst, dstStep, i);
        const unsigned w = t.y.weight[i];
        for (ptrdiff_t k = 0; k < bytes; ++k)
          if (!DropsFourth(t) || k % 4 != 3)
            to[k] = static_cast<Byte>((lower[k] * w + upper[k] * (kWeightOne - w) + 524288) >> 20);
      });
}

#endif

void ResizeLinearRows_8u(const Byte* src, int srcStep, Byte* dst, int dstStep,
                         const LinearTables* tables, void* work) {
  const LinearTables& t = *tables;
  const ptrdiff_t padded = (ptrdiff_t{t.width} * PixelBytes(t.layout) + 63) / 64 * 64;
  auto* const first = static_cast<Value*>(work);
  Value* const second = first + padded;
#if QV_HAS_VECTORS
  Byte* const line = reinterpret_cast<Byte*>(second + padded);
  const Blender blend(dst, dstStep, t, line);
  if constexpr (kHasByteShuffle)
    if (ShuffledRows(src, srcStep, t, blend, first, second, line + padded)) return;
  WalkRows(
      t, first, second,
      [&](int y, Value* out) { InterpolateRow(RowAt(src, srcStep, y), t, kHalf, out); }, blend);
#else
  PlainRows(src, srcStep, dst, dstStep, t, first, second);
#endif
}

}  // namespace qv::QV_LEVEL
