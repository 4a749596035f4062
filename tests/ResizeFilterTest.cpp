// The separable filter against double precision: taps from any positions, and images whose every
// byte is compared with the unrounded sum over exact weights.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kernels/resize/FilterImage.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

// One axis of a filter as a dense list of (source sample, exact weight) for each destination
// sample.
using ExactAxis = std::vector<std::vector<std::pair<int, double>>>;

double Kernel(int interpolation, double x) {
  x = std::fabs(x);
  if (interpolation == 4) {
    if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
    return x < 2 ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
  }
  if (x == 0) return 1;
  const double t = M_PI * x;
  return x < 3 ? std::sin(t) / t * std::sin(t / 3) / (t / 3) : 0;
}

ExactAxis ExactTaps(const std::vector<double>& positions, int interpolation, int length) {
  ExactAxis axis;
  const int half = interpolation == 4 ? 2 : 3;
  for (double p : positions) {
    if (!(p > -10)) p = -10;
    p = std::min(p, length + 10.0);
    const int origin = static_cast<int>(std::floor(p));
    std::vector<std::pair<int, double>> taps;
    double sum = 0;
    for (int s = origin - half + 1; s <= origin + half; ++s) {
      taps.emplace_back(std::clamp(s, 0, length - 1), Kernel(interpolation, p - s));
      sum += taps.back().second;
    }
    for (auto& [s, w] : taps) w /= sum;
    axis.push_back(taps);
  }
  return axis;
}

ExactAxis ExactArea(const AxisArea& area) {
  ExactAxis axis;
  for (int i = 0; i < area.count; ++i) {
    const double from = i * area.inverse;
    const double to = std::min((i + 1) * area.inverse, double(area.sourceLength));
    std::vector<std::pair<int, double>> taps;
    for (int s = static_cast<int>(std::min(from, 1e9)); s < to && s < area.sourceLength; ++s)
      taps.emplace_back(s, (std::min(to, s + 1.0) - std::max(from, double(s))) / (to - from));
    if (taps.empty()) taps.emplace_back(area.sourceLength - 1, 1);
    axis.push_back(taps);
  }
  return axis;
}

// Taps with their memory.
struct Taps {
  std::vector<int> first;
  std::vector<short> weights;
  AxisTaps taps;

  Taps() : taps{} {}
  Taps(int count, int tapCount) : first(count), weights(count * tapCount) {
    taps = {count, tapCount, first.data(), weights.data()};
  }
  static Taps From(const std::vector<double>& positions, int interpolation, int length) {
    Taps t(static_cast<int>(positions.size()), TapCount(interpolation, length));
    BuildTaps({t.taps.count, positions.data(), length}, interpolation, &t.taps);
    return t;
  }
  static Taps From(const AxisArea& area) {
    Taps t(area.count, AreaTapCount(area));
    BuildAreaTaps(area, &t.taps);
    return t;
  }
};

void ExpectSoundTaps(const AxisTaps& taps, int length) {
  for (int i = 0; i < taps.count; ++i) {
    ASSERT_GE(taps.first[i], i ? taps.first[i - 1] : 0);
    ASSERT_LE(taps.first[i] + taps.taps, length);
    int sum = 0;
    for (int t = 0; t < taps.taps; ++t) sum += taps.weights[i * taps.taps + t];
    ASSERT_EQ(sum, 16384);
  }
}

void ExpectTapsNear(const AxisTaps& taps, const ExactAxis& exact) {
  for (int i = 0; i < taps.count; ++i) {
    std::vector<double> dense(taps.taps);
    for (const auto& [s, w] : exact[i])
      if (s >= taps.first[i] && s < taps.first[i] + taps.taps) dense[s - taps.first[i]] += w;
    for (int t = 0; t < taps.taps; ++t)
      ASSERT_NEAR(taps.weights[i * taps.taps + t], dense[t] * 16384, 1.02)
          << "sample " << i << ", tap " << t;
  }
}

