// The row kernels of resampling, beside those that it shares with resizing, and the tables that
// planning makes for them. Arguments are the caller's to get right; nothing is checked. All levels
// write the same bytes.
#ifndef QV_KERNELS_RESAMPLE_RESAMPLEROWS_H
#define QV_KERNELS_RESAMPLE_RESAMPLEROWS_H

#include <stddef.h>

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Destination sample i is the sum of weights[i * stride + t] times source sample first[i] + t,
// t = 0 .. taps - 1, in units of 2^-bits, bits from 14 to 30. A multiple of kTapBlock weights,
// zeros after the taps, begins at each i * stride. Weights above 0 sum to at most 1.5, those below
// to at most -0.5.
struct LongTaps {
  int taps, stride, bits;
  const int* first;
  const short* weights;
};

constexpr int kTapBlock = 32;

struct LongTables {
  int channels;       // 1 to 4 interleaved
  int width, height;  // of the destination, in pixels
  LongTaps x, y;
};

// The pixels of a source row that taps of x name.
struct NamedPixels {
  int first, count;
};
__attribute__((always_inline)) inline NamedPixels NamedBy(const int* first, int count, int taps) {
  return {first[0], first[count - 1] + taps - first[0]};
}

// Items of a line of scratch memory: whole blocks, with one more to read and write on into.
__attribute__((always_inline)) constexpr long long PaddedLine(long long n) {
  return (n + 63) / 64 * 64 + 64;
}

// Bytes of scratch memory, aligned to 64: a row of values, and a destination row of up to four
// bytes a pixel.
unsigned long long LongScratchBytes(const LongTables& tables);

// The separable filter with any number of taps. Along y first: with p the bytes of a column and w
// the weights of 14 + k bits, a value with 6 fractional bits is
//   v = (sum over pairs of taps (w[2n] p[2n] + w[2n + 1] p[2n + 1] >> k') + half) >> d
// where k' = max(0, k - 8) and d = 14 + k - k' - 6; an odd count has a last tap alone. Then along
// x, from values with k' = max(0, k - 1) and d = 14 + k - k' + 6, limited to a byte.
extern QV_HIDDEN const Dispatched<IppStatus(const unsigned char* src, int srcStep,
                                            unsigned char* dst, int dstStep,
                                            const LongTables* tables, void* scratch)>
    LongRows_8u;

// Weights in single precision, `taps` a sample.
struct FloatTaps {
  int taps;
  const int* first;
  const float* weights;
};

struct WeightedTables {
  int width, height;  // of the destination, in pixels
  FloatTaps x, y;
};

// Source rows that a level filters along x at once.
constexpr int kMostRows = 4;

// Bytes of scratch memory, aligned to 64: some source rows and the ring of filtered ones.
unsigned long long WeightedScratchBytes(const WeightedTables& tables);

// Four-byte pixels whose colours are weighted by their alpha, the fourth byte. With c a colour and
// a the alpha of a source pixel, C the filtered c * a and A the filtered a, along x and then along
// y, each sum in the order of its taps and every operation rounded to single precision:
//   alpha = A + 0.5, truncated and limited to a byte;
//   colour = C / A + 0.5, the same; 0 where that alpha is 0.
extern QV_HIDDEN const Dispatched<IppStatus(const unsigned char* src, int srcStep,
                                            unsigned char* dst, int dstStep,
                                            const WeightedTables* tables, void* scratch)>
    WeightedRows_8u_C4;

// Limits the first three bytes of each pixel to the fourth.
extern QV_HIDDEN const Dispatched<IppStatus(unsigned char* srcDst, int srcDstStep, IppiSize size)>
    LimitToAlpha_8u_C4;

// Whether the fourth bytes of all pixels are 255.
extern QV_HIDDEN const Dispatched<bool(const unsigned char* row, ptrdiff_t pixels)> IsOpaque_8u_C4;

}  // namespace qv

#endif
