// Classification of made-up processors, and of this one.
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <map>

#include "dispatch/DispatchTable.h"
#include "dispatch/FloatControl.h"
#include "dispatch/ProcessorInfo.h"
#include "dispatch/VariantIndex.h"

namespace qv {
namespace {

enum Feature : unsigned {
  MMX = 1, SSE = 2, SSE2 = 4, SSE3 = 8, SSSE3 = 16, X64 = 32,
  MultiFlag = 64,     // leaf 1 EDX bit 28
  OneLogical = 128,   // a count of one logical processor instead of two
  NoExtended = 256,   // the highest extended leaf is below 0x80000001
  NoLeaf4 = 512,
  NoCpuid = 1024
};

struct Processor {
  const char* name;
  bool intel;
  unsigned family;
  unsigned features;
  unsigned cores;
  int code;
  int variant;
};

void SetVendor(CpuidLeaves& leaves, const char* vendor) {
  memcpy(&leaves.leaf0.ebx, vendor, 4);
  memcpy(&leaves.leaf0.edx, vendor + 4, 4);
  memcpy(&leaves.leaf0.ecx, vendor + 8, 4);
}

CpuidLeaves LeavesOf(const Processor& p) {
  CpuidLeaves leaves = {};
  leaves.hasCpuid = !(p.features & NoCpuid);
  leaves.leaf0.eax = p.features & NoLeaf4 ? 3 : 4;
  SetVendor(leaves, p.intel ? "GenuineIntel" : "AuthenticAMD");
  // Extended family and model, type and reserved bits all set: none may be taken for the family.
  leaves.leaf1.eax = 0xFFFFF000u | p.family << 8 | 0xA7;
  leaves.leaf1.ebx = (p.features & OneLogical ? 1u : 2u) << 16 | 0xFF00FFFFu;
  if (p.features & MMX) leaves.leaf1.edx |= 1u << 23;
  if (p.features & SSE) leaves.leaf1.edx |= 1u << 25;
  if (p.features & SSE2) leaves.leaf1.edx |= 1u << 26;
  if (p.features & MultiFlag) leaves.leaf1.edx |= 1u << 28;
  if (p.features & SSE3) leaves.leaf1.ecx |= 1u << 0;
  if (p.features & SSSE3) leaves.leaf1.ecx |= 1u << 9;
  leaves.leaf4[0].eax = (p.cores - 1) << 26 | 0x03FFFFFFu;
  leaves.leaf80000000.eax = p.features & NoExtended ? 0x80000000u : 0x80000001u;
  if (p.features & X64) leaves.leaf80000001.edx = 1u << 29;
  return leaves;
}

constexpr unsigned UpToSse = MMX | SSE;
constexpr unsigned UpToSse2 = UpToSse | SSE2;
constexpr unsigned UpToSse3 = UpToSse2 | SSE3;
constexpr unsigned UpToSsse3 = UpToSse3 | SSSE3;

const Processor kProcessors[] = {
    {"no CPUID", true, 6, UpToSsse3 | NoCpuid, 2, 0, 0},

    {"family 4", true, 4, 0, 1, 0, 0},
    {"family 4 with MMX", true, 4, MMX, 1, 0, 0},
    {"family 5", true, 5, 0, 1, 1, 0},
    {"family 5, MMX", true, 5, MMX, 1, 2, 0},
    {"family 5, all: only MMX counts", true, 5, UpToSsse3, 4, 2, 0},
    {"family 7", true, 7, 0, 1, 0x10, 1},
    {"family 7, all", true, 7, UpToSsse3, 4, 0x10, 1},

    {"family 6", true, 6, 0, 1, 3, 0},
    {"family 6, MMX", true, 6, MMX, 1, 4, 0},
    {"family 6, SSE", true, 6, UpToSse, 1, 5, 1},
    {"family 6, SSE without MMX", true, 6, SSE, 1, 5, 1},
    {"family 6, SSSE3 without SSE2", true, 6, UpToSse | SSE3 | SSSE3, 4, 5, 1},
    {"family 6, SSE2", true, 6, UpToSse2, 4, 9, 2},
    {"family 6, SSE3, one core", true, 6, UpToSse3, 1, 0xA, 3},
    {"family 6, SSE3, two cores", true, 6, UpToSse3, 2, 0xB, 3},
    {"family 6, SSE3, cores not told", true, 6, UpToSse3 | NoLeaf4, 2, 0xA, 3},
    {"family 6, SSSE3, one core", true, 6, UpToSsse3, 1, 0x21, 4},
    {"family 6, SSSE3, two cores", true, 6, UpToSsse3, 2, 0x21, 4},
    {"family 6, SSSE3, three cores", true, 6, UpToSsse3, 3, 0x22, 4},
    {"family 6, SSSE3, 64 cores", true, 6, UpToSsse3, 64, 0x22, 4},
    {"family 6, SSSE3, cores not told", true, 6, UpToSsse3 | NoLeaf4, 64, 0x21, 4},
    {"family 6, SSSE3 without SSE3", true, 6, UpToSse2 | SSSE3, 4, 0x22, 4},

    {"family 0xF, nothing", true, 0xF, 0, 1, 0x11, 1},
    {"family 0xF, SSE", true, 0xF, UpToSse, 1, 0x11, 1},
    {"family 0xF, SSSE3 without SSE2", true, 0xF, UpToSse | SSE3 | SSSE3 | X64, 4, 0x11, 1},
    {"family 0xF, SSE2", true, 0xF, UpToSse2, 1, 6, 2},
    {"family 0xF, SSE2, several logical", true, 0xF, UpToSse2 | MultiFlag, 1, 7, 2},
    {"family 0xF, SSE2, flag but one logical", true, 0xF, UpToSse2 | MultiFlag | OneLogical, 1, 6,
     2},
    {"family 0xF, SSSE3 without SSE3", true, 0xF, UpToSse2 | SSSE3 | MultiFlag, 4, 0x43, 4},
    {"family 0xF, SSE3, 32-bit", true, 0xF, UpToSse3, 1, 8, 3},
    {"family 0xF, SSSE3, 32-bit", true, 0xF, UpToSsse3, 4, 8, 3},
    {"family 0xF, SSE3, 64-bit flag beyond the last leaf", true, 0xF,
     UpToSse3 | X64 | NoExtended, 1, 8, 3},
    {"family 0xF, SSE3, 64-bit", true, 0xF, UpToSse3 | X64, 4, 0x20, 3},
    {"family 0xF, SSSE3, 64-bit, two cores", true, 0xF, UpToSsse3 | X64, 2, 0x21, 4},
    {"family 0xF, SSSE3, 64-bit, three cores", true, 0xF, UpToSsse3 | X64, 3, 0x22, 4},

    {"family 8, SSE2", true, 8, UpToSse2, 1, 0x41, 2},
    {"family 0, SSSE3", true, 0, UpToSsse3, 3, 0x22, 4},

    {"other vendor, MMX", false, 6, MMX, 1, 0, 0},
    {"other vendor, SSE", false, 6, UpToSse, 1, 0x40, 1},
    {"other vendor, SSE2", false, 0xF, UpToSse2 | MultiFlag, 1, 0x41, 2},
    {"other vendor, SSE3", false, 0xF, UpToSse3 | X64, 2, 0x42, 3},
    {"other vendor, SSSE3, two cores", false, 0xF, UpToSsse3 | X64, 2, 0x21, 4},
    {"other vendor, SSSE3, three cores", false, 7, UpToSsse3, 3, 0x22, 4},
    {"other vendor, SSSE3 alone", false, 6, SSSE3, 1, 0x21, 4},
    {"other vendor, SSE3 alone", false, 5, SSE3, 1, 0x42, 3},
};

// The tests below set the values of the running library; this puts them back.
class Dispatch : public testing::Test {
 protected:
  ~Dispatch() override {
    VariantIndex = variant_;
    HasSse = hasSse_;
    WideLevel = wide_;
    CarrylessLevel = carryless_;
    LastCacheBytes = lastCache_;
    QuickGathers = gathers_;
    QuickDivision = division_;
    LongMoveBytes = longMove_;
  }

