#include "kernels/color/Color.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

struct PlaneSet {
  unsigned char* data[3];
  int step[3];
};

// Planes of `size` with chroma of half the extent, an odd last column or row cut off: reading or
// writing it would hit the guard.
template <class Make>
PlaneSet MakePlanes(IppiSize size, Make make) {
  PlaneSet set;
  for (int c = 0; c < 3; ++c) {
    const int shift = c == 0 ? 0 : 1;
    const Image plane = make((size.width & ~1) >> shift, (size.height & ~1) >> shift);
    set.data[c] = plane.data;
    set.step[c] = plane.step;
  }
  return set;
}

}  // namespace

QV_CHECK(YCbCr422ToBGR_8u_C2C3) {
  const IppiSize size = c.Size(2);
  const Image src = c.Source(std::ptrdiff_t{size.width} * 2, size.height);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * 3, size.height);
  c.Compare([=] { return YCbCr422ToBGR_8u_C2C3(src.data, src.step, dst.data, dst.step, size); });
}

QV_CHECK(YCbCr420ToBGR_8u_P3C3) {
  const IppiSize size = c.Size(2, 2);
  const PlaneSet src = MakePlanes(size, [&](int width, int rows) { return c.Source(width, rows); });
  const Image dst = c.Destination(std::ptrdiff_t{size.width & ~1} * 3, size.height & ~1);
  c.Compare([=] { return YCbCr420ToBGR_8u_P3C3(src.data, src.step, dst.data, dst.step, size); });
}

QV_CHECK(YCbCr422ToYCrCb420_8u_C2P3) {
  const IppiSize size = c.Size(2, 2);
  const Image src = c.Source(std::ptrdiff_t{size.width & ~1} * 2, size.height & ~1);
  const PlaneSet dst =
      MakePlanes(size, [&](int width, int rows) { return c.Destination(width, rows); });
  c.Compare([=] {
    return YCbCr422ToYCrCb420_8u_C2P3(src.data, src.step, dst.data, dst.step, size);
  });
}

QV_CHECK(YCbCrInterleavedTo420_8u_P2P3) {
  const IppiSize size = c.Size(2, 2);
  const Image luma = c.Source(size.width & ~1, size.height & ~1);
  const Image chroma = c.Source(size.width & ~1, size.height / 2);
  const PlaneSet dst =
      MakePlanes(size, [&](int width, int rows) { return c.Destination(width, rows); });
  c.Compare([=] {
    return YCbCrInterleavedTo420_8u_P2P3(luma.data, luma.step, chroma.data, chroma.step, dst.data,
                                         dst.step, size);
  });
}
