// The annotation tools: Comment, Object Number, Length Comment and Dimention Comment. Press at what is meant, drag to
// where the words go, let go; a click alone makes the words without a leader.
#pragma once

#include <string>

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

AIErr CommentEditOptions(const AIToolMessage* message);
AIErr CommentTrack(const AIToolMessage* message);
AIErr CommentDown(const AIToolMessage* message);
AIErr CommentUp(const AIToolMessage* message);

enum MarkMode : std::int16_t { kCommentMark = 0, kObjectNumberMark = 1, kLengthMark = 2, kAreaMark = 3 };

// Makes leader and words of flMarkMode from fromPoint, toPoint and fromCells[0]. 1, or 0 when the layer is blocked or
// there is nothing to measure (leader and group stay then, and the selection is not put back).
std::int32_t BuildMarkArt();
// Makes the mark of liveState and flMarkMode again in the place of oldGroup: a value is measured anew, another text is
// the one given. Null, and nothing has changed, when the layer is blocked.
AIArtHandle BuildMarkAgain(AIArtHandle oldGroup, const std::string& text);
// A text on the line p1 to p2 (internal bytes): narrowed to the line's length, a "2" behind a last letter raised.
void AddCommentText(AIArtHandle group, const DoublePoint& p1, const DoublePoint& p2, const char* text, bool centred);

// The text of a length (points) or area (square points) in the units of the comments, without shelf.
std::string LengthCommentText(const PluginGlobals* globals, double length);
std::string AreaCommentText(const PluginGlobals* globals, double area);

}  // namespace quorvel
