#include "qvAcceleratedLib/X87Precision.h"

#if defined(__i386__)

namespace qv {

// Exceptions are masked by FNSTENV already. FLDENV puts the host's flags back as well: those that
// were raised meanwhile would else trap in a host that lets its exceptions through.
void X87Precision::Enter(Environment& environment) {
  constexpr unsigned short control = 0x027F;  // 53 bits, to the nearest, all exceptions masked
  __asm__ volatile("fnstenv %0" : "=m"(environment));
  __asm__ volatile("fldcw %0" : : "m"(control));
}

void X87Precision::Leave(const Environment& environment) {
  __asm__ volatile("fldenv %0" : : "m"(environment));
}

}  // namespace qv

#endif
