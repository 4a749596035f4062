// qv_over, qv_deinterlace_bob, qv_weave.
#include <memory>

#include "bench/Bench.h"
#include "bench/Peers.h"
#include "qvAcceleratedLib/Fields.h"
#include "qvAcceleratedLib/Overlay.h"

using namespace qv;

namespace {

#if defined(QV_BENCH_PIXMAN)
// Keeps its images as long as the work itself.
std::function<void()> PixmanOver(pixman_format_code_t format, unsigned char* fg,
                                 unsigned char* alpha, pixman_format_code_t frameFormat,
                                 unsigned char* frame, IppiSize size) {
  using Image = std::shared_ptr<pixman_image_t>;
  const auto image = [=](pixman_format_code_t f, unsigned char* data) {
    const int step = size.width * PIXMAN_FORMAT_BPP(f) / 8;
    return Image(pixman_image_create_bits(f, size.width, size.height,
                                          reinterpret_cast<std::uint32_t*>(data), step),
                 pixman_image_unref);
  };
  const Image src = image(format, fg), dst = image(frameFormat, frame);
  const Image mask = alpha ? image(PIXMAN_a8, alpha) : Image();
  return [=] {
    pixman_image_composite32(PIXMAN_OP_OVER, src.get(), mask.get(), dst.get(), 0, 0, 0, 0, 0, 0,
                             size.width, size.height);
  };
}
#endif

struct Layout {
  const char* job;
  int frame, fg, opacity;
  IppiAlphaType type;
  double movedBytes;
};

void AddOver(bench::Suite& s, IppiSize size) {
  static constexpr Layout kLayouts[] = {
      {"over, 1 byte", 1, 1, 255, AlphaOver, 4},
      {"over, 3 bytes", 3, 3, 255, AlphaOver, 10},
      {"over, 3 bytes, half as opaque", 3, 3, 128, AlphaOver, 10},
      {"over, 4 bytes over 3", 3, 4, 255, AlphaOver, 10},
      {"over, 4 bytes over 4", 4, 4, 255, AlphaOver, 12},
      {"over, 4 bytes over 4, premultiplied", 4, 4, 255, AlphaOverPremul, 12}};
  const bench::Buffers b = s.Frame(size);
  for (const Layout& l : kLayouts) {
    const int w = size.width;
    const unsigned char* const plane = l.fg == 4 ? nullptr : b.src2;
    s.Ours(l.job, size, l.movedBytes, [=] {
      Over({b.dst, l.frame * w, size, l.frame},
           {b.src, l.fg * w, size, l.fg, plane, w, 0, 0, l.opacity, l.type});
    });
#if defined(QV_BENCH_LIBYUV)
    if (l.frame == 1)
      s.Peer(l.job, size, "~libyuv BlendPlane", [=] {
        libyuv::BlendPlane(b.src, w, b.dst, w, b.src2, w, b.dst, w, w, size.height);
      });
    if (l.frame == 4)
      s.Peer(l.job, size, "~libyuv ARGBBlend, premultiplied, over 256", [=] {
        libyuv::ARGBBlend(b.src, 4 * w, b.dst, 4 * w, b.dst, 4 * w, w, size.height);
      });
#endif
#if defined(QV_BENCH_PIXMAN)
    if (l.fg == 3)
      s.Peer(l.job, size, "~pixman OVER under a mask, rounds twice",
             PixmanOver(PIXMAN_r8g8b8, b.src, b.src2, PIXMAN_r8g8b8, b.dst, size));
    if (l.fg == 4)
      s.Peer(l.job, size,
             l.type == AlphaOver ? "~pixman OVER, premultiplied" : "pixman OVER",
             PixmanOver(PIXMAN_a8r8g8b8, b.src, nullptr,
                        l.frame == 4 ? PIXMAN_x8r8g8b8 : PIXMAN_r8g8b8, b.dst, size));
#endif
  }
}

void AddFields(bench::Suite& s, IppiSize size) {
  static const char* const kBob = "bob, both fields, mean";
  static const char* const kFilter = "bob, both fields, filter";
  static const char* const kWeave = "weave";
  const bench::Buffers b = s.Frame(size);
  const int w = size.width;
  for (const int weight : {0, 128})
    s.Ours(weight ? kFilter : kBob, size, 3, [=] {
      DeinterlaceBob(b.src, w, b.dst, w, b.dst2, w, size, TopFieldFirst, weight);
    });
  s.Ours(kWeave, size, 2, [=] {
    Weave(b.src, w, b.src2, w, b.dst, w, size, TopFieldFirst);
  });
#if defined(QV_BENCH_LIBYUV)
  const int h = size.height / 2;
  for (const int fraction : {128, 64})
    s.Peer(fraction == 128 ? kBob : kFilter, size, "libyuv CopyPlane and InterpolatePlane", [=] {
      const int two = 2 * w;
      libyuv::CopyPlane(b.src, two, b.dst, two, w, h);
      libyuv::InterpolatePlane(b.src, two, b.src + two, two, b.dst + w, two, w, h - 1, fraction);
      libyuv::CopyPlane(b.src + two * (h - 1), two, b.dst + two * h - w, two, w, 1);
      libyuv::CopyPlane(b.src + w, two, b.dst2 + w, two, w, h);
      libyuv::CopyPlane(b.src + w, two, b.dst2, two, w, 1);
      libyuv::InterpolatePlane(b.src + two + w, two, b.src + w, two, b.dst2 + two, two, w, h - 1,
                               fraction);
    });
  s.Peer(kWeave, size, "libyuv CopyPlane", [=] {
    libyuv::CopyPlane(b.src, w, b.dst, 2 * w, w, h);
    libyuv::CopyPlane(b.src2, w, b.dst + w, 2 * w, w, h);
  });
#endif
}

}  // namespace

static const bench::Family overlay([](bench::Suite& s) {
  for (const IppiSize size : bench::kFrames) {
    AddOver(s, size);
    AddFields(s, size);
  }
});
