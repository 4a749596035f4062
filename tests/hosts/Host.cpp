// A host of Visual C++'s ABI: makes the self-test's calls of all operations without any library but
// the one under test, and brings its own entry point, memory and output.
#include "tools/selftest/Calls.h"

using size_type = decltype(sizeof 0);

// ---- What Visual C++'s libraries would give -----------------------------------------------------

extern "C" {
int _fltused = 0;  // a mark that floating point is used
// Two functions that a compiler calls by itself.
void* memset(void* to, int byte, size_type count) {
  volatile unsigned char* p = static_cast<unsigned char*>(to);
  while (count-- > 0) *p++ = static_cast<unsigned char>(byte);
  return to;
}
void* memcpy(void* to, const void* from, size_type count) {
  volatile unsigned char* p = static_cast<unsigned char*>(to);
  const unsigned char* q = static_cast<const unsigned char*>(from);
  while (count-- > 0) *p++ = *q++;
  return to;
}
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* text, unsigned long count,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned code);
}

namespace {
// The images of a call, given back in the opposite order.
unsigned char memory[4 << 20];
size_type used = 0;
}  // namespace

void* operator new[](size_type bytes) {
  unsigned char* const begin = memory + used;
  used += (bytes + 15) / 16 * 16;
  if (used > sizeof memory) ExitProcess(2);
  return begin;
}
void operator delete[](void* begin) noexcept {
  used = static_cast<size_type>(static_cast<unsigned char*>(begin) - memory);
}

// ---- The host -----------------------------------------------------------------------------------

namespace {

void Print(const char* text) {
  unsigned long length = 0, written;
  while (text[length]) ++length;
  WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), text, length, &written, nullptr);
}

bool Run() {
  bool same = true;
  static qv::selftest::Results results;
  MakeCalls(&results);
  ForEachDiffering(results, [&](qv::Op op) {
    Print("DIFFERENT bytes than elsewhere: ");
    Print(NameOf(op));
    Print("\n");
    same = false;
  });
  // The assignment is the one member that takes `this`.
  CqvAccLib a, b;
  if (&(a = b) == &a) return same;
  Print("the assignment returns something else\n");
  return false;
}

}  // namespace

extern "C" void __stdcall HostMain() {
  const bool same = Run();
  if (same) Print("matches the reference digests\n");
  ExitProcess(same ? 0 : 1);
}
