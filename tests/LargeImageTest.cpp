// Images larger than an int can address: rows so far apart that the last one lies gigabytes behind
// the first, 70000 pixels a side, checksums of all bytes that a length can name. Memory is
// reserved, not used: only pages that a call touches exist.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

// Windows sets memory aside for what is only reserved elsewhere.
#if PTRDIFF_MAX > INT_MAX && !defined(_WIN32)

#include <sys/mman.h>
#include <unistd.h>

namespace qv::test {
namespace {

using Lib = CqvAccLib;

struct Plane {
  unsigned char* data;
  int step;
};

// Bytes a row and rows of a plane for an image of width w and height h.
struct Shape {
  int rowBytes, rows;
  bool written;
};

// An operation with its planes; `arg` tells variants apart.
struct Operation {
  const char* name;
  int arg;
  std::vector<Shape> (*shapes)(int w, int h, int arg);
  IppStatus (*call)(const Plane* p, IppiSize size, int arg);
  bool backwards = true;  // takes negative steps
};

int Pixel(int type) { return type == 2 ? 1 : 3; }

IppiSize ScaledSize(IppiSize s) { return {s.width - s.width / 3, s.height + s.height / 2}; }
double XFactor(IppiSize s) { return ScaledSize(s).width / double(s.width); }
double YFactor(IppiSize s) { return ScaledSize(s).height / double(s.height); }

constexpr double kTilt[3][3] = {{1.01, 0.125, -2.5}, {-0.0625, 1.125, 7}, {0, 0, 1}};

using S = std::vector<Shape>;

// The second plane is the destination, of `to` bytes a pixel.
template <int from, int to>
S Layouts(int w, int h, int) {
  return {{from * w, h, false}, {to * w, h, true}};
}
S Pixels(int w, int h, int arg) {  // the type in the last digit
  const int n = Pixel(arg % 10);
  return {{n * w, h, false}, {n * w, h, true}};
}
S Scaled(int w, int h, int arg) {
  const int n = Pixel(arg % 10);
  const IppiSize to = ScaledSize({w, h});
  return {{n * w, h, false}, {n * to.width, to.height, true}};
}

template <int kType>
IppStatus Copy(const Plane* p, IppiSize size, int) {
  return Lib::qvCopy(Type(kType), p[0].data, p[0].step, p[1].data, p[1].step, size);
}
IppStatus Mirror(const Plane* p, IppiSize size, int arg) {
  return Lib::qvMirror(Type(arg % 10), p[0].data, p[0].step, p[1].data, p[1].step, size,
                       static_cast<IppiAxis>(arg / 10));
}
IppStatus Resize(const Plane* p, IppiSize s, int arg) {
  return Lib::qvResize(Type(arg % 10), p[0].data, s, p[0].step, {0, 0, s.width, s.height},
                       p[1].data, p[1].step, ScaledSize(s), XFactor(s), YFactor(s), arg / 10);
}
// Area averaging reduces; down to a quarter, so that rows in the middle are worked on as well.
IppStatus Average(const Plane* p, IppiSize s, int arg) {
  return Lib::qvResize(Type(arg % 10), p[0].data, s, p[0].step, {0, 0, s.width, s.height},
                       p[1].data, p[1].step, ScaledSize(s), 0.5, 0.25, 8);
}
IppStatus ResizePacked(const Plane* p, IppiSize s, int arg) {
  const IppiSize even = {s.width & ~1, s.height};
  return Lib::qvResizeYUV422(Type(0), p[0].data, even, p[0].step, {0, 0, even.width, even.height},
                             p[1].data, p[1].step, ScaledSize(s), XFactor(s), YFactor(s), arg);
}
IppStatus Rotate(const Plane* p, IppiSize s, int arg) {
  const IppiRect all = {0, 0, s.width, s.height};
  const int angle = arg / 100;
  // Quarter turns are laid so that the last source rows meet the last destination rows.
  const double x = angle == 90 ? 0 : angle == 270 ? s.height : angle == 180 ? s.width - 1 : -1.5;
  const double y = angle == 90    ? s.height - 1
                   : angle == 270 ? 0
                   : angle == 180 ? s.height - 1
                                  : 2.25;
  return Lib::qvRotate(Type(arg % 10), p[0].data, s, p[0].step, all, p[1].data, p[1].step, all,
                       angle, x, y, arg / 10 % 10);
}
IppStatus Warp(const Plane* p, IppiSize s, int arg) {
  const IppiRect all = {0, 0, s.width, s.height};
  return Lib::qvWarpPerspective(Type(arg % 10), p[0].data, s, p[0].step, all, p[1].data, p[1].step,
                                all, kTilt, arg / 10);
}
IppStatus WarpTwo(const Plane* p, IppiSize s, int arg) {
  const IppiRect all = {0, 0, s.width, s.height};
  return Lib::qvWarpPerspectiveEx(Type(0), p[0].data, s, p[0].step, all, p[1].data, p[1].step, all,
                                  kTilt, arg, p[2].data, p[2].step, p[3].data, p[3].step, kTilt);
}
IppStatus Set(const Plane* p, IppiSize size, int arg) {
  static constexpr unsigned char kColour[3] = {3, 141, 59};
  return Lib::qvSet(Type(arg), kColour, p[0].data, p[0].step, size);
}
IppStatus Palette(const Plane* p, IppiSize size, int) {
  static const Bytes palette = [] {
    Bytes bytes(768);
    Random(5).Fill(bytes.data(), bytes.size());
    return bytes;
  }();
  return Lib::qvLUTPalette(Type(0), p[0].data, p[0].step, p[1].data, p[1].step, size,
                           palette.data(), 8);
}
// Planes `first` on as arrays.
template <class Call>
IppStatus WithPlanes(const Plane* p, const Call& call) {
  unsigned char* data[3] = {p[0].data, p[1].data, p[2].data};
  int steps[3] = {p[0].step, p[1].step, p[2].step};
  return call(data, steps);
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"copy 1", 2, Layouts<1, 1>, Copy<2>},
      {"copy 3", 4, Layouts<3, 3>, Copy<4>},
      {"copy 1 to 3", 9, Layouts<1, 3>, Copy<9>},
      {"copy 4 to 3", 13, Layouts<4, 3>, Copy<13>},
      {"copy 3 to 4", 14, Layouts<3, 4>, Copy<14>},
      {"dup", 0, Layouts<1, 3>,
       [](const Plane* p, IppiSize size, int) {
         return Lib::qvDup(Type(0), p[0].data, p[0].step, p[1].data, p[1].step, size);
       }},
      {"set 1", 2,
       [](int w, int h, int) {
         return S{{w, h, true}};
       },
       Set},
      {"set 3", 4,
       [](int w, int h, int) {
         return S{{3 * w, h, true}};
       },
       Set},
      {"mirror 1, rows", 2, Pixels, Mirror},
      {"mirror 1, columns", 12, Pixels, Mirror},
      {"mirror 3, rows", 4, Pixels, Mirror},
      {"mirror 3, columns", 14, Pixels, Mirror},
      {"mirror 3, both", 24, Pixels, Mirror},
      {"palette", 0, Layouts<1, 3>, Palette},
      {"scale", 0,
       [](int w, int h, int) {
         return S{{w, h, true}};
       },
       [](const Plane* p, IppiSize size, int) {
         return Lib::qvMulCScale(Type(16), 77, p[0].data, p[0].step, size);
       },
       false},
      {"422 to BGR", 0, Layouts<2, 3>,
       [](const Plane* p, IppiSize size, int) {
         return Lib::qvYCbCr422ToBGR(Type(0), p[0].data, p[0].step, p[1].data, p[1].step, size);
       }},
      {"420 to BGR", 0,
       [](int w, int h, int) {
         return S{{w, h, false}, {w / 2, h / 2, false}, {w / 2, h / 2, false}, {3 * w, h, true}};
       },
       [](const Plane* p, IppiSize size, int) {
         return WithPlanes(p, [&](unsigned char** planes, int* steps) {
           return Lib::qvYCbCr420ToBGR(Type(0), planes, steps, p[3].data, p[3].step, size);
         });
       }},
      {"422 to 420", 0,
       [](int w, int h, int) {
         return S{{w, h, true}, {w / 2, h / 2, true}, {w / 2, h / 2, true}, {2 * w + 2, h, false}};
       },
       [](const Plane* p, IppiSize size, int) {
         return WithPlanes(p, [&](unsigned char** planes, int* steps) {
           return Lib::qvYCbCr422ToYCrCb420(Type(0), p[3].data, p[3].step, planes, steps, size);
         });
       }},
      {"two planes to 420", 0,
       [](int w, int h, int) {
         return S{{w, h, true},
                  {w / 2, h / 2, true},
                  {w / 2, h / 2, true},
                  {w, h, false},
                  {w, h / 2, false}};
       },
       [](const Plane* p, IppiSize size, int) {
         return WithPlanes(p, [&](unsigned char** planes, int* steps) {
           return Lib::qvYCbCr420(Type(0), p[3].data, p[3].step, p[4].data, p[4].step, planes,
                                  steps, size);
         });
       }},
      {"resize 1, nearest", 12, Scaled, Resize},
      {"resize 3, nearest", 14, Scaled, Resize},
      {"resize 1, linear", 22, Scaled, Resize},
      {"resize 3, linear", 24, Scaled, Resize},
      {"resize 1, cubic", 42, Scaled, Resize},
      {"resize 3, cubic", 44, Scaled, Resize},
      {"resize 1, Lanczos", 162, Scaled, Resize},
      {"resize 3, Lanczos", 164, Scaled, Resize},
      {"resize 1, area", 2, Scaled, Average},
      {"resize 3, area", 4, Scaled, Average},
      {"resize 422, nearest", 1, Layouts<2, 3>, ResizePacked},
      {"resize 422, linear", 2, Layouts<2, 3>, ResizePacked},
      {"resize 422, cubic", 4, Layouts<2, 3>, ResizePacked},
      {"turn 1 by 90", 9012, Pixels, Rotate, false},
      {"turn 3 by 270", 27014, Pixels, Rotate, false},
      {"turn 3 by 180", 18014, Pixels, Rotate, false},
      {"rotate 1, nearest", 512, Pixels, Rotate, false},
      {"rotate 3, linear", 524, Pixels, Rotate, false},
      {"warp 3, nearest", 14, Pixels, Warp, false},
      {"warp 1, linear", 22, Pixels, Warp, false},
      {"warp 3, cubic", 44, Pixels, Warp, false},
      {"warp two", 2,
       [](int w, int h, int) {
         return S{{3 * w, h, false}, {3 * w, h, true}, {w, h, false}, {w, h, true}};
       },
       WarpTwo, false},
      {"composition", 4,
       [](int w, int h, int) {
         return S{{3 * w, h, false}, {3 * w, h, false}, {3 * w, h, true}};
       },
       [](const Plane* p, IppiSize size, int) {
         return Lib::qvAlphaCompC(Type(4), p[0].data, p[0].step, 200, p[1].data, p[1].step, 99,
                                  p[2].data, p[2].step, size, AlphaAtop);
       }},
      {"merge over", 0,
       [](int w, int h, int) {
         return S{{3 * w, h, true}, {w, h, true}, {3 * w, h, false}, {w, h, false}};
       },
       [](const Plane* p, IppiSize s, int) {
         return Lib::qvMergeAlphaOver(Type(0), p[0].data, p[0].step, p[1].data, p[1].step,
                                      p[2].data, p[2].step, p[3].data, p[3].step, p[1].data,
                                      3 * s.width, s.width, s.height);
       }},
      {"merge plus", 0,
       [](int w, int h, int) {
         return S{{3 * w, h, true}, {3 * w, h, false}, {w, h, false}};
       },
       [](const Plane* p, IppiSize s, int) {
         return Lib::qvMergeAlphaPlus(Type(4), p[0].data, p[0].step, p[1].data, p[1].step,
                                      p[2].data, p[2].step, s.width, s.height);
       }},
      {"deinterlace", 0, Layouts<1, 1>,
       [](const Plane* p, IppiSize size, int) {
         return Lib::qvDeinterlace(Type(2), p[0].data, p[0].step, p[1].data, p[1].step, size, 100,
                                   0);
       }},
  };
  return operations;
}

