#include "qvAcceleratedLib/YuvRgb.h"

#include <iterator>

#include "kernels/copy/Copy.h"
#include "kernels/yuv/Yuv.h"
#include "kernels/yuv/YuvTerms.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"

namespace qv {

namespace {

// Where a layout has its samples: of Y, Cb and Cr the plane, the first byte there and the distance
// to the next sample.
struct SamplePlace {
  int plane, first, apart;
};

struct YuvPlaces {
  int planes;
  SamplePlace luma, cb, cr;
  bool halfWidth, halfHeight;
};

// From QV_LAYOUT_YUYV to QV_LAYOUT_I444.
constexpr YuvPlaces kYuvLayouts[] = {
    {1, {0, 0, 2}, {0, 1, 4}, {0, 3, 4}, true, false},   // YUYV
    {1, {0, 1, 2}, {0, 0, 4}, {0, 2, 4}, true, false},   // UYVY
    {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, true, true},    // I420
    {3, {0, 0, 1}, {2, 0, 1}, {1, 0, 1}, true, true},    // YV12
    {2, {0, 0, 1}, {1, 0, 2}, {1, 1, 2}, true, true},    // NV12
    {2, {0, 0, 1}, {1, 1, 2}, {1, 0, 2}, true, true},    // NV21
    {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, true, false},   // I422
    {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, false, false},  // I444
};
constexpr int kFirstYuv = QV_LAYOUT_YUYV;

struct RgbBytes {
  int channels;
  bool redFirst;
};

// From QV_LAYOUT_GREY to QV_LAYOUT_RGBA.
constexpr RgbBytes kRgbLayouts[] = {{1, false}, {3, false}, {3, true}, {4, false}, {4, true}};
constexpr int kFirstRgb = QV_LAYOUT_GREY;

// One of `count` numbers from `first` on.
constexpr bool IsOneOf(int value, int first, std::size_t count) {
  return value >= first && value < first + static_cast<int>(count);
}

IppStatus CheckCodes(int yuvLayout, int rgbLayout, int matrix, int range, int siting) {
  if (!IsOneOf(yuvLayout, kFirstYuv, std::size(kYuvLayouts)) ||
      !IsOneOf(rgbLayout, kFirstRgb, std::size(kRgbLayouts)))
    return StatusDataTypeErr;
  const bool known = IsOneOf(matrix, 0, std::size(kColourMatrices)) && IsOneOf(range, 0, 2) &&
                     IsOneOf(siting, 0, 3);
  return known ? StatusOk : StatusOutOfRangeErr;
}

template <class Plane>
IppStatus CheckImages(const void* pixels, Plane const* planes, const int* steps, int planesUsed,
                      IppiSize size) {
  if (!planes || !steps || !pixels) return StatusNullPtrErr;
  for (int i = 0; i < planesUsed; ++i)
    if (!planes[i]) return StatusNullPtrErr;
  return size.width < 1 || size.height < 1 ? StatusSizeErr : StatusOk;
}

// The samples of a frame; `redFirst` says which chroma the first byte of a pixel hangs on.
template <class Byte>
YuvFrame<Byte> FrameOf(const YuvPlaces& layout, Byte* const* planes, const int* steps,
                       bool redFirst) {
  const auto first = [&](const SamplePlace& at) { return planes[at.plane] + at.first; };
  const SamplePlace& own = redFirst ? layout.cr : layout.cb;
  const SamplePlace& other = redFirst ? layout.cb : layout.cr;
  return {first(layout.luma),
          steps[layout.luma.plane],
          layout.luma.apart,
          {first(own), first(other)},
          {steps[own.plane], steps[other.plane]},
          own.apart,
          layout.halfWidth,
          layout.halfHeight};
}

ChromaSiting SitingOf(int siting) {
  return siting == QV_CHROMA_LEFT     ? ChromaSiting::Left
         : siting == QV_CHROMA_CENTRE ? ChromaSiting::Centre
                                  : ChromaSiting::Repeat;
}

// Calls rows(first, count) for bands of a frame, which begin on even rows. How long a pixel takes
// depends on the way and on both layouts.
template <class Kernel, class Rows>
IppStatus RunRows(const Kernel& kernel, int yuvLayout, int rgbLayout, IppiSize size,
                  const Rows& rows) {
  const int layouts = (yuvLayout * 16 + rgbLayout) << 16;
  const Work work = {1ll * size.width * size.height, MethodOf(kernel, layouts)};
  return RunBands(PlanEvenBands(size.height, CallBudget()), work, [&](Band band) {
    rows(static_cast<int>(band.first), band.length);
    return StatusOk;
  });
}

}  // namespace

IppStatus YuvToRgb(int yuvLayout, const unsigned char* const planes[], const int steps[],
                   int rgbLayout, unsigned char* dst, int dstStep, IppiSize size, int matrix,
                   int range, int siting) {
  if (const IppStatus status = CheckCodes(yuvLayout, rgbLayout, matrix, range, siting))
    return status;
  const YuvPlaces& layout = kYuvLayouts[yuvLayout - kFirstYuv];
  const RgbBytes& pixel = kRgbLayouts[rgbLayout - kFirstRgb];
  const bool grey = pixel.channels == 1;
  if (const IppStatus status = CheckImages(dst, planes, steps, grey ? 1 : layout.planes, size))
    return status;
  if (grey) {
    const unsigned char* const luma = planes[0] + layout.luma.first;
    return RunRows(MapLuma_8u, yuvLayout, rgbLayout, size, [&](int first, int rows) {
      const Band band = {first, rows};
      MapLuma_8u(band.At(luma, steps[0]), steps[0], layout.luma.apart, band.At(dst, dstStep),
                 dstStep, {size.width, rows}, kLumaToGrey[range]);
    });
  }
  const auto src = FrameOf(layout, planes, steps, pixel.redFirst);
  const RgbFrame<unsigned char> to = {dst, dstStep, pixel.channels, pixel.redFirst};
  const YuvToRgbTerms& terms = kYuvToRgb.at[matrix][range][pixel.redFirst];
  return RunRows(YuvToRgb_8u, yuvLayout, rgbLayout, size, [&](int first, int rows) {
    YuvToRgb_8u(&src, &to, &terms, SitingOf(siting), size, first, rows);
  });
}

namespace {

// Rows of luma from rows of grey, and neutral chroma in planes of its own.
void GreyToPlanes(const unsigned char* src, int srcStep, const YuvFrame<unsigned char>& dst,
                  int planes, IppiSize size, int range, const Band& band) {
  MapLuma_8u(band.At(src, srcStep), srcStep, 1, band.At(dst.luma, dst.lumaStep), dst.lumaStep,
             {size.width, band.length}, kGreyToLuma[range]);
  const int across = dst.halfWidth ? 2 : 1, down = dst.halfHeight ? 2 : 1;
  const IppiSize half = {(size.width - 1) / across + 1, (band.length - 1) / down + 1};
  for (int c = 0; c < planes - 1; ++c) {
    unsigned char* const row = Advance(dst.chroma[c], band.first / down * dst.chromaStep[c]);
    // Of pairs, as many bytes again.
    for (int part = 0; part < dst.chromaApart; ++part)
      SetPixels_8u_C1(128, Advance(row, 1ll * part * half.width), dst.chromaStep[c], half);
  }
}

}  // namespace

IppStatus RgbToYuv(int rgbLayout, const unsigned char* src, int srcStep, int yuvLayout,
                   unsigned char* const planes[], const int steps[], IppiSize size, int matrix,
                   int range, int siting) {
  if (const IppStatus status = CheckCodes(yuvLayout, rgbLayout, matrix, range, siting))
    return status;
  const YuvPlaces& layout = kYuvLayouts[yuvLayout - kFirstYuv];
  const RgbBytes& pixel = kRgbLayouts[rgbLayout - kFirstRgb];
  if (const IppStatus status = CheckImages(src, planes, steps, layout.planes, size)) return status;
  if (pixel.channels == 1 && layout.planes > 1) {
    // Of pairs the chroma that comes first in memory.
    const auto dst = FrameOf(layout, planes, steps, layout.cr.first < layout.cb.first);
    return RunRows(MapLuma_8u, yuvLayout, rgbLayout, size, [&](int first, int rows) {
      GreyToPlanes(src, srcStep, dst, layout.planes, size, range, {first, rows});
    });
  }
  const auto dst = FrameOf(layout, planes, steps, false);
  const RgbFrame<const unsigned char> from = {src, srcStep, pixel.channels, pixel.redFirst};
  const RgbToYuvTerms& terms = kRgbToYuv.at[matrix][range];
  return RunRows(RgbToYuv_8u, yuvLayout, rgbLayout, size, [&](int first, int rows) {
    RgbToYuv_8u(&from, &dst, &terms, SitingOf(siting), size, first, rows);
  });
}

}  // namespace qv
