// The roll of operations as values: an enumeration to name one by, and their names.
#ifndef QV_QVACCELERATEDLIB_OPERATIONS_H
#define QV_QVACCELERATEDLIB_OPERATIONS_H

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

#define QV_OPERATION(name, family, cName) name,
enum class Op : int {
#include "qvAcceleratedLib/Operations.def"
};
#undef QV_OPERATION

struct OperationNames {
  const char* name;
  const char* family;
};

#define QV_OPERATION(name, family, cName) {#name, #family},
inline constexpr OperationNames kOperations[] = {
#include "qvAcceleratedLib/Operations.def"
};
#undef QV_OPERATION

inline constexpr int kOperationCount = sizeof kOperations / sizeof *kOperations;

constexpr const char* NameOf(Op op) { return kOperations[static_cast<int>(op)].name; }

// What is in the list is in the class; tests/check_operations.sh looks the other way round.
#define QV_OPERATION(name, family, cName) static_assert(sizeof(&CqvAccLib::name) > 0);
#include "qvAcceleratedLib/Operations.def"
#undef QV_OPERATION

}  // namespace qv

#endif
