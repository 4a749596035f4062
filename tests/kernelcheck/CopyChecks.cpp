#include "kernels/copy/Copy.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

void CheckCopy(Case& c, const ImageKernel& kernel, int srcPixel, int dstPixel) {
  const IppiSize size = c.Size();
  const Image src = c.Source(std::ptrdiff_t{size.width} * srcPixel, size.height);
  // The last byte that may be touched is the last one stored, not the end of the last pixel.
  const std::ptrdiff_t stored = std::ptrdiff_t{size.width} * dstPixel -
                                (&kernel == &CopyChannel_8u_C1C3 ? 2
                                 : &kernel == &CopyKeepAlpha_8u_C3AC4 ? 1 : 0);
  const Image dst = c.Destination(stored, size.height);
  c.Compare([=] { return kernel(src.data, src.step, dst.data, dst.step, size); });
}

void CheckMirror(Case& c, const MirrorKernel& kernel, int pixel) {
  const IppiSize size = c.Size();
  const Image src = c.Source(std::ptrdiff_t{size.width} * pixel, size.height);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * pixel, size.height);
  const auto axis = static_cast<IppiAxis>(c.IsBench() ? 1 : c.random.Between(0, 2));
  c.Compare([=] {
    return kernel(src.data, src.step, dst.data, dst.step, size.width, size.height, axis);
  });
}

}  // namespace

QV_CHECK(CopyRows_8u_C1) { CheckCopy(c, CopyRows_8u_C1, 1, 1); }
QV_CHECK(CopyRows_8u_C3) { CheckCopy(c, CopyRows_8u_C3, 3, 3); }
QV_CHECK(CopyChannel_8u_C1C3) { CheckCopy(c, CopyChannel_8u_C1C3, 1, 3); }
QV_CHECK(CopyDropAlpha_8u_AC4C3) { CheckCopy(c, CopyDropAlpha_8u_AC4C3, 4, 3); }
QV_CHECK(CopyKeepAlpha_8u_C3AC4) { CheckCopy(c, CopyKeepAlpha_8u_C3AC4, 3, 4); }
QV_CHECK(DupGray_8u_C1C3) { CheckCopy(c, DupGray_8u_C1C3, 1, 3); }

QV_CHECK(SetPixels_8u_C1) {
  const IppiSize size = c.Size();
  const Image dst = c.Destination(size.width, size.height);
  const auto value = static_cast<unsigned char>(c.random.Next());
  c.Compare([=] { return SetPixels_8u_C1(value, dst.data, dst.step, size); });
}

QV_CHECK(SetPixels_8u_C3) {
  const IppiSize size = c.Size();
  const Image value = c.Source(3, 1);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * 3, size.height);
  c.Compare([=] { return SetPixels_8u_C3(value.data, dst.data, dst.step, size); });
}

QV_CHECK(Mirror_8u_C1) { CheckMirror(c, Mirror_8u_C1, 1); }
QV_CHECK(Mirror_8u_C3) { CheckMirror(c, Mirror_8u_C3, 3); }

QV_CHECK(LookupPalette_8u_C1C3) {
  const IppiSize size = c.Size();
  const int bits = c.IsBench() ? 8 : c.random.Between(1, 8);
  const Image palette = c.Source(3 << bits, 1);
  const Image src = c.Source(size.width, size.height);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * 3, size.height);
  c.Compare([=] {
    return LookupPalette_8u_C1C3(src.data, src.step, dst.data, dst.step, size.width, size.height,
                                 palette.data, bits);
  });
}

QV_CHECK(MulScale_8u_C1I) {
  const IppiSize size = c.Size();
  const Image image = c.Destination(size.width, size.height, Rows::kDownwards);
  const auto value = static_cast<unsigned char>(c.random.Next());
  c.Compare([=] {
    return MulScale_8u_C1I(image.data, image.step, value, image.data, image.step, size.width,
                           size.height);
  });
}