// Where planes lie: `step(rowBytes)` apart, negative for the last row first.
class Layout {
 public:
  Layout() : arenas_(5) {}

  template <class StepOf>
  void Place(const std::vector<Shape>& shapes, const StepOf& stepOf) {
    shapes_ = shapes;
    planes_.clear();
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      const int step = stepOf(shapes[i].rowBytes);
      const std::ptrdiff_t last = std::ptrdiff_t{step} * (shapes[i].rows - 1);
      planes_.push_back({arenas_[i].begin() + (last < 0 ? -last : 0), step});
    }
  }
  void Fill(unsigned seed) {
    Random random(seed);
    ForEachRow(false, [&](unsigned char* row, int bytes) { random.Fill(row, std::size_t(bytes)); });
  }
  Bytes Written() {
    Bytes bytes;
    ForEachRow(true, [&](unsigned char* row, int n) { bytes.insert(bytes.end(), row, row + n); });
    return bytes;
  }
  const Plane* planes() const { return planes_.data(); }

 private:
  struct Arena : GuardedMemory {
    Arena() : GuardedMemory(std::size_t{11} << 30) {}
  };
  template <class Visit>
  void ForEachRow(bool writtenOnly, const Visit& visit) {
    for (std::size_t i = 0; i < shapes_.size(); ++i)
      for (int y = 0; y < shapes_[i].rows; ++y)
        if (shapes_[i].written || !writtenOnly)
          visit(planes_[i].data + std::ptrdiff_t{y} * planes_[i].step, shapes_[i].rowBytes);
  }

  std::vector<Arena> arenas_;
  std::vector<Shape> shapes_;
  std::vector<Plane> planes_;
};

