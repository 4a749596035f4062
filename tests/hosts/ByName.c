// Runs every function of the C library as other languages do: found by its name in a library that
// is loaded late, called by its address, with no header but plain numbers, addresses and two
// structures.
//
//   byname LIBRARY EXPORTS     EXPORTS names the functions; one without a call here is a fault
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

typedef void (*Function)(void);
typedef struct { int width, height; } Size;
typedef struct { int x, y, width, height; } Rect;
typedef unsigned char Byte;

enum { kWidth = 12, kHeight = 8, kStep = 40 };
static const Size size = {kWidth, kHeight};
static const Rect whole = {0, 0, kWidth, kHeight};
static const double shift[9] = {1, 0, 1, 0, 1, 2, 0, 0, 1};

static Byte source[kStep * 10], destination[kStep * 24], alpha[kStep * 10];
static double numbers[9];
static unsigned sum;

static void Fill(Byte* bytes, int count, unsigned seed) {
  for (int i = 0; i < count; ++i) bytes[i] = (Byte)((seed = seed * 1664525u + 1013904223u) >> 24);
}

static unsigned Digest(unsigned digest, const void* data, size_t count) {  // FNV-1a
  for (size_t i = 0; i < count; ++i) digest = (digest ^ ((const Byte*)data)[i]) * 16777619u;
  return digest;
}

// What a call may have written.
static unsigned DigestAll(int status) {
  unsigned digest = Digest(2166136261u, destination, sizeof destination);
  for (int i = 0; i < 9; ++i) {
    const int thousandths = (int)(numbers[i] * 1000);
    digest = Digest(digest, &thousandths, sizeof thousandths);
  }
  return Digest(Digest(digest, &sum, sizeof sum), &status, sizeof status);
}

typedef const void* In;
typedef void* Out;
#define PIXELS(name, type)                                                            \
  static int name(Function f) {                                                       \
    return ((int (*)(int, In, int, Out, int, Size))f)(type, source, kStep,            \
                                                      destination, kStep, size);      \
  }
PIXELS(Copy, 4)
PIXELS(Dup, 0)
PIXELS(FromPacked, 0)

static int Set(Function f) {
  return ((int (*)(int, In, Out, int, Size))f)(4, source, destination, kStep, size);
}
static int Mirror(Function f) {
  return ((int (*)(int, In, int, Out, int, Size, int))f)(4, source, kStep, destination, kStep, size,
                                                         1);
}
static int Palette(Function f) {
  return ((int (*)(int, In, int, Out, int, Size, In, int))f)(0, source, kStep, destination, kStep,
                                                             size, source, 4);
}
static int Scale(Function f) {
  return ((int (*)(int, Byte, Out, int, Size))f)(16, 77, destination, kStep, size);
}
static int Checksum(Function f) {
  return ((int (*)(int, In, int, unsigned*))f)(0, source, 99, &sum);
}

static Byte* planes[3] = {destination, destination + kStep * 8, destination + kStep * 16};
static const Byte* sources[3] = {source, alpha, alpha + kStep * 4};
static const int steps[3] = {kStep, kStep, kStep};

static int Split(Function f) {
  return ((int (*)(int, In, int, In, int, Byte* const*, const int*, Size))f)(
      0, source, kStep, alpha, kStep, planes, steps, size);
}
static int FromPackedToPlanes(Function f) {
  return ((int (*)(int, In, int, Byte* const*, const int*, Size))f)(0, source, kStep, planes, steps,
                                                                    size);
}
static int FromPlanes(Function f) {
  return ((int (*)(int, const Byte* const*, const int*, Out, int, Size))f)(
      0, sources, steps, destination, kStep, size);
}
// Every kind of pixel with every filter: floating-point numbers are the same everywhere.
static int Resample(Function f) {
  static const int filters[] = {0, 1, 4, 8, 16, 32};
  struct { int codes[4]; double numbers[9]; } options = {
      {0, 0, 0, 0}, {0.5, 0, 8.5, 7.75, -0.25, 0, 0, 0.5, 0}};
  const Size from = {9, kHeight}, to = {6, 12};
  int status = 0;
  for (int i = 0; i < 36; ++i) {
    options.codes[0] = i / 6;
    options.codes[1] = filters[i % 6];
    options.codes[2] = i % 2;
    status |= ((int (*)(In, Size, int, Out, Size, int, In))f)(source, from, kStep, destination, to,
                                                              kStep, &options);
    sum = Digest(sum, destination, sizeof destination);
  }
  return status;
}

