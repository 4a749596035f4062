// The operations of the class as functions of C.
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/qv.h"

#define QV_SAME(ours, theirs) static_assert(int{ours} == int{theirs})
QV_SAME(QV_ONE_CHANNEL, CqvAccLib::OneChannel);
QV_SAME(QV_THREE_CHANNELS, CqvAccLib::ThreeChannels);
QV_SAME(QV_PLANE_TO_THREE_CHANNELS, CqvAccLib::PlaneToThreeChannels);
QV_SAME(QV_FOUR_TO_THREE_CHANNELS, CqvAccLib::FourToThreeChannels);
QV_SAME(QV_THREE_TO_FOUR_CHANNELS, CqvAccLib::ThreeToFourChannels);
QV_SAME(QV_SCALE_PLANE, CqvAccLib::ScalePlane);
QV_SAME(QV_INTERPOLATE_NEAREST, InterpolateNearest);
QV_SAME(QV_INTERPOLATE_LINEAR, InterpolateLinear);
QV_SAME(QV_INTERPOLATE_CUBIC, InterpolateCubic);
QV_SAME(QV_INTERPOLATE_AREA, InterpolateArea);
QV_SAME(QV_INTERPOLATE_LANCZOS, InterpolateLanczos);
QV_SAME(QV_AXIS_HORIZONTAL, AxisHorizontal);
QV_SAME(QV_AXIS_VERTICAL, AxisVertical);
QV_SAME(QV_AXIS_BOTH, AxisBoth);
QV_SAME(QV_ALPHA_OVER, AlphaOver);
QV_SAME(QV_ALPHA_IN, AlphaIn);
QV_SAME(QV_ALPHA_OUT, AlphaOut);
QV_SAME(QV_ALPHA_ATOP, AlphaAtop);
QV_SAME(QV_ALPHA_XOR, AlphaXor);
QV_SAME(QV_ALPHA_PLUS, AlphaPlus);
QV_SAME(QV_ALPHA_OVER_PREMUL, AlphaOverPremul);
QV_SAME(QV_ALPHA_IN_PREMUL, AlphaInPremul);
QV_SAME(QV_ALPHA_OUT_PREMUL, AlphaOutPremul);
QV_SAME(QV_ALPHA_ATOP_PREMUL, AlphaAtopPremul);
QV_SAME(QV_ALPHA_XOR_PREMUL, AlphaXorPremul);
QV_SAME(QV_ALPHA_PLUS_PREMUL, AlphaPlusPremul);
#undef QV_SAME

// Every operation of the roll is declared.
#define QV_OPERATION(name, family, cName) static_assert(sizeof(&cName) > 0);
#include "qvAcceleratedLib/Operations.def"
#undef QV_OPERATION

namespace {

// Arguments of C as those of the class. What it only reads it takes without const in places.
template <class To>
To As(int code) {
  return static_cast<To>(code);
}
template <class To>
To As(unsigned number) {
  return number;
}
template <class To>
To As(double number) {
  return number;
}
template <class To>
To As(qv_size size) {
  return {size.width, size.height};
}
template <class To>
To As(qv_rect rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}
// Doubles one after the other are rows of doubles.
template <class To>
To As(const double* numbers) {
  return reinterpret_cast<To>(const_cast<double*>(numbers));
}
template <class To>
To As(double* numbers) {
  return reinterpret_cast<To>(numbers);
}
template <class To, class T>
To As(T* pointer) {
  return const_cast<To>(pointer);
}

template <class... Parameters, class... Arguments>
int Call(IppStatus (*operation)(Parameters...), Arguments... arguments) {
  return operation(As<Parameters>(arguments)...);
}

}  // namespace

int qv_copy(int type, const unsigned char* src, int src_step, unsigned char* dst, int dst_step,
            qv_size size) {
  return Call(CqvAccLib::qvCopy, type, src, src_step, dst, dst_step, size);
}

int qv_dup(int type, const unsigned char* src, int src_step, unsigned char* dst, int dst_step,
           qv_size size) {
  return Call(CqvAccLib::qvDup, type, src, src_step, dst, dst_step, size);
}

int qv_set(int type, const unsigned char* value, unsigned char* dst, int dst_step, qv_size size) {
  return Call(CqvAccLib::qvSet, type, value, dst, dst_step, size);
}

int qv_mirror(int type, const unsigned char* src, int src_step, unsigned char* dst, int dst_step,
              qv_size size, int axis) {
  return Call(CqvAccLib::qvMirror, type, src, src_step, dst, dst_step, size, axis);
}

int qv_lut_palette(int type, const unsigned char* src, int src_step, unsigned char* dst,
                   int dst_step, qv_size size, const unsigned char* palette, int bit_size) {
  return Call(CqvAccLib::qvLUTPalette, type, src, src_step, dst, dst_step, size, palette, bit_size);
}

int qv_mul_c_scale(int type, unsigned char value, unsigned char* src_dst, int src_dst_step,
                   qv_size size) {
  return Call(CqvAccLib::qvMulCScale, type, value, src_dst, src_dst_step, size);
}

int qv_crc32(int type, const unsigned char* src, int length, unsigned int* crc) {
  return Call(CqvAccLib::qvCRC32, type, src, length, crc);
}

int qv_adler32(int type, const unsigned char* src, int length, unsigned int* adler) {
  return Call(CqvAccLib::qvAdler32, type, src, length, adler);
}

