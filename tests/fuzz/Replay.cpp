// Runs the inputs of corpus files (see Corpus.h).
//
//   fuzzreplay FAMILY FILE...              runs every line
//   fuzzreplay --describe FAMILY FILE...   and says before each call what it is
//   fuzzreplay --unpack DIRECTORY FILE...  writes each line as a file, as libFuzzer wants them
//   fuzzreplay --pack FILE...              prints such files as lines, for a corpus
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/Call.h"
#include "tests/fuzz/Corpus.h"

namespace {

using qv::test::ForEachInput;
using Bytes = std::vector<std::uint8_t>;

int Run(const qv::test::FuzzFamily& family, bool describe, int files, char** file) {
  int all = 0;
  for (int i = 0; i < files; ++i) {
    const int count = ForEachInput(file[i], [&](const Bytes& bytes, int number) {
      // Said before the call: a crash leaves it as the last line.
      std::fprintf(stderr, "\r%s:%d", file[i], number);
      qv::test::Input in(bytes.data(), bytes.size());
      if (describe) std::fputs("\n", stderr), in.PrintAsDrawn(stderr);
      family.run(in);
    });
    if (count < 1) return 1;  // an empty corpus tests nothing
    all += count;
  }
  std::fprintf(stderr, "\n");
  std::printf("%s: %d inputs\n", family.name, all);
  return 0;
}

int Unpack(const char* directory, int files, char** file) {
  for (int i = 0; i < files; ++i) {
    const int count = ForEachInput(file[i], [&](const Bytes& bytes, int number) {
      const std::string name =
          std::string(directory) + "/" + std::to_string(i) + "-" + std::to_string(number);
      std::ofstream(name, std::ios::binary)
          .write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    });
    if (count < 0) return 1;
  }
  return 0;
}

int Pack(int files, char** file) {
  for (int i = 0; i < files; ++i) {
    std::ifstream in(file[i], std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    for (const char c : bytes) std::printf("%02x", static_cast<unsigned char>(c));
    std::printf("\n");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  if (first == "--unpack" && argc > 3) return Unpack(argv[2], argc - 3, argv + 3);
  if (first == "--pack") return Pack(argc - 2, argv + 2);
  const bool describe = first == "--describe";
  const int at = describe ? 2 : 1;
  for (const auto& family : qv::test::kFuzzFamilies)
    if (argc > at + 1 && std::strcmp(family.name, argv[at]) == 0)
      return Run(family, describe, argc - at - 1, argv + at + 1);
  std::fprintf(stderr,
               "usage: fuzzreplay [--describe] FAMILY FILE... | --unpack DIRECTORY FILE... | "
               "--pack FILE...\n");
  return 2;
}
