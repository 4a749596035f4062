// Luma and chroma to pixels and back, by the matrix of BT.601 in studio range unless a job says so.
#include "bench/Bench.h"
#include "bench/Peers.h"
#include "qvAcceleratedLib/YuvRgb.h"

#if defined(QV_BENCH_LIBYUV)
#include <libyuv/convert_from_argb.h>
#endif

using namespace qv;

namespace {

constexpr bool IsPacked(int layout) { return layout == QV_LAYOUT_YUYV || layout == QV_LAYOUT_UYVY; }
constexpr bool HasPairs(int layout) { return layout == QV_LAYOUT_NV12 || layout == QV_LAYOUT_NV21; }

// Of all planes together, a pixel.
constexpr double SampleBytes(int layout) {
  return layout == QV_LAYOUT_I444 ? 3 : layout == QV_LAYOUT_I422 || IsPacked(layout) ? 2 : 1.5;
}

constexpr int ChannelsOf(int rgb) {
  return rgb == QV_LAYOUT_GREY ? 1 : rgb < QV_LAYOUT_BGRA ? 3 : 4;
}

// The planes of a layout one after another, rows without gaps.
struct Planes {
  Planes(unsigned char* buffer, int layout, IppiSize size) {
    const int w = size.width, half = layout == QV_LAYOUT_I444 ? w : w / 2;
    const std::size_t luma = bench::Pixels(size);
    const auto chroma =
        static_cast<std::size_t>((SampleBytes(layout) - 1) / 2 * static_cast<double>(luma));
    data[0] = buffer;
    data[1] = buffer + luma;
    data[2] = buffer + luma + chroma;
    step[0] = IsPacked(layout) ? 2 * w : w;
    step[1] = HasPairs(layout) ? w : half;
    step[2] = half;
  }
  unsigned char* data[3];
  int step[3];
};

struct Job {
  const char* name;
  bool toPixels;
  int yuv, rgb;
  int siting = QV_CHROMA_REPEATED, matrix = QV_BT601, range = QV_STUDIO_RANGE;
};

// A job for each pair that is work of its own, and some that exchange samples or have other
// coefficients.
constexpr Job kJobs[] = {
    {"I420 to BGR", true, QV_LAYOUT_I420, QV_LAYOUT_BGR},
    {"I420 to BGRA", true, QV_LAYOUT_I420, QV_LAYOUT_BGRA},
    {"I420 to BGRA, interpolated", true, QV_LAYOUT_I420, QV_LAYOUT_BGRA, QV_CHROMA_CENTRE},
    {"I420 to BGR, interpolated", true, QV_LAYOUT_I420, QV_LAYOUT_BGR, QV_CHROMA_CENTRE},
    {"I420 to grey", true, QV_LAYOUT_I420, QV_LAYOUT_GREY},
    {"YV12 to RGBA, BT.709", true, QV_LAYOUT_YV12, QV_LAYOUT_RGBA, QV_CHROMA_REPEATED, QV_BT709},
    {"NV12 to BGR", true, QV_LAYOUT_NV12, QV_LAYOUT_BGR},
    {"NV12 to BGRA", true, QV_LAYOUT_NV12, QV_LAYOUT_BGRA},
    {"NV21 to BGRA, full range", true, QV_LAYOUT_NV21, QV_LAYOUT_BGRA, QV_CHROMA_REPEATED, QV_BT601,
     QV_FULL_RANGE},
    {"YUYV to BGR", true, QV_LAYOUT_YUYV, QV_LAYOUT_BGR},
    {"YUYV to BGRA", true, QV_LAYOUT_YUYV, QV_LAYOUT_BGRA},
    {"UYVY to BGRA", true, QV_LAYOUT_UYVY, QV_LAYOUT_BGRA},
    {"I422 to BGR", true, QV_LAYOUT_I422, QV_LAYOUT_BGR},
    {"I422 to BGRA", true, QV_LAYOUT_I422, QV_LAYOUT_BGRA},
    {"I444 to BGR", true, QV_LAYOUT_I444, QV_LAYOUT_BGR},
    {"I444 to BGRA", true, QV_LAYOUT_I444, QV_LAYOUT_BGRA},
    {"BGR to I420", false, QV_LAYOUT_I420, QV_LAYOUT_BGR},
    {"BGRA to I420", false, QV_LAYOUT_I420, QV_LAYOUT_BGRA},
    {"BGRA to I420, left sited", false, QV_LAYOUT_I420, QV_LAYOUT_BGRA, QV_CHROMA_LEFT},
    {"BGRA to I420, full range", false, QV_LAYOUT_I420, QV_LAYOUT_BGRA, QV_CHROMA_REPEATED,
     QV_BT601, QV_FULL_RANGE},
    {"RGBA to YV12", false, QV_LAYOUT_YV12, QV_LAYOUT_RGBA},
    {"BGR to NV12", false, QV_LAYOUT_NV12, QV_LAYOUT_BGR},
    {"BGRA to NV12", false, QV_LAYOUT_NV12, QV_LAYOUT_BGRA},
    {"BGRA to NV21", false, QV_LAYOUT_NV21, QV_LAYOUT_BGRA},
    {"BGRA to YUYV", false, QV_LAYOUT_YUYV, QV_LAYOUT_BGRA},
    {"BGRA to UYVY", false, QV_LAYOUT_UYVY, QV_LAYOUT_BGRA},
    {"BGRA to I422", false, QV_LAYOUT_I422, QV_LAYOUT_BGRA},
    {"BGRA to I444", false, QV_LAYOUT_I444, QV_LAYOUT_BGRA},
    {"grey to I420", false, QV_LAYOUT_I420, QV_LAYOUT_GREY},
};

void Convert(const Job& job, const bench::Buffers& b, IppiSize size) {
  const Planes planes(job.toPixels ? b.src : b.dst, job.yuv, size);
  const int step = ChannelsOf(job.rgb) * size.width;
  if (job.toPixels)
    YuvToRgb(job.yuv, planes.data, planes.step, job.rgb, b.dst, step, size, job.matrix, job.range,
             job.siting);
  else
    RgbToYuv(job.rgb, b.src, step, job.yuv, planes.data, planes.step, size, job.matrix, job.range,
             job.siting);
}

}  // namespace

