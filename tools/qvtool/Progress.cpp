#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace qvtool {
namespace {

using namespace std::chrono_literals;

// A job that is done sooner needs no bar, and a terminal is not worth more than this many updates.
constexpr auto kPatience = 300ms;
constexpr auto kInterval = 100ms;

}  // namespace

Progress::Progress(bool enabled)
    : enabled_(enabled && isatty(STDERR_FILENO)), next_(begin_ + kPatience) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
}

void Progress::Show(long frames, std::uint64_t bytesDone, std::optional<std::uint64_t> total) {
  if (!enabled_) return;
  const auto now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  const double rate = static_cast<double>(frames) / seconds;
  if (!total || *total == 0) {
    std::fprintf(stderr, "\r\x1b[K%ld frames, %.0f a second", frames, rate);
    return;
  }
  const double share = std::min(1.0, static_cast<double>(bytesDone) / static_cast<double>(*total));
  constexpr int kWidth = 40;
  const int full = static_cast<int>(share * kWidth);
  const std::string bar = std::string(static_cast<std::size_t>(full), '#') +
                          std::string(static_cast<std::size_t>(kWidth - full), '.');
  std::fprintf(stderr, "\r\x1b[K[%s] %3.0f %%  %ld frames, %.0f a second, %.0f s left", bar.c_str(),
               share * 100, frames, rate, seconds / std::max(share, 1e-9) * (1 - share));
}

}  // namespace qvtool
