// qvCRC32 and qvAdler32 through the public interface, at every level: the plain definitions, worst
// cases.
#include <gtest/gtest.h>

#include "support/Bytes.h"
#include "support/Levels.h"
#include "tests/support/Guarded.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;
using Checksum = IppStatus (*)(Lib::qvDataType, const unsigned char*, int, unsigned int*);

// Each level, and what it does with less carry-less multiplication than the processor has.
template <class Body>
void AtLevelsAndFoldings(const Body& body) {
  for (Level level : AvailableLevels())
    for (int most = level.carrylessLevel, folding = 0; folding <= most; ++folding) {
      level.carrylessLevel = folding;
      const UseLevel use(level);
      SCOPED_TRACE(testing::Message() << level.name << ", folding " << folding);
      body();
    }
}

unsigned int Continue(Checksum checksum, unsigned int value, const unsigned char* src, int length) {
  EXPECT_EQ(checksum(Lib::OneChannel, src, length, &value), StatusOk);
  return value;
}

// The register of ITU-T V.42, a bit at a time.
template <class Byte>
constexpr unsigned int BitwiseCrc(unsigned int crc, const Byte* src, int length) {
  crc = ~crc;
  for (int i = 0; i < length; ++i) {
    crc ^= static_cast<unsigned char>(src[i]);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320u : 0);
  }
  return ~crc;
}

// RFC 1950, with a remainder at each byte.
template <class Byte>
constexpr unsigned int BytewiseAdler(unsigned int adler, const Byte* src, int length) {
  unsigned int a = adler % 65536, b = adler / 65536;
  for (int i = 0; i < length; ++i) {
    a = (a + static_cast<unsigned char>(src[i])) % 65521;
    b = (b + a) % 65521;
  }
  return b * 65536 + a;
}

// Their published check values.
static_assert(BitwiseCrc(0, "123456789", 9) == 0xCBF43926);
static_assert(BytewiseAdler(1, "Wikipedia", 9) == 0x11E60398);

// Every length around the vector sizes, folding chains, unrolled runs and the table of near
// factors, and many with several windows of the recurrence, against the definitions, flush to both
// guard pages. From any starting value: such as that of the piece before.
TEST(Checksum, EqualsTheDefinitionAtEveryShortLength) {
  const GuardedMemory memory(1 << 16);
  Random random(7);
  random.Fill(memory.begin(), memory.capacity());
  for (int length = 1; length <= 20000; length += length < 2700 ? 1 : 311)
    for (unsigned char* const src : {memory.begin(), memory.end() - length,
                                     memory.begin() + random.Between(1, 63)}) {
      const auto start = static_cast<unsigned int>(random.Next());
      const unsigned int crc = BitwiseCrc(start, src, length);
      const unsigned int adler = BytewiseAdler(start, src, length);
      AtLevelsAndFoldings([&] {
        ASSERT_EQ(Continue(Lib::qvCRC32, start, src, length), crc) << length;
        ASSERT_EQ(Continue(Lib::qvAdler32, start, src, length), adler) << length;
      });
    }
}

// The largest sums there are: all 255 from starting sums up to the largest that fit their halves,
// over lengths on both sides of each block that sums are reduced after (5552 bytes, 1023 vectors).
TEST(Adler32, HoldsTheLargestSums) {
  const Bytes full(70000, 255);
  for (const unsigned int start : {0xFFFFFFFFu, 0xFFF1FFF1u, 0xFFF0FFF0u, 0x0000FFFFu, 0xFFFF0000u})
    for (const int length :
         {1, 2, 15, 16, 17, 63, 64, 65, 128, 2048, 5551, 5552, 5553, 11104, 16367, 16368, 16384,
          32736, 32767, 65472, 65535, 65536, 65599, 70000}) {
      const unsigned int expected = BytewiseAdler(start, full.data(), length);
      AtLevelsAndFoldings([&] {
        const unsigned int adler = Continue(Lib::qvAdler32, start, full.data(), length);
        EXPECT_EQ(adler, expected) << std::hex << start << std::dec << ' ' << length;
        EXPECT_LT(adler % 65536, 65521u);
        EXPECT_LT(adler / 65536, 65521u);
      });
    }
}

}  // namespace
}  // namespace qv::test
