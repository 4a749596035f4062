#include "tests/support/Operations.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "qvAcceleratedLib/Operations.h"
#include "qvAcceleratedLib/Fields.h"
#include "qvAcceleratedLib/Overlay.h"
#include "qvAcceleratedLib/Resample.h"
#include "support/Bytes.h"
#include "support/Random.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;
using Shapes = std::vector<Shape>;
using List = std::vector<Operation>;

constexpr Lib::qvDataType kTypes[] = {Lib::OneChannel, Lib::ThreeChannels};

int ChannelsOf(Lib::qvDataType type) { return type == Lib::OneChannel ? 1 : 3; }

template <class... Parts>
std::string Name(const char* operation, Parts... parts) {
  std::string name = operation;
  ((name += ' ', name += std::to_string(parts)), ...);
  return name;
}

// As many pixels of so many bytes, read from the first plane and written to the second.
auto Pixels(int from, int to) {
  return [=](IppiSize s) {
    return Shapes{{from * s.width, s.height, false}, {to * s.width, s.height, true}};
  };
}

// The same, written in another size.
template <class Resize>
auto Resizing(int bytes, Resize resized) {
  return [=](IppiSize s) {
    const IppiSize to = resized(s);
    return Shapes{{bytes * s.width, s.height, false}, {bytes * to.width, to.height, true}};
  };
}

auto InPlace(int bytes) {
  return [=](IppiSize s) { return Shapes{{bytes * s.width, s.height, true}}; };
}

void AddTransfers(List& list) {
  const struct {
    Lib::qvDataType type;
    int from, to;
  } copies[] = {{Lib::OneChannel, 1, 1},
                {Lib::ThreeChannels, 3, 3},
                {Lib::PlaneToThreeChannels, 1, 3},
                {Lib::FourToThreeChannels, 4, 3},
                {Lib::ThreeToFourChannels, 3, 4}};
  for (const auto& copy : copies)
    list.push_back({Name("qvCopy", copy.type), Pixels(copy.from, copy.to),
                    [=](const Plane* p, IppiSize size) {
                      return Lib::qvCopy(copy.type, p[0].data, p[0].step, p[1].data, p[1].step,
                                         size);
                    }});
  list.push_back({"qvCopy of a row",
                  [](IppiSize s) {
                    return Shapes{{s.width, 1, false}, {s.width, 1, true}};
                  },
                  [](const Plane* p, IppiSize size) {
                    return Lib::qvCopy(Lib::OneChannel, p[0].data, 0, p[1].data, 0,
                                       {size.width, 1});
                  }});
  list.push_back({"qvDup", Pixels(1, 3), [](const Plane* p, IppiSize size) {
                    return Lib::qvDup(Lib::OneChannel, p[0].data, p[0].step, p[1].data, p[1].step,
                                      size);
                  }});
  for (const auto type : kTypes) {
    const int bytes = ChannelsOf(type);
    list.push_back({Name("qvSet", type), InPlace(bytes), [=](const Plane* p, IppiSize size) {
                      static constexpr unsigned char kColour[3] = {3, 141, 59};
                      return Lib::qvSet(type, kColour, p[0].data, p[0].step, size);
                    }});
    for (const IppiAxis axis : {AxisHorizontal, AxisVertical, AxisBoth})
      list.push_back({Name("qvMirror", type, axis), Pixels(bytes, bytes),
                      [=](const Plane* p, IppiSize size) {
                        return Lib::qvMirror(type, p[0].data, p[0].step, p[1].data, p[1].step, size,
                                             axis);
                      }});
  }
  list.push_back({"qvLUTPalette", Pixels(1, 3), [](const Plane* p, IppiSize size) {
                    static const Bytes palette = Noise(768);
                    return Lib::qvLUTPalette(Lib::OneChannel, p[0].data, p[0].step, p[1].data,
                                             p[1].step, size, palette.data(), 8);
                  }});
  list.push_back({"qvMulCScale", InPlace(1),
                  [](const Plane* p, IppiSize size) {
                    return Lib::qvMulCScale(Lib::ScalePlane, 77, p[0].data, p[0].step, size);
                  },
                  false});
}

