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
  const auto succeeded = [](const char* name) { return Call::Succeeded().count(name) > 0; };
  for (const OperationNames& operation : kOperations)
    EXPECT_TRUE(operation.family != std::string(GetParam().name) || succeeded(operation.name))
        << operation.name;
  for (const char* const function : GetParam().functions)
    EXPECT_TRUE(!function || succeeded(function)) << function;
}

TEST(FuzzFamilies, AreThoseOfAllOperations) {
  for (const OperationNames& operation : kOperations) {
    bool found = false;
    for (const FuzzFamily& family : kFuzzFamilies)
      found |= family.name == std::string(operation.family);
    EXPECT_TRUE(found) << operation.family;
  }
}

}  // namespace
}  // namespace qv::test
