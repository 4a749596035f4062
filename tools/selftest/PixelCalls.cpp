// The self-test's calls of the operations that take each pixel by itself.
#include "tools/selftest/Images.h"

namespace qv::selftest {

namespace {

using Lib = CqvAccLib;

constexpr int kTypes[] = {2, 4};

Lib::qvDataType Type(int value) { return static_cast<Lib::qvDataType>(value); }

// A pixel; less and more than vectors; high enough for several bands.
constexpr IppiSize kSizes[] = {{1, 1}, {23, 5}, {200, 9}, {131, 301}};
constexpr IppiSize kLarge = {131, 301};
constexpr IppiSize kSeveral[] = {{23, 5}, {200, 9}, kLarge};

}  // namespace

void CallTransfers(Recorder& r) {
  unsigned seed = 1;
  r.Begin(Op::qvCopy);
  const struct {
    int type, from, to;
  } copies[] = {{2, 1, 1}, {4, 3, 3}, {9, 1, 3}, {13, 4, 3}, {14, 3, 4}};
  for (const auto& copy : copies)
    for (const IppiSize size : kSizes) {
      Image src(copy.from * size.width, size.height, ++seed),
          dst(copy.to * size.width, size.height, ++seed);
      r.Record(Lib::qvCopy(Type(copy.type), src.data, src.step, dst.data, dst.step, size), dst);
    }
  {
    Image src(100003, 1, ++seed), dst(100003, 1, ++seed);  // a single row is cut into columns
    r.Record(Lib::qvCopy(Type(2), src.data, src.step, dst.data, dst.step, {100003, 1}), dst);
    r.Record(Lib::qvCopy(Type(3), src.data, src.step, dst.data, dst.step, {100003, 1}), dst);
  }

  r.Begin(Op::qvDup);
  for (const IppiSize size : kSizes) {
    Image src(size.width, size.height, ++seed), dst(3 * size.width, size.height, ++seed);
    r.Record(Lib::qvDup(Type(0), src.data, src.step, dst.data, dst.step, size), dst);
  }

  r.Begin(Op::qvSet);
  const unsigned char colour[3] = {17, 201, 99};
  for (const int type : kTypes)
    for (const IppiSize size : kSizes) {
      Image dst((type == 2 ? 1 : 3) * size.width, size.height, ++seed);
      r.Record(Lib::qvSet(Type(type), colour, dst.data, dst.step, size), dst);
    }

  r.Begin(Op::qvMirror);
  for (const int type : kTypes)
    for (int axis = 0; axis <= 2; ++axis)
      for (const IppiSize size : kSeveral) {
        const int rowBytes = (type == 2 ? 1 : 3) * size.width;
        Image src(rowBytes, size.height, ++seed), dst(rowBytes, size.height, ++seed);
        r.Record(Lib::qvMirror(Type(type), src.data, src.step, dst.data, dst.step, size,
                               static_cast<IppiAxis>(axis)),
                 dst);
      }

  r.Begin(Op::qvLUTPalette);
  for (int bits = 0; bits <= 9; ++bits) {
    const IppiSize size = kSizes[bits % 4];
    Image palette(3 << 8, 1, ++seed), src(size.width, size.height, ++seed),
        dst(3 * size.width, size.height, ++seed);
    r.Record(Lib::qvLUTPalette(Type(0), src.data, src.step, dst.data, dst.step, size, palette.data,
                               bits),
             dst);
  }

  r.Begin(Op::qvMulCScale);
  constexpr int kValues[] = {0, 1, 100, 128, 254, 255};
  for (const int value : kValues) {
    const IppiSize size = kSizes[value % 4];
    Image image(size.width, size.height, ++seed);
    r.Record(
        Lib::qvMulCScale(Type(16), static_cast<unsigned char>(value), image.data, image.step, size),
        image);
  }
}

void CallChecksums(Recorder& r) {
  Image data(70000, 1, 500);
  r.Begin(Op::qvCRC32);
  unsigned value = 0;
  constexpr int kPieces[] = {0, 1, 15, 16, 255, 4096, 69999};
  for (const int length : kPieces) {
    const IppStatus status = Lib::qvCRC32(Type(0), data.data + 1, length, &value);
    r.Record(status, value);  // running on from call to call
  }
  r.Begin(Op::qvAdler32);
  value = 1;
  constexpr int kLong[] = {0, 1, 15, 16, 5553, 4096, 69999};
  for (const int length : kLong) {
    const IppStatus status = Lib::qvAdler32(Type(0), data.data + 1, length, &value);
    r.Record(status, value);
  }
}

void CallConversions(Recorder& r) {
  unsigned seed = 600;
  // Odd ones too: the last column and row are their own cases.
  constexpr IppiSize kOdd[] = {{2, 2}, {37, 5}, {202, 8}, {131, 301}};
  r.Begin(Op::qvYCbCr420);
  for (const IppiSize size : kOdd) {
    Image luma(size.width, size.height, ++seed), chroma(size.width, size.height / 2, ++seed);
    Image y(size.width, size.height, ++seed), cb(size.width / 2, size.height / 2, ++seed),
        cr(size.width / 2, size.height / 2, ++seed);
    unsigned char* planes[] = {y.data, cb.data, cr.data};
    int steps[] = {y.step, cb.step, cr.step};
    r.Record(Lib::qvYCbCr420(Type(0), luma.data, luma.step, chroma.data, chroma.step, planes, steps,
                             size),
             y, cb, cr);
  }
  r.Begin(Op::qvYCbCr422ToYCrCb420);
  for (const IppiSize size : kOdd) {
    Image src(2 * size.width + 2, size.height, ++seed);
    Image y(size.width, size.height, ++seed), cr(size.width / 2, size.height / 2, ++seed),
        cb(size.width / 2, size.height / 2, ++seed);
    unsigned char* planes[] = {y.data, cr.data, cb.data};
    int steps[] = {y.step, cr.step, cb.step};
    r.Record(Lib::qvYCbCr422ToYCrCb420(Type(0), src.data, src.step, planes, steps, size), y, cr,
             cb);
  }
  r.Begin(Op::qvYCbCr420ToBGR);
  for (const IppiSize size : kOdd) {
    Image y(size.width, size.height, ++seed), cb(size.width / 2, size.height / 2, ++seed),
        cr(size.width / 2, size.height / 2, ++seed), dst(3 * size.width, size.height, ++seed);
    unsigned char* planes[] = {y.data, cb.data, cr.data};
    int steps[] = {y.step, cb.step, cr.step};
    r.Record(Lib::qvYCbCr420ToBGR(Type(0), planes, steps, dst.data, dst.step, size), dst);
  }
  r.Begin(Op::qvYCbCr422ToBGR);
  for (const IppiSize size : kOdd) {
    Image src(2 * size.width, size.height, ++seed), dst(3 * size.width, size.height, ++seed);
    r.Record(Lib::qvYCbCr422ToBGR(Type(0), src.data, src.step, dst.data, dst.step, size), dst);
  }
}

void CallCompositions(Recorder& r) {
  unsigned seed = 900;
  r.Begin(Op::qvAlphaCompC);
  for (const int type : kTypes)
    for (int code = 0; code <= 12; ++code) {
      const IppiSize size = kSizes[1 + code % 3];
      const int rowBytes = (type == 2 ? 1 : 3) * size.width;
      Image a(rowBytes, size.height, ++seed), b(rowBytes, size.height, ++seed),
          dst(rowBytes, size.height, ++seed);
      r.Record(
          Lib::qvAlphaCompC(Type(type), a.data, a.step, static_cast<unsigned char>(40 + 13 * code),
                            b.data, b.step, static_cast<unsigned char>(250 - 7 * code), dst.data,
                            dst.step, size, static_cast<IppiAlphaType>(code)),
          dst);
    }

  r.Begin(Op::qvMergeAlphaOver);
  for (const IppiSize size : kSizes) {
    Image fg(3 * size.width, size.height, ++seed), bg(3 * size.width, size.height, ++seed);
    Image bgAlpha(size.width, size.height, ++seed);
    ++seed;
    Image fgAlpha(size.width, size.height, seed), merged(size.width, size.height, seed);
    r.Record(Lib::qvMergeAlphaOver(Type(0), fg.data, fg.step, fgAlpha.data, fgAlpha.step, bg.data,
                                   bg.step, bgAlpha.data, bgAlpha.step, merged.data, 3 * size.width,
                                   size.width, size.height),
             fg, merged);
  }

  r.Begin(Op::qvMergeAlphaPlus);
  for (const int type : kTypes)
    for (const IppiSize size : kSizes) {
      const int rowBytes = (type == 2 ? 1 : 3) * size.width;
      Image dst(rowBytes, size.height, ++seed), src(rowBytes, size.height, ++seed),
          alpha(size.width, size.height, ++seed);
      r.Record(Lib::qvMergeAlphaPlus(Type(type), dst.data, dst.step, src.data, src.step, alpha.data,
                                     alpha.step, size.width, size.height),
               dst);
    }

  r.Begin(Op::qvDeinterlace);
  constexpr unsigned kModes[] = {0, 1, 4, 16}, kWeights[] = {0, 77, 128, 256};
  for (const int type : kTypes)
    for (const unsigned mode : kModes)
      for (const unsigned weight : kWeights) {
        const IppiSize size = weight == 77 ? kLarge : kSizes[1];
        // Three-channel rows are filtered together with their padding: both images are as wide.
        const int rowBytes = (type == 2 ? 1 : 3) * size.width;
        Image src(rowBytes, size.height, ++seed), dst(rowBytes, size.height, ++seed);
        r.Record(Lib::qvDeinterlace(Type(type), src.data, src.step, dst.data, dst.step, size,
                                    weight, mode),
                 dst);
      }
}

}  // namespace qv::selftest
