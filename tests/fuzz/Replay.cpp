// Runs the inputs of corpus files (see Corpus.h).
//
//   fuzzreplay FAMILY FILE...              runs every line
//   fuzzreplay --describe FAMILY FILE...   and says before each call what it is
#include <cstdio>
#include <cstring>
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

}  // namespace

int main(int argc, char** argv) {
  const bool describe = argc > 1 && std::strcmp(argv[1], "--describe") == 0;
  const int at = describe ? 2 : 1;
  for (const auto& family : qv::test::kFuzzFamilies)
    if (argc > at + 1 && std::strcmp(family.name, argv[at]) == 0)
      return Run(family, describe, argc - at - 1, argv + at + 1);
  std::fprintf(stderr, "usage: fuzzreplay [--describe] FAMILY FILE...\n");
  return 2;
}
