// Which source position a destination pixel reads, by the code that the kernels plan with.
#include "kernels/geometry/WarpPlan.h"
#include "kernels/resize/ResizeRoute.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/FloatEnvironment.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/qv.h"

using namespace qv;

int qv_source_position(qv_size src_size, qv_rect src_roi, qv_size dst_roi_size, double x_factor,
                       double y_factor, int interpolation, int x, int y, double position[2]) {
  if (!position) return QV_STATUS_NULL_PTR_ERR;
  if (dst_roi_size.width < 1 || dst_roi_size.height < 1) return QV_STATUS_SIZE_ERR;
  const FloatEnvironment environment;
  const ResizeCall call = {nullptr,
                           {src_size.width, src_size.height},
                           0,
                           {src_roi.x, src_roi.y, src_roi.width, src_roi.height},
                           nullptr,
                           0,
                           {dst_roi_size.width, dst_roi_size.height},
                           x_factor,
                           y_factor,
                           interpolation};
  return ResizeRoute(call, Layout::kGrey, ResizeBands(call.srcSize, call.dstRoiSize, CallBudget()))
      .SourcePosition(x, y, position);
}

int qv_warp_source_position(qv_rect src_roi, const double coeffs[9], double x, double y,
                            double position[2]) {
  if (!coeffs || !position) return QV_STATUS_NULL_PTR_ERR;
  if (src_roi.width < 1 || src_roi.height < 1 || src_roi.x < 0 || src_roi.y < 0)
    return QV_STATUS_SIZE_ERR;
  const FloatEnvironment environment;
  const Corners source = CornersOf({src_roi.x, src_roi.y, src_roi.width, src_roi.height});
  const auto rows = reinterpret_cast<const double(*)[3]>(coeffs);
  return WarpSourcePosition(rows, source, x, y, position) ? QV_STATUS_OK : QV_STATUS_COEFF_ERR;
}
