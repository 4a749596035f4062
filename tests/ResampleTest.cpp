// Resampling against its definition in extended precision.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "qvAcceleratedLib/Resample.h"
#include "support/Levels.h"
#include "support/Random.h"

namespace qv::test {
namespace {

using Real = long double;
using Bytes = std::vector<unsigned char>;

constexpr int kChannels[] = {1, 2, 3, 4, 4, 4};

struct Job {
  ResampleOptions options = {};
  IppiSize from, to;
  Bytes src, dst;

  int Channels() const { return kChannels[options.pixels]; }
  void Fill(Random& random) {
    src.resize(std::size_t(from.width) * from.height * Channels());
    const bool extremes = random.OneIn(3);
    for (auto& byte : src) byte = static_cast<unsigned char>(random.Between(0, 255));
    if (extremes)
      for (auto& byte : src) byte = byte < 128 ? 0 : 255;
    if (options.pixels == 4)
      for (std::size_t k = 0; k < src.size(); ++k) src[k] = std::min(src[k], src[k | 3]);
    dst.assign(std::size_t(to.width) * to.height * Channels(), 77);
  }
  IppStatus Run() {
    return Resample({src.data(), from, from.width * Channels(), dst.data(), to,
                     to.width * Channels()},
                    &options);
  }
};

Real Filter(const ResampleOptions& o, Real x) {
  x = std::fabs(x);
  const Real pi = std::acos(Real(-1));
  const auto cubic = [x](Real b, Real c) {
    return x < 1 ?
                 ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6
           : x < 2 ? ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x +
                      8 * b + 24 * c) / 6
                   : 0;
  };
  switch (o.filter) {
    case 4: return cubic(0, o.cubic == 0 ? 0.5L : -Real(o.cubic));
    case 16: return x < 1e-12L ? 1
                    : x < 3    ? std::sin(pi * x) * std::sin(pi * x / 3) * 3 / (pi * pi * x * x)
                               : 0;
    case 32: return cubic(Real(1) / 3, Real(1) / 3);
    default: return std::max<Real>(0, 1 - x);
  }
}

using Sample = std::vector<std::pair<int, Real>>;

// The source samples of destination sample i, with weights that sum to 1.
Sample ExactSample(const ResampleOptions& o, int i, int count, int length, Real start, Real extent,
                   Real srcPhase, Real dstPhase) {
  const Real step = o.position == 0 ? extent / count
                    : count > 1     ? (extent - 1) / (count - 1)
                                    : 0;
  const Real at = o.position == 0
                      ? start + (i + 0.5L + dstPhase) * extent / count - 0.5L - srcPhase
                  : count > 1 ? start + (i + dstPhase) * (extent - 1) / (count - 1) - srcPhase
                                  : start + (extent - 1) / 2 - srcPhase;
  const Real stretch = o.narrow ? 1 : std::max<Real>(1, step);
  Sample sample;
  Real sum = 0;
  const auto add = [&](Real s, Real weight) {
    if (weight == 0) return;
    sample.push_back({int(std::clamp<Real>(s, 0, length - 1)), weight});
    sum += weight;
  };
  if (o.filter == 1) {
    add(std::floor(at + 0.5L), 1);
  } else if (o.filter == 8) {
    const Real half = std::max(step / 2, 0x1p-16L), low = at + 0.5L - half, high = at + 0.5L + half;
    for (Real s = std::floor(low); s < high; ++s)
      add(s, std::max<Real>(0, std::min(high, s + 1) - std::max(low, s)));
  } else {
    for (Real s = std::floor(at - 3 * stretch); s <= at + 3 * stretch; ++s)
      add(s, Filter(o, (s - at) / stretch));
  }
  for (auto& [s, weight] : sample) weight /= sum;
  return sample;
}

struct Errors {
  Real largest = 0, sum = 0;
  long long count = 0;

