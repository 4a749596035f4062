// qvtool demo: every operation on one frame, as a page.
#include <cstdio>
#include <filesystem>

#include "Command.h"
#include "demo/Page.h"
#include "demo/Panel.h"
#include "demo/Scene.h"

namespace qvtool {
namespace {

struct Options {
  std::string folder;
  std::string input;
  bool pictures = false;
};

void Run(const Options& options) {
  const demo::Scene scene =
      options.input.empty() ? demo::TestCardScene() : demo::FileScene(options.input);
  std::error_code problem;
  std::filesystem::create_directories(options.folder, problem);
  if (problem) throw Error(options.folder + ": cannot create the folder: " + problem.message());
  if (!std::filesystem::is_directory(options.folder))
    throw Error(options.folder + ": is not a folder; wanted is the folder to write to");
  demo::Page page(options.folder, options.pictures, scene);
  for (const demo::PanelSource* source : demo::AllPanels()) {
    page.Begin(source->heading);
    for (demo::MakePanels* const make : source->makers) make(scene, page);
  }
  page.Finish();
  std::printf("%s shows %d operations\n",
              (std::filesystem::path(options.folder) / "index.html").c_str(), page.Panels());
}

void Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("OUT", options->folder, "Folder for index.html")->required();
  app.add_option("--input", options->input,
                 "A picture or Y4M clip of your own instead of the test card; - for standard input")
      ->type_name("FILE");
  app.add_flag("--pictures", options->pictures, "All pictures in full size beside it, as PNG");
  app.footer(
      "index.html holds its pictures and needs nothing else.\n"
      "  qvtool demo page --input clip.y4m");
  app.callback([options] { Run(*options); });
}

const Command command{"demo", "Run every operation on a frame and write a page that shows them",
                      Configure};

}  // namespace
}  // namespace qvtool