 private:
  const int variant_ = VariantIndex, hasSse_ = HasSse;
  const int wide_ = WideLevel;
  const int carryless_ = CarrylessLevel;
  const ptrdiff_t lastCache_ = LastCacheBytes;
  const bool gathers_ = QuickGathers, division_ = QuickDivision;
  const ptrdiff_t longMove_ = LongMoveBytes;
};

TEST_F(Dispatch, ClassifiesProcessors) {
  for (const Processor& p : kProcessors) {
    SCOPED_TRACE(p.name);
    const CpuidLeaves leaves = LeavesOf(p);
    VariantIndex = -1;
    EXPECT_EQ(DetectCpuCode(leaves), p.code);
    const IppStatus expected = p.intel && leaves.hasCpuid ? StatusOk : StatusCpuUnknown;
    EXPECT_EQ(SelectProcessorVariant(leaves), expected);
    EXPECT_EQ(VariantIndex, p.variant);
    EXPECT_EQ(HasSse, (p.features & (SSE | NoCpuid)) == SSE);
  }
}

TEST_F(Dispatch, NeedsTheWholeVendorString) {
  const Processor intel = {"", true, 6, UpToSse2, 1, 9, 2};
  for (uint32_t CpuidRegisters::*word :
       {&CpuidRegisters::ebx, &CpuidRegisters::ecx, &CpuidRegisters::edx}) {
    CpuidLeaves leaves = LeavesOf(intel);
    EXPECT_TRUE(IsGenuineIntel(leaves));
    leaves.leaf0.*word ^= 0x20000000u;
    EXPECT_FALSE(IsGenuineIntel(leaves));
    EXPECT_EQ(DetectCpuCode(leaves), 0x41);
  }
}

TEST_F(Dispatch, FillsTheRecord) {
  CpuidLeaves leaves = LeavesOf({"", true, 0xF, UpToSse2 | SSSE3 | X64 | MultiFlag, 5, 0, 0});
  leaves.leaf2 = {0x11, 0x22, 0x33, 0x44};
  const ProcessorInfo info = ProcessorInfoOf(leaves);
  const ProcessorInfo expected = {
      .family = 0xF, .stepping = 7, .model = 0xA, .processorType = 0, .featureFlags = 0x16800000,
      .cacheDescriptors = {0x11, 0x44}, .hasMmx = 1, .hasSse = 1, .hasSse2 = 1,
      .hasMultipleLogical = 1, .hasSse3 = 0, .has64BitMode = 1, .hasSsse3 = 1,
      .coresPerPackage = 5};
  EXPECT_EQ(memcmp(&info, &expected, sizeof info), 0);
}

TEST_F(Dispatch, MapsCodesToVariants) {
  const std::map<int, int> variants = {
      {5, 1},   {0x10, 1}, {0x11, 1}, {0x40, 1}, {6, 2},    {7, 2},    {9, 2},    {0x41, 2}, {8, 3},
      {0xA, 3}, {0xB, 3},  {0x20, 3}, {0x42, 3}, {0x21, 4}, {0x22, 4}, {0x23, 4}, {0x43, 4}};
  for (int code = -300; code <= 300; ++code) {
    const auto found = variants.find(code);
    EXPECT_EQ(VariantIndexOf(code), found == variants.end() ? 0 : found->second) << code;
  }
  EXPECT_EQ(VariantIndexOf(INT_MIN), 0);
  EXPECT_EQ(VariantIndexOf(INT_MAX), 0);
}

// A processor and system with everything that the wide levels ask for, less what a case takes away.
struct WideCase {
  const char* missing;
  uint32_t ecx1, ebx7, ecx7;
  uint64_t xcr0;
  int wide;
  int carryless;
};

CpuidLeaves WidestLeaves() {
  CpuidLeaves leaves = LeavesOf({"", true, 6, UpToSsse3 | X64, 2, 0x21, 4});
  leaves.leaf0.eax = 7;
  leaves.leaf1.ecx |= 1u << 1 | 1u << 19 | 1u << 20 | 1u << 23 | 1u << 27 | 1u << 28;
  leaves.leaf7.ebx = 1u << 5 | 1u << 16 | 1u << 17 | 1u << 30 | 1u << 31;
  leaves.leaf7.ecx = 1u << 1 | 1u << 8 | 1u << 10;
  leaves.xcr0 = 0xE7;
  return leaves;
}

// Rows that tell their level. No level has those of another, nor any that it is not said to have.
template <LevelId kLevel>
int Tell(IppiSize) { return static_cast<int>(kLevel); }

template <int kArgument, LevelId... kOwn>
struct Telling {
  using Rows = int(IppiSize);
  static constexpr int kWidth = kArgument;
  static constexpr LevelSet kLevels{kOwn...};
  static constexpr Rows* kRows[kLevelCount] = {
#define QV_TELL(name, slot, wide, argument) \
  kLevels.Has(LevelId::name) ? Tell<LevelId::name> : nullptr,
      QV_EACH_LEVEL(QV_TELL, )
#undef QV_TELL
  };
};

// Places for which nothing is built take what lies below; so do calls too narrow for a wide level
// of a kernel that looks at the width.
TEST_F(Dispatch, FillsEverySlotOfATable) {
  using enum LevelId;
  static constinit const Dispatched<int(IppiSize)> kernels[] = {
      MakeDispatched<Telling<-1, generic, sse2, ssse3, avx2, avx512>>(),
      MakeDispatched<Telling<-1, generic, sse2, ssse3>>(),
      MakeDispatched<Telling<-1, generic, ssse3, avx512>>(),
      MakeDispatched<Telling<-1, generic, avx2>>(),
      MakeDispatched<Telling<-1, generic>>(),
      MakeDispatched<Telling<0, generic, sse2, ssse3, avx2, avx512>>(),
      MakeDispatched<Telling<0, generic, sse2, avx512>>()};
  const struct {
    int slot, wide, width;
    LevelId serving[7];
  } cases[] = {{0, 0, 64, {generic, generic, generic, generic, generic, generic, generic}},
               {1, 0, 64, {generic, generic, generic, generic, generic, generic, generic}},
               {2, 0, 64, {sse2, sse2, generic, generic, generic, sse2, sse2}},
               {3, 0, 64, {sse2, sse2, generic, generic, generic, sse2, sse2}},
               {4, 0, 64, {ssse3, ssse3, ssse3, generic, generic, ssse3, sse2}},
               {4, 1, 64, {avx2, ssse3, ssse3, avx2, generic, avx2, sse2}},
               {4, 1, 31, {avx2, ssse3, ssse3, avx2, generic, ssse3, sse2}},
               {4, 2, 64, {avx512, ssse3, avx512, avx2, generic, avx512, avx512}},
               {4, 2, 63, {avx512, ssse3, avx512, avx2, generic, avx2, sse2}},
               {4, 2, 32, {avx512, ssse3, avx512, avx2, generic, avx2, sse2}},
               {4, 2, 31, {avx512, ssse3, avx512, avx2, generic, ssse3, sse2}},
               {4, 2, -1, {avx512, ssse3, avx512, avx2, generic, ssse3, sse2}}};
  for (const auto& c : cases) {
    VariantIndex = c.slot;
    WideLevel = c.wide;
    for (int i = 0; i < 7; ++i)
      EXPECT_EQ(kernels[i]({c.width, 1}), static_cast<int>(c.serving[i]))
          << i << " at " << c.slot << " " << c.wide << " " << c.width;
  }
}

TEST_F(Dispatch, ChoosesTheWideLevel) {
  const WideCase cases[] = {
      {"nothing", 0, 0, 0, 0, 2, 2},
      {"PCLMULQDQ", 1u << 1, 0, 0, 0, 2, 0},
      {"GFNI", 0, 0, 1u << 8, 0, 2, 1},
      {"VPCLMULQDQ", 0, 0, 1u << 10, 0, 2, 1},
      {"SSE4.1", 1u << 19, 0, 0, 0, 0, 0},
      {"SSE4.2", 1u << 20, 0, 0, 0, 0, 1},
      {"POPCNT", 1u << 23, 0, 0, 0, 0, 1},
      {"OSXSAVE", 1u << 27, 0, 0, 0, 0, 1},
      {"AVX", 1u << 28, 0, 0, 0, 0, 1},
      {"AVX2", 0, 1u << 5, 0, 0, 0, 1},
      {"AVX-512 F", 0, 1u << 16, 0, 0, 1, 1},
      {"AVX-512 DQ", 0, 1u << 17, 0, 0, 1, 1},
      {"AVX-512 BW", 0, 1u << 30, 0, 0, 1, 1},
      {"AVX-512 VL", 0, 1u << 31, 0, 0, 1, 1},
      {"AVX-512 VBMI", 0, 0, 1u << 1, 0, 1, 1},
      {"saved XMM state", 0, 0, 0, 0x02, 0, 1},
      {"saved YMM state", 0, 0, 0, 0x04, 0, 1},
      {"saved mask registers", 0, 0, 0, 0x20, 1, 1},
      {"saved upper halves", 0, 0, 0, 0x40, 1, 1},
      {"saved upper registers", 0, 0, 0, 0x80, 1, 1},
  };
  for (const WideCase& c : cases) {
    SCOPED_TRACE(c.missing);
    CpuidLeaves leaves = WidestLeaves();
    leaves.leaf1.ecx &= ~c.ecx1;
    leaves.leaf7.ebx &= ~c.ebx7;
    leaves.leaf7.ecx &= ~c.ecx7;
    leaves.xcr0 &= ~c.xcr0;
    EXPECT_EQ(WideLevelOf(leaves), c.wide);
    EXPECT_EQ(CarrylessLevelOf(leaves), c.carryless);
    SelectProcessorVariant(leaves);
    EXPECT_EQ(VariantIndex, 4);
    EXPECT_EQ(WideLevel, c.wide);
    EXPECT_EQ(CarrylessLevel, c.carryless);
    EXPECT_EQ(QuickGathers, c.wide > 0);
    SetVendor(leaves, "AuthenticAMD");
    SelectProcessorVariant(leaves);
    EXPECT_EQ(WideLevel, c.wide);
    EXPECT_EQ(CarrylessLevel, c.carryless == 2 ? 3 : c.carryless);
    EXPECT_FALSE(QuickGathers);
  }

  CpuidLeaves leaves = WidestLeaves();
  leaves.leaf0.eax = 6;  // leaf 7 is not there: what CPUID answered for it means nothing
  EXPECT_EQ(WideLevelOf(leaves), 0);
  EXPECT_EQ(CarrylessLevelOf(leaves), 1);

  leaves = WidestLeaves();
  leaves.hasCpuid = false;
  EXPECT_EQ(WideLevelOf(leaves), 0);
  EXPECT_EQ(CarrylessLevelOf(leaves), 0);

  leaves = WidestLeaves();
  leaves.leaf1.eax = 0x500;  // a class of its own puts it below slot 4, whatever it has
  SelectProcessorVariant(leaves);
  EXPECT_EQ(VariantIndex, 0);
  EXPECT_EQ(WideLevel, 0);
  EXPECT_EQ(CarrylessLevel, 0);
}

TEST_F(Dispatch, MovesAndDividesOnAmdsProcessorsThatAreQuickAtIt) {
  const struct {
    const char* vendor;  // EBX, EDX and ECX of leaf 0
    unsigned highestLeaf, version, enhanced, quickShort;
    bool moves, divides;
  } cases[] = {
      {"AuthenticAMD", 7, 0x00B00F21, 1u << 9, 1u << 4, true, true},
      {"AuthenticAMD", 7, 0x00A10F11, 1u << 9, 1u << 4, true, false},
      {"AuthenticAMD", 7, 0x00B00F21, 0, 1u << 4, false, true},
      {"AuthenticAMD", 7, 0x00B00F21, 1u << 9, 0, false, true},
      {"AuthenticAMD", 6, 0x00B00F21, 1u << 9, 1u << 4, false, false},
      {"GenuineIntel", 7, 0x00B00F21, 1u << 9, 1u << 4, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.vendor);
    CpuidLeaves leaves = WidestLeaves();
    SetVendor(leaves, c.vendor);
    leaves.leaf0.eax = c.highestLeaf;
    leaves.leaf1.eax = c.version;
    leaves.leaf7.ebx |= c.enhanced;
    leaves.leaf7.edx |= c.quickShort;
    SelectProcessorVariant(leaves);
    EXPECT_EQ(LongMoveBytes, c.moves ? 1 << 20 : kNoLongMoves);
    EXPECT_EQ(QuickDivision, c.divides);
  }
}

// A cache as a sub-leaf describes it.
CpuidRegisters Cache(unsigned level, unsigned type, unsigned ways, unsigned partitions,
                     unsigned lineBytes, unsigned sets) {
  return {0xFFFFFF00u | level << 5 | type,
          (ways - 1) << 22 | (partitions - 1) << 12 | (lineBytes - 1), sets - 1, 0x5A};
}

TEST_F(Dispatch, FindsTheLastCache) {
  enum Told { InLeaf4, InLeaf8000001D, NoTopologyExtensions, NoExtendedLeaf, NoLeaf, NoCpuidAtAll };
  constexpr ptrdiff_t kibi = 1024, mebi = 1024 * kibi;
  const CpuidRegisters first = Cache(1, 1, 12, 1, 64, 64), code = Cache(1, 2, 8, 1, 64, 64);
  const struct {
    const char* name;
    Told told;
    CpuidRegisters caches[5];
    ptrdiff_t bytes;
  } cases[] = {
      {"three levels", InLeaf4, {first, code, Cache(2, 3, 16, 1, 64, 2048),
                                 Cache(3, 3, 15, 1, 64, 53248)}, 48 * mebi + 768 * kibi},
      {"two levels", InLeaf4, {first, code, Cache(2, 3, 16, 1, 64, 4096)}, 4 * mebi},
      {"last one first", InLeaf4, {Cache(3, 3, 16, 1, 64, 8192), first, code}, 8 * mebi},
      {"partitions, long lines", InLeaf4, {Cache(2, 1, 4, 3, 128, 1000)}, 1500 * kibi},
      {"code above data", InLeaf4, {first, Cache(2, 2, 8, 1, 64, 1024)}, 48 * kibi},
      {"extended", InLeaf8000001D, {first, code, Cache(2, 3, 16, 1, 64, 1024),
                                    Cache(3, 3, 16, 1, 64, 98304)}, 96 * mebi},
      {"without the extensions", NoTopologyExtensions, {first}, kUnknownCacheBytes},
      {"without the extended leaf", NoExtendedLeaf, {first}, kUnknownCacheBytes},
      {"without leaf 4", NoLeaf, {first}, kUnknownCacheBytes},
      {"without CPUID", NoCpuidAtAll, {first}, kUnknownCacheBytes},
      {"none", InLeaf4, {}, kUnknownCacheBytes},
      {"none but code", InLeaf4, {code}, kUnknownCacheBytes},
      {"beyond reason", InLeaf4, {{0x63, ~0u, ~0u, 0}}, kUnknownCacheBytes},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    CpuidLeaves leaves = {};
    leaves.hasCpuid = c.told != NoCpuidAtAll;
    leaves.leaf0.eax = c.told == InLeaf4 || c.told == NoCpuidAtAll ? 4 : 3;
    leaves.leaf80000000.eax = c.told == NoExtendedLeaf ? 0x8000001C : 0x8000001D;
    const bool extended = c.told == InLeaf8000001D || c.told == NoExtendedLeaf;
    leaves.leaf80000001.ecx = extended ? ~0u : ~(1u << 22);
    const bool inLeaf4 = c.told == InLeaf4 || c.told == NoLeaf || c.told == NoCpuidAtAll;
    memcpy(inLeaf4 ? leaves.leaf4 : leaves.leaf8000001D, c.caches, sizeof c.caches);
    EXPECT_EQ(LastCacheBytesOf(leaves), c.bytes);
    SelectProcessorVariant(leaves);
    EXPECT_EQ(LastCacheBytes, c.bytes);
  }
}

#if defined(__i386__) || defined(__x86_64__)

// The compiler's run-time library reads the same processor on its own.
TEST_F(Dispatch, ReadsThisProcessor) {
  __builtin_cpu_init();
  const CpuidLeaves leaves = ReadCpuidLeaves();
  const ProcessorInfo info = ProcessorInfoOf(leaves);
  EXPECT_EQ(HasCpuid(leaves), true);
  EXPECT_EQ(IsGenuineIntel(leaves), __builtin_cpu_is("intel") != 0);
  EXPECT_EQ(info.hasSse, unsigned{__builtin_cpu_supports("sse") != 0});
  EXPECT_EQ(info.hasSse2, unsigned{__builtin_cpu_supports("sse2") != 0});
  EXPECT_EQ(info.hasSse3, unsigned{__builtin_cpu_supports("sse3") != 0});
  EXPECT_EQ(info.hasSsse3, unsigned{__builtin_cpu_supports("ssse3") != 0});
  if (sizeof(void*) == 8) { EXPECT_EQ(info.has64BitMode, 1u); }
  const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                      __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
                      __builtin_cpu_supports("avx512vbmi");
  EXPECT_EQ(WideLevelOf(leaves), avx512 ? 2 : __builtin_cpu_supports("avx2") ? 1 : 0);
  const bool wide =
      avx512 && __builtin_cpu_supports("vpclmulqdq") && __builtin_cpu_supports("gfni");
  EXPECT_EQ(CarrylessLevelOf(leaves), !__builtin_cpu_supports("pclmul") ? 0
                                      : !wide                           ? 1
                                      : __builtin_cpu_is("amd")         ? 3
                                                                        : 2);
  EXPECT_EQ(QuickGathersOf(leaves),
            __builtin_cpu_is("intel") && __builtin_cpu_supports("avx2"));
}

TEST(FloatControl, SetsWhatItsMaskNames) {
  const unsigned control = SetX87Control(0x0C00, 0x0C00);
  EXPECT_EQ(SetX87Control(0, 0), control | 0x0C00);
  EXPECT_EQ(SetX87Control(control, 0xFFFF), control | 0x0C00);
  EXPECT_EQ(SetX87Control(0, 0), control);
  ReadX87Status(true);
  volatile long double quotient = 1;
  quotient = quotient / 3;  // inexact
  EXPECT_EQ(ReadX87Status(false) & 0x3F, 0x20u);
  EXPECT_EQ(ReadX87Status(true) & 0x3F, 0x20u);
  EXPECT_EQ(ReadX87Status(false) & 0x3F, 0u);

  const unsigned csr = SetMxcsr(0x8000, 0x8040);
  EXPECT_EQ(SetMxcsr(0x6000, 0x6000), (csr & ~0x40u) | 0x8000);
  EXPECT_EQ(ResetMxcsr(), (csr & ~0x40u) | 0xE000);
  EXPECT_EQ(SetMxcsr(csr, ~0u), 0x1F80u);
  EXPECT_EQ(SetMxcsr(0, 0), csr);
}

#else

TEST_F(Dispatch, HasPlainRowsAloneWithoutCpuid) {
  VariantIndex = -1;
  EXPECT_EQ(SelectProcessorVariant(), StatusCpuUnknown);
  EXPECT_EQ(VariantIndex, 0);
  EXPECT_EQ(LastCacheBytes, kUnknownCacheBytes);
}

#endif

TEST(FloatControl, HasAClock) {
  const uint64_t ticks = ReadTimeStamp();
  uint64_t later = ticks;
  for (int i = 0; i < 1000000 && later == ticks; ++i) later = ReadTimeStamp();
  EXPECT_GT(later, ticks);
}

}  // namespace
}  // namespace qv
