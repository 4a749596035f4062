// YuvToRgb and RgbToYuv: every pixel value against the definition in double precision, every layout
// and siting against a model of it, at all levels and numbers of bands.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qvAcceleratedLib/YuvRgb.h"
#include "support/Bytes.h"
#include "support/ExactYuv.h"
#include "support/Levels.h"

namespace qv::test {
namespace {

// ---- Every value --------------------------------------------------------------------------------

// The planes of 4096 x 4096 pixels of 4:4:4 or, three bytes a pixel, the pixels.
constexpr int kSide = 4096;
constexpr std::size_t kAll = std::size_t{kSide} * kSide;

struct Planes444 {
  Bytes bytes = Bytes(3 * kAll);
  unsigned char* at[3] = {bytes.data(), bytes.data() + kAll, bytes.data() + 2 * kAll};
  int step[3] = {kSide, kSide, kSide};
};

// How far bytes are from what they should be, at most.
struct Worst {
  double error = 0;
  void operator()(int actual, double exact) { error = std::max(error, std::fabs(actual - exact)); }
};

class AllColours : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  const int matrix = std::get<0>(GetParam()), range = std::get<1>(GetParam());
  const Colours colours = ColoursOf(matrix, range);

  // convert(out) at every level gives the bytes of the plain one, which are returned.
  template <class Convert>
  static Bytes SameAtAllLevels(Convert convert) {
    Bytes plain, other(3 * kAll);
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      EXPECT_EQ(convert(other.data()), StatusOk);
      if (plain.empty())
        plain = other;
      else
        EXPECT_TRUE(plain == other) << level.name;
    }
    return plain;
  }
};

TEST_P(AllColours, AreWithinTheBoundOfTheExactPixel) {
  Planes444 src;
  for (std::size_t i = 0; i < kAll; ++i)
    for (int c = 0; c < 3; ++c) src.at[c][i] = static_cast<unsigned char>(i >> 8 * c);
  const Bytes bgr = SameAtAllLevels([&](unsigned char* out) {
    return YuvToRgb(QV_LAYOUT_I444, src.at, src.step, QV_LAYOUT_BGR, out, 3 * kSide, {kSide, kSide},
                    matrix, range, QV_CHROMA_LEFT);
  });
  Worst worst;
  for (std::size_t i = 0; i < kAll; ++i) {
    const Triple exact =
        ExactRgb(colours, {src.at[0][i] * 1., src.at[1][i] * 1., src.at[2][i] * 1.});
    for (std::size_t c = 0; c < 3; ++c) worst(bgr[3 * i + c], exact[c]);
  }
  EXPECT_LT(worst.error, .54);
  for (int y = 0; y < 256; ++y) {
    const std::size_t grey = static_cast<std::size_t>(128 << 16 | 128 << 8 | y);
    const double exact = std::floor(ExactRgb(colours, {y * 1., 128, 128})[1] + .5);
    for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(bgr[3 * grey + c], exact) << y;
  }
}

TEST_P(AllColours, AreWithinTheBoundOfTheExactSamplesAndComeBack) {
  Bytes bgr(3 * kAll);
  for (std::size_t i = 0; i < kAll; ++i)
    for (std::size_t c = 0; c < 3; ++c) bgr[3 * i + c] = static_cast<unsigned char>(i >> 8 * c);
  Planes444 yuv;
  yuv.bytes = SameAtAllLevels([&](unsigned char* out) {
    unsigned char* const planes[] = {out, out + kAll, out + 2 * kAll};
    return RgbToYuv(QV_LAYOUT_BGR, bgr.data(), 3 * kSide, QV_LAYOUT_I444, planes, yuv.step,
                    {kSide, kSide}, matrix, range, QV_CHROMA_LEFT);
  });
  for (std::size_t c = 0; c < 3; ++c) yuv.at[c] = yuv.bytes.data() + c * kAll;
  Bytes back(3 * kAll);
  YuvToRgb(QV_LAYOUT_I444, yuv.at, yuv.step, QV_LAYOUT_BGR, back.data(), 3 * kSide, {kSide, kSide},
           matrix, range, QV_CHROMA_REPEATED);
  Worst worst;
  int loss = 0, exactLoss = 0;
  for (std::size_t i = 0; i < kAll; ++i) {
    const unsigned char* const p = &bgr[3 * i];
    const Triple exact = ExactYuv(colours, {p[0] * 1., p[1] * 1., p[2] * 1.});
    Triple rounded;
    for (std::size_t c = 0; c < 3; ++c) {
      worst(yuv.at[c][i], exact[c]);
      rounded[c] = Limit(std::floor(exact[c] + .5));
    }
    const Triple returned = ExactRgb(colours, rounded);
    for (std::size_t c = 0; c < 3; ++c) {
      loss = std::max(loss, std::abs(back[3 * i + c] - p[c]));
      exactLoss = std::max(exactLoss, std::abs(static_cast<int>(returned[c] + .5) - p[c]));
    }
  }
  EXPECT_LT(worst.error, .53);
  EXPECT_EQ(loss, exactLoss);
  for (int grey = 0; grey < 256; ++grey) {
    const std::size_t i = static_cast<std::size_t>(grey * 0x10101);
    EXPECT_EQ(yuv.at[0][i],
              std::floor(ExactYuv(colours, {grey * 1., grey * 1., grey * 1.})[0] + .5));
    EXPECT_EQ(yuv.at[1][i], 128);
    EXPECT_EQ(yuv.at[2][i], 128);
  }
}

