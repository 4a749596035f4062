// Peers that resample with antialiasing: zimg one plane, OpenCV by areas, libvips all.
#include "bench/Bench.h"
#include "bench/ResizePeers.h"

#if defined(QV_BENCH_OPENCV)
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if defined(QV_BENCH_VIPS)
#include <vips/vips.h>
#endif

#include <cstdlib>

namespace bench {

namespace {

#if defined(QV_BENCH_VIPS)
// On one thread, into memory of its own.
void VipsResize(const ResampleJob& r) {
  const ResizeJob& job = r.job;
  static const bool ready = VIPS_INIT("qvbench") == 0;
  if (!ready) std::abort();
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  const VipsKernel kernel = job.code == 2   ? VIPS_KERNEL_LINEAR
                            : job.code == 4 ? VIPS_KERNEL_CUBIC
                            : job.code == 16 ? VIPS_KERNEL_LANCZOS3
                                             : VIPS_KERNEL_MITCHELL;
  const auto step = [](VipsImage** image, VipsImage* made, int failed) {
    if (failed) std::abort();
    g_object_unref(*image);
    *image = made;
  };
  VipsImage* image = vips_image_new_from_memory(
      job.src, Pixels(job.from) * static_cast<std::size_t>(job.channels), job.from.width,
      job.from.height, job.channels, VIPS_FORMAT_UCHAR);
  VipsImage* made = nullptr;
  int failed = 0;
  if (r.weighted) {
    failed = vips_premultiply(image, &made, nullptr);
    step(&image, made, failed);
  }
  failed = vips_resize(image, &made, double(job.to.width) / job.from.width, "vscale",
                       double(job.to.height) / job.from.height, "kernel", kernel, nullptr);
  step(&image, made, failed);
  if (r.weighted) {
    failed = vips_unpremultiply(image, &made, nullptr);
    step(&image, made, failed);
    failed = vips_cast(image, &made, VIPS_FORMAT_UCHAR, nullptr);
    step(&image, made, failed);
  }
  std::size_t bytes = 0;
  void* const pixels = vips_image_write_to_memory(image, &bytes);
  if (!pixels) std::abort();
  g_free(pixels);
  g_object_unref(image);
}
#endif

}  // namespace

std::vector<ResizePeer> ResamplePeers([[maybe_unused]] const ResampleJob& r) {
  std::vector<ResizePeer> peers;
  [[maybe_unused]] const auto [code, channels, from, src, to, dst] = r.job;
#if defined(QV_BENCH_OPENCV)
  if (code == 8 && !r.weighted) {
    const cv::Mat in(from.height, from.width, CV_8UC(channels), const_cast<unsigned char*>(src));
    const cv::Mat out(to.height, to.width, CV_8UC(channels), dst);
    peers.push_back({"OpenCV", [=] {
                       cv::Mat result = out;
                       cv::resize(in, result, result.size(), 0, 0, cv::INTER_AREA);
                     }});
  }
#endif
#if defined(QV_BENCH_ZIMG)
  if (channels == 1 && code != 8) peers.push_back({"zimg", ZimgResize(r.job)});
#endif
#if defined(QV_BENCH_VIPS)
  // Reductions by four and more are means over whole pixels first.
  const bool shrinks = from.width >= 4 * to.width;
  if (code > 1 && code != 8)
    peers.push_back({shrinks ? "~libvips, shrunk first" : "libvips", [=] { VipsResize(r); }});
#endif
  return peers;
}

}  // namespace bench
