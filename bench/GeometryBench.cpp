// qvRotate and qvWarpPerspective. Every destination pixel is sampled: sources are large enough.
#include <cmath>
#include <memory>

#include "bench/Bench.h"
#include "bench/Peers.h"

using Lib = CqvAccLib;

namespace {

struct Method {
  int code;
  const char* name;
};

constexpr Method kMethods[] = {{1, "nearest"}, {2, "linear"}, {4, "cubic"}};

Lib::qvDataType Type(int channels) { return channels == 1 ? Lib::OneChannel : Lib::ThreeChannels; }

#if defined(QV_BENCH_OPENCV)
cv::Mat Wrap(IppiSize size, int channels, unsigned char* pixels) {
  return cv::Mat(size.height, size.width, channels == 1 ? CV_8UC1 : CV_8UC3, pixels);
}

int OpenCvFlag(int code) {
  return code == 1 ? cv::INTER_NEAREST : code == 2 ? cv::INTER_LINEAR : cv::INTER_CUBIC;
}

const char* OpenCvName(int code) {
  return code == 1 ? "OpenCV" : "~OpenCV, positions to 1/32 pixel";
}
#endif

#if defined(QV_BENCH_OPENCV)
int OpenCvTurn(int degrees) {
  return degrees == 90    ? cv::ROTATE_90_COUNTERCLOCKWISE
         : degrees == 180 ? cv::ROTATE_180
                          : cv::ROTATE_90_CLOCKWISE;
}
#endif

// Turns that every pixel keeps its bytes in, to the left.
void TurnJobs(bench::Suite& s, IppiSize size) {
  const bench::Buffers b = s.Frame(size);
  const int w = size.width, h = size.height;
  for (const int channels : {1, 3})
    for (const int degrees : {90, 180, 270}) {
      const std::string job = "turn by " + std::to_string(degrees) + ", " +
                              std::to_string(channels) + (channels == 1 ? " byte" : " bytes");
      const IppiSize turned = degrees == 180 ? size : IppiSize{h, w};
      const double xShift = degrees == 90 ? 0 : turned.width - 1;
      const double yShift = degrees == 270 ? 0 : turned.height - 1;
      s.Ours(job, size, 2 * channels, [=] {
        Lib::qvRotate(Type(channels), b.src, size, channels * w, {0, 0, w, h}, b.dst,
                      channels * turned.width, {0, 0, turned.width, turned.height}, degrees,
                      xShift, yShift, 1);
      });
#if defined(QV_BENCH_OPENCV)
      const cv::Mat src = Wrap(size, channels, b.src), dst = Wrap(turned, channels, b.dst);
      s.Peer(job, size, "OpenCV rotate",
             [=] { cv::rotate(src, cv::Mat(dst), OpenCvTurn(degrees)); });
#endif
#if defined(QV_BENCH_LIBYUV)
      if (channels == 1)
        s.Peer(job, size, "libyuv RotatePlane", [=] {
          libyuv::RotatePlane(b.src, w, b.dst, turned.width, w, h,
                              static_cast<libyuv::RotationMode>(360 - degrees));
        });
#endif
    }
}

void WarpJobs(bench::Suite& s, IppiSize size) {
  const bench::Buffers b = s.Frame(size);
  const int w = size.width, h = size.height;
  // The corners of the frame lie just outside of its own picture.
  const double quad[4][2] = {
      {-.1 * w, -.05 * h}, {1.08 * w, -.12 * h}, {1.02 * w, 1.06 * h}, {-.04 * w, 1.1 * h}};
  struct {
    double c[3][3];
  } m;
  Lib::qvGetPerspectiveTransform(Lib::OneChannel, {0, 0, w, h}, quad, m.c);
  s.Ours("warp perspective linear 3 and mask", size, 0, [=] {
    Lib::qvWarpPerspectiveEx(Lib::ThreeChannels, b.src, size, 3 * w, {0, 0, w, h}, b.dst, 3 * w,
                             {0, 0, w, h}, m.c, 2, b.src2, w, b.dst2, w, m.c);
  });
  for (const int channels : {1, 3})
    for (const Method& method : kMethods) {
      const int step = channels * w, code = method.code;
      const std::string job =
          std::string("warp perspective ") + method.name + " " + std::to_string(channels);
      s.Ours(job, size, 0, [=] {
        Lib::qvWarpPerspective(Type(channels), b.src, size, step, {0, 0, w, h}, b.dst, step,
                               {0, 0, w, h}, m.c, code);
      });
#if defined(QV_BENCH_OPENCV)
      const cv::Mat src = Wrap(size, channels, b.src), dst = Wrap(size, channels, b.dst);
      const cv::Mat matrix = cv::Mat(3, 3, CV_64F, const_cast<double(*)[3]>(m.c)).clone();
      s.Peer(job, size, OpenCvName(code), [=] {
        cv::warpPerspective(src, cv::Mat(dst), matrix, dst.size(), OpenCvFlag(code),
                            cv::BORDER_REPLICATE);
      });
#endif
    }
}

#if defined(QV_BENCH_PIXMAN)
// pixman maps back, in 16.16 fixed point, from pixel centres at (x + 1/2, y + 1/2).
std::function<void()> PixmanRotate(int channels, int code, IppiSize from, unsigned char* src,
                                   IppiSize to, unsigned char* dst, const double back[2][3]) {
  // A step of pixman's is a multiple of four bytes.
  const pixman_format_code_t format = channels == 1 ? PIXMAN_a8 : PIXMAN_r8g8b8;
  const auto wrap = [=](IppiSize size, unsigned char* p) {
    return std::shared_ptr<pixman_image_t>(
        pixman_image_create_bits(format, size.width, size.height,
                                 reinterpret_cast<std::uint32_t*>(p), size.width * channels),
        pixman_image_unref);
  };
  const auto in = wrap(from, src), out = wrap(to, dst);
  pixman_transform_t t = {{{0, 0, 0}, {0, 0, 0}, {0, 0, pixman_fixed_1}}};
  for (int i = 0; i < 2; ++i) {
    t.matrix[i][0] = pixman_double_to_fixed(back[i][0]);
    t.matrix[i][1] = pixman_double_to_fixed(back[i][1]);
    t.matrix[i][2] = pixman_double_to_fixed(back[i][2] + .5 - .5 * (back[i][0] + back[i][1]));
  }
  pixman_image_set_transform(in.get(), &t);
  pixman_image_set_filter(in.get(), code == 1 ? PIXMAN_FILTER_NEAREST : PIXMAN_FILTER_BILINEAR,
                          nullptr, 0);
  return [=] {
    pixman_image_composite32(PIXMAN_OP_SRC, in.get(), nullptr, out.get(), 0, 0, 0, 0, 0, 0,
                             to.width, to.height);
  };
}
#endif

void RotateJobs(bench::Suite& s, IppiSize size) {
  const double angle = 30, a = angle / 180 * 3.141592653589793;
  const double cosine = std::cos(a), sine = std::sin(a);
  const int w = size.width, h = size.height;
  // A source that the turned frame fits into, and both centres in one place.
  const IppiSize from = {(static_cast<int>(w * cosine + h * sine) + 9) / 4 * 4,
                         static_cast<int>(w * sine + h * cosine) + 5};
  const double cx = (from.width - 1) / 2.0, cy = (from.height - 1) / 2.0;
  const double xShift = (w - 1) / 2.0 - cosine * cx - sine * cy;
  const double yShift = (h - 1) / 2.0 + sine * cx - cosine * cy;
  unsigned char* const src = s.Frame(from).src;
  unsigned char* const dst = s.Frame(size).dst;
  for (const int channels : {1, 3})
    for (const Method& method : kMethods) {
      const int code = method.code;
      const std::string job =
          std::string("rotate 30 degrees ") + method.name + " " + std::to_string(channels);
      s.Ours(job, size, 0, [=] {
        Lib::qvRotate(Type(channels), src, from, channels * from.width,
                      {0, 0, from.width, from.height}, dst, channels * w, {0, 0, w, h}, angle,
                      xShift, yShift, code);
      });
#if defined(QV_BENCH_OPENCV)
      const cv::Mat in = Wrap(from, channels, src), out = Wrap(size, channels, dst);
      const cv::Mat matrix =
          (cv::Mat_<double>(2, 3) << cosine, sine, xShift, -sine, cosine, yShift);
      s.Peer(job, size, OpenCvName(code), [=] {
        cv::warpAffine(in, cv::Mat(out), matrix, out.size(), OpenCvFlag(code),
                       cv::BORDER_REPLICATE);
      });
#endif
#if defined(QV_BENCH_PIXMAN)
      const double back[2][3] = {{cosine, -sine, -cosine * xShift + sine * yShift},
                                 {sine, cosine, -sine * xShift - cosine * yShift}};
      if (code <= 2)
        s.Peer(job, size, code == 1 ? "pixman" : "~pixman, weights of 7 bits",
               PixmanRotate(channels, code, from, src, size, dst, back));
#endif
    }
}

}  // namespace

static const bench::Family geometry([](bench::Suite& s) {
  for (const IppiSize size : bench::kFrames) {
    TurnJobs(s, size);
    WarpJobs(s, size);
    RotateJobs(s, size);
  }
});
