#include "io/Status.h"

#include <string>

#include "Error.h"

namespace qvtool {

const char* Meaning(IppStatus status) {
  switch (status) {
    case StatusOk: return "success";
    case StatusEmptyOutputErr: return "a scaled extent rounds to nothing";
    case StatusQuadErr: return "the quadrilateral is degenerate or not convex";
    case StatusRectErr: return "a region is too small or outside its image";
    case StatusCoeffErr: return "the transform cannot be inverted";
    case StatusChannelErr: return "a channel count other than 1, 3 or 4";
    case StatusAlphaTypeErr: return "an unknown composition";
    case StatusResizeFactorErr: return "a scale factor that the method does not accept";
    case StatusInterpolationErr: return "an interpolation that the operation does not accept";
    case StatusAxisErr: return "an unknown mirror axis";
    case StatusStepErr: return "a row step below 1";
    case StatusOutOfRangeErr: return "a palette bit size other than 1 to 8";
    case StatusMemAllocErr: return "work memory could not be obtained";
    case StatusNullPtrErr: return "a required pointer is null";
    case StatusSizeErr: return "a width or height below 1";
    case StatusDataTypeErr: return "a data type that the operation does not handle";
    case StatusNothingToDoWarning: return "nothing to do";
    case StatusNoOverlapWarning: return "source and destination do not meet";
    case StatusOddSizeWarning: return "an odd last column or row was left unwritten";
    default: return "unknown status";
  }
}

void Check(const char* operation, IppStatus status) {
  if (status < 0)
    throw Error(std::string(operation) + " answered " + std::to_string(status) + ": " +
                Meaning(status));
}

}  // namespace qvtool
