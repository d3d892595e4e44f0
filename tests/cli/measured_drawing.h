// A drawing with one dimension of each kind that follows its art, and what each shows.
#pragma once

#include <set>
#include <string>

namespace quorvel::tests {

// One unit is one point.
inline constexpr char kMeasuredDrawing[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="400pt" height="300pt" viewBox="0 0 400 300">
  <g id="parts" fill="none" stroke="#000000" stroke-width="0.5">
    <path id="plate" d="M 40,40 H 140 V 100 H 40 Z"/>
    <path id="slope" d="M 200,40 L 280,100"/>
    <path id="channel" d="M 40,250 V 150 H 140 V 250"/>
    <circle id="hole" cx="240" cy="180" r="36"/>
    <path id="level" d="M 300,280 H 380"/>
    <path id="leg" d="M 300,280 L 360,220"/>
    <path id="unmeasured" d="M 320,40 H 380 V 100 Z"/>
  </g>
</svg>
)";

// The plate's width, the slope's length, the way along the channel, the hole, the legs' angle, and 50 points of paper.
inline constexpr char kItsDimensions[] = R"(
tool "Straight Dimension Tool"
track 40 260
down
drag 140 260
up
track 90 285
down
tool "Oblique Dimension Tool"
track 200 260
down
drag 280 200
up
track 260 250
down
tool "Curve Dimension Tool"
track 40 50
down
drag 140 50
up
track 30 100
down
tool "Radius Tool"
track 265.4 145.5
down
drag 300 180
up
tool "Angle Tool"
track 380 20
down
drag 360 80
up
track 365 35
down
tool "Oblique Dimension Tool"
track 170 30
down
drag 210 60
up
track 170 70
down
expect no-beep
)";

inline const std::set<std::string> kTrueTexts = {"quorvel-1 straight \"100\"", "quorvel-2 oblique \"100\"",
                                                 "quorvel-3 curve \"300\"",    "quorvel-4 radius \"R36\"",
                                                 "quorvel-5 angle \" 45˚\"",   "quorvel-6 oblique \"50\""};

// The settings in which they are drawn, as script lines in front of the drawing.
inline constexpr char kTheirSettings[] =
    "set language ENGLISH\nset flArFName \"DejaVu Sans\"\nset flArUnit 5\nset flScFix 2\n";

}  // namespace quorvel::tests