  void Add(Real exact, int byte) {
    const Real error = std::fabs(std::clamp<Real>(exact, 0, 255) - byte);
    largest = std::max(largest, error);
    if (exact > 0 && exact < 255) sum += error, ++count;
  }
};

void Compare(const Job& job, Errors& errors) {
  const ResampleOptions& o = job.options;
  const bool all = o.width == 0;
  std::vector<Sample> columns, rows;
  for (int j = 0; j < job.to.width; ++j)
    columns.push_back(ExactSample(o, j, job.to.width, job.from.width, o.x,
                                  all ? job.from.width : o.width, o.srcPhaseX, o.dstPhaseX));
  for (int i = 0; i < job.to.height; ++i)
    rows.push_back(ExactSample(o, i, job.to.height, job.from.height, o.y,
                               all ? job.from.height : o.height, o.srcPhaseY, o.dstPhaseY));
  const int channels = job.Channels();
  const bool weighted = o.pixels == 5 && o.filter != 1;
  for (int i = 0; i < job.to.height; ++i)
    for (int j = 0; j < job.to.width; ++j) {
      Real sums[4] = {};
      for (const auto& [y, wy] : rows[i])
        for (const auto& [x, wx] : columns[j]) {
          const unsigned char* const p =
              &job.src[(std::size_t(y) * job.from.width + x) * channels];
          for (int c = 0; c < channels; ++c)
            sums[c] += wy * wx * p[c] * (weighted && c < 3 ? p[3] : 1);
        }
      const unsigned char* const p = &job.dst[(std::size_t(i) * job.to.width + j) * channels];
      for (int c = 0; c < channels; ++c) {
        Real exact = sums[c];
        if (weighted && c < 3) exact = p[3] == 0 ? 0 : exact / sums[3];
        if (o.pixels == 4) exact = std::min(exact, std::clamp<Real>(sums[3], 0, 255));
        errors.Add(exact, p[c]);
      }
    }
}

Job RandomJob(Random& random, int filter) {
  Job job;
  ResampleOptions& o = job.options;
  o.pixels = random.Between(0, 5);
  o.filter = filter;
  o.position = random.Between(0, 1);
  o.narrow = random.OneIn(4);
  const int most = random.OneIn(8) ? 300 : 40;
  job.from = {random.Between(1, most), random.Between(1, most)};
  job.to = {random.Between(1, 40), random.Between(1, 40)};
  if (random.OneIn(2)) {
    const auto part = [&](int length, double* start, double* extent) {
      *start = random.Between(-2.0, length - 0.5);
      *extent = random.Between(1.0, length + 3.0);
      if (*start + *extent <= 0) *start = 0;
      if (random.OneIn(2)) *start = std::floor(*start), *extent = std::ceil(*extent);
      if (*start + *extent <= 0) *start = 0;
    };
    part(job.from.width, &o.x, &o.width);
    part(job.from.height, &o.y, &o.height);
  }
  if (random.OneIn(2)) {
    o.srcPhaseX = random.Between(-1.0, 1.0);
    o.dstPhaseY = random.OneIn(2) ? -0.25 : 0.5;
    o.srcPhaseY = random.Between(-1.0, 1.0);
    o.dstPhaseX = random.OneIn(2) ? -0.25 : 0.5;
  }
  if (random.OneIn(2)) o.cubic = random.Between(-1.0, -0.1);
  job.Fill(random);
  return job;
}

TEST(Resample, IsAccurate) {
  for (const int filter : {1, 2, 4, 8, 16, 32}) {
    SCOPED_TRACE(filter);
    Random random(filter);
    Errors errors;
    for (int run = 0; run < 300 && !testing::Test::HasFailure(); ++run) {
      Job job = RandomJob(random, filter);
      ASSERT_EQ(job.Run(), StatusOk);
      Compare(job, errors);
      const ResampleOptions& o = job.options;
      ASSERT_LE(errors.largest, 1) << run << ": pixels " << o.pixels << ", position " << o.position
                                   << ", " << job.from.width << 'x' << job.from.height << " to "
                                   << job.to.width << 'x' << job.to.height;
    }
    if (filter != 1) {
      EXPECT_LE(errors.sum / errors.count, 0.26);
    }
  }
}

// Weights of more than 14 bits, and pairs of them that are cut short.
TEST(Resample, IsAccurateInReductionsOfAnySize) {
  Random random(7);
  for (const int filter : {2, 4, 8, 16, 32})
    for (const int ratio : {9, 100, 1500, 20000}) {
      Errors errors;
      Job job;
      job.options.filter = filter;
      job.options.pixels = random.Pick(0, 1, 2, 3, 5);
      const bool across = random.OneIn(2);
      job.from = {across ? ratio * 3 + 7 : 5, across ? 5 : ratio * 3 + 7};
      job.to = {across ? 3 : 9, across ? 9 : 3};
      job.Fill(random);
      ASSERT_EQ(job.Run(), StatusOk);
      Compare(job, errors);
      EXPECT_LE(errors.largest, 0.8) << filter << ", " << ratio;
    }
}

// Ties go to the later sample, and what is rational is computed without error.
TEST(Resample, NearestTakesTheSampleThatThePositionLiesIn) {
  for (const int from : {1, 2, 3, 5, 7, 12, 97, 640})
    for (const int to : {1, 2, 3, 4, 6, 10, 11, 96, 1280}) {
      Job job;
      job.options.filter = 1;
      job.from = {from, 1};
      job.to = {to, 1};
      for (int k = 0; k < from; ++k) job.src.push_back(static_cast<unsigned char>(k * 37));
      job.dst.resize(std::size_t(to));
      ASSERT_EQ(job.Run(), StatusOk);
      for (int i = 0; i < to; ++i)
        ASSERT_EQ(job.dst[i], job.src[(2 * i + 1) * from / (2 * to)]) << from << ' ' << to;
    }
}

// Chroma that lies to the left of its pair of luma samples, brought to where luma is and back.
TEST(Resample, PhasesPlaceChroma) {
  Job job;
  job.options.filter = 2;
  job.options.srcPhaseX = -0.25;
  job.from = {4, 1};
  job.to = {8, 1};
  job.src = {10, 50, 90, 210};
  job.dst.resize(8);
  ASSERT_EQ(job.Run(), StatusOk);
  EXPECT_EQ(job.dst, (Bytes{10, 30, 50, 70, 90, 150, 210, 210}));
  std::swap(job.options.srcPhaseX, job.options.dstPhaseX);
  std::swap(job.from, job.to);
  std::swap(job.src, job.dst);
  job.options.narrow = 1;
  ASSERT_EQ(job.Run(), StatusOk);
  EXPECT_EQ(job.dst, (Bytes{10, 50, 90, 210}));
}

// Opaque pixels are those of three channels, transparent ones are nothing, and one colour stays one
// whatever the alpha: no fringes.
TEST(Resample, AlphaWeighsColours) {
  Random random(11);
  for (int run = 0; run < 200; ++run) {
    Job job = RandomJob(random, random.Pick(1, 2, 4, 8, 16, 32));
    job.options.pixels = 5;
    job.Fill(random);
    for (std::size_t k = 3; k < job.src.size(); k += 4) job.src[k] = 255;
    ASSERT_EQ(job.Run(), StatusOk);
    Job plain = job;
    plain.options.pixels = 2;
    plain.Fill(random);
    for (std::size_t k = 0; k < plain.src.size(); ++k) plain.src[k] = job.src[k / 3 * 4 + k % 3];
    ASSERT_EQ(plain.Run(), StatusOk);
    for (std::size_t k = 0; k < job.dst.size(); ++k)
      ASSERT_EQ(job.dst[k], k % 4 == 3 ? 255 : plain.dst[k / 4 * 3 + k % 4]);

    for (std::size_t k = 0; k < job.src.size(); ++k)
      job.src[k] = static_cast<unsigned char>(
          k % 4 == 3 ? random.Pick(0, 1, 2, 99, 255) : 50 + k % 4);
    ASSERT_EQ(job.Run(), StatusOk);
    if (job.options.filter != 1) {
      for (std::size_t k = 0; k < job.dst.size(); k += k % 4 == 2 ? 2 : 1)
        ASSERT_EQ(job.dst[k], job.dst[k | 3] == 0 ? 0 : 50 + k % 4) << run;
      for (std::size_t k = 3; k < job.src.size(); k += 4) job.src[k] = 0;
      ASSERT_EQ(job.Run(), StatusOk);
      EXPECT_EQ(job.dst, Bytes(job.dst.size(), 0));
    }
  }
}

// No number that is allowed leads out of the source or of an integer, nor to nothing.
TEST(Resample, TakesNumbersAtTheEndsOfTheirRanges) {
  Random random(5);
  int made = 0;
  for (int run = 0; run < 3000; ++run) {
    Job job = RandomJob(random, random.Pick(1, 2, 4, 8, 16, 32));
    ResampleOptions& o = job.options;
    const auto end = [&](double middle) {
      const double ends[] = {middle, middle, 0x1p31, -0x1p31, 1e-300, -1e-9, 2147483647.9, 1.0};
      return ends[random.Between(0, 7)];
    };
    o.x = end(3);
    o.y = end(0);
    o.width = std::fabs(end(9));
    o.height = std::fabs(end(9));
    o.srcPhaseX = random.Pick(-1, 0, 1);
    o.dstPhaseY = random.Pick(-1, 0, 1);
    const IppStatus status = job.Run();
    if (status == StatusOk) ++made;
    else
      ASSERT_TRUE(status == StatusNoOverlapWarning || status == StatusResizeFactorErr ||
                  (status == StatusRectErr && o.position == 1)) << status;
  }
  EXPECT_GT(made, 300);
}

// Every wrong argument with every other one: the earlier check counts, and nothing is written.
TEST(Resample, RefusesInOrder) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  struct Call {
    ResampleImages images;
    ResampleOptions options;
    bool hasOptions;
  };
  struct Wrong {
    IppStatus status;
    int order;
    void (*spoil)(Call&);
  };
  static const Wrong wrongs[] = {
      {StatusNullPtrErr, 0, [](Call& c) { c.images.src = nullptr; }},
      {StatusNullPtrErr, 0, [](Call& c) { c.images.dst = nullptr; }},
      {StatusNullPtrErr, 0, [](Call& c) { c.hasOptions = false; }},
      {StatusDataTypeErr, 1, [](Call& c) { c.options.pixels = 6; }},
      {StatusDataTypeErr, 1, [](Call& c) { c.options.pixels = -1; }},
      {StatusSizeErr, 2, [](Call& c) { c.images.srcSize.width = 0; }},
      {StatusSizeErr, 2, [](Call& c) { c.images.srcSize.height = -1; }},
      {StatusSizeErr, 2, [](Call& c) { c.images.dstSize.width = INT32_MAX; }},
      {StatusSizeErr, 2, [](Call& c) { c.images.dstSize.height = INT32_MIN; }},
      {StatusStepErr, 3, [](Call& c) { c.images.dstStep = 19; }},
      {StatusStepErr, 3, [](Call& c) { c.images.dstStep = -19; }},
      {StatusStepErr, 3, [](Call& c) { c.images.dstStep = 0; }},
      {StatusInterpolationErr, 4, [](Call& c) { c.options.filter = 3; }},
      {StatusInterpolationErr, 4, [](Call& c) { c.options.filter = -1; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.position = 2; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.narrow = -1; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.srcPhaseX = kNone; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.dstPhaseX = 1.001; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.srcPhaseY = -kInfinite; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.cubic = 0.001; }},
      {StatusOutOfRangeErr, 5, [](Call& c) { c.options.cubic = kNone; }},
      {StatusRectErr, 6, [](Call& c) { c.options.width = kNone; }},
      {StatusRectErr, 6, [](Call& c) { c.options.height = -1; }},
      {StatusRectErr, 6, [](Call& c) { c.options.x = kInfinite; }},
      {StatusRectErr, 6, [](Call& c) { c.options.y = kNone; }},
      {StatusRectErr, 6, [](Call& c) { c.options.height = 2147483649.0; }},
      {StatusNoOverlapWarning, 7, [](Call& c) { c.options.y = 500001; }},
      {StatusNoOverlapWarning, 7, [](Call& c) { c.options.y = -400000; }},
      {StatusResizeFactorErr, 8, [](Call& c) { c.options.x = 0.5; c.options.width = 1e6; }},
  };
  Bytes src(1), dst(1 << 10, 77);
  for (const Wrong& first : wrongs)
    for (const Wrong& second : wrongs) {
      // The source is not read, so it need not be there.
      Call c = {{src.data(), {10, 500000}, 10, dst.data(), {10, 10}, 20}, {}, true};
      c.options.pixels = 1;
      c.options.width = 10;
      c.options.height = 400000;
      const bool isFirst = first.order <= second.order;
      (isFirst ? second : first).spoil(c);
      (isFirst ? first : second).spoil(c);
      const IppStatus got = Resample(c.images, c.hasOptions ? &c.options : nullptr);
      ASSERT_EQ(got, (isFirst ? first : second).status)
          << &first - wrongs << ' ' << &second - wrongs;
    }
  EXPECT_EQ(dst, Bytes(1 << 10, 77));
}

}  // namespace
}  // namespace qv::test
