// Luma and chroma to pixels and back by their definition, in double precision.
#ifndef QV_SUPPORT_EXACTYUV_H
#define QV_SUPPORT_EXACTYUV_H

#include <algorithm>
#include <array>

#include "qvAcceleratedLib/YuvRgb.h"

namespace qv::test {

using Triple = std::array<double, 3>;  // Y, Cb, Cr or B, G, R

struct Colours {
  double kr, kb;
  bool full;
};

inline Colours ColoursOf(int matrix, int range) {
  constexpr double kr[] = {.299, .2126, .2627}, kb[] = {.114, .0722, .0593};
  return {kr[matrix], kb[matrix], range == QV_FULL_RANGE};
}

inline double Limit(double x) { return std::clamp(x, 0., 255.); }

inline Triple ExactRgb(const Colours& k, const Triple& yuv) {
  const double y = k.full ? yuv[0] / 255 : (yuv[0] - 16) / 219, scale = k.full ? 255 : 224;
  const double u = (yuv[1] - 128) / scale, v = (yuv[2] - 128) / scale, kg = 1 - k.kr - k.kb;
  return {Limit(255 * (y + 2 * (1 - k.kb) * u)),
          Limit(255 * (y - 2 * (1 - k.kb) * k.kb / kg * u - 2 * (1 - k.kr) * k.kr / kg * v)),
          Limit(255 * (y + 2 * (1 - k.kr) * v))};
}

inline Triple ExactYuv(const Colours& k, const Triple& bgr) {
  const double y = (k.kr * bgr[2] + (1 - k.kr - k.kb) * bgr[1] + k.kb * bgr[0]) / 255;
  const double u = (bgr[0] / 255 - y) / (2 * (1 - k.kb)), v = (bgr[2] / 255 - y) / (2 * (1 - k.kr));
  const double scale = k.full ? 255 : 224;
  return {k.full ? 255 * y : 16 + 219 * y, Limit(128 + scale * u), Limit(128 + scale * v)};
}

}  // namespace qv::test

#endif
