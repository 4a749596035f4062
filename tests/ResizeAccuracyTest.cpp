// The resize kernels at every level: each byte against an independent computation in double
// precision or, for the linear method of whole images, in its integer arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "kernels/resize/Resize.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes Noise(std::size_t n, std::uint64_t seed) {
  Bytes bytes(n);
  Random random(seed);
  random.Fill(bytes.data(), n);
  if (seed % 3 == 0)  // extremes make the largest overshoots
    for (unsigned char& b : bytes) b = b & 1 ? 255 : 0;
  return bytes;
}

// ---- The exact result ---------------------------------------------------------------------------

// A destination sample of one axis: source samples with their weights, which sum to 1.
using Sample = std::vector<std::pair<int, double>>;
using ExactAxis = std::vector<Sample>;

double Kernel(int code, double x) {
  x = std::fabs(x);
  if (code == 2) return std::max(0.0, 1 - x);
  if (code == 4)
    return x < 1   ? 1.5 * x * x * x - 2.5 * x * x + 1
           : x < 2 ? -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2
                   : 0;
  return x < 1e-9 ? 1
         : x < 3  ? 3 * std::sin(M_PI * x) * std::sin(M_PI * x / 3) / (M_PI * M_PI * x * x)
                  : 0;
}

Sample ExactTaps(int code, double position, int length) {
  const int taps = code == 2 ? 2 : code == 4 ? 4 : 6;
  const double clamped = std::clamp(position, -10.0, length + 10.0);
  const int first = static_cast<int>(std::floor(clamped)) - taps / 2 + 1;
  Sample sample;
  double sum = 0;
  for (int s = first; s < first + taps; ++s) {
    sample.push_back({std::clamp(s, 0, length - 1), Kernel(code, clamped - s)});
    sum += sample.back().second;
  }
  for (auto& [s, w] : sample) w /= sum;
  return sample;
}

Sample ExactMean(double from, double to, int length) {
  from = std::max(from, 0.0);
  to = std::min(to, double(length));
  Sample sample;
  for (int s = static_cast<int>(from); s < to && s < length; ++s)
    sample.push_back({s, (std::min(to, s + 1.0) - std::max(from, double(s))) / (to - from)});
  return sample;
}

int Extent(int length, double factor, int available) {
  return std::max(1, static_cast<int>(std::min<double>(available, length * factor + 1e-07)));
}

// The axis of a whole image, or (band) of one band over the whole destination, whose span begins at
// destination sample `first`.
ExactAxis ExactWhole(int code, int length, double factor, int count) {
  ExactAxis axis;
  double position = code == 1 ? 0.5 * (1 / factor) : 0;
  const double step = code == 1             ? 1 / factor
                      : length * factor > 1 ? (length - 1) / (length * factor - 1)
                                            : 0;
  for (int i = 0; i < count; ++i, position += step) {
    if (code == 1) axis.push_back({{std::min(static_cast<int>(position), length - 1), 1.0}});
    else if (code == 8) axis.push_back(ExactMean(i / factor, (i + 1) / factor, length));
    else axis.push_back(ExactTaps(code, position, length));
  }
  return axis;
}

ExactAxis ExactBand(int code, int start, int length, double factor, double shift, int first,
                    int count) {
  ExactAxis axis;
  for (int i = first; i < first + count; ++i) {
    const double centre = (i + 0.5) / factor - shift / factor;
    if (code == 1)
      axis.push_back(
          {{std::clamp(static_cast<int>(centre + 1e-10), start, start + length - 1) - start, 1.0}});
    else if (code == 8)
      axis.push_back(
          ExactMean((i - shift) / factor - start, (i + 1 - shift) / factor - start, length));
    else axis.push_back(ExactTaps(code, centre - 0.5 - start, length));
  }
  return axis;
}

double ExactByte(const unsigned char* src, std::ptrdiff_t step, int pixel, const Sample& x,
                 const Sample& y) {
  double sum = 0;
  for (const auto& [sy, wy] : y)
    for (const auto& [sx, wx] : x) sum += wy * wx * src[sy * step + std::ptrdiff_t{sx} * pixel];
  return std::clamp(sum, 0.0, 255.0);
}

struct Errors {
  double largest = 0, sum = 0;
  long long count = 0;

  void Add(double exact, int byte) {
    const double error = std::fabs(exact - byte);
    largest = std::max(largest, error);
    if (exact > 0 && exact < 255) sum += error, ++count;
  }
};

void ExpectAccurate(int code, const Errors& errors) {
  // Nearest neighbour copies bytes; the linear method of whole images rounds in between.
  EXPECT_LE(errors.largest, code == 1 ? 0.0 : 1.0) << code;
  if (code != 1) {
    EXPECT_LE(errors.sum / static_cast<double>(errors.count), 0.26) << code;
  }
}

