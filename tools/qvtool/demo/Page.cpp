#include "demo/Page.h"

#include <algorithm>
#include <cstdio>

#include "HostInfo.h"
#include "demo/Measure.h"
#include "demo/PageText.h"
#include "demo/Thumbnail.h"
#include "io/FrameStream.h"
#include "io/PngFile.h"

namespace qvtool::demo {
namespace {

// Of pictures in full size, which are looked at once: fast to write matters more than small.
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
  return Escape(ReplaceAll(ReplaceAll(text, "CqvAccLib::", ""), "( ", "("));
}

std::string Slug(const std::string& heading) {
  return ReplaceAll(LowerCase(heading), " ", "-");
}

std::string FullTitle(const Panel& panel) {
  return panel.variant.empty() ? panel.title : panel.title + ": " + panel.variant;
}

std::string HostText() {
  const HostInfo host = DescribeHost();
  return std::string("qvAcceleratedLib ") + QVACCELERATEDLIB_VERSION + " at level " +
         std::string(qv::InfoOf(host.level).name) + ", with at most " +
         std::to_string(host.threadBudget) +
         (host.threadBudget == 1 ? " thread." : " threads.");
}

}  // namespace

Page::Page(std::filesystem::path folder, bool pictures, const Scene& scene)
    : folder_(std::move(folder)), pictures_(pictures), scene_(scene) {
  Save("frame", scene.colour);
  covers_.push_back(Tile(scene.colour));
  coverTitles_ = "The frame";
}

void Page::Begin(const std::string& heading) {
  CloseCard();
  if (!families_.empty()) families_ += "</section>\n";
  const std::string slug = Slug(heading);
  families_ += "<section id=\"" + slug + "\"><h2>" + Escape(heading) + "</h2>\n";
  contents_ += "<a href=\"#" + slug + "\">" + Escape(heading) + "</a>\n";
}

void Page::Add(const Panel& panel) {
  Time(panel);
  if (panel.finish) panel.finish();
  if (panel.title != card_.title) {
    CloseCard();
    OpenCard(panel);
  }
  AddFigures(panel, panel.after, "after");
  rows_.back().card = card_.name;
  if (!panel.cover) return;
  covers_.push_back(Tile(panel.after.back().frame));
  coverTitles_ += "; " + panel.after.back().caption;
}

void Page::Time(const Panel& panel) {
  const double milliseconds = Measure(panel);
  const Frame& result = panel.after.front().frame;
  const double pixels = panel.pixels > 0 ? static_cast<double>(panel.pixels)
                                         : static_cast<double>(result.Width()) * result.Height();
  rows_.push_back({"", FullTitle(panel), milliseconds, milliseconds * 1e6 / pixels});
}

void Page::OpenCard(const Panel& panel) {
  card_ = {panel.name, panel.title, "", ""};
  card_.words = "<h3>" + Escape(panel.title) + "</h3>\n";
  if (!panel.note.empty()) card_.words += "<p class=\"note\">" + Escape(panel.note) + "</p>\n";
  card_.words += "<p class=\"formula\">" + Escape(panel.formula) + "</p>\n<pre>";
  for (const Call& call : panel.calls)
    card_.words += (&call == &panel.calls.front() ? "" : "\n") + CallText(call.text) + ";";
  card_.words += "</pre>\n";
  AddFigures(panel, panel.before, "before");
}

void Page::CloseCard() {
  if (card_.name.empty()) return;
  families_ += "<article class=\"card\" id=\"" + card_.name + "\">" + card_.words +
               "<div class=\"pictures\">\n" + card_.figures + "</div></article>\n";
  card_ = {};
}

void Page::AddFigures(const Panel& panel, const std::vector<Picture>& pictures, const char* role) {
  int number = 0;
  for (const Picture& picture : pictures) {
    const Embedded shown = Embed(picture);
    const std::string caption = Escape(picture.caption);
    card_.figures +=
        std::string("<figure><button>") +
        Image(picture.detail ? "detail" : "", Escape(panel.title) + ": " + caption, shown.uri,
              shown.width * (picture.detail ? kZoom : 1),
              shown.height * (picture.detail ? kZoom : 1)) +
        "</button><figcaption><b>" + role + "</b> " + caption + "</figcaption></figure>\n";
    Save(panel.name + "-" + role + (++number > 1 ? "-" + std::to_string(number) : ""),
         picture.frame);
  }
}

// A picture that the page has already is taken from there by the page's script.
std::string Page::Image(const std::string& classes, const std::string& alt, const std::string& uri,
                        int width, int height) {
  const auto [image, isNew] =
      images_.insert({uri, "picture-" + std::to_string(images_.size() + 1)});
  return "<img class=\"" + classes + "\" width=\"" + std::to_string(width) + "\" height=\"" +
         std::to_string(height) + "\" alt=\"" + alt + "\" " +
         (isNew ? "id=\"" + image->second + "\" src=\"" + uri + "\">"
                : "data-same=\"" + image->second + "\">");
}

void Page::Save(const std::string& name, const Frame& frame) const {
  if (!pictures_) return;
  const std::string path = (folder_ / (name + ".png")).string();
  WriteFile(path, EncodePng(frame, path, kPngLevel));
}

std::string Page::Cover() {
  const Frame sheet = ContactSheet(covers_);
  const Embedded shown = Embed({"cover", sheet}, kCover);
  return "<figure class=\"cover\"><button>" +
         Image("", Escape(coverTitles_), shown.uri, shown.width, shown.height) +
         "</button><figcaption>" + Escape(coverTitles_) + "</figcaption></figure>\n";
}

std::string Page::Times() const {
  double slowest = 1e-9;
  for (const Row& row : rows_) slowest = std::max(slowest, row.nanoseconds);
  std::string text;
  for (const Row& row : rows_)
    text += "<tr><th scope=\"row\"><a href=\"#" + row.card + "\">" + Escape(row.title) +
            "</a></th><td>" + Number(row.milliseconds) + "</td><td>" + Number(row.nanoseconds) +
            "</td><td class=\"bar\"><i style=\"width:" + Number(row.nanoseconds / slowest * 100) +
            "%\"></i></td></tr>\n";
  return text;
}

void Page::Finish() {
  CloseCard();
  families_ += "</section>\n";
  std::string page = kPageText;
  // In place and not ReplaceAll, because some of it is megabytes of pictures.
  const auto fill = [&](const std::string& mark, const std::string& text) {
    page.replace(page.find(mark), mark.size(), text);
  };
  fill("@COVER@", Cover());
  fill("@CONTENTS@", contents_);
  fill("@FAMILIES@", families_);
  fill("@HOST@", Escape(HostText()));
  fill("@TIMES@", Times());
  fill("@ABOUT@", Escape(scene_.about));
  WriteFile((folder_ / "index.html").string(), {page.begin(), page.end()});
}

}  // namespace qvtool::demo
