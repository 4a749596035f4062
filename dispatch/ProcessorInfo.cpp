#include "dispatch/ProcessorInfo.h"

#include "dispatch/Levels.h"
#include "dispatch/VariantIndex.h"

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#endif

namespace qv {
namespace {

// Leaf 1 ECX.
constexpr uint32_t Sse3 = 1u << 0;
constexpr uint32_t Pclmulqdq = 1u << 1;
constexpr uint32_t Ssse3 = 1u << 9;
constexpr uint32_t Sse41 = 1u << 19;
constexpr uint32_t Sse42 = 1u << 20;
constexpr uint32_t Popcnt = 1u << 23;
constexpr uint32_t Osxsave = 1u << 27;
constexpr uint32_t Avx = 1u << 28;

// Leaf 1 EDX.
constexpr uint32_t Mmx = 1u << 23;
constexpr uint32_t Sse = 1u << 25;
constexpr uint32_t Sse2 = 1u << 26;
constexpr uint32_t MultipleLogical = 1u << 28;

// Leaf 7 EBX, ECX and EDX.
constexpr uint32_t Avx2 = 1u << 5;
constexpr uint32_t EnhancedMoves = 1u << 9;
constexpr uint32_t Avx512F = 1u << 16;
constexpr uint32_t Avx512Dq = 1u << 17;
constexpr uint32_t Avx512Bw = 1u << 30;
constexpr uint32_t Avx512Vl = 1u << 31;
constexpr uint32_t Avx512Vbmi = 1u << 1;
constexpr uint32_t Gfni = 1u << 8;
constexpr uint32_t Vpclmulqdq = 1u << 10;
constexpr uint32_t QuickShortMoves = 1u << 4;

// Extended leaf 0x80000001 ECX and EDX.
constexpr uint32_t TopologyExtensions = 1u << 22;
constexpr uint32_t LongMode = 1u << 29;

// XCR0: bits 1 and 2 are the XMM and YMM state, bits 5 to 7 the mask registers, the upper halves of
// ZMM0 to 15, and ZMM16 to 31.
constexpr uint64_t AvxState = 0x06;
constexpr uint64_t Avx512State = AvxState | 0xE0;

constexpr bool Has(uint64_t word, uint64_t bits) { return (word & bits) == bits; }

// Slots by CpuCode - FirstCode. Three entries look odd and are meant: 0x11 (no SSE2, perhaps no
// SSE) gets SSE, 0x43 (SSSE3 without SSE3) gets SSSE3, and 0x23 has a slot although no processor is
// ever classified so.
constexpr int FirstCode = 5;
constexpr unsigned char VariantOfCode[63] = {
    1, 2, 2, 3, 2, 3, 3, 0, 0, 0, 0,                 // 0x05 to 0x0F
    1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  // 0x10 to 0x1F
    3, 4, 4, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  // 0x20 to 0x2F
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  // 0x30 to 0x3F
    1, 2, 3, 4,                                      // 0x40 to 0x43
};

#if defined(__i386__) || defined(__x86_64__)

#if defined(__i386__)
// Processors before the later 80486 have no CPUID; there the identification flag cannot be toggled.
bool CanToggleIdentificationFlag() {
  uint32_t before, after;
  __asm__ volatile(
      "pushfl\n\t"
      "pushfl\n\t"
      "popl %0\n\t"
      "movl %0, %1\n\t"
      "xorl $0x200000, %1\n\t"
      "pushl %1\n\t"
      "popfl\n\t"
      "pushfl\n\t"
      "popl %1\n\t"
      "popfl"
      : "=&r"(before), "=&r"(after)
      :
      : "cc", "memory");
  return ((before ^ after) & 0x200000) != 0;
}
#else
constexpr bool CanToggleIdentificationFlag() { return true; }
#endif

CpuidRegisters Cpuid(uint32_t leaf, uint32_t subleaf) {
  CpuidRegisters r;
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
  return r;
}

// The caches that a leaf describes: as many sub-leaves as there are, and one of type 0 after them.
void ReadCaches(uint32_t leaf, CpuidRegisters (&caches)[kCacheLeaves]) {
  for (CpuidRegisters& cache : caches) {
    cache = Cpuid(leaf, static_cast<uint32_t>(&cache - caches));
    if ((cache.eax & 0x1F) == 0) break;
  }
}

// Faults unless the operating system has set OSXSAVE. Written out because the compiler's intrinsic
// wants a target option that a source built for the oldest processor must not have.
uint64_t ReadXcr0() {
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (static_cast<uint64_t>(high) << 32) | low;
}

#endif

bool IsAuthenticAmd(const CpuidLeaves& leaves) {
  return leaves.leaf0.ebx == 0x68747541u       // "Auth"
         && leaves.leaf0.edx == 0x69746E65u    // "enti"
         && leaves.leaf0.ecx == 0x444D4163u;   // "cAMD"
}

int SsseCode(int cores) { return cores > 2 ? 0x22 : 0x21; }

int CodeByFeatures(const ProcessorInfo& info, int cores) {
  if (info.hasSsse3) return SsseCode(cores);
  if (info.hasSse3) return 0x42;
  if (info.hasSse2) return 0x41;
  return info.hasSse ? 0x40 : 0;
}

int CodeOfFamilyF(const ProcessorInfo& info, int cores) {
  if (!info.hasSse2) return 0x11;
  if (!info.hasSse3) {
    if (info.hasSsse3) return 0x43;
    return info.hasMultipleLogical ? 7 : 6;
  }
  if (!info.has64BitMode) return 8;
  return info.hasSsse3 ? SsseCode(cores) : 0x20;
}

int CodeOfFamily6(const ProcessorInfo& info, int cores) {
  if (!info.hasSse2) return info.hasSse ? 5 : info.hasMmx ? 4 : 3;
  if (info.hasSsse3) return SsseCode(cores);
  if (info.hasSse3) return cores > 1 ? 0xB : 0xA;
  return 9;
}

}  // namespace

#if defined(__i386__) || defined(__x86_64__)

CpuidLeaves ReadCpuidLeaves() {
  CpuidLeaves leaves = {};
  leaves.hasCpuid = CanToggleIdentificationFlag();
  if (!leaves.hasCpuid) return leaves;
  leaves.leaf0 = Cpuid(0, 0);
  leaves.leaf1 = Cpuid(1, 0);
  leaves.leaf2 = Cpuid(2, 0);
  ReadCaches(4, leaves.leaf4);
  leaves.leaf7 = Cpuid(7, 0);
  leaves.leaf80000000 = Cpuid(0x80000000u, 0);
  leaves.leaf80000001 = Cpuid(0x80000001u, 0);
  ReadCaches(0x8000001Du, leaves.leaf8000001D);
  if (Has(leaves.leaf1.ecx, Osxsave)) leaves.xcr0 = ReadXcr0();
  return leaves;
}

#else

CpuidLeaves ReadCpuidLeaves() { return {}; }  // CPUID is x86's alone

#endif

bool HasCpuid(const CpuidLeaves& leaves) { return leaves.hasCpuid; }

bool IsGenuineIntel(const CpuidLeaves& leaves) {
  return leaves.leaf0.ebx == 0x756E6547u       // "Genu"
         && leaves.leaf0.edx == 0x49656E69u    // "ineI"
         && leaves.leaf0.ecx == 0x6C65746Eu;   // "ntel"
}

int CoresPerPackage(const CpuidLeaves& leaves) {
  if (!leaves.hasCpuid || leaves.leaf0.eax < 4) return 1;
  return static_cast<int>(leaves.leaf4[0].eax >> 26) + 1;
}

ProcessorInfo ProcessorInfoOf(const CpuidLeaves& leaves) {
  const CpuidRegisters& one = leaves.leaf1;
  const bool hasExtended = leaves.leaf80000000.eax >= 0x80000001u;
  ProcessorInfo info = {};
  info.family = (one.eax >> 8) & 0xF;
  info.stepping = one.eax & 0xF;
  info.model = (one.eax >> 4) & 0xF;
  // Shifts the four bits of the family, not the whole word, so nothing is ever left.
  info.processorType = (info.family >> 11) & 3;
  info.featureFlags = one.edx;
  info.cacheDescriptors[0] = leaves.leaf2.eax;
  info.cacheDescriptors[1] = leaves.leaf2.edx;
  info.hasMmx = Has(one.edx, Mmx);
  info.hasSse = Has(one.edx, Sse);
  info.hasSse2 = Has(one.edx, Sse2);
  info.hasMultipleLogical = Has(one.edx, MultipleLogical) && ((one.ebx >> 16) & 0xFF) > 1;
  info.hasSse3 = Has(one.ecx, Sse3);
  info.has64BitMode = hasExtended && Has(leaves.leaf80000001.edx, LongMode);
  info.hasSsse3 = Has(one.ecx, Ssse3);
  info.coresPerPackage = static_cast<uint32_t>(CoresPerPackage(leaves));
  return info;
}

int DetectCpuCode(const CpuidLeaves& leaves) {
  if (!HasCpuid(leaves)) return 0;
  const ProcessorInfo info = ProcessorInfoOf(leaves);
  const int cores = CoresPerPackage(leaves);
  if (!IsGenuineIntel(leaves)) return CodeByFeatures(info, cores);
  switch (info.family) {
    case 7:
      return 0x10;
    case 0x1F:  // never: a base family has four bits
      return 0x11;
    case 0xF:
      return CodeOfFamilyF(info, cores);
    case 5:
      return info.hasMmx ? 2 : 1;
    case 6:
      return CodeOfFamily6(info, cores);
    default:
      return CodeByFeatures(info, cores);
  }
}

int VariantIndexOf(int cpuCode) {
  constexpr int count = static_cast<int>(sizeof VariantOfCode);
  if (cpuCode < FirstCode || cpuCode >= FirstCode + count) return 0;
  return VariantOfCode[cpuCode - FirstCode];
}

int WideLevelOf(const CpuidLeaves& leaves) {
  // All that a compiler may use when it is told to generate AVX2.
  constexpr uint32_t below = Sse3 | Ssse3 | Sse41 | Sse42 | Popcnt | Osxsave | Avx;
  if (!leaves.hasCpuid || leaves.leaf0.eax < 7) return 0;
  if (!Has(leaves.leaf1.ecx, below) || !Has(leaves.leaf7.ebx, Avx2)) return 0;
  if (!Has(leaves.xcr0, AvxState)) return 0;
  const bool has512 = Has(leaves.leaf7.ebx, Avx512F | Avx512Bw | Avx512Vl | Avx512Dq) &&
                      Has(leaves.leaf7.ecx, Avx512Vbmi) && Has(leaves.xcr0, Avx512State);
  return InfoOf(has512 ? LevelId::avx512 : LevelId::avx2).wide;
}

int CarrylessLevelOf(const CpuidLeaves& leaves) {
  if (!leaves.hasCpuid || !Has(leaves.leaf1.ecx, Pclmulqdq | Sse41)) return 0;
  const bool wide = WideLevelOf(leaves) >= InfoOf(LevelId::avx512).wide;
  if (!wide || !Has(leaves.leaf7.ecx, Vpclmulqdq | Gfni)) return 1;
  return IsAuthenticAmd(leaves) ? 3 : 2;
}

ptrdiff_t LastCacheBytesOf(const CpuidLeaves& leaves) {
  if (!leaves.hasCpuid) return kUnknownCacheBytes;
  const bool extended = leaves.leaf80000000.eax >= 0x8000001Du &&
                        Has(leaves.leaf80000001.ecx, TopologyExtensions);
  if (!extended && leaves.leaf0.eax < 4) return kUnknownCacheBytes;
  constexpr uint32_t none = 0, instructions = 2;
  uint32_t lastLevel = 0;
  uint64_t bytes = 0;
  for (const CpuidRegisters& cache : extended ? leaves.leaf8000001D : leaves.leaf4) {
    const uint32_t type = cache.eax & 0x1F, level = (cache.eax >> 5) & 7;
    if (type == none) break;
    if (type == instructions || level < lastLevel) continue;
    lastLevel = level;
    const uint32_t ways = (cache.ebx >> 22) + 1, partitions = ((cache.ebx >> 12) & 0x3FF) + 1,
                   lineBytes = (cache.ebx & 0xFFF) + 1;
    bytes = (uint64_t{cache.ecx} + 1) * ways * partitions * lineBytes;
  }
  // What no cache comes near is no size either, and need not fit a pointer's width.
  return bytes > 0 && bytes <= uint64_t{1} << 30 ? static_cast<ptrdiff_t>(bytes)
                                                 : kUnknownCacheBytes;
}

bool QuickGathersOf(const CpuidLeaves& leaves) {
  return IsGenuineIntel(leaves) && WideLevelOf(leaves) > 0;
}

bool QuickDivisionOf(const CpuidLeaves& leaves) {
  const uint32_t version = leaves.leaf1.eax;
  const uint32_t family = ((version >> 8) & 0xF) + ((version >> 20) & 0xFF);
  return IsAuthenticAmd(leaves) && family >= 0x1A &&
         WideLevelOf(leaves) >= InfoOf(LevelId::avx512).wide;
}

ptrdiff_t LongMoveBytesOf(const CpuidLeaves& leaves) {
  const bool quick = IsAuthenticAmd(leaves) && leaves.leaf0.eax >= 7 &&
                     Has(leaves.leaf7.ebx, EnhancedMoves) && Has(leaves.leaf7.edx, QuickShortMoves);
  return quick ? ptrdiff_t{1} << 20 : kNoLongMoves;
}

IppStatus SelectProcessorVariant(const CpuidLeaves& leaves) {
  VariantIndex = VariantIndexOf(DetectCpuCode(leaves));
  WideLevel = VariantIndex == 4 ? WideLevelOf(leaves) : 0;
  CarrylessLevel = VariantIndex == 4 ? CarrylessLevelOf(leaves) : 0;
  HasSse = HasCpuid(leaves) && ProcessorInfoOf(leaves).hasSse;
  LastCacheBytes = LastCacheBytesOf(leaves);
  QuickGathers = WideLevel > 0 && QuickGathersOf(leaves);
  QuickDivision = WideLevel > 0 && QuickDivisionOf(leaves);
  LongMoveBytes = LongMoveBytesOf(leaves);
  if (!HasCpuid(leaves) || !IsGenuineIntel(leaves)) return StatusCpuUnknown;
  return StatusOk;
}

IppStatus SelectProcessorVariant() { return SelectProcessorVariant(ReadCpuidLeaves()); }

}  // namespace qv