// ---- Random jobs --------------------------------------------------------------------------------

struct Job {
  IppiSize srcSize;
  IppiRect roi;
  double xFactor, yFactor;
  IppiSize dstSize;
  int channels, step, dstStep;
  Bytes src;

  IppiSize Clipped() const {
    return {std::min(roi.width, srcSize.width - roi.x),
            std::min(roi.height, srcSize.height - roi.y)};
  }
  const unsigned char* Region() const { return src.data() + roi.y * step + roi.x * channels; }
};

// Factors from 1/20 to 20, sizes from 1 x 1.
Job RandomJob(Random& random, bool reduction = false) {
  const auto factor = [&] {
    const double f = random.OneIn(3) ? random.Between(1, 6) / double(random.Between(1, 6))
                                     : std::exp(random.Between(-3.0, 3.0));
    return reduction ? std::min(f, 1 / f) : f;
  };
  Job job;
  job.xFactor = factor();
  job.yFactor = factor();
  job.srcSize = {random.Between(1, 60), random.Between(1, 40)};
  if (random.OneIn(6)) job.srcSize = {random.Between(1, 9), random.Between(1, 9)};
  job.roi = {0, 0, job.srcSize.width, job.srcSize.height};
  if (random.OneIn(2)) {
    job.roi.x = random.Between(0, job.srcSize.width - 1);
    job.roi.y = random.Between(0, job.srcSize.height - 1);
    job.roi.width = random.Between(1, job.srcSize.width);
    job.roi.height = random.Between(1, job.srcSize.height);
  }
  const auto extent = [&](int length, double f) {
    return std::max(1, int(length * f) + (random.OneIn(2) ? 0 : random.Between(-3, 3)));
  };
  job.dstSize = {extent(job.Clipped().width, job.xFactor),
                 extent(job.Clipped().height, job.yFactor)};
  job.channels = random.Pick(1, 3);
  job.step = job.srcSize.width * job.channels + random.Between(0, 9);
  job.dstStep = job.dstSize.width * job.channels;
  job.src = Noise(std::size_t(job.step) * job.srcSize.height, random.Next());
  return job;
}

void Compare(const Job& job, const Bytes& dst, const ExactAxis& x, const ExactAxis& y,
             std::ptrdiff_t first, Errors* errors) {
  for (std::size_t j = 0; j < y.size(); ++j)
    for (std::size_t i = 0; i < x.size() * job.channels; ++i)
      errors->Add(ExactByte(job.Region() + i % job.channels, job.step, job.channels,
                            x[i / job.channels], y[j]),
                  dst[first + j * job.dstStep + i]);
}

TEST(Resize, WholeImagesAreAccurate) {
  for (const Level& level : AvailableLevels()) {
    SCOPED_TRACE(level.name);
    const UseLevel use(level);
    Random random(31);
    for (const int code : {1, 2, 4, 8, 16}) {
      Errors errors;
      for (int run = 0; run < 150; ++run) {
        const Job job = RandomJob(random, code == 8);
        const IppiSize clipped = job.Clipped();
        int method = code;
        if (code != 8) {
          const int shorter = std::min(job.srcSize.width, job.srcSize.height);
          if (method == 16 && shorter < 8) method = 4;
          if (method == 4 && shorter < 4) method = 2;
          if (shorter < 2) method = 1;
        }
        Bytes dst(std::size_t(job.dstStep) * job.dstSize.height, 77);
        const auto kernel = job.channels == 1 ? Resize_8u_C1 : Resize_8u_C3;
        const IppStatus status = kernel(job.src.data(), job.srcSize, job.step, job.roi, dst.data(),
                                        job.dstStep, job.dstSize, job.xFactor, job.yFactor, code);
        if (clipped.width * job.xFactor + 1e-07 < 0.5 ||
            clipped.height * job.yFactor + 1e-07 < 0.5) {
          ASSERT_EQ(status, StatusEmptyOutputErr);
          continue;
        }
        ASSERT_EQ(status, StatusOk);
        const int width = Extent(clipped.width, job.xFactor, job.dstSize.width);
        const int height = Extent(clipped.height, job.yFactor, job.dstSize.height);
        Compare(job, dst, ExactWhole(method, clipped.width, job.xFactor, width),
                ExactWhole(method, clipped.height, job.yFactor, height), 0, &errors);
        for (int y = 0; y < job.dstSize.height; ++y)
          for (int k = y < height ? width * job.channels : 0; k < job.dstStep; ++k)
            ASSERT_EQ(dst[std::size_t(y) * job.dstStep + k], 77) << "outside the written extent";
      }
      ExpectAccurate(code, errors);
    }
  }
}

