// Nearest-neighbour rows of pixels of one to four bytes and of packed 4:2:2.
#include "kernels/level/Level.h"
#include "kernels/resize/ByteGather.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

static void PlainRow(const Byte* row, const NearestTables& t, Byte* dst) {
  if (t.layout != Layout::kPairs422) {
    const int bytes = PixelBytes(t.layout);
    for (ptrdiff_t j = 0; j < t.width; ++j)
      for (int c = 0; c < bytes; ++c) dst[bytes * j + c] = row[bytes * ptrdiff_t{t.x[j]} + c];
  } else {
    for (ptrdiff_t j = 0; j < t.width / 2; ++j) {
      const Byte* const chroma = row + 4 * ptrdiff_t{t.xChroma[j]};
      dst[4 * j] = row[2 * ptrdiff_t{t.x[2 * j]}];
      dst[4 * j + 1] = chroma[1];
      dst[4 * j + 2] = row[2 * ptrdiff_t{t.x[2 * j + 1]}];
      dst[4 * j + 3] = chroma[3];
    }
  }
}

// Calls fill(row, next, dst) for every destination row, `next` being the source row of the one
// below, except that rows of the same source row are copies.
template <class Fill>
QV_INLINE void FillRows(const Byte* src, int srcStep, Byte* dst, int dstStep,
                        const NearestTables& t, Fill fill) {
  const size_t bytes = static_cast<size_t>(t.width) * PixelBytes(t.layout);
  for (int i = 0; i < t.height; ++i) {
    Byte* const to = RowAt(dst, dstStep, i);
    const int below = t.y[i + 1 < t.height ? i + 1 : i];
    if (i > 0 && t.y[i] == t.y[i - 1])
      memcpy(to, RowAt(dst, dstStep, i - 1), bytes);
    else
      fill(RowAt(src, srcStep, t.y[i]), RowAt(src, srcStep, below), to);
  }
}

#if QV_HAS_VECTORS

template <int kLoads>
QV_INLINE void GatherRow(const ByteGather& g, const Byte* row, const Byte* next, Byte* dst,
                         ptrdiff_t bytes) {
  const ptrdiff_t vectors = bytes / kVecBytes, rest = bytes % kVecBytes;
  ForSteps<1, 2>(0, vectors, [&](ptrdiff_t v) QV_INLINE_LAMBDA {
    FetchAhead<kLoads>(g, next, v);
    Store(dst + v * kVecBytes, GatherBytes<kLoads>(g, row, v));
  });
  if (rest == 0) return;
  const Vec last = GatherBytes<kLoads>(g, row, vectors);
  if constexpr (kHasMaskedBytes)
    StorePart(dst + vectors * kVecBytes, last, FirstOf64(rest, 0));
  else
    Store(dst + bytes - kVecBytes, last);
}

// All odd or all even columns of one byte: packed. False if the columns are others.
static bool HalvedRows(const Byte* src, int srcStep, Byte* dst, int dstStep,
                       const NearestTables& t) {
  const ptrdiff_t width = t.width;
  const int odd = t.x[0] & 1;
  const ptrdiff_t left = t.x[0] - odd;
  if (width < kVecBytes || t.srcWidth < left + 2 * width) return false;
  for (ptrdiff_t j = 0; j < width; ++j)
    if (t.x[j] != t.x[0] + 2 * j) return false;
  const auto half = [=](const Byte* p) {
    return odd ? ShiftRight16<8>(Load(p)) : And(Load(p), Splat16(255));
  };
  FillRows(src, srcStep, dst, dstStep, t, [=](const Byte* row, const Byte* next, Byte* to) {
    CoverWithBlocks<kVecBytes, 2>(width, [=](ptrdiff_t j) {
      const ptrdiff_t k = left + 2 * j;
      for (int l = 0; l < 2 * kVecBytes; l += 64) __builtin_prefetch(next + k + l);
      Store(to + j, PackBytesInOrder(half(row + k), half(row + k + kVecBytes)));
    });
  });
  return true;
}

// Each column of one byte twice: unpacked, and stored twice where rows are the same as well. False
// if the columns are others.
static bool DoubledRows(const Byte* src, int srcStep, Byte* dst, int dstStep,
                        const NearestTables& t) {
  const ptrdiff_t width = t.width;
  if (width < 2 * kVecBytes) return false;
  for (ptrdiff_t j = 0; j < width; ++j)
    if (t.x[j] != j / 2) return false;
  for (int i = 0; i < t.height; ++i) {
    const Byte* const row = RowAt(src, srcStep, t.y[i]);
    Byte* const first = RowAt(dst, dstStep, i);
    if (i + 1 < t.height && t.y[i + 1] == t.y[i]) ++i;
    Byte* const last = RowAt(dst, dstStep, i);
    CoverWithBlocks<kVecBytes>(width / 2, [=](ptrdiff_t j) {
      const Vec v = DealHalves(Load(row + j));
      const Vec low = InterleaveLow8(v, v), high = InterleaveHigh8(v, v);
      Store(first + 2 * j, low);
      Store(first + 2 * j + kVecBytes, high);
      Store(last + 2 * j, low);
      Store(last + 2 * j + kVecBytes, high);
    });
    first[width - 1] = last[width - 1] = row[(width - 1) / 2];
  }
  return true;
}

// False if shuffles do not serve this resize.
static bool ShuffledRows(const Byte* src, int srcStep, Byte* dst, int dstStep,
                         const NearestTables& t, void* work) {
  const ptrdiff_t bytes = ptrdiff_t{t.width} * PixelBytes(t.layout);
  const ByteGather g = PlanNearestGather(t, kGatherShape, work);
  if (g.loads == 0) return false;
  WithLoads(g.loads, [&]<int kLoads>() {
    if (g.isPadded) {
      Byte copy[kPaddedRow] = {};
      FillRows(src, srcStep, dst, dstStep, t, [&](const Byte* row, const Byte*, Byte* to) {
        CopyShortRow(row, g.readable, copy);
        GatherRow<kLoads>(g, copy, copy, to, bytes);
      });
    } else {
      FillRows(src, srcStep, dst, dstStep, t, [&](const Byte* row, const Byte* next, Byte* to) {
        GatherRow<kLoads>(g, row, next, to, bytes);
      });
    }
  });
  return true;
}

#endif

void NearestRows_8u(const Byte* src, int srcStep, Byte* dst, int dstStep,
                    const NearestTables* tables, [[maybe_unused]] void* work) {
#if QV_HAS_VECTORS
  if (tables->layout == Layout::kGrey && (HalvedRows(src, srcStep, dst, dstStep, *tables) ||
                                          DoubledRows(src, srcStep, dst, dstStep, *tables)))
    return;
  if constexpr (kHasByteShuffle)
    if (ShuffledRows(src, srcStep, dst, dstStep, *tables, work)) return;
#endif
  FillRows(src, srcStep, dst, dstStep, *tables,
           [&](const Byte* row, const Byte*, Byte* to) { PlainRow(row, *tables, to); });
}

}  // namespace qv::QV_LEVEL
