#include "tests/support/Operations.h"

#include <cstring>

#include "tests/support/Random.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

constexpr int W = Frames::kWidth, H = Frames::kHeight;
constexpr IppiSize kSize = {W, H};
constexpr IppiRect kWhole = {0, 0, W, H};
constexpr IppiRect kPart = {7, 3, W - 16, H - 9};
constexpr Lib::qvDataType kTypes[] = {Lib::OneChannel, Lib::ThreeChannels};

using Calls = std::vector<OperationCall>;

int ChannelsOf(Lib::qvDataType type) { return type == Lib::OneChannel ? 1 : 3; }

template <class... Parts>
std::string Name(const char* operation, Parts... parts) {
  std::string name = operation;
  ((name += ' ', name += std::to_string(parts)), ...);
  return name;
}

void AddTransfers(Calls& calls) {
  const struct {
    Lib::qvDataType type;
    int srcBytes, dstBytes;
  } copies[] = {{Lib::OneChannel, 1, 1},
                {Lib::ThreeChannels, 3, 3},
                {Lib::PlaneToThreeChannels, 1, 3},
                {Lib::FourToThreeChannels, 4, 3},
                {Lib::ThreeToFourChannels, 3, 4}};
  for (const auto& c : copies)
    calls.push_back({Name("qvCopy", c.type), [c](Frames& f) {
                       return Lib::qvCopy(c.type, f.src[0].data(), W * c.srcBytes, f.dst[0].data(),
                                          W * c.dstBytes, kSize);
                     }});
  calls.push_back({"qvCopy row", [](Frames& f) {
                     return Lib::qvCopy(Lib::OneChannel, f.src[0].data(), 0, f.dst[0].data(), 0,
                                        {Frames::kBytes, 1});
                   }});
  calls.push_back({"qvDup", [](Frames& f) {
                     return Lib::qvDup(Lib::OneChannel, f.src[0].data(), W, f.dst[0].data(), 3 * W,
                                       kSize);
                   }});
  for (const auto type : kTypes) {
    const int step = W * ChannelsOf(type);
    calls.push_back({Name("qvSet", type), [=](Frames& f) {
                       return Lib::qvSet(type, f.src[0].data(), f.dst[0].data(), step, kSize);
                     }});
    for (const IppiAxis axis : {AxisHorizontal, AxisVertical, AxisBoth})
      calls.push_back({Name("qvMirror", type, axis), [=](Frames& f) {
                         return Lib::qvMirror(type, f.src[0].data(), step, f.dst[0].data(), step,
                                              kSize, axis);
                       }});
  }
  for (const int bits : {1, 4, 8})
    calls.push_back({Name("qvLUTPalette", bits), [=](Frames& f) {
                       return Lib::qvLUTPalette(Lib::OneChannel, f.src[0].data(), W,
                                                f.dst[0].data(), 3 * W, kSize, f.src[1].data(),
                                                bits);
                     }});
  calls.push_back({"qvMulCScale", [](Frames& f) {
                     return Lib::qvMulCScale(Lib::ScalePlane, 137, f.dst[0].data(), W, kSize);
                   }});
}

// The sum is written where the digest sees it.
void AddChecksums(Calls& calls) {
  const auto add = [&](const char* name, auto operation, unsigned fresh) {
    for (const int length : {1000, Frames::kBytes})
      calls.push_back({Name(name, length), [=](Frames& f) {
                         unsigned sum = fresh;
                         const IppStatus status =
                             operation(Lib::OneChannel, f.src[0].data(), length, &sum);
                         std::memcpy(f.dst[0].data(), &sum, sizeof sum);
                         return status;
                       }});
  };
  add("qvCRC32", Lib::qvCRC32, 0);
  add("qvAdler32", Lib::qvAdler32, 1);
}

