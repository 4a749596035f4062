#include "io/WebpFile.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <memory>

#include "Error.h"

namespace qvtool {
namespace {

const char* Explain(VP8StatusCode status) {
  switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY: return "out of memory";
    case VP8_STATUS_UNSUPPORTED_FEATURE: return "it has features that are not known";
    case VP8_STATUS_NOT_ENOUGH_DATA: return "it is cut short";
    default: return "its data are damaged";
  }
}

// The contents of the first chunk of this name.
Bytes ChunkOf(const WebPDemuxer* file, const char* name) {
  WebPChunkIterator chunk;
  Bytes bytes;
  if (!WebPDemuxGetChunk(file, name, 1, &chunk)) return bytes;
  bytes.assign(chunk.chunk.bytes, chunk.chunk.bytes + chunk.chunk.size);
  WebPDemuxReleaseChunkIterator(&chunk);
  return bytes;
}

std::shared_ptr<const Metadata> ReadMetadata(std::span<const unsigned char> bytes) {
  auto metadata = std::make_shared<Metadata>();
  const WebPData data = {bytes.data(), bytes.size()};
  const std::unique_ptr<WebPDemuxer, decltype(&WebPDemuxDelete)> file(WebPDemux(&data),
                                                                       WebPDemuxDelete);
  if (!file) return metadata;
  metadata->icc = ChunkOf(file.get(), "ICCP");
  metadata->exif = ChunkOf(file.get(), "EXIF");
  // Some programs write it as it is in a JPEG.
  const std::string_view text(reinterpret_cast<const char*>(metadata->exif.data()),
                              metadata->exif.size());
  if (const std::string_view exif = ExifIn(text); !exif.empty())
    metadata->exif = Bytes(exif.begin(), exif.end());
  return metadata;
}

}  // namespace

bool LooksLikeWebp(std::string_view firstBytes) {
  return firstBytes.size() >= 12 && firstBytes.starts_with("RIFF") &&
         firstBytes.substr(8).starts_with("WEBP");
}

Frame DecodeWebp(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options) {
  const auto check = [&](VP8StatusCode status) {
    if (status != VP8_STATUS_OK) throw Error(name + ": not a whole WebP: " + Explain(status));
  };
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) throw Error(name + ": libwebp could not be started");
  check(WebPGetFeatures(bytes.data(), bytes.size(), &config.input));
  if (config.input.has_animation)
    throw Error(name + ": an animated WebP; wanted is a still picture");
  const bool alpha = config.input.has_alpha != 0;
  Frame frame;
  ResetFor(frame, alpha ? Layout::Bgra : Layout::Bgr, config.input.width, config.input.height,
           name);
  frame.metadata = ReadMetadata(bytes);
  if (options.headersOnly) return frame;
  Bytes packed(alpha ? frame.PackedBytes() : 0);
  const Plane& pixels = frame.PlaneAt(0);
  config.output.colorspace = alpha ? MODE_BGRA : MODE_BGR;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = alpha ? packed.data() : pixels.data;
  config.output.u.RGBA.stride = alpha ? 4 * frame.Width() : pixels.step;
  config.output.u.RGBA.size =
      static_cast<std::size_t>(config.output.u.RGBA.stride) * static_cast<std::size_t>(pixels.rows);
  check(WebPDecode(bytes.data(), bytes.size(), &config));
  if (alpha) UnpackAlpha(packed.data(), frame);
  return frame;
}

}  // namespace qvtool
