#include "io/Frame.h"

#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>

#include "Error.h"
#include "io/Status.h"

namespace qvtool {
namespace {

// Rows start on a cache line of their own, which also means that steps are rarely the row length.
constexpr long long kRowAlignment = 64;

// Where frames start: the system copies from there on at its best.
constexpr std::size_t kPage = 4096;

std::string Gigabytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f GB", bytes / 1e9);
  return text;
}

[[noreturn]] void TooLarge(Layout layout, int width, int height, const std::string& why) {
  throw Error("a " + NameOf(layout) + " frame of " + std::to_string(width) + "x" +
              std::to_string(height) + " cannot be held: " + why);
}

}  // namespace

CqvAccLib::qvDataType Plane::Type(const char* operation) const {
  if (bytes == 1) return CqvAccLib::OneChannel;
  if (bytes == 3) return CqvAccLib::ThreeChannels;
  throw Error(std::string(operation) +
              " takes pixels of one or three bytes, and these are groups of " +
              std::to_string(bytes));
}

Plane Plane::Cut(const IppiRect& region, const PlaneShape& shape) const {
  const int left = region.x >> shape.shiftX;
  const int top = region.y >> shape.shiftY;
  const int right = (region.x + region.width + (1 << shape.shiftX) - 1) >> shape.shiftX;
  const int bottom = (region.y + region.height + (1 << shape.shiftY) - 1) >> shape.shiftY;
  return {Row(top) + static_cast<std::ptrdiff_t>(left) * bytes, step, right - left, bottom - top,
          bytes};
}

void Frame::Reset(Layout layout, int width, int height) {
  if (planes_ != 0 && layout == layout_ && width == width_ && height == height_) return;
  if (width < 1 || height < 1)
    TooLarge(layout, width, height, "width and height must be at least 1");

  const LayoutInfo& info = Describe(layout);
  Plane planes[4];
  long long offsets[4] = {};
  double total = 0;
  for (int i = 0; i < info.planes; ++i) {
    const PlaneShape& shape = info.plane[i];
    const long long columns = (width + (1LL << shape.shiftX) - 1) >> shape.shiftX;
    const long long rows = (height + (1LL << shape.shiftY) - 1) >> shape.shiftY;
    const long long step =
        (columns * shape.bytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (step > INT_MAX) TooLarge(layout, width, height, "a row step is limited to 2^31 - 1 bytes");
    planes[i] = {nullptr, static_cast<int>(step), static_cast<int>(columns), static_cast<int>(rows),
                 shape.bytes};
    // Four planes of at most 2^31 * 2^31 bytes could overflow 64 bits; a double cannot, and it
    // decides before the integer is used.
    total += static_cast<double>(step) * static_cast<double>(rows);
    offsets[i] =
        i == 0 ? 0
               : offsets[i - 1] + static_cast<long long>(planes[i - 1].step) * planes[i - 1].rows;
    // The system promises more memory than it has and ends a program that takes it at its word.
    const double machine =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    if (total > machine)
      TooLarge(layout, width, height,
               "it needs " + Gigabytes(total) + " and the machine has " + Gigabytes(machine));
  }

  planes_ = 0;
  memory_.reset();  // the old memory goes first, so that only one frame is held at a time
  const std::size_t pages = static_cast<std::size_t>(total) / kPage + 1;
  memory_.reset(static_cast<unsigned char*>(std::aligned_alloc(kPage, pages * kPage)));
  if (!memory_)
    TooLarge(layout, width, height, "no " + Gigabytes(total) + " of memory could be obtained");
  for (int i = 0; i < info.planes; ++i) {
    plane_[i] = planes[i];
    plane_[i].data = memory_.get() + offsets[i];
  }
  layout_ = layout;
  width_ = width;
  height_ = height;
  planes_ = info.planes;
}

void Frame::Inherit(const Frame& other) {
  coding = other.coding;
  parameters = other.parameters;
  metadata = other.metadata;
}

Frame Frame::Clone() const {
  Frame copy(layout_, width_, height_);
  copy.Inherit(*this);
  copy.reduction = reduction;
  for (int i = 0; i < planes_; ++i)
    Check("qvCopy",
          CqvAccLib::qvCopy(CqvAccLib::OneChannel, plane_[i].data, plane_[i].step,
                            copy.plane_[i].data, copy.plane_[i].step, plane_[i].SizeInBytes()));
  return copy;
}

void UnpackAlpha(const unsigned char* packed, const Frame& frame) {
  const Plane& colour = frame.PlaneAt(0);
  const Plane alpha = frame.PlaneAt(1);  // a copy, which no byte written can change
  const int step = frame.Width() * 4;
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::FourToThreeChannels, packed, step, colour.data,
                                    colour.step, colour.Size()));
  for (int y = 0; y < alpha.rows; ++y) {
    const unsigned char* from = packed + static_cast<std::ptrdiff_t>(y) * step + 3;
    unsigned char* to = alpha.Row(y);
    for (int x = 0; x < alpha.columns; ++x) to[x] = from[4 * static_cast<std::ptrdiff_t>(x)];
  }
}

void PackAlpha(const Frame& frame, unsigned char* packed) {
  const Plane& colour = frame.PlaneAt(0);
  const Plane alpha = frame.PlaneAt(1);
  const int step = frame.Width() * 4;
  for (int y = 0; y < alpha.rows; ++y) {
    const unsigned char* from = alpha.Row(y);
    unsigned char* to = packed + static_cast<std::ptrdiff_t>(y) * step + 3;
    for (int x = 0; x < alpha.columns; ++x) to[4 * static_cast<std::ptrdiff_t>(x)] = from[x];
  }
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeToFourChannels, colour.data, colour.step,
                                    packed, step, colour.Size()));
}

}  // namespace qvtool