INSTANTIATE_TEST_SUITE_P(Yuv, AllColours,
                         testing::Combine(testing::Range(0, 3), testing::Range(0, 2)));

// ---- Every layout -------------------------------------------------------------------------------

struct Layout {
  int planes, across, down;          // pixels a chroma sample
  int plane[3], first[3], apart[3];  // of Y, Cb, Cr
};

// From QV_LAYOUT_YUYV on.
constexpr Layout kLayouts[] = {
    {1, 2, 1, {0, 0, 0}, {0, 1, 3}, {2, 4, 4}}, {1, 2, 1, {0, 0, 0}, {1, 0, 2}, {2, 4, 4}},
    {3, 2, 2, {0, 1, 2}, {0, 0, 0}, {1, 1, 1}}, {3, 2, 2, {0, 2, 1}, {0, 0, 0}, {1, 1, 1}},
    {2, 2, 2, {0, 1, 1}, {0, 0, 1}, {1, 2, 2}}, {2, 2, 2, {0, 1, 1}, {0, 1, 0}, {1, 2, 2}},
    {3, 2, 1, {0, 1, 2}, {0, 0, 0}, {1, 1, 1}}, {3, 1, 1, {0, 1, 2}, {0, 0, 0}, {1, 1, 1}}};

// A frame of noise with the rows of a layout, some bytes apart.
struct Frame {
  Frame(const Layout& l, IppiSize size) : layout(l) {
    for (int p = 0; p < l.planes; ++p) {
      const int across = p == 0 ? 1 : l.across, down = p == 0 ? 1 : l.down;
      const int samples = (size.width + across - 1) / across;
      const int width = l.planes == 1        ? (size.width + 1) / 2 * 4
                        : l.planes == 2 && p ? 2 * samples
                                             : samples;
      step[p] = width + 5;
      bytes[p] = Noise(static_cast<std::size_t>(step[p] * ((size.height + down - 1) / down)));
    }
    for (int p = 0; p < 3; ++p) at[p] = bytes[p].data();
  }
  unsigned char& Sample(int c, int i, int k) {
    return at[layout.plane[c]][step[layout.plane[c]] * k + layout.first[c] + layout.apart[c] * i];
  }
  const Layout layout;
  Bytes bytes[3];
  unsigned char* at[3];
  int step[3] = {};
};

// Chroma of a pixel.
double Interpolated(Frame& frame, IppiSize size, int c, int x, int y, int siting) {
  const Layout& l = frame.layout;
  const int columns = (size.width + l.across - 1) / l.across,
            rows = (size.height + l.down - 1) / l.down;
  if (siting == QV_CHROMA_REPEATED) return frame.Sample(c, x / l.across, y / l.down);
  const double shift = siting == QV_CHROMA_CENTRE && l.across == 2 ? .25 : 0;
  const double u = std::clamp(x / double(l.across) - shift, 0., columns - 1.);
  const double v = std::clamp(y / double(l.down) - (l.down == 2 ? .25 : 0), 0., rows - 1.);
  const int i = static_cast<int>(u), k = static_cast<int>(v);
  const auto column = [&](int at) {
    return std::lerp(frame.Sample(c, at, k), frame.Sample(c, at, std::min(k + 1, rows - 1)), v - k);
  };
  return std::lerp(column(i), column(std::min(i + 1, columns - 1)), u - i);
}

// Byte c of B, G, R of a pixel layout.
constexpr int kBytesOf[] = {0, 1, 3, 3, 4, 4};
int Place(int rgb, int c) { return rgb == QV_LAYOUT_GREY ? 0 : rgb % 2 ? 2 - c : c; }

