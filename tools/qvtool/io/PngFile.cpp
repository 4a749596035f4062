#include "io/PngFile.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstring>

#include "Error.h"
#include "io/Status.h"

// libpng leaves through longjmp. It may not jump over objects that have destructors, so the
// functions that call it hold none: they answer false, and the text waits in the state.

namespace qvtool {
namespace {

constexpr const char* kComment = "Comment";

struct PngState {
  png_structp png = nullptr;
  png_infop info = nullptr;
  bool writing = false;
  char message[200] = "";

  // Reading.
  const unsigned char* at = nullptr;
  const unsigned char* end = nullptr;
  int width = 0;
  int height = 0;
  Layout layout = Layout::Grey;
  int paletteBits = 0;  // 0: the samples are not indices
  unsigned char palette[256 * 3] = {};

  // Writing.
  std::vector<unsigned char>* out = nullptr;

  ~PngState() {
    if (writing)
      png_destroy_write_struct(&png, &info);
    else
      png_destroy_read_struct(&png, &info, nullptr);
  }
};

void OnError(png_structp png, png_const_charp message) {
  auto* state = static_cast<PngState*>(png_get_error_ptr(png));
  std::strncpy(state->message, message, sizeof state->message - 1);
  png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

void OnRead(png_structp png, png_bytep to, png_size_t count) {
  auto* state = static_cast<PngState*>(png_get_io_ptr(png));
  if (static_cast<png_size_t>(state->end - state->at) < count) png_error(png, "it is cut short");
  std::memcpy(to, state->at, count);
  state->at += count;
}

bool Append(std::vector<unsigned char>& out, const unsigned char* bytes,
            std::size_t count) noexcept {
  try {
    out.insert(out.end(), bytes, bytes + count);
    return true;
  } catch (...) {
    return false;
  }
}

void OnWrite(png_structp png, png_bytep bytes, png_size_t count) {
  auto* state = static_cast<PngState*>(png_get_io_ptr(png));
  if (!Append(*state->out, bytes, count)) png_error(png, "out of memory");
}

void OnFlush(png_structp) {}

bool ReadHeader(PngState& state) {
  if (setjmp(png_jmpbuf(state.png))) return false;
  png_set_read_fn(state.png, &state, OnRead);
  png_read_info(state.png, state.info);
  const int depth = png_get_bit_depth(state.png, state.info);
  const int colour = png_get_color_type(state.png, state.info);
  const bool transparent = png_get_valid(state.png, state.info, PNG_INFO_tRNS) != 0;
  state.width = static_cast<int>(png_get_image_width(state.png, state.info));
  state.height = static_cast<int>(png_get_image_height(state.png, state.info));

  if (depth == 16) png_set_scale_16(state.png);
  if (colour == PNG_COLOR_TYPE_PALETTE && !transparent) {
    // The indices are kept, one a byte, and looked up by qvLUTPalette.
    png_colorp entries = nullptr;
    int count = 0;
    png_get_PLTE(state.png, state.info, &entries, &count);
    for (int i = 0; i < count && i < 256; ++i) {
      state.palette[3 * i] = entries[i].blue;
      state.palette[3 * i + 1] = entries[i].green;
      state.palette[3 * i + 2] = entries[i].red;
    }
    state.paletteBits = depth;
    state.layout = Layout::Bgr;
    png_set_packing(state.png);
  } else {
    const bool alpha = transparent || (colour & PNG_COLOR_MASK_ALPHA);
    const bool grey = !(colour & PNG_COLOR_MASK_COLOR);
    state.layout = alpha ? Layout::Bgra : grey ? Layout::Grey : Layout::Bgr;
    png_set_expand(state.png);
    if (grey && alpha) png_set_gray_to_rgb(state.png);
    if (alpha || !grey) png_set_bgr(state.png);
  }
  png_set_interlace_handling(state.png);
  png_read_update_info(state.png, state.info);
  return true;
}

bool ReadRows(PngState& state, png_bytepp rows) {
  if (setjmp(png_jmpbuf(state.png))) return false;
  png_read_image(state.png, rows);
  png_read_end(state.png, state.info);
  return true;
}

// After the rows: chunks may follow them.
std::shared_ptr<const Metadata> ReadMetadata(const PngState& state) {
  auto metadata = std::make_shared<Metadata>();
  png_bytep bytes = nullptr;
  png_uint_32 count = 0, x = 0, y = 0;
  if (png_get_eXIf_1(state.png, state.info, &count, &bytes))
    metadata->exif.assign(bytes, bytes + count);
  png_charp profileName = nullptr;
  int number = 0;
  if (png_get_iCCP(state.png, state.info, &profileName, &number, &bytes, &count))
    metadata->icc.assign(bytes, bytes + count);
  png_textp texts = nullptr;
  png_get_text(state.png, state.info, &texts, &number);
  for (int i = 0; i < number; ++i)
    if (texts[i].text && std::strcmp(texts[i].key, kComment) == 0)
      metadata->comments.emplace_back(texts[i].text);
  if (png_get_pHYs(state.png, state.info, &x, &y, &number) && x > 0 && y > 0) {
    const bool metres = number == PNG_RESOLUTION_METER;
    if (metres || x != y)
      metadata->density = {metres ? Density::PerMetre : Density::Aspect, static_cast<double>(x),
                           static_cast<double>(y)};
  }
  return metadata;
}

void WriteMetadata(const PngState& state, const Metadata& metadata, int channels) {
  png_set_benign_errors(state.png, 1);  // a profile that libpng does not like is left out
  const Bytes& profile = metadata.ProfileFor(channels);
  if (!profile.empty())
    png_set_iCCP(state.png, state.info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, profile.data(),
                 static_cast<png_uint_32>(profile.size()));
  if (!metadata.exif.empty())
    png_set_eXIf_1(state.png, state.info, static_cast<png_uint_32>(metadata.exif.size()),
                   const_cast<png_bytep>(metadata.exif.data()));
  for (const std::string& comment : metadata.comments) {
    png_text text = {};
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    text.key = const_cast<png_charp>(kComment);
    text.text = const_cast<png_charp>(comment.c_str());
    png_set_text(state.png, state.info, &text, 1);
  }
  const Density density = metadata.density.In(Density::PerMetre);
  if (density.unit != Density::None)
    png_set_pHYs(state.png, state.info, static_cast<png_uint_32>(std::lround(density.x)),
                 static_cast<png_uint_32>(std::lround(density.y)),
                 density.unit == Density::Aspect ? PNG_RESOLUTION_UNKNOWN : PNG_RESOLUTION_METER);
}

bool WriteRows(PngState& state, int colour, png_bytepp rows, const Metadata* metadata, int level) {
  if (setjmp(png_jmpbuf(state.png))) return false;
  png_set_write_fn(state.png, &state, OnWrite, OnFlush);
  png_set_compression_level(state.png, level);
  png_set_IHDR(state.png, state.info, static_cast<png_uint_32>(state.width),
               static_cast<png_uint_32>(state.height), 8, colour, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (metadata) WriteMetadata(state, *metadata, colour == PNG_COLOR_TYPE_GRAY ? 1 : 3);
  png_write_info(state.png, state.info);
  png_set_bgr(state.png);
  png_write_image(state.png, rows);
  png_write_end(state.png, nullptr);
  return true;
}

std::vector<png_bytep> RowPointers(unsigned char* data, std::ptrdiff_t step, int rows) {
  std::vector<png_bytep> pointers(static_cast<std::size_t>(rows));
  for (int y = 0; y < rows; ++y) pointers[static_cast<std::size_t>(y)] = data + y * step;
  return pointers;
}

}  // namespace

bool LooksLikePng(std::string_view firstBytes) {
  return firstBytes.starts_with("\x89PNG\r\n\x1a\n");
}

Frame DecodePng(std::span<const unsigned char> bytes, const std::string& name,
                const DecodeOptions& options) {
  PngState state;
  state.at = bytes.data();
  state.end = bytes.data() + bytes.size();
  state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, OnError, OnWarning);
  if (state.png) state.info = png_create_info_struct(state.png);
  if (!state.info) throw Error(name + ": libpng could not be started");
  const auto damaged = [&] { return Error(name + ": not a whole PNG: " + state.message); };
  if (!ReadHeader(state)) throw damaged();

  Frame frame;
  ResetFor(frame, state.layout, state.width, state.height, name);
  frame.metadata = ReadMetadata(state);
  if (options.headersOnly) return frame;
  const Plane& pixels = frame.PlaneAt(0);
  if (state.paletteBits > 0) {
    Frame indices(Layout::Grey, state.width, state.height);
    const Plane& from = indices.PlaneAt(0);
    auto rows = RowPointers(from.data, from.step, from.rows);
    if (!ReadRows(state, rows.data())) throw damaged();
    Check("qvLUTPalette",
          CqvAccLib::qvLUTPalette(CqvAccLib::OneChannel, from.data, from.step, pixels.data,
                                  pixels.step, pixels.Size(), state.palette, state.paletteBits));
  } else if (state.layout == Layout::Bgra) {
    std::vector<unsigned char> packed(static_cast<std::size_t>(state.width) * 4 *
                                      static_cast<std::size_t>(state.height));
    auto rows =
        RowPointers(packed.data(), static_cast<std::ptrdiff_t>(state.width) * 4, state.height);
    if (!ReadRows(state, rows.data())) throw damaged();
    UnpackAlpha(packed.data(), frame);
  } else {
    auto rows = RowPointers(pixels.data, pixels.step, pixels.rows);
    if (!ReadRows(state, rows.data())) throw damaged();
  }
  frame.metadata = ReadMetadata(state);
  return frame;
}

Bytes EncodePng(const Frame& frame, const std::string& name, int level) {
  int colour = PNG_COLOR_TYPE_RGB;
  std::vector<unsigned char> packed;
  std::vector<png_bytep> rows;
  switch (frame.GetLayout()) {
    case Layout::Grey: colour = PNG_COLOR_TYPE_GRAY; [[fallthrough]];
    case Layout::Bgr:
      rows = RowPointers(frame.PlaneAt(0).data, frame.PlaneAt(0).step, frame.Height());
      break;
    case Layout::Bgra:
      colour = PNG_COLOR_TYPE_RGB_ALPHA;
      packed.resize(static_cast<std::size_t>(frame.Width()) * 4 *
                    static_cast<std::size_t>(frame.Height()));
      PackAlpha(frame, packed.data());
      rows = RowPointers(packed.data(), static_cast<std::ptrdiff_t>(frame.Width()) * 4,
                         frame.Height());
      break;
    default:
      throw Error(name + ": a PNG holds grey, bgr or bgra pixels, and this frame is " +
                  NameOf(frame.GetLayout()));
  }

  Bytes out;
  PngState state;
  state.writing = true;
  state.out = &out;
  state.width = frame.Width();
  state.height = frame.Height();
  state.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &state, OnError, OnWarning);
  if (state.png) state.info = png_create_info_struct(state.png);
  if (!state.info) throw Error(name + ": libpng could not be started");
  if (!WriteRows(state, colour, rows.data(), frame.metadata.get(), level))
    throw Error(name + ": cannot be encoded as PNG: " + state.message);
  return out;
}

}  // namespace qvtool
