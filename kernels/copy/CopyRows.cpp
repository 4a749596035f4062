// Copies that keep or change the pixel layout.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

using RowFunction = void(const Byte* src, Byte* dst, ptrdiff_t width);

// ---- Plain rows ---------------------------------------------------------------------------------

[[maybe_unused]] void ChannelRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t k = 0; k < width; ++k) dst[3 * k] = src[k];
}

[[maybe_unused]] void DropAlphaRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t k = 0; k < width; ++k)
    for (int c = 0; c < 3; ++c) dst[3 * k + c] = src[4 * k + c];
}

[[maybe_unused]] void KeepAlphaRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t k = 0; k < width; ++k)
    for (int c = 0; c < 3; ++c) dst[4 * k + c] = src[3 * k + c];
}

[[maybe_unused]] void DupGrayRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t k = 0; k < width; ++k)
    for (int c = 0; c < 3; ++c) dst[3 * k + c] = src[k];
}

#if !QV_HAS_VECTORS

constexpr RowFunction* ChannelRow = ChannelRowPlain;
constexpr RowFunction* DropAlphaRow = DropAlphaRowPlain;
constexpr RowFunction* KeepAlphaRow = KeepAlphaRowPlain;
constexpr RowFunction* DupGrayRow = DupGrayRowPlain;

#else

constexpr RowFunction* ChannelRow = ChannelRowPlain;
constexpr RowFunction* DropAlphaRow = DropAlphaRowPlain;
constexpr RowFunction* KeepAlphaRow = KeepAlphaRowPlain;
constexpr RowFunction* DupGrayRow = DupGrayRowPlain;

#endif

template <RowFunction* row>
QV_INLINE IppStatus RunRows(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  if (const IppStatus status = CheckImages(src, dst, size.width, size.height); status != StatusOk)
    return status;
  for (int y = 0; y < size.height; ++y)
    row(RowAt(src, srcStep, y), RowAt(dst, dstStep, y), size.width);
  return StatusOk;
}

// The same bytes in the same order. Rows without gaps between them are moved as one.
QV_INLINE IppStatus CopyBytes(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size,
                              int pixelBytes) {
  if (const IppStatus status = CheckImages(src, dst, size.width, size.height); status != StatusOk)
    return status;
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(size.width) * pixelBytes;
  if (srcStep == rowBytes && dstStep == rowBytes) {
    memcpy(dst, src, static_cast<size_t>(rowBytes) * static_cast<size_t>(size.height));
    return StatusOk;
  }
  for (int y = 0; y < size.height; ++y)
    memcpy(RowAt(dst, dstStep, y), RowAt(src, srcStep, y), static_cast<size_t>(rowBytes));
  return StatusOk;
}

}  // namespace

IppStatus CopyRows_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  return CopyBytes(src, srcStep, dst, dstStep, size, 1);
}

IppStatus CopyRows_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  return CopyBytes(src, srcStep, dst, dstStep, size, 3);
}

IppStatus CopyChannel_8u_C1C3(const Byte* src, int srcStep, Byte* dst, int dstStep,
                              IppiSize size) {
  return RunRows<ChannelRow>(src, srcStep, dst, dstStep, size);
}

IppStatus CopyDropAlpha_8u_AC4C3(const Byte* src, int srcStep, Byte* dst, int dstStep,
                                 IppiSize size) {
  return RunRows<DropAlphaRow>(src, srcStep, dst, dstStep, size);
}

IppStatus CopyKeepAlpha_8u_C3AC4(const Byte* src, int srcStep, Byte* dst, int dstStep,
                                 IppiSize size) {
  return RunRows<KeepAlphaRow>(src, srcStep, dst, dstStep, size);
}

IppStatus DupGray_8u_C1C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  return RunRows<DupGrayRow>(src, srcStep, dst, dstStep, size);
}

}  // namespace qv::QV_LEVEL
