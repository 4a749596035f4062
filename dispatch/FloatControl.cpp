#include "dispatch/FloatControl.h"

#include "dispatch/VariantIndex.h"

namespace qv {

// Loading a control register empties the pipeline, so what would not change it is left out.

#if defined(__i386__) || defined(__x86_64__)

namespace {

constexpr unsigned Merged(unsigned old, unsigned value, unsigned mask) {
  return (old & ~mask) | (value & mask);
}

}  // namespace

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

void Pause() { __builtin_ia32_pause(); }

#endif

#if defined(__i386__)

// At a call no value lies on the register stack, whose height is part of what is stored and put
// back. Exceptions are masked by FNSTENV already. FLDENV puts the host's flags back as well: those
// that were raised meanwhile would otherwise trap in a host that lets its exceptions through.

FloatState EnterDefaultFloatState() {
  constexpr unsigned kX87Default = 0x027F;  // 53 bits, to the nearest, all exceptions masked
  FloatState before;
  __asm__ volatile("fnstenv %0" : "=m"(before.x87));
  SetX87Control(kX87Default, 0xFFFF);
  before.mxcsr = HasSse ? ResetMxcsr() : kMxcsrDefault;
  return before;
}

void LeaveDefaultFloatState(const FloatState& before) {
  __asm__ volatile("fldenv %0" : : "m"(before.x87));
  if (HasSse) SetMxcsr(before.mxcsr, ~0u);
}

#elif defined(_WIN64)

// The runtime library computes sines and cosines in x87 registers there, with all of their bits.
FloatState EnterDefaultFloatState() { return {SetX87Control(0x037F, 0xFFFF), ResetMxcsr()}; }

void LeaveDefaultFloatState(const FloatState& before) {
  SetMxcsr(before.mxcsr, ~0u);
  SetX87Control(before.x87Control, 0xFFFF);
}

#elif defined(__x86_64__)

FloatState EnterDefaultFloatState() { return {ResetMxcsr()}; }

void LeaveDefaultFloatState(const FloatState& before) { SetMxcsr(before.mxcsr, ~0u); }

#elif defined(__aarch64__)

namespace {

// FPCR: exceptions trapped (bits 8 to 12 and 15), rounding (22, 23), flush to zero (24), default
// NaN (25). With 0 arithmetic is that of the default MXCSR.
uint64_t SetControl(uint64_t next) {
  uint64_t old;
  __asm__ volatile("mrs %0, fpcr" : "=r"(old));
  if (next != old) __asm__ volatile("msr fpcr, %0" : : "r"(next));
  return old;
}

}  // namespace

FloatState EnterDefaultFloatState() {
  uint64_t status;
  __asm__ volatile("mrs %0, fpsr" : "=r"(status));
  return {SetControl(0), status};
}

// Restoring a raised flag does not trap: only an operation that raises it does.
void LeaveDefaultFloatState(const FloatState& before) {
  __asm__ volatile("msr fpsr, %0" : : "r"(before.status));
  SetControl(before.control);
}

uint64_t ReadTimeStamp() {
  uint64_t ticks;
  __asm__ volatile("mrs %0, cntvct_el0" : "=r"(ticks));
  return ticks;
}

void Pause() { __asm__ volatile("yield"); }

#endif

}  // namespace qv
