#include "kernels/resize/GatherPlan.h"

#include <string.h>

namespace qv {

namespace {

// The output of a gather: byte k is byte offset[k] of a row of `readable` bytes. There are offsets
// for whole vectors, and past them is room for what is planned: a position for each lane and an
// index for each byte and load.
struct Picks {
  int* offset;
  ptrdiff_t count, readable;
  bool overlapsLast;  // the last vector is the one that ends with the last byte

  ptrdiff_t Vectors(int vectorBytes) const { return (count + vectorBytes - 1) / vectorBytes; }
};

// Bytes from a component's to its next: at most two samples of four components.
constexpr int kTurn = 8;

template <int kLaneBytes>
class GatherPlan {
 public:
  GatherPlan(const Picks& picks, const GatherShape& shape)
      : picks_(picks), shape_(shape), lanes_(shape.vectorBytes / kLaneBytes),
        vectors_(picks.Vectors(shape.vectorBytes)),
        at_(picks.offset + vectors_ * shape.vectorBytes),
        index_(reinterpret_cast<unsigned char*>(at_ + vectors_ * lanes_)) {}

  ByteGather Fill() const {
    for (ptrdiff_t k = picks_.count; k < vectors_ * shape_.vectorBytes; ++k)
      picks_.offset[k] = picks_.offset[picks_.count - 1];
    int loads = FillLowest() / kLaneBytes + 1;
    if (loads > kMaxLoads) return {};
    if (shape_.hasPermute && loads == 3) loads = 4;
    const bool isPadded = picks_.readable < loads * kLaneBytes;
    // The last loads may not pass the end of the row: they begin earlier.
    const int end = isPadded ? 0 : static_cast<int>(picks_.readable) - loads * kLaneBytes;
    for (ptrdiff_t n = 0; n < vectors_ * lanes_; ++n) {
      at_[n] = at_[n] < end ? at_[n] : end;
      if (shape_.hasPermute)
        FillPermute(n);
      else
        FillShuffles(n, loads);
    }
    return {loads, isPadded, picks_.readable, at_, index_};
  }

 private:
  const int* OffsetsOf(ptrdiff_t lane) const {
    const ptrdiff_t v = lane / lanes_;
    const ptrdiff_t first = picks_.overlapsLast && v == vectors_ - 1
                                ? picks_.count - shape_.vectorBytes
                                : v * shape_.vectorBytes;
    return picks_.offset + first + lane % lanes_ * kLaneBytes;
  }

  // The lowest byte of each lane. Returns how far the highest one of any lies from its lowest. The
  // offsets of a component rise, and the components take turns of at most kTurn bytes, but not in
  // what fills up the last vector.
  int FillLowest() const {
    int widest = 0;
    for (ptrdiff_t n = 0; n < vectors_ * lanes_; ++n) {
      const int* const o = OffsetsOf(n);
      const bool isFull = o + kLaneBytes <= picks_.offset + picks_.count;
      const int width = isFull ? Reach<kTurn>(o, &at_[n]) : Reach<kLaneBytes>(o, &at_[n]);
      if (width > widest) widest = width;
    }
    return widest;
  }

  // From the lowest of the first kCount offsets of a lane to the highest of the last ones.
  template <int kCount>
  static int Reach(const int* o, int* lowest) {
    const int* const last = o + kLaneBytes - kCount;
    int low = o[0], high = last[0];
    for (int k = 1; k < kCount; ++k) {
      low = o[k] < low ? o[k] : low;
      high = last[k] > high ? last[k] : high;
    }
    *lowest = low;
    return high - low;
  }

  void FillPermute(ptrdiff_t lane) const {
    const int* const o = OffsetsOf(lane);
    const int base = at_[lane];
    unsigned char* const index = index_ + lane * kLaneBytes;
    for (int k = 0; k < kLaneBytes; ++k) index[k] = static_cast<unsigned char>(o[k] - base);
  }

  // Load by load the position within it, or what clears the byte: a top bit, which is set below 0
  // and above the lane's last byte. Positions are below kMaxLoads * kLaneBytes, so bytes hold them.
  void FillShuffles(ptrdiff_t lane, int loads) const {
    const int* const o = OffsetsOf(lane);
    const int base = at_[lane];
    unsigned char* index = index_ + (lane / lanes_ * loads * lanes_ + lane % lanes_) * kLaneBytes;
    // In memory of their own, so that the compiler works on all bytes at once.
    unsigned char position[kLaneBytes], shuffle[kLaneBytes];
    for (int k = 0; k < kLaneBytes; ++k) position[k] = static_cast<unsigned char>(o[k] - base);
    for (int l = 0; l < loads; ++l, index += shape_.vectorBytes) {
      for (int k = 0; k < kLaneBytes; ++k) {
        const int p = position[k] - l * kLaneBytes;
        shuffle[k] = static_cast<unsigned char>(p | ((kLaneBytes - 1 - p) & 0x80));
      }
      memcpy(index, shuffle, kLaneBytes);
    }
  }

