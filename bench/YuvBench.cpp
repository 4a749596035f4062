// Luma and chroma to pixels and back, by the matrix of BT.601 in studio range.
#include "bench/Bench.h"
#include "bench/Peers.h"
#include "qvAcceleratedLib/YuvRgb.h"

#if defined(QV_BENCH_LIBYUV)
#include <libyuv/convert_from_argb.h>
#endif

using namespace qv;

namespace {

// The planes of a layout one after another, rows without gaps.
struct Planes {
  Planes(unsigned char* buffer, int layout, IppiSize size) {
    const int w = size.width, half = layout == QV_LAYOUT_I444 ? w : w / 2;
    const std::size_t luma = bench::Pixels(size);
    const bool packed = layout == QV_LAYOUT_YUYV || layout == QV_LAYOUT_UYVY;
    const bool pairs = layout == QV_LAYOUT_NV12 || layout == QV_LAYOUT_NV21;
    const std::size_t chroma = layout == QV_LAYOUT_I420   ? luma / 4
                               : layout == QV_LAYOUT_I422 ? luma / 2
                                                          : luma;
    data[0] = buffer;
    data[1] = buffer + luma;
    data[2] = buffer + luma + chroma;
    step[0] = packed ? 2 * w : w;
    step[1] = pairs ? w : half;
    step[2] = half;
  }
  unsigned char* data[3];
  int step[3];
};

struct Job {
  const char* name;
  int yuv, rgb;
  double sampleBytes;  // a pixel
  int siting;
};

constexpr Job kToRgb[] = {
    {"I420 to BGR", QV_LAYOUT_I420, QV_LAYOUT_BGR, 1.5, QV_CHROMA_REPEATED},
    {"I420 to BGRA", QV_LAYOUT_I420, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_REPEATED},
    {"I420 to BGRA, interpolated", QV_LAYOUT_I420, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_CENTRE},
    {"I420 to BGR, interpolated", QV_LAYOUT_I420, QV_LAYOUT_BGR, 1.5, QV_CHROMA_CENTRE},
    {"NV12 to BGR", QV_LAYOUT_NV12, QV_LAYOUT_BGR, 1.5, QV_CHROMA_REPEATED},
    {"NV12 to BGRA", QV_LAYOUT_NV12, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_REPEATED},
    {"YUYV to BGR", QV_LAYOUT_YUYV, QV_LAYOUT_BGR, 2, QV_CHROMA_REPEATED},
    {"YUYV to BGRA", QV_LAYOUT_YUYV, QV_LAYOUT_BGRA, 2, QV_CHROMA_REPEATED},
    {"I422 to BGR", QV_LAYOUT_I422, QV_LAYOUT_BGR, 2, QV_CHROMA_REPEATED},
    {"I422 to BGRA", QV_LAYOUT_I422, QV_LAYOUT_BGRA, 2, QV_CHROMA_REPEATED},
    {"I444 to BGR", QV_LAYOUT_I444, QV_LAYOUT_BGR, 3, QV_CHROMA_REPEATED},
    {"I444 to BGRA", QV_LAYOUT_I444, QV_LAYOUT_BGRA, 3, QV_CHROMA_REPEATED},
};

constexpr Job kToYuv[] = {
    {"BGR to I420", QV_LAYOUT_I420, QV_LAYOUT_BGR, 1.5, QV_CHROMA_REPEATED},
    {"BGRA to I420", QV_LAYOUT_I420, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_REPEATED},
    {"BGRA to I420, left sited", QV_LAYOUT_I420, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_LEFT},
    {"BGR to NV12", QV_LAYOUT_NV12, QV_LAYOUT_BGR, 1.5, QV_CHROMA_REPEATED},
    {"BGRA to NV12", QV_LAYOUT_NV12, QV_LAYOUT_BGRA, 1.5, QV_CHROMA_REPEATED},
    {"BGRA to YUYV", QV_LAYOUT_YUYV, QV_LAYOUT_BGRA, 2, QV_CHROMA_REPEATED},
    {"BGRA to UYVY", QV_LAYOUT_UYVY, QV_LAYOUT_BGRA, 2, QV_CHROMA_REPEATED},
    {"BGRA to I422", QV_LAYOUT_I422, QV_LAYOUT_BGRA, 2, QV_CHROMA_REPEATED},
    {"BGRA to I444", QV_LAYOUT_I444, QV_LAYOUT_BGRA, 3, QV_CHROMA_REPEATED},
};

constexpr int ChannelsOf(int rgb) { return rgb == QV_LAYOUT_BGR ? 3 : 4; }

}  // namespace

