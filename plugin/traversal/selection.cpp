// The selection, set by the tools and kept over a change: after a command has drawn what it draws, the user finds
// selected what was selected before, down to single anchors and handles.
#include <unordered_map>
#include <utility>
#include <vector>

#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

struct SelectionEntry {
    AIArtHandle art;
    std::int16_t index;
    std::int16_t state;  // AISegmentSelection; unused for art that is no path
};

// Valid between save and restore, which are never nested.
using SavedSelection = std::vector<SelectionEntry>;
SavedSelection savedSelection;

bool NeverStop() { return false; }

std::int16_t KindOf(AIArtHandle art) {
    std::int16_t kind = kUnknownArt;
    sAIArt->GetArtType(art, &kind);
    return kind;
}

void MarkArt(AIArtHandle art, std::int32_t attributes) {
    sAIArt->SetArtUserAttr(art, kArtSelected, attributes);
    const std::int16_t kind = KindOf(art);
    if (kind != kGroupArt && kind != kCompoundPathArt) return;
    WalkChildren(
        art,
        [&](AIArtHandle child) {
            MarkArt(child, attributes);
            return kNoErr;
        },
        NeverStop);
}

// Unlike a search, save and restore pass over no layer: hidden art keeps its selection too.
template <typename Visit>
void VisitAllLayers(Visit visit) {
    std::int32_t count = 0;
    sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        AILayerHandle layer = nullptr;
        AIArtHandle root = nullptr;
        if (sAILayer->GetNthLayer(i, &layer) != kNoErr) return;
        if (sAIArt->GetFirstArtOfLayer(layer, &root) != kNoErr) return;
        if (root != nullptr && visit(root) != kNoErr) return;
    }
}

AIErr SavePath(AIArtHandle path) {
    const int count = SegmentCount(path);
    for (int i = 0; i < count; ++i) {
        const std::int16_t index = static_cast<std::int16_t>(i);
        std::int16_t state = kSegmentNotSelected;
        const AIErr error = sAIPath->GetPathSegmentSelected(path, index, &state);
        if (error != kNoErr) return error;
        if (state != kSegmentNotSelected) savedSelection.push_back({path, index, state});
    }
    return kNoErr;
}

AIErr SaveArt(AIArtHandle art) {
    const std::int16_t kind = KindOf(art);
    if (kind == kGroupArt) {
        const AIErr error = WalkChildren(art, SaveArt, NeverStop);
        if (error != kNoErr) return error;
    }
    std::int32_t attributes = 0;
    const AIErr error = sAIArt->GetArtUserAttr(art, kArtSelected, &attributes);
    if (error != kNoErr || (attributes & kArtSelected) == 0) return error;
    if (kind == kPathArt) return SavePath(art);
    savedSelection.push_back({art, 0, kSegmentNotSelected});
    return kNoErr;
}

// The run of entries that each art has in the saved selection.
using EntryRuns = std::unordered_map<AIArtHandle, std::pair<std::size_t, std::size_t>>;

EntryRuns FindEntryRuns() {
    EntryRuns runs;
    for (std::size_t i = 0; i < savedSelection.size(); ++i) {
        const auto [run, isNew] = runs.try_emplace(savedSelection[i].art, i, i);
        run->second.second = i + 1;
    }
    return runs;
}

// What is right already is not written, so that art which the host will not change is no obstacle.
AIErr RestorePath(AIArtHandle path, const SelectionEntry* entry, const SelectionEntry* end) {
    const int count = SegmentCount(path);
    for (int i = 0; i < count; ++i) {
        const std::int16_t index = static_cast<std::int16_t>(i);
        std::int16_t wanted = kSegmentNotSelected, present = kSegmentNotSelected;
        if (entry != end && entry->index == index) wanted = (entry++)->state;
        AIErr error = sAIPath->GetPathSegmentSelected(path, index, &present);
        if (error == kNoErr && present != wanted) error = sAIPath->SetPathSegmentSelected(path, index, wanted);
        if (error != kNoErr) return error;
    }
    return kNoErr;
}

AIErr RestoreAttribute(AIArtHandle art, std::int32_t wanted) {
    std::int32_t present = 0;
    const AIErr error = sAIArt->GetArtUserAttr(art, kArtSelected, &present);
    if (error != kNoErr || (present & kArtSelected) == wanted) return error;
    return sAIArt->SetArtUserAttr(art, kArtSelected, wanted);
}

AIErr RestoreArt(AIArtHandle art, const EntryRuns& runs) {
    const auto run = runs.find(art);
    const bool selected = run != runs.end();
    const AIErr error = RestoreAttribute(art, selected ? kArtSelected : 0);
    if (error != kNoErr) return error;
    const std::int16_t kind = KindOf(art);
    if (kind == kPathArt) {
        const SelectionEntry* entries = savedSelection.data();
        return selected ? RestorePath(art, entries + run->second.first, entries + run->second.second)
                        : RestorePath(art, nullptr, nullptr);
    }
    if (kind != kGroupArt) return kNoErr;
    return WalkChildren(
        art, [&](AIArtHandle child) { return RestoreArt(child, runs); }, NeverStop);
}

}  // namespace

void SetArtSelected(AIArtHandle art) { MarkArt(art, kArtSelected); }
void ClearArtSelected(AIArtHandle art) { MarkArt(art, 0); }

void SaveSelection() {
    savedSelection.clear();
    VisitAllLayers(SaveArt);
}

void RestoreSelection() {
    const EntryRuns runs = FindEntryRuns();
    VisitAllLayers([&](AIArtHandle root) { return RestoreArt(root, runs); });
    SavedSelection().swap(savedSelection);
}

}  // namespace quorvel
