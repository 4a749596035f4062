// A host program: calls every operation once, as its compiler does, and prints what came back, in a
// form that is the same on every platform; what else operations do is the self-test's. It uses no
// library but the one under test, so that a compiler without a C library can build it; on Windows
// it brings its own entry point.
#include <qvAcceleratedLib/CqvAccLib.h>

namespace {

using Lib = CqvAccLib;

constexpr int kWidth = 322, kHeight = 210;  // enough rows for several bands

unsigned char source[2][kHeight * kWidth * 4], destination[2][kHeight * kWidth * 4];
unsigned char chroma[2][kHeight * kWidth];
const IppiSize size = {kWidth, kHeight};
const IppiRect whole = {0, 0, kWidth, kHeight};

void Print(const char* text, int length);

void Fill(unsigned char* bytes, int count, unsigned seed) {
  for (int i = 0; i < count; ++i) {
    seed = seed * 1664525u + 1013904223u;
    bytes[i] = static_cast<unsigned char>(seed >> 24);
  }
}

unsigned Digest(const void* data, int count, unsigned digest) {  // FNV-1a
  const unsigned char* bytes = static_cast<const unsigned char*>(data);
  for (int i = 0; i < count; ++i) digest = (digest ^ bytes[i]) * 16777619u;
  return digest;
}

// Prints the status and the digest of all that an operation may have written, and begins anew.
void Report(const char* name, IppStatus status, unsigned extra = 0) {
  unsigned digest = Digest(destination, sizeof destination, 2166136261u + extra);
  digest = Digest(chroma, sizeof chroma, digest);
  char line[64];
  int n = 0;
  while (*name) line[n++] = *name++;
  line[n++] = ' ';
  int code = status;
  if (code < 0) line[n++] = '-', code = -code;
  for (int unit = 100; unit > 0; unit /= 10) line[n++] = static_cast<char>('0' + code / unit % 10);
  line[n++] = ' ';
  for (int shift = 28; shift >= 0; shift -= 4) line[n++] = "0123456789abcdef"[digest >> shift & 15];
  line[n++] = '\n';
  Print(line, n);
  Fill(destination[0], sizeof destination, 1);
  Fill(chroma[0], sizeof chroma, 2);
}

void CallTransfers() {
  const unsigned char* src = source[0];
  unsigned char* dst = destination[0];
  Report("qvCopy",
         Lib::qvCopy(Lib::FourToThreeChannels, src, kWidth * 4, dst, kWidth * 3, size));
  Report("qvDup", Lib::qvDup(Lib::OneChannel, src, kWidth, dst, kWidth * 3, size));
  Report("qvSet", Lib::qvSet(Lib::ThreeChannels, src, dst, kWidth * 3, size));
  Report("qvMirror", Lib::qvMirror(Lib::ThreeChannels, src, kWidth * 3, dst, kWidth * 3, size,
                                   AxisVertical));
  Report("qvLUTPalette",
         Lib::qvLUTPalette(Lib::OneChannel, src, kWidth, dst, kWidth * 3, size, source[1], 7));
  Report("qvMulCScale", Lib::qvMulCScale(Lib::ScalePlane, 137, dst, kWidth, size));
  unsigned sum = 0;
  IppStatus status = Lib::qvCRC32(Lib::OneChannel, src, 123457, &sum);
  Report("qvCRC32", status, sum);
  sum = 1;
  status = Lib::qvAdler32(Lib::OneChannel, src, 123457, &sum);
  Report("qvAdler32", status, sum);
}

void CallConversions() {
  const unsigned char* src = source[0];
  unsigned char* dst = destination[0];
  unsigned char* planes[3] = {dst, chroma[0], chroma[1]};
  unsigned char* sources[3] = {source[0], source[1], source[1] + kWidth * kHeight};
  int steps[3] = {kWidth, kWidth / 2, kWidth / 2};
  Report("qvYCbCr420",
         Lib::qvYCbCr420(Lib::OneChannel, src, kWidth, source[1], kWidth, planes, steps, size));
  Report("qvYCbCr422ToYCrCb420",
         Lib::qvYCbCr422ToYCrCb420(Lib::OneChannel, src, kWidth * 2, planes, steps, size));
  Report("qvYCbCr420ToBGR",
         Lib::qvYCbCr420ToBGR(Lib::OneChannel, sources, steps, dst, kWidth * 3, size));
  Report("qvYCbCr422ToBGR",
         Lib::qvYCbCr422ToBGR(Lib::OneChannel, src, kWidth * 2, dst, kWidth * 3, size));
}

void CallSamplers() {
  const unsigned char* src = source[0];
  unsigned char* dst = destination[0];
  constexpr int kStep = kWidth * 3;
  const IppiSize half = {kWidth / 2, kHeight / 2};
  Report("qvResize", Lib::qvResize(Lib::ThreeChannels, src, size, kStep, whole, dst, kStep, half,
                                   0.5, 0.4375, 4));
  Report("qvResizeYUV422", Lib::qvResizeYUV422(Lib::OneChannel, src, size, kWidth * 2, whole, dst,
                                               kWidth * 2, half, 0.5, 0.4375, 4));
  Report("qvRotate", Lib::qvRotate(Lib::ThreeChannels, src, size, kStep, whole, dst, kStep, whole,
                                   30, 12, 150, 2));
  const double quad[4][2] = {{10.5, 4}, {300, 12.25}, {290, 200}, {3, 190}};
  const double coeffs[3][3] = {
      {0.875, 0.125, 3.5}, {-0.0625, 0.9375, 7}, {0.0001220703125, -0.000244140625, 1}};
  double matrix[3][3] = {}, bound[2][2] = {};
  Report("qvWarpPerspective", Lib::qvWarpPerspective(Lib::ThreeChannels, src, size, kStep, whole,
                                                     dst, kStep, whole, coeffs, 4));
  Report("qvWarpPerspectiveEx",
         Lib::qvWarpPerspectiveEx(Lib::OneChannel, src, size, kStep, whole, dst, kStep, whole,
                                  coeffs, 2, source[1], kWidth, destination[1], kWidth, coeffs));
  Report("qvGetPerspectiveTransform",
         Lib::qvGetPerspectiveTransform(Lib::OneChannel, whole, quad, matrix));
  Report("matrix", StatusOk, Digest(matrix, sizeof matrix, 0));
  Report("qvGetRotateBound",
         Lib::qvGetRotateBound(Lib::OneChannel, whole, bound, 450, 1.5, -2.25));
  Report("bound", StatusOk, Digest(bound, sizeof bound, 0));
}

void CallCompositions() {
  unsigned char* dst = destination[0];
  constexpr int kStep = kWidth * 3;
  Report("qvAlphaCompC", Lib::qvAlphaCompC(Lib::ThreeChannels, source[0], kStep, 200, source[1],
                                           kStep, 99, dst, kStep, size, AlphaAtop));
  for (int i = 0; i < kWidth * kHeight; ++i) source[1][i] = chroma[0][i];
  Report("qvMergeAlphaOver",
         Lib::qvMergeAlphaOver(Lib::ThreeChannels, dst, kStep, chroma[0], kWidth, destination[1],
                               kStep, chroma[1], kWidth, source[1], kStep, kWidth, kHeight));
  Report("alpha", StatusOk, Digest(source[1], kWidth * kHeight, 0));
  Report("qvMergeAlphaPlus",
         Lib::qvMergeAlphaPlus(Lib::ThreeChannels, dst, kStep, destination[1], kStep, chroma[0],
                               kWidth, kWidth, kHeight));
  Report("qvDeinterlace",
         Lib::qvDeinterlace(Lib::ThreeChannels, source[0], kStep, dst, kStep, size, 1, 0));
}

void Run() {
  Fill(source[0], sizeof source, 3);
  Report("start", StatusOk);
  CallTransfers();
  CallConversions();
  CallSamplers();
  CallCompositions();
  // The assignment is the one member that takes `this`.
  Lib a, b;
  Report("assignment", &(a = b) == &a ? StatusOk : StatusBadArgErr);
}

}  // namespace

#if defined(_WIN32)

extern "C" {
#if defined(_MSC_VER)
// What Visual C++'s libraries would give: a mark that floating point is used, and the two functions
// that a compiler calls by itself.
int _fltused = 0;
void* memset(void* to, int byte, decltype(sizeof 0) count) {
  volatile unsigned char* p = static_cast<unsigned char*>(to);
  while (count-- > 0) *p++ = static_cast<unsigned char>(byte);
  return to;
}
void* memcpy(void* to, const void* from, decltype(sizeof 0) count) {
  volatile unsigned char* p = static_cast<unsigned char*>(to);
  const unsigned char* q = static_cast<const unsigned char*>(from);
  while (count-- > 0) *p++ = *q++;
  return to;
}
#endif
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* text, unsigned long count,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned code);

void __stdcall HostMain() {
  Run();
  ExitProcess(0);
}
}

namespace {
void Print(const char* text, int length) {
  unsigned long written;
  WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), text, static_cast<unsigned long>(length),
            &written, nullptr);
}
}  // namespace

#else

#include <unistd.h>

namespace {
void Print(const char* text, int length) {
  if (write(1, text, static_cast<unsigned long>(length)) != length) _exit(1);
}
}  // namespace

int main() { Run(); }

#endif
