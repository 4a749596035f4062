#include "dispatch/Levels.h"

namespace qv {

LevelSet BuiltLevelSet() { return QV_LEVEL_SET(QV_BUILT_LEVELS); }

}  // namespace qv
