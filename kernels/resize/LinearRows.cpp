// Linear rows: each source row interpolated once into 16-bit values with 6 fractional bits, two of
// which make a destination row.
#include "kernels/level/Level.h"
#include "kernels/resize/LinearVectors.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

// One source row: h = (p1 * w + p0 * (16384 - w) + 128) >> 8.
static void InterpolateRow(const Byte* row, const LinearTables& t, Value* out) {
  ForEachValue(t, [&](ptrdiff_t k, LinearSides s) {
    out[k] = static_cast<Value>(
        (row[s.right] * s.weight + row[s.left] * (kWeightOne - s.weight) + 128) >> 8);
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

// The rows of the destination, each made where it lies or, if the fourth bytes of its pixels are to
// stay, by way of a line of its own.
class Destination {
 public:
  Destination(Byte* dst, int dstStep, const LinearTables& t, Byte* line)
      : dst_(dst), dstStep_(dstStep), t_(t), line_(line) {}

  ptrdiff_t RowBytes() const { return ptrdiff_t{t_.width} * PixelBytes(t_.layout); }

  // Calls make(to) to write bytes `first`, a multiple of 4, to end - 1 of row i, the first of them
  // to `to`.
  template <class Make>
  QV_INLINE void Row(int i, ptrdiff_t first, ptrdiff_t end, Make make) const {
    Byte* const row = RowAt(dst_, dstStep_, i) + first;
    make(DropsFourth(t_) ? line_ : row);
    if (DropsFourth(t_)) StoreThirds(row, end - first);
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

// The source; rows that are shorter than the loads of a gather are copied to where these may read.
class SourceRows {
 public:
  SourceRows(const Byte* src, int srcStep, const ByteGather& g)
      : src_(src), srcStep_(srcStep), g_(g), copies_{} {}

  // Valid until two rows further.
  QV_INLINE const Byte* operator()(int y) {
    const Byte* const row = RowAt(src_, srcStep_, y);
    if (!g_.isPadded) return row;
    Byte* const copy = copies_[y & 1];
    CopyShortRow(row, g_.readable, copy);
    return copy;
  }
  // From a row to one further down, which is read next.
  QV_INLINE ptrdiff_t Ahead(int rows) const {
    return g_.isPadded ? 0 : rows * static_cast<ptrdiff_t>(srcStep_);
  }

 private:
  const Byte* src_;
  int srcStep_;
  const ByteGather& g_;
  Byte copies_[2][kPaddedRow];
};

// Whether no source row serves two destination rows, as in reductions to a half or less.
static bool AreRowsApart(const LinearTables& t) {
  for (int i = 1; i < t.height; ++i)
    if (t.y.first[i] <= t.y.first[i - 1] + t.y.neighbour) return false;
  return true;
}

// The first pixels of a row that BlendTriples can make.
static ptrdiff_t DoubledTriples(const LinearTables& t) {
  if (t.layout != Layout::kTriples || t.x.neighbour != 1) return 0;
  ptrdiff_t j = 0;
  while (j < t.width && t.x.first[j] == 2 * j && t.x.weight[j] < kWeightOne) ++j;
  return j;
}

// Where it would be used only once, no source row is kept as values.
template <int kLoads>
static void RowsAtOnce(SourceRows& rows, const Destination& dst, const LinearTables& t,
                       const LinearGather& plan) {
  const ptrdiff_t bytes = dst.RowBytes(), bare = plan.bare / 2 * 2;
  const ptrdiff_t doubled = kHasBytePermute ? DoubledTriples(t) : 0;
  for (int i = 0; i < t.height; ++i) {
    const int y = t.y.first[i];
    const Byte *const upper = rows(y), *const lower = rows(y + t.y.neighbour);
    const ptrdiff_t ahead = rows.Ahead(i + 1 < t.height ? t.y.first[i + 1] - y : 0);
    dst.Row(i, 0, bytes, [&](Byte* to) QV_INLINE_LAMBDA {
      const int w = t.y.weight[i];
      ptrdiff_t done = bare;
      if (bare > 0) BlendVectors<0>(plan, upper, lower, ahead, w, 0, bare, to, bytes);
      if constexpr (kHasBytePermute)
        if (doubled > 0)
          done = 3 * BlendTriples(t.x.weight, upper, lower, ahead, w, doubled, to) / kVecBytes * 2;
      if (done < plan.vectors)
        BlendVectors<kLoads>(plan, upper, lower, ahead, w, done, plan.vectors, to, bytes);
    });
  }
}

// Columns are done in as many strips as keep both rows of values and the tables in the first cache
// level: for each vector of pairs three vectors of values and weights, and its indices.
static ptrdiff_t LinearStrips(ptrdiff_t vectors, int loads) {
  constexpr ptrdiff_t kStripBytes = ptrdiff_t{32} << 10;
  const ptrdiff_t bytes = vectors * kVecBytes * (3 + (kHasBytePermute ? 1 : loads));
  return (bytes + kStripBytes - 1) / kStripBytes;
}

template <int kLoads>
static void RowsByValues(SourceRows& rows, const Destination& dst, const LinearTables& t,
                         const LinearGather& plan, Value* first, Value* second) {
  const ptrdiff_t bytes = dst.RowBytes();
  const ptrdiff_t strips = LinearStrips(plan.vectors, kLoads);
  const int lastRow = t.y.first[t.height - 1] + t.y.neighbour;
  for (ptrdiff_t n = 0; n < strips; ++n) {
    const ptrdiff_t from = plan.vectors * n / strips, end = plan.vectors * (n + 1) / strips;
    const ptrdiff_t picked = plan.bare <= from ? from : plan.bare < end ? plan.bare : end;
    const ptrdiff_t k = from * (kVecBytes / 2), past = end * (kVecBytes / 2);
    const ptrdiff_t endByte = past < bytes ? past : bytes;
    WalkRows(
        t, first, second,
        [&](int y, Value* out) {
          const Byte* const row = rows(y);
          const ptrdiff_t ahead = rows.Ahead(y < lastRow);
          if (from < picked) InterpolateVectors<0>(plan, row, ahead, from, picked, out);
          if (picked < end) InterpolateVectors<kLoads>(plan, row, ahead, picked, end, out);
        },
        [&](const Value* upper, const Value* lower, int i) {
          dst.Row(i, k, endByte, [&](Byte* to) {
            BlendValues(upper + k, lower + k, t.y.weight[i], to, endByte - k);
          });
        });
  }
}

// False if shuffles do not serve this resize.
static bool ShuffledRows(const Byte* src, int srcStep, const LinearTables& t,
                         const Destination& dst, Value* first, Value* second, Byte* work) {
  const LinearGather plan = PlanLinearGather(t, kGatherShape, work);
  if (plan.pairs.loads == 0) return false;
  SourceRows rows(src, srcStep, plan.pairs);
  const bool apart = AreRowsApart(t);
  WithLoads(plan.pairs.loads, [&]<int kLoads>() {
    if (apart)
      RowsAtOnce<kLoads>(rows, dst, t, plan);
    else
      RowsByValues<kLoads>(rows, dst, t, plan, first, second);
  });
  return true;
}

#else

static void PlainRows(const Byte* src, int srcStep, Byte* dst, int dstStep, const LinearTables& t,
                      Value* first, Value* second) {
  const ptrdiff_t bytes = ptrdiff_t{t.width} * PixelBytes(t.layout);
  WalkRows(
      t, first, second,
      [&](int y, Value* out) { InterpolateRow(RowAt(src, srcStep, y), t, out); },
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
  const Destination rows(dst, dstStep, t, line);
  if constexpr (kHasByteShuffle)
    if (ShuffledRows(src, srcStep, t, rows, first, second, line + padded)) return;
  const ptrdiff_t bytes = rows.RowBytes();
  WalkRows(
      t, first, second,
      [&](int y, Value* out) { InterpolateRow(RowAt(src, srcStep, y), t, out); },
      [&](const Value* upper, const Value* lower, int i) {
        rows.Row(i, 0, bytes, [&](Byte* to) {
          BlendValues(upper, lower, t.y.weight[i], to, bytes);
        });
      });
#else
  PlainRows(src, srcStep, dst, dstStep, t, first, second);
#endif
}

}  // namespace qv::QV_LEVEL
