#include "bench/WarpAccuracy.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "bench/Peers.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "support/Bytes.h"
#include "support/ExactResize.h"

namespace bench {

namespace {

using Lib = CqvAccLib;
using qv::test::Bytes;
using qv::test::Errors;

constexpr IppiSize kSize = {640, 360};
constexpr int kPixels = kSize.width * kSize.height;
constexpr double kDegrees = 3.141592653589793 / 180;

struct Matrix {
  double c[3][3];
};

Matrix InverseOf(const Matrix& m) {
  Matrix inverse;
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) {
      const int a = (k + 1) % 3, b = (k + 2) % 3, d = (i + 1) % 3, e = (i + 2) % 3;
      inverse.c[i][k] = m.c[a][d] * m.c[b][e] - m.c[a][e] * m.c[b][d];
    }
  return inverse;  // up to a factor, which a quotient of its rows does not see
}

// Of destination pixels all of whose taps lie inside the source.
Errors ErrorsOf(const Matrix& back, int code, double parameter,
                const Bytes& src, const Bytes& dst) {
  Errors errors;
  for (int y = 0; y < kSize.height; ++y)
    for (int x = 0; x < kSize.width; ++x) {
      double p[3];
      for (int i = 0; i < 3; ++i)
        p[i] = back.c[i][0] * x + back.c[i][1] * y + back.c[i][2];
      const double px = p[0] / p[2], py = p[1] / p[2];
      if (!(px >= 2 && py >= 2 && px < kSize.width - 3 && py < kSize.height - 3)) continue;
      const int ix = static_cast<int>(px), iy = static_cast<int>(py);
      double exact = 0;
      for (int i = iy - 1; i <= iy + 2; ++i)
        for (int k = ix - 1; k <= ix + 2; ++k)
          exact += qv::test::Kernel(code, px - k, parameter) *
                   qv::test::Kernel(code, py - i, parameter) *
                   src[static_cast<std::size_t>(i * kSize.width + k)];
      errors.Add(exact, dst[static_cast<std::size_t>(y * kSize.width + x)]);
    }
  return errors;
}

struct Contender {
  const char* name;
  std::function<void(unsigned char* src, unsigned char* dst)> work;
};

void Compare(const char* job, const Matrix& m, const std::vector<Contender>& contenders, int code,
             const Bytes& noise) {
  Bytes src = noise;
  for (const Contender& contender : contenders) {
    Bytes dst(kPixels);
    contender.work(src.data(), dst.data());
    Errors best = {1e9, 1e9, 1};
    double reading = 0;  // everybody is taken by the kernel that fits best
    for (const double parameter : {-0.5, -0.75}) {
      const Errors errors = ErrorsOf(InverseOf(m), code, parameter, src, dst);
      if (errors.Mean() < best.Mean()) best = errors, reading = parameter;
    }
    std::printf("| %s | %s | %.2f | %.3f |", job, contender.name, best.largest, best.Mean());
    if (code == 4)
      std::printf(" a = %.2f |\n", reading);
    else
      std::printf(" |\n");
  }
}

}  // namespace

void PrintWarpAccuracy() {
  const IppiRect all = {0, 0, kSize.width, kSize.height};
  const double quad[4][2] = {{40.3, 22.1}, {600.7, -8.2}, {655.5, 340.4}, {-12.6, 371.9}};
  Matrix warp;
  Lib::qvGetPerspectiveTransform(Lib::OneChannel, all, quad, warp.c);
  const double angle = 30, cosine = std::cos(angle * kDegrees), sine = std::sin(angle * kDegrees);
  const double xShift = -50.25, yShift = 170.75;
  const Matrix turn = {{{cosine, sine, xShift}, {-sine, cosine, yShift}, {0, 0, 1}}};

  std::printf(
      "\n# Accuracy of warps and rotations\n\n"
      "The same for %dx%d frames of noise (one channel), for pixels whose taps all lie inside the "
      "source; cubic kernels are those of Keys 1981, with the parameter that fits best.\n\n"
      "| job | contender | largest | mean | kernel |\n| --- | --- | --- | --- | --- |\n",
      kSize.width, kSize.height);
  const Bytes noise = qv::test::Noise(kPixels, 20268);
  for (const int code : {2, 4}) {
    const std::string method = code == 2 ? " linear" : " cubic";
    std::vector<Contender> warps = {{"ours", [&](unsigned char* src, unsigned char* dst) {
      Lib::qvWarpPerspective(Lib::OneChannel, src, kSize, kSize.width, all, dst, kSize.width, all,
                             warp.c, code);
    }}};
    std::vector<Contender> turns = {{"ours", [&](unsigned char* src, unsigned char* dst) {
      Lib::qvRotate(Lib::OneChannel, src, kSize, kSize.width, all, dst, kSize.width, all, angle,
                    xShift, yShift, code);
    }}};
#if defined(QV_BENCH_OPENCV)
    const int flag = code == 2 ? cv::INTER_LINEAR : cv::INTER_CUBIC;
    const auto wrap = [](unsigned char* p) {
      return cv::Mat(kSize.height, kSize.width, CV_8UC1, p);
    };
    const cv::Size size(kSize.width, kSize.height);
    warps.push_back({"OpenCV", [=, &warp](unsigned char* src, unsigned char* dst) {
      cv::warpPerspective(wrap(src), wrap(dst), cv::Mat(3, 3, CV_64F, warp.c), size, flag,
                          cv::BORDER_REPLICATE);
    }});
    Matrix affine = turn;
    turns.push_back({"OpenCV", [=](unsigned char* src, unsigned char* dst) mutable {
      cv::warpAffine(wrap(src), wrap(dst), cv::Mat(2, 3, CV_64F, affine.c), size, flag,
                     cv::BORDER_REPLICATE);
    }});
#endif
    Compare(("warp perspective" + method).c_str(), warp, warps, code, noise);
    Compare(("rotate 30 degrees" + method).c_str(), turn, turns, code, noise);
  }
}

}  // namespace bench