static const bench::Family yuv([](bench::Suite& s) {
  for (const IppiSize size : bench::kFrames) {
    const bench::Buffers b = s.Frame(size);
    const int w = size.width;
    for (const Job& job : kJobs)
      s.Ours(job.name, size, SampleBytes(job.yuv) + ChannelsOf(job.rgb),
             [=] { Convert(job, b, size); });

#if defined(QV_BENCH_LIBYUV)
    // libyuv names bytes from the high end of a word: its ARGB is B, G, R, A in memory.
    using namespace libyuv;
    const int h = size.height;
    // From three planes or two; an exchange of chroma samples is one of arguments.
    const auto planes = [&](const char* job, int layout, const char* name, auto convert,
                            int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.src, layout, size);
        convert(p.data[0], p.step[0], p.data[1], p.step[1], p.data[2], p.step[2], b.dst, bytes * w,
                w, h);
      });
    };
    const auto pairs = [&](const char* job, const char* name, auto convert, int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.src, QV_LAYOUT_NV12, size);
        convert(p.data[0], w, p.data[1], w, b.dst, bytes * w, w, h);
      });
    };
    const auto packed = [&](const char* job, const char* name, auto convert) {
      s.Peer(job, size, name, [=] { convert(b.src, 2 * w, b.dst, 4 * w, w, h); });
    };
    planes("I420 to BGR", QV_LAYOUT_I420, "~libyuv I420ToRGB24, coarser", I420ToRGB24, 3);
    planes("I420 to BGRA", QV_LAYOUT_I420, "~libyuv I420ToARGB, coarser", I420ToARGB, 4);
    planes("YV12 to RGBA, BT.709", QV_LAYOUT_YV12, "~libyuv H420ToABGR, coarser", H420ToABGR, 4);
    planes("I422 to BGR", QV_LAYOUT_I422, "~libyuv I422ToRGB24, coarser", I422ToRGB24, 3);
    planes("I422 to BGRA", QV_LAYOUT_I422, "~libyuv I422ToARGB, coarser", I422ToARGB, 4);
    planes("I444 to BGR", QV_LAYOUT_I444, "~libyuv I444ToRGB24, coarser", I444ToRGB24, 3);
    planes("I444 to BGRA", QV_LAYOUT_I444, "~libyuv I444ToARGB, coarser", I444ToARGB, 4);
    const auto filtered = [](auto convert) {
      return [=](const uint8_t* y, int yStep, const uint8_t* u, int uStep, const uint8_t* v,
                 int vStep, uint8_t* dst, int step, int width, int height) {
        convert(y, yStep, u, uStep, v, vStep, dst, step, &kYuvI601Constants, width, height,
                kFilterBilinear);
      };
    };
    planes("I420 to BGRA, interpolated", QV_LAYOUT_I420, "~libyuv I420ToARGBMatrixFilter, coarser",
           filtered(I420ToARGBMatrixFilter), 4);
    planes("I420 to BGR, interpolated", QV_LAYOUT_I420, "~libyuv I420ToRGB24MatrixFilter, coarser",
           filtered(I420ToRGB24MatrixFilter), 3);
    pairs("NV12 to BGR", "~libyuv NV12ToRGB24, coarser", NV12ToRGB24, 3);
    pairs("NV12 to BGRA", "~libyuv NV12ToARGB, coarser", NV12ToARGB, 4);
    pairs(
        "NV21 to BGRA, full range", "~libyuv NV21ToARGBMatrix, coarser",
        [](const uint8_t* y, int yStep, const uint8_t* vu, int vuStep, uint8_t* dst, int step,
           int width, int height) {
          NV21ToARGBMatrix(y, yStep, vu, vuStep, dst, step, &kYuvJPEGConstants, width, height);
        },
        4);
    packed("YUYV to BGRA", "~libyuv YUY2ToARGB, coarser", YUY2ToARGB);
    packed("UYVY to BGRA", "~libyuv UYVYToARGB, coarser", UYVYToARGB);

    const auto toPlanes = [&](const char* job, int layout, const char* name, auto convert,
                              int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.dst, layout, size);
        convert(b.src, bytes * w, p.data[0], p.step[0], p.data[1], p.step[1], p.data[2], p.step[2],
                w, h);
      });
    };
    const auto toPairs = [&](const char* job, const char* name, auto convert) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.dst, QV_LAYOUT_NV12, size);
        convert(b.src, 4 * w, p.data[0], w, p.data[1], w, w, h);
      });
    };
    const auto toPacked = [&](const char* job, const char* name, auto convert) {
      s.Peer(job, size, name, [=] { convert(b.src, 4 * w, b.dst, 2 * w, w, h); });
    };
    toPlanes("BGR to I420", QV_LAYOUT_I420, "~libyuv RGB24ToI420, coarser", RGB24ToI420, 3);
    toPlanes("BGRA to I420", QV_LAYOUT_I420, "~libyuv ARGBToI420, coarser", ARGBToI420, 4);
    toPlanes("BGRA to I420, full range", QV_LAYOUT_I420, "~libyuv ARGBToJ420, coarser", ARGBToJ420,
             4);
    toPlanes("RGBA to YV12", QV_LAYOUT_YV12, "~libyuv ABGRToI420, coarser", ABGRToI420, 4);
    toPlanes("BGRA to I422", QV_LAYOUT_I422, "~libyuv ARGBToI422, coarser", ARGBToI422, 4);
    toPlanes("BGRA to I444", QV_LAYOUT_I444, "~libyuv ARGBToI444, coarser", ARGBToI444, 4);
    toPairs("BGRA to NV12", "~libyuv ARGBToNV12, coarser", ARGBToNV12);
    toPairs("BGRA to NV21", "~libyuv ARGBToNV21, coarser", ARGBToNV21);
    toPacked("BGRA to YUYV", "~libyuv ARGBToYUY2, coarser", ARGBToYUY2);
    toPacked("BGRA to UYVY", "~libyuv ARGBToUYVY, coarser", ARGBToUYVY);
#endif
#if defined(QV_BENCH_OPENCV)
    const cv::Mat groups(size.height, w, CV_8UC2, b.src), bgr(size.height, w, CV_8UC3, b.dst);
    const cv::Mat pixels(size.height, w, CV_8UC3, b.src);
    const cv::Mat planar(size.height * 3 / 2, w, CV_8UC1, b.dst);
    s.Peer("YUYV to BGR", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(groups, cv::Mat(bgr), cv::COLOR_YUV2BGR_YUY2); });
    s.Peer("BGR to I420", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(pixels, cv::Mat(planar), cv::COLOR_BGR2YUV_I420); });
#endif
  }
});
