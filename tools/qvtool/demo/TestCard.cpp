#include "demo/TestCard.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string_view>

#include "demo/Font.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

struct Rgb {
  double red, green, blue;
};

constexpr Rgb kBackground{58, 62, 70};
constexpr Rgb kGrid{150, 154, 162};
constexpr Rgb kWhite{235, 235, 235};
constexpr Rgb kBlack{16, 16, 16};
constexpr Rgb kAmber{255, 184, 40};

class Canvas {
 public:
  explicit Canvas(const Plane& plane) : plane_(plane) {}

  void Rectangle(int x, int y, int width, int height, const Rgb& colour) {
    const unsigned char value[3] = {Byte(colour.blue), Byte(colour.green), Byte(colour.red)};
    Check("qvSet", CqvAccLib::qvSet(CqvAccLib::ThreeChannels, value,
                                    plane_.Row(y) + static_cast<std::ptrdiff_t>(x) * 3, plane_.step,
                                    {width, height}));
  }

  // Mixes the colour in with a share from 0 to 1.
  void Blend(int x, int y, const Rgb& colour, double share) {
    share = std::clamp(share, 0.0, 1.0);
    unsigned char* pixel = plane_.Row(y) + static_cast<std::ptrdiff_t>(x) * 3;
    pixel[0] = Byte(pixel[0] + (colour.blue - pixel[0]) * share);
    pixel[1] = Byte(pixel[1] + (colour.green - pixel[1]) * share);
    pixel[2] = Byte(pixel[2] + (colour.red - pixel[2]) * share);
  }

  void Text(int x, int y, int dot, std::string_view text, const Rgb& colour) {
    for (std::size_t i = 0; i < text.size(); ++i)
      for (int row = 0; row < kGlyphHeight; ++row)
        for (int column = 0; column < kGlyphWidth; ++column)
          if (GlyphDot(text[i], column, row))
            Rectangle(x + (static_cast<int>(i) * kGlyphAdvance + column) * dot, y + row * dot, dot,
                      dot, colour);
  }

  // Calls paint(canvas, x, y) for every pixel of a rectangle.
  template <class Paint>
  void Each(int x0, int y0, int width, int height, Paint paint) {
    for (int y = y0; y < y0 + height; ++y)
      for (int x = x0; x < x0 + width; ++x) paint(x, y);
  }

  static unsigned char Byte(double value) {
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0)));
  }

 private:
  Plane plane_;
};

void DrawGrid(Canvas& canvas) {
  canvas.Rectangle(0, 0, kTestCardWidth, kTestCardHeight, kBackground);
  for (int x = 60; x < kTestCardWidth; x += 120)
    canvas.Rectangle(x - 1, 0, 2, kTestCardHeight, kGrid);
  for (int y = 60; y < kTestCardHeight; y += 120)
    canvas.Rectangle(0, y - 1, kTestCardWidth, 2, kGrid);
  // Blocks around the edge show when a row or column is lost.
  constexpr int kBlock = 60;
  constexpr int kDepth = 20;
  for (int i = 0; i < kTestCardWidth / kBlock; ++i) {
    const Rgb& colour = i % 2 == 0 ? kWhite : kBlack;
    canvas.Rectangle(i * kBlock, 0, kBlock, kDepth, colour);
    canvas.Rectangle(i * kBlock, kTestCardHeight - kDepth, kBlock, kDepth, colour);
  }
  for (int i = 0; i < kTestCardHeight / kBlock; ++i) {
    const Rgb& colour = i % 2 == 0 ? kBlack : kWhite;
    canvas.Rectangle(0, i * kBlock, kDepth, kBlock, colour);
    canvas.Rectangle(kTestCardWidth - kDepth, i * kBlock, kDepth, kBlock, colour);
  }
}

void DrawRing(Canvas& canvas, double cx, double cy, double radius, double width,
              const Rgb& colour) {
  const int reach = static_cast<int>(radius + width + 2);
  canvas.Each(static_cast<int>(cx) - reach, static_cast<int>(cy) - reach, 2 * reach, 2 * reach,
              [&](int x, int y) {
                const double r = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                canvas.Blend(x, y, colour, width / 2 + 0.5 - std::abs(r - radius));
              });
}

void DrawDisc(Canvas& canvas, double cx, double cy, double radius, const Rgb& colour) {
  const int reach = static_cast<int>(radius + 2);
  canvas.Each(static_cast<int>(cx) - reach, static_cast<int>(cy) - reach, 2 * reach, 2 * reach,
              [&](int x, int y) {
                canvas.Blend(x, y, colour, radius + 0.5 - std::hypot(x + 0.5 - cx, y + 0.5 - cy));
              });
}

// Bars of three quarters of full colour, brightest first, over a staircase of eleven greys.
void DrawBars(Canvas& canvas) {
  constexpr double kFull = 191;
  for (int i = 0; i < 8; ++i) {
    const int bits = 7 - i;  // green is worth 4, red 2, blue 1: falling luma
    canvas.Rectangle(240 + 180 * i, 84, 180, 180,
                     {bits & 2 ? kFull : 0, bits & 4 ? kFull : 0, bits & 1 ? kFull : 0});
  }
  for (int i = 0; i < 11; ++i) {
    const double grey = 255.0 * i / 10;
    const int left = 240 + 1440 * i / 11;
    canvas.Rectangle(left, 264, 240 + 1440 * (i + 1) / 11 - left, 48, {grey, grey, grey});
  }
}

