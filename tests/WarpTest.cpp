// qvWarpPerspective through the public interface against an unrounded reference in long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/RandomMatrix.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;
using Real = long double;

// A whole warp: image, regions, matrix, method.
struct Call {
  int channels, method;
  IppiSize srcSize;
  IppiRect srcRoi, dstRoi;
  Matrix m;

  IppStatus Run(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep) const {
    return Lib::qvWarpPerspective(Type(channels == 1 ? 2 : 4), src, srcSize, srcStep, srcRoi, dst,
                                  dstStep, dstRoi, m.c, method);
  }
};

struct Reference {
  Real p[3][3];  // the inverse, with the third component above 0 inside the source
  IppiRect part;

  explicit Reference(const Call& call) {
    const auto& c = call.m.c;
    for (int i = 0; i < 3; ++i)
      for (int k = 0; k < 3; ++k) {
        const int a = (k + 1) % 3, b = (k + 2) % 3, d = (i + 1) % 3, e = (i + 2) % 3;
        p[i][k] = static_cast<Real>(c[a][d]) * c[b][e] - static_cast<Real>(c[a][e]) * c[b][d];
      }
    const Real det = c[0][0] * p[0][0] + c[0][1] * p[1][0] + c[0][2] * p[2][0];
    const Real w = c[2][0] * Real(call.srcRoi.x) + c[2][1] * Real(call.srcRoi.y) + c[2][2];
    if (det * w < 0)
      for (auto& row : p)
        for (Real& v : row) v = -v;
    part = call.srcRoi;
    part.width = std::min(part.width, call.srcSize.width - part.x);
    part.height = std::min(part.height, call.srcSize.height - part.y);
  }

  void Position(int x, int y, Real& px, Real& py) const {
    const Real w = p[2][0] * x + p[2][1] * y + p[2][2];
    px = w > 0 ? (p[0][0] * x + p[0][1] * y + p[0][2]) / w : -1e30L;
    py = w > 0 ? (p[1][0] * x + p[1][1] * y + p[1][2]) / w : -1e30L;
  }

  // How far outside of the area a position is, in source pixels; inside it is 0 or less.
  Real Outside(Real px, Real py) const {
    return std::max({part.x - px, px - (part.x + part.width - 1), part.y - py,
                     py - (part.y + part.height - 1)});
  }
};

Real Keys(Real t) {
  t = std::fabs(t);
  return t < 1 ? (1.5L * t - 2.5L) * t * t + 1
               : t < 2 ? ((-0.5L * t + 2.5L) * t - 4) * t + 2 : 0;
}

Real Sample(const Call& call, const IppiRect& part, const unsigned char* src, int step, int channel,
            Real px, Real py) {
  const auto tap = [&](int x, int y) {
    x = std::clamp(x, part.x, part.x + part.width - 1);
    y = std::clamp(y, part.y, part.y + part.height - 1);
    return static_cast<Real>(src[std::ptrdiff_t{y} * step + x * call.channels + channel]);
  };
  const int x = static_cast<int>(std::floor(px)), y = static_cast<int>(std::floor(py));
  Real sum = 0;
  for (int i = -1; i <= 2; ++i)
    for (int k = -1; k <= 2; ++k) {
      const Real dx = px - (x + k), dy = py - (y + i);
      const Real weight = call.method == 4 ? Keys(dx) * Keys(dy)
                                           : std::max(Real{0}, 1 - std::fabs(dx)) *
                                                 std::max(Real{0}, 1 - std::fabs(dy));
      if (weight != 0) sum += weight * tap(x + k, y + i);
    }
  return std::clamp(sum, Real{0}, Real{255});
}

struct Errors {
  double sum = 0, worst = 0;
  long long count = 0;
};

