#include "Files.h"

#include <utility>

#include "Arguments.h"
#include "Pipeline.h"

namespace qvtool {

void Files::Run(const MakeChain& make) const {
  if (paths.size() != 2)
    throw UsageError(paths.size() == 1 ? "OUT is wanted as well, the file to write"
                                       : "IN and OUT are wanted, and " + std::to_string(
                                             paths.size()) + " files given");
  InputSpec in = input;
  OutputSpec out = output;
  in.path = paths[0];
  out.path = paths[1];
  Chain chain = make();
  chain.Begin(in, out);
  ForEachFrame(in, out, chain);
}

std::shared_ptr<Files> AddFiles(CLI::App& app, const std::string& name) {
  auto files = std::make_shared<Files>();
  app.add_option(name, files->paths,
                 "Picture, Y4M stream, headerless frames, frame-%04d.png for numbered pictures, or "
                 "- for standard input; and the file to write: .png, .jpg, .ppm, .pgm, .y4m, .raw "
                 "or .yuv, frame-%04d.png for a picture of every frame, or - for standard output")
      ->required()
      ->type_name("");
  AddRawInputOptions(app, files->input);
  AddOutputOptions(app, files->output);
  return files;
}

MakeChain OneStep(MakeStep make) {
  return [make = std::move(make)] {
    Chain chain;
    chain.Append("", make());
    return chain;
  };
}

}  // namespace qvtool
