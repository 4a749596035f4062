// Adler-32: over bytes d[0] to d[n - 1], modulo 65521,
//   a' = a + sum of d[i]
//   b' = b + n * a + sum of (n - i) * d[i]
#include "kernels/checksum/Checksum.h"
#include "kernels/level/Ahead.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

constexpr uint32_t kModulus = 65521;

struct Sums {
  uint32_t a, b;
};

// A fresh remainder of both sums is due after this many bytes: n = 5552 is the largest n for which
// b + n * a + 255 * n * (n + 1) / 2 stays below 2^32 when a and b start from 65535.
constexpr ptrdiff_t kPlainBlock = 5552;

QV_INLINE Sums FeedPlain(Sums s, const Byte* src, ptrdiff_t length) {
  while (length > 0) {
    const ptrdiff_t n = length < kPlainBlock ? length : kPlainBlock;
    for (ptrdiff_t i = 0; i < n; ++i) {
      s.a += src[i];
      s.b += s.a;
    }
    s.a %= kModulus;
    s.b %= kModulus;
    src += n;
    length -= n;
  }
  return s;
}

#if QV_HAS_VECTORS

// The weights of whole vectors of V bytes split into three: byte j of vector k of K has
//   K * V - k * V - j = V * (K - 1 - k) + (V - 8 - 8 * (j / 8)) + (8 - j % 8)
// The first two are the same for the eight bytes of an octet, so they apply to sums of octets, and
// only the third, of 1 to 8, to single bytes.
struct VectorSums {
  Vec octets;   // sums of octets over all vectors so far; 64-bit lanes, as SumOctets leaves them
  Vec before;   // the sum of `octets` before each vector: K - 1 - k times those of vector k
  Vec weighted; // bytes times 8 - j % 8, 32-bit lanes
};

// Vectors between two reductions. All lanes stay far inside their widths: those of `octets` below
// 8 * 255 * 1024 < 2^21, of `before` below 2^31, of `weighted` below 2 * 15 * 255 * 1024 < 2^23.
constexpr ptrdiff_t kBlockVectors = 1024;

// Bytes times weights 8 to 1 in 16-bit lanes, over at most kRun vectors.
struct WeightedRun {
  // Products of bytes: a lane gains at most 255 * (8 + 7), and 8 * 3825 < 32768.
  // Without: the bytes of odd places alone, and whole lanes, from which those of even places follow
  // modulo 65536; 128 * 255 < 32768.
  static constexpr ptrdiff_t kRun = kHasByteShuffle ? 8 : 128;

  Vec sum = Zero(), odd = Zero();

  QV_INLINE void Add(Vec d) {
    if constexpr (kHasByteShuffle) {
      sum = Add16(sum, MulAddBytes(d, OctetPattern(0x01020304, 0x05060708)));
    } else {
      sum = Add16(sum, d);
      odd = Add16(odd, ShiftRight16<8>(d));
    }
  }

  QV_INLINE Vec Total() const {
    if constexpr (kHasByteShuffle) return MulAddPairs16(sum, Splat16(1));
    const Vec even = Sub16(sum, ShiftLeft16<8>(odd));
    return Add32(MulAddPairs16(even, OctetPattern(0x00020004, 0x00060008)),
                 MulAddPairs16(odd, OctetPattern(0x00010003, 0x00050007)));
  }

  // The same eight bytes in each octet.
  static QV_INLINE Vec OctetPattern(int high, int low) {
    return InterleaveLow32(Splat32(low), Splat32(high));
  }
};

