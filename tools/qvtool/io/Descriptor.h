// An open file of the system, closed at the end. The standard streams stay open.
#ifndef QV_TOOLS_QVTOOL_IO_DESCRIPTOR_H
#define QV_TOOLS_QVTOOL_IO_DESCRIPTOR_H

#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace qvtool {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }

  int Get() const { return value_; }
  explicit operator bool() const { return value_ >= 0; }

  // As close of the system; 0 for what it leaves open.
  int Close() {
    const int value = std::exchange(value_, -1);
    return value > STDERR_FILENO ? close(value) : 0;
  }

  // Has a pipe hold a MiB, where the system lets it: its ends then change turns less often.
  void WidenPipe() const {
#ifdef F_SETPIPE_SZ
    fcntl(value_, F_SETPIPE_SZ, 1 << 20);  // what is no pipe, or may not be wider, stays as it is
#endif
  }

 private:
  int value_ = -1;
};

}  // namespace qvtool

#endif
