// A drawing of 600 by 400 with the whole plug-in at work on it: a tool is taken by its title and driven by moves,
// presses and releases, as a hand does it.
#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "tests/support/plugin_host.h"

namespace quorvel::tests {

class ToolRig : public testing::Test {
  protected:
    void SetUp() override {
        plugin.newDrawing();
        ASSERT_EQ(plugin.start(), kNoErr);
    }
    void take(std::string_view title) {
        const host::ToolRecord* tool = plugin.host().toolByTitle(title);
        ASSERT_NE(tool, nullptr) << title;
        plugin.host().selectTool(*tool);
    }
    void move(RealPoint to, std::uint16_t modifiers = 0) {
        plugin.host().sendTool(kSelectorTrackCursor, cursor = to, modifiers);
    }
    void press() { plugin.host().sendTool(kSelectorMouseDown, cursor, 0); }
    void release() { plugin.host().sendTool(kSelectorMouseUp, cursor, 0); }
    // From the one point to the other with the button down. True when the tool has not beeped.
    bool drag(RealPoint from, RealPoint to) {
        const int beeps = plugin.user().beeps();
        move(from);
        press();
        plugin.host().sendTool(kSelectorMouseDrag, cursor = to, 0);
        release();
        return plugin.user().beeps() == beeps;
    }

    doc::Document& document() { return *plugin.host().document(); }
    const std::vector<PathSegment>& segments(doc::ArtId path) { return document().find(path)->path->segments; }
    doc::ArtId root() { return document().layer(document().currentLayer())->root; }
    doc::ArtId topArt() { return document().find(root())->firstChild; }
    int artCount() { return static_cast<int>(document().artCount()); }
    void change(const std::function<bool(doc::Document&)>& work) { EXPECT_TRUE(plugin.host().edit("Draw", work)); }
    doc::ArtId addSegments(const std::vector<PathSegment>& path, bool selected) {
        doc::ArtId made = 0;
        change([&](doc::Document& document) {
            made = document.insertArt(kPathArt, kPlaceAboveAll, 0);
            return document.setSegments(made, 0, path) && document.setSelected(made, selected);
        });
        return made;
    }

    PluginHost plugin;
    RealPoint cursor;
};

inline void ExpectAt(const RealPoint& point, double h, double v, double tolerance = 1e-3) {
    EXPECT_NEAR(point.h, h, tolerance);
    EXPECT_NEAR(point.v, v, tolerance);
}

}  // namespace quorvel::tests
