#include <algorithm>

#include "kernels/composite/Composite.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

void CheckAlphaComp(Case& c, const AlphaCompKernel& kernel, int pixel) {
  const IppiSize size = c.Size();
  const std::ptrdiff_t bytes = std::ptrdiff_t{size.width} * pixel;
  Image a = c.Source(bytes, size.height);
  const Image b = c.Source(bytes, size.height);
  const Image dst = c.Destination(bytes, size.height);
  const auto alpha = [&] {
    return static_cast<unsigned char>(c.random.OneIn(4) ? c.random.Pick(0, 255, 1, 254)
                                                        : c.random.Between(0, 255));
  };
  const unsigned char alpha1 = c.IsBench() ? 140 : alpha(), alpha2 = c.IsBench() ? 230 : alpha();
  const auto type = static_cast<IppiAlphaType>(c.IsBench() ? 0 : c.random.Between(0, 11));
  if (!c.IsBench() && c.random.OneIn(4)) a = dst;  // in place
  c.Compare([=] {
    return kernel(a.data, a.step, alpha1, b.data, b.step, alpha2, dst.data, dst.step, size, type);
  });
}

void CheckMergePlus(Case& c, const MergePlusKernel& kernel, int pixel) {
  const IppiSize size = c.Size();
  const std::ptrdiff_t bytes = std::ptrdiff_t{size.width} * pixel;
  const Image dst = c.Destination(bytes, size.height);
  Image src = c.Source(bytes, size.height);
  const Image alpha = c.Source(size.width, size.height);
  if (!c.IsBench() && c.random.OneIn(8)) src = dst;
  c.Compare([=] {
    return kernel(dst.data, dst.step, src.data, src.step, alpha.data, alpha.step, size.width,
                  size.height);
  });
}

void CheckOverlay(Case& c, const OverlayKernel& kernel, int fgPixel, int pixel) {
  const IppiSize size = c.Size();
  const Image frame = c.Destination(std::ptrdiff_t{size.width} * pixel, size.height);
  const Image fg = c.Source(std::ptrdiff_t{size.width} * fgPixel, size.height);
  Image alpha = c.Source(size.width, size.height);
  const bool bench = c.IsBench();
  if (!bench && (fgPixel == 4 || c.random.OneIn(4))) alpha = {nullptr, 0};
  const int opacity = bench || c.random.OneIn(3) ? 255 : c.random.Between(0, 255);
  const bool premultiplied = !bench && c.random.OneIn(2);
  // Long stretches of clear pixels.
  if (!bench && c.random.OneIn(3))
    for (int y = 0; y < size.height; ++y)
      for (int x = c.random.Between(0, size.width), n = c.random.Between(0, size.width - x); n > 0;
           --n, ++x) {
        if (alpha.data) alpha.data[std::ptrdiff_t{y} * alpha.step + x] = 0;
        unsigned char* const p =
            fg.data + std::ptrdiff_t{y} * fg.step + std::ptrdiff_t{x} * fgPixel;
        std::fill_n(p, fgPixel, static_cast<unsigned char>(0));
      }
  c.Compare([=] {
    return kernel(frame.data, frame.step, fg.data, fg.step, alpha.data, alpha.step, size, opacity,
                  premultiplied);
  });
}

// The planes of an over merge. The merged alpha goes by the step of the foreground's, so the two
// are cut from one allocation side by side, or are one plane.
struct OverPlanes {
  IppiSize size;
  Image fg, bg, alphas, bgAlpha;
  unsigned char* merged;

  explicit OverPlanes(Case& c) : size(c.Size()) {
    const std::ptrdiff_t bytes = std::ptrdiff_t{size.width} * 3;
    fg = c.Destination(bytes, size.height);
    bg = c.Source(bytes, size.height);
    const bool together = !c.IsBench() && c.random.OneIn(6);
    alphas = c.Destination(std::ptrdiff_t{size.width} * (together ? 1 : 2), size.height);
    merged = alphas.data + (together ? 0 : size.width);
    bgAlpha = c.Source(size.width, size.height);
    if (!c.IsBench() && c.random.OneIn(6)) bgAlpha = {merged, alphas.step};
  }
};

}  // namespace

QV_CHECK(AlphaCompC_8u_C1) { CheckAlphaComp(c, AlphaCompC_8u_C1, 1); }
QV_CHECK(AlphaCompC_8u_C3) { CheckAlphaComp(c, AlphaCompC_8u_C3, 3); }
QV_CHECK(MergeAlphaPlus_8u_C1) { CheckMergePlus(c, MergeAlphaPlus_8u_C1, 1); }
QV_CHECK(MergeAlphaPlus_8u_C3) { CheckMergePlus(c, MergeAlphaPlus_8u_C3, 3); }

QV_CHECK(Overlay_8u_C1) { CheckOverlay(c, Overlay_8u_C1, 1, 1); }
QV_CHECK(Overlay_8u_C3) { CheckOverlay(c, Overlay_8u_C3, 3, 3); }
QV_CHECK(Overlay_8u_AC4) { CheckOverlay(c, Overlay_8u_AC4, 4, 4); }
QV_CHECK(Overlay_8u_AC4C3) { CheckOverlay(c, Overlay_8u_AC4C3, 4, 3); }

QV_CHECK(MergeAlphaOverPlain_8u) {
  const OverPlanes p(c);
  c.Compare([=] {
    return MergeAlphaOverPlain_8u(p.fg.data, p.fg.step, p.alphas.data, p.alphas.step, p.bg.data,
                                  p.bg.step, p.bgAlpha.data, p.bgAlpha.step, p.merged,
                                  p.size.width, p.size.height);
  });
}

QV_CHECK(MergeAlphaOver_8u) {
  const OverPlanes p(c);
  // The merged alpha need not come from a copy of the foreground's: quotients far above 255 are
  // part of it. Fewer colour bytes than pixels have are, too.
  int rowBytes = 3 * p.size.width;
  if (!c.IsBench() && c.random.OneIn(4)) rowBytes -= c.random.Between(0, rowBytes);
  c.Compare([=] {
    return MergeAlphaOver_8u(p.fg.data, p.fg.step, p.alphas.data, p.alphas.step, p.bg.data,
                             p.bg.step, p.bgAlpha.data, p.bgAlpha.step, p.merged, rowBytes,
                             p.size.width, p.size.height);
  });
}