// The same pixels in small memory give the same bytes.
TEST(LargeImages, RowsBeyond2GiBAreFoundAtEveryLevel) {
  Layout small, large;
  const struct {
    IppiSize size;
    int apart;
  } cases[] = {{{46, 200}, (1 << 25) + 40}, {{150, 4}, INT_MAX}};
  for (const auto& c : cases)
    for (const Operation& operation : Operations())
      for (const int budget : {1, 2}) {
        const UseBudget useBudget(budget);
        const std::vector<Shape> shapes =
            operation.shapes(c.size.width, c.size.height, operation.arg);
        Bytes wanted;
        IppStatus wantedStatus;
        {
          const UseLevel plain(AvailableLevels()[0]);
          small.Place(shapes, [](int bytes) { return bytes < 1 ? 1 : bytes; });
          small.Fill(1);
          wantedStatus = operation.call(small.planes(), c.size, operation.arg);
          wanted = small.Written();
        }
        ASSERT_GE(wantedStatus, StatusOk) << operation.name;
        for (const Level& level : AvailableLevels())
          for (const int sign : {1, -1}) {
            if (sign < 0 && !operation.backwards) continue;
            const UseLevel use(level);
            large.Place(shapes, [&](int) { return sign * c.apart; });
            large.Fill(1);
            ASSERT_EQ(operation.call(large.planes(), c.size, operation.arg), wantedStatus)
                << operation.name << ' ' << level.name;
            ASSERT_TRUE(large.Written() == wanted)
                << operation.name << ", level " << level.name << ", budget " << budget << ", step "
                << sign * c.apart;
          }
      }
}

