// The alpha merges in bands.
#include "kernels/composite/Composite.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/Settings.h"

using namespace qv;

IppStatus CqvAccLib::qvMergeAlphaOver(qvDataType, unsigned char* fg, int fgStep,
                                      unsigned char* fgAlpha, int fgAlphaStep, unsigned char* bg,
                                      int bgStep, unsigned char* bgAlpha, int bgAlphaStep,
                                      unsigned char* dstAlpha, int rowBytes, int width,
                                      int height) {
  // However many empty rows there are.
  if (width < 1 && (rowBytes < 1 || !HostProcessorInfo)) return StatusOk;
  const Bands bands = PlanBands(height, ThreadBudget);
  return RunBands(bands, [&](int i) {
    const long long first = bands.First(i);
    unsigned char* const f = Advance(fg, first * fgStep);
    const unsigned char* const fa = Advance(fgAlpha, first * fgAlphaStep);
    const unsigned char* const b = Advance(bg, first * bgStep);
    const unsigned char* const ba = Advance(bgAlpha, first * bgAlphaStep);
    unsigned char* const merged = Advance(dstAlpha, first * fgAlphaStep);
    return HostProcessorInfo
               ? MergeAlphaOver_8u(f, fgStep, fa, fgAlphaStep, b, bgStep, ba, bgAlphaStep, merged,
                                   rowBytes, width, bands.Height(i))
               : MergeAlphaOverPlain_8u(f, fgStep, fa, fgAlphaStep, b, bgStep, ba, bgAlphaStep,
                                        merged, width, bands.Height(i));
  });
}

IppStatus CqvAccLib::qvMergeAlphaPlus(qvDataType type, unsigned char* srcDst, int srcDstStep,
                                      unsigned char* src, int srcStep, unsigned char* alpha,
                                      int alphaStep, int width, int height) {
  if (type != OneChannel && type != ThreeChannels) return StatusDataTypeErr;
  if (width < 1) return StatusOk;
  const auto kernel = type == OneChannel ? MergeAlphaPlus_8u_C1 : MergeAlphaPlus_8u_C3;
  const Bands bands = PlanBands(height, ThreadBudget);
  return RunBands(bands, [&](int i) {
    const long long first = bands.First(i);
    return kernel(Advance(srcDst, first * srcDstStep), srcDstStep, Advance(src, first * srcStep),
                  srcStep, Advance(alpha, first * alphaStep), alphaStep, width, bands.Height(i));
  });
}
