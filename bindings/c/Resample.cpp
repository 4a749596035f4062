// Resampling for C.
#include "qvAcceleratedLib/Resample.h"

#include "qvAcceleratedLib/qv.h"

#define QV_SAME(ours, theirs) static_assert(int{ours} == static_cast<int>(theirs))
QV_SAME(QV_PIXELS_ONE, qv::PixelKind::kOne);
QV_SAME(QV_PIXELS_TWO, qv::PixelKind::kTwo);
QV_SAME(QV_PIXELS_THREE, qv::PixelKind::kThree);
QV_SAME(QV_PIXELS_FOUR, qv::PixelKind::kFour);
QV_SAME(QV_PIXELS_PREMULTIPLIED, qv::PixelKind::kPremultiplied);
QV_SAME(QV_PIXELS_STRAIGHT, qv::PixelKind::kStraight);
QV_SAME(QV_INTERPOLATE_MITCHELL, qv::kMitchell);
QV_SAME(QV_POSITION_CENTRES, qv::PositionRule::kCentres);
QV_SAME(QV_POSITION_CORNERS, qv::PositionRule::kCorners);
#undef QV_SAME

int qv_resample(const unsigned char* src, qv_size src_size, int src_step, unsigned char* dst,
                qv_size dst_size, int dst_step, const qv_resample_options* options) {
  qv::ResampleOptions o = {};
  if (options) {
    o = {options->pixels,        options->filter,      options->position,     options->narrow,
         options->region_x,      options->region_y,    options->region_width,
         options->region_height,
         options->src_phase_x,   options->src_phase_y, options->dst_phase_x,  options->dst_phase_y,
         options->cubic};
  }
  return qv::Resample({src, {src_size.width, src_size.height}, src_step, dst,
                       {dst_size.width, dst_size.height}, dst_step},
                      options ? &o : nullptr);
}
