// Memory between two unreadable pages.
#ifndef QV_TESTS_SUPPORT_GUARDED_H
#define QV_TESTS_SUPPORT_GUARDED_H

#include <cstddef>

namespace qv::test {

// A run of memory with an unreadable page directly before and directly past it. Pages are taken
// from the system as they are touched, so a large capacity costs nothing.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t capacity = kDefaultCapacity);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  unsigned char* begin() const { return begin_; }
  unsigned char* end() const { return begin_ + capacity_; }
  std::size_t capacity() const { return capacity_; }

  static constexpr std::size_t kDefaultCapacity = sizeof(void*) == 8 ? 128u << 20 : 16u << 20;

 private:
  void* mapping_;
  unsigned char* begin_;
  std::size_t capacity_;
};

}  // namespace qv::test

#endif
