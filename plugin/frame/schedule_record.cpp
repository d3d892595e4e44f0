// Writes, reads and finds frame records.
#include "plugin/frame/schedule_record.h"

#include "hostapi/records.h"
#include "plugin/record/dimension_record.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

std::string HeaderText(const PluginGlobals* globals) {
    std::string text;
    for (const PrefsKey& key : PrefsKeys()) {
        if (key.group != KeyGroup::schedule) continue;
        const std::string value = FormatPrefsField(globals, key);
        if (!text.empty()) text += ',';
        text += key.type == FieldType::text ? '"' + value + '"' : value;
    }
    return text;
}

// The row's texts from column first up to last, quoted.
std::string RowText(const ZwkPartRow& row, int first, int last) {
    std::string text;
    for (int i = first; i < last; ++i)
        text += (i == first ? "\"" : ",\"") + std::string(PartText(row, kPartColumns[i])) + '"';
    return text;
}

void ReadRowText(AIArtHandle art, const std::string& tag, int first, int last, ZwkPartRow* row) {
    std::string text, field;
    if (!ReadTag(art, tag.c_str(), &text)) return;
    for (int i = first; i < last; ++i) {
        SplitField(text, i - first, &field);
        StorePartText(row, kPartColumns[i], field);
    }
}

bool IsSelectedFrame(AIArtHandle art) {
    std::int32_t attributes = 0;
    std::string header;
    return sAIArt->GetArtUserAttr(art, kArtSelected, &attributes) == kNoErr && (attributes & kArtSelected) != 0 &&
           ReadTag(art, kFrameTag, &header) && !header.empty();
}

AIErr SearchFrame(AIArtHandle art, AIArtHandle* found) {
    std::int16_t kind = kUnknownArt;
    const AIErr error = sAIArt->GetArtType(art, &kind);
    if (error != kNoErr || kind != kGroupArt) return error;
    if (IsSelectedFrame(art)) {
        *found = art;
        return kNoErr;
    }
    return WalkChildren(
        art, [&](AIArtHandle child) { return SearchFrame(child, found); }, [&] { return *found != nullptr; });
}

}  // namespace

void WriteScheduleRecord(AIArtHandle art) {
    const PluginGlobals* globals = gGlobals;
    WriteTagPieces(art, kFrameSettingTag, HeaderText(globals));
    for (int i = 0; i < kPartRowCount; ++i) {
        const ZwkPartRow& row = globals->prefs.flZwkParts[i];
        RemoveTag(art, PartsTagName(i, 1).c_str());
        RemoveTag(art, PartsTagName(i, 2).c_str());
        if (PartRowIsEmpty(row)) continue;
        WriteTag(art, PartsTagName(i, 1).c_str(), RowText(row, 0, kFirstHalfColumns));
        WriteTag(art, PartsTagName(i, 2).c_str(), RowText(row, kFirstHalfColumns, kPartColumnCount));
    }
}

void ReadScheduleRecord(AIArtHandle art) {
    PluginGlobals* globals = gGlobals;
    PrefsRecord* prefs = &globals->prefs;
    ClearScheduleBlock(prefs);
    const std::string header = JoinTagPieces(art, kFrameSettingTag);
    if (!header.empty()) {
        std::string field;
        int index = 0;
        for (const PrefsKey& key : PrefsKeys()) {
            if (key.group != KeyGroup::schedule) continue;
            SplitField(header, index++, &field);
            if (!field.empty()) StorePrefsField(globals, key, field);
        }
    }
    for (int i = 0; i < kPartRowCount; ++i) {
        ReadRowText(art, PartsTagName(i, 1), 0, kFirstHalfColumns, &prefs->flZwkParts[i]);
        ReadRowText(art, PartsTagName(i, 2), kFirstHalfColumns, kPartColumnCount, &prefs->flZwkParts[i]);
    }
}

AIArtHandle FindSelectedFrame() {
    AIArtHandle found = nullptr;
    std::int32_t count = 0;
    sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count && found == nullptr; ++i) {
        AILayerHandle layer = nullptr;
        AIArtHandle root = nullptr;
        if (sAILayer->GetNthLayer(i, &layer) != kNoErr || LayerIsBlocked(layer)) continue;
        // A layer that cannot be walked to its end has no frame to offer; the next one is tried.
        if (sAIArt->GetFirstArtOfLayer(layer, &root) == kNoErr) static_cast<void>(SearchFrame(root, &found));
    }
    return found;
}

void ArtPathBounds(AIArtHandle art, RealRect* rect) {
    std::int16_t kind = kUnknownArt;
    if (sAIArt->GetArtType(art, &kind) != kNoErr) return;
    if (kind == kGroupArt || kind == kCompoundPathArt) {
        WalkChildren(
            art,
            [&](AIArtHandle child) {
                ArtPathBounds(child, rect);
                return kNoErr;
            },
            [] { return false; });
        return;
    }
    RealRect bounds;
    if (kind != kPathArt ||
        sAIArt->GetArtTransformBounds(art, nullptr, kTransformBoundsWithControls, &bounds) != kNoErr)
        return;
    if (rect->right - rect->left == 0)
        *rect = bounds;
    else
        sAIRealMath->AIRealRectUnion(rect, &bounds, rect);
}

}  // namespace quorvel
