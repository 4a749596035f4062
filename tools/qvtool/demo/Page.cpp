#include "demo/Page.h"

#include <algorithm>
#include <cstdio>

#include "HostInfo.h"
#include "demo/PageText.h"
#include "io/FrameStream.h"
#include "io/PngFile.h"

namespace qvtool::demo {
namespace {

// The pictures are looked at once: fast to write matters more than small.
constexpr int kPngLevel = 2;

std::string Escape(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string ReplaceAll(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

// Three significant digits.
std::string Number(double value) {
  char text[32];
  int decimals = 2;
  for (double scaled = value; scaled >= 10 && decimals > 0; scaled /= 10) --decimals;
  for (double scaled = value; scaled < 1 && decimals < 5; scaled *= 10) ++decimals;
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

// The call as a reader would write it inside the class's scope.
std::string CallText(const std::string& text) {
  return Escape(ReplaceAll(text, "CqvAccLib::", ""));
}

}  // namespace

Page::Page(std::filesystem::path folder, const Scene& scene)
    : folder_(std::move(folder)), scene_(scene) {
  saved_ = {{&scene.colour, "frame-colour.png"},
            {&scene.later, "frame-later.png"},
            {&scene.woven, "frame-interlaced.png"},
            {&scene.grey, "frame-grey.png"},
            {&scene.mask, "frame-mask.png"}};
}

void Page::Begin(const std::string& heading) {
  if (open_) cards_ += "</div></section>\n";
  cards_ += "<section><h2>" + Escape(heading) + "</h2><div class=\"cards\">\n";
  open_ = true;
}

std::string Page::Save(const std::string& name, const Frame& frame) {
  const auto scenePicture = saved_.find(&frame);
  const std::string file = scenePicture != saved_.end() ? scenePicture->second : name;
  const std::string path = (folder_ / file).string();
  if (scenePicture == saved_.end() || !embedded_.contains(&frame))
    WriteFile(path, EncodePng(frame, path, kPngLevel));
  return file;
}

std::string Page::Figure(const Panel& panel, const Picture& picture, const char* role,
                         std::size_t number) {
  std::string name = panel.name + "-" + role;
  if (number > 1) name += "-" + std::to_string(number);
  const std::string file = Save(name + ".png", picture.frame);
  Embedded shown;
  const bool cached = !picture.detail && saved_.contains(&picture.frame);
  if (cached && embedded_.contains(&picture.frame)) {
    shown = embedded_[&picture.frame];
  } else {
    shown = Embed(picture);
    if (cached) embedded_[&picture.frame] = shown;
  }
  std::string classes = picture.detail ? "detail" : "";
  if (picture.frame.GetLayout() == Layout::Bgra) classes += " alpha";
  const std::string caption = Escape(picture.caption);
  return "<figure><img class=\"" + classes + "\" width=\"" + std::to_string(shown.width) +
         "\" height=\"" + std::to_string(shown.height) + "\" alt=\"" + Escape(panel.title) + ": " +
         caption + "\" data-file=\"" + file + "\" src=\"" + shown.uri + "\"><figcaption><b>" +
         role + "</b> " + caption + "</figcaption></figure>\n";
}

void Page::Add(const Panel& panel) {
  const Timing timing = Measure(panel);
  if (panel.finish) panel.finish();
  const Frame& result = panel.after.front().frame;
  const double pixels = panel.pixels > 0 ? static_cast<double>(panel.pixels)
                                         : static_cast<double>(result.Width()) * result.Height();
  const double nanoseconds = timing.milliseconds * 1e6 / pixels;
  rows_.push_back({panel.name, panel.title, timing.milliseconds, nanoseconds});

  cards_ += "<article class=\"card\" id=\"" + panel.name + "\"><h3>" + Escape(panel.title) +
            "</h3>\n<p class=\"formula\">" + Escape(panel.formula) + "</p>\n";
  if (!panel.note.empty()) cards_ += "<p class=\"note\">" + Escape(panel.note) + "</p>\n";
  cards_ += "<pre>";
  for (const Call& call : panel.calls)
    cards_ += (&call == &panel.calls.front() ? "" : "\n") + CallText(call.text) + ";";
  cards_ += "</pre>\n<p class=\"numbers\"><span><b>" + Number(timing.milliseconds) +
            "</b> ms</span><span><b>" + Number(nanoseconds) +
            "</b> ns per pixel</span><span class=\"runs\">fastest of " +
            std::to_string(timing.runs) + " runs</span></p>\n<div class=\"pictures\">\n";
  std::size_t number = 0;
  for (const Picture& picture : panel.before) cards_ += Figure(panel, picture, "before", ++number);
  number = 0;
  for (const Picture& picture : panel.after) cards_ += Figure(panel, picture, "after", ++number);
  cards_ += "</div></article>\n";
}

std::string Page::Summary() const {
  double slowest = 0;
  for (const Row& row : rows_) slowest = std::max(slowest, row.nanoseconds);
  std::string text;
  for (const Row& row : rows_)
    text += "<tr><th scope=\"row\"><a href=\"#" + row.name + "\">" + Escape(row.title) +
            "</a></th><td>" + Number(row.milliseconds) + "</td><td>" + Number(row.nanoseconds) +
            "</td><td class=\"bar\"><i style=\"width:" +
            Number(row.nanoseconds / std::max(slowest, 1e-9) * 100) + "%\"></i></td></tr>\n";
  return text;
}

std::string Page::Chips() const {
  const HostInfo host = DescribeHost();
  std::string text;
  const auto add = [&](const std::string& label, const std::string& value) {
    text += "<li><span>" + label + "</span> " + Escape(value) + "</li>";
  };
  add("Frame", scene_.about);
  add("Level", qv::InfoOf(host.level).name);
  add("Threads", std::to_string(host.threadBudget));
  add("Processor", host.cpuClass);
  add("Version", QVACCELERATEDLIB_VERSION);
  return text;
}

void Page::Finish() {
  if (open_) cards_ += "</div></section>\n";
  std::string page = kPageText;
  page = ReplaceAll(page, "@CHIPS@", Chips());
  page = ReplaceAll(page, "@SUMMARY@", Summary());
  // Last and in place, because it is megabytes of pictures.
  const std::string mark = "@CARDS@";
  page.replace(page.find(mark), mark.size(), cards_);
  WriteFile((folder_ / "index.html").string(), {page.begin(), page.end()});
}

}  // namespace qvtool::demo
