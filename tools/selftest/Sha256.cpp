#include "tools/selftest/Sha256.h"

namespace qv::selftest {

namespace {

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr uint32_t kRound[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t Turn(uint32_t x, int n) { return x >> n | x << (32 - n); }

}  // namespace

void Sha256::Add(const void* data, size_t size) {
  const auto* const p = static_cast<const unsigned char*>(data);
  for (size_t i = 0; i < size; ++i) AddByte(p[i]);
}

void Sha256::Add(long long number) {
  for (int shift = 0; shift < 64; shift += 8)
    AddByte(static_cast<unsigned char>(static_cast<uint64_t>(number) >> shift));
}

void Sha256::AddByte(unsigned char byte) {
  ++bytes_;
  block_[used_++] = byte;
  if (used_ == 64) Compress();
}

void Sha256::Compress() {
  uint32_t w[64];
  for (int i = 0; i < 16; ++i)
    w[i] = uint32_t{block_[4 * i]} << 24 | uint32_t{block_[4 * i + 1]} << 16 |
           uint32_t{block_[4 * i + 2]} << 8 | block_[4 * i + 3];
  for (int i = 16; i < 64; ++i) {
    const uint32_t a = w[i - 15], b = w[i - 2];
    w[i] = w[i - 16] + (Turn(a, 7) ^ Turn(a, 18) ^ a >> 3) + w[i - 7] +
           (Turn(b, 17) ^ Turn(b, 19) ^ b >> 10);
  }
  uint32_t s[8];
  for (int i = 0; i < 8; ++i) s[i] = hash_[i];
  for (int i = 0; i < 64; ++i) {
    const uint32_t choice = (s[4] & s[5]) ^ (~s[4] & s[6]);
    const uint32_t majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
    const uint32_t first =
        s[7] + (Turn(s[4], 6) ^ Turn(s[4], 11) ^ Turn(s[4], 25)) + choice + kRound[i] + w[i];
    const uint32_t second = (Turn(s[0], 2) ^ Turn(s[0], 13) ^ Turn(s[0], 22)) + majority;
    for (int k = 7; k > 0; --k) s[k] = s[k - 1];
    s[4] += first;
    s[0] = first + second;
  }
  for (int i = 0; i < 8; ++i) hash_[i] += s[i];
  used_ = 0;
}

void Sha256::Finish(char* text) {
  const uint64_t bits = bytes_ * 8;
  AddByte(0x80);
  while (used_ != 56) AddByte(0);
  for (int shift = 56; shift >= 0; shift -= 8) AddByte(static_cast<unsigned char>(bits >> shift));
  for (const uint32_t word : hash_)
    for (int shift = 28; shift >= 0; shift -= 4) *text++ = "0123456789abcdef"[word >> shift & 15];
  *text = 0;
}

}  // namespace qv::selftest