TEST(Resize, BandsAreAccurate) {
  for (const Level& level : AvailableLevels()) {
    SCOPED_TRACE(level.name);
    const UseLevel use(level);
    Random random(32);
    for (const int code : {1, 2, 4, 8, 16}) {
      Errors errors;
      int written = 0;
      for (int run = 0; run < 300; ++run) {
        Job job = RandomJob(random, code == 8);
        const IppiSize clipped = job.Clipped();
        const double xShift = random.OneIn(2) ? 0 : random.Between(-3.0, 3.0);
        // Where the region lands, with some space before and behind, or cut off.
        const auto landing = [](int start, int length, double f, double shift, int low, int size,
                                int* first) {
          const double left = std::max<double>(low, start * f + shift);
          const double right = std::min<double>(low + size, (start + length) * f + shift);
          *first = static_cast<int>(left + 0.4999999999);
          return static_cast<int>(right + 0.4999999999) - *first;
        };
        IppiRect rect = {random.Between(0, 5), random.Between(0, 5), 0, 0};
        rect.width =
            std::max(1, int((job.roi.x + clipped.width) * job.xFactor) + random.Between(-2, 9));
        rect.height =
            std::max(1, int((job.roi.y + clipped.height) * job.yFactor) + random.Between(-2, 9));
        int left, top;
        const int width =
            landing(job.roi.x, clipped.width, job.xFactor, xShift, rect.x, rect.width, &left);
        const int height =
            landing(job.roi.y, clipped.height, job.yFactor, 0, rect.y, rect.height, &top);
        job.dstStep = (rect.x + rect.width) * job.channels;
        Bytes dst(std::size_t(job.dstStep) * (rect.y + rect.height), 77);
        int bytes = 1;
        ResizeBandBufferSize({rect.width, rect.height}, job.channels, code, &bytes);
        Bytes buffer(static_cast<std::size_t>(bytes));
        const auto kernel = job.channels == 1 ? ResizeBand_8u_C1 : ResizeBand_8u_C3;
        const IppStatus status =
            kernel(job.src.data(), job.srcSize, job.step, job.roi, dst.data(), job.dstStep, rect,
                   job.xFactor, job.yFactor, xShift, 0, code, buffer.data());
        if (width < 0 || height < 0) {
          ASSERT_EQ(status, StatusNothingToDoWarning);
          continue;
        }
        ASSERT_EQ(status, StatusOk);
        written += width > 0 && height > 0;
        Bytes outside = dst;
        for (int y = top; y < top + height; ++y)
          for (int k = left * job.channels; k < (left + width) * job.channels; ++k)
            outside[std::size_t(y) * job.dstStep + k] = 77;
        ASSERT_TRUE(std::all_of(outside.begin(), outside.end(), [](int b) { return b == 77; }));
        Compare(job, dst,
                ExactBand(code, job.roi.x, clipped.width, job.xFactor, xShift, left, width),
                ExactBand(code, job.roi.y, clipped.height, job.yFactor, 0, top, height),
                std::ptrdiff_t{top} * job.dstStep + left * job.channels, &errors);
      }
      EXPECT_GT(written, 60);
      ExpectAccurate(code, errors);
    }
  }
}

TEST(ResizeYUV422, IsAccurateOnBothGrids) {
  for (const Level& level : AvailableLevels()) {
    SCOPED_TRACE(level.name);
    const UseLevel use(level);
    Random random(33);
    for (const int code : {1, 2, 4, 8}) {
      Errors errors;
      for (int run = 0; run < 100; ++run) {
        Job job = RandomJob(random, code == 8);
        job.srcSize.width = 2 * random.Between(1, 30);
        job.roi = {0, random.Between(0, job.srcSize.height - 1), 2 * random.Between(1, 40),
                   random.Between(1, 40)};
        job.step = 2 * job.srcSize.width + random.Between(0, 5);
        job.src = Noise(std::size_t(job.step) * job.srcSize.height, random.Next());
        const IppiSize clipped = job.Clipped();
        job.dstSize = {2 + int(clipped.width * job.xFactor) + random.Between(-1, 5),
                       1 + int(clipped.height * job.yFactor)};
        int method = code;
        if (method == 4 && (job.srcSize.width < 8 || job.srcSize.height < 4)) method = 2;
        if (method != 8 && (job.srcSize.width < 4 || job.srcSize.height < 2)) method = 1;
        job.dstStep = 2 * job.dstSize.width;
        Bytes dst(std::size_t(job.dstStep) * job.dstSize.height, 77);
        const IppStatus status =
            ResizeYUV422_8u_C2(job.src.data(), job.srcSize, job.step, job.roi, dst.data(),
                               job.dstStep, job.dstSize, job.xFactor, job.yFactor, code);
        if (job.dstSize.width < 2) {
          ASSERT_EQ(status, StatusSizeErr);
          continue;
        }
        const double extent = clipped.width * job.xFactor + 1e-07;
        if (extent < 1.5 || clipped.height * job.yFactor + 1e-07 < 0.5) {
          ASSERT_EQ(status, StatusEmptyOutputErr);
          continue;
        }
        ASSERT_EQ(status, StatusOk);
        const int pairs = std::max(2, Extent(clipped.width, job.xFactor, job.dstSize.width)) / 2;
        const ExactAxis luma = ExactWhole(method, clipped.width, job.xFactor, 2 * pairs);
        const ExactAxis chroma = ExactWhole(method, clipped.width / 2, job.xFactor, pairs);
        const ExactAxis rows = ExactWhole(method, clipped.height, job.yFactor,
                                          Extent(clipped.height, job.yFactor, job.dstSize.height));
        const unsigned char* const src = job.src.data() + job.roi.y * job.step;
        for (std::size_t y = 0; y < rows.size(); ++y) {
          const unsigned char* const row = dst.data() + y * job.dstStep;
          for (int k = 0; k < 2 * pairs; ++k)
            errors.Add(ExactByte(src, job.step, 2, luma[k], rows[y]), row[2 * k]);
          for (int k = 0; k < 2 * pairs; ++k)
            errors.Add(ExactByte(src + 1 + k % 2 * 2, job.step, 4, chroma[k / 2], rows[y]),
                       row[2 * k + 1]);
          for (int k = 4 * pairs; k < job.dstStep; ++k) ASSERT_EQ(row[k], 77);
        }
      }
      ExpectAccurate(code, errors);
    }
  }
}

