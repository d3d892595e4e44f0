// The record of a dimension, written and read as within a message of the host.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "plugin/record/dimension_record.h"
#include "plugin/shell/suites.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {

using doc::Art;
using doc::ArtId;
using doc::Document;

class RecordRig : public testing::Test {
  protected:
    explicit RecordRig(bool offersArtQuery = true) : table(options(offersArtQuery)) {}
    static PluginHostOptions options(bool offersArtQuery) {
        PluginHostOptions options;
        options.host.offerArtQuery = offersArtQuery;
        return options;
    }
    // A group that bears what liveState says.
    ArtId write(std::int16_t kind, std::int16_t mode) {
        return table.newGroup([&](AIArtHandle group) { WriteDimensionRecord(group, kind, mode); });
    }
    // A dimension at the place, so that its bounds say where it is: measures the cells from and to.
    ArtId dimensionAt(RealPoint centre, SnapCell from, SnapCell to = {}) {
        ContextBracket(&table.globals());
        live.fromCells[0] = from;
        live.toCells[0] = to;
        return table.newGroup([&](AIArtHandle group) {
            AIArtHandle line = nullptr;
            const PathSegment ends[] = {Corner({centre.h - 1, centre.v}), Corner({centre.h + 1, centre.v})};
            sAIArt->NewArt(kPathArt, kPlaceInsideOnTop, group, &line);
            sAIPath->SetPathSegments(line, 0, 2, ends);
            WriteDimensionRecord(group, 0, 0);
        });
    }
    void setTag(ArtId art, const char* name, const std::string& value) {
        table.change([&](Document& document) { return document.setTag(art, name, value); });
    }
    struct Read {
        std::int16_t kind = -1, mode = -1;
        DoublePoint from, to;
    };
    Read read(ArtId group) {
        Read found;
        table.inside([&] {
            const DimensionRecord record = ReadDimensionRecord(table.handle(group));
            found = {record.kind, record.mode, record.from.links.end, record.to.links.end};
        });
        return found;
    }
    ArtId find(std::int32_t id, std::int32_t index, RealPoint near) {
        AIArtHandle found = nullptr;
        table.inside([&] { found = FindArtById(id, index, near); });
        return table.artOf(found);
    }
    std::int32_t count(std::int32_t id) {
        std::int32_t found = 0;
        table.inside([&] { found = CountArtWithId(id); });
        return found;
    }
    SnapCell cell(ArtId art, int index) { return {table.handle(art), static_cast<std::int16_t>(index)}; }
    std::string id(ArtId art) { return table.tag(art, kObjectIdTag); }

    DraftingTable table;
    ToolState& live = table.globals().liveState;
    PrefsRecord& prefs = table.prefs();
};

}  // namespace quorvel::tests
