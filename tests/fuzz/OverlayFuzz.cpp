// A foreground over a frame, wherever it lies. Only pixels that lie on each other may be touched.
#include <algorithm>

#include "qvAcceleratedLib/Overlay.h"
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

// The layer's pixels that lie on the frame.
struct Shown {
  long long first, count;
};

Shown ShownOf(int offset, int length, int frameLength) {
  const long long first = std::max(0ll, -static_cast<long long>(offset));
  return {first, std::min<long long>(length, static_cast<long long>(frameLength) - offset) - first};
}

Part PartOf(Shown across, Shown down, int x, int y, int bytes) {
  return {static_cast<std::ptrdiff_t>(across.count) * bytes,
          static_cast<std::ptrdiff_t>(down.count),
          static_cast<std::ptrdiff_t>(across.first + x) * bytes,
          static_cast<std::ptrdiff_t>(down.first + y)};
}

int DrawOffset(Input& in, const char* name) {
  return in.Rarely("any offset", 24) ? in.Any(name) : in.Between(name, -60, 100);
}

}  // namespace

void FuzzOverlay(Input& in) {
  Call call(in);
  const int layout =
      in.Pick("layouts: 1 on 1, 3 on 3, 4 on 3, 4 on 4, any", 0, 1, 2, 3, 0, 1, 2, 3, 4);
  static constexpr int kFrame[] = {1, 3, 3, 4}, kLayer[] = {1, 3, 4, 4};
  OverlayFrame frame = {};
  OverlayLayer layer = {};
  frame.channels = layout < 4 ? kFrame[layout] : in.Code("frame channels", 1, 2, 3, 4);
  layer.channels = layout < 4 ? kLayer[layout] : in.Code("channels", 4, 3, 1, 2);
  layer.opacity = in.Pick("opacity: full, any byte, any", 0, 0, 0, 1, 1, 1, 1, 2);
  layer.opacity = layer.opacity == 0   ? 255
                  : layer.opacity == 1 ? in.Between("opacity", 0, 255)
                                       : in.Any("opacity");
  layer.alphaType = in.Code("alphaType", AlphaOver, AlphaOverPremul, AlphaOver, AlphaOverPremul, 3);
  frame.size = {in.Length("frame width"), in.Length("frame height")};
  layer.size = {in.Length("width"), in.Length("height")};
  layer.x = DrawOffset(in, "x");
  layer.y = DrawOffset(in, "y");
  bool known = false;
  for (int i = 0; i < 4; ++i) known |= frame.channels == kFrame[i] && layer.channels == kLayer[i];
  const bool empty = IsEmpty(frame.size) || IsEmpty(layer.size);
  const bool isByte = layer.opacity >= 0 && layer.opacity <= 255;
  const bool isOver = layer.alphaType == AlphaOver || layer.alphaType == AlphaOverPremul;
  const auto fit = [&](IppiSize size) { return empty ? size : contract::Fitting(size, 4); };
  if (known && isByte && isOver) layer.size = fit(layer.size), frame.size = fit(frame.size);
  const Shown across = ShownOf(layer.x, layer.size.width, frame.size.width);
  const Shown down = ShownOf(layer.y, layer.size.height, frame.size.height);
  const bool outside = across.count < 1 || down.count < 1;
  if (!known || empty || !isByte || !isOver || outside) call.Refused();

  const Part there = PartOf(across, down, layer.x, layer.y, frame.channels);
  const auto draw = [&](const char* name, int bytes) {
    return call.Step(name, std::ptrdiff_t{bytes} * layer.size.width);
  };
  const FuzzImage to = call.Destination(
      "frame null", call.Step("frameStep", std::ptrdiff_t{frame.channels} * frame.size.width),
      there);
  const FuzzImage from =
      call.Source("fg null", draw("fgStep", layer.channels),
                  PartOf(across, down, 0, 0, layer.channels));
  FuzzImage alpha = {nullptr, 0};
  if (!in.Rarely("no alpha", 48))
    alpha = call.Required(draw("alphaStep", 1),
                          layer.channels == 4 ? Part{0, 1} : PartOf(across, down, 0, 0, 1), false);
  frame.data = to.data, frame.step = to.step;
  layer.data = from.data, layer.step = from.step;
  layer.alpha = alpha.data, layer.alphaStep = alpha.step;
  const int expected = !known                     ? StatusChannelErr
                       : !to.data || !from.data ? StatusNullPtrErr
                       : empty                    ? StatusSizeErr
                       : !isByte                  ? StatusOutOfRangeErr
                       : !isOver                  ? StatusAlphaTypeErr
                       : outside                  ? StatusNoOverlapWarning
                                                  : StatusOk;
  call.Run("qv_over", expected, [&] { return Over(frame, layer); });
}

}  // namespace qv::test
