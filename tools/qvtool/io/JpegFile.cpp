#include "io/JpegFile.h"

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

bool ReadHeader(JpegReader& reader, std::span<const unsigned char> bytes) {
  SetUp(reader.errors, reader.jpeg.err);
  if (setjmp(reader.errors.leave)) return false;
  jpeg_create_decompress(&reader.jpeg);
  jpeg_mem_src(&reader.jpeg, bytes.data(), bytes.size());
  jpeg_read_header(&reader.jpeg, TRUE);
  return true;
}

bool ReadRows(JpegReader& reader, const Plane& plane) {
  if (setjmp(reader.errors.leave)) return false;
  reader.jpeg.out_color_space = plane.bytes == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
  jpeg_start_decompress(&reader.jpeg);
  while (reader.jpeg.output_scanline < reader.jpeg.output_height) {
    JSAMPROW row = plane.Row(static_cast<int>(reader.jpeg.output_scanline));
    jpeg_read_scanlines(&reader.jpeg, &row, 1);
  }
  jpeg_finish_decompress(&reader.jpeg);
  return true;
}

bool WriteRows(JpegWriter& writer, const Plane& plane, int quality) {
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
  jpeg_start_compress(&jpeg, TRUE);
  while (jpeg.next_scanline < jpeg.image_height) {
    JSAMPROW row = plane.Row(static_cast<int>(jpeg.next_scanline));
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  return true;
}

}  // namespace

bool LooksLikeJpeg(std::string_view firstBytes) { return firstBytes.starts_with("\xff\xd8\xff"); }

Frame DecodeJpeg(std::span<const unsigned char> bytes, const std::string& name) {
  JpegReader reader;
  const auto damaged = [&] { return Error(name + ": not a whole JPEG: " + reader.errors.message); };
  if (!ReadHeader(reader, bytes)) throw damaged();
  const int channels = reader.jpeg.num_components;
  if (channels != 1 && channels != 3)
    throw Error(name + ": a JPEG of " + std::to_string(channels) +
                " channels; wanted is grey or three-channel colour");
  Frame frame;
  try {
    frame.Reset(channels == 1 ? Layout::Grey : Layout::Bgr,
                static_cast<int>(reader.jpeg.image_width),
                static_cast<int>(reader.jpeg.image_height));
  } catch (const Error& error) {
    throw Error(name + ": " + error.what());
  }
  if (!ReadRows(reader, frame.PlaneAt(0))) throw damaged();
  return frame;
}

std::vector<unsigned char> EncodeJpeg(const Frame& frame, const std::string& name, int quality) {
  if (frame.GetLayout() != Layout::Grey && frame.GetLayout() != Layout::Bgr)
    throw Error(name + ": a JPEG holds grey or bgr pixels, and this frame is " +
                NameOf(frame.GetLayout()));
  JpegWriter writer;
  if (!WriteRows(writer, frame.PlaneAt(0), quality))
    throw Error(name + ": cannot be encoded as JPEG: " + writer.errors.message);
  return {writer.bytes, writer.bytes + writer.count};
}

}  // namespace qvtool
