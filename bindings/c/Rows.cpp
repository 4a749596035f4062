// Bytes of rows.
#include <limits.h>

#include "qvAcceleratedLib/qv.h"

namespace {

// Bytes of a row's first plane; 0 for a layout that there is none of.
long long RowBytes(int layout, long long width) {
  switch (layout) {
    case QV_LAYOUT_GREY:
    case QV_LAYOUT_I420:
    case QV_LAYOUT_YV12:
    case QV_LAYOUT_NV12:
    case QV_LAYOUT_NV21:
    case QV_LAYOUT_I422:
    case QV_LAYOUT_I444: return width;
    case QV_LAYOUT_BGR:
    case QV_LAYOUT_RGB: return 3 * width;
    case QV_LAYOUT_BGRA:
    case QV_LAYOUT_RGBA: return 4 * width;
    case QV_LAYOUT_YUYV:
    case QV_LAYOUT_UYVY: return 4 * ((width + 1) / 2);
    default: return 0;
  }
}

}  // namespace

int qv_row_bytes(int layout, int width) {
  const long long bytes = RowBytes(layout, width);
  if (RowBytes(layout, 1) == 0) return QV_STATUS_DATA_TYPE_ERR;
  if (width < 1 || bytes > INT_MAX) return QV_STATUS_SIZE_ERR;
  return static_cast<int>(bytes);
}
