// The entry of a libFuzzer program: one family each.
#include <cstring>

#include "tests/fuzz/Call.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const auto& family : qv::test::kFuzzFamilies)
    if (std::strcmp(family.name, QV_FUZZ_FAMILY) == 0) {
      qv::test::Input in(data, size);
      family.run(in);
    }
  return 0;
}
