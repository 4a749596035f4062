#include "kernels/deinterlace/Deinterlace.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

QV_CHECK(Deinterlace_8u) {
  const IppiSize size = c.Size(1, 3);
  const unsigned mode = static_cast<unsigned>(c.IsBench() ? 0 : c.random.Pick(0, 1, 4, 16, 77));
  const int rowsBefore = mode == 4 || mode == 16;
  Image src = c.Source(size.width, size.height + 2 * rowsBefore);
  src.data += std::ptrdiff_t{2} * rowsBefore * src.step;
  const Image dst = c.Destination(size.width, size.height + rowsBefore, Rows::kMayOverlap,
                                  rowsBefore);
  const unsigned weight = static_cast<unsigned>(
      c.IsBench() ? 100 : c.random.OneIn(4) ? c.random.Pick(0, 1, 128, 255, 256, 257, -1)
                                            : c.random.Between(0, 256));
  c.Compare([=] {
    return Deinterlace_8u(src.data, src.step, dst.data, dst.step, size.width, size.height, weight,
                          mode);
  });
}

QV_CHECK(FieldToFrame_8u) {
  const IppiSize size = c.Size(1, 2);
  const Image src = c.Source(size.width, size.height);
  const Image dst = c.Destination(size.width, size.height);
  const int parity = c.IsBench() ? 0 : c.random.Between(0, 1);
  const int weight = c.IsBench() ? 64 : c.random.OneIn(3) ? c.random.Pick(0, 1, 127, 128)
                                                          : c.random.Between(0, 128);
  const int first = c.IsBench() ? 0 : c.random.Between(0, size.height - 1);
  const int rows = c.IsBench() ? size.height : c.random.Between(0, size.height - first);
  c.Compare([=] {
    return FieldToFrame_8u(src.data, src.step, dst.data, dst.step, size.width, size.height, parity,
                           weight, first, rows);
  });
}