void DrawRamps(Canvas& canvas) {
  constexpr Rgb kEnds[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
  for (int i = 0; i < 4; ++i)
    canvas.Each(120, 348 + 42 * i, 520, 42, [&](int x, int y) {
      const double share = (x - 120) / 519.0;
      canvas.Blend(x, y, {kEnds[i].red * share, kEnds[i].green * share, kEnds[i].blue * share}, 1);
    });
  // Hue across, from full colour to white downwards.
  canvas.Each(120, 516, 520, 84, [&](int x, int y) {
    const double hue = (x - 120) / 520.0 * 6;
    const double white = (y - 516) / 84.0;
    const auto channel = [&](double offset) {
      const double distance = std::abs(std::fmod(hue + offset, 6) - 3);
      const double full = std::clamp(distance - 1, 0.0, 1.0) * 255;
      return full + (255 - full) * white;
    };
    canvas.Blend(x, y, {channel(0), channel(4), channel(2)}, 1);
  });
}

// Lines of 2, 3, 4, 6, 8 and 12 pixels a period: upright, and lying below.
void DrawGratings(Canvas& canvas) {
  constexpr int kPeriods[] = {2, 3, 4, 6, 8, 12};
  for (int i = 0; i < 6; ++i) {
    const int left = 120 + 520 * i / 6;
    const int width = 120 + 520 * (i + 1) / 6 - left;
    canvas.Each(left, 624, width, 132, [&](int x, int y) {
      const int along = y < 690 ? x - left : y - 690;
      const double wave = std::cos(2 * std::numbers::pi * along / kPeriods[i]);
      const double grey = 127.5 + 110 * wave;
      canvas.Blend(x, y, {grey, grey, grey}, 1);
    });
  }
}

// Rings that grow finer outwards, up to one pixel black and one white at the rim.
void DrawZonePlate(Canvas& canvas, double cx, double cy, double radius) {
  const int reach = static_cast<int>(radius + 2);
  canvas.Each(static_cast<int>(cx) - reach, static_cast<int>(cy) - reach, 2 * reach, 2 * reach,
              [&](int x, int y) {
                const double r = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                const double wave = std::cos(std::numbers::pi * r * r / (2 * radius));
                const double grey = 127.5 + 120 * wave;
                canvas.Blend(x, y, {grey, grey, grey}, radius + 0.5 - r);
              });
}

void DrawText(Canvas& canvas) {
  constexpr Rgb kPanel{24, 26, 32};
  canvas.Rectangle(1280, 348, 520, 408, kPanel);
  canvas.Text(1304, 366, 6, "QVTOOL", kAmber);
  canvas.Text(1304, 424, 3, "TEST CARD 1920 X 1080", kWhite);
  canvas.Text(1304, 466, 2, "8 BITS - 50 FIELDS A SECOND", {170, 190, 220});
  constexpr std::string_view kPangram = "QUICK ZEPHYRS BLOW, VEXING DAFT JIM. 0123456789";
  canvas.Text(1304, 500, 1, kPangram, kWhite);
  canvas.Text(1304, 514, 1, "AT THIS SIZE EVERY DOT IS ONE PIXEL: A TEST OF EVERY FILTER.",
              {255, 70, 50});
  // A star of 36 rays, finest in the middle.
  canvas.Each(1304, 540, 200, 200, [&](int x, int y) {
    const double dx = x + 0.5 - 1404, dy = y + 0.5 - 640;
    const double r = std::hypot(dx, dy);
    const double wave = std::sin(36 * std::atan2(dy, dx));
    const double edge = std::clamp(wave * r / 36, -1.0, 1.0);
    const double grey = 127.5 + 110 * edge;
    canvas.Blend(x, y, {grey, grey, grey}, 98.5 - r);
  });
  // Checks of 1, 2, 4 and 8 pixels.
  for (int i = 0; i < 4; ++i)
    canvas.Each(1530 + (i % 2) * 128, 544 + (i / 2) * 100, 116, 88, [&](int x, int y) {
      canvas.Blend(x, y, (((x >> i) + (y >> i)) & 1) ? kWhite : kBlack, 1);
    });
}

void DrawMotion(Canvas& canvas, int field) {
  canvas.Rectangle(240, 800, 1440, 200, {10, 12, 16});
  for (int x = 240; x <= 1680; x += 48) canvas.Rectangle(std::min(x, 1678), 984, 2, 16, kGrid);
  const int travel = 1440 - 64;
  const int x = 240 + field * 25 % travel;
  canvas.Rectangle(x, 816, 64, 152, kWhite);
  canvas.Rectangle(x + 20, 816, 24, 152, {200, 30, 40});
  const double angle = field * 0.11;
  DrawDisc(canvas, 960 + 40 * std::cos(angle), 892 + 40 * std::sin(angle), 34, kAmber);
  char text[24];
  std::snprintf(text, sizeof text, "FIELD %04d", field);
  canvas.Text(1480, 872, 3, text, kWhite);
}

}  // namespace

Frame DrawTestCard(int field) {
  Frame frame(Layout::Bgr, kTestCardWidth, kTestCardHeight);
  Canvas canvas(frame.PlaneAt(0));
  DrawGrid(canvas);
  DrawRing(canvas, 960, 540, 500, 4, kWhite);
  DrawBars(canvas);
  DrawRamps(canvas);
  DrawGratings(canvas);
  DrawZonePlate(canvas, 960, 552, 220);
  DrawRing(canvas, 960, 552, 224, 5, kWhite);
  DrawText(canvas);
  DrawMotion(canvas, field);
  return frame;
}

}  // namespace qvtool::demo
