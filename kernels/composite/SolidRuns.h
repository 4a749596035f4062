// Runs of pixels that a merge of colours by their alphas leaves to one of its two images, as masks
// have them: they take no arithmetic in floats.
#ifndef QV_KERNELS_COMPOSITE_SOLIDRUNS_H
#define QV_KERNELS_COMPOSITE_SOLIDRUNS_H

#include "kernels/composite/OverBlock.h"

namespace qv::QV_LEVEL {

constexpr uint64_t kNoAlphas = 0, kFullAlphas = ~kNoAlphas;
// What an opaque background is merged to under a foreground without alpha: 255 * 255 >> 8.
constexpr uint64_t kBackgroundAlone = 0xFEFEFEFEFEFEFEFE;

// Whether a run may begin here: for pixels of any alphas, this is all that looking for one costs.
QV_INLINE bool MayBeginRun(const Byte* fgAlpha) { return EightAlphas(fgAlpha) + 1 <= 1; }

// How many of the pixels `are` something, eight by eight from the first; none if that is less than
// a block, which is as quick.
template <class Are>
QV_INLINE ptrdiff_t RunOf(ptrdiff_t pixels, Are are) {
  ptrdiff_t x = 0;
  while (x + 8 <= pixels && are(x)) x += 8;
  return x < kOverPixels ? 0 : x;
}

// Merges the run that begins here, at most `pixels` long, and returns its length.
__attribute__((noinline)) inline ptrdiff_t OverRun(const OverPixels& p, ptrdiff_t pixels) {
  const ptrdiff_t opaque = RunOf(pixels, [&](ptrdiff_t x) QV_INLINE_LAMBDA {
    return (EightAlphas(p.fgAlpha + x) & EightAlphas(p.merged + x)) == kFullAlphas;
  });
  if (opaque > 0) {  // the foreground over 256 / 255, which takes 1 from what is above 127
    Byte* const fg = p.fg;
    for (ptrdiff_t i = 0; i < 3 * opaque; ++i) fg[i] = static_cast<Byte>(fg[i] - (fg[i] >> 7));
    return opaque;
  }
  const ptrdiff_t transparent = RunOf(pixels, [&](ptrdiff_t x) QV_INLINE_LAMBDA {
    return EightAlphas(p.fgAlpha + x) == kNoAlphas && EightAlphas(p.bgAlpha + x) == kFullAlphas &&
           EightAlphas(p.merged + x) == kBackgroundAlone;
  });
  memmove(p.fg, p.bg, static_cast<size_t>(3 * transparent));  // the background over 255 / 255
  return transparent;
}

}  // namespace qv::QV_LEVEL

#endif
