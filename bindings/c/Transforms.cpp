// Matrices and canvases as functions of C.
#include "kernels/geometry/Transform.h"
#include "qvAcceleratedLib/FloatEnvironment.h"
#include "qvAcceleratedLib/qv.h"

int qv_invert_transform(const double coeffs[9], double inverse[9]) {
  if (!coeffs || !inverse) return StatusNullPtrErr;
  const qv::FloatEnvironment environment;
  return qv::InvertTransform_64f(reinterpret_cast<const double(*)[3]>(coeffs),
                                 reinterpret_cast<double(*)[3]>(inverse));
}

int qv_rotation_canvas(qv_size size, double angle, qv_size* canvas, double shift[2]) {
  if (!canvas || !shift) return StatusNullPtrErr;
  const qv::FloatEnvironment environment;
  IppiSize found;
  const IppStatus status =
      qv::RotationCanvas_64f({size.width, size.height}, angle, &found, shift);
  if (status == StatusOk) *canvas = {found.width, found.height};
  return status;
}
