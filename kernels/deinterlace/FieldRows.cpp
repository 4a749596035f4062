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

// For weights from 1 to 255. Where pairs of bytes are multiplied and added, one factor is signed:
// it is the bytes, less 128. Their sum is 32768 less, which fits, and comes back with the rounding.
struct Blend {
  Vec ofA, ofB;

  explicit Blend(int weightOfB) {
    constexpr int kUpper = kHasByteShuffle ? 256 : 0;
    ofA = Splat16(256 - weightOfB + kUpper * weightOfB);
    ofB = Splat16(weightOfB);
  }

  QV_INLINE Vec operator()(Vec a, Vec b) const {
    if constexpr (kHasByteShuffle) a = Xor(a, Splat8(-128)), b = Xor(b, Splat8(-128));
    return PackUnsigned16(Half(InterleaveLow8(a, b)), Half(InterleaveHigh8(a, b)));
  }

 private:
  QV_INLINE Vec Half(Vec pairs) const {
    if constexpr (kHasByteShuffle)
      return ShiftRight16<8>(Add16(MulAddBytes(ofA, pairs), Splat16(-32768 + 128)));
    const Vec a = And(pairs, Splat16(0xFF)), b = ShiftRight16<8>(pairs);
    return ShiftRight16<8>(Add16(Add16(MulLow16(a, ofA), MulLow16(b, ofB)), Splat16(128)));
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
  if (!CoverWithBlocks<kVecBytes>(bytes, stream, block, BytesToAlign(dst)))
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
  for (int y = first; y < first + rows; ++y) {
    const Lines lines = LinesOf(y, parity, height);
    const Byte* const near = RowAt(src, srcStep, lines.near);
    Byte* const to = RowAt(dst, dstStep, y);
    if (lines.near == lines.far || farWeight == 0)
      CopyRow(near, to, widthBytes, stream);
    else
      BlendRow(near, RowAt(src, srcStep, lines.far), to, widthBytes, farWeight, stream);
  }
  if (stream) StreamFence();
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
