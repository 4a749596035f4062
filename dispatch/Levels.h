// The roll of levels. The build (cmake/Levels.cmake takes the lines that begin with LEVEL), the
// tables of the kernels, the tests and qvtool read it. A level is a line here, a header in
// kernels/level/, its compiler flags in cmake/Levels.cmake, and in ProcessorInfo.cpp the condition
// under which a processor runs it.
//
// LEVEL(name, slot, wide, argument), the lowest level first: its rows run on processors whose
// VariantIndex is `slot` or above and whose WideLevel is `wide` or above, as far as no later level
// of the roll does. Levels of different makers may have the same place: a build has those that its
// compiler makes code for. The first level is the plain one, which every build has.
#ifndef QV_DISPATCH_LEVELS_H
#define QV_DISPATCH_LEVELS_H

#define QV_EACH_LEVEL(LEVEL, argument) \
  LEVEL(generic, 0, 0, argument)       \
  LEVEL(sse2, 2, 0, argument)          \
  LEVEL(ssse3, 4, 0, argument)         \
  LEVEL(avx2, 4, 1, argument)          \
  LEVEL(avx512, 4, 2, argument)

namespace qv {

// The levels by name, ascending.
#define QV_LEVEL_NAME(name, slot, wide, argument) name,
enum class LevelId : int { QV_EACH_LEVEL(QV_LEVEL_NAME, ) };
#undef QV_LEVEL_NAME

struct LevelInfo {
  LevelId id;
  const char* name;
  int slot, wide;
};

#define QV_LEVEL_INFO(name, slot, wide, argument) {LevelId::name, #name, slot, wide},
constexpr LevelInfo kLevels[] = {QV_EACH_LEVEL(QV_LEVEL_INFO, )};
#undef QV_LEVEL_INFO
constexpr int kLevelCount = sizeof kLevels / sizeof *kLevels;

constexpr const LevelInfo& InfoOf(LevelId level) { return kLevels[static_cast<int>(level)]; }

// The highest CarrylessLevel that a level can use.
constexpr int CarrylessLevelFor(const LevelInfo& level) {
  return level.slot < 4 ? 0 : level.wide < InfoOf(LevelId::avx512).wide ? 1 : 3;
}

// Bytes in a vector of the levels of a WideLevel.
constexpr int VectorBytesOf(int wide) { return 16 << wide; }

// Some of the levels.
class LevelSet {
 public:
  template <class... Ids>
  constexpr explicit LevelSet(Ids... ids) : bits_((0u | ... | (1u << static_cast<int>(ids)))) {}

  constexpr bool Has(LevelId level) const { return bits_ >> static_cast<int>(level) & 1; }

  constexpr LevelSet operator&(LevelSet other) const {
    LevelSet both;
    both.bits_ = bits_ & other.bits_;
    return both;
  }

 private:
  unsigned bits_;
};

// The plain level and those that the list names.
#define QV_LEVEL_SET(...)                                   \
  ([] {                                                     \
    using enum qv::LevelId;                                 \
    return qv::LevelSet(generic __VA_OPT__(,) __VA_ARGS__); \
  }())

// The level, among some that include the plain one, whose rows a processor runs.
constexpr LevelId ServingLevel(LevelSet levels, int variantIndex, int wideLevel) {
  LevelId serving = LevelId::generic;
  for (const LevelInfo& level : kLevels)
    if (levels.Has(level.id) && level.slot <= variantIndex && level.wide <= wideLevel)
      serving = level.id;
  return serving;
}

// The levels of this build.
LevelSet BuiltLevelSet();

}  // namespace qv

#endif
