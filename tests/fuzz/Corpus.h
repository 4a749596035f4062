// The files of a corpus: an input a line in hexadecimal; text after # is a remark.
#ifndef QV_TESTS_FUZZ_CORPUS_H
#define QV_TESTS_FUZZ_CORPUS_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace qv::test {

// The bytes of a line; false if it is not a line of a corpus.
inline bool ParseInput(std::string line, std::vector<std::uint8_t>& bytes) {
  bytes.clear();
  line.resize(std::min(line.size(), line.find('#')));
  while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
  if (line.size() % 2 != 0) return false;
  for (std::size_t i = 0; i < line.size(); i += 2) {
    unsigned value = 0;
    for (const char c : {line[i], line[i + 1]}) {
      const char* const digits = "0123456789abcdef";
      const char* const digit = std::strchr(digits, c);
      if (!digit || !c) return false;
      value = value * 16 + static_cast<unsigned>(digit - digits);
    }
    bytes.push_back(static_cast<std::uint8_t>(value));
  }
  return true;
}

// Calls visit(bytes, line number) for every input of a file; how many they are, or -1 if the file
// is no corpus.
template <class Visit>
int ForEachInput(const char* file, const Visit& visit) {
  std::ifstream in(file);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", file);
    return -1;
  }
  int count = 0, number = 0;
  std::vector<std::uint8_t> bytes;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (!ParseInput(line, bytes)) {
      std::fprintf(stderr, "%s:%d: not an input\n", file, number);
      return -1;
    }
    if (bytes.empty()) continue;
    visit(bytes, number);
    ++count;
  }
  return count;
}

}  // namespace qv::test

#endif
