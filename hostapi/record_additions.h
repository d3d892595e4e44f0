// What a dimension's record keeps beside the tags of the format proper: how its points are held on the measured art,
// what the six digits of the format lose, and decisions that a rebuild must not take anew. Each is a tag of its own,
// written only where it is needed; a program that does not know them reads and rebuilds the dimension by the other tags
// alone. A value is a row of words with blanks between them: a keyword, then what belongs to it.
#pragma once

namespace quorvel {

// How a point is held, one tag beside each list of links: nothing for a point at an anchor. In these words I is the
// index of the segment (that of the anchor which ends it), T the place on it, 0 at its first anchor and 1 at its last.
//   segment I T           on segment I of the list's first art
//   crossing T T [E E]    where the segments of the first two links cross, at T of each. E: how far the crossing is
//                         off each segment, in lengths of its chord, where it does
//   centre I              the centre of the circle that segment I of the first art is part of
//   bounds A A            the middle of the first art's bounds; two of its directions then, in radians
//   links M               at the anchors of some of the list's links alone: of those with a bit in M, the first link
//                         the lowest. The others were near it
//   offset I H V          off the first measured point, in chords of segment I of that point's first art: H chords
//                         along it and V to its left
// and, behind it or alone:
//   exact H V             the point where "%g" does not give it back
//   anchor H V            the first anchor, for a list that no longer ends with it
constexpr char kFromHoldTag[] = "QUORVEL_FROMHOLD", kToHoldTag[] = "QUORVEL_TOHOLD";
constexpr char kEndHoldTag[] = "QUORVEL_ENDHOLD";       // of the placement: exact alone
constexpr char kStopHoldPrefix[] = "QUORVEL_STOPHOLD";  // with two digits, 01 to 30
constexpr char kHoldSegment[] = "segment", kHoldCrossing[] = "crossing", kHoldCentre[] = "centre";
constexpr char kHoldBounds[] = "bounds", kHoldLinks[] = "links", kHoldOffset[] = "offset", kHoldExact[] = "exact",
               kHoldAnchor[] = "anchor";

// Settings of the record that "%g" does not give back: pairs of key and number.
constexpr char kSettingHoldTag[] = "QUORVEL_SETTINGHOLD";

// Decisions.
//   language WORD         of the degree and diameter signs: JAPANESE, ENGLISH, KOREAN
//   pixel P               points: how near a Straight dimension's points count as level or upright
//   heads LETTERS         of each span whose length is near the limit: i for heads inside, o outside, - for others
//   spans LETTERS         of each span of hardly any length: f along the base or the axis, b against it, 0 for none at
//                         all, - for other spans
//   way forward|back      round a closed path from the first point to the second: in its direction or against it
//   side left|right       of the path in its direction, for a curve dimension placed on its own path
//   sector reflex         the angle shown is the one above half a turn
constexpr char kChoiceTag[] = "QUORVEL_CHOICE";
constexpr char kChoiceLanguage[] = "language", kChoicePixel[] = "pixel", kChoiceHeads[] = "heads",
               kChoiceSpans[] = "spans";
constexpr char kChoiceWay[] = "way", kChoiceSide[] = "side", kChoiceSector[] = "sector";
constexpr char kWayForward[] = "forward", kWayBack[] = "back", kSideLeft[] = "left", kSideRight[] = "right",
               kSectorReflex[] = "reflex";

// Of a comment, a balloon, a length or area comment whose leader points at art. Its group has QUORVEL_FROMPOS,
// QUORVEL_TOPOS, QUORVEL_FROMCELL, QUORVEL_FROMHOLD and the settings beside it, as a dimension does, and this:
//   MODE LANGUAGE LENGTHUNIT AREAUNIT SCALE TEXT
// MODE 0 comment, 1 balloon, 2 length, 3 area; TEXT, as it was written, goes on to the end.
constexpr char kMarkTag[] = "QUORVEL_MARK";

}  // namespace quorvel
