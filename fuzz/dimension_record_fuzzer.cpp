// Any bytes as the tags of a dimension, parted by zeros, over art to which its links may lead: it is recalculated and
// tracked, with the art unselected and selected.
#include <iterator>

#include "fuzz/fuzz_support.h"
#include "hostapi/names.h"
#include "hostapi/records.h"

using namespace quorvel;

namespace {

constexpr const char* kTagNames[] = {kToolConfigTag, kFromCellTag, kToCellTag, kFromTag,
                                     kToTag,         kEndTag,      kCursorTag, kTmpTag};
constexpr int kNamedTags = static_cast<int>(std::size(kTagNames)), kFixedTags = kNamedTags + kTagPieceCount;

std::string tagName(std::size_t index) {
    const int number = static_cast<int>(index);
    if (number < kNamedTags) return kTagNames[number];
    if (number < kFixedTags) return TagPieceName(kSettingTag, number - kNamedTags + 1);
    return StopTagName(number - kFixedTags + 1);
}

PathSegment corner(float h, float v) { return {{h, v}, {h, v}, {h, v}, 1}; }

// Ids 1, 2 and 3: an angle, a curved and closed path, a text.
doc::ArtId makeArt(doc::Document& document) {
    const doc::ArtId angle = document.insertArt(kPathArt, kPlaceAboveAll, 0);
    const doc::ArtId round = document.insertArt(kPathArt, kPlaceAboveAll, 0);
    const doc::ArtId text = document.insertArt(kTextFrameArt, kPlaceAboveAll, 0);
    document.setSegments(angle, 0, std::vector{corner(100, 100), corner(300, 100), corner(300, 250)});
    document.setSegments(round, 0,
                         std::vector<PathSegment>{{{450, 200}, {450, 172.4F}, {450, 227.6F}, 0},
                                                  {{400, 250}, {427.6F, 250}, {372.4F, 250}, 0},
                                                  {{350, 200}, {350, 227.6F}, {350, 172.4F}, 0},
                                                  {{400, 150}, {372.4F, 150}, {427.6F, 150}, 0}});
    document.setClosed(round, true);
    AIPathStyle style;
    style.strokePaint = 1;
    for (const doc::ArtId path : {angle, round}) document.setStyle(path, style);
    doc::TextData words;
    words.text = u"text";
    words.runs = {{4, {}}};
    words.matrix.tx = 50;
    document.setText(text, words);
    const char* ids[] = {"1", "2", "3"};
    const doc::ArtId arts[] = {angle, round, text};
    for (int i = 0; i < 3; ++i) document.setTag(arts[i], kObjectIdTag, ids[i]);
    return angle;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::PluginUnderTest plugin;
    doc::Document& document = plugin.begin();
    const doc::ArtId angle = makeArt(document);
    const doc::ArtId group = document.insertArt(kGroupArt, kPlaceAboveAll, 0);
    const std::vector<std::string> values = fuzz::cutAtZeros(data, size);
    for (std::size_t i = 0; i < values.size() && i < kFixedTags + kStopLimit; ++i)
        if (!values[i].empty()) document.setTag(group, tagName(i), values[i]);
    const bool asked = document.tag(group, kToolConfigTag) != nullptr;
    plugin.host().notify(kTrackNotifier);
    document.setSelected(angle, true);
    plugin.host().notify(kTrackNotifier);
    if (asked) plugin.user().queueAnswer(true);
    plugin.host().playAction(kRecalculateAction);
    plugin.end();
    return 0;
}
