// Any bytes as the tags of a drawing frame, parted by zeros: the frame is found, read into the dialog and drawn anew,
// and the new frame's tags say what was read.
#include "fuzz/fuzz_support.h"
#include "hostapi/names.h"
#include "hostapi/records.h"
#include "platform/dialog.h"

using namespace quorvel;

namespace {

// The four pieces of the header, then the two halves of each row.
std::string tagName(std::size_t index) {
    const int number = static_cast<int>(index);
    if (number < kTagPieceCount) return TagPieceName(kFrameSettingTag, number + 1);
    return PartsTagName((number - kTagPieceCount) / 2, (number - kTagPieceCount) % 2 + 1);
}

void makeFrame(doc::Document& document, const std::vector<std::string>& values) {
    const doc::ArtId group = document.insertArt(kGroupArt, kPlaceAboveAll, 0);
    const doc::ArtId line = document.insertArt(kPathArt, kPlaceInsideOnTop, group);
    const PathSegment ends[] = {{{10, 10}, {10, 10}, {10, 10}, 1}, {{500, 300}, {500, 300}, {500, 300}, 1}};
    document.setSegments(line, 0, ends);
    for (std::size_t i = 0; i < values.size() && i < 204; ++i)
        if (!values[i].empty()) document.setTag(group, tagName(i), values[i]);
    document.setSelected(group, true);
}

void openDialog(fuzz::PluginUnderTest& plugin, std::int32_t button) {
    plugin.user().queueDialog({kScheduleDialogId, {{platform::DialogStep::Kind::press, button, "", 0}}});
    plugin.host().editOptions(*plugin.host().toolByTitle(kScheduleBottomToolTitle.japanese));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::PluginUnderTest plugin;
    doc::Document& document = plugin.begin();
    makeFrame(document, fuzz::cutAtZeros(data, size));
    openDialog(plugin, platform::kOkControl);
    // As the dialog has stored it: bytes that are no text of the code page have become question marks.
    const std::string stored = fuzz::scheduleText(*gGlobals);
    const doc::ArtId made = document.find(document.layer(document.currentLayer())->root)->firstChild;
    if (document.tag(made, kFrameTag) != nullptr) {
        document.setSelected(made, true);
        openDialog(plugin, platform::kCancelControl);
        fuzz::require(fuzz::scheduleText(*gGlobals) == stored);
    }
    plugin.end();
    return 0;
}
