// Linear rows by vectors: values of a source row, and destination bytes from two of them. Its loops
// are functions of their own: inlined into all that calls them they were up to a tenth slower.
#ifndef QV_KERNELS_RESIZE_LINEARVECTORS_H
#define QV_KERNELS_RESIZE_LINEARVECTORS_H

#include "kernels/level/Level.h"
#include "kernels/resize/ByteGather.h"
#include "kernels/resize/ResizeRows.h"

namespace qv::QV_LEVEL {

using Value = unsigned short;

#if QV_HAS_VECTORS

namespace {

// h of a vector of values, from pairs of bytes (p0, p1) and twice the weight, below 32768:
//   h = 64 * p0 + (((p1 - p0) * w + 128) >> 8),
// since 16384 * p0 has no low bits; and the second term is the rounded product of 64 * (p1 - p0)
// and 2 * w.
QV_INLINE Vec InterpolateVector(Vec pairs, Vec twiceWeight) {
  const Vec difference = MulAddBytes(pairs, Splat16(64 * 256 + (256 - 64)));
  return Add16(MulAddBytes(pairs, Splat16(64)), MulRounded15(difference, twiceWeight));
}

// (lower * w + upper * (16384 - w) + 2^19) >> 20 in 16-bit lanes. Let u be the nearer row, whose
// weight is not the smaller one, d the other and w its weight, at most 8192. The sum is
// 16384 * u + (d - u) * w + 2^19, and dropping its low 14 bits first changes nothing:
//   (u + floor((d - u) * w / 16384) + 32) >> 6.
// The floor is the high half of (u - d) * (-4 * w), whose factors are within -16320 .. 16320 and
// -32768 .. 0; the rounded shift is a rounded product as well.
class RowBlend {
 public:
  QV_INLINE explicit RowBlend(int weight)
      : upperIsNearer_(weight <= kWeightOne / 2),
        factor_(Splat16(-4 * (upperIsNearer_ ? weight : kWeightOne - weight))) {}

  template <class T> QV_INLINE const T* Near(const T* upper, const T* lower) const {
    return upperIsNearer_ ? upper : lower;
  }
  template <class T> QV_INLINE const T* Far(const T* upper, const T* lower) const {
    return upperIsNearer_ ? lower : upper;
  }
  QV_INLINE Vec operator()(Vec near, Vec far) const {
    const Vec sum = Add16(near, MulHighSigned16(Sub16(near, far), factor_));
    if constexpr (kHasByteShuffle) return MulRounded15(sum, Splat16(1 << 9));
    return ShiftRight16<6>(Add16(sum, Splat16(32)));  // there the product is several operations
  }