static int Resize(Function f) {
  const Size to = {6, 12};
  return ((int (*)(int, In, Size, int, Rect, Out, int, Size, double, double, int))f)(
      2, source, size, kStep, whole, destination, kStep, to, 0.5, 1.5, 4);
}
static int Rotate(Function f) {
  return ((int (*)(int, In, Size, int, Rect, Out, int, Rect, double, double, double, int))f)(
      2, source, size, kStep, whole, destination, kStep, whole, 30.0, 1.0, 4.0, 2);
}
static int Warp(Function f) {
  return ((int (*)(int, In, Size, int, Rect, Out, int, Rect, const double*, int))f)(
      4, source, size, kStep, whole, destination, kStep, whole, shift, 2);
}
static int WarpTwo(Function f) {
  return ((int (*)(int, In, Size, int, Rect, Out, int, Rect, const double*, int, In, int, Out, int,
                   const double*))f)(0, source, size, kStep, whole, destination, kStep, whole,
                                     shift, 1, alpha, kStep, destination + kStep * 10, kStep,
                                     shift);
}
static int Transform(Function f) {
  const double quad[8] = {0, 0, 22, 0, 22, 14, 0, 14};
  return ((int (*)(int, Rect, const double*, double*))f)(0, whole, quad, numbers);
}
static int Bound(Function f) {
  return ((int (*)(int, Rect, double*, double, double, double))f)(0, whole, numbers, 90.0, 1.5,
                                                                  -2.25);
}
static int Compose(Function f) {
  return ((int (*)(int, In, int, Byte, In, int, Byte, Out, int, Size, int))f)(
      4, source, kStep, 200, alpha, kStep, 99, destination, kStep, size, 3);
}
static int Over(Function f) {
  Byte* const merged = destination + kStep * 10;
  memcpy(merged, alpha, kStep * kHeight);
  return ((int (*)(int, Out, int, In, int, In, int, In, int, Out, int, int, int))f)(
      0, destination, kStep, alpha, kStep, source, kStep, source, kStep, merged, 3 * kWidth, kWidth,
      kHeight);
}
static int Plus(Function f) {
  return ((int (*)(int, Out, int, In, int, In, int, int, int))f)(
      4, destination, kStep, source, kStep, alpha, kStep, kWidth, kHeight);
}
static int LayOver(Function f) {
  return ((int (*)(int, Out, int, Size, int, In, int, Size, In, int, int, int, int, int))f)(
      3, destination, kStep, size, 3, source, kStep, size, alpha, kStep, -2, 3, 200, 0);
}
static int Bob(Function f) {
  return ((int (*)(In, int, Out, int, Out, int, Size, int, int))f)(
      source, kStep, destination, kStep, destination + kStep * 10, kStep, size, 1, 100);
}
static int Weave(Function f) {
  return ((int (*)(In, int, In, int, Out, int, Size, int))f)(source, kStep, alpha, kStep,
                                                             destination, kStep, size, 1);
}
static int Invert(Function f) { return ((int (*)(const double*, double*))f)(shift, numbers); }
static int Canvas(Function f) {
  int canvas[2] = {0, 0};
  const int status = ((int (*)(Size, double, int*, double*))f)(size, 90.0, canvas, numbers);
  numbers[2] = canvas[0], numbers[3] = canvas[1];
  return status;
}

static int Deinterlace(Function f) {
  return ((int (*)(int, In, int, Out, int, Size, unsigned, unsigned))f)(
      2, source, kStep, destination, kStep, size, 128, 0);
}
static int ToPixels(Function f) {
  return ((int (*)(int, const Byte* const*, const int*, int, Out, int, Size, int, int, int))f)(
      8, sources, steps, 2, destination, kStep, size, 0, 0, 1);
}
static int ToSamples(Function f) {
  return ((int (*)(int, In, int, int, Byte* const*, const int*, Size, int, int, int))f)(
      2, source, kStep, 8, planes, steps, size, 1, 1, 2);
}
static int Text(Function f) { return ((const char* (*)(int))f)(-6)[0]; }
static int Word(Function f) { return ((const char* (*)(void))f)()[0] != 0; }
static int Number(Function f) { return ((int (*)(void))f)() > 0; }
static int SetName(Function f) { return ((int (*)(const char*))f)("no level"); }
static int SetNumber(Function f) { return ((int (*)(int))f)(2); }

static int RowBytes(Function f) { return ((int (*)(int, int))f)(2, 11); }
static int Position(Function f) {
  const Size to = {6, 12};
  return ((int (*)(Size, Rect, Size, double, double, int, int, int, double*))f)(
      size, whole, to, 0.5, 1.5, 1, 3, 4, numbers);
}
static int WarpPosition(Function f) {
  return ((int (*)(Rect, const double*, double, double, double*))f)(whole, shift, 3.5, 4, numbers);
}

