#include "demo/Panel.h"

#include <algorithm>
#include <utility>

#include "io/Status.h"

namespace qvtool::demo {
namespace {

std::vector<const PanelSource*>& Registered() {
  static std::vector<const PanelSource*> sources;
  return sources;
}

}  // namespace

Frame Blank(IppiSize size) {
  Frame blank(Layout::Bgr, size.width, size.height);
  const Plane& plane = blank.PlaneAt(0);
  const unsigned char value[] = {64, 64, 64};
  Check("qvSet", CqvAccLib::qvSet(CqvAccLib::ThreeChannels, value, plane.data, plane.step, size));
  return blank;
}

PanelSource::PanelSource(int rank, const char* heading, std::vector<MakePanels*> makers)
    : rank(rank), heading(heading), makers(std::move(makers)) {
  Registered().push_back(this);
}

std::vector<const PanelSource*> AllPanels() {
  auto sources = Registered();
  std::sort(sources.begin(), sources.end(), [](const PanelSource* a, const PanelSource* b) {
    return std::pair(a->rank, std::string(a->heading)) <
           std::pair(b->rank, std::string(b->heading));
  });
  return sources;
}

}  // namespace qvtool::demo