TEST(AxisTaps, AnyPositions) {
  Random random(20261);
  const double inf = std::numeric_limits<double>::infinity();
  for (int run = 0; run < 3000; ++run) {
    const int length = random.OneIn(2) ? random.Between(1, 8) : random.Between(1, 300);
    const int interpolation = random.Pick(4, 16);
    std::vector<double> positions;
    for (int i = random.Between(1, 30); i > 0; --i) {
      double p = random.Between(-8.0, length + 8.0);
      if (random.OneIn(4)) p = std::floor(p);
      if (random.OneIn(8)) p += random.Between(-1e-9, 1e-9);
      if (random.OneIn(16)) p = random.Between(-1e300, 1e300);
      positions.push_back(p);
    }
    if (random.OneIn(8)) positions.insert(positions.end(), {inf, -inf, 1e18, -1e18});
    std::sort(positions.begin(), positions.end());
    if (random.OneIn(8)) positions.insert(positions.begin(), std::nan(""));
    const Taps t = Taps::From(positions, interpolation, length);
    ExpectSoundTaps(t.taps, length);
    ExpectTapsNear(t.taps, ExactTaps(positions, interpolation, length));
    if (HasFatalFailure()) return;
  }
}

TEST(AxisTaps, PositionsOfLongAxes) {
  const int length = 2147483647;
  const Taps t = Taps::From({-2147483648.0, 0, 2147483640.25, 2147483646, 1e10}, 16, length);
  ExpectSoundTaps(t.taps, length);
}

TEST(AxisTaps, Areas) {
  Random random(20262);
  for (int run = 0; run < 2000; ++run) {
    const int length = random.Between(1, 200);
    const double inverse =
        random.OneIn(3) ? random.Between(1, 7) * 0.5 + 0.5 : random.Between(1.0, 6.0);
    const AxisArea area = {std::max(1, int(length / inverse + random.Between(-1, 2))), inverse,
                           length};
    if (AreaTapCount(area) > kMaxTaps) continue;
    const Taps t = Taps::From(area);
    ExpectSoundTaps(t.taps, length);
    ExpectTapsNear(t.taps, ExactArea(area));
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(AreaTapCount({720, 1 / (720 / 1080.0), 1080}), 2);
  EXPECT_EQ(AreaTapCount({540, 1 / (540 / 1080.0), 1080}), 2);
}

struct Worst {
  double largest = 0, sum = 0;
  long long count = 0;
};

enum class Source { kNoise, kExtremes, kAgainst };

// A whole image through one kernel, compared with the exact sum.
class FilterImage {
 public:
  FilterImage(Random& random, RowLayout layout, int width, int height)
      : random_(random), layout_(layout), width_(width), height_(height) {
    src_.resize(static_cast<std::size_t>(RowBytes(width)) * height);
  }

  void Fill(Source kind) {
    random_.Fill(src_.data(), src_.size());
    if (kind == Source::kExtremes)
      for (unsigned char& b : src_) b = b & 1 ? 255 : 0;
  }

  // Sets the bytes that make the destination sample (i, j) of component k as large as can be.
  void FillAgainst(const ExactAxis& x, const ExactAxis& y, int i, int j, int k) {
    const RowComponent c = Component(layout_, k);
    for (const auto& [sy, wy] : y[j])
      for (const auto& [sx, wx] : x[i])
        src_[std::size_t(sy) * RowBytes(width_) + c.offset + sx * c.stride] = wx * wy > 0 ? 255 : 0;
  }

  int RowBytes(int width) const {
    return width * (layout_ == RowLayout::kGray ? 1 : layout_ == RowLayout::kTriples ? 3 : 2);
  }

  void Run(const FilterColumns& x, const AxisTaps& y) {
    Place(x.luma.count, y.count, FilterScratchBytes(layout_, x, y));
    const auto kernel = layout_ == RowLayout::kGray      ? FilterRows_8u_C1
                        : layout_ == RowLayout::kTriples ? FilterRows_8u_C3
                                                         : FilterRows422_8u_C2;
    EXPECT_EQ(kernel(src_.data(), RowBytes(width_), x, y, dst_.data(), dstStep_, scratch_.data()),
              StatusOk);
  }

  void Run(const AreaColumns& x, const AxisSpans& y) {
    Place(x.luma.count, y.count, AreaScratchBytes(layout_, x, y));
    const auto kernel = layout_ == RowLayout::kGray      ? AreaRows_8u_C1
                        : layout_ == RowLayout::kTriples ? AreaRows_8u_C3
                                                         : AreaRows422_8u_C2;
    EXPECT_EQ(kernel(src_.data(), RowBytes(width_), x, y, dst_.data(), dstStep_, scratch_.data()),
              StatusOk);
  }

  void Judge(const ExactAxis* x /* luma, chroma */, const ExactAxis& y, Worst* worst) const {
    for (int k = 0; k < ComponentCount(layout_); ++k) {
      const RowComponent c = Component(layout_, k);
      const ExactAxis& columns = x[layout_ == RowLayout::kPairs422 && k > 0];
      for (std::size_t j = 0; j < y.size(); ++j)
        for (std::size_t i = 0; i < columns.size(); ++i) {
          double exact = 0;
          for (const auto& [sy, wy] : y[j])
            for (const auto& [sx, wx] : columns[i])
              exact += wy * wx *
                       src_[std::size_t(sy) * RowBytes(width_) + c.offset + sx * c.stride];
          exact = std::clamp(exact, 0.0, 255.0);
          const double error =
              std::fabs(exact - dst_[j * dstStep_ + c.offset + i * c.stride]);
          worst->largest = std::max(worst->largest, error);
          if (exact > 0 && exact < 255) worst->sum += error, ++worst->count;
        }
    }
  }

 private:
  void Place(int width, int height, long long scratch) {
    dstStep_ = RowBytes(width);
    dst_.assign(static_cast<std::size_t>(dstStep_) * height, 99);
    scratch_.assign(static_cast<std::size_t>(scratch), 0xA5);
  }

  Random& random_;
  RowLayout layout_;
  int width_, height_, dstStep_ = 0;
  std::vector<unsigned char> src_, dst_, scratch_;
};

std::vector<double> RandomPositions(Random& random, int count, int length) {
  const double step = random.OneIn(3) ? random.Pick(1, 2, 3) * 0.5
                                      : std::exp2(random.Between(-4.3, 4.3));
  double p = random.OneIn(2) ? 0 : random.Between(-3.0, length * 0.5);
  std::vector<double> positions;
  for (int i = 0; i < count; ++i, p += step) positions.push_back(p);
  return positions;
}

class Filter : public testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    const auto& levels = AvailableLevels();
    if (std::none_of(levels.begin(), levels.end(),
                     [](const Level& l) { return l.name == std::string(GetParam().name); }))
      GTEST_SKIP() << "this processor lacks " << GetParam().name;
  }
};