// Compares a warped image, prepared with `kept`, with the reference.
void Judge(const Call& call, const unsigned char* src, int srcStep, const Bytes& dst, int dstStep,
           unsigned char kept, Errors& errors) {
  const Reference reference(call);
  const IppiRect& part = reference.part;
  const int rows = static_cast<int>(dst.size()) / dstStep;
  for (int y = 0; y < rows; ++y)
    for (int x = 0; x < dstStep / call.channels; ++x) {
      Real px, py;
      reference.Position(x, y, px, py);
      const Real outside = reference.Outside(px, py);
      if (std::fabs(outside - 1e-6L) < 1e-9L) continue;  // a rounding away from either side
      const bool inArea = outside < 1e-6L && x >= call.dstRoi.x && y >= call.dstRoi.y &&
                          x - call.dstRoi.x < call.dstRoi.width &&
                          y - call.dstRoi.y < call.dstRoi.height;
      const unsigned char* out = &dst[std::size_t(y) * dstStep + std::size_t(x) * call.channels];
      for (int c = 0; c < call.channels; ++c) {
        if (!inArea) {
          ASSERT_EQ(out[c], kept) << "outside at " << x << ',' << y;
          continue;
        }
        px = std::clamp(px, Real(part.x), Real(part.x + part.width - 1));
        py = std::clamp(py, Real(part.y), Real(part.y + part.height - 1));
        if (call.method == 1) {
          bool found = false;  // any pixel whose cell comes within 1e-4 of the position
          for (const Real ex : {-1e-4L, 1e-4L})
            for (const Real ey : {-1e-4L, 1e-4L}) {
              const int sx =
                  std::clamp(int(std::floor(px + ex + .5L)), part.x, part.x + part.width - 1);
              const int sy =
                  std::clamp(int(std::floor(py + ey + .5L)), part.y, part.y + part.height - 1);
              found |= out[c] == src[std::ptrdiff_t{sy} * srcStep + sx * call.channels + c];
            }
          ASSERT_TRUE(found) << "nearest at " << x << ',' << y;
          continue;
        }
        const double error = std::fabs(
            static_cast<double>(out[c] - Sample(call, part, src, srcStep, c, px, py)));
        ASSERT_LE(error, 1) << "at " << x << ',' << y;
        errors.sum += error;
        errors.worst = std::max(errors.worst, error);
        ++errors.count;
      }
    }
}

Call RandomCall(Random& random, IppiSize dst) {
  Call call;
  call.channels = random.Pick(1, 3);
  call.method = random.Pick(1, 2, 4);
  call.srcSize = {random.Between(1, 90), random.Between(1, 90)};
  if (random.OneIn(3)) call.srcSize = {random.Between(100, 400), random.Between(100, 300)};
  call.srcRoi = {0, 0, std::max(2, call.srcSize.width), std::max(2, call.srcSize.height)};
  if (random.OneIn(2)) {
    call.srcRoi.x = random.Between(0, call.srcSize.width - 1);
    call.srcRoi.y = random.Between(0, call.srcSize.height - 1);
    call.srcRoi.width = random.Between(2, call.srcSize.width + 20);
    call.srcRoi.height = random.Between(2, call.srcSize.height + 20);
  }
  call.dstRoi = {0, 0, dst.width, dst.height};
  if (random.OneIn(2))
    call.dstRoi = {random.Between(0, dst.width - 1), random.Between(0, dst.height - 1),
                   random.Between(1, dst.width), random.Between(1, dst.height)};
  if (random.OneIn(4)) call.dstRoi.width = random.Between(1, 20);  // less than a vector
  call.dstRoi.width = std::min(call.dstRoi.width, dst.width - call.dstRoi.x);
  call.dstRoi.height = std::min(call.dstRoi.height, dst.height - call.dstRoi.y);
  call.m = RandomMatrix(random, call.srcRoi, dst, !random.OneIn(3), false);
  return call;
}

// The source flush to either end of guarded memory: a single byte too far ends the test.
TEST(Warp, IsWithinOneUnitOfTheReferenceEverywhere) {
  const UseBudget one(1);
  const GuardedMemory memory(1 << 20);
  Random random(std::random_device{}());
  Errors errors[3];
  for (int n = 0; n < 400; ++n) {
    const std::uint64_t seed = random.Next();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random r(seed);
    const IppiSize size = {r.Between(1, 250), r.Between(1, 150)};
    const Call call = RandomCall(r, size);
    const int srcStep = call.srcSize.width * call.channels + (r.OneIn(2) ? r.Between(0, 9) : 0);
    const std::size_t bytes = std::size_t(srcStep) * (call.srcSize.height - 1) +
                              std::size_t(call.srcSize.width) * call.channels;
    unsigned char* const src = r.OneIn(2) ? memory.begin() : memory.end() - bytes;
    r.Fill(src, bytes);
    const int dstStep = size.width * call.channels;
    const Bytes before(std::size_t(dstStep) * size.height, 77);
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      SCOPED_TRACE(level.name);
      Bytes dst = before;
      const IppStatus status = call.Run(src, srcStep, dst.data(), dstStep);
      ASSERT_TRUE(status == StatusOk || status == StatusNoOverlapWarning) << status;
      if (status != StatusOk) { ASSERT_EQ(dst, before); }
      Errors& e = errors[call.method / 2];
      ASSERT_NO_FATAL_FAILURE(Judge(call, src, srcStep, dst, dstStep, 77, e));
    }
  }
  for (const int method : {2, 4}) {
    const Errors& e = errors[method / 2];
    ASSERT_GT(e.count, 100000);
    EXPECT_LE(e.sum / static_cast<double>(e.count), 0.26);
    std::printf("method %d: %lld bytes, largest error %.4f, mean %.4f\n", method, e.count, e.worst,
                e.sum / static_cast<double>(e.count));
  }
}

}  // namespace
}  // namespace qv::test
