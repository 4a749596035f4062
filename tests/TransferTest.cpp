// qvCopy, qvDup, qvSet, qvMirror, qvLUTPalette and qvMulCScale through the public interface. What the
// rows write at each level is kernelcheck's; here are the formulas on small images, the statuses and
// their order, and bands.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <numeric>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

// Runs a test body with one band and with several.
void AtBudgets(const std::function<void()>& body) {
  for (const int budget : {1, 2, 3, 7}) {
    const UseBudget use(budget);
    SCOPED_TRACE(testing::Message() << "budget " << budget);
    body();
  }
}

TEST(Copy, OfALongRowIsThatOfItsPixels) {
  const int width = 30000;
  const Bytes src = Noise(4 * width);
  for (const auto& [type, from, to] : {std::array{2, 1, 1}, {4, 3, 3}, {9, 1, 3}, {13, 4, 3}}) {
    Bytes expected(4 * width, 7);
    for (int k = 0; k < width; ++k)
      for (int c = 0; c < std::min(from, to); ++c) expected[to * k + c] = src[from * k + c];
    AtBudgets([&] {
      Bytes dst(4 * width, 7);
      EXPECT_EQ(Lib::qvCopy(Type(type), src.data(), 5, dst.data(), 5, {width, 1}), StatusOk);
      EXPECT_TRUE(dst == expected) << type;
    });
  }
}

// Copies of more than 10 MiB go past the caches.
TEST(Copy, OfALargeImageIsTheSameAtEveryLevel) {
  const UseBudget one(1);  // bands are not as large
  const IppiSize size = {1283, 3001};
  const int rowBytes = 3 * size.width;
  for (const int gap : {0, 7}) {
    const int step = rowBytes + gap;
    const Bytes src = Noise(static_cast<std::size_t>(step) * size.height);
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Bytes dst(src.size() + 64, 99);
      unsigned char* const to = dst.data() + 5;
      ASSERT_EQ(Lib::qvCopy(Lib::ThreeChannels, src.data(), step, to, step, size), StatusOk);
      for (int y = 0; y < size.height; ++y) {
        const std::ptrdiff_t at = std::ptrdiff_t{y} * step;
        ASSERT_TRUE(std::equal(to + at, to + at + rowBytes, src.data() + at)) << level.name << y;
        ASSERT_EQ(std::count(to + at + rowBytes, to + at + step, 99), gap) << level.name << y;
      }
      EXPECT_EQ(std::count(dst.begin(), dst.begin() + 5, 99), 5);
      EXPECT_EQ(std::count(to + static_cast<std::ptrdiff_t>(size.height) * step,
                           dst.data() + dst.size(), 99), 59);
    }
  }
}

