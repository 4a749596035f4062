// What statuses are called and mean.
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/qv.h"

namespace {

struct Words {
  const char* name;
  const char* text;
};

// Without a default: the compiler tells of a status that is missing.
Words WordsOf(IppStatus status) {
  switch (status) {
#define QV_STATUS(theirs, ours, text)           \
  case theirs:                                  \
    static_assert(int{ours} == int{theirs});    \
    return {#ours, text};
    QV_STATUS(StatusEmptyOutputErr, QV_STATUS_EMPTY_OUTPUT_ERR, "a scaled extent rounds to nothing")
    QV_STATUS(StatusQuadErr, QV_STATUS_QUAD_ERR, "the quadrilateral is degenerate or not convex")
    QV_STATUS(StatusRectErr, QV_STATUS_RECT_ERR, "a region is too small or outside its image")
    QV_STATUS(StatusCoeffErr, QV_STATUS_COEFF_ERR, "the transform cannot be inverted")
    QV_STATUS(StatusChannelErr, QV_STATUS_CHANNEL_ERR, "a channel count other than 1, 3 or 4")
    QV_STATUS(StatusAlphaTypeErr, QV_STATUS_ALPHA_TYPE_ERR, "an unknown composition")
    QV_STATUS(StatusResizeFactorErr, QV_STATUS_RESIZE_FACTOR_ERR,
              "a scale factor that the method does not accept")
    QV_STATUS(StatusInterpolationErr, QV_STATUS_INTERPOLATION_ERR,
              "an interpolation that the operation does not accept")
    QV_STATUS(StatusAxisErr, QV_STATUS_AXIS_ERR, "an unknown mirror axis")
    QV_STATUS(StatusStepErr, QV_STATUS_STEP_ERR, "a row step below 1")
    QV_STATUS(StatusOutOfRangeErr, QV_STATUS_OUT_OF_RANGE_ERR,
              "a number out of its range, such as a palette bit size other than 1 to 8")
    QV_STATUS(StatusMemAllocErr, QV_STATUS_MEM_ALLOC_ERR, "work memory could not be obtained")
    QV_STATUS(StatusNullPtrErr, QV_STATUS_NULL_PTR_ERR, "a required pointer is null")
    QV_STATUS(StatusSizeErr, QV_STATUS_SIZE_ERR, "a width or height below 1")
    QV_STATUS(StatusBadArgErr, QV_STATUS_BAD_ARG_ERR,
              "three corners of a quadrilateral lie on one line")
    QV_STATUS(StatusQuadSignErr, QV_STATUS_QUAD_SIGN_ERR,
              "the corners of a quadrilateral turn both ways")
    QV_STATUS(StatusDataTypeErr, QV_STATUS_DATA_TYPE_ERR,
              "a data type that the operation does not handle")
    QV_STATUS(StatusOk, QV_STATUS_OK, "success")
    QV_STATUS(StatusNothingToDoWarning, QV_STATUS_NOTHING_TO_DO_WARNING, "nothing to do")
    QV_STATUS(StatusCpuUnknown, QV_STATUS_CPU_UNKNOWN, "the processor was not recognised")
    QV_STATUS(StatusNoOverlapWarning, QV_STATUS_NO_OVERLAP_WARNING,
              "source and destination do not meet")
    QV_STATUS(StatusOddSizeWarning, QV_STATUS_ODD_SIZE_WARNING,
              "an odd last column or row was left unwritten")
#undef QV_STATUS
  }
  return {"unknown", "unknown status"};
}

}  // namespace

const char* qv_status_name(int status) { return WordsOf(static_cast<IppStatus>(status)).name; }

const char* qv_status_text(int status) { return WordsOf(static_cast<IppStatus>(status)).text; }
