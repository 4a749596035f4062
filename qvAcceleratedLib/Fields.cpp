#include "qvAcceleratedLib/Fields.h"

#include <limits.h>

#include "kernels/copy/Copy.h"
#include "kernels/deinterlace/Deinterlace.h"
#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"

namespace qv {

namespace {

bool IsOrder(int fieldOrder) {
  return fieldOrder == TopFieldFirst || fieldOrder == BottomFieldFirst;
}

// Some lines of a field to every other row from `dst` on.
void CopyLines(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int bytes,
               int lines) {
  if (dstStep >= INT_MIN / 2 && dstStep <= INT_MAX / 2) {
    CopyRows_8u_C1(src, srcStep, dst, 2 * dstStep, {bytes, lines});
    return;
  }
  for (long long k = 0; k < lines; ++k)
    CopyRows_8u_C1(Advance(src, k * srcStep), srcStep, Advance(dst, 2 * k * dstStep), dstStep,
                   {bytes, 1});
}

}  // namespace

IppStatus DeinterlaceBob(const unsigned char* src, int srcStep, unsigned char* first,
                         int firstStep, unsigned char* second, int secondStep, IppiSize size,
                         int fieldOrder, int centreWeight) {
  if (!src || !first) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 2) return StatusSizeErr;
  if (!IsOrder(fieldOrder) || centreWeight < 0 || centreWeight > 256) return StatusOutOfRangeErr;
  // Of the doubled field's rows around a missing one two are the same line.
  const int farWeight = (256 - centreWeight) / 2;
  const Work work = {(second ? 2ll : 1ll) * size.width * size.height,
                     MethodOf(FieldToFrame_8u, farWeight)};
  return RunBands(PlanBands(size.height, CallBudget()), work, [&](Band band) {
    // Both fields of a few rows at a time, while the source's are in the cache.
    constexpr int kRows = 32;
    for (int done = 0; done < band.length; done += kRows) {
      const int y = static_cast<int>(band.first) + done;
      const int rows = band.length - done < kRows ? band.length - done : kRows;
      FieldToFrame_8u(src, srcStep, first, firstStep, size.width, size.height, fieldOrder,
                      farWeight, y, rows);
      if (second)
        FieldToFrame_8u(src, srcStep, second, secondStep, size.width, size.height, 1 - fieldOrder,
                        farWeight, y, rows);
    }
    return StatusOk;
  });
}

IppStatus Weave(const unsigned char* first, int firstStep, const unsigned char* second,
                int secondStep, unsigned char* dst, int dstStep, IppiSize size, int fieldOrder) {
  if (!first || !second || !dst) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 2) return StatusSizeErr;
  if (!IsOrder(fieldOrder)) return StatusOutOfRangeErr;
  const Work work = {1ll * size.width * size.height, MethodOf(Weave)};
  return RunBands(PlanEvenBands(size.height, CallBudget()), work, [&](Band band) {
    const auto put = [&](const unsigned char* field, int step, int parity) {
      CopyLines(Advance(field, band.first / 2 * step), step,
                Advance(dst, (band.first + parity) * dstStep), dstStep, size.width,
                (band.length + 1 - parity) / 2);
    };
    put(first, firstStep, fieldOrder);
    put(second, secondStep, 1 - fieldOrder);
    return StatusOk;
  });
}

}  // namespace qv