int qv_ycbcr420(int type, const unsigned char* src_y, int src_y_step, const unsigned char* src_cbcr,
                int src_cbcr_step, unsigned char* const dst[3], const int dst_step[3],
                qv_size size) {
  return Call(CqvAccLib::qvYCbCr420, type, src_y, src_y_step, src_cbcr, src_cbcr_step, dst,
              dst_step, size);
}

int qv_ycbcr422_to_ycrcb420(int type, const unsigned char* src, int src_step,
                            unsigned char* const dst[3], const int dst_step[3], qv_size size) {
  return Call(CqvAccLib::qvYCbCr422ToYCrCb420, type, src, src_step, dst, dst_step, size);
}

int qv_ycbcr420_to_bgr(int type, const unsigned char* const src[3], const int src_step[3],
                       unsigned char* dst, int dst_step, qv_size size) {
  return Call(CqvAccLib::qvYCbCr420ToBGR, type, src, src_step, dst, dst_step, size);
}

int qv_ycbcr422_to_bgr(int type, const unsigned char* src, int src_step, unsigned char* dst,
                       int dst_step, qv_size size) {
  return Call(CqvAccLib::qvYCbCr422ToBGR, type, src, src_step, dst, dst_step, size);
}

int qv_resize(int type, const unsigned char* src, qv_size src_size, int src_step, qv_rect src_roi,
              unsigned char* dst, int dst_step, qv_size dst_roi_size, double x_factor,
              double y_factor, int interpolation) {
  return Call(CqvAccLib::qvResize, type, src, src_size, src_step, src_roi, dst, dst_step,
              dst_roi_size, x_factor, y_factor, interpolation);
}

int qv_resize_yuv422(int type, const unsigned char* src, qv_size src_size, int src_step,
                     qv_rect src_roi, unsigned char* dst, int dst_step, qv_size dst_roi_size,
                     double x_factor, double y_factor, int interpolation) {
  return Call(CqvAccLib::qvResizeYUV422, type, src, src_size, src_step, src_roi, dst, dst_step,
              dst_roi_size, x_factor, y_factor, interpolation);
}

int qv_rotate(int type, const unsigned char* src, qv_size src_size, int src_step, qv_rect src_roi,
              unsigned char* dst, int dst_step, qv_rect dst_roi, double angle, double x_shift,
              double y_shift, int interpolation) {
  return Call(CqvAccLib::qvRotate, type, src, src_size, src_step, src_roi, dst, dst_step, dst_roi,
              angle, x_shift, y_shift, interpolation);
}

int qv_warp_perspective(int type, const unsigned char* src, qv_size src_size, int src_step,
                        qv_rect src_roi, unsigned char* dst, int dst_step, qv_rect dst_roi,
                        const double coeffs[9], int interpolation) {
  return Call(CqvAccLib::qvWarpPerspective, type, src, src_size, src_step, src_roi, dst, dst_step,
              dst_roi, coeffs, interpolation);
}

int qv_warp_perspective_ex(int type, const unsigned char* src, qv_size src_size, int src_step,
                           qv_rect src_roi, unsigned char* dst, int dst_step, qv_rect dst_roi,
                           const double coeffs[9], int interpolation, const unsigned char* src2,
                           int src2_step, unsigned char* dst2, int dst2_step,
                           const double coeffs2[9]) {
  return Call(CqvAccLib::qvWarpPerspectiveEx, type, src, src_size, src_step, src_roi, dst, dst_step,
              dst_roi, coeffs, interpolation, src2, src2_step, dst2, dst2_step, coeffs2);
}

int qv_get_perspective_transform(int type, qv_rect roi, const double quad[8], double coeffs[9]) {
  return Call(CqvAccLib::qvGetPerspectiveTransform, type, roi, quad, coeffs);
}

int qv_get_rotate_bound(int type, qv_rect roi, double bound[4], double angle, double x_shift,
                        double y_shift) {
  return Call(CqvAccLib::qvGetRotateBound, type, roi, bound, angle, x_shift, y_shift);
}

int qv_alpha_comp_c(int type, const unsigned char* src1, int src1_step, unsigned char alpha1,
                    const unsigned char* src2, int src2_step, unsigned char alpha2,
                    unsigned char* dst, int dst_step, qv_size size, int alpha_type) {
  return Call(CqvAccLib::qvAlphaCompC, type, src1, src1_step, alpha1, src2, src2_step, alpha2, dst,
              dst_step, size, alpha_type);
}

int qv_merge_alpha_over(int type, unsigned char* fg, int fg_step, const unsigned char* fg_alpha,
                        int fg_alpha_step, const unsigned char* bg, int bg_step,
                        const unsigned char* bg_alpha, int bg_alpha_step, unsigned char* dst_alpha,
                        int row_bytes, int width, int height) {
  return Call(CqvAccLib::qvMergeAlphaOver, type, fg, fg_step, fg_alpha, fg_alpha_step, bg, bg_step,
              bg_alpha, bg_alpha_step, dst_alpha, row_bytes, width, height);
}

int qv_merge_alpha_plus(int type, unsigned char* src_dst, int src_dst_step,
                        const unsigned char* src, int src_step, const unsigned char* alpha,
                        int alpha_step, int width, int height) {
  return Call(CqvAccLib::qvMergeAlphaPlus, type, src_dst, src_dst_step, src, src_step, alpha,
              alpha_step, width, height);
}

int qv_deinterlace(int type, const unsigned char* src, int src_step, unsigned char* dst,
                   int dst_step, qv_size size, unsigned int centre_weight, unsigned int mode) {
  return Call(CqvAccLib::qvDeinterlace, type, src, src_step, dst, dst_step, size, centre_weight,
              mode);
}
