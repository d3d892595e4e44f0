// What our own host and the plug-in tell each other about dimensions beyond the host's suites: a suite by which a
// rebuilt dimension takes the place of the former one, and a message that rebuilds chosen dimensions and answers with
// pairs. Other hosts neither offer the suite nor send the message; the plug-in works without both.
#pragma once

#include "hostapi/messages.h"
#include "hostapi/records.h"

namespace quorvel {

// Whether a measured point can follow its art, and why it cannot.
enum LinkState : std::int16_t {
    kLinkHeld = 0,
    kLinkFree = 1,        // the record links it to nothing
    kLinkDeleted = 2,     // no art has the object id
    kLinkUnpainted = 3,   // the art has neither fill nor stroke, is hidden or is a guide
    kLinkLayer = 4,       // the art is on a hidden or locked layer
    kLinkSegment = 5,     // the art has no such segment or anchor any more
    kLinkCopy = 6,        // the nearest of several arts with the object id has no such segment
    kLinkNoCrossing = 7,  // the two segments no longer cross
    kLinkNoArc = 8,       // the segment is no arc any more
    kTextEdited = 9,      // of a mark's text: somebody has written another one
    kLinkStateCount = 10,
};

// A measured point of a dimension.
constexpr std::int16_t kFromEnd = 0, kToEnd = -1, kTextEnd = -2;
struct DimensionEnd {
    std::int16_t place = kFromEnd;  // kFromEnd, kToEnd, kTextEnd, or a stop's number, from 1
    LinkState state = kLinkHeld;
};
constexpr int kDimensionEndLimit = kStopLimit + 2;

struct AIDimensionSuite {
    // Removes former. The replacement takes over the name that the file has for it.
    AIErr (*ReplaceGroup)(AIArtHandle former, AIArtHandle replacement);
    // The frame's text as UTF-16 units, which live until the message returns.
    AIErr (*GetText)(AIArtHandle frame, const std::uint16_t** units, std::int32_t* count);
    // A tool has made a dimension; these of its points cannot follow any art.
    AIErr (*ReportEnds)(AIArtHandle group, const DimensionEnd* ends, std::int32_t count);
};

constexpr char kCallerDimensions[] = "Quorvel Dimensions";
// Rebuilds dimensions without a question, as one step. Hidden and locked layers are passed over.
constexpr char kSelectorRebuild[] = "Rebuild";
// Rebuilds the dimensions of all kinds of which measured art is selected: the host has moved the selection. The
// settings stay as they are.
constexpr char kSelectorFollow[] = "Follow";
// Says of each measured point whether it can follow its art. Changes nothing.
constexpr char kSelectorExamine[] = "Examine";

struct QuorvelRebuildMessage {
    SPMessageData d;
    const AIArtHandle* groups = nullptr;  // dimension groups
    std::int32_t count = 0;
    // A text stays when its value is off by no more than comes of measured points that are this far off, points. 0
    // writes all texts anew; a negative number leaves it to the precision of the coordinates.
    double tolerance = -1;
    bool isTrial = false;            // the settings stay as they are; nothing is done while a tool runs
    bool isDone = false;             // set when something could be done
    AIArtHandle* rebuilt = nullptr;  // room for count handles; set to the new group of each, null where none was made
};

struct QuorvelExamineMessage {
    SPMessageData d;
    AIArtHandle group = nullptr;
    std::int32_t count = 0;
    DimensionEnd ends[kDimensionEndLimit];
};

}  // namespace quorvel
