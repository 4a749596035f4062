#include "demo/Panel.h"

#include <algorithm>
#include <utility>

namespace qvtool::demo {
namespace {

std::vector<const PanelSource*>& Registered() {
  static std::vector<const PanelSource*> sources;
  return sources;
}

}  // namespace

PanelSource::PanelSource(int rank, const char* heading, void (*make)(const Scene&, Gallery&))
    : rank(rank), heading(heading), make(make) {
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
