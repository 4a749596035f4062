#include "tests/kernelcheck/Case.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <tuple>

#include "dispatch/ProcessorInfo.h"
#include "dispatch/VariantIndex.h"

namespace qv::test {

namespace {

constexpr std::ptrdiff_t kMargin = 96;  // compared on both sides, as far as the guard pages allow

std::string Number(long long n) { return std::to_string(n); }

}  // namespace

std::vector<Check>& AllChecks() {
  static std::vector<Check> checks;
  return checks;
}

Case::Case(std::vector<std::unique_ptr<GuardedMemory>>& memory, const std::vector<Level>& levels)
    : memory_(memory), levels_(levels) {}

void Case::Begin(std::uint64_t seed) {
  random = Random(seed);
  used_ = 0;
  writables_.clear();
  failure.clear();
  failedLevel.clear();
  timings.clear();
  bench_ = false;
  LastCacheBytes = random.OneIn(2) ? 0 : kUnknownCacheBytes;
  QuickGathers = random.OneIn(2);
  QuickDivision = random.OneIn(2);
  LongMoveBytes = random.OneIn(2) ? 0 : kNoLongMoves;
}

void Case::BeginBench(IppiSize size, double seconds) {
  Begin(1);
  bench_ = true;
  SelectProcessorVariant();
  benchSize_ = size;
  benchSeconds_ = seconds;
}

IppiSize Case::Size(int minWidth, int minHeight) {
  if (bench_) return benchSize_;
  int width = random.Between(1, 200);
  int height = random.Between(1, 5);
  if (random.OneIn(4)) width = random.Between(1, 18);
  if (random.OneIn(8)) width = random.Between(1, 900);
  if (random.OneIn(16)) height = random.Between(1, 40);
  if (random.OneIn(4000)) std::tie(width, height) = std::pair(70000, 3);
  if (random.OneIn(4000)) std::tie(width, height) = std::pair(3, 70000);
  return {std::max(width, minWidth), std::max(height, minHeight)};
}

Image Case::Place(std::ptrdiff_t rowBytes, int rows, Rows lie, unsigned char** lowest) {
  if (used_ == memory_.size()) memory_.push_back(std::make_unique<GuardedMemory>());
  const GuardedMemory& memory = *memory_[used_++];
  std::ptrdiff_t stride = rowBytes;
  bool flushToEnd = false, upwards = false;
  std::ptrdiff_t shift = 0;
  if (!bench_) {
    if (random.OneIn(2)) stride += random.Between(1, 70);
    if (lie == Rows::kMayOverlap && random.OneIn(4)) stride = random.Between(0, int(rowBytes));
    if (random.OneIn(4)) stride = (stride + 63) / 64 * 64;
    flushToEnd = random.OneIn(2);
    if (random.OneIn(4)) shift = random.Between(0, 63);
    upwards = lie != Rows::kDownwards && random.OneIn(8);
  }
  const std::ptrdiff_t span = stride * (rows - 1) + rowBytes;
  if (static_cast<std::size_t>(span + shift) > memory.capacity()) std::abort();
  *lowest = flushToEnd ? memory.end() - span : memory.begin() + shift;
  if (upwards) return {*lowest + stride * (rows - 1), static_cast<int>(-stride)};
  return {*lowest, static_cast<int>(stride)};
}

void Case::FillSource(unsigned char* p, std::size_t n) {
  const int kind = bench_ ? 0 : random.Between(0, 15);
  if (kind == 1) {
    std::memset(p, 0, n);
  } else if (kind == 2) {
    std::memset(p, 255, n);
  } else if (kind == 3) {  // alternating extremes, in runs of random length
    const unsigned run = static_cast<unsigned>(random.Between(1, random.OneIn(2) ? 5 : 100));
    for (std::size_t i = 0; i < n; ++i) p[i] = i / run % 2 ? 255 : 0;
  } else if (kind == 4) {  // random extremes
    random.Fill(p, n);
    for (std::size_t i = 0; i < n; ++i) p[i] = p[i] & 1 ? 255 : 0;
  } else {
    random.Fill(p, n);
  }
}

Image Case::Source(std::ptrdiff_t rowBytes, int rows, Rows lie) {
  unsigned char* lowest;
  const Image image = Place(rowBytes, rows, lie, &lowest);
  const std::ptrdiff_t stride = image.step < 0 ? -image.step : image.step;
  FillSource(lowest, static_cast<std::size_t>(stride * (rows - 1) + rowBytes));
  return image;
}

Image Case::Destination(std::ptrdiff_t rowBytes, int rows, Rows lie, int rowsBefore) {
  Writable w;
  Image image = Place(rowBytes, rows, lie, &w.rows);
  const GuardedMemory& memory = *memory_[used_ - 1];
  w.stride = image.step < 0 ? -static_cast<std::ptrdiff_t>(image.step) : image.step;
  w.rowBytes = rowBytes;
  w.rowCount = rows;
  w.begin = std::max(memory.begin(), w.rows - kMargin);
  unsigned char* const end =
      std::min(memory.end(), w.rows + w.stride * (rows - 1) + rowBytes + kMargin);
  w.size = static_cast<std::size_t>(end - w.begin);
  w.initial.resize(w.size);
  FillSource(w.initial.data(), w.size);
  std::memcpy(w.begin, w.initial.data(), w.size);
  writables_.push_back(std::move(w));
  image.data += static_cast<std::ptrdiff_t>(rowsBefore) * image.step;
  return image;
}

bool Case::KeepsPadding(const Writable& w) const {
  std::ptrdiff_t clean = 0;  // up to here compared, from w.begin
  for (int y = 0; y <= w.rowCount; ++y) {
    const std::ptrdiff_t until = y == w.rowCount ? static_cast<std::ptrdiff_t>(w.size)
                                                 : w.rows + y * w.stride - w.begin;
    if (until > clean && std::memcmp(w.begin + clean, w.initial.data() + clean,
                                     static_cast<std::size_t>(until - clean)) != 0)
      return false;
    clean = until + w.rowBytes;
  }
  return true;
}

void Case::Fail(const std::string& level, const std::string& text) {
  if (!failure.empty()) return;
  failure = text;
  failedLevel = level;
}

void Case::Compare(const std::function<int()>& call) {
  {
    const UseLevel plain(BuiltLevels()[0]);
    plainResult = call();
  }
  for (Writable& w : writables_) {
    w.expected.assign(w.begin, w.begin + w.size);
    if (!KeepsPadding(w)) Fail("generic", "a byte outside the rows was written");
  }
  for (Level level : levels_) {
    level.carrylessLevel = random.Between(0, level.carrylessLevel);
    for (Writable& w : writables_) std::memcpy(w.begin, w.initial.data(), w.size);
    const UseLevel use(level);
    const int result = call();
    if (result != plainResult)
      Fail(level.name, "status " + Number(result) + " where the plain rows return " +
                           Number(plainResult));
    for (std::size_t d = 0; d < writables_.size(); ++d) {
      const Writable& w = writables_[d];
      if (std::memcmp(w.begin, w.expected.data(), w.size) == 0) continue;
      const auto at = std::mismatch(w.expected.begin(), w.expected.end(), w.begin).first -
                      w.expected.begin();
      const std::ptrdiff_t offset = w.begin + at - w.rows;
      const std::ptrdiff_t row = offset < 0 ? -1 : w.stride == 0 ? 0 : offset / w.stride;
      Fail(level.name, "destination " + Number(static_cast<long long>(d)) + ", memory row " +
                           Number(row) + ", byte " + Number(offset - row * w.stride) + " of " +
                           Number(w.rowBytes) + ": " + Number(w.begin[at]) +
                           " where the plain rows write " +
                           Number(w.expected[static_cast<std::size_t>(at)]));
    }
  }
  if (bench_ && failure.empty()) Time(call);
}

// The fastest of many runs at each level; the levels take turns, so that a noisy moment hits all.
void Case::Time(const std::function<int()>& call) {
  using Clock = std::chrono::steady_clock;
  const double pixels = static_cast<double>(benchSize_.width) * benchSize_.height;
  for (const Level& level : levels_) timings.push_back({level.name, 1e300});
  const auto end = Clock::now() + std::chrono::duration<double>(benchSeconds_);
  do {
    for (std::size_t i = 0; i < levels_.size(); ++i) {
      const UseLevel use(levels_[i]);
      call();
      for (int run = 0; run < 3; ++run) {
        const auto start = Clock::now();
        call();
        const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
        timings[i].nanosecondsPerPixel =
            std::min(timings[i].nanosecondsPerPixel, taken.count() / pixels);
      }
    }
  } while (Clock::now() < end);
}

}  // namespace qv::test
