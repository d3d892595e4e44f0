// The searches over real documents, on both roads: with the host's index and walking. What one road finds the other
// finds, to the last bit; what they find is checked by hand on small drawings.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <utility>

#include "host/host.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/snap.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {
namespace {

using doc::ArtId;
using doc::Document;
using doc::LayerId;

std::function<void()> job;
int segmentReads = 0;
const AIPathSuite* hostPath = nullptr;

AIErr CountedRead(AIArtHandle path, std::int16_t first, std::int16_t count, PathSegment* segments) {
    segmentReads += count;
    return hostPath->GetPathSegments(path, first, count, segments);
}

// The art whose bounds the host refuses, when there is one.
AIArtHandle refused = nullptr;
const AIArtSuite* hostArt = nullptr;

AIErr RefusedBounds(AIArtHandle art, const RealMatrix* matrix, std::int32_t options, RealRect* bounds) {
    return art == refused ? kBadParameterErr : hostArt->GetArtTransformBounds(art, matrix, options, bounds);
}

// Stands where the plug-in's entry stands: holds the suites for the time of a message and runs the test's job.
AIErr RunJob(const char*, const char*, void* message) {
    gBasic = static_cast<SPMessageData*>(message)->basic;
    EXPECT_EQ(AcquireSuites(), kNoErr);
    hostPath = sAIPath;
    AIPathSuite counted = *sAIPath;
    counted.GetPathSegments = CountedRead;
    sAIPath = &counted;
    hostArt = sAIArt;
    AIArtSuite refusing = *sAIArt;
    refusing.GetArtTransformBounds = RefusedBounds;
    sAIArt = &refusing;
    job();
    sAIArt = hostArt;
    sAIPath = hostPath;
    return ReleaseSuites();
}

struct Found {
    RealPoint point;
    std::int16_t kind = 0;
    SnapCell cells[kSnapCellCount];
    int count() const {
        int filled = 0;
        while (filled < kSnapCellCount && cells[filled].art != nullptr) ++filled;
        return filled;
    }
};

using Search = void (*)(Found* found);
struct NamedSearch {
    const char* name;
    Search run;
};
const NamedSearch kSearches[] = {
    {"anchors", [](Found* f) { SnapAnchorPoint(&f->point, &f->kind, 5, f->cells); }},
    {"one anchor", [](Found* f) { SnapAnchorPoint(&f->point, &f->kind, 1, f->cells); }},
    {"intersection", [](Found* f) { SnapIntersection(&f->point, &f->kind, 5, f->cells); }},
    {"centres", [](Found* f) { SnapCenterPoint(&f->point, &f->kind, 5, f->cells); }},
    {"path", [](Found* f) { SnapPath(&f->point, &f->kind, f->cells); }},
    {"arc", [](Found* f) { SnapArc(&f->point, &f->kind, f->cells); }},
    {"straight pick", [](Found* f) { PickStraightSegment(&f->point, &f->kind, f->cells); }},
    {"fillet pick", [](Found* f) { PickFilletSegment(&f->point, &f->kind, f->cells); }},
};

bool SameBits(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

struct Roads : testing::Test {
    host::Host host;
    std::unique_ptr<PluginGlobals> globals = std::make_unique<PluginGlobals>();
    LayerId layer = 0;
    ArtId root = 0;

    Roads() {
        BuildBezierBasisTables(&globals->bezierTables);
        gGlobals = globals.get();
        host.attachPlugin(RunJob, nullptr);
        host.newDocument(400, 400);
        layer = host.document()->layers().front();
        root = host.document()->layer(layer)->root;
    }
    ~Roads() override { gGlobals = nullptr; }

    void Draw(const std::function<void(Document&)>& change) {
        host.edit("draw", [&](Document& document) {
            change(document);
            return true;
        });
    }
    void InMessage(const std::function<void()>& work) {
        job = work;
        SPMessageData message;
        EXPECT_EQ(host.send("Test", "Test", &message), kNoErr);
    }
    Found Run(Search search, RealPoint cursor, bool walk) {
        Found found;
        found.point = cursor;
        InMessage([&] {
            ASSERT_NE(sArtQuery, nullptr);
            if (!walk) return search(&found);
            const AIArtQuerySuite* query = sArtQuery;
            sArtQuery = nullptr;
            search(&found);
            sArtQuery = query;
        });
        return found;
    }
    Found Both(const NamedSearch& search, RealPoint cursor) {
        const Found walked = Run(search.run, cursor, true), asked = Run(search.run, cursor, false);
        EXPECT_TRUE(SameBits(walked.point.h, asked.point.h) && SameBits(walked.point.v, asked.point.v))
            << search.name << " at " << cursor.h << ", " << cursor.v;
        EXPECT_EQ(walked.kind, asked.kind) << search.name << " at " << cursor.h << ", " << cursor.v;
        for (int i = 0; i < kSnapCellCount; ++i) {
            EXPECT_EQ(walked.cells[i].art, asked.cells[i].art) << search.name << " cell " << i;
            EXPECT_EQ(walked.cells[i].index, asked.cells[i].index) << search.name << " cell " << i;
        }
        return asked;
    }
    Found Both(const char* name, RealPoint cursor) {
        for (const NamedSearch& search : kSearches) {
            if (std::string_view(search.name) == name) return Both(search, cursor);
        }
        ADD_FAILURE() << name;
        return {};
    }
};

PathSegment Corner(float h, float v) { return {{h, v}, {h, v}, {h, v}, 1}; }

// At the bottom of the group: drawing order is walk order.
ArtId AddPath(Document& document, ArtId group, const std::vector<PathSegment>& segments, bool closed = false) {
    const ArtId path = document.insertArt(kPathArt, kPlaceInsideOnBottom, group);
    document.setSegments(path, 0, segments);
    document.setClosed(path, closed);
    return path;
}

std::vector<PathSegment> Square(float left, float bottom, float size) {
    return {Corner(left, bottom), Corner(left + size, bottom), Corner(left + size, bottom + size),
            Corner(left, bottom + size)};
}

ArtId AddText(Document& document, ArtId group, RealPoint anchor) {
    const ArtId text = document.insertArt(kTextFrameArt, kPlaceInsideOnBottom, group);
    doc::TextData data;
    data.matrix.tx = anchor.h;
    data.matrix.ty = anchor.v;
    data.justification = kJustifyCenter;
    data.text = u"dim";
    data.runs = {{3, {}}};
    document.setText(text, data);
    return text;
}

TEST_F(Roads, AnchorsOfSixArtsFillFiveCells) {
    Draw([&](Document& document) {
        AddPath(document, root, {Corner(0, 0), Corner(50, 50)});
        AddText(document, root, {48.5f, 50});
        for (int i = 0; i < 4; ++i) AddPath(document, root, {Corner(48.2f, 50), Corner(10.0f * i, 9)});
    });
    // The text and the paths lie more than two pixels from the cursor, yet within two of where it has moved to.
    const Found found = Both("anchors", {51.5f, 51});
    EXPECT_EQ(found.kind, kSnapAnchor);
    EXPECT_EQ(found.point.h, 50);
    EXPECT_EQ(found.point.v, 50);
    EXPECT_EQ(found.count(), 5);
    EXPECT_EQ(found.cells[0].index, 1);
    EXPECT_EQ(found.cells[1].index, 0);
    EXPECT_EQ(Both("one anchor", {51.5f, 51}).count(), 1);
    EXPECT_EQ(Both("anchors", {52.5f, 50}).kind, kSnapNothing);
}

TEST_F(Roads, AHostThatFailsOnTheWayHasShownNothing) {
    Draw([&](Document& document) {
        AddPath(document, root, {Corner(0, 0), Corner(50, 50)});
        AddPath(document, root, {Corner(50, 50), Corner(90, 0)});
    });
    refused = Both("anchors", {51, 50}).cells[1].art;
    ASSERT_NE(refused, nullptr);
    for (const char* search : {"anchors", "intersection"}) {
        const Found found = Both(search, {51, 50});
        EXPECT_EQ(found.kind, kSnapNothing) << search;
        EXPECT_EQ(found.point.h, 51) << search;
        EXPECT_EQ(found.count(), 0) << search;
    }
    EXPECT_EQ(Both("one anchor", {51, 50}).kind, kSnapAnchor) << "it has stopped before";
    refused = nullptr;
}

TEST_F(Roads, NeighboursDoNotCrossAndTheClosingSegmentHasIndexZero) {
    Draw([&](Document& document) {
        AddPath(document, root, Square(100, 100, 60), true);
        AddPath(document, root, {Corner(90, 130), Corner(110, 140)});
    });
    EXPECT_EQ(Both("intersection", {160.5f, 100.5f}).kind, kSnapNothing);
    const Found side = Both("path", {101, 115});
    EXPECT_EQ(side.kind, kSnapPath);
    EXPECT_EQ(side.point.h, 100);
    EXPECT_EQ(side.cells[0].index, 0);
    const Found crossing = Both("intersection", {100.5f, 134});
    EXPECT_EQ(crossing.kind, kSnapIntersection);
    EXPECT_EQ(crossing.point.h, 100);
    EXPECT_FLOAT_EQ(crossing.point.v, 135);
    EXPECT_EQ(crossing.cells[0].index, 0);
    EXPECT_EQ(crossing.cells[1].index, 1);
    EXPECT_EQ(Both("centres", {131, 129}).point.h, 130);
    EXPECT_EQ(Both("arc", {101, 115}).kind, kSnapNothing);
}

TEST_F(Roads, DimensionsAndHiddenLayersAreLeftAlone) {
    LayerId hidden = 0;
    Draw([&](Document& document) {
        const ArtId group = document.insertArt(kGroupArt, kPlaceInsideOnBottom, root);
        document.setTag(group, kToolConfigTag, "");
        AddPath(document, document.insertArt(kGroupArt, kPlaceInsideOnBottom, group), Square(50, 50, 20));
        hidden = document.insertLayer("hidden", 0);
        AddPath(document, document.layer(hidden)->root, Square(200, 200, 20));
        document.setLayerVisible(hidden, false);
    });
    for (const NamedSearch& search : kSearches) EXPECT_EQ(Both(search, {60, 50.5f}).kind, kSnapNothing) << search.name;
    for (const NamedSearch& search : kSearches) {
        const bool everyLayer = std::string_view(search.name) == "fillet pick";
        EXPECT_EQ(Both(search, {210, 200.5f}).kind, everyLayer ? kSnapAnchor : kSnapNothing) << search.name;
    }
}

TEST_F(Roads, WalkingReadsNoSegmentsAwayFromTheCursor) {
    Draw([&](Document& document) {
        for (int i = 0; i < 20; ++i) AddPath(document, root, Square(15.0f * i, 0, 10));
    });
    segmentReads = 0;
    for (const NamedSearch& search : kSearches) Run(search.run, {100, 200}, true);
    EXPECT_EQ(segmentReads, 0);
    Run(kSearches[0].run, {5, 5}, true);
    EXPECT_EQ(segmentReads, 4);
}

TEST_F(Roads, SumsOfTheSelection) {
    ArtId bent = 0;
    const auto sums = [&](double length, double area) {
        InMessage([&] {
            EXPECT_NEAR(SelectedPathLength(), length, 1e-6);
            EXPECT_NEAR(SelectedPathArea(), area, 1e-6);
        });
    };
    Draw([&](Document& document) {
        bent = AddPath(document, root, {Corner(0, 0), Corner(30, 0), Corner(30, 40)});
        const ArtId compound = document.insertArt(kCompoundPathArt, kPlaceInsideOnBottom, root);
        for (const auto& member : {Square(100, 100, 100), Square(120, 120, 20), Square(100, 180, 10)}) {
            document.setSelected(AddPath(document, compound, member, true), true);
        }
    });
    sums(400 + 80 + 40, 10000 - 400 + 100);  // a hole that touches the bounds is added
    Draw([&](Document& document) {
        document.setSegmentSelected(bent, 0, kSegmentOutSelected);
        document.setSegmentSelected(bent, 1, kSegmentInSelected);
        document.setSegmentSelected(bent, 2, kSegmentPointSelected);
    });
    sums(520 + 30, 9700);
    Draw([&](Document& document) { document.setLayerVisible(layer, false); });
    sums(0, 0);
}

TEST_F(Roads, TangentAndNormalThroughTheFirstPoint) {
    Draw([&](Document& document) {
        AddPath(document, root, {Corner(100, 100), Corner(200, 100)});
        const float k = 55.2277f;
        AddPath(document, root, {{{100, 0}, {100, 0}, {100, k}, 1}, {{0, 100}, {k, 100}, {0, 100}, 1}});
    });
    ToolState& state = globals->liveState;
    const auto snap = [&](RealPoint cursor) {
        std::int16_t kind = kSnapNothing;
        InMessage([&] { SnapTangentNormal(globals.get(), &cursor, &kind); });
        return std::pair{kind, cursor};
    };
    const auto begin = [&](RealPoint first, const Found& found) {
        state = {};
        state.toolStep = 1;
        state.fromPoint = first;
        state.fromKind = kSnapPath;
        state.fromCells[0] = found.cells[0];
    };
    begin({150, 100}, Both("path", {150, 101}));
    EXPECT_EQ(snap({151, 140}).first, kSnapTangent);  // kind 5 is the direction across the path
    EXPECT_NEAR(snap({151, 60}).second.h, 150, 1e-4);
    const auto along = snap({110, 101});
    EXPECT_EQ(along.first, kSnapNormal);
    EXPECT_NEAR(along.second.h, 150 - std::hypot(40.0, 1.0), 1e-4);
    EXPECT_EQ(snap({150, 100}).first, kSnapTangent);
    EXPECT_EQ(snap({180, 130}).first, kSnapNothing);
    state.fromKind = kSnapFree;
    EXPECT_EQ(snap({151, 140}).first, kSnapNothing);

    begin({60, 80}, Both("path", {60.5f, 80}));  // on the circle about the origin
    const auto outward = snap({90.5f, 120});
    EXPECT_EQ(outward.first, kSnapTangent);
    EXPECT_NEAR(outward.second.v / outward.second.h, 80.0 / 60.0, 1e-5);
    EXPECT_EQ(snap({60 + 40, 80 - 30}).first, kSnapNormal);
    begin({60, 70}, Both("path", {60.5f, 80}));  // off the circle: no direction
    EXPECT_EQ(snap({90, 105}).first, kSnapNothing);
    EXPECT_EQ(state.fromTangent, kNoDistance);
}

// Coordinates fall on few values, so that anchors, centres and crossings of different art meet.
struct Scribbler {
    std::mt19937 random{2026};
    int Pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    float Place() { return 8.0f * static_cast<float>(Pick(10)); }
    RealPoint Point() { return {Place(), Place()}; }

    PathSegment Anchor() {
        const RealPoint p = Point();
        if (Pick(2) == 0) return Corner(p.h, p.v);
        const float reach = 2.0f * static_cast<float>(Pick(8));
        return {p, {p.h - reach, p.v + 3}, {p.h + reach, p.v - 3}, 0};
    }
    void QuarterArc(std::vector<PathSegment>* segments) {
        const RealPoint c = Point();
        const float r = 10, k = 5.52277f;
        segments->push_back({{c.h + r, c.v}, {c.h + r, c.v}, {c.h + r, c.v + k}, 1});
        segments->push_back({{c.h, c.v + r}, {c.h + k, c.v + r}, {c.h, c.v + r}, 1});
    }
    void Path(Document& document, ArtId group) {
        std::vector<PathSegment> segments;
        if (Pick(3) == 0) QuarterArc(&segments);
        for (int i = Pick(5); i >= 0; --i) segments.push_back(Anchor());
        const ArtId path = AddPath(document, group, segments, Pick(2) == 0);
        if (Pick(8) == 0) document.setHidden(path, true);
    }
    void Fill(Document& document, ArtId group, int depth) {
        for (int i = 0; i < 20; ++i) {
            const int kind = Pick(10);
            if (kind == 0) {
                AddText(document, group, Point());
            } else if (kind <= 2 && depth > 0) {
                const AIArtType type = kind == 1 ? kGroupArt : kCompoundPathArt;
                const ArtId inner = document.insertArt(type, kPlaceInsideOnBottom, group);
                if (Pick(4) == 0) document.setTag(inner, kToolConfigTag, "x");
                Fill(document, inner, kind == 1 ? depth - 1 : 0);
            } else {
                Path(document, group);
            }
        }
    }
};

TEST_F(Roads, AgreeOnRandomDrawings) {
    Scribbler scribbler;
    Draw([&](Document& document) {
        for (int i = 0; i < 3; ++i) {
            const LayerId added = document.insertLayer("more", 0);
            scribbler.Fill(document, document.layer(added)->root, 3);
            document.setLayerVisible(added, i != 0);
            document.setLayerEditable(added, i != 1);
        }
    });
    int hits[std::size(kSearches)] = {};
    int crowded = 0;
    for (int round = 0; round < 400; ++round) {
        if (round % 100 == 0) host.setZoom(0.5f * static_cast<float>(1 << round / 100));
        const RealPoint cursor = {scribbler.Place() + 0.7f * static_cast<float>(scribbler.Pick(7) - 3),
                                  scribbler.Place() + 0.7f * static_cast<float>(scribbler.Pick(7) - 3)};
        for (std::size_t i = 0; i < std::size(kSearches); ++i) {
            const Found found = Both(kSearches[i], cursor);
            hits[i] += found.kind != kSnapNothing;
            crowded += found.count() > 2;
        }
        if (round % 50 == 0) {
            Draw(
                [&](Document& document) { scribbler.Path(document, document.layer(document.layers().front())->root); });
        }
        if (HasFailure()) return;
    }
    for (std::size_t i = 0; i < std::size(kSearches); ++i) EXPECT_GT(hits[i], 5) << kSearches[i].name;
    EXPECT_GT(crowded, 10);
}

}  // namespace
}  // namespace quorvel