TEST(Copy, ChangesLayoutsAsTheTypeSays) {
  const Bytes src = {10, 11, 12, 13, 20, 21, 22, 23};
  struct {
    int type, width, srcStep;
    Bytes expected;  // 0 where the destination must keep its 0
  } const cases[] = {
      {2, 8, 8, {10, 11, 12, 13, 20, 21, 22, 23, 0}},
      {4, 2, 6, {10, 11, 12, 13, 20, 21, 0, 0, 0}},
      {9, 3, 3, {10, 0, 0, 11, 0, 0, 12, 0, 0}},
      {13, 2, 8, {10, 11, 12, 20, 21, 22, 0, 0, 0}},
      {14, 2, 6, {10, 11, 12, 0, 13, 20, 21, 0, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.type);
    Bytes dst(9, 0);
    EXPECT_EQ(Lib::qvCopy(Type(c.type), src.data(), c.srcStep, dst.data(), 9, {c.width, 1}),
              StatusOk);
    EXPECT_EQ(dst, c.expected);
  }
  Bytes dst(6, 0);
  EXPECT_EQ(Lib::qvDup(Type(12345), src.data(), 2, dst.data(), 6, {2, 1}), StatusOk);
  EXPECT_EQ(dst, (Bytes{10, 10, 10, 11, 11, 11}));
}

TEST(Copy, MergesThreePlanesIntoOneImage) {
  const int width = 333, height = 131;
  const Bytes planes = Noise(3 * width * height);
  AtBudgets([&] {
    Bytes image(3 * width * height, 0);
    for (int c = 0; c < 3; ++c)
      ASSERT_EQ(Lib::qvCopy(Type(9), planes.data() + c * width * height, width, image.data() + c,
                            3 * width, {width, height}),
                StatusOk);
    for (int k = 0; k < width * height; ++k)
      for (int c = 0; c < 3; ++c)
        ASSERT_EQ(image[3 * k + c], planes[c * width * height + k]) << k << ' ' << c;
  });
}

// Every operation in bands must do what it does whole; images with steps that are padded, exact and
// negative.
TEST(Transfer, BandsWriteWhatOneCallWrites) {
  const int width = 270, height = 301;
  const Bytes src = Noise(std::size_t{4} * (width + 5) * height);
  const Bytes palette = Noise(768), before = Noise(src.size());
  using Call = std::function<IppStatus(const unsigned char*, int, unsigned char*, int)>;
  const IppiSize size = {width, height};
  std::vector<Call> calls;
  for (const int type : {2, 4, 9, 13, 14})
    calls.push_back([=](auto s, int ss, auto d, int ds) {
      return Lib::qvCopy(Type(type), s, ss, d, ds, size);
    });
  for (const int type : {2, 4}) {
    for (const int axis : {0, 1, 2})
      calls.push_back([=](auto s, int ss, auto d, int ds) {
        return Lib::qvMirror(Type(type), s, ss, d, ds, size, static_cast<IppiAxis>(axis));
      });
    calls.push_back([=](auto s, int, auto d, int ds) {
      return Lib::qvSet(Type(type), s, d, ds, size);
    });
  }
  calls.push_back([=](auto s, int ss, auto d, int ds) {
    return Lib::qvDup(Type(2), s, ss, d, ds, size);
  });
  calls.push_back([&](auto s, int ss, auto d, int ds) {
    return Lib::qvLUTPalette(Type(2), s, ss, d, ds, size, palette.data(), 8);
  });
  calls.push_back([=](auto, int, auto d, int ds) {
    return ds < 1 ? StatusOk : Lib::qvMulCScale(Type(16), 77, d, ds, size);
  });

  for (const int direction : {1, -1})
    for (std::size_t i = 0; i < calls.size(); ++i) {
      SCOPED_TRACE(testing::Message() << "call " << i << ", direction " << direction);
      const int step = direction * 4 * (width + 5);
      const std::ptrdiff_t first = direction < 0 ? std::ptrdiff_t{-step} * (height - 1) : 0;
      Bytes whole = before;
      {
        const UseBudget one(1);
        ASSERT_EQ(calls[i](src.data() + first, step, whole.data() + first, step), StatusOk);
      }
      AtBudgets([&] {
        Bytes banded = before;
        ASSERT_EQ(calls[i](src.data() + first, step, banded.data() + first, step), StatusOk);
        ASSERT_TRUE(banded == whole);
      });
    }
}

TEST(Copy, CutsALongSingleRowIntoPieces) {
  const Bytes src = Noise(12290);
  AtBudgets([&] {
    for (const int width : {1, 4096, 8191, 12290})
      for (const int dstStep : {12290, 12291}) {
        Bytes dst(12290, 7);
        ASSERT_EQ(Lib::qvCopy(Type(2), src.data(), 12290, dst.data(), dstStep, {width, 1}),
                  StatusOk);
        Bytes expected(12290, 7);
        std::copy(src.begin(), src.begin() + width, expected.begin());
        ASSERT_TRUE(dst == expected);
      }
  });
}

TEST(Set, WritesThePixelAndNothingBetweenRows) {
  const Bytes value = {1, 2, 3};
  Bytes dst(16, 9);
  EXPECT_EQ(Lib::qvSet(Type(4), value.data(), dst.data(), 8, {2, 2}), StatusOk);
  EXPECT_EQ(dst, (Bytes{1, 2, 3, 1, 2, 3, 9, 9, 1, 2, 3, 1, 2, 3, 9, 9}));
  EXPECT_EQ(Lib::qvSet(Type(2), value.data(), dst.data(), 8, {1, 2}), StatusOk);
  EXPECT_EQ(dst, (Bytes{1, 2, 3, 1, 2, 3, 9, 9, 1, 2, 3, 1, 2, 3, 9, 9}));
}

TEST(Mirror, FlipsAboutEachAxis) {
  const Bytes src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  struct {
    int type, axis, width;
    Bytes expected;
  } const cases[] = {
      {2, 0, 6, {7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}},
      {2, 1, 6, {6, 5, 4, 3, 2, 1, 12, 11, 10, 9, 8, 7}},
      {2, 2, 6, {12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}},
      {4, 0, 2, {7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}},
      {4, 1, 2, {4, 5, 6, 1, 2, 3, 10, 11, 12, 7, 8, 9}},
      {4, 2, 2, {10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3}},
      {2, 3, 6, Bytes(12, 0)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.type << ' ' << c.axis);
    Bytes dst(12, 0);
    EXPECT_EQ(Lib::qvMirror(Type(c.type), src.data(), 6, dst.data(), 6, {c.width, 2},
                            static_cast<IppiAxis>(c.axis)),
              StatusOk);
    EXPECT_EQ(dst, c.expected);
  }
}

TEST(LUTPalette, UsesTheLowBitsOfAnIndex) {
  Bytes palette(48);
  std::iota(palette.begin(), palette.end(), static_cast<unsigned char>(100));
  const unsigned char src = 0x37;
  Bytes dst(3, 0);
  EXPECT_EQ(Lib::qvLUTPalette(Type(2), &src, 1, dst.data(), 3, {1, 1}, palette.data(), 4),
            StatusOk);
  EXPECT_EQ(dst, (Bytes{121, 122, 123}));
}

TEST(MulCScale, IsTheFlooredQuotientForAllBytesAtAllLevels) {
  for (const Level& level : AvailableLevels()) {
    SCOPED_TRACE(level.name);
    const UseLevel use(level);
    for (int value = 0; value < 256; ++value) {
      Bytes image(256);
      std::iota(image.begin(), image.end(), static_cast<unsigned char>(0));
      ASSERT_EQ(Lib::qvMulCScale(Type(16), static_cast<unsigned char>(value), image.data(), 256,
                                 {256, 1}),
                StatusOk);
      for (int x = 0; x < 256; ++x) ASSERT_EQ(image[x], x * value / 255) << x << ' ' << value;
    }
  }
}

// The first fault in the documented order decides, whatever else is wrong, in one band or several;
// and nothing is written.
TEST(Transfer, ChecksInTheDocumentedOrder) {
  Bytes image(20000, 5);
  const Bytes before = image;
  unsigned char* const p = image.data();
  unsigned char* const null = nullptr;
  const auto axis = [](int value) { return static_cast<IppiAxis>(value); };
  const int big = 140;  // rows enough for two bands
  struct {
    const char* what;
    IppStatus expected;
    std::function<IppStatus()> call;
  } const cases[] = {
      {"copy type 3", StatusDataTypeErr, [&] { return Lib::qvCopy(Type(3), null, 0, null, 0, {0, big}); }},
      {"copy type -1", StatusDataTypeErr, [&] { return Lib::qvCopy(Type(-1), p, 9, p, 9, {9, big}); }},
      {"copy null src", StatusNullPtrErr, [&] { return Lib::qvCopy(Type(2), null, 9, p, 9, {0, big}); }},
      {"copy null dst", StatusNullPtrErr, [&] { return Lib::qvCopy(Type(4), p, 9, null, 9, {0, 0}); }},
      {"copy null row", StatusNullPtrErr, [&] { return Lib::qvCopy(Type(2), null, 9, p, 9, {20000, 1}); }},
      {"copy width 0", StatusSizeErr, [&] { return Lib::qvCopy(Type(13), p, 9, p, 9, {0, big}); }},
      {"copy height -1", StatusSizeErr, [&] { return Lib::qvCopy(Type(2), p, 9, p, 9, {9, -1}); }},
      {"copy row of -9", StatusSizeErr, [&] { return Lib::qvCopy(Type(2), p, 9, p, 9, {-9, 1}); }},
      {"dup null", StatusNullPtrErr, [&] { return Lib::qvDup(Type(0), p, 9, null, 9, {0, 0}); }},
      {"dup size", StatusSizeErr, [&] { return Lib::qvDup(Type(0), p, 9, p, 9, {1, 0}); }},
      {"set type 9", StatusDataTypeErr, [&] { return Lib::qvSet(Type(9), null, null, 9, {9, big}); }},
      {"set null dst", StatusNullPtrErr, [&] { return Lib::qvSet(Type(2), p, null, 9, {0, big}); }},
      {"set null value", StatusNullPtrErr, [&] { return Lib::qvSet(Type(4), null, p, 9, {0, big}); }},
      {"set size", StatusSizeErr, [&] { return Lib::qvSet(Type(4), p, p, 9, {0, big}); }},
      {"mirror axis", StatusOk, [&] { return Lib::qvMirror(Type(9), null, 9, null, 9, {0, 0}, axis(3)); }},
      {"mirror axis -1", StatusOk, [&] { return Lib::qvMirror(Type(2), p, 9, p, 9, {9, 9}, axis(-1)); }},
      {"mirror type", StatusDataTypeErr, [&] { return Lib::qvMirror(Type(9), null, 9, null, 9, {0, big}, axis(0)); }},
      {"mirror type", StatusDataTypeErr, [&] { return Lib::qvMirror(Type(16), p, 9, p, 9, {9, big}, axis(1)); }},
      {"mirror null", StatusNullPtrErr, [&] { return Lib::qvMirror(Type(2), p, 9, null, 9, {big, 0}, axis(0)); }},
      {"mirror null", StatusNullPtrErr, [&] { return Lib::qvMirror(Type(4), null, 9, p, 9, {0, big}, axis(1)); }},
      {"mirror size", StatusSizeErr, [&] { return Lib::qvMirror(Type(2), p, 9, p, 9, {9, 0}, axis(2)); }},
      {"mirror size", StatusSizeErr, [&] { return Lib::qvMirror(Type(2), p, 9, p, 9, {big, 0}, axis(0)); }},
      {"palette null", StatusNullPtrErr, [&] { return Lib::qvLUTPalette(Type(2), p, 9, p, 9, {0, 0}, null, 9); }},
      {"palette size", StatusSizeErr, [&] { return Lib::qvLUTPalette(Type(2), p, 9, p, 9, {0, big}, p, 9); }},
      {"palette 9 bits", StatusOutOfRangeErr, [&] { return Lib::qvLUTPalette(Type(2), p, 9, p, 9, {1, big}, p, 9); }},
      {"palette 0 bits", StatusOutOfRangeErr, [&] { return Lib::qvLUTPalette(Type(2), p, 9, p, 9, {1, 1}, p, 0); }},
      {"scale type", StatusDataTypeErr, [&] { return Lib::qvMulCScale(Type(2), 1, null, 0, {0, big}); }},
      {"scale null", StatusNullPtrErr, [&] { return Lib::qvMulCScale(Type(16), 1, null, 0, {0, big}); }},
      {"scale step", StatusStepErr, [&] { return Lib::qvMulCScale(Type(16), 1, p, 0, {0, big}); }},
      {"scale step", StatusStepErr, [&] { return Lib::qvMulCScale(Type(16), 1, p + 10000, -9, {9, big}); }},
      {"scale size", StatusSizeErr, [&] { return Lib::qvMulCScale(Type(16), 1, p, 9, {0, big}); }},
  };
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    AtBudgets([&] {
      for (const auto& c : cases) EXPECT_EQ(c.call(), c.expected) << c.what << ' ' << level.name;
    });
  }
  EXPECT_TRUE(image == before);
}

}  // namespace
}  // namespace qv::test
