// Luma and chroma as the C interface has them: matrix, range, and where chroma lies.
#include <algorithm>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

constexpr Variant kSitings[] = {{QV_CHROMA_REPEATED, "repeated", "chroma repeated"},
                                {QV_CHROMA_CENTRE, "centre", "interpolated, amid four pixels"},
                                {QV_CHROMA_LEFT, "left", "interpolated, between the left two"}};

constexpr Variant kMatrices[] = {{QV_BT601, "bt601", "BT.601, as they were made"},
                                 {QV_BT709, "bt709", "BT.709"},
                                 {QV_BT2020, "bt2020", "BT.2020"}};

void Make(const Scene& scene, Gallery& gallery) {
  const qv_size size = {scene.colour.Width(), scene.colour.Height()};
  const Plane& src = scene.colour.PlaneAt(0);
  Frame planar(Layout::I420, size.width, size.height), result(Layout::Bgr, size.width, size.height);
  const Plane& dst = result.PlaneAt(0);
  unsigned char* planes[3];
  int steps[3];
  for (int i = 0; i < 3; ++i) {
    planes[i] = planar.PlaneAt(i).data;
    steps[i] = planar.PlaneAt(i).step;
  }
  for (const Variant& siting : kSitings) {
    const int code = siting.code;
    gallery.Add({.name = std::string("siting-") + siting.name,
                 .title = "Pixels to 4:2:0 and back",
                 .variant = siting.title,
                 .formula = "Y = Kr R + Kg G + Kb B, Cb = (B - Y) / (2 - 2 Kb), Cr likewise",
                 .note = "A sample of chroma serves four pixels: repeated it makes blocks, "
                         "interpolated it runs smoothly.",
                 .calls = {QV_CALL(qv_rgb_to_yuv(QV_LAYOUT_BGR, src.data, src.step, QV_LAYOUT_I420,
                                                 planes, steps, size, QV_BT709, QV_STUDIO_RANGE,
                                                 code)),
                           QV_CALL(qv_yuv_to_rgb(QV_LAYOUT_I420, planes, steps, QV_LAYOUT_BGR,
                                                 dst.data, dst.step, size, QV_BT709,
                                                 QV_STUDIO_RANGE, code))},
                 .before = {Detail("the frame", scene.colour, scene.coloured)},
                 .after = {Detail(siting.title, result, scene.coloured)}});
  }

  qv_rgb_to_yuv(QV_LAYOUT_BGR, src.data, src.step, QV_LAYOUT_I420, planes, steps, size, QV_BT601,
                QV_STUDIO_RANGE, QV_CHROMA_LEFT);
  for (const Variant& matrix : kMatrices) {
    const int code = matrix.code;
    gallery.Add({.name = std::string("matrix-") + matrix.name,
                 .title = "The same samples by three matrices",
                 .variant = matrix.title,
                 .formula = "R = Y + 2 (1 - Kr) Cr, B = Y + 2 (1 - Kb) Cb, G from Y",
                 .note = "Colours shift where the matrix is not the one that the samples were made "
                         "by, greys do not.",
                 .calls = {QV_CALL(qv_yuv_to_rgb(QV_LAYOUT_I420, planes, steps, QV_LAYOUT_BGR,
                                                 dst.data, dst.step, size, code, QV_STUDIO_RANGE,
                                                 QV_CHROMA_LEFT))},
                 .after = {{matrix.title, result}}});
  }
}

const PanelSource source{60, "Luma and chroma", {Make}};

}  // namespace
}  // namespace qvtool::demo
