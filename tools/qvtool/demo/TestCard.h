// A test card of 1920 x 1080 in the manner of television engineers: colour bars, a grey staircase,
// ramps, line gratings, a zone plate, text in several sizes, and a bar that moves from field to
// field.
#ifndef QV_TOOLS_QVTOOL_DEMO_TESTCARD_H
#define QV_TOOLS_QVTOOL_DEMO_TESTCARD_H

#include "demo/Scene.h"

namespace qvtool::demo {

inline constexpr int kTestCardWidth = 1920;
inline constexpr int kTestCardHeight = 1080;

// Letters of single pixels, rings between wide and finest, what moves between fields 21 and
// 22, and red letters of single pixels.
inline constexpr Spot kTestCardLetters{1319, 505};
inline constexpr Spot kTestCardRings{1060, 552};
inline constexpr Spot kTestCardMotion{880, 905};
inline constexpr Spot kTestCardRed{1345, 518};

// The card as a Bgr frame at the time of a field, 50 of them a second.
Frame DrawTestCard(int field);

}  // namespace qvtool::demo

#endif
