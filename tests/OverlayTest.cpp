// qv_over: the formulas for all bytes at all levels, layouts and places against a model of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qvAcceleratedLib/qv.h"
#include "support/Bytes.h"
#include "support/Levels.h"

namespace qv::test {
namespace {

// The exact value is n / 65025; the sum is rounded once.
unsigned char Over(int f, int b, int alpha, int opacity, int alphaType) {
  const int share = alpha * opacity;
  const int n = f * (alphaType == QV_ALPHA_OVER ? share : 255 * opacity) + b * (65025 - share);
  return static_cast<unsigned char>(std::min(255, (2 * n + 65025) / (2 * 65025)));
}

// Every foreground byte over every frame byte under every alpha.
TEST(Over, IsTheFormulaForAllBytesAtAllLevels) {
  constexpr int kSide = 4096;
  constexpr std::size_t kAll = std::size_t{kSide} * kSide;
  Bytes fg(kAll), frame(kAll), alpha(kAll), expected(kAll), got(kAll);
  for (std::size_t i = 0; i < kAll; ++i) {
    fg[i] = static_cast<unsigned char>(i);
    frame[i] = static_cast<unsigned char>(i >> 8);
    alpha[i] = static_cast<unsigned char>(i >> 16);
  }
  for (const int type : {QV_ALPHA_OVER, QV_ALPHA_OVER_PREMUL})
    for (const int opacity : {255, 254, 131, 1}) {
      for (std::size_t i = 0; i < kAll; ++i)
        expected[i] = Over(fg[i], frame[i], alpha[i], opacity, type);
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        got = frame;
        ASSERT_EQ(qv_over(1, got.data(), kSide, {kSide, kSide}, 1, fg.data(), kSide,
                          {kSide, kSide}, alpha.data(), kSide, 0, 0, opacity, type),
                  QV_STATUS_OK);
        ASSERT_TRUE(got == expected) << type << ' ' << opacity << ' ' << level.name;
      }
    }
}

struct Image {
  int channels, width, height, step;
  Bytes bytes;

  Image(int c, int w, int h, int padding)
      : channels(c), width(w), height(h), step(c * w + padding),
        bytes(Noise(static_cast<std::size_t>(step * h), static_cast<std::uint64_t>(c * w + h))) {}
  unsigned char& At(int x, int y, int c) {
    return bytes[static_cast<std::size_t>(y * step + x * channels + c)];
  }
  qv_size Size() const { return {width, height}; }
};

// Three pictures in one: clear columns, opaque ones, others.
void SetAlpha(Image& image, int channel) {
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x)
      if (x % 200 < 150) image.At(x, y, channel) = x % 200 < 75 ? 0 : 255;
}

void CheckPlaces(Image& frame, Image& fg, Image* alpha, int opacity, int type) {
  for (const auto& [x, y] : std::vector<std::pair<int, int>>{
           {0, 0}, {-37, 5}, {11, -70}, {300, 100}, {-1, -1}, {350, 3}, {351, 2}, {3, -199}}) {
    Image expected = frame;
    for (int v = 0; v < fg.height; ++v)
      for (int u = 0; u < fg.width; ++u) {
        if (x + u < 0 || x + u >= frame.width || y + v < 0 || y + v >= frame.height) continue;
        const int a = fg.channels == 4 ? fg.At(u, v, 3) : alpha ? alpha->At(u, v, 0) : 255;
        for (int c = 0; c < std::min(3, frame.channels); ++c) {
          unsigned char& out = expected.At(x + u, y + v, c);
          out = Over(fg.At(u, v, c), out, a, opacity, type);
        }
      }
    for (const int budget : {1, 3})
      for (const Level& level : AvailableLevels()) {
        const UseBudget useBudget(budget);
        const UseLevel useLevel(level);
        Image got = frame;
        const int status =
            qv_over(frame.channels, got.bytes.data(), frame.step, frame.Size(), fg.channels,
                    fg.bytes.data(), fg.step, fg.Size(), alpha ? alpha->bytes.data() : nullptr,
                    alpha ? alpha->step : 0, x, y, opacity, type);
        ASSERT_EQ(status, x > 350 ? QV_STATUS_NO_OVERLAP_WARNING : QV_STATUS_OK);
        ASSERT_TRUE(got.bytes == expected.bytes)
            << frame.channels << ' ' << fg.channels << " at " << x << ' ' << y << ", " << opacity
            << ' ' << type << ' ' << budget << ' ' << level.name;
      }
  }
}