 private:
  bool upperIsNearer_;
  Vec factor_;
};

// Of a row of `bytes` bytes those from k on: a vector, or as many as there are.
QV_INLINE void StoreFrom(Byte* row, ptrdiff_t k, ptrdiff_t bytes, Vec v) {
  if (k + kVecBytes <= bytes) {
    Store(row + k, v);
  } else if constexpr (kHasMaskedBytes) {
    StorePart(row + k, v, FirstOf64(bytes, k));
  } else {
    Byte last[kVecBytes];
    Store(last, v);
    memcpy(row + k, last, static_cast<size_t>(bytes - k));
  }
}

// A destination row from two rows of values.
__attribute__((noinline)) inline void BlendValues(const Value* upper, const Value* lower,
                                                  int weight, Byte* dst, ptrdiff_t bytes) {
  const RowBlend blend(weight);
  const Value* const near = blend.Near(upper, lower);
  const Value* const far = blend.Far(upper, lower);
  const auto half = [&](ptrdiff_t k) QV_INLINE_LAMBDA {
    return blend(Load(near + k), Load(far + k));
  };
  const auto whole = [&](ptrdiff_t k) QV_INLINE_LAMBDA {
    return PackBytesInOrder(half(k), half(k + kVecBytes / 2));
  };
  const ptrdiff_t k = ForSteps<kVecBytes, 2>(
      0, bytes, [&](ptrdiff_t i) QV_INLINE_LAMBDA { Store(dst + i, whole(i)); });
  if (k < bytes) StoreFrom(dst, k, bytes, whole(k));
}

// Vector `v` of the values of a row, whose pairs are picked, or with no loads the row's bytes as
// they are. Meanwhile the bytes `ahead` further are fetched, if at all.
template <int kLoads, bool kFetches = true>
QV_INLINE Vec ValuesOf(const LinearGather& plan, const Byte* row, ptrdiff_t ahead, ptrdiff_t v) {
  const Vec weight = Load(plan.twiceWeight + v * (kVecBytes / 2));
  if constexpr (kLoads == 0) {
    const Byte* const pairs = row + v * kVecBytes;
    if constexpr (kFetches) __builtin_prefetch(pairs + ahead);
    return InterpolateVector(Load(pairs), weight);
  } else {
    if constexpr (kFetches) FetchAhead<kLoads>(plan.pairs, row + ahead, v);
    return InterpolateVector(GatherBytes<kLoads>(plan.pairs, row, v), weight);
  }
}

// Vectors `from` to end - 1 of a row of values. The plan is copied, so that the compiler need not
// read it again after every store. Two vectors at a time: if a cache line has the bytes of both,
// the first one's request is enough.
template <int kLoads>
__attribute__((noinline)) void InterpolateVectors(const LinearGather& shared, const Byte* row,
                                                  ptrdiff_t ahead, ptrdiff_t from, ptrdiff_t end,
                                                  Value* out) {
  const LinearGather plan = shared;
  constexpr bool kFetchesBoth = 2 * kVecBytes * (kLoads > 1 ? kLoads : 1) > 64;
  const auto put = [&](ptrdiff_t v, Vec values) QV_INLINE_LAMBDA {
    Store(out + v * (kVecBytes / 2), values);
  };
  const ptrdiff_t last = ForSteps<2, 1>(from, end, [&](ptrdiff_t v) QV_INLINE_LAMBDA {
    put(v, ValuesOf<kLoads>(plan, row, ahead, v));
    put(v + 1, ValuesOf<kLoads, kFetchesBoth>(plan, row, ahead, v + 1));
  });
  if (last < end) put(last, ValuesOf<kLoads>(plan, row, ahead, last));
}

// The same vectors of a destination row, from both source rows at once. `from` is even.
template <int kLoads>
__attribute__((noinline)) void BlendVectors(const LinearGather& shared, const Byte* upper,
                                            const Byte* lower, ptrdiff_t ahead, int weight,
                                            ptrdiff_t from, ptrdiff_t end, Byte* dst,
                                            ptrdiff_t bytes) {
  const LinearGather plan = shared;
  const RowBlend blend(weight);
  const Byte* const near = blend.Near(upper, lower);
  const Byte* const far = blend.Far(upper, lower);
  const auto half = [&](ptrdiff_t v) QV_INLINE_LAMBDA {
    return blend(ValuesOf<kLoads>(plan, near, ahead, v), ValuesOf<kLoads>(plan, far, ahead, v));
  };
  for (ptrdiff_t v = from; v < end; v += 2)
    StoreFrom(dst, v * (kVecBytes / 2), bytes,
              PackBytesInOrder(half(v), half(v + 1 < end ? v + 1 : v)));
}

// The first pixels of a row of three bytes a pixel, where their samples begin at twice their place,
// as in most of a row that becomes half as long, and weights are below kWeightOne: twenty at once,
// without the loads of a plan. Returns how many were made of such `pixels`; two are left at least,
// and up to four bytes after the others are written as well. Only where there are byte
// permutations and masked loads.
inline ptrdiff_t BlendTriples(const Value* weights, const Byte* upper, const Byte* lower,
                              ptrdiff_t ahead, int weight, ptrdiff_t pixels, Byte* dst) {
  // Each lane a pair of bytes three apart, each weight in three lanes, and the low bytes of lanes.
  static constexpr ByteTable kPairs =
      MakeByteTable([](int i) { return (6 * (i / 6) + i / 2 % 3 + i % 2 * 3) & 63; });
  static constexpr ByteTable kThrice = MakeByteTable([](int i) { return i / 6 * 2 + i % 2; });
  static constexpr ByteTable kJoin =
      MakeByteTable([](int i) { return i < 30 ? 2 * i : 64 + 2 * (i - 30); });
  const Vec pairs = Load(kPairs.b), thrice = Load(kThrice.b), join = Load(kJoin.b);
  const RowBlend blend(weight);
  const Byte* const near = blend.Near(upper, lower);
  const Byte* const far = blend.Far(upper, lower);
  ptrdiff_t x = 0;
  for (; x + 22 <= pixels; x += 20) {
    const Vec twice = ShiftLeft16<1>(LoadPart(weights + x, FirstOf64(40, 0)));
    const auto ten = [&](ptrdiff_t k, Vec index) QV_INLINE_LAMBDA {
      const Vec w = PermuteBytes(twice, index);
      const auto values = [&](const Byte* row) QV_INLINE_LAMBDA {
        __builtin_prefetch(row + ahead + k);
        return InterpolateVector(PermuteBytes(Load(row + k), pairs), w);
      };
      return blend(values(near), values(far));
    };
    const Vec first = ten(6 * x, thrice), second = ten(6 * x + 60, Add16(thrice, Splat8(20)));
    Store(dst + 3 * x, PermuteBytes2(first, join, second));
  }
  return x;
}

}  // namespace

#endif

}  // namespace qv::QV_LEVEL

#endif
