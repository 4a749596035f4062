// The resize kernels against an independent computation in double precision: each byte of random
// calls. To the bit they are held by the self-test's digests and the kernel checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "kernels/resize/Resize.h"
#include "support/Bytes.h"
#include "support/ExactResize.h"
#include "support/Levels.h"
#include "tests/support/ResizeCases.h"

namespace qv::test {
namespace {

using ExactAxis = std::vector<Sample>;

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

// One band over the whole destination, whose span begins at destination sample `first`.
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

// ---- Random jobs --------------------------------------------------------------------------------

struct Job : ResizeCase {
  int channels, step, dstStep;
  Bytes src, dst;

  const unsigned char* Region() const { return src.data() + roi.y * step + roi.x * channels; }

  void MakeSource(Random& random) {
    src.resize(std::size_t(step) * srcSize.height);
    random.Fill(src.data(), src.size());
    if (random.OneIn(3))  // extremes make the largest overshoots
      for (unsigned char& b : src) b = b & 1 ? 255 : 0;
  }
  void MakeDestination(int pixelBytes, IppiSize size) {
    dstStep = size.width * pixelBytes;
    dst.assign(std::size_t(dstStep) * size.height, 77);
  }

  void Compare(const ExactAxis& x, const ExactAxis& y, int left, int top, Errors& errors) const {
    for (std::size_t j = 0; j < y.size(); ++j)
      for (std::size_t i = 0; i < x.size() * channels; ++i)
        errors.Add(Region() + i % channels, step, channels, x[i / channels], y[j],
                   dst[(top + j) * dstStep + left * channels + i]);
  }
  // Whatever lies outside the written bytes is as it was.
  void ExpectKept(IppiRect written, int pixelBytes) const {
    for (std::size_t k = 0; k < dst.size(); ++k) {
      const int x = int(k) % dstStep / pixelBytes, y = int(k) / dstStep;
      if (x < written.x || x >= written.x + written.width || y < written.y ||
          y >= written.y + written.height) {
        ASSERT_EQ(dst[k], 77) << x << ' ' << y;
      }
    }
  }
};

Job RandomJob(Random& random, bool reduction) {
  const auto factor = reduction ? RandomReduction : RandomFactor;
  double x = factor(random), y = factor(random);
  if (random.OneIn(8)) x = y = 0.5;  // averages have a way of their own for it
  IppiSize dst = {random.Between(1, 60), random.Between(1, 40)};
  if (random.OneIn(6)) dst = {random.Between(1, 9), random.Between(1, 9)};
  Job job = {RandomResize(random, dst, x, y), random.Pick(1, 3), 0, 0, {}, {}};
  if (random.OneIn(2)) job.dstSize.width = std::max(1, dst.width + random.Between(-3, 3));
  job.step = job.srcSize.width * job.channels + random.Between(0, 9);
  job.MakeSource(random);
  return job;
}

// Runs many jobs of each method, on the plain rows and at this processor's level: what lies between
// is kernelcheck's.
void ExpectAccurate(std::initializer_list<int> codes, int runs,
                    const std::function<void(Random&, int code, Errors&)>& run) {
  for (const Level& level : {AvailableLevels().front(), AvailableLevels().back()}) {
    const UseLevel use(level);
    Random random(31);
    for (const int code : codes) {
      SCOPED_TRACE(testing::Message() << level.name << ", code " << code);
      Errors errors;
      for (int i = 0; i < runs; ++i) {
        run(random, code, errors);
        if (testing::Test::HasFatalFailure()) return;
      }
      ASSERT_GT(errors.count, 1000);
      // Nearest neighbour copies bytes; the linear method of whole images rounds in between.
      EXPECT_LE(errors.largest, code == 1 ? 0.0 : 1.0);
      EXPECT_LE(errors.Mean(), 0.26);
    }
  }
}

TEST(Resize, WholeImagesAreAccurate) {
  ExpectAccurate({1, 2, 4, 8, 16}, 150, [](Random& random, int code, Errors& errors) {
    Job job = RandomJob(random, code == 8);
    const IppiSize clipped = job.Clipped();
    int method = code;
    if (code != 8) {
      const int shorter = std::min(job.srcSize.width, job.srcSize.height);
      if (method == 16 && shorter < 8) method = 4;
      if (method == 4 && shorter < 4) method = 2;
      if (shorter < 2) method = 1;
    }
    job.MakeDestination(job.channels, job.dstSize);
    const auto kernel = job.channels == 1 ? Resize_8u_C1 : Resize_8u_C3;
    const IppStatus status = kernel(job.src.data(), job.srcSize, job.step, job.roi, job.dst.data(),
                                    job.dstStep, job.dstSize, job.xFactor, job.yFactor, code);
    const int width = Extent(clipped.width, job.xFactor, job.dstSize.width);
    const int height = Extent(clipped.height, job.yFactor, job.dstSize.height);
    const bool empty = width < 1 || height < 1;
    ASSERT_EQ(status, empty ? StatusEmptyOutputErr : StatusOk);
    if (empty) return;
    job.Compare(ExactWhole(method, clipped.width, job.xFactor, width),
                ExactWhole(method, clipped.height, job.yFactor, height), 0, 0, errors);
    job.ExpectKept({0, 0, width, height}, job.channels);
  });
}

TEST(Resize, BandsAreAccurate) {
  ExpectAccurate({1, 2, 4, 8, 16}, 300, [](Random& random, int code, Errors& errors) {
    Job job = RandomJob(random, code == 8);
    const IppiSize clipped = job.Clipped();
    const double xShift = random.OneIn(2)   ? 0
                          : random.OneIn(2) ? random.Between(-3, 3)
                                            : random.Between(-3.0, 3.0);
    // Some space before and after, or cut off.
    IppiRect rect = {random.Between(0, 5), random.Between(0, 5), 0, 0};
    rect.width =
        std::max(1, int((job.roi.x + clipped.width) * job.xFactor) + random.Between(-2, 9));
    rect.height =
        std::max(1, int((job.roi.y + clipped.height) * job.yFactor) + random.Between(-2, 9));
    const Written columns = WrittenInBands(job.roi.x, clipped.width, job.xFactor, xShift, rect.x,
                                           rect.x + rect.width);
    const Written rows = WrittenInBands(job.roi.y, clipped.height, job.yFactor, 0, rect.y,
                                        rect.y + rect.height);
    const IppiRect land = {int(columns.first), int(rows.first), int(columns.end - columns.first),
                           int(rows.end - rows.first)};
    job.MakeDestination(job.channels, {rect.x + rect.width, rect.y + rect.height});
    int bytes = 1;
    ResizeBandBufferSize({rect.width, rect.height}, job.channels, code, &bytes);
    Bytes buffer(static_cast<std::size_t>(bytes));
    const auto kernel = job.channels == 1 ? ResizeBand_8u_C1 : ResizeBand_8u_C3;
    const IppStatus status =
        kernel(job.src.data(), job.srcSize, job.step, job.roi, job.dst.data(), job.dstStep, rect,
               job.xFactor, job.yFactor, xShift, 0, code, buffer.data());
    const bool misses = land.width < 0 || land.height < 0;
    ASSERT_EQ(status, misses ? StatusNothingToDoWarning : StatusOk);
    if (misses) return;
    job.Compare(
        ExactBand(code, job.roi.x, clipped.width, job.xFactor, xShift, land.x, land.width),
        ExactBand(code, job.roi.y, clipped.height, job.yFactor, 0, land.y, land.height), land.x,
        land.y, errors);
    job.ExpectKept(land, job.channels);
  });
}

TEST(ResizeYUV422, IsAccurateOnBothGrids) {
  ExpectAccurate({1, 2, 4, 8}, 300, [](Random& random, int code, Errors& errors) {
    Job job = RandomJob(random, code == 8);
    job.srcSize.width = 2 * random.Between(1, 30);
    job.roi = {0, random.Between(0, job.srcSize.height - 1), 2 * random.Between(1, 40),
               random.Between(1, 40)};
    job.step = 2 * job.srcSize.width + random.Between(0, 5);
    job.MakeSource(random);
    const IppiSize clipped = job.Clipped();
    job.dstSize = {2 + int(clipped.width * job.xFactor) + random.Between(-1, 5),
                   1 + int(clipped.height * job.yFactor)};
    int method = code;
    if (method == 4 && (job.srcSize.width < 8 || job.srcSize.height < 4)) method = 2;
    if (method != 8 && (job.srcSize.width < 4 || job.srcSize.height < 2)) method = 1;
    job.MakeDestination(2, job.dstSize);
    const IppStatus status =
        ResizeYUV422_8u_C2(job.src.data(), job.srcSize, job.step, job.roi, job.dst.data(),
                           job.dstStep, job.dstSize, job.xFactor, job.yFactor, code);
    const int height = Extent(clipped.height, job.yFactor, job.dstSize.height);
    const bool empty = clipped.width * job.xFactor + 1e-07 < 1.5 || height < 1;
    ASSERT_EQ(status, job.dstSize.width < 2 ? StatusSizeErr
                      : empty               ? StatusEmptyOutputErr
                                            : StatusOk);
    if (status != StatusOk) return;
    const int pairs = std::max(2, Extent(clipped.width, job.xFactor, job.dstSize.width)) / 2;
    const ExactAxis luma = ExactWhole(method, clipped.width, job.xFactor, 2 * pairs);
    const ExactAxis chroma = ExactWhole(method, clipped.width / 2, job.xFactor, pairs);
    const ExactAxis rows = ExactWhole(method, clipped.height, job.yFactor, height);
    const unsigned char* const src = job.src.data() + job.roi.y * job.step;
    for (std::size_t y = 0; y < rows.size(); ++y)
      for (int k = 0; k < 2 * pairs; ++k) {
        const unsigned char* const to = job.dst.data() + y * job.dstStep + 2 * k;
        errors.Add(src, job.step, 2, luma[k], rows[y], to[0]);
        errors.Add(src + 1 + k % 2 * 2, job.step, 4, chroma[k / 2], rows[y], to[1]);
      }
    job.ExpectKept({0, 0, 2 * pairs, int(rows.size())}, 2);
  });
}

}  // namespace
}  // namespace qv::test
