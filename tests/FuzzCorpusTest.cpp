// The fuzzers' corpus: each call has the documented status, worked out again by its family, and the
// same bytes at every level and on any number of bands. A fault ends the process with a report.
#include <gtest/gtest.h>

#include "tests/fuzz/Call.h"
#include "tests/fuzz/Corpus.h"

namespace qv::test {
namespace {

class FuzzCorpus : public testing::TestWithParam<FuzzFamily> {};
INSTANTIATE_TEST_SUITE_P(Families, FuzzCorpus, testing::ValuesIn(kFuzzFamilies),
                         [](const auto& info) { return info.param.name; });

TEST_P(FuzzCorpus, HoldsNoFault) {
  const std::string file = QV_FUZZ_CORPUS + std::string("/") + GetParam().name + ".txt";
  const int count = ForEachInput(file.c_str(), [](const auto& bytes, int) {
    Input in(bytes.data(), bytes.size());
    GetParam().run(in);
  });
  EXPECT_GT(count, 20) << file;
}

}  // namespace
}  // namespace qv::test