template <class Body>
void ForAllLayouts(Body body) {
  for (int layout = QV_LAYOUT_YUYV; layout <= QV_LAYOUT_I444; ++layout)
    for (int rgb = QV_LAYOUT_GREY; rgb <= QV_LAYOUT_RGBA; ++rgb)
      for (int siting = 0; siting < 3; ++siting)
        for (const IppiSize size :
             {IppiSize{1, 1}, {2, 3}, {7, 5}, {150, 6}, {777, 2}, {34, 270}}) {
          SCOPED_TRACE(testing::Message() << "layout " << layout << " pixel " << rgb << " siting "
                                          << siting << ' ' << size.width << 'x' << size.height);
          body(layout, rgb, siting, size);
          if (testing::Test::HasFailure()) return;
        }
}

// The same bytes at every level and number of bands; those that the last one wrote.
template <class Run>
void RunEverywhere(Bytes& out, Run run) {
  const Bytes before = out;
  Bytes first;
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 3}) {
      const UseLevel use(level);
      const UseBudget bands(budget);
      out = before;
      ASSERT_EQ(run(), StatusOk);
      if (first.empty()) first = out;
      ASSERT_TRUE(out == first) << level.name << " in " << budget;
    }
}

TEST(YuvToRgb, TakesAllLayoutsAndSitings) {
  ForAllLayouts([](int layout, int rgb, int siting, IppiSize size) {
    Frame frame(kLayouts[layout - QV_LAYOUT_YUYV], size);
    const int bytes = kBytesOf[rgb], step = size.width * bytes + 3;
    Bytes out(static_cast<std::size_t>(step * size.height), 9);
    RunEverywhere(out, [&] {
      return YuvToRgb(layout, frame.at, frame.step, rgb, out.data(), step, size, QV_BT709,
                      QV_STUDIO_RANGE, siting);
    });
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        const unsigned char* const pixel = &out[static_cast<std::size_t>(y * step + x * bytes)];
        Triple yuv = {frame.Sample(0, x, y) * 1., 128, 128};
        for (int c = 1; c < 3 && rgb != QV_LAYOUT_GREY; ++c)
          yuv[static_cast<std::size_t>(c)] = Interpolated(frame, size, c, x, y, siting);
        const Triple exact = ExactRgb(ColoursOf(QV_BT709, QV_STUDIO_RANGE), yuv);
        for (int c = 0; c < 3; ++c)
          ASSERT_NEAR(pixel[Place(rgb, c)], exact[static_cast<std::size_t>(c)], .54)
              << x << ' ' << y;
        ASSERT_EQ(bytes == 4 ? pixel[3] : 255, 255);
      }
      for (int gap = 0; gap < 3; ++gap)
        ASSERT_EQ(out[static_cast<std::size_t>(y * step + size.width * bytes + gap)], 9);
    }
  });
}

TEST(RgbToYuv, GivesAllLayoutsAndSitings) {
  ForAllLayouts([](int layout, int rgb, int siting, IppiSize size) {
    const Layout& l = kLayouts[layout - QV_LAYOUT_YUYV];
    Frame frame(l, size);
    const int bytes = kBytesOf[rgb], step = size.width * bytes + 3;
    const Bytes src = Noise(static_cast<std::size_t>(step * size.height));
    const auto byte = [&](int c, int x, int y) {
      x = std::clamp(x, 0, size.width - 1), y = std::min(y, size.height - 1);
      return static_cast<double>(
          src[static_cast<std::size_t>(y * step + x * bytes + Place(rgb, c))]);
    };
    for (int p = l.planes - 1; p >= 0; --p) {  // all of them each time; one plane is compared
      const Bytes before = frame.bytes[p];
      RunEverywhere(frame.bytes[p], [&] {
        frame.at[p] = frame.bytes[p].data();
        return RgbToYuv(rgb, src.data(), step, layout, frame.at, frame.step, size, QV_BT2020,
                        QV_STUDIO_RANGE, siting);
      });
      for (std::size_t gap = static_cast<std::size_t>(frame.step[p]); gap <= before.size();
           gap += static_cast<std::size_t>(frame.step[p]))
        for (std::size_t i = 1; i <= 5; ++i) ASSERT_EQ(frame.bytes[p][gap - i], before[gap - i]);
    }
    const Colours colours = ColoursOf(QV_BT2020, QV_STUDIO_RANGE);
    for (int y = 0; y < size.height; ++y)
      for (int x = 0; x < size.width; ++x) {
        const Triple bgr = {byte(0, x, y), byte(1, x, y), byte(2, x, y)};
        ASSERT_NEAR(frame.Sample(0, x, y), ExactYuv(colours, bgr)[0], .52) << x << ' ' << y;
        if (x % l.across || y % l.down) continue;
        Triple mean{};
        for (int c = 0; c < 3; ++c)
          for (int row = y; row < y + 2; ++row) {
            const int below = l.down == 2 ? row : y, right = l.across == 2 ? x + 1 : x;
            const double left = siting == QV_CHROMA_LEFT && l.across == 2 ? byte(c, x - 1, below)
                                                                          : byte(c, right, below);
            mean[static_cast<std::size_t>(c)] +=
                (left + 2 * byte(c, x, below) + byte(c, right, below)) / 8;
          }
        const Triple exact = ExactYuv(colours, mean);
        for (int c = 1; c < 3; ++c)
          ASSERT_NEAR(frame.Sample(c, x / l.across, y / l.down), exact[static_cast<std::size_t>(c)],
                      .52)
              << c << ": " << x << ' ' << y;
      }
    if (l.planes == 1 && size.width % 2) {
      ASSERT_EQ(frame.Sample(0, size.width, 0), frame.Sample(0, size.width - 1, 0));
    }
  });
}

