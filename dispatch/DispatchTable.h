// Five-slot dispatch tables: how a kernel entry finds the implementation of this processor's level.
#ifndef QV_DISPATCH_DISPATCHTABLE_H
#define QV_DISPATCH_DISPATCHTABLE_H

#include <type_traits>

#include "dispatch/VariantIndex.h"

namespace qv {

// Slot 4 of a kernel that gains from wider vectors: chooses once more, by WideLevel.
template <auto* Ssse3, auto* Avx2, auto* Avx512>
struct WideForwarder;

template <class Result, class... Args, Result (*Ssse3)(Args...), Result (*Avx2)(Args...),
          Result (*Avx512)(Args...)>
struct WideForwarder<Ssse3, Avx2, Avx512> {
  static constexpr Result (*kWide[3])(Args...) = {Ssse3, Avx2, Avx512};
  static Result Forward(Args... args) { return kWide[WideLevel](args...); }
};

template <auto* Function>
struct FunctionConstant;

// By type: under -fsanitize=undefined GCC 12 does not compare addresses in constant expressions.
template <auto* A, auto* B>
constexpr bool kSameFunction = std::is_same_v<FunctionConstant<A>, FunctionConstant<B>>;

// One implementation for each value of VariantIndex: generic, SSE, SSE2, SSE3, SSSE3.
template <class Kernel>
struct DispatchTable {
  Kernel* slot[5];

  template <class... Args>
  auto operator()(Args... args) const {
    return slot[VariantIndex](args...);
  }
};

// The table of a kernel from its five built levels. SSE processors run the generic rows and SSE3
// processors the SSE2 rows.
template <auto* Generic, auto* Sse2, auto* Ssse3, auto* Avx2, auto* Avx512>
constexpr auto MakeDispatchTable() {
  using Kernel = std::remove_pointer_t<decltype(Generic)>;
  Kernel* slotFour = Ssse3;
  if constexpr (!kSameFunction<Ssse3, Avx2> || !kSameFunction<Ssse3, Avx512>)
    slotFour = &WideForwarder<Ssse3, Avx2, Avx512>::Forward;
  return DispatchTable<Kernel>{{Generic, Generic, Sse2, Sse2, slotFour}};
}

}  // namespace qv

// For the table file of a family, which includes the family's .def list with QV_KERNEL defined as
// this: declares the levels that the list names and defines kernel_Table. The kernel's entry must
// have been declared before.
#if defined(__i386__) || defined(__x86_64__)
#define QV_DEFINE_TABLE(kernel, Generic, Sse2, Ssse3, Avx2, Avx512)                              \
  namespace qv {                                                                                 \
  namespace Generic { decltype(qv::kernel) kernel; }                                             \
  namespace Sse2 { decltype(qv::kernel) kernel; }                                                \
  namespace Ssse3 { decltype(qv::kernel) kernel; }                                               \
  namespace Avx2 { decltype(qv::kernel) kernel; }                                                \
  namespace Avx512 { decltype(qv::kernel) kernel; }                                              \
  static constexpr auto kernel##_Table =                                                         \
      MakeDispatchTable<Generic::kernel, Sse2::kernel, Ssse3::kernel, Avx2::kernel,              \
                        Avx512::kernel>();                                                       \
  }
#else  // the plain rows alone are built
#define QV_DEFINE_TABLE(kernel, Generic, ...)                                                    \
  namespace qv {                                                                                 \
  namespace Generic { decltype(qv::kernel) kernel; }                                             \
  static constexpr auto kernel##_Table =                                                         \
      MakeDispatchTable<Generic::kernel, Generic::kernel, Generic::kernel, Generic::kernel,      \
                        Generic::kernel>();                                                      \
  }
#endif

// The entry, in namespace qv, of a kernel that turns one image into another of `size`.
#define QV_DEFINE_IMAGE_ENTRY(kernel)                                                            \
  IppStatus kernel(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,       \
                   IppiSize size) {                                                              \
    return kernel##_Table(src, srcStep, dst, dstStep, size);                                     \
  }

#endif