// Of the first row; the sum is written to the second plane.
void AddChecksums(List& list) {
  const auto add = [&](const char* name, auto operation, unsigned fresh) {
    list.push_back({name,
                    [](IppiSize s) {
                      return Shapes{{s.width, 1, false}, {sizeof fresh, 1, true}};
                    },
                    [=](const Plane* p, IppiSize size) {
                      unsigned sum = fresh;
                      const auto status = operation(Lib::OneChannel, p[0].data, size.width, &sum);
                      std::memcpy(p[1].data, &sum, sizeof sum);
                      return status;
                    }});
  };
  add("qvCRC32", Lib::qvCRC32, 0);
  add("qvAdler32", Lib::qvAdler32, 1);
}

// The first three planes as arrays.
struct Planes420 {
  explicit Planes420(const Plane* p)
      : data{p[0].data, p[1].data, p[2].data}, steps{p[0].step, p[1].step, p[2].step} {}
  unsigned char* data[3];
  int steps[3];
};

Shapes With420(IppiSize s, bool written, Shapes others) {
  Shapes shapes = {{s.width, s.height, written},
                   {s.width / 2, s.height / 2, written},
                   {s.width / 2, s.height / 2, written}};
  shapes.insert(shapes.end(), others.begin(), others.end());
  return shapes;
}

void AddConversions(List& list) {
  list.push_back({"qvYCbCr420",
                  [](IppiSize s) {
                    return With420(s, true,
                                   {{s.width, s.height, false}, {s.width, s.height / 2, false}});
                  },
                  [](const Plane* p, IppiSize size) {
                    Planes420 to(p);
                    return Lib::qvYCbCr420(Lib::OneChannel, p[3].data, p[3].step, p[4].data,
                                           p[4].step, to.data, to.steps, size);
                  }});
  list.push_back({"qvYCbCr422ToYCrCb420",
                  [](IppiSize s) {
                    return With420(s, true, {{2 * s.width + 2, s.height, false}});
                  },
                  [](const Plane* p, IppiSize size) {
                    Planes420 to(p);
                    return Lib::qvYCbCr422ToYCrCb420(Lib::OneChannel, p[3].data, p[3].step, to.data,
                                                     to.steps, size);
                  }});
  list.push_back({"qvYCbCr420ToBGR",
                  [](IppiSize s) {
                    return With420(s, false, {{3 * s.width, s.height, true}});
                  },
                  [](const Plane* p, IppiSize size) {
                    Planes420 from(p);
                    return Lib::qvYCbCr420ToBGR(Lib::OneChannel, from.data, from.steps, p[3].data,
                                                p[3].step, size);
                  }});
  list.push_back({"qvYCbCr422ToBGR", Pixels(2, 3), [](const Plane* p, IppiSize size) {
                    return Lib::qvYCbCr422ToBGR(Lib::OneChannel, p[0].data, p[0].step, p[1].data,
                                                p[1].step, size);
                  }});
}

// Fewer columns, more rows.
constexpr double kAcross = 2.0 / 3, kDown = 1.5;
IppiSize Resized(IppiSize s) { return {s.width * 2 / 3, s.height * 3 / 2}; }

void AddResizes(List& list) {
  for (const auto type : kTypes)
    for (const int method : {1, 2, 4, 8, 16}) {
      const int bytes = ChannelsOf(type);
      list.push_back({Name("qvResize", type, method), Resizing(bytes, Resized),
                      [=](const Plane* p, IppiSize s) {
                        // Area averaging reduces, to a quarter, so that bands in the middle of a
                        // large image have work as well.
                        const bool area = method == 8;
                        return Lib::qvResize(type, p[0].data, s, p[0].step,
                                             {0, 0, s.width, s.height}, p[1].data, p[1].step,
                                             Resized(s), area ? 0.5 : kAcross, area ? 0.25 : kDown,
                                             method);
                      }});
    }
  for (const int method : {1, 2, 4})
    list.push_back({Name("qvResizeYUV422", method),
                    [](IppiSize s) {
                      const IppiSize to = Resized(s);
                      return Shapes{{2 * s.width, s.height, false},
                                    {2 * to.width + 2, to.height, true}};
                    },
                    [=](const Plane* p, IppiSize s) {
                      const IppiSize from = {s.width & ~1, s.height};
                      return Lib::qvResizeYUV422(Lib::OneChannel, p[0].data, from, p[0].step,
                                                 {0, 0, from.width, from.height}, p[1].data,
                                                 p[1].step, Resized(s), kAcross, kDown, method);
                    }});
}

