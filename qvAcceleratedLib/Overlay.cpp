#include "qvAcceleratedLib/Overlay.h"

#include "kernels/composite/Composite.h"
#include "kernels/copy/Copy.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"

namespace qv {

namespace {

const OverlayKernel* FindKernel(int frameChannels, int channels) {
  if (frameChannels == 1 && channels == 1) return &Overlay_8u_C1;
  if (frameChannels == 3 && channels == 3) return &Overlay_8u_C3;
  if (frameChannels == 3 && channels == 4) return &Overlay_8u_AC4C3;
  if (frameChannels == 4 && channels == 4) return &Overlay_8u_AC4;
  return nullptr;
}

// The part of the layer that lies on the frame: pixels `from` to `end` - 1 of one axis.
struct Extent {
  long long from, end;

  Extent(int offset, int length, int frameLength)
      : from(offset < 0 ? -static_cast<long long>(offset) : 0),
        end(static_cast<long long>(frameLength) - offset) {
    if (end > length) end = length;
  }
  int Length() const { return end > from ? static_cast<int>(end - from) : 0; }
};

// What is opaque everywhere and not weakened replaces the frame's pixels.
bool Replaces(const OverlayLayer& layer) {
  return layer.channels != 4 && !layer.alpha && layer.opacity == 255;
}

}  // namespace

IppStatus Over(const OverlayFrame& frame, const OverlayLayer& layer) {
  const OverlayKernel* const kernel = FindKernel(frame.channels, layer.channels);
  if (!kernel) return StatusChannelErr;
  if (!frame.data || !layer.data) return StatusNullPtrErr;
  if (frame.size.width < 1 || frame.size.height < 1 || layer.size.width < 1 ||
      layer.size.height < 1)
    return StatusSizeErr;
  if (layer.opacity < 0 || layer.opacity > 255) return StatusOutOfRangeErr;
  const bool premultiplied = layer.alphaType == AlphaOverPremul;
  if (layer.alphaType != AlphaOver && !premultiplied) return StatusAlphaTypeErr;
  const Extent across(layer.x, layer.size.width, frame.size.width);
  const Extent down(layer.y, layer.size.height, frame.size.height);
  const int width = across.Length();
  if (width == 0 || down.Length() == 0) return StatusNoOverlapWarning;

  const Work work = {1ll * width * down.Length(),
                     MethodOf(*kernel, (layer.opacity < 255) + 2 * premultiplied)};
  return RunBands(PlanBands(down.Length(), CallBudget()), work, [&](Band band) {
    const long long row = down.from + band.first;
    const auto at = [&](auto image, int step, int channels) {
      return Advance(image, row * step + across.from * channels);
    };
    unsigned char* const to = Advance(frame.data, (layer.y + row) * frame.step +
                                                      (layer.x + across.from) * frame.channels);
    const unsigned char* const from = at(layer.data, layer.step, layer.channels);
    const IppiSize size = {width, band.length};
    if (Replaces(layer))
      return (layer.channels == 1 ? CopyRows_8u_C1 : CopyRows_8u_C3)(from, layer.step, to,
                                                                     frame.step, size);
    return (*kernel)(to, frame.step, from, layer.step, at(layer.alpha, layer.alphaStep, 1),
                     layer.alphaStep, size, layer.opacity, premultiplied);
  });
}

}  // namespace qv
