// The functions of C: those of the roll do what the class does, and what there is beside them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>

#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/Operations.h"
#include "qvAcceleratedLib/qv.h"
#include "support/Bytes.h"
#include "support/Levels.h"
#include "tests/support/Operations.h"

namespace qv::test {
namespace {

// Arguments drawn by their types and order alone. Sizes, steps and coordinates are so small that
// whatever an operation takes a number for, it stays within the memory around a pointer; an int
// next to a byte pointer is a step, and wider than a row.
class Arguments {
 public:
  explicit Arguments(int seed) : random_(static_cast<std::uint64_t>(seed)), initial_(Noise(kAll)) {}

  template <class T>
  T Draw() {
    if constexpr (std::is_same_v<T, IppiSize>) {
      sized_ = true;
      return {Length(), Length()};
    } else if constexpr (std::is_same_v<T, IppiRect>) {
      return {random_.Between(-1, 9), random_.Between(-1, 9), Length(), Length()};
    } else if constexpr (std::is_same_v<T, double>) {
      return random_.OneIn(4) ? random_.Between(-1, 1) : random_.Between(0.2, 4.0);
    } else if constexpr (std::is_same_v<T, unsigned char**>) {
      return planes_.data();
    } else if constexpr (std::is_same_v<T, int*>) {
      return steps_.data();
    } else if constexpr (std::is_pointer_v<T>) {
      // A third pointer after the size is a palette, whose size in bits follows.
      constexpr bool isBytes = std::is_convertible_v<T, const unsigned char*>;
      stepped_ = isBytes && !(sized_ && used_ == 2);
      return reinterpret_cast<T>(Pointer<std::remove_const_t<std::remove_pointer_t<T>>>());
    } else if (std::exchange(stepped_, false)) {
      return static_cast<T>(random_.Between(140, 180) * (random_.OneIn(4) ? -1 : 1));
    } else {
      return static_cast<T>(random_.OneIn(3) ? random_.Between(-9, 90)
                                             : 1 << random_.Between(0, 4));
    }
  }

  // What there is around the pointers once a call has been made of that: the same each time.
  template <class Call>
  Bytes After(const Call& call) {
    memory_ = initial_;
    call();
    return memory_;
  }

 private:
  static constexpr std::size_t kAround = 1 << 14, kAll = kAround * 24;

  int Length() { return random_.OneIn(20) ? 0 : random_.Between(1, 24); }

  template <class T>
  unsigned char* Pointer() {
    const std::size_t at = kAround * static_cast<std::size_t>(2 * used_++ + 1);
    if constexpr (std::is_array_v<T>)
      for (std::size_t i = 0; i < 9; ++i) {  // not far from the identity, or any corners
        const bool matrix = std::extent_v<T> == 3;
        const double number = matrix ? (i % 4 == 0) + random_.Between(-0.1, 0.1) * (i < 6)
                                     : random_.Between(0.0, 30.0);
        std::memcpy(&initial_[at + 8 * i], &number, sizeof number);
      }
    return &memory_[at];
  }

