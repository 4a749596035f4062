// Luma and chroma to pixels and back: every layout, with anything for the codes.
#include "qvAcceleratedLib/YuvRgb.h"
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

// From QV_LAYOUT_YUYV to QV_LAYOUT_I444: the planes, and of those after the first the pixels that
// share a sample and the bytes that it has.
struct YuvShape {
  int planes, across, down, bytes;
};
constexpr YuvShape kYuvShapes[] = {{1, 2, 1, 4}, {1, 2, 1, 4}, {3, 2, 2, 1}, {3, 2, 2, 1},
                                   {2, 2, 2, 2}, {2, 2, 2, 2}, {3, 2, 1, 1}, {3, 1, 1, 1}};
// From QV_LAYOUT_GREY to QV_LAYOUT_RGBA.
constexpr int kPixelBytes[] = {1, 3, 3, 4, 4};

constexpr bool IsWithin(int value, int first, int last) { return value >= first && value <= last; }

// The rows of a plane; groups of packed ones are whole.
Part PlaneOf(const YuvShape& shape, int plane, IppiSize size) {
  const bool packed = shape.planes == 1;
  const std::ptrdiff_t across = packed || plane > 0 ? shape.across : 1;
  const std::ptrdiff_t down = plane > 0 ? shape.down : 1;
  const std::ptrdiff_t bytes = packed || plane > 0 ? shape.bytes : 1;
  return {(size.width + across - 1) / across * bytes, (size.height + down - 1) / down};
}

}  // namespace

void FuzzYuv(Input& in) {
  Call call(in);
  const bool toSamples = in.Between("to samples", 0, 1) == 1;
  const int yuv = in.Code("samples", QV_LAYOUT_I420, QV_LAYOUT_NV12, QV_LAYOUT_YUYV, QV_LAYOUT_I444,
                          QV_LAYOUT_I422, QV_LAYOUT_YV12, QV_LAYOUT_NV21, QV_LAYOUT_UYVY);
  const int rgb = in.Code("pixels", QV_LAYOUT_BGR, QV_LAYOUT_BGRA, QV_LAYOUT_RGB, QV_LAYOUT_RGBA,
                          QV_LAYOUT_GREY);
  const int matrix = in.Code("matrix", QV_BT601, QV_BT709, QV_BT2020);
  const int range = in.Code("range", QV_STUDIO_RANGE, QV_FULL_RANGE);
  const int siting = in.Code("siting", QV_CHROMA_REPEATED, QV_CHROMA_LEFT, QV_CHROMA_CENTRE);
  const bool known = IsWithin(yuv, QV_LAYOUT_YUYV, QV_LAYOUT_I444) &&
                     IsWithin(rgb, QV_LAYOUT_GREY, QV_LAYOUT_RGBA);
  const bool inRange = IsWithin(matrix, QV_BT601, QV_BT2020) &&
                       IsWithin(range, QV_STUDIO_RANGE, QV_FULL_RANGE) &&
                       IsWithin(siting, QV_CHROMA_REPEATED, QV_CHROMA_CENTRE);
  const IppiSize size = call.Size(!known || !inRange, 4);
  if (!known || !inRange) call.Refused();

  const YuvShape shape = known ? kYuvShapes[yuv - QV_LAYOUT_YUYV] : YuvShape{3, 1, 1, 1};
  const int bytes = known ? kPixelBytes[rgb - QV_LAYOUT_GREY] : 4;
  const Part row = {static_cast<std::ptrdiff_t>(size.width) * bytes, size.height};
  const auto draw = [&](const char* step, const char* null, bool written, Part part) {
    return written ? call.Destination(step, null, part) : call.Source(step, null, part);
  };
  const FuzzImage pixels = draw("pixel step", "pixels null", !toSamples, row);
  unsigned char* planes[3] = {};
  int steps[3] = {};
  // Of grey pixels the luma alone is looked at.
  const int used = !toSamples && known && rgb == QV_LAYOUT_GREY ? 1 : shape.planes;
  bool null = !pixels.data;
  for (int p = 0; p < used; ++p) {
    const FuzzImage plane = draw("step", "plane null", toSamples, PlaneOf(shape, p, size));
    planes[p] = plane.data, steps[p] = plane.step;
    null |= !plane.data;
  }
  const bool noPlanes = contract::MayBeNull(in, "planes null");
  const bool noSteps = contract::MayBeNull(in, "steps null");
  unsigned char** const givenPlanes = noPlanes ? nullptr : planes;
  const int* const givenSteps = noSteps ? nullptr : steps;
  const int expected = !known                        ? StatusDataTypeErr
                       : !inRange                    ? StatusOutOfRangeErr
                       : null || noPlanes || noSteps ? StatusNullPtrErr
                       : IsEmpty(size)               ? StatusSizeErr
                                                     : StatusOk;
  if (toSamples)
    call.Run("qv_rgb_to_yuv", expected, [&] {
      return RgbToYuv(rgb, pixels.data, pixels.step, yuv, givenPlanes, givenSteps, size, matrix,
                      range, siting);
    });
  else
    call.Run("qv_yuv_to_rgb", expected, [&] {
      return YuvToRgb(yuv, givenPlanes, givenSteps, rgb, pixels.data, pixels.step, size, matrix,
                      range, siting);
    });
}

}  // namespace qv::test
