// Processor classification: what CPUID says -> CpuCode -> VariantIndex.
//
// Everything but ReadCpuidLeaves() and SelectProcessorVariant() is a pure function of the words
// that the processor returned, so that any processor can be described without owning it.
#ifndef QV_DISPATCH_PROCESSORINFO_H
#define QV_DISPATCH_PROCESSORINFO_H

#include <stddef.h>
#include <stdint.h>

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Sub-leaves of the two leaves that describe caches, one a cache.
constexpr int kCacheLeaves = 8;

struct CpuidRegisters {
  uint32_t eax;
  uint32_t ebx;
  uint32_t ecx;
  uint32_t edx;
};

// The words that the classification starts from, as the processor returned them. A leaf beyond the
// processor's highest holds whatever CPUID answered; the functions below check before they look.
struct CpuidLeaves {
  bool hasCpuid;                // the instruction exists; without it every other field is 0
  CpuidRegisters leaf0;         // highest basic leaf, vendor
  CpuidRegisters leaf1;         // family, model, stepping, features
  CpuidRegisters leaf2;         // cache descriptors
  CpuidRegisters leaf4[kCacheLeaves];  // caches; sub-leaf 0: cores of a package
  CpuidRegisters leaf7;         // sub-leaf 0: AVX2, AVX-512, GFNI, VPCLMULQDQ, moves
  CpuidRegisters leaf80000000;  // highest extended leaf
  CpuidRegisters leaf80000001;  // 64-bit mode, whether leaf 0x8000001D describes caches
  CpuidRegisters leaf8000001D[kCacheLeaves];  // caches
  uint64_t xcr0;                // register state that the operating system saves; 0 without OSXSAVE
};

// The processor information record.
struct ProcessorInfo {
  uint32_t family;               // base family; the extended family is not read
  uint32_t stepping;
  uint32_t model;                // base model
  uint32_t processorType;        // always 0, and nothing reads it: see ProcessorInfoOf
  uint32_t featureFlags;         // leaf 1 EDX
  uint32_t cacheDescriptors[2];  // leaf 2 EAX and EDX
  uint32_t hasMmx;               // this and the other has... fields: 1 or 0
  uint32_t hasSse;
  uint32_t hasSse2;
  uint32_t hasMultipleLogical;   // the package holds more than one logical processor
  uint32_t hasSse3;
  uint32_t has64BitMode;
  uint32_t hasSsse3;
  uint32_t coresPerPackage;      // core identifiers reserved in the package, at least 1
};

// Asks this processor; one that is not an x86 has no CPUID.
CpuidLeaves ReadCpuidLeaves();

// Whether the processor has CPUID: bit 21 of EFLAGS can be toggled.
bool HasCpuid(const CpuidLeaves& leaves);

// Whether the vendor string is "GenuineIntel".
bool IsGenuineIntel(const CpuidLeaves& leaves);

// 1 without CPUID or without leaf 4, else bits 26 to 31 of EAX of leaf 4, sub-leaf 0, plus 1.
int CoresPerPackage(const CpuidLeaves& leaves);

ProcessorInfo ProcessorInfoOf(const CpuidLeaves& leaves);

// The processor's class, by vendor, family and features:
//   0           no CPUID, or nothing of what follows
//   1, 2        family 5 without and with MMX
//   3, 4, 5     family 6 without SSE2: neither, MMX, SSE
//   6, 7        family 0xF with SSE2: one logical processor, several
//   8           family 0xF with SSE3, 32-bit
//   9           family 6 with SSE2
//   0xA, 0xB    family 6 with SSE3: one core, several
//   0x10        family 7
//   0x11        family 0xF without SSE2
//   0x20        family 0xF with SSE3, 64-bit
//   0x21, 0x22  SSSE3: up to two cores, more
//   0x40, 0x41, 0x42  other families and vendors, by features: SSE, SSE2, SSE3
//   0x43        family 0xF with SSE2 and SSSE3 but without SSE3
int DetectCpuCode(const CpuidLeaves& leaves);

// The dispatch slot, 0 to 4, that a CpuCode gets; any code outside the table gets 0.
int VariantIndexOf(int cpuCode);

// Wide vectors that both the processor and the operating system carry: 0 none, 1 AVX2, 2 AVX-512
// with F, BW, VL, DQ and VBMI. Code for a wide level may also use whatever lies below it: SSE3 to
// SSE4.2 and POPCNT.
int WideLevelOf(const CpuidLeaves& leaves);

// Carry-less multiplication: 0 none, 1 PCLMULQDQ together with SSE4.1, 2 VPCLMULQDQ and GFNI on the
// 64-byte vectors of wide level 2; 3 if these are AMD's, which make four products of bytes with
// matrices (GF2P8AFFINEQB) in the time of a single one of VPCLMULQDQ, measured on Zen 5. Intel's
// make as many of either.
int CarrylessLevelOf(const CpuidLeaves& leaves);

// Bytes of the last level of cache that holds data, from leaf 0x8000001D where the topology
// extensions are there, else from leaf 4; kUnknownCacheBytes if neither tells.
ptrdiff_t LastCacheBytesOf(const CpuidLeaves& leaves);

// Whether gathers are quick: Intel's are, with AVX2. AMD's are microcoded, in every family that has
// them (0x15 on), and cost more than the loads that they stand for.
bool QuickGathersOf(const CpuidLeaves& leaves);

// Whether divisions of 64-byte vectors are quick: AMD's Zen 5 (family 0x1A) and what follows it
// divide sixteen floats every 2.5 cycles. Intel's processors take some 8 to 10.
bool QuickDivisionOf(const CpuidLeaves& leaves);

// Bytes from which on a repeated move (REP MOVSB) is the quickest copy, or kNoLongMoves. It is on
// AMD's processors that have it enhanced, and quick for short strings as well (from Zen 3 on):
// measured on Zen 5, it is 1.03 to 1.06 times as fast as memcpy from 1 MiB on, which is where GNU's
// memcpy leaves it, and 1.2 times from 10 MiB on. On Intel's processors that memcpy uses it as far
// as it pays.
ptrdiff_t LongMoveBytesOf(const CpuidLeaves& leaves);

// Classifies a processor and sets the values of VariantIndex.h from it. Returns
// StatusCpuUnknown if the processor has no CPUID or is of another vendor than "GenuineIntel", else
// StatusOk; the values are set and hold in either case.
IppStatus SelectProcessorVariant(const CpuidLeaves& leaves);

// The same for this processor.
IppStatus SelectProcessorVariant();

}  // namespace qv

#endif