// Each kind of pixel; filters of few taps, of many along x, and of one.
void AddResampling(List& list) {
  for (int pixels = 0; pixels <= 5; ++pixels)
    for (const int filter : {1, 2, 8, 16, kMitchell}) {
      const int bytes = std::min(pixels + 1, 4);
      const auto resized = [=](IppiSize s) {
        return IppiSize{filter == 16 ? s.width / 4 : s.width * 2 / 3,
                        s.height * 3 / 2};
      };
      list.push_back({Name("qv_resample", pixels, filter), Resizing(bytes, resized),
                      [=](const Plane* p, IppiSize s) {
                        ResampleOptions options = {};
                        options.pixels = pixels;
                        options.filter = filter;
                        options.x = 0.25;
                        options.width = s.width - 0.75;
                        options.height = s.height;
                        return Resample({p[0].data, s, p[0].step, p[1].data, resized(s), p[1].step},
                                        &options);
                      }});
    }
}

void AddGeometry(List& list) {
  static constexpr double kShear[3][3] = {{1.01, 0.125, -2.5}, {-0.001, 1.125, 7}, {0, 0, 1}};
  static constexpr double kTilt[3][3] = {{1.01, 0.125, -2.5}, {-0.001, 1.125, 7}, {1e-7, 0, 1}};
  for (const auto type : kTypes)
    for (const int method : {1, 2, 4}) {
      const int bytes = ChannelsOf(type);
      for (const int angle : {1, 90, 180, 270})
        list.push_back(
            {Name("qvRotate", type, method, angle), Pixels(bytes, bytes),
             [=](const Plane* p, IppiSize s) {
               const IppiRect all = {0, 0, s.width, s.height};
               // Quarter turns are laid so that the last source rows meet the last
               // destination rows.
               double x = -1.5, y = 2.25;
               if (angle == 90) x = 0, y = s.height - 1;
               if (angle == 180) x = s.width - 1, y = s.height - 1;
               if (angle == 270) x = s.height, y = 0;
               return Lib::qvRotate(type, p[0].data, s, p[0].step, all, p[1].data, p[1].step, all,
                                    angle, x, y, method);
             },
             false});
      list.push_back({Name("qvWarpPerspective", type, method), Pixels(bytes, bytes),
                      [=](const Plane* p, IppiSize s) {
                        const IppiRect all = {0, 0, s.width, s.height};
                        return Lib::qvWarpPerspective(type, p[0].data, s, p[0].step, all, p[1].data,
                                                      p[1].step, all,
                                                      method == 1 ? kTilt : kShear, method);
                      },
                      false});
    }
  list.push_back({"qvWarpPerspectiveEx",
                  [](IppiSize s) {
                    return Shapes{{3 * s.width, s.height, false},
                                  {3 * s.width, s.height, true},
                                  {s.width, s.height, false},
                                  {s.width, s.height, true}};
                  },
                  [](const Plane* p, IppiSize s) {
                    const IppiRect all = {0, 0, s.width, s.height};
                    return Lib::qvWarpPerspectiveEx(
                        Lib::ThreeChannels, p[0].data, s, p[0].step, all, p[1].data, p[1].step, all,
                        kShear, 2, p[2].data, p[2].step, p[3].data, p[3].step, kShear);
                  },
                  false});

  // Of numbers; they are written to the plane.
  list.push_back({"qvGetPerspectiveTransform",
                  [](IppiSize) {
                    return Shapes{{sizeof(double[3][3]), 1, true}};
                  },
                  [](const Plane* p, IppiSize s) {
                    const double quad[4][2] = {{10.1, 4}, {300, 12.3}, {290.7, 200}, {3, 190}};
                    double coeffs[3][3];
                    const auto status = Lib::qvGetPerspectiveTransform(
                        Lib::OneChannel, {1, 2, s.width, s.height}, quad, coeffs);
                    std::memcpy(p[0].data, coeffs, sizeof coeffs);
                    return status;
                  }});
  for (const double angle : {33.3, 450.0})
    list.push_back({Name("qvGetRotateBound", angle),
                    [](IppiSize) {
                      return Shapes{{sizeof(double[2][2]), 1, true}};
                    },
                    [=](const Plane* p, IppiSize s) {
                      double bound[2][2];
                      const auto status = Lib::qvGetRotateBound(
                          Lib::OneChannel, {1, 2, s.width, s.height}, bound, angle, 1.1, -2.3);
                      std::memcpy(p[0].data, bound, sizeof bound);
                      return status;
                    }});
}