TEST_P(Filter, StaysNearExactSums) {
  const UseLevel use(GetParam());
  Random random(20263);
  for (int interpolation : {4, 16}) {
    Worst worst;
    for (int run = 0; run < 150; ++run) {
      const auto layout = static_cast<RowLayout>(random.Between(0, 2));
      const bool pairs = layout == RowLayout::kPairs422;
      const int width = random.Between(1, 120) * 2, height = random.Between(1, 24);
      const int count = random.Between(1, 100);
      FilterImage image(random, layout, width, height);
      image.Fill(random.OneIn(2) ? Source::kNoise : Source::kExtremes);
      const auto xs = RandomPositions(random, pairs ? 2 * count : count, width);
      const auto cs = RandomPositions(random, count, width / 2);
      const auto ys = RandomPositions(random, random.Between(1, 30), height);
      const Taps x = Taps::From(xs, interpolation, width);
      const Taps chroma = Taps::From(cs, interpolation, width / 2);
      const Taps y = Taps::From(ys, interpolation, height);
      const ExactAxis exactX[] = {ExactTaps(xs, interpolation, width),
                                  ExactTaps(cs, interpolation, width / 2)};
      const ExactAxis exactY = ExactTaps(ys, interpolation, height);
      if (random.OneIn(3))
        image.FillAgainst(exactX[0], exactY, random.Between(0, int(xs.size()) - 1),
                          random.Between(0, int(ys.size()) - 1), 0);
      image.Run({x.taps, chroma.taps}, y.taps);
      image.Judge(exactX, exactY, &worst);
    }
    EXPECT_LT(worst.largest, 0.75) << interpolation;
    EXPECT_LT(worst.sum / worst.count, 0.256) << interpolation;
    RecordProperty("largest" + std::to_string(interpolation), std::to_string(worst.largest));
    RecordProperty("mean" + std::to_string(interpolation),
                   std::to_string(worst.sum / worst.count));
  }
}

