// The exported operations: each picks its kernel, cuts the image and calls the kernel once a band.
#include "qvAcceleratedLib/CqvAccLib.h"

#include <new>

#include "kernels/checksum/Checksum.h"
#include "kernels/color/Color.h"
#include "kernels/composite/Composite.h"
#include "kernels/copy/Copy.h"
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/Transform.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizeRoute.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"

using namespace qv;

CqvAccLib& CqvAccLib::operator=(const CqvAccLib&) { return *this; }

namespace {

// The kernel or function for a type of one or of three channels; null for any other type.
template <class Kernel>
Kernel* KernelOf(int type, Kernel& oneChannel, Kernel& threeChannels) {
  switch (type) {
    case CqvAccLib::OneChannel: return &oneChannel;
    case CqvAccLib::ThreeChannels: return &threeChannels;
    default: return nullptr;
  }
}

constexpr long long Area(IppiSize size) { return 1ll * size.width * size.height; }

}  // namespace

// ---- Copy, fill, mirror, palette, scale ---------------------------------------------------------

namespace {

const ImageKernel* FindCopyKernel(int type) {
  switch (type) {
    case CqvAccLib::OneChannel: return &CopyRows_8u_C1;
    case CqvAccLib::ThreeChannels: return &CopyRows_8u_C3;
    case CqvAccLib::PlaneToThreeChannels: return &CopyChannel_8u_C1C3;
    case CqvAccLib::FourToThreeChannels: return &CopyDropAlpha_8u_AC4C3;
    case CqvAccLib::ThreeToFourChannels: return &CopyKeepAlpha_8u_C3AC4;
    default: return nullptr;
  }
}

// The kernel on bands of rows, both images moving on by their steps.
IppStatus RunOnRows(const ImageKernel& kernel, const Bands& bands, const unsigned char* src,
                    int srcStep, unsigned char* dst, int dstStep, IppiSize size) {
  return RunBands(bands, {Area(size), MethodOf(kernel)}, [&](Band band) {
    return kernel(band.At(src, srcStep), srcStep, band.At(dst, dstStep), dstStep,
                  {size.width, band.length});
  });
}

}  // namespace

IppStatus CqvAccLib::qvCopy(qvDataType type, const unsigned char* src, int srcStep,
                            unsigned char* dst, int dstStep, IppiSize size) {
  const ImageKernel* const kernel = FindCopyKernel(type);
  if (!kernel) return StatusDataTypeErr;
  const int budget = CallBudget();
  if (size.height != 1 || type != OneChannel || budget <= 1 || srcStep != dstStep)
    return RunOnRows(*kernel, PlanBands(size.height, budget), src, srcStep, dst, dstStep, size);
  // A single row cannot be cut into rows: a long one is cut into pieces of columns.
  const Bands pieces = PlanPieces(size.width, budget);
  return RunBands(pieces, {Area(size), MethodOf(*kernel)}, [&](Band band) {
    return (*kernel)(band.At(src, 1), srcStep, band.At(dst, 1), dstStep, {band.length, 1});
  });
}

IppStatus CqvAccLib::qvDup(qvDataType, const unsigned char* src, int srcStep, unsigned char* dst,
                           int dstStep, IppiSize size) {
  return RunOnRows(DupGray_8u_C1C3, PlanBands(size.height, CallBudget()), src, srcStep, dst,
                   dstStep, size);
}

IppStatus CqvAccLib::qvSet(qvDataType type, const unsigned char* const value, unsigned char* dst,
                           int dstStep, IppiSize size) {
  const auto fill = [&](const auto& kernel, const auto& pixel) {
    const Bands bands = PlanBands(size.height, CallBudget());
    return RunBands(bands, {Area(size), MethodOf(kernel)}, [&](Band band) {
      return kernel(pixel, band.At(dst, dstStep), dstStep, {size.width, band.length});
    });
  };
  switch (type) {
    case OneChannel: return fill(SetPixels_8u_C1, *value);
    case ThreeChannels: return fill(SetPixels_8u_C3, value);
    default: return StatusDataTypeErr;
  }
}

IppStatus CqvAccLib::qvMirror(qvDataType type, const unsigned char* src, int srcStep,
                              unsigned char* dst, int dstStep, IppiSize size, IppiAxis axis) {
  if (axis != AxisHorizontal && axis != AxisVertical && axis != AxisBoth) return StatusOk;
  const auto* const kernel = KernelOf(type, Mirror_8u_C1, Mirror_8u_C3);
  if (!kernel) return StatusDataTypeErr;
  // Rows trade places within strips of columns; about both axes, no cut leaves each band its own.
  const bool strips = axis == AxisHorizontal;
  const int pixelBytes = type == OneChannel ? 1 : 3;
  const int srcMove = strips ? pixelBytes : srcStep, dstMove = strips ? pixelBytes : dstStep;
  const Bands bands = PlanBands(strips ? size.width : size.height,
                                axis == AxisBoth ? 1 : CallBudget());
  return RunBands(bands, {Area(size), MethodOf(*kernel)}, [&](Band band) {
    return (*kernel)(band.At(src, srcMove), srcStep, band.At(dst, dstMove), dstStep,
                     strips ? band.length : size.width, strips ? size.height : band.length, axis);
  });
}

