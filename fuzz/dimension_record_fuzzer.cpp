// Any bytes as the tags of a dimension, parted by zeros, over art to which its links may lead: it is recalculated and
// tracked, with the art unselected and selected.
#include <cstdio>

#include "fuzz/fuzz_support.h"

using namespace quorvel;

namespace {

constexpr char kAction[] = "Recalculate_Dimension_lines", kMovedArt[] = "2644-3993-9293-3747-5729-7605";

const char* const kTagNames[] = {"QUORVEL_TOOLCNF",   "QUORVEL_FROMCELL",  "QUORVEL_TOCELL",    "QUORVEL_FROMPOS",
                                 "QUORVEL_TOPOS",     "QUORVEL_ENDPOS",    "QUORVEL_CURSPOS",   "QUORVEL_TMPPOS",
                                 "QUORVEL_SETTING_1", "QUORVEL_SETTING_2", "QUORVEL_SETTING_3", "QUORVEL_SETTING_4"};
constexpr std::size_t kFixedTags = std::size(kTagNames), kStops = 30;

std::string tagName(std::size_t index) {
    if (index < kFixedTags) return kTagNames[index];
    char name[40];
    std::snprintf(name, sizeof name, "QUORVEL_STOPCELL%2.2zu", index - kFixedTags + 1);
    return name;
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
    for (int i = 0; i < 3; ++i) document.setTag(arts[i], "quorvel_object_id", ids[i]);
    return angle;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::PluginUnderTest plugin;
    doc::Document& document = plugin.begin();
    const doc::ArtId angle = makeArt(document);
    const doc::ArtId group = document.insertArt(kGroupArt, kPlaceAboveAll, 0);
    const std::vector<std::string> values = fuzz::cutAtZeros(data, size);
    for (std::size_t i = 0; i < values.size() && i < kFixedTags + kStops; ++i)
        if (!values[i].empty()) document.setTag(group, tagName(i), values[i]);
    const bool asked = document.tag(group, "QUORVEL_TOOLCNF") != nullptr;
    plugin.host().notify(kMovedArt);
    document.setSelected(angle, true);
    plugin.host().notify(kMovedArt);
    if (asked) plugin.user().queueAnswer(true);
    plugin.host().playAction(kAction);
    plugin.end();
    return 0;
}
