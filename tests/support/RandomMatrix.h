// Matrices for warps.
#ifndef QV_TESTS_SUPPORT_RANDOMMATRIX_H
#define QV_TESTS_SUPPORT_RANDOMMATRIX_H

#include <algorithm>
#include <cmath>

#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/Transform.h"
#include "support/Random.h"

namespace qv::test {

struct Matrix {
  double c[3][3];
};

constexpr Matrix kIdentity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// A region that begins in an image, of `least` pixels a side to `beyond` more than the image has.
inline IppiRect RandomRegion(Random& random, IppiSize image, int least = 1, int beyond = 0) {
  const int x = random.Between(0, image.width - 1), y = random.Between(0, image.height - 1);
  return {x, y, random.Between(least, image.width + beyond),
          random.Between(least, image.height + beyond)};
}

inline IppiRect ClippedTo(IppiSize image, IppiRect region) {
  region.width = std::min(region.width, image.width - region.x);
  region.height = std::min(region.height, image.height - region.y);
  return region;
}

// A quadrilateral, maybe mirrored, or a rotation that covers much of the destination; if it may be
// extreme, now and then something steep, tiny or far off.
inline Matrix RandomMatrix(Random& random, IppiRect roi, IppiSize dst, bool perspective,
                           bool extreme) {
  Matrix m = kIdentity;
  const double width = dst.width, height = dst.height;
  extreme = extreme && random.OneIn(3);
  if (!perspective) {
    double r[2][3];
    const double most = extreme ? 4 : 1;
    const double scale = random.OneIn(2) ? 1 : std::exp(random.Between(-most, most));
    RotationCoefficients(random.OneIn(4) ? 0 : random.Between(-720.0, 720.0),
                         random.Between(-.1, 1.0) * width, random.Between(-.1, 1.0) * height, r);
    for (int i = 0; i < 2; ++i)
      for (int k = 0; k < 3; ++k) m.c[i][k] = k < 2 ? r[i][k] * scale : r[i][k];
    return m;
  }
  const double spread = extreme ? 3 : 1.4, bend = extreme ? .49 : .35;
  const bool mirrored = random.OneIn(2);
  double quad[4][2];
  do {
    const double x0 = random.Between(-.3, .5) * width, y0 = random.Between(-.3, .5) * height;
    const double w = random.Between(.1, spread) * width + 2;
    const double h = random.Between(.1, spread) * height + 2;
    for (int i = 0; i < 4; ++i) {
      quad[i][0] = x0 + (i == 1 || i == 2 ? w : 0) + random.Between(-bend, bend) * w;
      quad[i][1] = y0 + ((i < 2) == mirrored ? h : 0) + random.Between(-bend, bend) * h;
    }
  } while (GetPerspectiveTransform_64f(roi, quad, m.c) != StatusOk);
  return m;
}

}  // namespace qv::test

#endif