TEST_P(Filter, AreasStayNearExactMeans) {
  const UseLevel use(GetParam());
  Random random(20264);
  for (bool spans : {false, true}) {
    Worst worst;
    for (int run = 0; run < 150; ++run) {
      const auto layout = static_cast<RowLayout>(random.Between(0, 2));
      const int width = random.Between(1, 200) * 2, height = random.Between(1, 60);
      const auto inverse = [&] {
        return random.OneIn(3) ? random.Between(2, spans ? 40 : 12) * 0.5
                               : random.Between(1.0, spans ? 25.0 : 6.0);
      };
      const double xInverse = inverse(), yInverse = inverse();
      const AxisArea area[] = {{std::max(1, int(width / xInverse) / 2 * 2), xInverse, width},
                               {std::max(1, int(width / xInverse) / 2), xInverse, width / 2},
                               {std::max(1, int(height / yInverse)), yInverse, height}};
      const bool pairs = layout == RowLayout::kPairs422;
      if (pairs && area[0].count < 2) continue;
      FilterImage image(random, layout, width, height);
      image.Fill(random.OneIn(2) ? Source::kNoise : Source::kExtremes);
      const ExactAxis exactX[] = {ExactArea(area[0]), ExactArea(area[1])};
      if (spans) {
        std::vector<AreaSpan> memory[3];
        AxisSpans s[3];
        for (int a = 0; a < 3; ++a) {
          memory[a].resize(area[a].count);
          s[a] = {area[a].count, 0, memory[a].data()};
          BuildSpans(area[a], &s[a]);
        }
        image.Run({s[0], s[1]}, s[2]);
      } else {
        const Taps t[] = {Taps::From(area[0]), Taps::From(area[1]), Taps::From(area[2])};
        image.Run({t[0].taps, t[1].taps}, t[2].taps);
      }
      image.Judge(exactX, ExactArea(area[2]), &worst);
    }
    EXPECT_LT(worst.largest, 0.75) << spans;
    EXPECT_LT(worst.sum / worst.count, 0.256) << spans;
    RecordProperty("largest" + std::to_string(spans), std::to_string(worst.largest));
    RecordProperty("mean" + std::to_string(spans), std::to_string(worst.sum / worst.count));
  }
}

TEST_P(Filter, HalvesAsTapsDo) {
  const UseLevel use(GetParam());
  Random random(20265);
  for (RowLayout layout : {RowLayout::kGray, RowLayout::kTriples})
    for (int width : {1, 2, 19, 20, 21, 22, 23, 64, 157}) {
      const int channels = ComponentCount(layout), height = 5;
      std::vector<unsigned char> src(std::size_t(4) * channels * width * height);
      random.Fill(src.data(), src.size());
      const Taps x = Taps::From(AxisArea{width, 2, 2 * width});
      const Taps y = Taps::From(AxisArea{height, 2, 2 * height});
      std::vector<unsigned char> filtered(std::size_t(channels) * width * height);
      std::vector<unsigned char> halved = filtered;
      std::vector<unsigned char> scratch(FilterScratchBytes(layout, {x.taps, {}}, y.taps));
      const auto filter = channels == 1 ? FilterRows_8u_C1 : FilterRows_8u_C3;
      filter(src.data(), 2 * channels * width, {x.taps, {}}, y.taps, filtered.data(),
             channels * width, scratch.data());
      const FilterTask task = {layout, src.data(), 2 * channels * width, halved.data(),
                               channels * width};
      EXPECT_EQ(AverageImage(task, {width, 2, 2 * width}, {}, {height, 2, 2 * height}), StatusOk);
      EXPECT_EQ(halved, filtered) << width;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Filter, testing::ValuesIn(BuiltLevels()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv::test