IppStatus CqvAccLib::qvLUTPalette(qvDataType, const unsigned char* src, int srcStep,
                                  unsigned char* dst, int dstStep, IppiSize size,
                                  const unsigned char* palette, int bitSize) {
  const Bands bands = PlanBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), 0}, [&](Band band) {
    return LookupPalette_8u_C1C3(band.At(src, srcStep), srcStep, band.At(dst, dstStep), dstStep,
                                 size.width, band.length, palette, bitSize);
  });
}

IppStatus CqvAccLib::qvMulCScale(qvDataType type, unsigned char value, unsigned char* srcDst,
                                 int srcDstStep, IppiSize size) {
  if (type != ScalePlane) return StatusDataTypeErr;
  const Bands bands = PlanBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), 0}, [&](Band band) {
    unsigned char* const first = band.At(srcDst, srcDstStep);
    return MulScale_8u_C1I(first, srcDstStep, value, first, srcDstStep, size.width, band.length);
  });
}

// ---- Checksums ----------------------------------------------------------------------------------

// A checksum depends on all bytes before: one call, no bands.
IppStatus CqvAccLib::qvCRC32(qvDataType, const unsigned char* src, int length, unsigned int* crc) {
  return Crc32_8u(src, length, crc);
}

IppStatus CqvAccLib::qvAdler32(qvDataType, const unsigned char* src, int length,
                               unsigned int* adler) {
  return Adler32_8u(src, length, adler);
}

// ---- Colour-format conversion -------------------------------------------------------------------

namespace {

// The planes of a 4:2:0 image from an even row on; a chroma row serves two. Null arrays give null.
struct PlanesFrom {
  PlanesFrom(unsigned char* const* planes, const int* steps, long long row) {
    if (!planes || !steps) return;
    for (int c = 0; c < 3; ++c) moved[c] = Advance(planes[c], row * steps[c] / (c == 0 ? 1 : 2));
    array = moved;
  }
  unsigned char* moved[3];
  unsigned char** array = nullptr;
};

}  // namespace

IppStatus CqvAccLib::qvYCbCr420(qvDataType, const unsigned char* srcY, int srcYStep,
                                const unsigned char* srcCbCr, int srcCbCrStep,
                                unsigned char** const dst, int* const dstStep, IppiSize size) {
  const Bands bands = PlanEvenBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), 0}, [&](Band band) {
    const PlanesFrom planes(dst, dstStep, band.first);
    return YCbCrInterleavedTo420_8u_P2P3(band.At(srcY, srcYStep), srcYStep,
                                         Advance(srcCbCr, band.first * srcCbCrStep / 2),
                                         srcCbCrStep, planes.array, dstStep,
                                         {size.width, band.length});
  });
}

IppStatus CqvAccLib::qvYCbCr422ToYCrCb420(qvDataType, const unsigned char* src, int srcStep,
                                          unsigned char** const dst, int* const dstStep,
                                          IppiSize size) {
  const Bands bands = PlanEvenBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), 0}, [&](Band band) {
    const PlanesFrom planes(dst, dstStep, band.first);
    return YCbCr422ToYCrCb420_8u_C2P3(band.At(src, srcStep), srcStep, planes.array, dstStep,
                                      {size.width, band.length});
  });
}

IppStatus CqvAccLib::qvYCbCr420ToBGR(qvDataType, unsigned char** const src, int* const srcStep,
                                     unsigned char* dst, int dstStep, IppiSize size) {
  const Bands bands = PlanEvenBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), 0}, [&](Band band) {
    const PlanesFrom planes(src, srcStep, band.first);
    return YCbCr420ToBGR_8u_P3C3(planes.array, srcStep, band.At(dst, dstStep), dstStep,
                                 {size.width, band.length});
  });
}

IppStatus CqvAccLib::qvYCbCr422ToBGR(qvDataType, const unsigned char* src, int srcStep,
                                     unsigned char* dst, int dstStep, IppiSize size) {
  return RunOnRows(YCbCr422ToBGR_8u_C2C3, PlanEvenBands(size.height, CallBudget()), src, srcStep,
                   dst, dstStep, size);
}

