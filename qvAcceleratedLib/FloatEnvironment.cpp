#include "qvAcceleratedLib/FloatEnvironment.h"

#include "dispatch/VariantIndex.h"

#if defined(__i386__)

namespace qv {

// Exceptions are masked by FNSTENV already. FLDENV puts the host's flags back as well: those that
// were raised meanwhile would else trap in a host that lets its exceptions through.
void FloatEnvironment::Enter() {
  constexpr unsigned short x87Default = 0x027F;  // 53 bits, to the nearest, all exceptions masked
  __asm__ volatile("fnstenv %0" : "=m"(x87_));
  __asm__ volatile("fldcw %0" : : "m"(x87Default));
  if (VariantIndex == 0) return;  // no SSE
  constexpr unsigned sseDefault = 0x1F80;
  __asm__ volatile("stmxcsr %0" : "=m"(control_));
  __asm__ volatile("ldmxcsr %0" : : "m"(sseDefault));
}

void FloatEnvironment::Leave() {
  __asm__ volatile("fldenv %0" : : "m"(x87_));
  if (VariantIndex != 0) __asm__ volatile("ldmxcsr %0" : : "m"(control_));
}

}  // namespace qv

#endif
