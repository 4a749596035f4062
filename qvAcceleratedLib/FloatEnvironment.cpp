#include "qvAcceleratedLib/FloatEnvironment.h"

#include "dispatch/FloatControl.h"
#include "dispatch/VariantIndex.h"

#if defined(__i386__)

namespace qv {

// Exceptions are masked by FNSTENV already. FLDENV puts the host's flags back as well: those that
// were raised meanwhile would otherwise trap in a host that lets its exceptions through.
void FloatEnvironment::Enter() {
  constexpr unsigned kX87Default = 0x027F;  // 53 bits, to the nearest, all exceptions masked
  __asm__ volatile("fnstenv %0" : "=m"(x87_));
  SetX87Control(kX87Default, 0xFFFF);
  if (HasSse) control_ = ResetMxcsr();
}

void FloatEnvironment::Leave() {
  __asm__ volatile("fldenv %0" : : "m"(x87_));
  if (HasSse) SetMxcsr(control_, ~0u);
}

}  // namespace qv

#endif