  const Picks& picks_;
  const GatherShape& shape_;
  const ptrdiff_t lanes_, vectors_;
  int* const at_;
  unsigned char* const index_;
};

ByteGather PlanGather(const Picks& picks, const GatherShape& shape) {
  return shape.laneBytes == 16 ? GatherPlan<16>(picks, shape).Fill()
                               : GatherPlan<64>(picks, shape).Fill();
}

template <int kBytes>
void FillPixels(const NearestTables& t, int* offset) {
  for (ptrdiff_t j = 0; j < t.width; ++j)
    for (int c = 0; c < kBytes; ++c) offset[kBytes * j + c] = kBytes * t.x[j] + c;
}

void FillOffsets(const NearestTables& t, int* offset) {
  switch (t.layout) {
    case Layout::kGrey: return FillPixels<1>(t, offset);
    case Layout::kPairs: return FillPixels<2>(t, offset);
    case Layout::kTriples: return FillPixels<3>(t, offset);
    case Layout::kQuads: return FillPixels<4>(t, offset);
    default: break;
  }
  for (ptrdiff_t j = 0; j < t.width / 2; ++j) {
    offset[4 * j] = 2 * t.x[2 * j];
    offset[4 * j + 1] = 4 * t.xChroma[j] + 1;
    offset[4 * j + 2] = 2 * t.x[2 * j + 1];
    offset[4 * j + 3] = 4 * t.xChroma[j] + 3;
  }
}

// The two bytes of each value and twice its weight. A full weight of the right sample becomes none
// of the left one, so that twice the weight fits; a sample without weight may be any within the
// row.
void FillPairs(const LinearTables& t, ptrdiff_t readable, int* offset,
               unsigned short* twiceWeight) {
  const auto fill = [=](ptrdiff_t k, LinearSides s, int count) {
    const bool onRight = s.weight == kWeightOne;
    const int first = onRight ? s.right : s.left;
    const int next = first + s.right - s.left, second = next < readable ? next : first;
    for (int c = 0; c < count; ++c) {
      offset[2 * (k + c)] = first + c;
      offset[2 * (k + c) + 1] = second + c;
      twiceWeight[k + c] = static_cast<unsigned short>(onRight ? 0 : 2 * s.weight);
    }
  };
  if (t.layout == Layout::kPairs422) {
    ForEachValue(t, [=](ptrdiff_t k, LinearSides s) { fill(k, s, 1); });
  } else {
    const int stride = PixelBytes(t.layout);
    for (ptrdiff_t j = 0; j < t.width; ++j) fill(j * stride, SidesOf(t.x, j, stride, 0), stride);
  }
}

}  // namespace

ByteGather PlanNearestGather(const NearestTables& t, const GatherShape& shape, void* work) {
  const int bytes = PixelBytes(t.layout);
  const Picks picks = {static_cast<int*>(work), ptrdiff_t{t.width} * bytes,
                       ptrdiff_t{t.srcWidth} * bytes, !shape.hasMasks};
  if ((picks.overlapsLast && picks.count < shape.vectorBytes) || picks.readable > INT32_MAX)
    return {};
  FillOffsets(t, picks.offset);
  return PlanGather(picks, shape);
}

LinearGather PlanLinearGather(const LinearTables& t, const GatherShape& shape, void* work) {
  const int bytes = PixelBytes(t.layout);
  Picks picks = {nullptr, 2 * ptrdiff_t{t.width} * bytes, ptrdiff_t{t.srcWidth} * bytes, false};
  if (picks.readable > INT32_MAX) return {};
  const ptrdiff_t vectors = picks.Vectors(shape.vectorBytes);
  auto* const twiceWeight = static_cast<unsigned short*>(work);
  picks.offset = reinterpret_cast<int*>(twiceWeight + vectors * (shape.vectorBytes / 2));
  FillPairs(t, picks.readable, picks.offset, twiceWeight);
  const ByteGather pairs = PlanGather(picks, shape);
  // Reduced to a half, most of a row of one byte a pixel needs no picking.
  ptrdiff_t bare = 0;
  while (bare < picks.count && picks.offset[bare] == bare) ++bare;
  return {pairs, vectors, pairs.isPadded ? 0 : bare / shape.vectorBytes, twiceWeight};
}

}  // namespace qv
