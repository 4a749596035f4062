#include "bench/ResizePeers.h"

#include "bench/Bench.h"

#if defined(QV_BENCH_OPENCV)
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if defined(QV_BENCH_LIBYUV)
#include <libyuv.h>
#endif
#if defined(QV_BENCH_ZIMG)
#include <zimg.h>
#endif
#if defined(QV_BENCH_SWSCALE)
extern "C" {
#include <libswscale/swscale.h>
}
#endif

#include <cstdlib>
#include <memory>

namespace bench {

#if defined(QV_BENCH_ZIMG)
// A graph for one plane of bytes.
std::function<void()> ZimgResize(const ResizeJob& job) {
  const auto [code, channels, from, src, to, dst] = job;
  zimg_image_format in, out;
  zimg_image_format_default(&in, ZIMG_API_VERSION);
  in.width = static_cast<unsigned>(from.width);
  in.height = static_cast<unsigned>(from.height);
  in.pixel_type = ZIMG_PIXEL_BYTE;
  in.color_family = ZIMG_COLOR_GREY;
  in.pixel_range = ZIMG_RANGE_FULL;
  out = in;
  out.width = static_cast<unsigned>(to.width);
  out.height = static_cast<unsigned>(to.height);
  zimg_graph_builder_params params;
  zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
  params.resample_filter = code == 1   ? ZIMG_RESIZE_POINT
                           : code == 2 ? ZIMG_RESIZE_BILINEAR
                           : code == 16 ? ZIMG_RESIZE_LANCZOS
                                        : ZIMG_RESIZE_BICUBIC;
  const bool mitchell = code == 32;
  params.filter_param_a = mitchell ? 1.0 / 3 : code == 4 ? 0 : 3;
  params.filter_param_b = mitchell ? 1.0 / 3 : 0.5;
  params.cpu_type = IsLimited() ? ZIMG_CPU_X86_AVX2 : ZIMG_CPU_AUTO_64B;
  const std::shared_ptr<zimg_filter_graph> graph(zimg_filter_graph_build(&in, &out, &params),
                                                 zimg_filter_graph_free);
  if (!graph) std::abort();
  std::size_t bytes = 0;
  zimg_filter_graph_get_tmp_size(graph.get(), &bytes);
  const std::shared_ptr<void> work(std::aligned_alloc(64, bytes / 64 * 64 + 64), std::free);
  zimg_image_buffer_const input = {ZIMG_API_VERSION, {}};
  input.plane[0] = {src, from.width, ZIMG_BUFFER_MAX};
  zimg_image_buffer output = {ZIMG_API_VERSION, {}};
  output.plane[0] = {dst, to.width, ZIMG_BUFFER_MAX};
  return [=] {
    zimg_filter_graph_process(graph.get(), &input, &output, work.get(), nullptr, nullptr, nullptr,
                              nullptr);
  };
}
#endif

namespace {

#if defined(QV_BENCH_SWSCALE)
std::function<void()> SwsResize(AVPixelFormat format, int code, IppiSize from,
                                const unsigned char* src, int srcStep, IppiSize to,
                                unsigned char* dst, int dstStep) {
  const int flags = code == 1   ? SWS_POINT
                    : code == 2 ? SWS_BILINEAR
                    : code == 4 ? SWS_BICUBIC
                    : code == 8 ? SWS_AREA
                                : SWS_LANCZOS;
  const double keys[] = {0, 0.5};
  const std::shared_ptr<SwsContext> context(
      sws_getContext(from.width, from.height, format, to.width, to.height, format,
                     flags | SWS_ACCURATE_RND, nullptr, nullptr, code == 4 ? keys : nullptr),
      sws_freeContext);
  if (!context) std::abort();
  return [=] {
    sws_scale(context.get(), &src, &srcStep, 0, from.height, &dst, &dstStep);
  };
}
#endif

}  // namespace

std::vector<ResizePeer> ResizePeers([[maybe_unused]] const ResizeJob& job) {
  std::vector<ResizePeer> peers;
  [[maybe_unused]] const auto [code, channels, from, src, to, dst] = job;
  [[maybe_unused]] const int srcStep = channels * from.width, dstStep = channels * to.width;
#if defined(QV_BENCH_OPENCV)
  if (channels != 2) {
    const int flag = code == 1   ? cv::INTER_NEAREST
                     : code == 2 ? cv::INTER_LINEAR
                     : code == 4 ? cv::INTER_CUBIC
                     : code == 8 ? cv::INTER_AREA
                                 : cv::INTER_LANCZOS4;
    const int depth = channels == 1 ? CV_8UC1 : CV_8UC3;
    const cv::Mat in(from.height, from.width, depth, const_cast<unsigned char*>(src));
    const cv::Mat out(to.height, to.width, depth, dst);
    peers.push_back({code == 16 ? "OpenCV, eight taps" : "OpenCV", [=] {
                       cv::Mat result = out;
                       cv::resize(in, result, result.size(), 0, 0, flag);
                     }});
  }
#endif
#if defined(QV_BENCH_ZIMG)
  if (channels == 1 && code != 8)
    peers.push_back(
        {to.width < from.width && code > 1 ? "zimg, widened" : "zimg", ZimgResize(job)});
#endif
#if defined(QV_BENCH_SWSCALE)
  const auto format = channels == 1   ? AV_PIX_FMT_GRAY8
                      : channels == 3 ? AV_PIX_FMT_BGR24
                                      : AV_PIX_FMT_YUYV422;
  peers.push_back({"swscale", SwsResize(format, code, from, src, srcStep, to, dst, dstStep)});
#endif
#if defined(QV_BENCH_LIBYUV)
  if (channels == 1 && (code <= 2 || code == 8))
    peers.push_back({code == 2 ? "~libyuv, coarser weights" : "libyuv", [=] {
                       libyuv::ScalePlane(src, srcStep, from.width, from.height, dst, dstStep,
                                          to.width, to.height,
                                          code == 1   ? libyuv::kFilterNone
                                          : code == 2 ? libyuv::kFilterBilinear
                                                      : libyuv::kFilterBox);
                     }});
#endif
  return peers;
}

}  // namespace bench