// ---- Resizing -----------------------------------------------------------------------------------

IppStatus CqvAccLib::qvResize(qvDataType type, const unsigned char* src, IppiSize srcSize,
                              int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                              IppiSize dstRoiSize, double xFactor, double yFactor,
                              int interpolation) {
  if (type != OneChannel && type != ThreeChannels) return StatusDataTypeErr;
  const FloatEnvironment environment;
  const ResizeRoute route({src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor,
                           yFactor, interpolation},
                          type == OneChannel ? Layout::kGrey : Layout::kTriples,
                          ResizeBands(srcSize, dstRoiSize, CallBudget()));
  if (route.bands() == 1) return route.RunWhole();
  const Bands bands = {route.bands(), route.rowsPerBand(), dstRoiSize.height};
  return RunBands(bands, {Area(dstRoiSize), route.kind()}, [&](Band band) {
    const FloatEnvironment ofThread;
    return route.RunRows(static_cast<int>(band.first), band.length);
  });
}

IppStatus CqvAccLib::qvResizeYUV422(qvDataType, const unsigned char* src, IppiSize srcSize,
                                    int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                    IppiSize dstRoiSize, double xFactor, double yFactor,
                                    int interpolation) {
  // Area averaging and Lanczos are done as cubic.
  if (interpolation > InterpolateCubic) interpolation = InterpolateCubic;
  const FloatEnvironment environment;
  return ResizeYUV422_8u_C2(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor,
                            yFactor, interpolation);
}

// ---- Rotation and perspective -------------------------------------------------------------------

IppStatus CqvAccLib::qvRotate(qvDataType type, const unsigned char* src, IppiSize srcSize,
                              int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                              IppiRect dstRoi, double angle, double xShift, double yShift,
                              int interpolation) {
  const auto kernel = KernelOf(type, Rotate_8u_C1, Rotate_8u_C3);
  if (!kernel) return StatusDataTypeErr;
  const FloatEnvironment environment;
  return kernel(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, angle, xShift, yShift,
                interpolation);
}

namespace {

// The bands of a destination region, as far as an int can number its rows: there are none past
// that.
Bands PlanRegionBands(IppiRect roi) {
  const int rows = roi.y > 0 ? INT32_MAX - roi.y + 1 : INT32_MAX;
  return PlanBands(roi.height < rows ? roi.height : rows, CallBudget());
}

// The rows that a band is. Pointers stay: the warp works in absolute coordinates.
IppiRect PartOf(IppiRect roi, Band band) {
  return {roi.x, static_cast<int>(roi.y + band.first), roi.width, band.length};
}

}  // namespace

IppStatus CqvAccLib::qvWarpPerspective(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                       int srcStep, IppiRect srcRoi, unsigned char* dst,
                                       int dstStep, IppiRect dstRoi, const double coeffs[3][3],
                                       int interpolation) {
  const auto kernel = KernelOf(type, WarpPerspective_8u_C1, WarpPerspective_8u_C3);
  if (!kernel) return StatusDataTypeErr;
  const Bands bands = PlanRegionBands(dstRoi);
  const Work work = {1ll * dstRoi.width * dstRoi.height, MethodOf(kernel, interpolation)};
  return RunFloatBands(bands, work, [&](Band band) {
    return kernel(src, srcSize, srcStep, srcRoi, dst, dstStep, PartOf(dstRoi, band), coeffs,
                  interpolation);
  });
}

// On one band the second image waits for the first one's success; on several it does not, and its
// status hides the first one's.
IppStatus CqvAccLib::qvWarpPerspectiveEx(qvDataType, const unsigned char* src, IppiSize srcSize,
                                         int srcStep, IppiRect srcRoi, unsigned char* dst,
                                         int dstStep, IppiRect dstRoi, const double coeffs[3][3],
                                         int interpolation, const unsigned char* src2,
                                         int src2Step, unsigned char* dst2, int dst2Step,
                                         const double coeffs2[3][3]) {
  const Bands bands = PlanRegionBands(dstRoi);
  const Work work = {1ll * dstRoi.width * dstRoi.height, static_cast<uintptr_t>(interpolation)};
  return RunFloatBands(bands, work, [&](Band band) {
    const IppiRect part = PartOf(dstRoi, band);
    const IppStatus status = WarpPerspective_8u_C3(src, srcSize, srcStep, srcRoi, dst, dstStep,
                                                   part, coeffs, interpolation);
    if (!src2 || !dst2 || (bands.count == 1 && status != StatusOk)) return status;
    return WarpPerspective_8u_C1(src2, srcSize, src2Step, srcRoi, dst2, dst2Step, part, coeffs2,
                                 interpolation);
  });
}