TEST(Over, IsTheFormulaForAllLayoutsAndPlaces) {
  const struct {
    int frame, fg;
    bool plane;
  } layouts[] = {{1, 1, true}, {1, 1, false}, {3, 3, true}, {3, 3, false}, {3, 4, false},
                 {4, 4, false}};
  for (const auto& layout : layouts) {
    Image frame(layout.frame, 351, 230, 9), fg(layout.fg, 351, 200, 3), alpha(1, 351, 200, 1);
    SetAlpha(layout.fg == 4 ? fg : alpha, layout.fg == 4 ? 3 : 0);
    for (const int type : {QV_ALPHA_OVER, QV_ALPHA_OVER_PREMUL})
      for (const int opacity : {255, 200, 0})
        CheckPlaces(frame, fg, layout.plane ? &alpha : nullptr, opacity, type);
  }
}

// Each row has one argument wrong, and all those of the rows below it: the first one is told of.
TEST(Over, RefusesInTheOrderOfItsDocumentation) {
  unsigned char frame[16] = {}, none[16] = {};
  const unsigned char fg[16] = {9, 9, 9, 9};
  struct Call {
    int frameChannels = 1;
    unsigned char* frame;
    qv_size frameSize = {2, 2};
    int channels = 1;
    const unsigned char* fg;
    qv_size size = {2, 2};
    int x = 0, opacity = 255, type = QV_ALPHA_OVER;
    int Status() const {
      return qv_over(frameChannels, frame, 2, frameSize, channels, fg, 2, size, nullptr, 0, x, 0,
                     opacity, type);
    }
  } call{.frame = frame, .fg = fg};
  const auto expect = [&](int status, auto... changes) {
    const auto one = [&](auto change) {
      Call wrong = call;
      change(wrong);
      EXPECT_EQ(wrong.Status(), status);
    };
    (one(changes), ...);
    (changes(call), ...);
  };
  expect(QV_STATUS_NO_OVERLAP_WARNING, [](Call& c) { c.x = -2; }, [](Call& c) { c.x = 2; },
         [](Call& c) { c.x = -0x7FFFFFFF - 1; }, [](Call& c) { c.x = 0x7FFFFFFF; });
  expect(QV_STATUS_ALPHA_TYPE_ERR, [](Call& c) { c.type = QV_ALPHA_IN; });
  expect(QV_STATUS_OUT_OF_RANGE_ERR, [](Call& c) { c.opacity = -1; },
         [](Call& c) { c.opacity = 256; });
  expect(QV_STATUS_SIZE_ERR, [](Call& c) { c.frameSize.width = 0; },
         [](Call& c) { c.frameSize.height = 0; }, [](Call& c) { c.size.width = 0; },
         [](Call& c) { c.size.height = -1; });
  expect(QV_STATUS_NULL_PTR_ERR, [](Call& c) { c.frame = nullptr; },
         [](Call& c) { c.fg = nullptr; });
  expect(QV_STATUS_CHANNEL_ERR, [](Call& c) { c.channels = 3; }, [](Call& c) { c.channels = 4; },
         [](Call& c) { c.frameChannels = 2; });
  EXPECT_TRUE(std::equal(frame, frame + 16, none));
}

}  // namespace
}  // namespace qv::test