void AddConversions(Calls& calls) {
  for (const IppiSize size : {kSize, IppiSize{W - 1, H - 1}}) {
    calls.push_back({Name("qvYCbCr420", size.width), [=](Frames& f) {
                       unsigned char* planes[] = {f.dst[0].data(), f.dst[1].data(), f.dst[2].data()};
                       int steps[] = {W, W / 2, W / 2};
                       return Lib::qvYCbCr420(Lib::OneChannel, f.src[0].data(), W, f.src[1].data(),
                                              W, planes, steps, size);
                     }});
    calls.push_back({Name("qvYCbCr422ToYCrCb420", size.width), [=](Frames& f) {
                       unsigned char* planes[] = {f.dst[0].data(), f.dst[1].data(), f.dst[2].data()};
                       int steps[] = {W, W / 2, W / 2};
                       return Lib::qvYCbCr422ToYCrCb420(Lib::OneChannel, f.src[0].data(), 2 * W,
                                                        planes, steps, size);
                     }});
    calls.push_back({Name("qvYCbCr420ToBGR", size.width), [=](Frames& f) {
                       unsigned char* planes[] = {f.src[0].data(), f.src[1].data(), f.src[2].data()};
                       int steps[] = {W, W / 2, W / 2};
                       return Lib::qvYCbCr420ToBGR(Lib::OneChannel, planes, steps, f.dst[0].data(),
                                                   3 * W, size);
                     }});
    calls.push_back({Name("qvYCbCr422ToBGR", size.width), [=](Frames& f) {
                       return Lib::qvYCbCr422ToBGR(Lib::OneChannel, f.src[0].data(), 2 * W,
                                                   f.dst[0].data(), 3 * W, size);
                     }});
  }
}

void AddResizes(Calls& calls) {
  const struct {
    IppiRect region;
    IppiSize dst;
    double x, y;
  } scales[] = {{kWhole, {W, 3 * H / 4}, 0.7, 0.73},
                {kWhole, {W / 2, H / 2}, 0.5, 0.5},
                {kPart, {W, H - 1}, 1.05, 0.99},
                {{0, 0, W, 40}, {2 * W, 80}, 1.9, 1.7}};
  int scale = 0;
  for (const auto& s : scales) {
    ++scale;
    for (const auto type : kTypes)
      for (const int method : {1, 2, 4, 8, 16})
        calls.push_back({Name("qvResize", type, method, scale), [=](Frames& f) {
                           const int step = W * ChannelsOf(type);
                           return Lib::qvResize(type, f.src[0].data(), kSize, step, s.region,
                                                f.dst[0].data(), s.dst.width * ChannelsOf(type),
                                                s.dst, s.x, s.y, method);
                         }});
    for (const int method : {1, 2, 4})
      calls.push_back({Name("qvResizeYUV422", method, scale), [=](Frames& f) {
                         const IppiRect even = {s.region.x / 4 * 2, s.region.y,
                                                s.region.width / 4 * 2, s.region.height};
                         return Lib::qvResizeYUV422(Lib::OneChannel, f.src[0].data(), kSize, 2 * W,
                                                    even, f.dst[0].data(), 2 * s.dst.width, s.dst,
                                                    s.x, s.y, method);
                       }});
  }
  calls.push_back({"qvResize by a denormal number", [](Frames& f) {
                     return Lib::qvResize(Lib::OneChannel, f.src[0].data(), kSize, W, kWhole,
                                          f.dst[0].data(), W, {W, 40}, 1e-310, 0.1, 2);
                   }});
}

void AddGeometry(Calls& calls) {
  static constexpr double kMatrices[2][3][3] = {
      {{0.875, 0.125, 3.5}, {-0.0625, 0.9375, 7}, {0.00012, -0.00024, 1}},
      {{1.1, -0.3, 31}, {0.2, 0.9, -12.3}, {0, 0, 1}}};
  for (const auto type : kTypes)
    for (const int method : {1, 2, 4}) {
      const int step = W * ChannelsOf(type);
      for (const double angle : {0.3, 30.0, 90.0, 180.0, 270.0})
        calls.push_back({Name("qvRotate", type, method, angle), [=](Frames& f) {
                           return Lib::qvRotate(type, f.src[0].data(), kSize, step, kPart,
                                                f.dst[0].data(), step, kWhole, angle, 12, 150,
                                                method);
                         }});
      for (const auto& matrix : kMatrices)
        calls.push_back({Name("qvWarpPerspective", type, method, matrix[0][0]), [=](Frames& f) {
                           return Lib::qvWarpPerspective(type, f.src[0].data(), kSize, step, kPart,
                                                         f.dst[0].data(), step, kWhole, matrix,
                                                         method);
                         }});
    }
  calls.push_back({"qvRotate by a denormal number", [](Frames& f) {
                     return Lib::qvRotate(Lib::OneChannel, f.src[0].data(), kSize, W, kPart,
                                          f.dst[0].data(), W, kWhole, 90, 1e-310, 0, 3);
                   }});
  calls.push_back({"qvWarpPerspectiveEx", [](Frames& f) {
                     return Lib::qvWarpPerspectiveEx(Lib::ThreeChannels, f.src[0].data(), kSize,
                                                     3 * W, kWhole, f.dst[0].data(), 3 * W, kWhole,
                                                     kMatrices[0], 2, f.src[1].data(), W,
                                                     f.dst[1].data(), W, kMatrices[1]);
                   }});
  calls.push_back({"qvGetPerspectiveTransform", [](Frames& f) {
                     const double quad[4][2] = {{10.1, 4}, {300, 12.3}, {290.7, 200}, {3, 190}};
                     double coeffs[3][3];
                     const auto status =
                         Lib::qvGetPerspectiveTransform(Lib::OneChannel, kPart, quad, coeffs);
                     std::memcpy(f.dst[0].data(), coeffs, sizeof coeffs);
                     return status;
                   }});
  for (const double angle : {33.3, 450.0})
    calls.push_back({Name("qvGetRotateBound", angle), [=](Frames& f) {
                       double bound[2][2];
                       const auto status = Lib::qvGetRotateBound(Lib::OneChannel, kPart, bound,
                                                                 angle, 1.1, -2.3);
                       std::memcpy(f.dst[0].data(), bound, sizeof bound);
                       return status;
                     }});
}

