// Arithmetic modulo the CRC-32 polynomial, at compile time only: everything here is consteval, so
// no level can end up running another level's copy of it.
//
// ITU-T V.42 (8.1.1.6.2) gives the polynomial
//   P = x^32 + x^26 + x^23 + x^22 + x^16 + x^12 + x^11 + x^10 + x^8 + x^7 + x^5 + x^4 + x^2 + x + 1
// and sends the low bit of a byte first, as the coefficient of the highest power. So polynomials
// are kept reflected: in a word of w bits, bit i is the coefficient of x^(w-1-i).
#ifndef QV_KERNELS_CHECKSUM_CRCPOLYNOMIAL_H
#define QV_KERNELS_CHECKSUM_CRCPOLYNOMIAL_H

#include <stdint.h>

namespace qv::crc {

constexpr uint32_t kPolynomial = 0xEDB88320;  // P without x^32, reflected

// A polynomial of degree below 32, times x, modulo P: x^31 (bit 0) becomes x^32, that is P - x^32.
consteval uint32_t TimesX(uint32_t a) { return (a >> 1) ^ (a & 1 ? kPolynomial : 0); }

// x^n modulo P.
consteval uint32_t PowerOfX(int n) {
  uint32_t power = 0x80000000;
  while (n-- > 0) power = TimesX(power);
  return power;
}

// The factor that moves a 64-bit polynomial `a` up by n bits modulo P. The carry-less product of
// two reflected 64-bit words has 127 bits; read as a reflected 128-bit word, it is a * b * x.
// Hence x^(n-1), in the low coefficients of a 64-bit word; the product's degree is below 64 + 32.
consteval int64_t MoveUp(int n) { return static_cast<int64_t>(uint64_t{PowerOfX(n - 1)} << 32); }

// For distances that depend on a template's argument: Clang before 15 takes a call of a consteval
// function with such an argument for one that is not constant.
template <int n>
consteval int64_t MoveUp() {
  return MoveUp(n);
}

// The same with the product placed 32 coefficients higher in the 128-bit word.
consteval int64_t MoveUpRaised(int n) { return static_cast<int64_t>(PowerOfX(n - 1)); }

// x^-1 modulo P: TimesX, backwards, of x^0.
constexpr uint32_t kInverseOfX = (0x80000000 ^ kPolynomial) << 1 | 1;
static_assert(TimesX(kInverseOfX) == 0x80000000);

// Factors that move each of `count` 16-byte parts up to the last of them, for the low 64 bits in
// memory order and the high ones, and zeros for three parts more.
template <int count>
struct NearFactors {
  int64_t of[2 * (count + 3)] = {};

  consteval NearFactors() {
    uint32_t power = kInverseOfX;  // x^(n-1) as in MoveUp
    for (int i = 2 * count; i-- > 0;) {
      of[i] = static_cast<int64_t>(uint64_t{power} << 32);
      for (int bit = 0; bit < 64; ++bit) power = TimesX(power);
    }
  }
};

// The quotient x^96 / P has the coefficients of x^64 to x^0; this is it without the last one, as a
// reflected 64-bit word that stands for x^64 to x^1. Long division: the remainder is shifted up
// place by place, and every x^32 that leaves it is a coefficient of the quotient.
consteval int64_t Reciprocal() {
  uint32_t remainder = 1;  // x^31, from which the next shift makes the quotient's first coefficient
  uint64_t quotient = 0;
  for (int i = 0; i < 64; ++i) {
    quotient |= static_cast<uint64_t>(remainder & 1) << i;
    remainder = TimesX(remainder);
  }
  return static_cast<int64_t>(quotient);
}

// P - x^32, times x^31, as a reflected 64-bit word.
consteval int64_t PolynomialRaised() {
  return static_cast<int64_t>(uint64_t{kPolynomial} << 1);
}

}  // namespace qv::crc

#endif
