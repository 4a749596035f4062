// How the pixels of a frame lie in memory: the planes, their subsampling and what their bytes are.
#ifndef QV_TOOLS_QVTOOL_IO_LAYOUT_H
#define QV_TOOLS_QVTOOL_IO_LAYOUT_H

#include <span>
#include <string>
#include <string_view>

namespace qvtool {

enum class Layout {
  Grey,       // one plane of bytes, from black to white
  Bgr,        // blue, green, red interleaved
  Bgra,       // a BGR plane and a plane of alpha; packed as B, G, R, A in files
  Yuyv,       // Y0, Cb, Y1, Cr packed, 4:2:2
  Uyvy,       // Cb, Y0, Cr, Y1 packed, 4:2:2
  I420,       // planes Y, Cb, Cr, 4:2:0
  Yv12,       // planes Y, Cr, Cb, 4:2:0
  Nv12,       // plane Y and a plane of Cb, Cr pairs, 4:2:0
  Nv21,       // plane Y and a plane of Cr, Cb pairs, 4:2:0
  I411,       // planes Y, Cb, Cr, 4:1:1
  I422,       // planes Y, Cb, Cr, 4:2:2
  I444,       // planes Y, Cb, Cr, 4:4:4
  I444Alpha,  // planes Y, Cb, Cr, 4:4:4 and a plane of alpha
};

// A plane has one unit of `bytes` bytes for every 2^shiftX columns and 2^shiftY rows of pixels,
// rounded up at the right and lower edge. Byte k of a unit is a sample of channel[k]: 0, 1, 2 are
// grey or B, G, R or Y, Cb, Cr; 3 is alpha.
struct PlaneShape {
  int shiftX;
  int shiftY;
  int bytes;
  int channel[4];
};

struct LayoutInfo {
  Layout layout;
  std::string_view name;
  int code;  // enum qv_layout; of Bgra that of its colours. 0: the library has none
  int planes;
  PlaneShape plane[4];

  // Whether plane 0 is luma and the colour planes lie around 128.
  bool isYCbCr;
  // The plane that holds alpha, or -1.
  int alphaPlane;

  // What frames become in files that do not hold the layout.
  Layout inPictures;  // before the alpha is applied, where they have none
  Layout inY4m;

  int Channels() const { return layout == Layout::Grey ? 1 : 3; }  // without alpha
};

std::span<const LayoutInfo> AllLayouts();
const LayoutInfo& Describe(Layout layout);
inline std::string NameOf(Layout layout) { return std::string(Describe(layout).name); }

// The names of all layouts, for messages: "grey, bgr, ...".
std::string LayoutNames();

// Throws a UsageError that names the argument when there is no such layout. Case does not matter.
Layout ParseLayout(const std::string& argument, const std::string& text);

std::string LowerCase(std::string text);

}  // namespace qvtool

#endif
