// qvtool checksum: the checksums of files, in the form of sha256sum and its relatives.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>

#include "Command.h"
#include "Report.h"
#include "io/ByteSource.h"
#include "io/OutputFile.h"
#include "io/Status.h"

namespace qvtool {
namespace {

namespace fs = std::filesystem;

struct Algorithm {
  const char* name;
  unsigned int fresh;
  decltype(CqvAccLib::qvCRC32)* checksum;
};

constexpr Algorithm kCrc32{"CRC32", 0, CqvAccLib::qvCRC32};
constexpr Algorithm kAdler32{"ADLER32", 1, CqvAccLib::qvAdler32};

struct Options {
  std::vector<std::string> files;
  const Algorithm* algorithm = &kCrc32;
  bool tag = false;
  bool check = false;
};

// Pieces of this size stay in the cache between reading and summing.
constexpr std::size_t kPiece = 256 << 10;

unsigned int ChecksumOf(const std::string& path, const Algorithm& algorithm) {
  ByteSource source(path);
  std::vector<unsigned char> piece(kPiece);
  unsigned int value = algorithm.fresh;
  while (const std::size_t bytes = source.Read(piece.data(), piece.size()))
    Check(algorithm.name, algorithm.checksum(CqvAccLib::OneChannel, piece.data(),
                                             static_cast<int>(bytes), &value));
  return value;
}

std::string Hex(unsigned int value) {
  char digits[9];
  std::snprintf(digits, sizeof digits, "%08x", value);
  return digits;
}

// The files of a folder and of those in it, by name; of a file, itself.
std::vector<std::string> FilesIn(const std::string& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(path))
    if (!entry.is_directory()) files.push_back(entry.path());
  if (files.empty()) throw Error(path + ": holds no files");
  std::sort(files.begin(), files.end());
  return files;
}

// None when it throws, which is reported.
template <class Function>
auto Try(const Function& function) -> std::optional<decltype(function())> {
  try {
    return function();
  } catch (const std::runtime_error& error) {
    Report(error.what());
    return {};
  }
}

std::optional<std::string> TryChecksumOf(const std::string& file, const Algorithm& algorithm) {
  return Try([&] { return Hex(ChecksumOf(file, algorithm)); });
}

void Print(const Options& options) {
  OutputFile out("-");
  bool allRead = true;
  for (const std::string& path : options.files) {
    const auto files = Try([&] { return FilesIn(path); });
    allRead &= files.has_value();
    for (const std::string& file : files.value_or(std::vector<std::string>())) {
      const auto value = TryChecksumOf(file, *options.algorithm);
      allRead &= value.has_value();
      if (value)
        out.Write(options.tag ? options.algorithm->name + (" (" + file + ") = ") + *value + "\n"
                              : *value + "  " + file + "\n");
    }
  }
  out.Commit();
  if (!allRead) throw Reported();
}

// A line that Print writes, in either form.
struct Expectation {
  const Algorithm* algorithm;
  std::string file;
  std::string value;
};

bool IsHex(std::string_view text) {
  for (const char c : text)
    if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
  return text.size() == 8;
}

bool Parse(const std::string& line, const Options& options, Expectation& expected) {
  for (const Algorithm* algorithm : {&kCrc32, &kAdler32}) {
    const std::string before = std::string(algorithm->name) + " (", between = ") = ";
    if (line.rfind(before, 0) != 0 || line.size() < before.size() + between.size() + 8) continue;
    const std::size_t end = line.size() - 8 - between.size();
    if (line.compare(end, between.size(), between) != 0) continue;
    expected = {algorithm, line.substr(before.size(), end - before.size()),
                line.substr(line.size() - 8)};
    return IsHex(expected.value) && !expected.file.empty();
  }
  if (line.size() < 11 || line.compare(8, 2, "  ") != 0) return false;
  expected = {options.algorithm, line.substr(10), line.substr(0, 8)};
  return IsHex(expected.value);
}

void Verify(const Options& options) {
  OutputFile out("-");
  long long checked = 0, differing = 0;
  for (const std::string& list : options.files) {
    ByteSource source(list);
    std::string line;
    for (int number = 1; !source.AtEnd(); ++number) {
      source.ReadLine(line, 1 << 16);
      Expectation expected;
      if (!Parse(line, options, expected))
        throw Error(source.Name() + ": line " + std::to_string(number) +
                    ": wanted is a checksum of eight hexadecimal digits, two spaces and a file");
      for (char& c : expected.value) c = static_cast<char>(std::tolower(c));
      const auto value = TryChecksumOf(expected.file, *expected.algorithm);
      const bool same = value == expected.value;
      out.Write(expected.file + (same    ? ": OK\n"
                                 : value ? ": FAILED\n"
                                         : ": FAILED open or read\n"));
      ++checked;
      differing += !same;
    }
  }
  if (checked == 0) throw Error(options.files.front() + ": holds no checksums");
  out.Commit();
  if (differing != 0)
    throw Error(std::to_string(differing) + " of " + std::to_string(checked) +
                " checksums do not match");
}

void Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("FILE", options->files,
                 "Files of any length, and folders with all in them; - (default) is standard "
                 "input")
      ->type_name("");
  AddChoice(app, "--algorithm", options->algorithm, {{"crc32", &kCrc32}, {"adler32", &kAdler32}},
            "CRC-32 as in gzip and PNG (default), or Adler-32 as in zlib");
  app.add_flag("--tag", options->tag, "Name the algorithm in each line: CRC32 (FILE) = value");
  app.add_flag("--check", options->check,
               "FILE is a list that this command wrote: compare the files in it");
  app.footer(
      "Prints a line per file: eight hexadecimal digits, two spaces, its name. What cannot be\n"
      "read is reported, and the others go on.\n"
      "  qvtool checksum photo.jpg logo.png");
  app.callback([options] {
    if (options->files.empty()) options->files = {"-"};
    options->check ? Verify(*options) : Print(*options);
  });
}

const Command command{"checksum", "Print or check the CRC-32 or Adler-32 of files", Configure};

}  // namespace
}  // namespace qvtool