// A foreground that is larger than the frame on two sides, and lies partly outside on the others.
void AddOverlays(List& list) {
  static constexpr int kLayouts[][2] = {{1, 1}, {3, 3}, {3, 4}, {4, 4}};
  for (const auto& layout : kLayouts) {
    const int frame = layout[0], fg = layout[1];  // Clang 14 does not capture structured bindings
    for (const int opacity : {255, 99})
      list.push_back({Name("qv_over", frame, fg, opacity),
                      [=](IppiSize s) {
                        return Shapes{{frame * s.width, s.height, true},
                                      {fg * s.width, s.height, false},
                                      {s.width, s.height, false}};
                      },
                      [=](const Plane* p, IppiSize s) {
                        return Over({p[0].data, p[0].step, s, frame},
                                    {p[1].data, p[1].step, s, fg, p[2].data, p[2].step, 2, -1,
                                     opacity, opacity == 255 ? AlphaOver : AlphaOverPremul});
                      }});
  }
}

void AddFields(List& list) {
  for (const int order : {TopFieldFirst, BottomFieldFirst}) {
    list.push_back({Name("qv_deinterlace_bob", order),
                    [](IppiSize s) {
                      return Shapes{{s.width, s.height, false},
                                    {s.width, s.height, true},
                                    {s.width, s.height, true}};
                    },
                    [=](const Plane* p, IppiSize s) {
                      return DeinterlaceBob(p[0].data, p[0].step, p[1].data, p[1].step, p[2].data,
                                            p[2].step, s, order, 60);
                    }});
    list.push_back({Name("qv_weave", order),
                    [](IppiSize s) {
                      return Shapes{{s.width, (s.height + 1) / 2, false},
                                    {s.width, (s.height + 1) / 2, false},
                                    {s.width, s.height, true}};
                    },
                    [=](const Plane* p, IppiSize s) {
                      return Weave(p[0].data, p[0].step, p[1].data, p[1].step, p[2].data,
                                   p[2].step, s, order);
                    }});
  }
}

void AddCompositions(List& list) {
  for (const auto type : kTypes) {
    const int bytes = ChannelsOf(type);
    for (const IppiAlphaType code : {AlphaOver, AlphaAtop, AlphaXorPremul})
      list.push_back({Name("qvAlphaCompC", type, code),
                      [=](IppiSize s) {
                        return Shapes{{bytes * s.width, s.height, false},
                                      {bytes * s.width, s.height, false},
                                      {bytes * s.width, s.height, true}};
                      },
                      [=](const Plane* p, IppiSize size) {
                        return Lib::qvAlphaCompC(type, p[0].data, p[0].step, 200, p[1].data,
                                                 p[1].step, 99, p[2].data, p[2].step, size, code);
                      }});
    list.push_back({Name("qvMergeAlphaPlus", type),
                    [=](IppiSize s) {
                      return Shapes{{bytes * s.width, s.height, true},
                                    {bytes * s.width, s.height, false},
                                    {s.width, s.height, false}};
                    },
                    [=](const Plane* p, IppiSize s) {
                      return Lib::qvMergeAlphaPlus(type, p[0].data, p[0].step, p[1].data, p[1].step,
                                                   p[2].data, p[2].step, s.width, s.height);
                    }});
  }
  // Three channels are filtered together with what lies between the rows.
  for (const unsigned mode : {0u, 1u})
    list.push_back({Name("qvDeinterlace", mode), Pixels(1, 1), [=](const Plane* p, IppiSize size) {
                      return Lib::qvDeinterlace(Lib::OneChannel, p[0].data, p[0].step, p[1].data,
                                                p[1].step, size, 129, mode);
                    }});
  list.push_back({"qvMergeAlphaOver",
                  [](IppiSize s) {
                    return Shapes{{3 * s.width, s.height, true},
                                  {s.width, s.height, true},
                                  {3 * s.width, s.height, false},
                                  {s.width, s.height, false}};
                  },
                  [](const Plane* p, IppiSize s) {
                    return Lib::qvMergeAlphaOver(Lib::ThreeChannels, p[0].data, p[0].step,
                                                 p[1].data, p[1].step, p[2].data, p[2].step,
                                                 p[3].data, p[3].step, p[1].data, 3 * s.width,
                                                 s.width, s.height);
                  }});
}

