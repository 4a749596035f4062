#include <algorithm>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

// A view of one plane as a grey picture.
Frame Grey(const Plane& plane) {
  Frame grey(Layout::Grey, plane.columns, plane.rows);
  for (int y = 0; y < plane.rows; ++y)
    std::copy_n(plane.Row(y), plane.columns, grey.PlaneAt(0).Row(y));
  return grey;
}

// Packed bytes or chroma pairs as they lie in memory.
Frame Bytes(const Plane& plane) {
  return Grey({plane.data, plane.step, plane.RowBytes(), plane.rows, 1});
}

// Of a pixel in packed rows.
Spot InBytes(Spot spot) { return {2 * spot.x, spot.y}; }

void Make(const Scene& scene, Gallery& gallery) {
  if (scene.packed.Empty()) return;
  const Frame& packed = scene.packed;
  const IppiSize size = packed.Size();
  const Plane& src = packed.PlaneAt(0);
  const Frame packedBytes = Bytes(src);

  Frame fromPacked(Layout::Bgr, size.width, size.height);
  const Plane& dst = fromPacked.PlaneAt(0);
  gallery.Add({.name = "convert-packed-to-bgr",
               .title = "Packed 4:2:2 to BGR",
               .formula = "B = (76284 Y + 132186 Cb - 18140365) >> 16, G and R likewise",
               .calls = {QV_CALL(CqvAccLib::qvYCbCr422ToBGR(CqvAccLib::ThreeChannels, src.data,
                                                            src.step, dst.data, dst.step, size))},
               .before = {Detail("Y0, Cb, Y1, Cr as bytes", packedBytes, InBytes(scene.letters))},
               .after = {Detail("B, G, R", fromPacked, scene.letters)}});

  Frame planar(Layout::Yv12, size.width, size.height);
  unsigned char* yCrCb[3];
  unsigned char* yCbCr[3];
  int steps[3];
  for (int i = 0; i < 3; ++i) {
    yCrCb[i] = yCbCr[i] = planar.PlaneAt(i).data;
    steps[i] = planar.PlaneAt(i).step;
  }
  std::swap(yCbCr[1], yCbCr[2]);
  Frame luma(Layout::Grey, 1, 1), cb(Layout::Grey, 1, 1), cr(Layout::Grey, 1, 1);
  const auto show = [&] {
    luma = Grey(planar.PlaneAt(0));
    cr = Grey(planar.PlaneAt(1));
    cb = Grey(planar.PlaneAt(2));
  };
  const long long pixels = static_cast<long long>(size.width) * size.height;
  gallery.Add({.name = "convert-packed-to-planar",
               .title = "Packed 4:2:2 to planar 4:2:0",
               .formula = "Y keeps every sample, Cb and Cr those of the upper row of two",
               .calls = {QV_CALL(CqvAccLib::qvYCbCr422ToYCrCb420(
                   CqvAccLib::OneChannel, src.data, src.step, yCrCb, steps, size))},
               .finish = show,
               .pixels = pixels,
               .before = {Detail("Y0, Cb, Y1, Cr as bytes", packedBytes, InBytes(scene.coloured))},
               .after = {{"Y", luma}, {"Cb", cb}, {"Cr", cr}}});

  Frame fromPlanes(Layout::Bgr, size.width, size.height);
  const Plane& bgr = fromPlanes.PlaneAt(0);
  gallery.Add({.name = "convert-planar-to-bgr",
               .title = "Planar 4:2:0 to BGR",
               .formula = "B = (76284 Y + 132186 (Cb - 128) - 1187776) >> 16, G and R likewise",
               .calls = {QV_CALL(CqvAccLib::qvYCbCr420ToBGR(
                   CqvAccLib::ThreeChannels, yCbCr, steps, bgr.data, bgr.step, size))},
               .before = {{"Y", luma}, {"Cb", cb}, {"Cr", cr}},
               .after = {Detail("B, G, R", fromPlanes, scene.letters)}});

  // Two planes, as hardware decoders give them.
  Frame pairs(Layout::Nv12, size.width, size.height);
  const Plane& y = pairs.PlaneAt(0);
  const Plane& cbCr = pairs.PlaneAt(1);
  for (int row = 0; row < y.rows; ++row)
    std::copy_n(planar.PlaneAt(0).Row(row), y.columns, y.Row(row));
  for (int row = 0; row < cbCr.rows; ++row)
    for (int x = 0; x < cbCr.columns; ++x) {
      cbCr.Row(row)[2 * x] = planar.PlaneAt(2).Row(row)[x];
      cbCr.Row(row)[2 * x + 1] = planar.PlaneAt(1).Row(row)[x];
    }
  const Frame pairBytes = Bytes(cbCr);
  gallery.Add({.name = "convert-two-plane-to-planar",
               .title = "Two-plane to planar 4:2:0",
               .formula = "Cb[j] = CbCr[2j], Cr[j] = CbCr[2j + 1]",
               .calls = {QV_CALL(CqvAccLib::qvYCbCr420(CqvAccLib::OneChannel, y.data, y.step,
                                                       cbCr.data, cbCr.step, yCbCr, steps, size))},
               .finish = show,
               .pixels = pixels,
               .before = {Detail("Cb, Cr pairs as bytes", pairBytes,
                                 {scene.coloured.x, scene.coloured.y / 2})},
               .after = {{"Cb", cb}, {"Cr", cr}}});
}

const PanelSource source{65, "Camera layouts", {Make}};

}  // namespace
}  // namespace qvtool::demo