  Random random_;
  int used_ = 0;          // pointers
  bool sized_ = false;    // has had a size
  bool stepped_ = false;  // the next number is a step
  Bytes initial_, memory_ = Bytes(kAll);
  std::array<unsigned char*, 3> planes_ = {&memory_[kAround * 17], &memory_[kAround * 19],
                                           &memory_[kAround * 21]};
  std::array<int, 3> steps_ = {random_.Between(30, 40), random_.Between(-50, 50),
                               random_.Between(20, 60)};
};

// Arguments of the class as those of C.
int InC(int code) { return code; }
unsigned char InC(unsigned char byte) { return byte; }
unsigned InC(unsigned number) { return number; }
double InC(double number) { return number; }
qv_size InC(IppiSize size) { return {size.width, size.height}; }
qv_rect InC(IppiRect rect) { return {rect.x, rect.y, rect.width, rect.height}; }
template <std::size_t n>
double* InC(double (*rows)[n]) { return rows[0]; }
template <std::size_t n>
const double* InC(const double (*rows)[n]) { return rows[0]; }
template <class T>
T* InC(T* pointer) { return pointer; }

// Whether a call of the class has succeeded.
template <class... Parameters, class Function>
bool Compare(int seed, IppStatus (*operation)(Parameters...), Function* function,
             const char* name) {
  Arguments drawn(seed);
  const std::tuple<Parameters...> arguments{drawn.Draw<Parameters>()...};
  int status = 0, statusInC = 0;
  const Bytes expected = drawn.After([&] { status = std::apply(operation, arguments); });
  const Bytes got = drawn.After([&] {
    statusInC = std::apply([&](auto... a) { return function(InC(a)...); }, arguments);
  });
  EXPECT_EQ(statusInC, status) << name << ", seed " << seed;
  EXPECT_TRUE(got == expected) << name << ", seed " << seed;
  return status == StatusOk;
}

TEST(CInterface, DoesWhatTheClassDoes) {
#define QV_OPERATION(name, family, cName)                                        \
  {                                                                              \
    int succeeded = 0;                                                           \
    for (int seed = 0; seed < 100; ++seed)                                       \
      succeeded += Compare(seed, CqvAccLib::name, cName, #cName);                \
    EXPECT_GT(succeeded, 2) << #cName;                                           \
  }
#include "qvAcceleratedLib/Operations.def"
#undef QV_OPERATION
}

TEST(CInterface, KnowsStatuses) {
  EXPECT_STREQ(qv_status_name(QV_STATUS_SIZE_ERR), "QV_STATUS_SIZE_ERR");
  EXPECT_STREQ(qv_status_text(QV_STATUS_SIZE_ERR), "a width or height below 1");
  for (const int other : {2, -1, 1000, INT32_MIN}) {
    EXPECT_STREQ(qv_status_name(other), "unknown");
    EXPECT_STREQ(qv_status_text(other), "unknown status");
  }
}

// All the way down, the number of threads changing as well, with calls that run meanwhile: another
// thread's bytes stay the same.
TEST(CInterface, LowersTheLevel) {
  std::string names;
  for (const Level& level : AvailableLevels())
    names.append(names.empty() ? "" : " ").append(level.name);
  EXPECT_EQ(qv_levels(), names);
  const UseLevel restored(AvailableLevels().back());
  EXPECT_EQ(qv_set_level(nullptr), QV_STATUS_NULL_PTR_ERR);
  for (const char* wrong : {"", "avx", "generic sse2", "neon"})
    EXPECT_EQ(qv_set_level(wrong), QV_STATUS_OUT_OF_RANGE_ERR) << wrong;
  const int oldThreads = qv_threads();
  EXPECT_EQ(qv_set_threads(2), QV_STATUS_OK);
  const std::vector<Outcome> expected = RunAll();
  std::atomic<bool> done = false;
  std::thread other([&] {
    do EXPECT_TRUE(RunAll() == expected);
    while (!done);
  });
  const Level* above = nullptr;
  for (auto level = AvailableLevels().rbegin(); level != AvailableLevels().rend(); ++level) {
    EXPECT_EQ(qv_set_level(level->name), QV_STATUS_OK) << level->name;
    EXPECT_EQ(qv_set_threads(2 + level->variantIndex % 3), QV_STATUS_OK);  // several in any case
    EXPECT_STREQ(qv_level(), level->name);
    EXPECT_EQ(CarrylessLevel, level->carrylessLevel) << level->name;
    EXPECT_TRUE(!above || qv_set_level(above->name) == QV_STATUS_OUT_OF_RANGE_ERR);
    above = &*level;
    EXPECT_TRUE(RunAll() == expected) << level->name;
  }
  done = true;
  other.join();
  EXPECT_EQ(qv_set_threads(oldThreads), QV_STATUS_OK);
}

// On a slope the byte says where it was read: 5 units a column and 3 a row, of 40 x 30 pixels. In
// several bands a resize places its pixels differently.
TEST(CInterface, TellsWherePixelsAreRead) {
  constexpr int kWidth = 24, kHeight = 40 * 5;
  const qv_size srcSize = {kWidth, kHeight}, dstSize = {48, 300};
  const qv_rect roi = {3, 20, 20, 170};
  Bytes src(kWidth * kHeight);
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      src[static_cast<std::size_t>(kWidth * y + x)] = static_cast<unsigned char>(5 * x + y / 2);
  const auto expectByte = [&](int byte, const double* position, const char* what, int x, int y) {
    const double px = std::clamp(position[0], 3.0, 22.0), py = std::clamp(position[1], 20.0, 189.0);
    EXPECT_NEAR(byte, 5 * px + py / 2 - .25, 1.3) << what << " at " << x << ", " << y;
  };
  const double coeffs[9] = {1.5, 0.1, 2, -0.05, 1.25, 4, 0.001, 0, 1};
  for (const int threads : {1, 3}) {
    EXPECT_EQ(qv_set_thread_limit(threads), QV_STATUS_OK);
    const UseBudget budget(3);
    for (const int code : {1, 2, 4, 8, 16}) {
      Bytes dst(48 * 300);
      const double xFactor = code == 8 ? 0.6 : 1.9, yFactor = code == 8 ? 0.7 : 1.5;
      ASSERT_EQ(qv_resize(QV_ONE_CHANNEL, src.data(), srcSize, kWidth, roi, dst.data(), 48, dstSize,
                          xFactor, yFactor, code),
                QV_STATUS_OK);
      int written = 0;
      for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 48; ++x) {
          double at[2] = {-99, -99};
          const int status =
              qv_source_position(srcSize, roi, dstSize, xFactor, yFactor, code, x, y, at);
          const int byte = dst[static_cast<std::size_t>(48 * y + x)];
          written += status == QV_STATUS_OK;
          if (status == QV_STATUS_OK) {
            expectByte(byte, at, "resize", x, y);
          } else {
            EXPECT_EQ(status, QV_STATUS_OUT_OF_RANGE_ERR);
            EXPECT_EQ(byte, 0);
            EXPECT_EQ(at[0], -99);
          }
        }
      EXPECT_GT(written, 1000) << code;
    }
    Bytes warped(48 * 300);
    ASSERT_EQ(qv_warp_perspective(QV_ONE_CHANNEL, src.data(), srcSize, kWidth, roi, warped.data(),
                                  48, {0, 0, 48, 300}, coeffs, 2),
              QV_STATUS_OK);
    for (int y = 0; y < 300; ++y)
      for (int x = 0; x < 48; ++x) {
        double at[2];
        ASSERT_EQ(qv_warp_source_position(roi, coeffs, x, y, at), QV_STATUS_OK);
        const bool inside = at[0] >= 3 && at[0] <= 22 && at[1] >= 20 && at[1] <= 189;
        const int byte = warped[static_cast<std::size_t>(48 * y + x)];
        EXPECT_EQ(byte > 0, inside) << x << ", " << y;
        if (inside) expectByte(byte, at, "warp", x, y);
      }
  }
  EXPECT_EQ(qv_set_thread_limit(0), QV_STATUS_OK);
  double at[2];
  EXPECT_EQ(qv_source_position(srcSize, roi, dstSize, 1, 1, 2, 0, 0, nullptr),
            QV_STATUS_NULL_PTR_ERR);
  EXPECT_EQ(qv_source_position(srcSize, roi, {0, 1}, 1, 1, 2, 0, 0, at), QV_STATUS_SIZE_ERR);
  EXPECT_EQ(qv_source_position(srcSize, roi, dstSize, 1, 1, 3, 0, 0, at),
            QV_STATUS_INTERPOLATION_ERR);
  const double flat[9] = {};
  EXPECT_EQ(qv_warp_source_position(roi, flat, 0, 0, at), QV_STATUS_COEFF_ERR);
}

TEST(CInterface, CountsBytesOfRows) {
  const struct {
    int layout, width, bytes;
  } cases[] = {{QV_LAYOUT_GREY, 7, 7},          {QV_LAYOUT_BGR, 7, 21},
               {QV_LAYOUT_RGBA, 7, 28},         {QV_LAYOUT_YUYV, 7, 16},
               {QV_LAYOUT_UYVY, 8, 16},         {QV_LAYOUT_NV12, 7, 7},
               {QV_LAYOUT_I444, INT32_MAX, INT32_MAX}};
  for (const auto& c : cases) EXPECT_EQ(qv_row_bytes(c.layout, c.width), c.bytes) << c.layout;
  EXPECT_EQ(qv_row_bytes(QV_LAYOUT_BGR, INT32_MAX / 3 + 1), QV_STATUS_SIZE_ERR);
  EXPECT_EQ(qv_row_bytes(QV_LAYOUT_BGR, 0), QV_STATUS_SIZE_ERR);
  for (const int other : {0, 14, -1}) EXPECT_EQ(qv_row_bytes(other, 4), QV_STATUS_DATA_TYPE_ERR);
}

// Bytes of resizing tell one band from several.
TEST(CInterface, LimitOfAThreadIsABudget) {
  const auto resized = [] {
    const Bytes src = Noise(300 * 300);
    Bytes dst(200 * 200);
    EXPECT_EQ(qv_resize(QV_ONE_CHANNEL, src.data(), {300, 300}, 300, {0, 0, 300, 300}, dst.data(),
                        200, {200, 200}, 2 / 3., 2 / 3., 2),
              QV_STATUS_OK);
    return dst;
  };
  const int old = qv_threads();
  for (const int wrong : {0, -1, QV_MOST_THREADS + 1})
    EXPECT_EQ(qv_set_threads(wrong), QV_STATUS_OUT_OF_RANGE_ERR) << wrong;
  EXPECT_EQ(qv_set_thread_limit(-1), QV_STATUS_OUT_OF_RANGE_ERR);
  EXPECT_EQ(qv_threads(), old);
  Bytes expected[4];
  for (const int threads : {1, 2, 3}) {
    EXPECT_EQ(qv_set_threads(threads), QV_STATUS_OK);
    EXPECT_EQ(qv_threads(), threads);
    expected[threads] = resized();
  }
  EXPECT_FALSE(expected[1] == expected[2]);
  for (const int threads : {1, 2, 3, 1000}) {
    EXPECT_EQ(qv_set_thread_limit(threads), QV_STATUS_OK);
    EXPECT_TRUE(resized() == expected[threads < 3 ? threads : 3]) << threads;
    std::thread([&] { EXPECT_TRUE(resized() == expected[3]); }).join();
  }
  EXPECT_EQ(qv_set_thread_limit(0), QV_STATUS_OK);
  EXPECT_TRUE(resized() == expected[3]);
  EXPECT_EQ(qv_set_threads(old), QV_STATUS_OK);
}

}  // namespace
}  // namespace qv::test
