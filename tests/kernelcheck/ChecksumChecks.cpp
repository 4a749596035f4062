#include "kernels/checksum/Checksum.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

void CheckChecksum(Case& c, const ChecksumKernel& kernel) {
  const IppiSize size = c.Size();
  // Lengths around the blocks and unrolled loops, and now and then many blocks.
  const int length = c.IsBench()             ? size.width * size.height
                     : c.random.OneIn(3)     ? size.width
                     : c.random.OneIn(40)    ? c.random.Between(1, 300000)
                                             : c.random.Between(1, 6000);
  const Image src = c.Source(length, 1);
  // The running value starts as a destination does: from random or extreme bytes.
  const Image value = c.Destination(4, 1, Rows::kDownwards);
  c.Compare([=] {
    unsigned int running;
    std::memcpy(&running, value.data, 4);
    const IppStatus status = kernel(src.data, length, &running);
    std::memcpy(value.data, &running, 4);
    return status;
  });
}

}  // namespace

QV_CHECK(Crc32_8u) { CheckChecksum(c, Crc32_8u); }
QV_CHECK(Adler32_8u) { CheckChecksum(c, Adler32_8u); }
