// One field of a frame made into a frame of its own.
#include "kernels/copy/CopyRow.h"
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// The weights add up to 256, so the sum with its 128 is at most 65408.
void BlendRowPlain(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes, int weightOfB) {
  for (ptrdiff_t k = 0; k < bytes; ++k)
    dst[k] = static_cast<Byte>((a[k] * (256 - weightOfB) + b[k] * weightOfB + 128) >> 8);
}

#if QV_HAS_VECTORS

// a + (((b - a) * weight + 128) >> 8), for weights of b from 1 to 127: the second term is within
// -126 .. 126.
struct Blend {
  Vec weights;  // of pairs of bytes, or of differences

  explicit Blend(int weightOfB)
      : weights(Splat16(kHasByteShuffle ? weightOfB * 256 | (-weightOfB & 0xFF) : weightOfB)) {}

  QV_INLINE Vec operator()(Vec a, Vec b) const {
    const auto toA = [this](Vec pairs) QV_INLINE_LAMBDA {
      if constexpr (kHasByteShuffle)
        return MulRounded15(MulAddBytes(pairs, weights), Splat16(128));
      const Vec difference = Sub16(ShiftRight16<8>(pairs), And(pairs, Splat16(0xFF)));
      return ShiftRightSigned16<8>(Add16(MulLow16(difference, weights), Splat16(128)));
    };
    return Add8(a, PackSigned16(toA(InterleaveLow8(a, b)), toA(InterleaveHigh8(a, b))));
  }
};

// The mean of two bytes, rounded up, is their sum under weights of 128.
struct Mean {
  QV_INLINE Vec operator()(Vec a, Vec b) const { return AverageUp8(a, b); }
};

template <class Function>
void BlendRowBy(const Function& blend, const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes,
                int weightOfB, bool stream) {
  const auto block = [&](ptrdiff_t i, auto store) {
    store(dst + i, blend(Load(a + i), Load(b + i)));
  };
  if (!CoverWithBlocks<kVecBytes, 2>(bytes, stream, block, BytesToAlign(dst)))
    BlendRowPlain(a, b, dst, bytes, weightOfB);
}

void BlendRow(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes, int weightOfB,
              bool stream) {
  if (weightOfB == 128)
    BlendRowBy(Mean(), a, b, dst, bytes, weightOfB, stream);
  else
    BlendRowBy(Blend(weightOfB), a, b, dst, bytes, weightOfB, stream);
}

#else

void BlendRow(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes, int weightOfB, bool) {
  BlendRowPlain(a, b, dst, bytes, weightOfB);
}

#endif

// The field's lines that row `y` is made of: itself, or that of its pair and the one beyond; of the
// last two, at an edge, the one that there is.
struct Lines {
  int near, far;
};

Lines LinesOf(int y, int parity, int height) {
  if (y % 2 == parity) return {y, y};
  const int near = parity == 0 ? y - 1 : y + 1, far = parity == 0 ? y + 1 : y - 1;
  if (near >= height) return {far, far};
  if (far < 0 || far >= height) return {near, near};
  return {near, far};
}

}  // namespace

IppStatus FieldToFrame_8u(const Byte* src, int srcStep, Byte* dst, int dstStep, int widthBytes,
                          int height, int parity, int farWeight, int first, int rows) {
  const bool stream = PassesCaches(widthBytes, height, 1);
  const CopyWay way = CopyWayOf(widthBytes, height, 1, stream);
  for (int y = first; y < first + rows; ++y) {
    const Lines lines = LinesOf(y, parity, height);
    const Byte* const near = RowAt(src, srcStep, lines.near);
    Byte* const to = RowAt(dst, dstStep, y);
    if (lines.near == lines.far || farWeight == 0)
      CopyRow(near, to, widthBytes, way);
    else
      BlendRow(near, RowAt(src, srcStep, lines.far), to, widthBytes, farWeight, stream);
  }
  if (stream) StreamFence();
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
