#include "qvAcceleratedLib/Resample.h"

#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"

namespace qv {

namespace {

// Each band has scratch memory of its own, all of it obtained before anything is written.
IppStatus RunPlanned(const Resampling& plan, IppiSize size) {
  const Bands bands = PlanBands(size.height, CallBudget());
  const uint64_t bytes = (plan.ScratchBytes() + 63) / 64 * 64;
  WorkLayout layout;
  layout.Add<char>(bytes * static_cast<unsigned>(bands.count));
  const WorkMemory scratch(layout);
  if (!scratch) return StatusMemAllocErr;
  const Work work = {1ll * size.width * size.height, MethodOf(Resample, plan.Method())};
  return RunBands(bands, work, [&](Band band) {
    const FloatEnvironment environment;
    const auto index = static_cast<uint64_t>(band.first / bands.rows);
    plan.Run(static_cast<int>(band.first), band.length, scratch.At<char>(index * bytes));
    return StatusOk;
  });
}

}  // namespace

IppStatus Resample(const ResampleImages& images, const ResampleOptions* options) {
  const FloatEnvironment environment;
  Resampling plan;
  const IppStatus status = plan.Plan(images, options);
  return status == StatusOk ? RunPlanned(plan, images.dstSize) : status;
}

}  // namespace qv