// Every operation of the roll begins some name of the list.
void RequireAllOf(const List& list) {
  for (const OperationNames& wanted : kOperations) {
    const std::string name = wanted.name;
    if (std::any_of(list.begin(), list.end(), [&](const Operation& operation) {
          return operation.name.substr(0, operation.name.find(' ')) == name;
        }))
      continue;
    std::fprintf(stderr, "Operations.cpp: no call of %s\n", wanted.name);
    std::abort();
  }
}

}  // namespace

const List& Operations() {
  static const List operations = [] {
    List all;
    AddTransfers(all);
    AddChecksums(all);
    AddConversions(all);
    AddResizes(all);
    AddResampling(all);
    AddGeometry(all);
    AddCompositions(all);
    AddOverlays(all);
    AddFields(all);
    RequireAllOf(all);
    return all;
  }();
  return operations;
}

Planes::Planes(std::size_t capacity) {
  for (int i = 0; i < 5; ++i) memory_.push_back(std::make_unique<GuardedMemory>(capacity));
}

void Planes::Place(const Operation& operation, IppiSize size,
                   const std::function<int(int)>& step) {
  shapes_ = operation.shapes(size);
  planes_.clear();
  size_ = size;
  for (std::size_t i = 0; i < shapes_.size(); ++i) {
    const int apart = step(shapes_[i].rowBytes);
    const std::ptrdiff_t last = std::ptrdiff_t{apart} * (shapes_[i].rows - 1);
    planes_.push_back({memory_[i]->begin() + (last < 0 ? -last : 0), apart});
  }
}

template <class Visit>
void Planes::ForEachRow(const Visit& visit) const {
  for (std::size_t i = 0; i < shapes_.size(); ++i)
    for (int y = 0; y < shapes_[i].rows; ++y)
      visit(shapes_[i], planes_[i].data + std::ptrdiff_t{y} * planes_[i].step);
}

void Planes::Fill() {
  Random random(20);
  ForEachRow([&](const Shape& shape, unsigned char* row) {
    random.Fill(row, static_cast<std::size_t>(shape.rowBytes));
  });
}

Outcome Planes::Call(const Operation& operation) {
  const IppStatus status = operation.call(planes_.data(), size_);
  return {status, Digest()};
}

std::uint64_t Planes::Digest() const {
  std::uint64_t digest = 0xCBF29CE484222325u;
  ForEachRow([&](const Shape& shape, const unsigned char* row) {
    if (!shape.written) return;
    for (int i = 0; i < shape.rowBytes; i += 8) {  // FNV-1a with eight bytes at a time, and mixed
      std::uint64_t bytes = 0;
      std::memcpy(&bytes, row + i, static_cast<std::size_t>(std::min(8, shape.rowBytes - i)));
      digest = (digest ^ bytes) * 0x100000001B3u;
      digest ^= digest >> 29;
    }
  });
  return digest;
}

std::uint64_t Runner::Prepare(const Operation& operation) {
  planes_.Place(operation, kBanded);
  planes_.Fill();
  return planes_.Digest();
}

std::vector<Outcome> RunAll() {
  Runner runner;
  std::vector<Outcome> outcomes;
  for (const Operation& operation : Operations()) outcomes.push_back(runner.Run(operation));
  return outcomes;
}

}  // namespace qv::test