// A step of 0 has every row made of one and the same.
TEST(RgbToYuv, ReadsOneRowForAll) {
  const Bytes src = Noise(3 * 130);
  Bytes out(130 * 3, 9);
  unsigned char* const planes[] = {out.data(), &out[260], &out[325]};
  const int steps[] = {130, 65, 65};
  RunEverywhere(out, [&] {
    return RgbToYuv(QV_LAYOUT_BGR, src.data(), 0, QV_LAYOUT_I420, planes, steps, {130, 2}, QV_BT601,
                    QV_FULL_RANGE, QV_CHROMA_REPEATED);
  });
  EXPECT_TRUE(std::equal(&out[0], &out[130], &out[130]));
}

// ---- Refusals -----------------------------------------------------------------------------------

// In the order of the checks: each call has one more argument in order.
TEST(YuvRgb, RefusesInTheStatedOrderAndWritesNothing) {
  Bytes bytes(64, 7), other(64, 8);
  unsigned char* const all[] = {bytes.data(), bytes.data() + 20, bytes.data() + 40};
  unsigned char* const lacking[] = {bytes.data(), bytes.data() + 20, nullptr};
  const int steps[] = {4, 2, 2};
  const struct {
    int yuv, rgb, matrix, range, siting;
    unsigned char* const* planes;
    const int* steps;
    IppiSize size;
    int status;
  } cases[] = {{14, 0, 3, 2, 3, nullptr, nullptr, {0, 0}, -2},
               {5, 2, 3, 2, 3, nullptr, nullptr, {0, 0}, -2},
               {8, 0, 3, 2, 3, nullptr, nullptr, {0, 0}, -2},
               {8, 6, 3, 2, 3, nullptr, nullptr, {0, 0}, -2},
               {INT32_MIN, INT32_MIN, 3, 2, 3, nullptr, nullptr, {0, 0}, -2},
               {8, 2, 3, 2, 3, nullptr, nullptr, {0, 0}, -11},
               {8, 2, 0, -1, 3, nullptr, nullptr, {0, 0}, -11},
               {8, 2, 0, 0, 3, nullptr, nullptr, {0, 0}, -11},
               {8, 2, 0, 0, 0, nullptr, steps, {0, 0}, -8},
               {8, 2, 0, 0, 0, all, nullptr, {0, 0}, -8},
               {8, 2, 0, 0, 0, lacking, steps, {0, 0}, -8},
               {8, 2, 0, 0, 0, all, steps, {0, 4}, -6},
               {8, 2, 0, 0, 0, all, steps, {4, -1}, -6}};
  for (const auto& c : cases) {
    EXPECT_EQ(YuvToRgb(c.yuv, c.planes, c.steps, c.rgb, other.data(), 12, c.size, c.matrix, c.range,
                       c.siting),
              c.status);
    EXPECT_EQ(RgbToYuv(c.rgb, other.data(), 12, c.yuv, c.planes, c.steps, c.size, c.matrix, c.range,
                       c.siting),
              c.status);
  }
  EXPECT_EQ(YuvToRgb(8, all, steps, 2, nullptr, 12, {0, 0}, 0, 0, 0), StatusNullPtrErr);
  EXPECT_EQ(RgbToYuv(2, nullptr, 12, 8, all, steps, {0, 0}, 0, 0, 0), StatusNullPtrErr);
  EXPECT_EQ(bytes, Bytes(64, 7));
  EXPECT_EQ(other, Bytes(64, 8));
  // A grey needs luma alone.
  EXPECT_EQ(
      YuvToRgb(QV_LAYOUT_I420, lacking, steps, QV_LAYOUT_GREY, other.data(), 4, {4, 2}, 0, 0, 0),
      StatusOk);
}

}  // namespace
}  // namespace qv::test