static const bench::Family yuv([](bench::Suite& s) {
  for (const IppiSize size : bench::kFrames) {
    const bench::Buffers b = s.Frame(size);
    const int w = size.width;
    for (const Job& job : kToRgb)
      s.Ours(job.name, size, job.sampleBytes + ChannelsOf(job.rgb), [=] {
        const Planes in(b.src, job.yuv, size);
        YuvToRgb(job.yuv, in.data, in.step, job.rgb, b.dst, ChannelsOf(job.rgb) * w, size, QV_BT601,
                 QV_STUDIO_RANGE, job.siting);
      });
    for (const Job& job : kToYuv)
      s.Ours(job.name, size, job.sampleBytes + ChannelsOf(job.rgb), [=] {
        const Planes out(b.dst, job.yuv, size);
        RgbToYuv(job.rgb, b.src, ChannelsOf(job.rgb) * w, job.yuv, out.data, out.step, size,
                 QV_BT601, QV_STUDIO_RANGE, job.siting);
      });

#if defined(QV_BENCH_LIBYUV)
    // libyuv names bytes from the high end of a word: its ARGB is B, G, R, A in memory.
    using namespace libyuv;
    const int h = size.height;
    const auto planes = [&](const char* job, int layout, const char* name, auto convert,
                            int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.src, layout, size);
        convert(p.data[0], p.step[0], p.data[1], p.step[1], p.data[2], p.step[2], b.dst, bytes * w,
                w, h);
      });
    };
    planes("I420 to BGR", QV_LAYOUT_I420, "~libyuv I420ToRGB24, coarser", I420ToRGB24, 3);
    planes("I420 to BGRA", QV_LAYOUT_I420, "~libyuv I420ToARGB, coarser", I420ToARGB, 4);
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
    const auto pairs = [&](const char* job, const char* name, auto convert, int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.src, QV_LAYOUT_NV12, size);
        convert(p.data[0], w, p.data[1], w, b.dst, bytes * w, w, h);
      });
    };
    pairs("NV12 to BGR", "~libyuv NV12ToRGB24, coarser", NV12ToRGB24, 3);
    pairs("NV12 to BGRA", "~libyuv NV12ToARGB, coarser", NV12ToARGB, 4);
    s.Peer("YUYV to BGRA", size, "~libyuv YUY2ToARGB, coarser",
           [=] { YUY2ToARGB(b.src, 2 * w, b.dst, 4 * w, w, h); });

    const auto toPlanes = [&](const char* job, int layout, const char* name, auto convert,
                              int bytes) {
      s.Peer(job, size, name, [=] {
        const Planes p(b.dst, layout, size);
        convert(b.src, bytes * w, p.data[0], p.step[0], p.data[1], p.step[1], p.data[2], p.step[2],
                w, h);
      });
    };
    toPlanes("BGR to I420", QV_LAYOUT_I420, "~libyuv RGB24ToI420, coarser", RGB24ToI420, 3);
    toPlanes("BGRA to I420", QV_LAYOUT_I420, "~libyuv ARGBToI420, coarser", ARGBToI420, 4);
    toPlanes("BGRA to I422", QV_LAYOUT_I422, "~libyuv ARGBToI422, coarser", ARGBToI422, 4);
    toPlanes("BGRA to I444", QV_LAYOUT_I444, "~libyuv ARGBToI444, coarser", ARGBToI444, 4);
    s.Peer("BGRA to NV12", size, "~libyuv ARGBToNV12, coarser", [=] {
      const Planes p(b.dst, QV_LAYOUT_NV12, size);
      ARGBToNV12(b.src, 4 * w, p.data[0], w, p.data[1], w, w, h);
    });
    s.Peer("BGRA to YUYV", size, "~libyuv ARGBToYUY2, coarser",
           [=] { ARGBToYUY2(b.src, 4 * w, b.dst, 2 * w, w, h); });
    s.Peer("BGRA to UYVY", size, "~libyuv ARGBToUYVY, coarser",
           [=] { ARGBToUYVY(b.src, 4 * w, b.dst, 2 * w, w, h); });
#endif
#if defined(QV_BENCH_OPENCV)
    const cv::Mat packed(size.height, w, CV_8UC2, b.src), bgr(size.height, w, CV_8UC3, b.dst);
    const cv::Mat pixels(size.height, w, CV_8UC3, b.src);
    const cv::Mat planar(size.height * 3 / 2, w, CV_8UC1, b.dst);
    s.Peer("YUYV to BGR", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(packed, cv::Mat(bgr), cv::COLOR_YUV2BGR_YUY2); });
    s.Peer("BGR to I420", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(pixels, cv::Mat(planar), cv::COLOR_BGR2YUV_I420); });
#endif
  }
});
