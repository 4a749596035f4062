#include "io/Pictures.h"

#include <utility>

#include "Error.h"
#include "io/JpegFile.h"
#include "io/NetpbmFile.h"
#include "io/PngFile.h"
#include "io/Status.h"
#include "io/TiffFile.h"
#include "io/WebpFile.h"

namespace qvtool {
namespace {

// By 90 or 270 degrees, counter-clockwise, which moves pixels as they are.
Frame Rotated(const Frame& in, int angle) {
  Frame out(in.GetLayout(), in.Height(), in.Width());
  const bool left = angle == 90;
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane &from = in.PlaneAt(i), &to = out.PlaneAt(i);
    Check("qvRotate",
          CqvAccLib::qvRotate(from.Type("turning"), from.data, from.Size(), from.step, in.Bounds(),
                              to.data, to.step, out.Bounds(), angle, left ? 0 : in.Height() - 1,
                              left ? in.Width() - 1 : 0, InterpolateNearest));
  }
  if (const auto& part = in.reduction) {
    const double right = in.Width() - part->x - part->width;
    const double bottom = in.Height() - part->y - part->height;
    out.reduction = Reduction{{part->size.height, part->size.width},
                              left ? part->y : bottom,
                              left ? right : part->x,
                              part->height,
                              part->width};
  }
  return out;
}

Frame Mirrored(const Frame& in, IppiAxis axis) {
  Frame out(in.GetLayout(), in.Width(), in.Height());
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane &from = in.PlaneAt(i), &to = out.PlaneAt(i);
    Check("qvMirror", CqvAccLib::qvMirror(from.Type("turning"), from.data, from.step, to.data,
                                          to.step, from.Size(), axis));
  }
  out.reduction = in.reduction;
  if (auto& part = out.reduction) {
    if (axis != AxisHorizontal) part->x = in.Width() - part->x - part->width;
    if (axis != AxisVertical) part->y = in.Height() - part->y - part->height;
  }
  return out;
}

Bytes WritePng(const Frame& frame, const std::string& name, int) { return EncodePng(frame, name); }

Bytes WriteNetpbm(const Frame& frame, const std::string& name, int) {
  return EncodeNetpbm(frame, name);
}

constexpr PictureFormat kFormats[] = {
    {FileFormat::Png, LooksLikePng, DecodePng, WritePng, true},
    {FileFormat::Jpeg, LooksLikeJpeg, DecodeJpeg, EncodeJpeg, false},
    {FileFormat::Netpbm, LooksLikeNetpbm, DecodeNetpbm, WriteNetpbm, false},
#ifdef QVTOOL_WEBP
    {FileFormat::Webp, LooksLikeWebp, DecodeWebp, nullptr, false},
#endif
#ifdef QVTOOL_TIFF
    {FileFormat::Tiff, LooksLikeTiff, DecodeTiff, nullptr, false},
#endif
};

}  // namespace

const char* NameOf(FileFormat format) {
  switch (format) {
    case FileFormat::Png: return "PNG";
    case FileFormat::Jpeg: return "JPEG";
    case FileFormat::Netpbm: return "PGM/PPM";
    case FileFormat::Webp: return "WebP";
    case FileFormat::Tiff: return "TIFF";
    case FileFormat::Y4m: return "Y4M";
    case FileFormat::Raw: return "raw frames";
  }
  return "";
}

const PictureFormat* PictureFormatOf(std::string_view firstBytes) {
  for (const PictureFormat& format : kFormats)
    if (format.looksLike(firstBytes)) return &format;
  return nullptr;
}

const PictureFormat* PictureFormatOf(FileFormat wanted) {
  for (const PictureFormat& format : kFormats)
    if (format.format == wanted) return &format;
  return nullptr;
}

std::string PictureFormatNames() {
  std::string names;
  for (const PictureFormat& format : kFormats)
    names += (names.empty() ? "" : ", ") + std::string(NameOf(format.format));
  return names;
}

double DecodeOptions::ReductionOf(IppiSize size, const Metadata& metadata) const {
  return reduction ? reduction(Turned(size, metadata)) : 1;
}

IppiSize DecodeOptions::Turned(IppiSize size, const Metadata& metadata) const {
  if (!keepOrientation && metadata.Orientation() >= 5) std::swap(size.width, size.height);
  return size;
}

void ResetFor(Frame& frame, Layout layout, int width, int height, const std::string& name) {
  try {
    frame.Reset(layout, width, height);
  } catch (const Error& error) {
    throw Error(name + ": " + error.what());
  }
}

void TurnUpright(Frame& frame) {
  if (!frame.metadata) return;
  auto upright = std::make_shared<Metadata>(*frame.metadata);
  const int orientation = upright->Orientation();
  if (orientation == 5 || orientation == 6) frame = Rotated(frame, 270);
  if (orientation == 7 || orientation == 8) frame = Rotated(frame, 90);
  switch (orientation) {
    case 2:
    case 5:
    case 7: frame = Mirrored(frame, AxisVertical); break;
    case 3: frame = Mirrored(frame, AxisBoth); break;
    case 4: frame = Mirrored(frame, AxisHorizontal); break;
    default: break;
  }
  upright->SetUpright();
  frame.metadata = std::move(upright);
}

}  // namespace qvtool
