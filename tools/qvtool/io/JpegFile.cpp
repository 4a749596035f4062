#include "io/JpegFile.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>
#include <jerror.h>

#include "Error.h"

// As in PngFile.cpp: libjpeg leaves through longjmp, so the functions that call it hold no objects
// that have destructors.

namespace qvtool {
namespace {

struct JpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf leave;
  char message[JMSG_LENGTH_MAX] = "";
};

void OnError(j_common_ptr jpeg) {
  auto* errors = reinterpret_cast<JpegErrors*>(jpeg->err);
  jpeg->err->format_message(jpeg, errors->message);
  std::longjmp(errors->leave, 1);
}

// libjpeg reports damaged data as a warning and goes on with grey blocks. Only what leaves the
// picture whole may pass.
void OnMessage(j_common_ptr jpeg, int level) {
  if (level >= 0) return;
  switch (jpeg->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_EXTRANEOUS_DATA:
    case JWRN_JFIF_MAJOR:
    case JWRN_TOO_MUCH_DATA: return;
    default: OnError(jpeg);
  }
}

void SetUp(JpegErrors& errors, jpeg_error_mgr*& slot) {
  slot = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = OnError;
  errors.manager.emit_message = OnMessage;
}

struct JpegReader {
  jpeg_decompress_struct jpeg = {};
  JpegErrors errors;
  ~JpegReader() { jpeg_destroy_decompress(&jpeg); }
};

struct JpegWriter {
  jpeg_compress_struct jpeg = {};
  JpegErrors errors;
  unsigned char* bytes = nullptr;
  unsigned long count = 0;
  ~JpegWriter() {
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
  }
};

constexpr int kExif = JPEG_APP0 + 1;

bool ReadHeader(JpegReader& reader, std::span<const unsigned char> bytes) {
  SetUp(reader.errors, reader.jpeg.err);
  if (setjmp(reader.errors.leave)) return false;
  jpeg_create_decompress(&reader.jpeg);
  jpeg_mem_src(&reader.jpeg, bytes.data(), bytes.size());
  constexpr int kProfile = JPEG_APP0 + 2;
  for (const int marker : {kExif, kProfile, JPEG_COM})
    jpeg_save_markers(&reader.jpeg, marker, 0xffff);
  jpeg_read_header(&reader.jpeg, TRUE);
  return true;
}

// The profile is in parts, which libjpeg puts together.
bool ReadProfile(JpegReader& reader, JOCTET** profile, unsigned* bytes) {
  if (setjmp(reader.errors.leave)) return false;
  return jpeg_read_icc_profile(&reader.jpeg, profile, bytes) != 0;
}

std::shared_ptr<const Metadata> ReadMetadata(JpegReader& reader) {
  auto metadata = std::make_shared<Metadata>();
  for (auto* marker = reader.jpeg.marker_list; marker; marker = marker->next) {
    const std::string_view text(reinterpret_cast<const char*>(marker->data), marker->data_length);
    if (marker->marker == JPEG_COM) metadata->comments.emplace_back(text);
    const std::string_view exif = marker->marker == kExif ? ExifIn(text) : "";
    if (!exif.empty()) metadata->exif.assign(exif.begin(), exif.end());
  }
  JOCTET* profile = nullptr;
  unsigned bytes = 0;
  const bool hasProfile = ReadProfile(reader, &profile, &bytes);
  const std::unique_ptr<JOCTET, decltype(&std::free)> owner(profile, std::free);
  if (hasProfile) metadata->icc.assign(profile, profile + bytes);
  if (reader.jpeg.saw_JFIF_marker) {
    constexpr Density::Unit kUnits[] = {Density::Aspect, Density::PerInch, Density::PerCentimetre};
    const int x = reader.jpeg.X_density, y = reader.jpeg.Y_density, unit = reader.jpeg.density_unit;
    const bool says = unit == 0 ? x != y : unit <= 2;  // that pixels are square goes without saying
    if (says && x > 0 && y > 0)
      metadata->density = {kUnits[unit], static_cast<double>(x), static_cast<double>(y)};
  }
  return metadata;
}

// Begins to decode into pixels, at the size that scale_denom says.
bool Start(JpegReader& reader) {
  if (setjmp(reader.errors.leave)) return false;
  const int channels = reader.jpeg.num_components;
  reader.jpeg.out_color_space = channels == 1   ? JCS_GRAYSCALE
                                : channels == 3 ? JCS_EXT_BGR
                                                : JCS_CMYK;
  jpeg_start_decompress(&reader.jpeg);
  return true;
}

// Colours that inks, of which `data` says how little there is (0 is all), leave of white.
void InksToColours(const unsigned char* data, bool inverted, const Plane& to, int y) {
  unsigned char* pixel = to.Row(y);
  const int flip = inverted ? 0 : 255;
  for (int x = 0; x < to.columns; ++x, data += 4, pixel += 3)
    for (int c = 0; c < 3; ++c)
      pixel[c] = static_cast<unsigned char>(((data[2 - c] ^ flip) * (data[3] ^ flip) + 127) / 255);
}

// `inks` is a row of four-channel samples, or null where the rows are pixels already.
bool ReadRows(JpegReader& reader, const Plane& plane, unsigned char* inks) {
  if (setjmp(reader.errors.leave)) return false;
  jpeg_decompress_struct& jpeg = reader.jpeg;
  while (jpeg.output_scanline < jpeg.output_height) {
    const int y = static_cast<int>(jpeg.output_scanline);
    JSAMPROW row = inks ? inks : plane.Row(y);
    jpeg_read_scanlines(&jpeg, &row, 1);
    // Files with an Adobe marker hold their inks upside down.
    if (inks) InksToColours(inks, jpeg.saw_Adobe_marker, plane, y);
  }
  jpeg_finish_decompress(&jpeg);
  return true;
}

// The largest of 8, 4, 2 that leaves at least another halving to be done, or 1.
unsigned Divisor(double reduction) {
  for (const unsigned divisor : {8u, 4u, 2u})
    if (reduction >= 2 * divisor) return divisor;
  return 1;
}

void WriteMetadata(JpegWriter& writer, const Metadata& metadata) {
  constexpr std::size_t kLongest = 65533;  // of a marker segment
  constexpr std::string_view kMark("Exif\0\0", 6);
  jpeg_compress_struct& jpeg = writer.jpeg;
  if (!metadata.exif.empty() && metadata.exif.size() <= kLongest - kMark.size()) {
    jpeg_write_m_header(&jpeg, kExif,
                        static_cast<unsigned>(kMark.size() + metadata.exif.size()));
    for (const char byte : kMark) jpeg_write_m_byte(&jpeg, byte);
    for (const unsigned char byte : metadata.exif) jpeg_write_m_byte(&jpeg, byte);
  }
  const Bytes& profile = metadata.ProfileFor(jpeg.input_components);
  if (!profile.empty())
    jpeg_write_icc_profile(&jpeg, profile.data(), static_cast<unsigned>(profile.size()));
  for (const std::string& comment : metadata.comments)
    jpeg_write_marker(&jpeg, JPEG_COM, reinterpret_cast<const JOCTET*>(comment.data()),
                      static_cast<unsigned>(std::min(comment.size(), kLongest)));
}

void SetDensity(jpeg_compress_struct& jpeg, const Density& given) {
  const Density density = given.unit == Density::PerMetre ? given.In(Density::PerInch) : given;
  const double x = std::round(density.x), y = std::round(density.y);
  if (density.unit == Density::None || !(x >= 1 && x <= 65535 && y >= 1 && y <= 65535)) return;
  jpeg.density_unit = static_cast<UINT8>(density.unit - Density::Aspect);
  jpeg.X_density = static_cast<UINT16>(x);
  jpeg.Y_density = static_cast<UINT16>(y);
}

bool WriteRows(JpegWriter& writer, const Plane& plane, const Metadata* metadata, int quality) {
  SetUp(writer.errors, writer.jpeg.err);
  if (setjmp(writer.errors.leave)) return false;
  jpeg_compress_struct& jpeg = writer.jpeg;
  jpeg_create_compress(&jpeg);
  jpeg_mem_dest(&jpeg, &writer.bytes, &writer.count);
  jpeg.image_width = static_cast<JDIMENSION>(plane.columns);
  jpeg.image_height = static_cast<JDIMENSION>(plane.rows);
  jpeg.input_components = plane.bytes;
  jpeg.in_color_space = plane.bytes == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, quality, TRUE);
  jpeg.optimize_coding = TRUE;
  for (int i = 0; i < jpeg.num_components; ++i)
    jpeg.comp_info[i].h_samp_factor = jpeg.comp_info[i].v_samp_factor = 1;
  if (metadata) SetDensity(jpeg, metadata->density);
  jpeg_start_compress(&jpeg, TRUE);
  if (metadata) WriteMetadata(writer, *metadata);
  while (jpeg.next_scanline < jpeg.image_height) {
    JSAMPROW row = plane.Row(static_cast<int>(jpeg.next_scanline));
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  return true;
}

}  // namespace

