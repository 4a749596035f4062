#include "tests/support/Guarded.h"

#include <cstdio>
#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace qv::test {

namespace {
constexpr std::size_t kPage = 65536;  // a multiple of every page size and allocation granularity
}

GuardedMemory::GuardedMemory(std::size_t capacity)
    : capacity_((capacity + kPage - 1) / kPage * kPage) {
  const std::size_t all = capacity_ + 2 * kPage;
#if defined(_WIN32)
  mapping_ = VirtualAlloc(nullptr, all, MEM_RESERVE, PAGE_NOACCESS);
  const bool ok = mapping_ && VirtualAlloc(static_cast<char*>(mapping_) + kPage, capacity_,
                                           MEM_COMMIT, PAGE_READWRITE);
#else
  mapping_ = mmap(nullptr, all, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  const bool ok =
      mapping_ != MAP_FAILED &&
      mprotect(static_cast<char*>(mapping_) + kPage, capacity_, PROT_READ | PROT_WRITE) == 0;
#endif
  if (!ok) {
    std::fprintf(stderr, "cannot map %zu bytes of test memory\n", all);
    std::abort();
  }
  begin_ = static_cast<unsigned char*>(mapping_) + kPage;
}

GuardedMemory::~GuardedMemory() {
#if defined(_WIN32)
  VirtualFree(mapping_, 0, MEM_RELEASE);
#else
  munmap(mapping_, capacity_ + 2 * kPage);
#endif
}

}  // namespace qv::test
