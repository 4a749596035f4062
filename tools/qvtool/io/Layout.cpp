#include "io/Layout.h"

#include "Error.h"

namespace qvtool {
namespace {

constexpr PlaneShape kFull{0, 0, 1};
constexpr PlaneShape kPacked{0, 0, 3};

constexpr LayoutInfo kLayouts[] = {
    {Layout::Grey, "grey", 1, {kFull}, false, -1},
    {Layout::Bgr, "bgr", 1, {kPacked}, false, -1},
    {Layout::Bgra, "bgra", 2, {kPacked, kFull}, false, 1},
    {Layout::Yuyv, "yuyv", 1, {{1, 0, 4}}, true, -1},
    {Layout::I420, "i420", 3, {kFull, {1, 1, 1}, {1, 1, 1}}, true, -1},
    {Layout::Yv12, "yv12", 3, {kFull, {1, 1, 1}, {1, 1, 1}}, true, -1},
    {Layout::Nv12, "nv12", 2, {kFull, {1, 1, 2}}, true, -1},
    {Layout::I411, "i411", 3, {kFull, {2, 0, 1}, {2, 0, 1}}, true, -1},
    {Layout::I422, "i422", 3, {kFull, {1, 0, 1}, {1, 0, 1}}, true, -1},
    {Layout::I444, "i444", 3, {kFull, kFull, kFull}, true, -1},
    {Layout::I444Alpha, "i444a", 4, {kFull, kFull, kFull, kFull}, true, 3},
};

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

Layout ParseLayout(const std::string& argument, const std::string& text) {
  for (const LayoutInfo& info : kLayouts)
    if (info.name == text) return info.layout;
  throw UsageError(argument + ": there is no layout '" + text + "'; wanted is one of " +
                   LayoutNames());
}

}  // namespace qvtool
