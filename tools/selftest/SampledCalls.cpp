// The self-test's calls of the operations that sample: resizing, rotation, warps.
#include "tools/selftest/Images.h"

namespace qv::selftest {

namespace {

using Lib = CqvAccLib;

constexpr int kTypes[] = {2, 4};
constexpr int kMethods[] = {1, 2, 4, 8, 16}, kSampling[] = {1, 2, 4};

Lib::qvDataType Type(int value) { return static_cast<Lib::qvDataType>(value); }

}  // namespace

// qvResize places its pixels differently when it works in bands. These calls are pinned to one
// band, by having no more than 128 rows on a side, so that they do not depend on the number of
// processors.
void CallResizes(Recorder& r) {
  unsigned seed = 2000;
  const struct {
    IppiSize src;
    IppiRect roi;
    IppiSize dst;
    double xFactor, yFactor;
  } resizes[] = {
      {{61, 47}, {0, 0, 61, 47}, {150, 101}, 150. / 61, 101. / 47},    // larger
      {{203, 128}, {0, 0, 203, 128}, {97, 45}, 97. / 203, 45. / 128},  // smaller
      {{120, 90}, {11, 7, 75, 100}, {90, 128}, 0.8125, 1.375},         // a region, clipped
      {{200, 128}, {0, 0, 200, 128}, {100, 64}, 0.5, 0.5},             // by two
      {{5, 3}, {0, 0, 5, 3}, {40, 17}, 8, 5.5},                        // too small for long filters
  };
  r.Begin(Op::qvResize);
  for (const int type : kTypes)
    for (const int method : kMethods)
      for (const auto& resize : resizes) {
        const int channels = type == 2 ? 1 : 3;
        Image src(channels * resize.src.width, resize.src.height, ++seed),
            dst(channels * resize.dst.width, resize.dst.height, ++seed);
        r.Record(Lib::qvResize(Type(type), src.data, resize.src, src.step, resize.roi, dst.data,
                               dst.step, resize.dst, resize.xFactor, resize.yFactor, method),
                 dst);
      }

  r.Begin(Op::qvResizeYUV422);
  const struct {
    IppiSize src;
    IppiRect roi;
    IppiSize dst;
    double xFactor, yFactor;
  } packed[] = {
      {{62, 47}, {0, 0, 62, 47}, {150, 101}, 150. / 62, 101. / 47},
      {{202, 301}, {0, 0, 202, 301}, {98, 145}, 98. / 202, 145. / 301},
      {{120, 90}, {10, 7, 40, 100}, {90, 128}, 0.8125, 1.375},
  };
  for (const int method : kSampling)
    for (const auto& resize : packed) {
      // The region's first byte lies four bytes a pixel to the right.
      Image src(2 * resize.src.width + 2 * resize.roi.x, resize.src.height, ++seed),
          dst(2 * resize.dst.width, resize.dst.height, ++seed);
      r.Record(Lib::qvResizeYUV422(Type(0), src.data, resize.src, src.step, resize.roi, dst.data,
                                   dst.step, resize.dst, resize.xFactor, resize.yFactor, method),
               dst);
    }
}

void CallGeometry(Recorder& r) {
  unsigned seed = 3000;
  constexpr IppiSize size = {140, 120};
  constexpr IppiRect region = {5, 3, 130, 110}, whole = {0, 0, 160, 301};
  r.Begin(Op::qvRotate);
  constexpr double kAngles[] = {90, 180, 270, 30, 200.5, -7};
  for (const int type : kTypes) {
    const int channels = type == 2 ? 1 : 3;
    for (const double angle : kAngles) {
      const bool quarter = angle == 90 || angle == 180 || angle == 270;
      for (const int method : kSampling) {
        if (quarter && method > 1) continue;
        Image src(channels * size.width, size.height, ++seed),
            dst(channels * whole.width, whole.height, ++seed);
        r.Record(Lib::qvRotate(Type(type), src.data, size, src.step, region, dst.data, dst.step,
                               whole, angle, quarter ? 100 : 60.25, quarter ? 130 : 90.5, method),
                 dst);
      }
    }
  }

  // A shear and a tilt.
  const double matrices[][3][3] = {
      {{1.1, 0.125, -20.5}, {-0.0625, 2.25, 7}, {0, 0, 1}},
      {{1.25, 0.25, 3.5}, {-0.125, 2.5, 7}, {0.0009765625, 0.00048828125, 1}}};
  r.Begin(Op::qvWarpPerspective);
  for (const int type : kTypes) {
    const int channels = type == 2 ? 1 : 3;
    for (const auto& matrix : matrices)
      for (const int method : kSampling) {
        Image src(channels * size.width, size.height, ++seed),
            dst(channels * whole.width, whole.height, ++seed);
        r.Record(Lib::qvWarpPerspective(Type(type), src.data, size, src.step, region, dst.data,
                                        dst.step, whole, matrix, method),
                 dst);
      }
  }

  // Both warps succeed in every band: on one band and on several the second one is made.
  r.Begin(Op::qvWarpPerspectiveEx);
  for (const int method : kSampling) {
    Image src(3 * size.width, size.height, ++seed), dst(3 * whole.width, whole.height, ++seed);
    Image src2(size.width, size.height, ++seed), dst2(whole.width, whole.height, ++seed);
    r.Record(Lib::qvWarpPerspectiveEx(Type(0), src.data, size, src.step, region, dst.data, dst.step,
                                      whole, matrices[1], method, src2.data, src2.step,
                                      dst2.data, dst2.step, matrices[0]),
             dst, dst2);
  }

  r.Begin(Op::qvGetPerspectiveTransform);
  const double quads[][4][2] = {{{10.5, 4}, {300, 12.25}, {290, 200}, {3, 190}},
                                {{0, 0}, {0, 100}, {80, 90}, {70, 5}},
                                {{0, 0}, {10, 10}, {20, 20}, {0, 30}}};
  for (const auto& quad : quads) {
    double coeffs[3][3] = {};
    const IppStatus status = Lib::qvGetPerspectiveTransform(Type(0), region, quad, coeffs);
    r.RecordNumbers(status, coeffs[0], 9);
  }

  r.Begin(Op::qvGetRotateBound);
  constexpr double kBoundAngles[] = {0, 90, -450, 33.3, 123.456};
  for (const double angle : kBoundAngles) {
    double bound[2][2] = {};
    const IppStatus status = Lib::qvGetRotateBound(Type(0), region, bound, angle, 1.5, -2.25);
    r.RecordNumbers(status, bound[0], 4);
  }
}

}  // namespace qv::selftest
