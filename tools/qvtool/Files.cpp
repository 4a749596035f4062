#include "Files.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "Arguments.h"
#include "Pipeline.h"
#include "Report.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {
namespace {

namespace fs = std::filesystem;

// One IN and its OUT.
struct Job {
  InputSpec input;
  OutputSpec output;
};

Job MakeJob(const Files& files, const std::string& from, const std::string& to) {
  Job job{files.input, files.output};
  job.input.path = from;
  job.output.path = to;
  return job;
}

void RunJob(Job job, const MakeChain& make, bool showProgress) {
  Chain chain = make();
  chain.Begin(job.input, job.output);
  ForEachFrame(job.input, job.output, chain, showProgress);
}

// The name that IN keeps in the folder, with another extension if that is not of the format.
std::string TargetOf(const Files& files, const std::string& path) {
  fs::path name = fs::path(path).filename();
  if (path == "-" || name.empty() || name == "." || name == "..")
    throw UsageError(path + ": is not the name of a file; --out keeps the names");
  const auto format = files.output.format;
  if (format && FormatOfName(name) != format) name.replace_extension(ExtensionOf(*format));
  return fs::path(files.folder) / name;
}

std::vector<Job> JobsIntoFolder(const Files& files) {
  std::vector<Job> jobs;
  std::map<std::string, std::string> sources;  // by what they become
  for (const std::string& path : files.paths) {
    jobs.push_back(MakeJob(files, path, TargetOf(files, path)));
    const OutputSpec& output = jobs.back().output;
    OutputFormat(output, FileFormat::Raw);  // an extension that is unknown
    const auto [other, isNew] = sources.emplace(output.path, path);
    if (!isNew)
      throw UsageError(other->second + " and " + path + " would both become " + output.path);
  }
  return jobs;
}

void MakeFolder(const std::string& folder) {
  std::error_code problem;
  fs::create_directories(folder, problem);
  if (problem) throw Error(folder + ": cannot create the folder: " + problem.message());
}

// False when it failed, which is reported under the name of IN.
bool Succeeds(const Job& job, const MakeChain& make) {
  std::string what = "out of memory";
  try {
    RunJob(job, make, false);
    return true;
  } catch (const std::bad_alloc&) {
  } catch (const std::exception& error) {
    what = error.what();
  }
  Report(what.starts_with(job.input.path) ? what : job.input.path + ": " + what);
  return false;
}

void RunJobs(const std::vector<Job>& jobs, const MakeChain& make, int atOnce) {
  std::atomic<std::size_t> next = 0;
  std::atomic<bool> allSucceed = true;
  const auto work = [&] {
    qv_set_thread_limit(std::max(1, qv_threads() / atOnce));  // the bands of a frame: what is left
    for (std::size_t i; (i = next++) < jobs.size();)
      if (!Succeeds(jobs[i], make)) allSucceed = false;
  };
  std::vector<std::thread> others;
  try {
    for (int i = 1; i < atOnce; ++i) others.emplace_back(work);
  } catch (const std::system_error&) {  // then fewer do it
  }
  work();
  for (std::thread& other : others) other.join();
  if (!allSucceed) throw Reported();
}

}  // namespace

void Files::Run(const MakeChain& make) const {
  if (folder.empty()) {
    if (paths.size() == 1) throw UsageError("OUT is wanted as well, the file to write");
    if (paths.size() != 2)
      throw UsageError(std::to_string(paths.size()) +
                       " files given; several IN are written into a folder: --out FOLDER");
    RunJob(MakeJob(*this, paths[0], paths[1]), make, true);
    return;
  }
  const std::vector<Job> all = JobsIntoFolder(*this);
  Job first = all.front();
  make().Begin(first.input, first.output);  // what is wrong with the arguments, once
  MakeFolder(folder);
  const std::size_t wanted = static_cast<std::size_t>(jobs == 0 ? qv_threads() : jobs);
  RunJobs(all, make, static_cast<int>(std::min(wanted, all.size())));
}

std::shared_ptr<Files> AddFiles(CLI::App& app, const std::string& name) {
  auto files = std::make_shared<Files>();
  app.add_option(name, files->paths,
                 "Picture, Y4M stream, headerless frames, frame-%04d.png for numbered pictures, or "
                 "- for standard input; and the file to write: .png, .jpg, .ppm, .pgm, .y4m, .raw "
                 "or .yuv, frame-%04d.png for a picture of every frame, or - for standard output. "
                 "With --out, all are IN")
      ->required()
      ->type_name("");
  CLI::Option* out = app.add_option("--out", files->folder,
                                    "Write every IN into this folder, under its own name")
                         ->type_name("FOLDER");
  AddInteger(app, "--jobs", files->jobs, 0, 256,
             "With --out, so many files at once (1); 0: as many as there are processors")
      ->needs(out);
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
