// Four-byte pixels whose colours are weighted by their alpha, in single precision.
//
// An alpha that is written is at least half a unit, and what C and A of it err by is some 2^-23 of
// the largest terms, 255 * 255 and 255, for each tap: a colour errs by less than a hundredth of a
// unit even where terms of both signs leave that little of them.
#include "kernels/level/Level.h"
#include "kernels/resample/ResampleRows.h"

namespace qv::QV_LEVEL {

namespace {

// Sums are assigned one by one: where registers are longer than a float, that rounds them.
QV_INLINE void AddProduct(float weight, float value, float* sum) {
  const float product = weight * value;
  *sum = *sum + product;
}

// A source row as C and A, and each destination pixel's sums of them.
void PlainAcross(const Byte* row, NamedPixels named, const FloatTaps& x, int width, float* line,
                 float* out) {
  for (ptrdiff_t k = 0; k < ptrdiff_t{4} * named.count; ++k)
    line[k] = static_cast<float>(k % 4 == 3 ? row[k] : row[k] * row[k | 3]);
  for (ptrdiff_t j = 0; j < width; ++j)
    for (int c = 0; c < 4; ++c) {
      const float* const from = line + 4 * ptrdiff_t{x.first[j] - named.first} + c;
      float sum = 0;
      for (ptrdiff_t t = 0; t < x.taps; ++t)
        AddProduct(x.weights[j * x.taps + t], from[4 * t], &sum);
      out[4 * j + c] = sum;
    }
}

Byte ToByte(float x) {
  const float half = x + 0.5f;
  return half < 255 ? (half > 0 ? static_cast<Byte>(half) : Byte{0}) : Byte{255};
}

void PlainPixel(const float* sums, Byte* dst) {
  dst[3] = ToByte(sums[3]);
  for (int c = 0; c < 3; ++c) {
    const float quotient = sums[c] / sums[3];
    dst[c] = dst[3] == 0 ? Byte{0} : ToByte(quotient);
  }
}

// The rows of sums that are kept, as many as a destination row takes.
struct Ring {
  float* base;
  ptrdiff_t values;  // of a row
  int rows;

  QV_INLINE float* operator()(int row) const { return base + values * (row % rows); }
};

void PlainDown(const Ring& ring, const FloatTaps& y, int i, int width, Byte* dst) {
  for (ptrdiff_t j = 0; j < width; ++j) {
    float sums[4] = {};
    for (int t = 0; t < y.taps; ++t)
      for (int c = 0; c < 4; ++c)
        AddProduct(y.weights[ptrdiff_t{i} * y.taps + t], ring(y.first[i] + t)[4 * j + c],
                   sums + c);
    PlainPixel(sums, dst + 4 * j);
  }
}

}  // namespace

IppStatus WeightedRows_8u_C4(const Byte* src, int srcStep, Byte* dst, int dstStep,
                             const WeightedTables* tables, void* scratch) {
  const WeightedTables& t = *tables;
  const NamedPixels named = NamedBy(t.x.first, t.width, t.x.taps);
  auto* const line = static_cast<float*>(scratch);
  const Ring ring = {line + 4 * ((ptrdiff_t{named.count} + 15) / 16 * 16),
                     4 * ((ptrdiff_t{t.width} + 15) / 16 * 16), t.y.taps};
  int next = 0;  // source rows before this one are in the ring or not needed any more
  for (int i = 0; i < t.height; ++i) {
    if (next < t.y.first[i]) next = t.y.first[i];
    for (; next < t.y.first[i] + t.y.taps; ++next)
      PlainAcross(RowAt(src, srcStep, next) + 4 * ptrdiff_t{named.first}, named, t.x, t.width, line,
                  ring(next));
    PlainDown(ring, t.y, i, t.width, RowAt(dst, dstStep, i));
  }
  return StatusOk;
}

IppStatus LimitToAlpha_8u_C4(Byte* srcDst, int srcDstStep, IppiSize size) {
  for (ptrdiff_t i = 0; i < size.height; ++i) {
    Byte* const row = RowAt(srcDst, srcDstStep, i);
    for (ptrdiff_t k = 0; k < ptrdiff_t{4} * size.width; ++k)
      if (row[k] > row[k | 3]) row[k] = row[k | 3];
  }
  return StatusOk;
}

bool IsOpaque_8u_C4(const Byte* row, ptrdiff_t pixels) {
  Byte all = 255;
  for (ptrdiff_t j = 0; j < pixels; ++j) all &= row[4 * j + 3];
  return all == 255;
}

}  // namespace qv::QV_LEVEL