// ---- The exact linear method --------------------------------------------------------------------

// Weights and indices as documented, then the documented arithmetic, pixel by pixel.
TEST(Resize, LinearIsItsArithmeticToTheBit) {
  struct Tap {
    int index, weight;
  };
  const auto taps = [](int length, double factor, int count) {
    std::vector<Tap> all;
    const double scaled = length * factor;
    double position = 0;
    for (int i = 0; i<count; ++i, position += scaled> 1 ? (length - 1) / (scaled - 1) : 0) {
      const int index = static_cast<int>(position);
      const float fraction = static_cast<float>(position - index);
      if (length == 1) all.push_back({0, 0});
      else if (index >= length - 1) all.push_back({length - 2, 16384});
      else all.push_back({index, static_cast<int>(fraction * 16384.0 + 1e-07)});
    }
    return all;
  };
  Random random(34);
  for (int run = 0; run < 400; ++run) {
    Job job = RandomJob(random);
    if (std::min(job.srcSize.width, job.srcSize.height) < 2) continue;
    const IppiSize clipped = job.Clipped();
    if (clipped.width * job.xFactor < 1 || clipped.height * job.yFactor < 1) continue;
    const auto x =
        taps(clipped.width, job.xFactor, Extent(clipped.width, job.xFactor, job.dstSize.width));
    const auto y =
        taps(clipped.height, job.yFactor, Extent(clipped.height, job.yFactor, job.dstSize.height));
    Bytes expected(std::size_t(job.dstStep) * job.dstSize.height, 77);
    const bool flipped = random.OneIn(3);  // a source whose rows go upwards in memory
    const int step = flipped ? -job.step : job.step;
    const unsigned char* const src =
        flipped ? job.src.data() + std::ptrdiff_t{job.step} * (job.srcSize.height - 1)
                : job.src.data();
    const unsigned char* const region =
        src + job.roi.y * std::ptrdiff_t{step} + job.roi.x * job.channels;
    const int right = clipped.width > 1 ? job.channels : 0, below = clipped.height > 1 ? step : 0;
    for (std::size_t i = 0; i < y.size(); ++i)
      for (std::size_t j = 0; j < x.size(); ++j)
        for (int c = 0; c < job.channels; ++c) {
          const auto across = [&](const unsigned char* p) {
            return (p[right] * x[j].weight + p[0] * (16384 - x[j].weight) + 128) >> 8;
          };
          const unsigned char* const p =
              region + y[i].index * std::ptrdiff_t{step} + x[j].index * job.channels + c;
          expected[i * job.dstStep + j * job.channels + c] = static_cast<unsigned char>(
              (across(p + below) * y[i].weight + across(p) * (16384 - y[i].weight) + 524288) >> 20);
        }
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Bytes dst(expected.size(), 77);
      const auto kernel = job.channels == 1 ? Resize_8u_C1 : Resize_8u_C3;
      ASSERT_EQ(kernel(src, job.srcSize, step, job.roi, dst.data(), job.dstStep, job.dstSize,
                       job.xFactor, job.yFactor, 2),
                StatusOk);
      ASSERT_TRUE(dst == expected) << level.name << ", run " << run;
    }
  }
}

}  // namespace
}  // namespace qv::test
