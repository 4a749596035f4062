#include "kernels/yuv/Yuv.h"

#include <type_traits>

#include "kernels/yuv/YuvTerms.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

// A frame of one of the forms that a layout has, its images made by `make`: planes, a plane of
// pairs in either order, groups with luma first or last.
template <class Byte, class Make>
YuvFrame<Byte> MakeFrame(Case& c, IppiSize size, Make make) {
  enum { kPlanes420, kPlanes422, kPlanes444, kPairs, kGroups };
  const int form =
      c.IsBench() ? kPairs : c.random.Pick(kPlanes420, kPlanes422, kPlanes444, kPairs, kGroups);
  const bool halfHeight = form == kPlanes420 || form == kPairs, swapped = c.random.OneIn(2);
  const int width = form == kPlanes444 ? size.width : (size.width + 1) / 2;
  const int height = halfHeight ? (size.height + 1) / 2 : size.height;
  if (form == kGroups) {
    const Image groups = make(4 * width, height);
    const int lumaAt = c.random.Between(0, 1);
    Byte* const chroma = groups.data + 1 - lumaAt;
    return {groups.data + lumaAt,
            groups.step,
            2,
            {chroma + (swapped ? 2 : 0), chroma + (swapped ? 0 : 2)},
            {groups.step, groups.step},
            4,
            true,
            false};
  }
  const Image luma = make(size.width, size.height);
  if (form == kPairs) {
    const Image pairs = make(2 * width, height);
    return {luma.data,
            luma.step,
            1,
            {pairs.data + (swapped ? 1 : 0), pairs.data + (swapped ? 0 : 1)},
            {pairs.step, pairs.step},
            2,
            true,
            true};
  }
  const Image first = make(width, height), second = make(width, height);
  return {luma.data,          luma.step, 1, {first.data, second.data}, {first.step, second.step}, 1,
          form != kPlanes444, halfHeight};
}

ChromaSiting AnySiting(Case& c) {
  return c.IsBench() ? ChromaSiting::Repeat : static_cast<ChromaSiting>(c.random.Between(0, 2));
}

// An even first row and some rows of a frame.
struct Part {
  int first, rows;
};

Part AnyPart(Case& c, IppiSize size) {
  const int first = c.IsBench() ? 0 : c.random.Between(0, (size.height - 1) / 2) * 2;
  const int rows = c.IsBench() ? size.height : c.random.Between(1, size.height - first);
  return {first, first + rows == size.height || rows % 2 == 0 ? rows : rows - 1};
}

// Samples to pixels, or the other way.
template <bool kToPixels>
void CheckConversion(Case& c) {
  using Read = const unsigned char;
  const IppiSize size = c.Size();
  const auto make = [&](bool source, std::ptrdiff_t bytes, int rows) {
    return source ? c.Source(bytes, rows) : c.Destination(bytes, rows);
  };
  const auto yuv = MakeFrame<std::conditional_t<kToPixels, Read, unsigned char>>(
      c, size, [&](int bytes, int rows) { return make(kToPixels, bytes, rows); });
  const int channels = c.IsBench() ? 4
                       : kToPixels ? c.random.Between(3, 4)
                                   : c.random.Pick(1, 3, 4);
  const Image image = make(!kToPixels, std::ptrdiff_t{size.width} * channels, size.height);
  const int order = c.random.Between(0, 1);
  const RgbFrame<std::conditional_t<kToPixels, unsigned char, Read>> rgb = {image.data, image.step,
                                                                            channels, order == 1};
  const int matrix = c.random.Between(0, 2), range = c.random.Between(0, 1);
  const ChromaSiting siting = AnySiting(c);
  const Part part = AnyPart(c, size);
  c.Compare([=] {
    if constexpr (kToPixels)
      YuvToRgb_8u(&yuv, &rgb, &kYuvToRgb.at[matrix][range][order], siting, size, part.first,
                  part.rows);
    else
      RgbToYuv_8u(&rgb, &yuv, &kRgbToYuv.at[matrix][range], siting, size, part.first, part.rows);
    return 0;
  });
}

}  // namespace

QV_CHECK(YuvToRgb_8u) { CheckConversion<true>(c); }
QV_CHECK(RgbToYuv_8u) { CheckConversion<false>(c); }

QV_CHECK(MapLuma_8u) {
  const IppiSize size = c.Size();
  const int apart = c.random.Between(1, 2);
  const Image src = c.Source(std::ptrdiff_t{size.width - 1} * apart + 1, size.height);
  const Image dst = c.Destination(size.width, size.height);
  const int range = c.random.Between(0, 1);
  const LumaMap map = c.random.OneIn(2) ? kLumaToGrey[range] : kGreyToLuma[range];
  c.Compare([=] {
    MapLuma_8u(src.data, src.step, apart, dst.data, dst.step, size, map);
    return 0;
  });
}
