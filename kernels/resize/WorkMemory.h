// The work memory of one call: laid out first, then obtained in one piece.
#ifndef QV_KERNELS_RESIZE_WORKMEMORY_H
#define QV_KERNELS_RESIZE_WORKMEMORY_H

#include <stddef.h>
#include <stdint.h>

#include <new>

namespace qv {

// Adds up pieces, each aligned to 64 bytes; in 64 bits, as sizes come from the caller.
class WorkLayout {
 public:
  template <class T>
  uint64_t Add(uint64_t count) {
    const uint64_t at = bytes_;
    bytes_ += (count * sizeof(T) + 63) / 64 * 64;
    return at;
  }
  // What a buffer for it must have, however it is aligned.
  uint64_t bytes() const { return bytes_ + kAlignment; }

  static constexpr uint64_t kAlignment = 64;

 private:
  uint64_t bytes_ = 0;
};

// Memory that the caller has.
struct WorkBuffer {
  void* at = nullptr;
  uint64_t bytes = 0;
};

// The memory of a layout: on the stack if it is small, in the caller's buffer if it fits there,
// else allocated. Null if it cannot be had.
class WorkMemory {
 public:
  explicit WorkMemory(const WorkLayout& layout, const WorkBuffer& buffer = {}) {
    const uint64_t bytes = layout.bytes();
    if (bytes <= sizeof(small_)) {
      base_ = Aligned(small_);
    } else if (buffer.at && bytes <= buffer.bytes) {
      base_ = Aligned(buffer.at);
    } else if (bytes <= PTRDIFF_MAX) {
      owned_ = new (std::nothrow) unsigned char[static_cast<size_t>(bytes)];
      if (owned_) base_ = Aligned(owned_);
    }
  }
  ~WorkMemory() { delete[] owned_; }
  WorkMemory(const WorkMemory&) = delete;
  WorkMemory& operator=(const WorkMemory&) = delete;

  explicit operator bool() const { return base_; }

  template <class T>
  T* At(uint64_t offset) const {
    return reinterpret_cast<T*>(base_ + offset);
  }

 private:
  static unsigned char* Aligned(void* p) {
    constexpr size_t kAlignment = WorkLayout::kAlignment;
    auto* const bytes = static_cast<unsigned char*>(p);
    const auto address = reinterpret_cast<uintptr_t>(p);
    return bytes + (kAlignment - address % kAlignment) % kAlignment;
  }

  unsigned char small_[8192];
  unsigned char* owned_ = nullptr;
  unsigned char* base_ = nullptr;
};

}  // namespace qv

#endif
