// qvWarpPerspective through the public interface against an unrounded reference in long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/Bytes.h"
#include "support/ExactResize.h"
#include "support/Levels.h"
#include "tests/support/Guarded.h"
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
    part = ClippedTo(call.srcSize, call.srcRoi);
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

// Compares a warped image, prepared with `kept`, with the reference.
void Judge(const Call& call, const unsigned char* src, int srcStep, const Bytes& dst, int dstStep,
           unsigned char kept, Errors& errors) {
  const Reference reference(call);
  const IppiRect& part = reference.part;
  src += std::ptrdiff_t{part.y} * srcStep + part.x * call.channels;
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
      if (!inArea) {
        for (int c = 0; c < call.channels; ++c) ASSERT_EQ(out[c], kept) << x << ',' << y;
        continue;
      }
      px = std::clamp<Real>(px - part.x, 0, part.width - 1);
      py = std::clamp<Real>(py - part.y, 0, part.height - 1);
      if (call.method == 1) {
        bool found = false;  // any pixel whose cell comes within 1e-4 of the position
        for (const Real ex : {-1e-4L, 1e-4L})
          for (const Real ey : {-1e-4L, 1e-4L}) {
            const int sx = std::clamp(int(std::floor(px + ex + .5L)), 0, part.width - 1);
            const int sy = std::clamp(int(std::floor(py + ey + .5L)), 0, part.height - 1);
            const unsigned char* const pixel =
                src + std::ptrdiff_t{sy} * srcStep + sx * call.channels;
            found |= std::equal(out, out + call.channels, pixel);
          }
        ASSERT_TRUE(found) << x << ',' << y;
        continue;
      }
      const Sample columns = ExactTaps(call.method, static_cast<double>(px), part.width);
      const Sample lines = ExactTaps(call.method, static_cast<double>(py), part.height);
      for (int c = 0; c < call.channels; ++c)
        errors.Add(src + c, srcStep, call.channels, columns, lines, out[c]);
      ASSERT_LE(errors.largest, 1) << x << ',' << y;
    }
}

Call RandomCall(Random& random, IppiSize dst) {
  Call call;
  call.channels = random.Pick(1, 3);
  call.method = random.Pick(1, 2, 4);
  call.srcSize = {random.Between(1, 90), random.Between(1, 90)};
  if (random.OneIn(3)) call.srcSize = {random.Between(100, 400), random.Between(100, 300)};
  call.srcRoi = {0, 0, std::max(2, call.srcSize.width), std::max(2, call.srcSize.height)};
  if (random.OneIn(2)) call.srcRoi = RandomRegion(random, call.srcSize, 2, 20);
  call.dstRoi = {0, 0, dst.width, dst.height};
  if (random.OneIn(2)) call.dstRoi = RandomRegion(random, dst);
  if (random.OneIn(4)) call.dstRoi.width = random.Between(1, 20);  // less than a vector
  call.dstRoi = ClippedTo(dst, call.dstRoi);
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
    // What lies between the plain rows and this processor's is kernelcheck's.
    for (const Level& level : {AvailableLevels().front(), AvailableLevels().back()}) {
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
    EXPECT_LE(e.Mean(), 0.26);
  }
}

// A corner of the region that falls upon a whole pixel is written, though quotients of numbers that
// no double holds place it a little outside.
TEST(Warp, CornersOnWholePixelsAreWritten) {
  Bytes src = Noise(40 * 40);
  const IppiRect roi = {7, 5, 20, 18};
  for (const int cornerX : {roi.x, roi.x + roi.width - 1})
    for (const int cornerY : {roi.y, roi.y + roi.height - 1})
      for (int tenths = 3; tenths <= 40; ++tenths)
        for (int at = 0; at < 12; ++at) {
          const double scale = tenths / 10.0;
          const double coeffs[3][3] = {{scale, 0, at - scale * cornerX},
                                       {0, scale, 11 - at - scale * cornerY},
                                       {0, 0, 1}};
          Bytes dst(12 * 12, 0);
          src[cornerY * 40 + cornerX] = 255;
          ASSERT_EQ(Lib::qvWarpPerspective(Type(2), src.data(), {40, 40}, 40, roi, dst.data(), 12,
                                           {0, 0, 12, 12}, coeffs, 1),
                    StatusOk);
          ASSERT_EQ(dst[(11 - at) * 12 + at], 255)
              << scale << ", " << cornerX << ", " << cornerY << " to " << at;
        }
}

}  // namespace
}  // namespace qv::test