bool LooksLikeJpeg(std::string_view firstBytes) { return firstBytes.starts_with("\xff\xd8\xff"); }

Frame DecodeJpeg(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options) {
  JpegReader reader;
  const auto damaged = [&] { return Error(name + ": not a whole JPEG: " + reader.errors.message); };
  if (!ReadHeader(reader, bytes)) throw damaged();
  jpeg_decompress_struct& jpeg = reader.jpeg;
  const int channels = jpeg.num_components;
  if (channels != 1 && channels != 3 && channels != 4)
    throw Error(name + ": a JPEG of " + std::to_string(channels) +
                " channels; wanted is one of grey, three or four");
  const IppiSize size = {static_cast<int>(jpeg.image_width), static_cast<int>(jpeg.image_height)};
  auto metadata = ReadMetadata(reader);
  jpeg.scale_denom = Divisor(options.ReductionOf(size, *metadata));
  if (!Start(reader)) throw damaged();

  Frame frame;
  const Layout layout = channels == 1 ? Layout::Grey : Layout::Bgr;
  ResetFor(frame, layout, static_cast<int>(jpeg.output_width),
           static_cast<int>(jpeg.output_height), name);
  if (const double divisor = jpeg.scale_denom; divisor > 1)
    frame.reduction = Reduction{size, 0, 0, size.width / divisor, size.height / divisor};
  frame.metadata = std::move(metadata);
  if (options.headersOnly) return frame;
  std::vector<unsigned char> inks(channels == 4 ? jpeg.output_width * std::size_t{4} : 0);
  if (!ReadRows(reader, frame.PlaneAt(0), channels == 4 ? inks.data() : nullptr)) throw damaged();
  return frame;
}

Bytes EncodeJpeg(const Frame& frame, const std::string& name, int quality) {
  if (frame.GetLayout() != Layout::Grey && frame.GetLayout() != Layout::Bgr)
    throw Error(name + ": a JPEG holds grey or bgr pixels, and this frame is " +
                NameOf(frame.GetLayout()));
  JpegWriter writer;
  if (!WriteRows(writer, frame.PlaneAt(0), frame.metadata.get(), quality))
    throw Error(name + ": cannot be encoded as JPEG: " + writer.errors.message);
  return {writer.bytes, writer.bytes + writer.count};
}

}  // namespace qvtool
