#include "dispatch/FloatControl.h"

namespace qv {

namespace {

constexpr unsigned Merged(unsigned old, unsigned value, unsigned mask) {
  return (old & ~mask) | (value & mask);
}

}  // namespace

// Loading a control register empties the pipeline, so what would not change it is left out.

unsigned SetX87Control(unsigned value, unsigned mask) {
  unsigned short old;
  __asm__ volatile("fnstcw %0" : "=m"(old));
  const auto next = static_cast<unsigned short>(Merged(old, value, mask));
  if (next != old) __asm__ volatile("fldcw %0" : : "m"(next));
  return old;
}

unsigned ReadX87Status(bool clearExceptions) {
  unsigned short status;
  __asm__ volatile("fnstsw %0" : "=m"(status));
  if (clearExceptions) __asm__ volatile("fnclex");
  return status;
}

unsigned SetMxcsr(unsigned value, unsigned mask) {
  unsigned old;
  __asm__ volatile("stmxcsr %0" : "=m"(old));
  const unsigned next = Merged(old, value, mask);
  if (next != old) __asm__ volatile("ldmxcsr %0" : : "m"(next));
  return old;
}

unsigned ResetMxcsr() { return SetMxcsr(kMxcsrDefault, ~0u); }

uint64_t ReadTimeStamp() {
  uint32_t low, high;
  __asm__ volatile("rdtsc" : "=a"(low), "=d"(high));
  return (static_cast<uint64_t>(high) << 32) | low;
}

}  // namespace qv
