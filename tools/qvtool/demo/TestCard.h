// A test card of 1920 x 1080 in the manner of television engineers: colour bars, a grey staircase,
// ramps, line gratings, a zone plate, text in several sizes, and a bar that moves from field to
// field.
#ifndef QV_TOOLS_QVTOOL_DEMO_TESTCARD_H
#define QV_TOOLS_QVTOOL_DEMO_TESTCARD_H

#include "io/Frame.h"

namespace qvtool::demo {

inline constexpr int kTestCardWidth = 1920;
inline constexpr int kTestCardHeight = 1080;

// Where the bar and the disc of fields 21 and 22 are, and a part of the zone plate.
inline constexpr IppiRect kTestCardMotion{700, 806, 360, 190};
inline constexpr IppiRect kTestCardDetail{780, 440, 360, 200};

// The card as a Bgr frame at the time of a field, 50 of them a second.
Frame DrawTestCard(int field);

}  // namespace qvtool::demo

#endif