IppStatus CqvAccLib::qvGetPerspectiveTransform(qvDataType, IppiRect roi, const double quad[4][2],
                                               double coeffs[3][3]) {
  const FloatEnvironment environment;
  return GetPerspectiveTransform_64f(roi, quad, coeffs);
}

IppStatus CqvAccLib::qvGetRotateBound(qvDataType, IppiRect roi, double bound[2][2], double angle,
                                      double xShift, double yShift) {
  const FloatEnvironment environment;
  return GetRotateBound_64f(roi, bound, angle, xShift, yShift);
}

// ---- Compositing and deinterlacing --------------------------------------------------------------

IppStatus CqvAccLib::qvAlphaCompC(qvDataType type, const unsigned char* src1, int src1Step,
                                  unsigned char alpha1, const unsigned char* src2, int src2Step,
                                  unsigned char alpha2, unsigned char* dst, int dstStep,
                                  IppiSize size, IppiAlphaType alphaType) {
  const auto* const kernel = KernelOf(type, AlphaCompC_8u_C1, AlphaCompC_8u_C3);
  if (!kernel) return StatusDataTypeErr;
  const Bands bands = PlanBands(size.height, CallBudget());
  return RunBands(bands, {Area(size), MethodOf(*kernel, alphaType)}, [&](Band band) {
    return (*kernel)(band.At(src1, src1Step), src1Step, alpha1, band.At(src2, src2Step), src2Step,
                     alpha2, band.At(dst, dstStep), dstStep, {size.width, band.length}, alphaType);
  });
}

IppStatus CqvAccLib::qvMergeAlphaOver(qvDataType, unsigned char* fg, int fgStep,
                                      unsigned char* fgAlpha, int fgAlphaStep, unsigned char* bg,
                                      int bgStep, unsigned char* bgAlpha, int bgAlphaStep,
                                      unsigned char* dstAlpha, int rowBytes, int width,
                                      int height) {
  // However many empty rows there are.
  if (width < 1 && (rowBytes < 1 || !HostProcessorInfo)) return StatusOk;
  const Bands bands = PlanBands(height, CallBudget());
  return RunBands(bands, {1ll * width * height, 0}, [&](Band band) {
    const auto merge = [&](const auto& kernel, auto... extents) {
      return kernel(band.At(fg, fgStep), fgStep, band.At(fgAlpha, fgAlphaStep), fgAlphaStep,
                    band.At(bg, bgStep), bgStep, band.At(bgAlpha, bgAlphaStep), bgAlphaStep,
                    band.At(dstAlpha, fgAlphaStep), extents..., band.length);
    };
    if (!HostProcessorInfo) return merge(MergeAlphaOverPlain_8u, width);
    const FloatEnvironment environment;
    return merge(MergeAlphaOver_8u, rowBytes, width);
  });
}

IppStatus CqvAccLib::qvMergeAlphaPlus(qvDataType type, unsigned char* srcDst, int srcDstStep,
                                      unsigned char* src, int srcStep, unsigned char* alpha,
                                      int alphaStep, int width, int height) {
  const auto* const kernel = KernelOf(type, MergeAlphaPlus_8u_C1, MergeAlphaPlus_8u_C3);
  if (!kernel) return StatusDataTypeErr;
  if (width < 1) return StatusOk;
  const Bands bands = PlanBands(height, CallBudget());
  return RunBands(bands, {1ll * width * height, MethodOf(*kernel)}, [&](Band band) {
    return (*kernel)(band.At(srcDst, srcDstStep), srcDstStep, band.At(src, srcStep), srcStep,
                     band.At(alpha, alphaStep), alphaStep, width, band.length);
  });
}

IppStatus CqvAccLib::qvDeinterlace(qvDataType type, const unsigned char* src, int srcStep,
                                   unsigned char* dst, int dstStep, IppiSize size,
                                   unsigned int centreWeight, unsigned int mode) {
  if (type != OneChannel && type != ThreeChannels) return StatusDataTypeErr;
  // Three-channel rows are filtered together with their padding.
  const int rowBytes = type == OneChannel ? size.width : srcStep;
  // Rows that reach into the next one are overwritten there, which strips would do in any order.
  const bool overlap = dstStep < rowBytes && -static_cast<long long>(dstStep) < rowBytes;
  const int budget = CallBudget();
  const Bands strips = PlanBands(rowBytes, overlap && budget > 1 ? 1 : budget);
  return RunBands(strips, {1ll * rowBytes * size.height, 0}, [&](Band band) {
    return Deinterlace_8u(band.At(src, 1), srcStep, band.At(dst, 1), dstStep, band.length,
                          size.height, centreWeight, mode);
  });
}
