// The page that shows the panels.
#ifndef QV_TOOLS_QVTOOL_DEMO_PAGE_H
#define QV_TOOLS_QVTOOL_DEMO_PAGE_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "demo/Panel.h"

namespace qvtool::demo {

class Page : public Gallery {
 public:
  // Writes into `folder`, which is there already; with `pictures` also all pictures in full size.
  Page(std::filesystem::path folder, bool pictures, const Scene& scene);

  // Begins a family of panels.
  void Begin(const std::string& heading);
  void Add(const Panel& panel) override;

  // Writes index.html, with all pictures inside.
  void Finish();

  int Panels() const { return static_cast<int>(rows_.size()); }

 private:
  // A line of the table of times.
  struct Row {
    std::string card;
    std::string title;
    double milliseconds;
    double nanoseconds;  // a pixel
  };

  // What stands between the opening and the closing of an article.
  struct Card {
    std::string name, title;
    std::string words;
    std::string figures;
  };

  void Time(const Panel& panel);
  void Save(const std::string& name, const Frame& frame) const;
  void OpenCard(const Panel& panel);
  void CloseCard();
  void AddFigures(const Panel& panel, const std::vector<Picture>& pictures, const char* role);
  std::string Image(const std::string& classes, const std::string& alt, const std::string& uri,
                    int width, int height);
  std::string Cover();
  std::string Times() const;

  std::filesystem::path folder_;
  bool pictures_;
  const Scene& scene_;
  std::string contents_, families_;
  std::vector<Row> rows_;
  Card card_;
  std::vector<Frame> covers_;
  std::string coverTitles_;
  std::map<std::string, std::string> images_;  // a picture's URI: the id of the image that has it
};

}  // namespace qvtool::demo

#endif
