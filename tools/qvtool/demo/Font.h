// A bitmap font of 5 x 7 dots: capital letters (small ones are drawn as capitals), digits and the
// commonest signs.
#ifndef QV_TOOLS_QVTOOL_DEMO_FONT_H
#define QV_TOOLS_QVTOOL_DEMO_FONT_H

#include <string_view>

namespace qvtool::demo {

inline constexpr int kGlyphWidth = 5;
inline constexpr int kGlyphHeight = 7;
inline constexpr int kGlyphAdvance = 6;

// Whether the dot of a character is set; characters without a glyph are blank.
bool GlyphDot(char character, int column, int row);

}  // namespace qvtool::demo

#endif
