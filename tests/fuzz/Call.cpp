#include "tests/fuzz/Call.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "support/Levels.h"
#include "support/Random.h"
#include "tests/support/Guarded.h"

#if defined(__has_include)
#if __has_include(<sanitizer/asan_interface.h>) && !defined(_WIN32)
#include <sanitizer/asan_interface.h>
#endif
#endif
#if !defined(ASAN_POISON_MEMORY_REGION)
#define ASAN_POISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#define ASAN_UNPOISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#endif
#if !defined(_WIN32)
#include <sys/mman.h>
#endif

namespace qv::test {

namespace {

// Images up to this many bytes are compared as a whole, others row by row.
constexpr std::ptrdiff_t kCompact = 1 << 20;
constexpr std::ptrdiff_t kMargin = 96;
constexpr int kMostImages = 12;

GuardedMemory& Arena(std::size_t i) {
  static std::unique_ptr<GuardedMemory> arenas[kMostImages];
  if (!arenas[i])
    arenas[i] =
        std::make_unique<GuardedMemory>(static_cast<std::size_t>(contract::kMostSpan) + 65536);
  return *arenas[i];
}

void Fill(Input& in, unsigned char* data, std::size_t size) {
  const unsigned kind = in.Byte();
  if (kind < 192) return Random(kind).Fill(data, size);
  for (std::size_t i = 0; i < size; ++i)
    data[i] = kind < 208 ? 255 : kind < 224 ? 0 : i / (1 + kind % 8) % 2 ? 255 : 0;
}

}  // namespace

Call::Call(Input& in) : in_(in), budget_(in.Between("budget", 1, 9)) {}

int Call::Step(const char* name, std::ptrdiff_t rowBytes) {
  const unsigned choice = in_.Byte();
  const bool fits = rowBytes >= 0 && rowBytes <= INT_MAX - 256;
  if (!fits || choice >= 248) return in_.Any(name);
  const int exact = static_cast<int>(rowBytes);
  if (choice < 96) return in_.Note(name, exact);
  if (choice < 160) return in_.Note(name, exact + static_cast<int>(choice) - 96);
  if (choice < 208) return in_.Note(name, -exact - static_cast<int>(choice) + 160);
  if (choice < 216) return in_.Note(name, 0);
  if (choice < 228) return in_.Between(name, -exact, exact);
  return in_.Between(name, -INT_MAX, INT_MAX);
}

IppiSize Call::Size(bool isRefused, int bytesAPixel) {
  const IppiSize size = {in_.Length("width"), in_.Length("height")};
  if (!isRefused && !IsEmpty(size)) return contract::Fitting(size, bytesAPixel);
  Refused();
  return size;
}

FuzzImage Call::Place(const char* name, int step, Part part, bool writable) {
  if (contract::MayBeNull(in_, name)) {
    Refused();
    return {nullptr, step};
  }
  return Lay(step, part, writable);
}

FuzzImage Call::Lay(int step, Part part, bool writable) {
  GuardedMemory& arena = Arena(images_.size());
  const unsigned where = in_.Byte();
  Placed image = {arena.begin(), 0, 0, 0, writable, {}};
  if (refused_ || part.bytes < 1 || part.rows < 1) {
    // Only an address; the unreadable page past the memory.
    images_.push_back(image);
    return {arena.end(), step};
  }
  const int reaching = contract::ReachingStep(step, part.bytes, part.rows, part.y);
  if (reaching != step) step = in_.Note("  as far as addresses go, step", reaching);
  const std::ptrdiff_t stride = step < 0 ? -static_cast<std::ptrdiff_t>(step) : step;
  const std::ptrdiff_t bytes = stride * (part.rows - 1) + part.bytes;
  image.stride = stride;
  image.bytes = part.bytes;
  image.rows = part.rows;
  image.lowest = where % 2 ? arena.begin() + where / 2 : arena.end() - bytes;
  FindWindows(image, arena.begin(), arena.end());
  for (const Window& window : image.windows) Fill(in_, window.data, window.size);
  images_.push_back(image);

  // The row `y` of the image is the lowest one or, rows running backwards, the highest.
  const std::ptrdiff_t first = step < 0 ? stride * (part.rows - 1) : 0;
  const long long base = static_cast<long long>(reinterpret_cast<std::uintptr_t>(image.lowest)) +
                         first - static_cast<long long>(part.y) * step - part.x;
  return {reinterpret_cast<unsigned char*>(static_cast<std::uintptr_t>(base)), step};
}

void Call::FindWindows(Placed& image, unsigned char* arenaBegin, unsigned char* arenaEnd) {
  const auto add = [&](unsigned char* begin, std::ptrdiff_t size) {
    unsigned char* const low = begin - arenaBegin < kMargin ? arenaBegin : begin - kMargin;
    unsigned char* const end = begin + size;
    unsigned char* const high = arenaEnd - end < kMargin ? arenaEnd : end + kMargin;
    image.windows.push_back({low, static_cast<std::size_t>(high - low)});
  };
  const std::ptrdiff_t bytes = image.stride * (image.rows - 1) + image.bytes;
  if (bytes <= kCompact || image.stride < image.bytes + 2 * kMargin)
    return add(image.lowest, bytes);
  for (std::ptrdiff_t r = 0; r < image.rows; ++r) add(image.lowest + r * image.stride, image.bytes);
}

// Makes all but the rows unreadable for the address sanitizer, or everything readable again.
void Call::Forbid(const Placed& image, bool forbid) const {
  for (const Window& window : image.windows) {
    if (forbid)
      ASAN_POISON_MEMORY_REGION(window.data, window.size);
    else
      ASAN_UNPOISON_MEMORY_REGION(window.data, window.size);
  }
  if (!forbid) return;
  if (image.stride < image.bytes) {
    ASAN_UNPOISON_MEMORY_REGION(image.lowest, image.stride * (image.rows - 1) + image.bytes);
    return;
  }
  // From the last row down: making a row readable also does so for the bytes before it in its group
  // of eight, never for those past it.
  for (std::ptrdiff_t r = image.rows - 1; r >= 0; --r)
    ASAN_UNPOISON_MEMORY_REGION(image.lowest + r * image.stride, image.bytes);
}

std::vector<unsigned char> Call::Snapshot() const {
  std::vector<unsigned char> bytes;
  for (const Placed& image : images_)
    if (image.writable)
      for (const Window& window : image.windows)
        bytes.insert(bytes.end(), window.data, window.data + window.size);
  return bytes;
}

void Call::Restore(const std::vector<unsigned char>& bytes) const {
  const unsigned char* from = bytes.data();
  for (const Placed& image : images_)
    if (image.writable)
      for (const Window& window : image.windows) {
        std::memcpy(window.data, from, window.size);
        from += window.size;
      }
}

// Gives the pages of far-apart rows back.
void Call::Release() const {
#if !defined(_WIN32)
  for (const Placed& image : images_)
    if (image.windows.size() > 1)
      for (const Window& window : image.windows) {
        const auto begin = reinterpret_cast<std::uintptr_t>(window.data) / 4096 * 4096;
        const auto end = reinterpret_cast<std::uintptr_t>(window.data) + window.size;
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
      }
#endif
}

std::set<std::string>& Call::Succeeded() {
  static std::set<std::string> functions;
  return functions;
}

void Call::Run(const char* function, int expected, const std::function<int()>& call,
               contract::Bands bands) {
  using contract::Bands;
  const std::vector<unsigned char> initial = Snapshot();
  std::vector<unsigned char> wanted;
  // The plain level on one band, unless several differ; then all levels on the drawn number.
  const int first = bands != Bands::kSeveralDiffer ? 1 : budget_ == 1 ? 1 : 2 + budget_ % 3;
  int firstStatus = 0, plainStatus = 0;
  const auto run = [&](const Level& level, int budget, bool isReference) {
    Restore(initial);
    for (const Placed& image : images_) Forbid(image, true);
    int status;
    {
      const UseLevel useLevel(level);
      const UseBudget useBudget(budget, Sharing::OnOneThread);  // thousands of calls a second
      status = call();
    }
    for (const Placed& image : images_) Forbid(image, false);
    if (expected != kAnyStatus && (budget == budget_ || bands == Bands::kSame) &&
        status != expected)
      Fail("unexpected status", level.name, budget, expected, status);
    const std::vector<unsigned char> got = Snapshot();
    if ((status < 0 || status == StatusNoOverlapWarning) && bands == Bands::kSame && got != initial)
      Fail("written in spite of the status", level.name, budget, 0, status);
    if (isReference)
      wanted = got;
    else if (got != wanted)
      Fail("other bytes than the plain level's", level.name, budget, 0, status);
    return status;
  };
  bool plain = true;
  for (const Level& level : AvailableLevels()) {
    if (plain) firstStatus = run(level, first, true);
    const int status = run(level, budget_, false);
    if (plain) plainStatus = status;
    if (status == StatusOk) Succeeded().insert(function);
    if (status != plainStatus)
      Fail("other status than the plain level's", level.name, budget_, plainStatus, status);
    if (bands == Bands::kSame && status != firstStatus)
      Fail("other status than on one band", level.name, budget_, firstStatus, status);
    plain = false;
  }
  Release();
}

void Call::Fail(const char* text, const char* level, int budget, int expected, int got) {
  std::fprintf(stderr, "\nFAULT: %s; level %s, budget %d, status expected %d, got %d\nDrawn:\n",
               text, level, budget, expected, got);
  in_.Print(stderr);
  std::abort();
}

}  // namespace qv::test
