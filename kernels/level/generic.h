// The plain level: no vectors. Its rows are the reference for all others.
#ifndef QV_KERNELS_LEVEL_GENERIC_H
#define QV_KERNELS_LEVEL_GENERIC_H

#define QV_HAS_VECTORS 0

namespace qv::QV_LEVEL {

QV_INLINE void StreamFence() {}  // nothing is written past the caches

}  // namespace qv::QV_LEVEL

#endif
