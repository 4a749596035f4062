#include "io/TiffFile.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "Error.h"

namespace qvtool {
namespace {

// A file in memory, as libtiff reads it.
struct Memory {
  std::span<const unsigned char> bytes;
  std::uint64_t at = 0;
  char message[200] = "its data are damaged";
};

Memory& MemoryOf(thandle_t handle) { return *static_cast<Memory*>(handle); }

tmsize_t Read(thandle_t handle, void* to, tmsize_t count) {
  Memory& memory = MemoryOf(handle);
  const std::uint64_t size = memory.bytes.size();
  const std::uint64_t left = memory.at < size ? size - memory.at : 0;
  const std::size_t bytes = std::min<std::uint64_t>(left, static_cast<std::uint64_t>(count));
  if (bytes > 0) std::memcpy(to, memory.bytes.data() + memory.at, bytes);
  memory.at += bytes;
  return static_cast<tmsize_t>(bytes);
}

tmsize_t Write(thandle_t, void*, tmsize_t) { return 0; }

toff_t SizeOf(thandle_t handle) { return MemoryOf(handle).bytes.size(); }

toff_t Seek(thandle_t handle, toff_t offset, int from) {
  Memory& memory = MemoryOf(handle);
  const std::uint64_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? memory.at : SizeOf(handle);
  return memory.at = base + offset;
}

int Close(thandle_t) { return 0; }

void OnError(thandle_t handle, const char*, const char* format, va_list values) {
  if (handle) std::vsnprintf(MemoryOf(handle).message, sizeof Memory::message, format, values);
}

struct Image {
  TIFFRGBAImage pixels = {};
  bool begun = false;
  ~Image() {
    if (begun) TIFFRGBAImageEnd(&pixels);
  }
};

std::shared_ptr<const Metadata> ReadMetadata(TIFF* file) {
  auto metadata = std::make_shared<Metadata>();
  std::uint16_t orientation = ORIENTATION_TOPLEFT, unit = RESUNIT_INCH;
  if (TIFFGetField(file, TIFFTAG_ORIENTATION, &orientation))
    metadata->exif = ExifOf(orientation);
  std::uint32_t bytes = 0;
  void* profile = nullptr;
  if (TIFFGetField(file, TIFFTAG_ICCPROFILE, &bytes, &profile)) {
    const auto* data = static_cast<const unsigned char*>(profile);
    metadata->icc.assign(data, data + bytes);
  }
  float x = 0, y = 0;
  TIFFGetFieldDefaulted(file, TIFFTAG_RESOLUTIONUNIT, &unit);
  if (TIFFGetField(file, TIFFTAG_XRESOLUTION, &x) && TIFFGetField(file, TIFFTAG_YRESOLUTION, &y) &&
      unit != RESUNIT_NONE && x > 0 && y > 0)
    metadata->density = {unit == RESUNIT_INCH ? Density::PerInch : Density::PerCentimetre, x, y};
  return metadata;
}

// libtiff would multiply colours by an alpha beside them. It leaves them alone where it is told
// that they are multiplied already. The answer is whether they really are.
bool PassColoursAsTheyAre(TIFF* file) {
  std::uint16_t count = 0, *kinds = nullptr;
  if (!TIFFGetField(file, TIFFTAG_EXTRASAMPLES, &count, &kinds) || count == 0) return false;
  if (kinds[0] != EXTRASAMPLE_UNASSALPHA) return kinds[0] == EXTRASAMPLE_ASSOCALPHA;
  std::vector<std::uint16_t> passed(kinds, kinds + count);
  passed[0] = EXTRASAMPLE_ASSOCALPHA;
  TIFFSetField(file, TIFFTAG_EXTRASAMPLES, count, passed.data());
  return false;
}

unsigned char Unmultiplied(unsigned colour, unsigned alpha) {
  return static_cast<unsigned char>(std::min(255u, (colour * 255 + alpha / 2) / alpha));
}

// R, G, B and A from the least significant byte on, rows without padding.
void Store(const std::uint32_t* raster, bool multiplied, const Frame& frame) {
  const Plane& pixels = frame.PlaneAt(0);
  for (int y = 0; y < frame.Height(); ++y) {
    unsigned char* to = pixels.Row(y);
    unsigned char* alpha = frame.Planes() > 1 ? frame.PlaneAt(1).Row(y) : nullptr;
    for (int x = 0; x < frame.Width(); ++x, ++raster) {
      unsigned char b = TIFFGetB(*raster), g = TIFFGetG(*raster), r = TIFFGetR(*raster);
      if (pixels.bytes == 1) {
        *to++ = r;
        continue;
      }
      if (alpha) {
        const unsigned a = alpha[x] = TIFFGetA(*raster);
        if (multiplied && a > 0) {
          b = Unmultiplied(b, a);
          g = Unmultiplied(g, a);
          r = Unmultiplied(r, a);
        }
      }
      *to++ = b;
      *to++ = g;
      *to++ = r;
    }
  }
}

}  // namespace

bool LooksLikeTiff(std::string_view firstBytes) {
  const std::string_view start = firstBytes.substr(0, 4);
  return start == std::string_view("II*\0", 4) || start == std::string_view("MM\0*", 4) ||
         start == std::string_view("II+\0", 4) || start == std::string_view("MM\0+", 4);
}

Frame DecodeTiff(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options) {
  static const bool quiet = [] {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandlerExt(OnError);
    return true;
  }();
  static_cast<void>(quiet);
  Memory memory{bytes};
  const auto damaged = [&] { return Error(name + ": not a whole TIFF: " + memory.message); };
  // "m": no mapping of the file, which is in memory.
  const std::unique_ptr<TIFF, decltype(&TIFFClose)> file(
      TIFFClientOpen(name.c_str(), "rm", &memory, Read, Write, Seek, Close, SizeOf, nullptr,
                     nullptr),
      TIFFClose);
  if (!file) throw damaged();
  auto metadata = ReadMetadata(file.get());
  const bool multiplied = PassColoursAsTheyAre(file.get());
  char why[1024] = "";
  Image image;
  image.begun = TIFFRGBAImageBegin(&image.pixels, file.get(), 1, why) != 0;
  if (!image.begun) throw Error(name + ": a TIFF that cannot be read: " + why);
  TIFFRGBAImage& pixels = image.pixels;
  pixels.req_orientation = pixels.orientation;  // rows as they lie in the file
  const bool grey = pixels.samplesperpixel == 1 && (pixels.photometric == PHOTOMETRIC_MINISBLACK ||
                                                    pixels.photometric == PHOTOMETRIC_MINISWHITE);
  const Layout layout = pixels.alpha ? Layout::Bgra : grey ? Layout::Grey : Layout::Bgr;
  constexpr std::uint32_t kLongest = 1u << 30;
  Frame frame;
  ResetFor(frame, layout, static_cast<int>(std::min(pixels.width, kLongest)),
           static_cast<int>(std::min(pixels.height, kLongest)), name);
  frame.metadata = std::move(metadata);
  if (options.headersOnly) return frame;
  const std::size_t count = std::size_t{pixels.width} * pixels.height;
  const std::unique_ptr<std::uint32_t[]> raster(new std::uint32_t[count]);
  if (!TIFFRGBAImageGet(&pixels, raster.get(), pixels.width, pixels.height)) throw damaged();
  Store(raster.get(), multiplied, frame);
  return frame;
}

}  // namespace qvtool
