// Four-byte pixels whose colours are weighted by their alpha, in single precision.
//
// An alpha that is written is at least half a unit, and what C and A of it err by is some 2^-23 of
// the largest terms, 255 * 255 and 255, for each tap: a colour errs by less than a hundredth of a
// unit even where terms of both signs leave that little of them.
#include "kernels/level/Level.h"
#include "kernels/level/PlainFloats.h"
#include "kernels/resample/ResampleRows.h"

namespace qv::QV_LEVEL {

namespace {

// The rows of sums that are kept, as many as a destination row takes.
struct Ring {
  float* base;
  ptrdiff_t values;  // of a row
  int rows;

  QV_INLINE float* operator()(int row) const { return base + values * (row % rows); }
};

#if QV_HAS_VECTORS

// Source rows go through the filter along x side by side, each in a 128-bit lane of its own.
constexpr int kRows = kLanes128;
static_assert(kRows <= kMostRows);

// A mask of the last 32 bits of each lane.
constexpr ByteTable kIsAlpha = MakeByteTable([](int i) { return i % 16 < 12 ? 0 : 255; });

// Four pixels of each row, pixel by pixel.
QV_INLINE void MixPixels(const Byte* const* rows, ptrdiff_t at, Byte* mixed) {
  Vec128 v[kRows];
  for (int r = 0; r < kRows; ++r) v[r] = Load128(rows[r] + at);
  if constexpr (kRows == 1) {
    Store128(mixed, v[0]);
  } else if constexpr (kRows == 2) {
    Store128(mixed, InterleaveLow32(v[0], v[1]));
    Store128(mixed + 16, InterleaveHigh32(v[0], v[1]));
  } else {
    const Vec128 a = InterleaveLow32(v[0], v[1]), b = InterleaveLow32(v[2], v[3]);
    const Vec128 c = InterleaveHigh32(v[0], v[1]), d = InterleaveHigh32(v[2], v[3]);
    Store128(mixed, InterleaveLow64(a, b));
    Store128(mixed + 16, InterleaveHigh64(a, b));
    Store128(mixed + 32, InterleaveLow64(c, d));
    Store128(mixed + 48, InterleaveHigh64(c, d));
  }
}

// C and A of four pixels.
QV_INLINE void WeightFour(const Byte* const* rows, ptrdiff_t at, float* line) {
  Byte mixed[16 * kRows];
  MixPixels(rows, at, mixed);
  for (int k = 0; k < 4; ++k) {
    const Floats values = ToFloats(LoadBytesAs32(mixed + 4 * kRows * k));
    const Vec alphas = AsInts(ShuffleFloats<3, 3, 3, 3>(values));
    const Vec factors = Select(Load(kIsAlpha.b), AsInts(SplatFloat(1)), alphas);
    Store(line + kLanes32 * k, AsInts(MulFloat(values, AsFloats(factors))));
  }
}

void WeightColours(const Byte* const* rows, ptrdiff_t pixels, float* line) {
  ptrdiff_t j = 0;
  for (; j + 4 <= pixels; j += 4) WeightFour(rows, 4 * j, line + kLanes32 * j);
  if (j == pixels) return;
  Byte copies[kRows][16] = {};
  const Byte* last[kRows];
  for (int r = 0; r < kRows; ++r) {
    memcpy(copies[r], rows[r] + 4 * j, static_cast<size_t>(4 * (pixels - j)));
    last[r] = copies[r];
  }
  WeightFour(last, 0, line + kLanes32 * j);
}

void FilterAcross(const Byte* const* rows, NamedPixels named, const FloatTaps& x, int width,
                  float* line, float* const* out) {
  WeightColours(rows, named.count, line);
  for (ptrdiff_t j = 0; j < width; ++j) {
    const float* const from = line + kLanes32 * ptrdiff_t{x.first[j] - named.first};
    const float* const weights = x.weights + j * x.taps;
    Floats sum = SplatFloat(0);
    for (ptrdiff_t t = 0; t < x.taps; ++t)
      sum = AddFloat(sum, MulFloat(SplatFloat(weights[t]), LoadFloats(from + kLanes32 * t)));
    const Vec lanes = AsInts(sum);
    Store128(out[0] + 4 * j, LowLane(lanes));
    if constexpr (kRows >= 2) Store128(out[1] + 4 * j, Lane<1>(lanes));
    if constexpr (kRows == 4) {
      Store128(out[2] + 4 * j, Lane<2>(lanes));
      Store128(out[3] + 4 * j, Lane<3>(lanes));
    }
  }
}

// Sums as alpha, and as colours where that is above 0; not limited to a byte yet.
QV_INLINE Vec DivideColours(Floats sums) {
  const Floats half = SplatFloat(0.5f), alphas = ShuffleFloats<3, 3, 3, 3>(sums);
  const Vec alpha = TruncatedInts(AddFloat(alphas, half));
  const Vec colour = TruncatedInts(AddFloat(DivFloat(sums, alphas), half));
  const Vec isAbove0 = ShiftRightSigned32<31>(Sub32(Zero(), alpha));
  return Select(Load(kIsAlpha.b), alpha, And(colour, isAbove0));
}

constexpr ptrdiff_t kDownPixels = 16;

// kDownPixels pixels of a destination row.
QV_INLINE void FilterPixels(const Ring& ring, const float* weights, int first, int taps,
                            ptrdiff_t pixel, Byte* dst) {
  constexpr int kVectors = 4 * kDownPixels / kLanes32;
  Floats sums[kVectors];
  for (Floats& sum : sums) sum = SplatFloat(0);
  int row = first % ring.rows;
  for (int t = 0; t < taps; ++t) {
    const float* const from = ring(row) + 4 * pixel;
    const Floats w = SplatFloat(weights[t]);
    for (int v = 0; v < kVectors; ++v)
      sums[v] = AddFloat(sums[v], MulFloat(w, LoadFloats(from + v * kLanes32)));
    if (++row == ring.rows) row = 0;
  }
  int values[4 * kDownPixels];
  for (int v = 0; v < kVectors; ++v) Store(values + v * kLanes32, DivideColours(sums[v]));
  for (int k = 0; k < 4 * kDownPixels; k += 16)
    Store128(dst + k, PackUnsigned16(PackSigned32(Load128(values + k), Load128(values + k + 4)),
                                     PackSigned32(Load128(values + k + 8),
                                                  Load128(values + k + 12))));
}

void FilterDown(const Ring& ring, const FloatTaps& y, int i, ptrdiff_t width, Byte* dst) {
  const float* const weights = y.weights + ptrdiff_t{i} * y.taps;
  ptrdiff_t j = 0;
  for (; j + kDownPixels <= width; j += kDownPixels)
    FilterPixels(ring, weights, y.first[i], y.taps, j, dst + 4 * j);
  if (j == width) return;
  Byte last[4 * kDownPixels];
  FilterPixels(ring, weights, y.first[i], y.taps, j, last);
  memcpy(dst + 4 * j, last, static_cast<size_t>(4 * (width - j)));
}

// The limit of four pixels' colours, and of their alphas.
QV_INLINE Vec LimitColours(Vec pixels) {
  Vec alpha = ShiftRight32<24>(pixels);
  alpha = Or(alpha, ShiftLeft32<8>(alpha));
  alpha = Or(alpha, ShiftLeft32<16>(alpha));
  return Sub8(pixels, SubSaturated8(pixels, alpha));
}

#else

constexpr int kRows = 1;

QV_INLINE void AddProduct(float weight, float value, float* sum) {
  *sum = RoundToFloat(*sum + RoundToFloat(weight * value));
}

// A source row as C and A, and each destination pixel's sums of them.
void FilterAcross(const Byte* const* rows, NamedPixels named, const FloatTaps& x, int width,
                  float* line, float* const* out) {
  const Byte* const row = rows[0];
  for (ptrdiff_t k = 0; k < ptrdiff_t{4} * named.count; ++k)
    line[k] = static_cast<float>(k % 4 == 3 ? row[k] : row[k] * row[k | 3]);
  for (ptrdiff_t j = 0; j < width; ++j)
    for (int c = 0; c < 4; ++c) {
      const float* const from = line + 4 * ptrdiff_t{x.first[j] - named.first} + c;
      float sum = 0;
      for (ptrdiff_t t = 0; t < x.taps; ++t)
        AddProduct(x.weights[j * x.taps + t], from[4 * t], &sum);
      out[0][4 * j + c] = sum;
    }
}

Byte ToByte(float x) {
  const float half = RoundToFloat(x + 0.5f);
  return half < 255 ? (half > 0 ? static_cast<Byte>(half) : Byte{0}) : Byte{255};
}

void PlainPixel(const float* sums, Byte* dst) {
  dst[3] = ToByte(sums[3]);
  for (int c = 0; c < 3; ++c) {
    const float quotient = RoundToFloat(sums[c] / sums[3]);
    dst[c] = dst[3] == 0 ? Byte{0} : ToByte(quotient);
  }
}

void FilterDown(const Ring& ring, const FloatTaps& y, int i, int width, Byte* dst) {
  for (ptrdiff_t j = 0; j < width; ++j) {
    float sums[4] = {};
    for (int t = 0; t < y.taps; ++t)
      for (int c = 0; c < 4; ++c)
        AddProduct(y.weights[ptrdiff_t{i} * y.taps + t], ring(y.first[i] + t)[4 * j + c],
                   sums + c);
    PlainPixel(sums, dst + 4 * j);
  }
}

#endif

bool IsPieceOpaque(const Byte* row, ptrdiff_t pixels) {
  Byte all = 255;
  ptrdiff_t k = 0;
#if QV_HAS_VECTORS
  Vec both = Splat8(255);
  for (; k + kVecBytes <= 4 * pixels; k += kVecBytes) both = And(both, Load(row + k));
  Byte bytes[kVecBytes];
  Store(bytes, both);
  for (int b = 3; b < kVecBytes; b += 4) all &= bytes[b];
#endif
  for (; k < 4 * pixels; k += 4) all &= row[k + 3];
  return all == 255;
}

}  // namespace

IppStatus WeightedRows_8u_C4(const Byte* src, int srcStep, Byte* dst, int dstStep,
                             const WeightedTables* tables, void* scratch) {
  const WeightedTables& t = *tables;
  const NamedPixels named = NamedBy(t.x.first, t.width, t.x.taps);
  auto* const line = static_cast<float*>(scratch);
  const Ring ring = {line + 4 * kMostRows * PaddedLine(named.count),
                     static_cast<ptrdiff_t>(4 * PaddedLine(t.width)),
                     t.y.taps + kMostRows - 1};
  const int last = t.y.first[t.height - 1] + t.y.taps - 1;
  int next = 0;  // source rows before this one are in the ring or not needed any more
  for (int i = 0; i < t.height; ++i) {
    if (next < t.y.first[i]) next = t.y.first[i];
    for (; next < t.y.first[i] + t.y.taps; next += kRows) {
      const Byte* rows[kRows];
      float* out[kRows];
      for (int r = 0; r < kRows; ++r) {
        const int row = next + r < last ? next + r : last;
        rows[r] = RowAt(src, srcStep, row) + 4 * ptrdiff_t{named.first};
        out[r] = ring(next + r);
      }
      FilterAcross(rows, named, t.x, t.width, line, out);
    }
    FilterDown(ring, t.y, i, t.width, RowAt(dst, dstStep, i));
  }
  return StatusOk;
}

IppStatus LimitToAlpha_8u_C4(Byte* srcDst, int srcDstStep, IppiSize size) {
  const ptrdiff_t bytes = ptrdiff_t{4} * size.width;
  for (ptrdiff_t i = 0; i < size.height; ++i) {
    Byte* const row = RowAt(srcDst, srcDstStep, i);
    ptrdiff_t k = 0;
#if QV_HAS_VECTORS
    for (; k + kVecBytes <= bytes; k += kVecBytes) Store(row + k, LimitColours(Load(row + k)));
#endif
    for (; k < bytes; ++k)
      if (row[k] > row[k | 3]) row[k] = row[k | 3];
  }
  return StatusOk;
}

bool IsOpaque_8u_C4(const Byte* row, ptrdiff_t pixels) {
  constexpr ptrdiff_t kPiece = 256;  // most rows that are not opaque show it early
  for (ptrdiff_t j = 0; j < pixels; j += kPiece)
    if (!IsPieceOpaque(row + 4 * j, pixels - j < kPiece ? pixels - j : kPiece)) return false;
  return true;
}

}  // namespace qv::QV_LEVEL
