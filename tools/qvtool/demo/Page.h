// The page that shows the panels, and the pictures beside it.
#ifndef QV_TOOLS_QVTOOL_DEMO_PAGE_H
#define QV_TOOLS_QVTOOL_DEMO_PAGE_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "demo/Measure.h"
#include "demo/Panel.h"
#include "demo/Thumbnail.h"

namespace qvtool::demo {

class Page : public Gallery {
 public:
  // Writes into `folder`, which is there already.
  Page(std::filesystem::path folder, const Scene& scene);

  // Begins a family of panels.
  void Begin(const std::string& heading);
  void Add(const Panel& panel) override;

  // Writes index.html, with all pictures inside.
  void Finish();

  int Panels() const { return static_cast<int>(rows_.size()); }

 private:
  struct Row {
    std::string name;
    std::string title;
    double milliseconds;
    double nanoseconds;  // a pixel
  };

  std::string Figure(const Panel& panel, const Picture& picture, const char* role,
                     std::size_t number);
  std::string Save(const std::string& name, const Frame& frame);
  std::string Summary() const;
  std::string Chips() const;

  std::filesystem::path folder_;
  const Scene& scene_;
  std::string cards_;
  bool open_ = false;
  std::vector<Row> rows_;
  std::map<const Frame*, std::string> saved_;  // pictures of the scene, by file name
  std::map<const Frame*, Embedded> embedded_;  // the same, scaled down
};

}  // namespace qvtool::demo

#endif