TEST(LargeImages, SeventyThousandPixelsASide) {
  Layout layout;
  for (const IppiSize size : {IppiSize{70000, 4}, {4, 70000}})
    for (const Operation& operation : Operations())
      for (const int budget : {1, 2}) {
        const UseBudget useBudget(budget);
        Bytes wanted;
        for (const Level& level : AvailableLevels()) {
          const UseLevel use(level);
          layout.Place(operation.shapes(size.width, size.height, operation.arg),
                       [](int bytes) { return bytes; });
          layout.Fill(2);
          ASSERT_GE(operation.call(layout.planes(), size, operation.arg), StatusOk)
              << operation.name << ' ' << size.width;
          const Bytes got = layout.Written();
          if (wanted.empty()) wanted = got;
          ASSERT_TRUE(got == wanted) << operation.name << ", level " << level.name << ", width "
                                     << size.width << ", budget " << budget;
        }
      }
}

TEST(LargeImages, ChecksumsOfTheLongestMessage) {
  const GuardedMemory memory(std::size_t{2} << 30);
  unsigned char* const data = memory.begin();
  for (std::size_t i = 0; i < 2000; ++i) data[i * 1000003] = static_cast<unsigned char>(i);
  unsigned whole = 0, pieces = 0, sums = 1, sumsOfPieces = 1;
  ASSERT_EQ(Lib::qvCRC32(Type(0), data, INT_MAX, &whole), StatusOk);
  ASSERT_EQ(Lib::qvAdler32(Type(0), data, INT_MAX, &sums), StatusOk);
  for (std::int64_t at = 0; at < INT_MAX;) {
    const int n = static_cast<int>(std::min<std::int64_t>(700000001, INT_MAX - at));
    Lib::qvCRC32(Type(0), data + at, n, &pieces);
    Lib::qvAdler32(Type(0), data + at, n, &sumsOfPieces);
    at += n;
  }
  EXPECT_EQ(whole, pieces);
  EXPECT_EQ(sums, sumsOfPieces);
}

