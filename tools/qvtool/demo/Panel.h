// The parts of the demo page.
//
// To add one, add a file demo/panels/Name.cpp and nothing else; the build finds it:
//
//   #include "demo/Panel.h"
//
//   namespace qvtool::demo {
//   namespace {
//
//   void Make(const Scene& scene, Gallery& gallery) {
//     const Plane& src = scene.colour.PlaneAt(0);
//     Frame result(Layout::Bgr, scene.colour.Width(), scene.colour.Height());
//     const Plane& dst = result.PlaneAt(0);
//     gallery.Add({.name = "mirror-left-right",
//                  .title = "Mirror, left to right",
//                  .formula = "dst(W - 1 - x, y) = src(x, y)",
//                  .calls = {QV_CALL(CqvAccLib::qvMirror(CqvAccLib::ThreeChannels, src.data,
//                  src.step,
//                                                        dst.data, dst.step, src.Size(),
//                                                        AxisVertical))},
//                  .before = {{"The frame", scene.colour}},
//                  .after = {{"Mirrored", result}}});
//   }
//
//   const PanelSource source{80, "Mirror", {Make}};   // rank on the page, heading
//
//   }  // namespace
//   }  // namespace qvtool::demo
//
// Add runs and times the calls before it looks at the pictures. Panels of one title that follow
// each other, a variant each, share a card of the page: the words, calls and pictures before are
// those of the first.
#ifndef QV_TOOLS_QVTOOL_DEMO_PANEL_H
#define QV_TOOLS_QVTOOL_DEMO_PANEL_H

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "demo/Scene.h"
#include "io/Frame.h"

namespace qvtool::demo {

// A call of the library as it stands in the source, and the means to make it.
struct Call {
  std::string text;
  std::function<int()> make;
};

#define QV_CALL(...)                          \
  ::qvtool::demo::Call {                      \
#__VA_ARGS__, [&] { return __VA_ARGS__; } \
  }

// A picture of a panel: Grey, Bgr or Bgra. `detail` shows this part enlarged instead of the whole
// scaled down.
struct Picture {
  std::string caption;
  const Frame& frame;
  std::optional<IppiRect> detail = {};
};

struct Panel {
  std::string name;  // of its files; lower case, unique
  std::string title;
  std::string variant = {};            // among panels of one title
  std::string formula;                 // one line
  std::string note = {};               // a sentence more, where it helps
  std::vector<Call> calls;             // made and timed in this order, together
  std::function<void()> prepare = {};  // run before each round of calls, untimed
  std::function<void()> finish = {};   // run once after the last round, before the pictures
  long long pixels = 0;                // that the calls write; 0: those of the first picture after
  std::vector<Picture> before = {};
  std::vector<Picture> after;
  bool cover = false;  // its last picture after is also among those on top of the page
};

inline Picture Detail(const std::string& caption, const Frame& frame, Spot middle) {
  return {caption, frame, Around(frame, middle, kDetail)};
}

// A dark Bgr frame: what rotations and warps leave of it stays as it is.
Frame Blank(IppiSize size);

// A code that an operation takes, among others that are shown beside it.
struct Variant {
  int code;
  const char* name;
  const char* title;
};

// The methods of the class; rotation and warps have the first three.
inline constexpr Variant kMethods[] = {{1, "nearest", "nearest neighbour, code 1"},
                                       {2, "linear", "linear, code 2"},
                                       {4, "cubic", "cubic (Keys 1981), code 4"},
                                       {8, "area", "area averaging, code 8"},
                                       {16, "lanczos", "Lanczos, code 16"}};
inline constexpr std::span<const Variant> kWarpMethods = std::span(kMethods).first(3);

// Takes panels and turns them into files and a page.
class Gallery {
 public:
  virtual ~Gallery() = default;
  virtual void Add(const Panel& panel) = 0;
};

using MakePanels = void(const Scene&, Gallery&);

class PanelSource {
 public:
  // Registers the panels of one family, made in this order.
  PanelSource(int rank, const char* heading, std::vector<MakePanels*> makers);

  int rank;
  const char* heading;
  std::vector<MakePanels*> makers;
};

// All families by rank.
std::vector<const PanelSource*> AllPanels();

}  // namespace qvtool::demo

#endif
