// SHA-256 (FIPS 180-4), short rather than fast.
#ifndef QV_TOOLS_SELFTEST_SHA256_H
#define QV_TOOLS_SELFTEST_SHA256_H

#include <stddef.h>
#include <stdint.h>

namespace qv::selftest {

class Sha256 {
 public:
  void Add(const void* data, size_t size);
  // A number as eight bytes, the lowest first, on every platform.
  void Add(long long number);

  // The digest in hexadecimal, ending with a null; nothing can be added after it.
  static constexpr int kDigits = 64;
  void Finish(char* text);

 private:
  void AddByte(unsigned char byte);
  void Compress();

  uint32_t hash_[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                            0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  unsigned char block_[64];
  size_t used_ = 0;
  uint64_t bytes_ = 0;
};

}  // namespace qv::selftest

#endif
