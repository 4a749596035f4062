// A progress bar on standard error.
#ifndef QV_TOOLS_QVTOOL_PROGRESS_H
#define QV_TOOLS_QVTOOL_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <optional>

namespace qvtool {

// Shows nothing unless it is enabled and standard error is a terminal; clears its line at the end.
class Progress {
 public:
  explicit Progress(bool enabled);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // `total` is unknown for pipes; then frames are counted without a bar.
  void Show(long frames, std::uint64_t bytesDone, std::optional<std::uint64_t> total);

 private:
  using Clock = std::chrono::steady_clock;

  bool enabled_;
  bool shown_ = false;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point next_;
};

}  // namespace qvtool

#endif