static const struct {
  const char* name;
  int (*call)(Function);
  unsigned digest;  // of what was written, and of the result; the same on every platform
} kCalls[] = {
    {"qv_copy", Copy, 0x59a059a5},
    {"qv_dup", Dup, 0x2b629736},
    {"qv_set", Set, 0x77c2f1fd},
    {"qv_mirror", Mirror, 0xdba2f7f5},
    {"qv_lut_palette", Palette, 0xd19c1de4},
    {"qv_mul_c_scale", Scale, 0xda85bf94},
    {"qv_crc32", Checksum, 0xca2b81c6},
    {"qv_adler32", Checksum, 0x8d4c4f03},
    {"qv_ycbcr420", Split, 0xb44cfc91},
    {"qv_ycbcr422_to_ycrcb420", FromPackedToPlanes, 0xd60d6afa},
    {"qv_ycbcr420_to_bgr", FromPlanes, 0x1a061160},
    {"qv_ycbcr422_to_bgr", FromPacked, 0xf56f0282},
    {"qv_resize", Resize, 0x2dae78d3},
    {"qv_resize_yuv422", Resize, 0xf9926ab9},
    {"qv_rotate", Rotate, 0xb193565c},
    {"qv_warp_perspective", Warp, 0xb235929d},
    {"qv_warp_perspective_ex", WarpTwo, 0xa822d173},
    {"qv_get_perspective_transform", Transform, 0xd57b4957},
    {"qv_get_rotate_bound", Bound, 0x8c43e8fb},
    {"qv_alpha_comp_c", Compose, 0xbc98b31e},
    {"qv_merge_alpha_over", Over, 0x04bd6e8a},
    {"qv_merge_alpha_plus", Plus, 0x29506e76},
    {"qv_deinterlace", Deinterlace, 0x1cbd1ac0},
    {"qv_version", Word, 0xa9508c53},
    {"qv_status_name", Text, 0xb72441a3},
    {"qv_status_text", Text, 0xaed86e73},
    {"qv_threads", Number, 0xa9508c53},
    {"qv_set_threads", SetNumber, 0x59244d42},
    {"qv_level", Word, 0xa9508c53},
    {"qv_levels", Word, 0xa9508c53},
    {"qv_set_level", SetName, 0xfd9d3644},
    {"qv_set_thread_limit", SetNumber, 0x59244d42},
    {"qv_yuv_to_rgb", ToPixels, 0xfb475781},
    {"qv_rgb_to_yuv", ToSamples, 0x6169155a},
    {"qv_row_bytes", RowBytes, 0xa3c8aa33},
    {"qv_source_position", Position, 0x7439fa8e},
    {"qv_warp_source_position", WarpPosition, 0xc275eaa8},
    {"qv_resample", Resample, 0x24bbbfe5},
    {"qv_over", LayOver, 0x5e759869},
    {"qv_deinterlace_bob", Bob, 0x41aea9e7},
    {"qv_weave", Weave, 0x2eb18795},
    {"qv_invert_transform", Invert, 0xc3ad1273},
    {"qv_rotation_canvas", Canvas, 0x3057ed4f},
};

// Merging rounds differently on processors without SSE2, ARM's among them.
static const unsigned kOverWithoutSse2 = 0x5ccac5aa;

static Function Find(const char* path, const char* name) {
  Function function = NULL;
#if defined(_WIN32)
  const HMODULE library = LoadLibraryA(path);
  const FARPROC found = library ? GetProcAddress(library, name) : NULL;
#else
  void* const library = dlopen(path, RTLD_NOW);
  void* const found = library ? dlsym(library, name) : NULL;
#endif
  memcpy(&function, &found, sizeof function);
  return function;
}

static int HasSse2(const char* path) {
  const Function levels = Find(path, "qv_levels");
  return levels && strstr(((const char* (*)(void))levels)(), "sse2") != NULL;
}

// Whether the function of that name is there, has a call, and does what it does everywhere.
static int Check(const char* path, const char* name) {
  const Function function = Find(path, name);
  if (!function) return printf("%s: not found\n", name), 0;
  for (size_t i = 0; i < sizeof kCalls / sizeof *kCalls; ++i) {
    if (strcmp(kCalls[i].name, name) != 0) continue;
    Fill(source, sizeof source, 1);
    Fill(destination, sizeof destination, 2);
    Fill(alpha, sizeof alpha, 3);
    memset(numbers, 0, sizeof numbers);
    sum = 1;
    const int result = kCalls[i].call(function);
    const unsigned digest = DigestAll(result);
    const int isOther = kCalls[i].call == Over && !HasSse2(path);
    if (digest == (isOther ? kOverWithoutSse2 : kCalls[i].digest)) return 1;
    return printf("%s: returned %d, digest 0x%08x\n", name, result, digest), 0;
  }
  return printf("%s: no call\n", name), 0;
}

int main(int argc, char** argv) {
  char name[80];
  int count = 0, good = 0;
  FILE* const names = argc == 3 ? fopen(argv[2], "r") : NULL;
  if (!names) return 2;
  for (; fscanf(names, "%79s", name) == 1; ++count) good += Check(argv[1], name);
  fclose(names);
  printf("%d of %d functions\n", good, count);
  return count > 0 && good == count ? 0 : 1;
}