// A whole run of wide vectors is summed by itself: a chain of additions through all vectors would
// take longer than all else.
template <bool whole, bool kAhead>
QV_INLINE void AddRun(VectorSums& v, const Byte* src, ptrdiff_t count) {
  constexpr bool apart = whole && kVecBytes > 16;
  VectorSums sums = apart ? VectorSums{Zero(), Zero(), v.weighted} : v;
  WeightedRun run;
#pragma GCC unroll 8
  for (ptrdiff_t k = 0; k < (whole ? 8 : count); ++k) {
    const Vec d = Load(src + k * kVecBytes);
    if (kAhead) Prefetch<kVecBytes>(src + k * kVecBytes + kPageBytes);
    sums.before = Add64(sums.before, sums.octets);
    sums.octets = Add64(sums.octets, SumOctets(d));
    run.Add(d);
  }
  if (apart) {
    sums.before = Add64(sums.before, Add64(v.before, ShiftLeft64<3>(v.octets)));
    sums.octets = Add64(sums.octets, v.octets);
  }
  sums.weighted = Add32(sums.weighted, run.Total());
  v = sums;
}

// V - 8 - 8 * (j / 8) for each octet.
QV_INLINE Vec OctetOffsets() {
  alignas(64) static constexpr uint64_t kOffsets[8] = {56, 48, 40, 32, 24, 16, 8, 0};
  return Load(kOffsets + 8 - kVecBytes / 8);
}

// The first n bytes of a message, 1 to V - 1, after V - n zero bytes, which change no sum.
[[maybe_unused]] QV_INLINE Vec LoadRagged(const Byte* src, ptrdiff_t n) {
  const Vec turned = Add8(Load(&kByteNumbers), Splat8(static_cast<int>(n)));
  return PermuteBytes(LoadPart(src, (1ull << n) - 1), turned);
}

template <bool kAhead>
QV_INLINE Sums FeedVectors(Sums s, const Byte* src, ptrdiff_t length) {
  VectorSums v = {Zero(), Zero(), Zero()};
  ptrdiff_t n = length % kVecBytes, vectors = length / kVecBytes;
  if (n != 0) {
    if constexpr (kHasMaskedBytes) {
      const Vec d = LoadRagged(src, n);
      WeightedRun run;
      run.Add(d);
      v = {SumOctets(d), Zero(), run.Total()};
      src += n;
    } else {
      s = FeedPlain(s, src, n);
      src += n;
      n = 0;
    }
  }
  for (;;) {
    ptrdiff_t count = vectors < kBlockVectors - 1 ? vectors : kBlockVectors - 1;
    n += count * kVecBytes;
    vectors -= count;
    while (count > 0) {
      const ptrdiff_t run = count < WeightedRun::kRun ? count : WeightedRun::kRun;
      if (run == 8)
        AddRun<true, kAhead>(v, src, run);
      else
        AddRun<false, kAhead>(v, src, run);
      src += run * kVecBytes;
      count -= run;
    }
    constexpr int kVecShift = kVecBytes == 64 ? 6 : kVecBytes == 32 ? 5 : 4;
    Vec total = Add64(ShiftLeft64<kVecShift>(v.before), MulEven32(v.octets, OctetOffsets()));
    const Vec low = ShiftRight64<32>(ShiftLeft64<32>(v.weighted));
    total = Add64(total, Add64(low, ShiftRight64<32>(v.weighted)));
    const uint64_t gained = static_cast<uint64_t>(n) * s.a + SumLanes64(total);
    s.b = static_cast<uint32_t>((s.b + gained) % kModulus);
    s.a = (s.a + static_cast<uint32_t>(SumLanes64(v.octets))) % kModulus;
    if (vectors == 0) return s;
    v = {Zero(), Zero(), Zero()};
    n = 0;
  }
}

Sums Feed(Sums s, const Byte* src, ptrdiff_t length) {
  if (length < 16) return FeedPlain(s, src, length);
  // Narrower vectors take longer to sum than to fetch.
  if (kVecBytes < 64 || length < kLongMessage) return FeedVectors<false>(s, src, length);
  return FeedVectors<true>(s, src, length);
}

#else

constexpr auto Feed = FeedPlain;

#endif

}  // namespace

IppStatus Adler32_8u(const Byte* src, int length, unsigned int* adler) {
  const Sums start = {*adler & 0xFFFF, *adler >> 16};
  if (!src) {
    *adler = 0;
    return StatusSizeErr;
  }
  if (length < 1) return StatusOk;
  const Sums s = Feed(start, src, length);
  *adler = s.b << 16 | s.a;
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