void AddCompositions(Calls& calls) {
  for (const auto type : kTypes) {
    const int step = W * ChannelsOf(type);
    for (int code = AlphaOver; code <= AlphaPlusPremul; ++code)
      calls.push_back({Name("qvAlphaCompC", type, code), [=](Frames& f) {
                         return Lib::qvAlphaCompC(type, f.src[0].data(), step, 200, f.src[1].data(),
                                                  step, 99, f.dst[0].data(), step, kSize,
                                                  static_cast<IppiAlphaType>(code));
                       }});
    calls.push_back({Name("qvMergeAlphaPlus", type), [=](Frames& f) {
                       return Lib::qvMergeAlphaPlus(type, f.dst[0].data(), step, f.src[0].data(),
                                                    step, f.src[1].data(), W, W, H);
                     }});
    for (const unsigned mode : {0u, 1u})
      calls.push_back({Name("qvDeinterlace", type, mode), [=](Frames& f) {
                         return Lib::qvDeinterlace(type, f.src[0].data(), step, f.dst[0].data(),
                                                   step, kSize, 129, mode);
                       }});
  }
  calls.push_back({"qvMergeAlphaOver", [](Frames& f) {
                     return Lib::qvMergeAlphaOver(Lib::ThreeChannels, f.dst[0].data(), 3 * W,
                                                  f.src[1].data(), W, f.src[0].data(), 3 * W,
                                                  f.src[2].data(), W, f.dst[1].data(), 3 * W, W, H);
                   }});
}

}  // namespace

Frames::Frames() : initial_(kBytes) {
  Random random(20);
  for (auto& s : src) {
    s.resize(kBytes);
    random.Fill(s.data(), s.size());
  }
  random.Fill(initial_.data(), initial_.size());
  RestoreDestinations();
}

void Frames::RestoreDestinations() {
  const int bytes[] = {kBytes, kWidth * kHeight, kWidth * kHeight};  // the last two are planes
  for (int i = 0; i < 3; ++i) dst[i].assign(initial_.begin(), initial_.begin() + bytes[i]);
}

std::uint64_t Frames::Digest() const {
  std::uint64_t digest = 0xCBF29CE484222325u;
  for (const auto& d : dst)
    for (std::size_t i = 0; i < d.size(); i += 8) {  // FNV-1a with eight bytes at a time, and mixed
      std::uint64_t bytes;
      std::memcpy(&bytes, d.data() + i, 8);
      digest = (digest ^ bytes) * 0x100000001B3u;
      digest ^= digest >> 29;
    }
  return digest;
}

const std::vector<OperationCall>& AllCalls() {
  static const Calls calls = [] {
    Calls all;
    AddTransfers(all);
    AddChecksums(all);
    AddConversions(all);
    AddResizes(all);
    AddGeometry(all);
    AddCompositions(all);
    return all;
  }();
  return calls;
}

Outcome RunCall(const OperationCall& call, Frames& frames) {
  frames.RestoreDestinations();
  const IppStatus status = call.call(frames);
  return {status, frames.Digest()};
}

std::vector<Outcome> RunAll() {
  Frames frames;
  std::vector<Outcome> outcomes;
  for (const OperationCall& call : AllCalls()) outcomes.push_back(RunCall(call, frames));
  return outcomes;
}

}  // namespace qv::test
