#include "tests/support/drafting_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "host/host_state.h"
#include "plugin/shell/property_list.h"
#include "plugin/shell/suites.h"

namespace quorvel::tests {

namespace {

using doc::Art;
using doc::ArtId;
using doc::Document;

constexpr char kTestCaller[] = "Test";
constexpr float kQuarterHandle = 0.552277F;
const std::function<void()>* job = nullptr;

// Stands before the plug-in's entry and keeps the messages of tests for itself.
AIErr Entry(const char* caller, const char* selector, void* message) {
    if (std::strcmp(caller, kTestCaller) != 0) return PluginMain(caller, selector, message);
    auto* data = static_cast<SPMessageData*>(message);
    gBasic = data->basic;
    gGlobals = static_cast<PluginGlobals*>(data->globals);
    EXPECT_EQ(AcquireSuites(), kNoErr);
    (*job)();
    return ReleaseSuites();
}

bool IsDimension(const Document& document, const Art& art) {
    return art.kind == kGroupArt && document.tag(art.id, "QUORVEL_TOOLCNF") != nullptr;
}

void Collect(const Document& document, ArtId id, std::vector<ArtId>* found) {
    const Art& art = *document.find(id);
    if (IsDimension(document, art)) {
        found->push_back(id);
        return;
    }
    for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below) Collect(document, child, found);
}

}  // namespace

PathSegment Corner(RealPoint anchor) { return {anchor, anchor, anchor, 1}; }

DraftingTable::DraftingTable(PluginHostOptions options) : PluginHost(std::move(options)) {
    static const char module = 0;
    host().attachPlugin(Entry, const_cast<char*>(&module));
    newDrawing(1000, 1000);
    EXPECT_EQ(start(), kNoErr);
}

ArtId DraftingTable::draw(const std::vector<PathSegment>& segments, bool closed) {
    ArtId path = 0;
    AIPathStyle style;
    style.strokePaint = 1;
    style.strokeWidth = 1;
    change([&](Document& document) {
        path = document.insertArt(kPathArt, kPlaceAboveAll, 0);
        return path != 0 && document.setSegments(path, 0, segments) && (!closed || document.setClosed(path, true)) &&
               document.setStyle(path, style);
    });
    return path;
}

ArtId DraftingTable::drawLines(const std::vector<RealPoint>& anchors, bool closed) {
    std::vector<PathSegment> segments;
    for (const RealPoint& anchor : anchors) segments.push_back(Corner(anchor));
    return draw(segments, closed);
}

ArtId DraftingTable::drawCircle(RealPoint c, float r) {
    const float k = r * kQuarterHandle;
    return draw({{{c.h + r, c.v}, {c.h + r, c.v - k}, {c.h + r, c.v + k}, 0},
                 {{c.h, c.v + r}, {c.h + k, c.v + r}, {c.h - k, c.v + r}, 0},
                 {{c.h - r, c.v}, {c.h - r, c.v + k}, {c.h - r, c.v - k}, 0},
                 {{c.h, c.v - r}, {c.h - k, c.v - r}, {c.h + k, c.v - r}, 0}},
                true);
}

void DraftingTable::change(const std::function<bool(Document&)>& how) { EXPECT_TRUE(host().edit("Edit", how)); }

void DraftingTable::move(ArtId art, float h, float v) {
    change([&](Document& document) { return document.transform(art, {1, 0, 0, 1, h, v}, 1); });
}

AIArtHandle DraftingTable::handle(ArtId art) { return host::artHandle(art); }

ArtId DraftingTable::artOf(AIArtHandle handle) { return handle == nullptr ? 0 : host::artOf(handle).id; }

void DraftingTable::inside(const std::function<void()>& what) {
    job = &what;
    SPMessageData message;
    EXPECT_EQ(host().send(kTestCaller, kTestCaller, &message), kNoErr);
    job = nullptr;
}

ArtId DraftingTable::newGroup(const std::function<void(AIArtHandle)>& fill) {
    AIArtHandle group = nullptr, root = nullptr;
    inside([&] {
        sAIArt->GetFirstArtOfLayer(nullptr, &root);
        sAIArt->NewArt(kGroupArt, kPlaceInsideOnTop, root, &group);
        fill(group);
    });
    return artOf(group);
}

void DraftingTable::choose(const char* title) {
    const host::ToolRecord* tool = host().toolByTitle(title);
    ASSERT_NE(tool, nullptr) << title;
    EXPECT_EQ(host().selectTool(*tool), kNoErr);
}

void DraftingTable::track(RealPoint cursor, std::uint16_t modifiers) {
    cursor_ = cursor;
    EXPECT_EQ(host().sendTool(kSelectorTrackCursor, cursor, modifiers), kNoErr);
}

void DraftingTable::drag(RealPoint cursor, std::uint16_t modifiers) {
    cursor_ = cursor;
    EXPECT_EQ(host().sendTool(kSelectorMouseDrag, cursor, modifiers), kNoErr);
}

void DraftingTable::down(std::uint16_t modifiers) {
    EXPECT_EQ(host().sendTool(kSelectorMouseDown, cursor_, modifiers), kNoErr);
}

void DraftingTable::up(std::uint16_t modifiers) {
    EXPECT_EQ(host().sendTool(kSelectorMouseUp, cursor_, modifiers), kNoErr);
}

void DraftingTable::pull(const char* tool, RealPoint from, RealPoint to, const std::vector<RealPoint>& stops,
                         std::uint16_t modifiers) {
    choose(tool);
    track(from);
    down();
    for (const RealPoint& stop : stops) {
        drag(stop);
        down(kAltModifier);
        up(kAltModifier);
    }
    drag(to, modifiers);
    up();
}

void DraftingTable::measure(const char* tool, RealPoint from, RealPoint to, RealPoint placement,
                            const std::vector<RealPoint>& stops) {
    pull(tool, from, to, stops);
    track(placement);
    down();
}

void DraftingTable::removeDimensions() {
    for (const ArtId old : dimensions()) change([&](Document& drawing) { return drawing.removeArt(old); });
}

std::vector<ArtId> DraftingTable::dimensions() {
    const Document& drawing = document();
    std::vector<ArtId> found;
    for (doc::LayerId layer : drawing.layers()) Collect(drawing, drawing.layer(layer)->root, &found);
    return found;
}

ArtId DraftingTable::dimension() {
    const std::vector<ArtId> all = dimensions();
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? 0 : all.front();
}

std::vector<Piece> DraftingTable::pieces(ArtId group) {
    const Document& drawing = document();
    std::vector<Piece> pieces;
    const Art* all = drawing.find(group);
    for (ArtId child = all != nullptr ? all->lastChild : 0; child != 0; child = drawing.find(child)->above) {
        const Art& art = *drawing.find(child);
        Piece piece;
        if (art.path) {
            piece.segments = art.path->segments;
            piece.closed = art.path->closed;
            if (art.path->style != nullptr) piece.style = *art.path->style;
            piece.filled = piece.style.fillPaint != 0;
        }
        if (art.text) {
            piece.data = *art.text;
            piece.text = art.text->text;
            piece.place = {art.text->matrix.tx, art.text->matrix.ty};
            piece.angle = std::atan2(art.text->matrix.b, art.text->matrix.a);
        }
        pieces.push_back(piece);
    }
    return pieces;
}

std::string DraftingTable::tag(ArtId art, const char* name) {
    const std::string* value = document().tag(art, name);
    return value != nullptr ? *value : "(none)";
}

}  // namespace quorvel::tests
