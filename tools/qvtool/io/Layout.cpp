#include "io/Layout.h"

#include "Error.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {
namespace {

constexpr PlaneShape Bytes(int shiftX, int shiftY, int channel) {
  return {shiftX, shiftY, 1, {channel}};
}

constexpr PlaneShape kFirst = Bytes(0, 0, 0);  // grey or luma
constexpr PlaneShape kAlpha = Bytes(0, 0, 3);
constexpr PlaneShape kPixels = {0, 0, 3, {0, 1, 2}};

using enum Layout;

// clang-format off
constexpr LayoutInfo kLayouts[] = {
    {Grey, "grey", QV_LAYOUT_GREY, 1, {kFirst}, false, -1, Grey, Grey},
    {Bgr, "bgr", QV_LAYOUT_BGR, 1, {kPixels}, false, -1, Bgr, I444},
    {Bgra, "bgra", QV_LAYOUT_BGR, 2, {kPixels, kAlpha}, false, 1, Bgra, I444Alpha},
    {Yuyv, "yuyv", QV_LAYOUT_YUYV, 1, {{1, 0, 4, {0, 1, 0, 2}}}, true, -1, Bgr, I422},
    {Uyvy, "uyvy", QV_LAYOUT_UYVY, 1, {{1, 0, 4, {1, 0, 2, 0}}}, true, -1, Bgr, I422},
    {I420, "i420", QV_LAYOUT_I420, 3, {kFirst, Bytes(1, 1, 1), Bytes(1, 1, 2)},
     true, -1, Bgr, I420},
    {Yv12, "yv12", QV_LAYOUT_YV12, 3, {kFirst, Bytes(1, 1, 2), Bytes(1, 1, 1)},
     true, -1, Bgr, I420},
    {Nv12, "nv12", QV_LAYOUT_NV12, 2, {kFirst, {1, 1, 2, {1, 2}}}, true, -1, Bgr, I420},
    {Nv21, "nv21", QV_LAYOUT_NV21, 2, {kFirst, {1, 1, 2, {2, 1}}}, true, -1, Bgr, I420},
    {I411, "i411", 0, 3, {kFirst, Bytes(2, 0, 1), Bytes(2, 0, 2)}, true, -1, Bgr, I411},
    {I422, "i422", QV_LAYOUT_I422, 3, {kFirst, Bytes(1, 0, 1), Bytes(1, 0, 2)},
     true, -1, Bgr, I422},
    {I444, "i444", QV_LAYOUT_I444, 3, {kFirst, Bytes(0, 0, 1), Bytes(0, 0, 2)},
     true, -1, Bgr, I444},
    {I444Alpha, "i444a", QV_LAYOUT_I444, 4, {kFirst, Bytes(0, 0, 1), Bytes(0, 0, 2), kAlpha},
     true, 3, Bgra, I444Alpha},
};
// clang-format on

}  // namespace

std::span<const LayoutInfo> AllLayouts() { return kLayouts; }

const LayoutInfo& Describe(Layout layout) { return kLayouts[static_cast<int>(layout)]; }

std::string LayoutNames() {
  std::string names;
  for (const LayoutInfo& info : kLayouts) {
    if (!names.empty()) names += ", ";
    names += info.name;
  }
  return names;
}

std::string LowerCase(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

Layout ParseLayout(const std::string& argument, const std::string& text) {
  for (const LayoutInfo& info : kLayouts)
    if (info.name == LowerCase(text)) return info.layout;
  throw UsageError(argument + ": there is no layout '" + text + "'; wanted is one of " +
                   LayoutNames());
}

}  // namespace qvtool