// An address range that shows the same few pages over and over.
class RepeatedMemory {
 public:
  RepeatedMemory(std::size_t size, std::size_t period)
      : size_((size + period - 1) / period * period) {
    const int file = memfd_create("repeated", 0);
    if (file < 0 || ftruncate(file, static_cast<off_t>(period)) != 0) std::abort();
    begin_ = static_cast<unsigned char*>(
        mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    if (begin_ == MAP_FAILED) std::abort();
    for (std::size_t at = 0; at < size_; at += period)
      if (mmap(begin_ + at, period, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) ==
          MAP_FAILED)
        std::abort();
    close(file);
  }
  ~RepeatedMemory() { munmap(begin_, size_); }
  RepeatedMemory(const RepeatedMemory&) = delete;
  RepeatedMemory& operator=(const RepeatedMemory&) = delete;

  unsigned char* begin() const { return begin_; }

 private:
  unsigned char* begin_;
  std::size_t size_;
};

// Every pixel of 70000 x 70000, 4.9 to 19.6 GB a plane: minutes, so only `scripts/test.sh --all`
// runs it. Memory repeats every 32 rows, all of which hold the same bytes. So do then all the rows
// that are written, unless an operation mixes columns into them or works in place, and what they
// hold is what an image of a few such rows gives.
TEST(LargeImages, DISABLED_SeventyThousandPixelsBothSides) {
  constexpr int kSide = 70000, kMost = kSide + kSide / 2;
  constexpr int kStep = 4 * kSide + 64;
  constexpr std::size_t kPeriod = std::size_t{32} * kStep;
  static_assert(kPeriod % 4096 == 0);
  std::vector<std::unique_ptr<RepeatedMemory>> memory;
  for (int i = 0; i < 5; ++i)
    memory.push_back(std::make_unique<RepeatedMemory>(std::size_t{kStep} * kMost, kPeriod));
  int compared = 0;
  for (const Operation& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    const std::string name = operation.name;
    const auto is = [&](const char* family) { return name.find(family) == 0; };
    // Several bands resize differently, and a few rows are one band.
    const UseBudget budget(is("resize") ? 1 : 2);
    const std::vector<Shape> shapes = operation.shapes(kSide, kSide, operation.arg);
    const bool comparable = shapes.size() == 2 && !is("rotate") && !is("warp") && !is("turn");
    constexpr int kFew = 8;
    Bytes rows[2] = {Bytes(std::size_t{2 * kFew} * kStep), Bytes(std::size_t{2 * kFew} * kStep)};
    Random(3).Fill(rows[0].data(), kStep);
    for (int y = 1; y < kFew; ++y) std::memcpy(rows[0].data() + y * kStep, rows[0].data(), kStep);
    std::vector<Plane> planes;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      for (int y = 0; y < 32; ++y)
        std::memcpy(memory[i]->begin() + y * kStep, rows[i > 0].data(), kStep);
      planes.push_back({memory[i]->begin(), kStep});
    }
    ASSERT_EQ(operation.call(planes.data(), {kSide, kSide}, operation.arg), StatusOk);
    if (!comparable) continue;
    ++compared;
    const Plane few[] = {{rows[0].data(), kStep}, {rows[1].data(), kStep}};
    ASSERT_EQ(operation.call(few, {kSide, kFew}, operation.arg), StatusOk);
    // Filters go along rows or columns first, whichever is less work, and round in between.
    const bool exact = !is("resize") || name.find("nearest") < name.size() ||
                       is("resize 1, linear") || is("resize 3, linear");
    const int tolerance = exact ? 0 : 1;
    for (int y = 0; y < 32; ++y) {
      const unsigned char* const got = memory[1]->begin() + y * kStep;
      for (int x = 0; x < shapes[1].rowBytes; ++x)
        ASSERT_NEAR(got[x], rows[1][static_cast<std::size_t>(kStep) + x], tolerance)
            << "row " << y << ", byte " << x;
    }
  }
  EXPECT_GE(compared, 20);
}

}  // namespace
}  // namespace qv::test

#endif
