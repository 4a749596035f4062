// The entries that the families' headers declare, each with its table of rows.
#include "dispatch/DispatchTable.h"
#include "kernels/checksum/Checksum.h"
#include "kernels/color/Color.h"
#include "kernels/composite/Composite.h"
#include "kernels/copy/Copy.h"
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/geometry/Geometry.h"
#include "kernels/resample/ResampleRows.h"
#include "kernels/resize/Filter.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/yuv/Yuv.h"

#define QV_DECLARE_ROWS(level, slot, wide, kernel) \
  namespace level { decltype(qv::kernel)::Rows kernel; }

// Rows of a level that has none, or is not built, are declared above but are not there.
#define QV_OWN_ROWS(level, slot, wide, kernel) \
  kLevels.Has(LevelId::level) ? level::kernel : nullptr,

#define QV_KERNEL(kernel, ...) QV_KERNEL_BY_WIDTH(kernel, -1, __VA_ARGS__)
#define QV_KERNEL_BY_WIDTH(kernel, width, ...)                     \
  namespace qv {                                                   \
  QV_EACH_LEVEL(QV_DECLARE_ROWS, kernel)                           \
  namespace {                                                      \
  struct kernel##_Own {                                            \
    using Rows = decltype(qv::kernel)::Rows;                       \
    static constexpr int kWidth = width;                           \
    static constexpr LevelSet kLevels =                            \
        QV_LEVEL_SET(__VA_ARGS__) & QV_LEVEL_SET(QV_BUILT_LEVELS); \
    static constexpr Rows* kRows[kLevelCount] = {                  \
        QV_EACH_LEVEL(QV_OWN_ROWS, kernel)};                       \
  };                                                               \
  }                                                                \
  constinit decltype(kernel)                                       \
      kernel = MakeDispatched<kernel##_Own>();                     \
  }
#include "kernels/Kernels.def"
