#include "bench/YuvAccuracy.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/Peers.h"
#include "support/ExactYuv.h"

#if defined(QV_BENCH_LIBYUV)
#include <libyuv/convert_from_argb.h>
#endif

namespace bench {

namespace {

using namespace qv;
using test::Triple;

// All values of three bytes, as one frame.
constexpr int kSide = 4096;
constexpr std::size_t kAll = std::size_t{kSide} * kSide;
constexpr IppiSize kSize = {kSide, kSide};

// Three planes, and four bytes a pixel.
struct Frames {
  std::vector<unsigned char> samples = std::vector<unsigned char>(3 * kAll);
  std::vector<unsigned char> pixels = std::vector<unsigned char>(4 * kAll);
  unsigned char* plane[3] = {samples.data(), samples.data() + kAll, samples.data() + 2 * kAll};
  int step[3] = {kSide, kSide, kSide};

  Triple Samples(std::size_t i) const {
    return {plane[0][i] * 1., plane[1][i] * 1., plane[2][i] * 1.};
  }
  Triple Pixel(std::size_t i) const {
    return {pixels[4 * i] * 1., pixels[4 * i + 1] * 1., pixels[4 * i + 2] * 1.};
  }
};

// Where the exact value is limited everybody is right: those do not count for the mean.
struct Errors {
  double largest = 0, sum = 0;
  std::size_t count = 0;
  void Add(const Triple& actual, const Triple& exact) {
    for (std::size_t c = 0; c < 3; ++c) {
      const double error = std::fabs(actual[c] - exact[c]);
      if (error > largest) largest = error;
      if (exact[c] > 0 && exact[c] < 255) sum += error, ++count;
    }
  }
};

const char* const kMatrices[] = {"BT.601", "BT.709", "BT.2020"};

void PrintRow(const char* way, int matrix, int range, const char* contender, const Errors& errors) {
  std::printf("| %s %s %s | %s | %.2f | %.3f |\n", kMatrices[matrix],
              range == QV_FULL_RANGE ? "full" : "studio", way, contender, errors.largest,
              errors.sum / static_cast<double>(errors.count));
}

// After convert(frames), which goes from samples to pixels.
template <class Convert>
void PrintToPixels(Frames& f, int matrix, int range, const char* contender, Convert convert) {
  for (std::size_t i = 0; i < kAll; ++i)
    for (int c = 0; c < 3; ++c) f.plane[c][i] = static_cast<unsigned char>(i >> 8 * c);
  convert(f);
  const test::Colours colours = test::ColoursOf(matrix, range);
  Errors errors;
  for (std::size_t i = 0; i < kAll; ++i) errors.Add(f.Pixel(i), ExactRgb(colours, f.Samples(i)));
  PrintRow("to pixels", matrix, range, contender, errors);
}

// And from pixels to samples, and back by our own conversion.
template <class Convert>
void PrintToSamples(Frames& f, int matrix, int range, const char* contender, Convert convert) {
  for (std::size_t i = 0; i < kAll; ++i)
    for (std::size_t c = 0; c < 3; ++c)
      f.pixels[4 * i + c] = static_cast<unsigned char>(i >> 8 * c);
  convert(f);
  const test::Colours colours = test::ColoursOf(matrix, range);
  Errors errors, trip;
  for (std::size_t i = 0; i < kAll; ++i) errors.Add(f.Samples(i), ExactYuv(colours, f.Pixel(i)));
  PrintRow("to samples", matrix, range, contender, errors);
  YuvToRgb(QV_LAYOUT_I444, f.plane, f.step, QV_LAYOUT_BGRA, f.pixels.data(), 4 * kSide, kSize,
           matrix, range, QV_CHROMA_REPEATED);
  for (std::size_t i = 0; i < kAll; ++i)
    trip.Add(f.Pixel(i), {double(i & 255), double(i >> 8 & 255), double(i >> 16)});
  PrintRow("and back", matrix, range, contender, trip);
}

}  // namespace

void PrintYuvAccuracy() {
  std::printf(
      "\n# Accuracy of luma and chroma\n\n"
      "Errors over all 2^24 values of three bytes, against the definition in double precision. "
      "*And "
      "back*: the pixels that come back from the samples by our own conversion, against those that "
      "went in; what is lost there is the rounding of the samples.\n\n"
      "| conversion | contender | largest | mean |\n| --- | --- | --- | --- |\n");
  Frames frames;
  for (int i = 0; i < 6; ++i) {
    const int matrix = i % 3, range = i / 3;
    PrintToPixels(frames, matrix, range, "ours", [=](Frames& f) {
      YuvToRgb(QV_LAYOUT_I444, f.plane, f.step, QV_LAYOUT_BGRA, f.pixels.data(), 4 * kSide, kSize,
               matrix, range, QV_CHROMA_REPEATED);
    });
#if defined(QV_BENCH_LIBYUV)
    const libyuv::YuvConstants* const constants[] = {
        &libyuv::kYuvI601Constants, &libyuv::kYuvH709Constants, &libyuv::kYuv2020Constants,
        &libyuv::kYuvJPEGConstants, &libyuv::kYuvF709Constants, &libyuv::kYuvV2020Constants};
    PrintToPixels(frames, matrix, range, "libyuv", [=](Frames& f) {
      libyuv::I444ToARGBMatrix(f.plane[0], kSide, f.plane[1], kSide, f.plane[2], kSide,
                               f.pixels.data(), 4 * kSide, constants[i], kSide, kSide);
    });
#endif
    PrintToSamples(frames, matrix, range, "ours", [=](Frames& f) {
      RgbToYuv(QV_LAYOUT_BGRA, f.pixels.data(), 4 * kSide, QV_LAYOUT_I444, f.plane, f.step, kSize,
               matrix, range, QV_CHROMA_REPEATED);
    });
#if defined(QV_BENCH_LIBYUV)
    if (i == 0)
      PrintToSamples(frames, matrix, range, "libyuv", [=](Frames& f) {
        libyuv::ARGBToI444(f.pixels.data(), 4 * kSide, f.plane[0], kSide, f.plane[1], kSide,
                           f.plane[2], kSide, kSide, kSide);
      });
#endif
  }
}

}  // namespace bench
