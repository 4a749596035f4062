// Images larger than an int can address: rows so far apart that the last one lies gigabytes past
// the first, 70000 pixels a side, checksums of all bytes that a length can name. Memory is
// reserved, not used: only pages that a call touches exist.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "support/Bytes.h"
#include "support/Levels.h"
#include "tests/support/Guarded.h"
#include "tests/support/Operations.h"

// Windows sets memory aside for what is only reserved elsewhere.
#if PTRDIFF_MAX > INT_MAX && !defined(_WIN32)

#include <sys/mman.h>
#include <unistd.h>

namespace qv::test {
namespace {

using Lib = CqvAccLib;

constexpr std::size_t kLarge = std::size_t{11} << 30;

// Rows gigabytes away, and 70000 pixels a side. The same pixels in small memory give the same
// bytes.
TEST(LargeImages, AreFoundAtEveryLevel) {
  Planes small(2 << 20), large(kLarge);
  const struct {
    IppiSize size;
    int apart;
  } cases[] = {
      {{46, 200}, (1 << 25) + 40}, {{150, 4}, INT_MAX}, {{70000, 4}, 300000}, {{4, 70000}, 5000}};
  for (const auto& c : cases)
    for (const Operation& operation : Operations())
      for (const int budget : {1, 2}) {
        const UseBudget useBudget(budget);
        Outcome wanted = {};
        {
          const UseLevel plain(AvailableLevels()[0]);
          small.Place(operation, c.size);
          small.Fill();
          wanted = small.Call(operation);
        }
        ASSERT_GE(wanted.status, StatusOk) << operation.name;
        for (const Level& level : AvailableLevels())
          for (const int sign : {1, -1}) {
            if (sign < 0 && !operation.backwards) continue;
            const UseLevel use(level);
            large.Place(operation, c.size, [&](int) { return sign * c.apart; });
            large.Fill();
            ASSERT_TRUE(large.Call(operation) == wanted)
                << operation.name << ", level " << level.name << ", budget " << budget << ", step "
                << sign * c.apart;
          }
      }
}

// Shifted by one, the last pixel of the largest image lands on the last one that an int can number;
// the destination's region reaches beyond it. Along x, then along y.
TEST(LargeImages, WarpsReachTheLargestInt) {
  constexpr int kFirst = INT_MAX - 299;
  const GuardedMemory from(std::size_t{13} << 30), to(std::size_t{13} << 30);
  for (const bool along : {true, false})
    for (const int pixel : {1, 3}) {
      const int step = along ? INT_MAX : 2 * pixel, rows = along ? 2 : 1;
      const std::size_t bytes = std::size_t{300} * (along ? pixel : step);
      const std::ptrdiff_t last = std::ptrdiff_t{kFirst} * (along ? pixel : step);
      for (int y = 0; y < rows; ++y)
        Random(7 + y).Fill(from.begin() + last - bytes / 300 + std::ptrdiff_t{y} * step, bytes);
      const IppiRect source = along ? IppiRect{0, 0, INT_MAX, 2} : IppiRect{0, 0, 2, INT_MAX};
      const IppiRect target = along ? IppiRect{kFirst, 0, 400, 2} : IppiRect{0, kFirst, 2, 400};
      const double dx = along, dy = !along, shift[3][3] = {{1, 0, dx}, {0, 1, dy}, {0, 0, 1}};
      for (const Level& level : AvailableLevels())
        for (const int budget : {1, 2})
          for (const int method : {1, 2, 4})
            for (const bool rotates : {false, true}) {
              const UseLevel use(level);
              const UseBudget useBudget(budget);
              SCOPED_TRACE(testing::Message() << level.name << ", method " << method
                                              << ", along x " << along << ", rotates " << rotates);
              Bytes expected(bytes + 600, 77);
              for (int y = 0; y < rows; ++y)
                std::memset(to.begin() + last + std::ptrdiff_t{y} * step, 77, expected.size());
              const auto call = [&](auto operation, auto... transform) {
                return operation(Type(pixel == 1 ? 2 : 4), from.begin(),
                                 {source.width, source.height}, step, source, to.begin(), step,
                                 target, transform..., method);
              };
              ASSERT_EQ(rotates ? call(Lib::qvRotate, 0, dx, dy)
                                : call(Lib::qvWarpPerspective, shift),
                        StatusOk);
              for (int y = 0; y < rows; ++y) {
                const std::ptrdiff_t row = last + std::ptrdiff_t{y} * step;
                std::memcpy(expected.data(), from.begin() + row - bytes / 300, bytes);
                ASSERT_EQ(std::memcmp(to.begin() + row, expected.data(), expected.size()), 0);
              }
            }
    }
}

TEST(LargeImages, ChecksumsOfTheLongestMessage) {
  const GuardedMemory memory(std::size_t{2} << 30);
  unsigned char* const data = memory.begin();
  for (std::size_t i = 0; i < 2000; ++i) data[i * 1000003] = static_cast<unsigned char>(i);
  unsigned whole = 0, pieces = 0, sums = 1, sumsOfPieces = 1;
  ASSERT_EQ(Lib::qvCRC32(Type(0), data, INT_MAX, &whole), StatusOk);
  ASSERT_EQ(Lib::qvAdler32(Type(0), data, INT_MAX, &sums), StatusOk);
  for (std::int64_t at = 0; at < INT_MAX;) {
    const int n = static_cast<int>(std::min<std::int64_t>(700000001, INT_MAX - at));
    Lib::qvCRC32(Type(0), data + at, n, &pieces);
    Lib::qvAdler32(Type(0), data + at, n, &sumsOfPieces);
    at += n;
  }
  EXPECT_EQ(whole, pieces);
  EXPECT_EQ(sums, sumsOfPieces);
}

// An address range that shows the same few pages over and over.
class RepeatedMemory {
 public:
  RepeatedMemory(std::size_t size, std::size_t period)
      : size_((size + period - 1) / period * period) {
    const int file = memfd_create("repeated", 0);
    if (file < 0 || ftruncate(file, static_cast<off_t>(period)) != 0) std::abort();
    begin_ = static_cast<unsigned char*>(
        mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    if (begin_ == MAP_FAILED) std::abort();
    for (std::size_t at = 0; at < size_; at += period)
      if (mmap(begin_ + at, period, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) ==
          MAP_FAILED)
        std::abort();
    close(file);
  }
  ~RepeatedMemory() { munmap(begin_, size_); }
  RepeatedMemory(const RepeatedMemory&) = delete;
  RepeatedMemory& operator=(const RepeatedMemory&) = delete;

  unsigned char* begin() const { return begin_; }

 private:
  unsigned char* begin_;
  std::size_t size_;
};

// Every pixel of 70000 x 70000, 4.9 to 19.6 GB a plane: minutes, so only `scripts/test.sh --all`
// runs it. Memory repeats every 32 rows, all of which hold the same bytes. So do then all the rows
// that are written, unless an operation mixes columns into them or works in place, and what they
// hold is what an image of a few such rows gives.
TEST(LargeImages, DISABLED_SeventyThousandPixelsBothSides) {
  constexpr int kSide = 70000, kMost = kSide + kSide / 2;
  constexpr int kStep = 4 * kSide + 64;
  constexpr std::size_t kPeriod = std::size_t{32} * kStep;
  static_assert(kPeriod % 4096 == 0);
  std::vector<std::unique_ptr<RepeatedMemory>> memory;
  for (int i = 0; i < 5; ++i)
    memory.push_back(std::make_unique<RepeatedMemory>(std::size_t{kStep} * kMost, kPeriod));
  int compared = 0;
  for (const Operation& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    const auto is = [&](const char* family) { return operation.name.starts_with(family); };
    // Scattered fetches from so many pages and long filters are slow: a method a layout will do.
    if ((is("qvRotate") || is("qvWarpPerspective ")) && !is("qvRotate 2 1 ") &&
        !is("qvRotate 4 2 ") && !is("qvWarpPerspective 2 2") && !is("qvWarpPerspective 4 1"))
      continue;
    if (is("qv_resample") && !is("qv_resample 0 ") && !operation.name.ends_with(" 2")) continue;
    // Several bands resize differently, and a few rows are one band.
    const UseBudget budget(is("qvResize") ? 1 : 2);
    const std::vector<Shape> shapes = operation.shapes({kSide, kSide});
    constexpr int kFew = 8;
    Bytes rows[2] = {Bytes(std::size_t{2 * kFew} * kStep), Bytes(std::size_t{2 * kFew} * kStep)};
    Random(3).Fill(rows[0].data(), kStep);
    for (int y = 1; y < kFew; ++y) std::memcpy(rows[0].data() + y * kStep, rows[0].data(), kStep);
    std::vector<Plane> planes;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      for (int y = 0; y < 32; ++y)
        std::memcpy(memory[i]->begin() + y * kStep, rows[i > 0].data(), kStep);
      planes.push_back({memory[i]->begin(), kStep});
    }
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(operation.call(planes.data(), {kSide, kSide}), StatusOk);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%s: %.1f s\n", operation.name.c_str(), seconds.count());
    std::fflush(stdout);
    if (shapes.size() != 2 || shapes[1].rows < kSide || is("qvRotate") || is("qvWarp") ||
        is("qvDeinterlace"))  // whose last row is a copy
      continue;
    ++compared;
    const Plane few[] = {{rows[0].data(), kStep}, {rows[1].data(), kStep}};
    ASSERT_EQ(operation.call(few, {kSide, kFew}), StatusOk);
    // Filters go along rows or columns first, whichever is less work, and round in between.
    const int tolerance = is("qvResize") || is("qv_resample") ? 1 : 0;
    for (int y = 0; y < 32; ++y) {
      const unsigned char* const got = memory[1]->begin() + y * kStep;
      for (int x = 0; x < shapes[1].rowBytes; ++x)
        ASSERT_NEAR(got[x], rows[1][static_cast<std::size_t>(kStep) + x], tolerance)
            << "row " << y << ", byte " << x;
    }
  }
  EXPECT_GE(compared, 20);
}

}  // namespace
}  // namespace qv::test

#endif
