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
  return RunBands(bands, {1ll * width * height, 0}, [&](Band band) {
    unsigned char* const f = band.At(fg, fgStep);
    const unsigned char* const fa = band.At(fgAlpha, fgAlphaStep);
    const unsigned char* const b = band.At(bg, bgStep);
    const unsigned char* const ba = band.At(bgAlpha, bgAlphaStep);
    unsigned char* const merged = band.At(dstAlpha, fgAlphaStep);
    return HostProcessorInfo
               ? MergeAlphaOver_8u(f, fgStep, fa, fgAlphaStep, b, bgStep, ba, bgAlphaStep, merged,
                                   rowBytes, width, band.length)
               : MergeAlphaOverPlain_8u(f, fgStep, fa, fgAlphaStep, b, bgStep, ba, bgAlphaStep,
                                        merged, width, band.length);
  });
}

IppStatus CqvAccLib::qvMergeAlphaPlus(qvDataType type, unsigned char* srcDst, int srcDstStep,
                                      unsigned char* src, int srcStep, unsigned char* alpha,
                                      int alphaStep, int width, int height) {
  if (type != OneChannel && type != ThreeChannels) return StatusDataTypeErr;
  if (width < 1) return StatusOk;
  const auto kernel = type == OneChannel ? MergeAlphaPlus_8u_C1 : MergeAlphaPlus_8u_C3;
  const Bands bands = PlanBands(height, ThreadBudget);
  return RunBands(bands, {1ll * width * height, MethodOf(kernel)}, [&](Band band) {
    return kernel(band.At(srcDst, srcDstStep), srcDstStep, band.At(src, srcStep), srcStep,
                  band.At(alpha, alphaStep), alphaStep, width, band.length);
  });
}
