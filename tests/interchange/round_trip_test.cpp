// Whatever a document holds comes back from its file, and is written again as the same bytes. Documents are random,
// made and changed through the document's own functions, both from nothing and on files that were read.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <iostream>
#include <random>
#include <tuple>

#include "tests/interchange/svg_support.h"

namespace quorvel::interchange {
namespace {

bool same(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

bool same(const AIColor& a, const AIColor& b) {
    if (a.kind != b.kind) return false;
    if (a.kind == kGrayPaint) return a.gray == b.gray;
    if (a.kind == kRgbPaint) return std::equal(a.rgb, a.rgb + 3, b.rgb);
    return a.gradientAngle == b.gradientAngle && a.gradientHiliteAngle == b.gradientHiliteAngle;
}

void expectSameStyle(const AIPathStyle& a, const AIPathStyle& b) {
    const auto plain = [](const AIPathStyle& s) {
        return std::tuple(s.fillPaint != 0, s.strokePaint != 0, s.strokeWidth, s.miterLimit, s.cap, s.join,
                          s.dashOffset, s.dashCount);
    };
    ASSERT_EQ(plain(a), plain(b));
    EXPECT_TRUE(!a.fillPaint || same(a.fill, b.fill));
    EXPECT_TRUE(!a.strokePaint || same(a.stroke, b.stroke));
    EXPECT_TRUE(std::equal(a.dashes, a.dashes + a.dashCount, b.dashes));
}

void expectSamePath(const doc::PathData& a, const doc::PathData& b) {
    EXPECT_EQ(a.closed, b.closed);
    ASSERT_EQ(a.segments.size(), b.segments.size());
    for (std::size_t i = 0; i < a.segments.size(); ++i) {
        EXPECT_TRUE(same(a.segments[i].p, b.segments[i].p)) << i << " of " << a.segments.size();
        EXPECT_TRUE(same(a.segments[i].in, b.segments[i].in)) << i;
        EXPECT_TRUE(same(a.segments[i].out, b.segments[i].out)) << i;
        EXPECT_EQ(a.segments[i].corner != 0, b.segments[i].corner != 0) << i;
    }
    expectSameStyle(*a.style, *b.style);
}

void expectSameText(const doc::TextData& a, const doc::TextData& b) {
    const auto plain = [](const doc::TextData& t) {
        const RealMatrix& m = t.matrix;
        return std::tuple(t.text, t.justification, t.firstLineIndent, t.startIndent, m.a, m.b, m.c, m.d, m.tx, m.ty);
    };
    EXPECT_EQ(plain(a), plain(b));
    ASSERT_EQ(a.runs.size(), b.runs.size());
    const auto look = [](const doc::TextRun& run) {
        const doc::CharFeatures& f = run.features;
        return std::tuple(run.length, f.font, f.size, f.horizontalScale, f.verticalScale, f.baselineShift, f.miterLimit,
                          f.fillOn, f.strokeOn);
    };
    for (std::size_t i = 0; i < a.runs.size(); ++i) {
        EXPECT_EQ(look(a.runs[i]), look(b.runs[i]));
        const doc::CharFeatures &f = a.runs[i].features, &g = b.runs[i].features;
        EXPECT_TRUE(!f.fillOn || same(f.fill, g.fill));
        EXPECT_TRUE(!f.strokeOn || same(f.stroke, g.stroke));
    }
}

void expectSameArt(const doc::Document& da, doc::ArtId ida, const doc::Document& db, doc::ArtId idb) {
    const doc::Art &a = *da.find(ida), &b = *db.find(idb);
    SCOPED_TRACE("art " + a.name);
    EXPECT_EQ(a.kind, b.kind);
    EXPECT_EQ(a.hidden, b.hidden);
    EXPECT_EQ(a.locked, b.locked);
    EXPECT_EQ(a.name, b.name);
    ASSERT_EQ(a.tags.size(), b.tags.size());
    for (const doc::Tag& tag : a.tags) {
        const std::string* value = db.tag(idb, tag.name);
        ASSERT_NE(value, nullptr) << tag.name;
        EXPECT_EQ(*value, tag.value);
    }
    ASSERT_EQ(a.path != nullptr, b.path != nullptr);
    ASSERT_EQ(a.text != nullptr, b.text != nullptr);
    if (a.path) expectSamePath(*a.path, *b.path);
    if (a.text) expectSameText(*a.text, *b.text);
    doc::ArtId x = a.firstChild, y = b.firstChild;
    for (; x != 0 && y != 0; x = da.find(x)->below, y = db.find(y)->below) expectSameArt(da, x, db, y);
    EXPECT_EQ(x != 0, y != 0) << "number of children";
}

}  // namespace

void expectSame(const doc::Document& a, const doc::Document& b) {
    EXPECT_EQ(a.width(), b.width());
    EXPECT_EQ(a.height(), b.height());
    ASSERT_EQ(a.layers().size(), b.layers().size());
    for (std::size_t i = 0; i < a.layers().size(); ++i) {
        const doc::Layer &x = *a.layer(a.layers()[i]), &y = *b.layer(b.layers()[i]);
        SCOPED_TRACE("layer " + x.title);
        EXPECT_EQ(x.title, y.title);
        EXPECT_EQ(x.visible, y.visible);
        EXPECT_EQ(x.editable, y.editable);
        EXPECT_EQ(x.id == a.currentLayer(), y.id == b.currentLayer());
        expectSameArt(a, x.root, b, y.root);
    }
}

namespace {

class Draughtsman {
  public:
    Draughtsman(doc::Document* document, unsigned seed) : document_(*document), random_(seed) {}

    // A few dozen changes anywhere in the document.
    void work(int changes) {
        for (int i = 0; i < changes; ++i) change();
    }

  private:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
    bool oneIn(int n) { return upTo(n - 1) == 0; }
    float coordinate() {
        const double value = std::uniform_real_distribution<double>(-300, 1200)(random_);
        return static_cast<float>(oneIn(3) ? std::nearbyint(value) : value);
    }
    RealPoint point() { return {coordinate(), coordinate()}; }
    float share() { return oneIn(2) ? static_cast<float>(upTo(255) / 255.0) : static_cast<float>(upTo(1000)) / 1000; }

    std::string bytes() {
        std::string value;
        for (int i = upTo(12); i > 0; --i) value += static_cast<char>(oneIn(2) ? upTo(255) : ' ' + upTo(94));
        return value;
    }

    std::vector<doc::ArtId> all() {
        std::vector<doc::ArtId> found, open;
        for (doc::LayerId id : document_.layers()) open.push_back(document_.layer(id)->root);
        while (!open.empty()) {
            const doc::ArtId id = open.back();
            open.pop_back();
            found.push_back(id);
            for (doc::ArtId child = document_.find(id)->firstChild; child != 0; child = document_.find(child)->below)
                open.push_back(child);
        }
        return found;
    }

    doc::ArtId any() {
        const std::vector<doc::ArtId> arts = all();
        return arts[static_cast<std::size_t>(upTo(static_cast<int>(arts.size()) - 1))];
    }

    std::vector<PathSegment> outline() {
        std::vector<PathSegment> result(static_cast<std::size_t>(1 + upTo(4)));
        for (PathSegment& s : result) {
            s.p = oneIn(6) && &s != &result.front() ? result.front().p : point();
            s.in = oneIn(2) ? s.p : point();
            s.out = oneIn(2) ? s.p : point();
            if (oneIn(4)) s.out = {2 * s.p.h - s.in.h, 2 * s.p.v - s.in.v};
            s.corner = oneIn(2);
        }
        return result;
    }

    AIColor color() {
        AIColor result;
        if (oneIn(2)) {
            result.gray = share();
        } else {
            result.kind = kRgbPaint;
            result.rgb[0] = share();
            result.rgb[1] = oneIn(4) ? result.rgb[0] : share();
            result.rgb[2] = oneIn(4) ? result.rgb[0] : share();
        }
        return result;
    }

    AIPathStyle style() {
        AIPathStyle result;
        result.fillPaint = oneIn(2);
        result.strokePaint = oneIn(2);
        result.fill = color();
        result.stroke = color();
        result.strokeWidth = std::abs(coordinate()) / 100;
        result.miterLimit = static_cast<float>(upTo(100)) / 10;
        result.cap = upTo(2);
        result.join = upTo(2);
        result.dashCount = oneIn(3) ? upTo(6) : 0;
        for (int i = 0; i < result.dashCount; ++i) result.dashes[i] = 1 + std::abs(coordinate());
        result.dashOffset = oneIn(3) ? coordinate() : 0;
        return result;
    }

    doc::TextData text() {
        static const std::u16string kTexts[] = {
            u"50",           u"R 12.5",    u"  two  blanks ", u"",
            u"寸法線 < & >", u"a\rb\r\rc", u"\U0001F600",     u"\"quoted\" \x1B\x01"};
        static const char* kFonts[] = {"DejaVu Sans", "DejaVu Sans Bold", "No Such Font", "IPAGothic"};
        doc::TextData result;
        result.text = kTexts[upTo(7)];
        const double turn = oneIn(2) ? 0 : upTo(360) * 0.0174533;
        const double size = oneIn(4) ? 1 + upTo(20) / 10.0 : 1;
        const auto at = point();
        result.matrix = {float(size * std::cos(turn)),
                         float(size * std::sin(turn)),
                         float(-size * std::sin(turn)),
                         float(size * std::cos(turn)),
                         at.h,
                         at.v};
        result.justification = static_cast<ATEJustification>(upTo(2));
        if (oneIn(5)) result.startIndent = coordinate();
        auto left = static_cast<int>(result.text.size());
        do {
            doc::TextRun run;
            run.length = oneIn(2) ? left : upTo(left);
            left -= run.length;
            run.features.font = kFonts[upTo(3)];
            run.features.size = oneIn(2) ? 12 : 1 + std::abs(coordinate()) / 50;
            if (oneIn(3)) run.features.horizontalScale = 0.5F + share();
            if (oneIn(6)) run.features.verticalScale = 0.5F + share();
            if (oneIn(4)) run.features.baselineShift = coordinate() / 100;
            run.features.fill = color();
            run.features.strokeOn = oneIn(8);
            run.features.fillOn = !oneIn(8);
            result.runs.push_back(run);
        } while (left > 0);
        return result;
    }

    void change() {
        const doc::ArtId target = any();
        const doc::Art& art = *document_.find(target);
        const bool isRoot = art.parent == 0;
        const auto inserting = [&](AIArtType kind) { return [this, kind, target] { insert(kind, target); }; };
        const std::function<void()> changes[] = {
            inserting(kGroupArt),
            inserting(kCompoundPathArt),
            inserting(kPathArt),
            inserting(kPathArt),
            inserting(kPathArt),
            inserting(kTextFrameArt),
            inserting(kTextFrameArt),
            [&] {
                if (!isRoot && oneIn(2)) document_.removeArt(target);
            },
            [&] {
                if (!isRoot) document_.moveArt(target, oneIn(2) ? kPlaceAbove : kPlaceInsideOnBottom, any());
            },
            [&] {
                if (!isRoot) document_.setTag(target, oneIn(3) ? bytes() : "QUORVEL_TOOLCNF", bytes());
            },
            [&] {  // The look of a compound path is one, and so are its members' marks.
                if (!isRoot && !inCompound(art))
                    oneIn(2) ? document_.setHidden(target, oneIn(2)) : document_.setLocked(target, oneIn(2));
            },
            [&] {
                document_.transform(target, {0.8F, 0.6F, -0.6F, 0.8F, 10, -20}, oneIn(2) ? 1.0F : 1.5F);
            },
            [&] {
                if (art.path && !inCompound(art)) document_.setStyle(target, style());
                if (!isRoot && !inCompound(art) && oneIn(3))
                    document_.setName(target, "id" + std::to_string(upTo(1000000)));
            },
            [&] { changeLayer(); }};
        changes[upTo(int(std::size(changes)) - 1)]();
    }

    bool inCompound(const doc::Art& art) { return document_.find(art.parent)->kind == kCompoundPathArt; }

    void insert(AIArtType kind, doc::ArtId where) {
        const doc::ArtId id = document_.insertArt(kind, static_cast<AIPaintOrder>(1 + upTo(3)), where);
        if (id == 0) return;
        const doc::Art& art = *document_.find(id);
        if (kind == kPathArt) {
            document_.setSegments(id, 0, outline());
            document_.setClosed(id, oneIn(2));
            if (!inCompound(art)) document_.setStyle(id, style());
        }
        if (kind == kTextFrameArt) document_.setText(id, text());
    }

    void changeLayer() {
        const auto& layers = document_.layers();
        const doc::LayerId layer = layers[static_cast<std::size_t>(upTo(static_cast<int>(layers.size()) - 1))];
        const auto choose = [&] { document_.setCurrentLayer(layer); };
        const std::function<void()> changes[] = {
            [&] { document_.insertLayer("Dim <" + std::to_string(upTo(99)) + "> 寸法", oneIn(2) ? 0 : layer); },
            [&] { document_.setLayerTitle(layer, "Title " + std::to_string(upTo(99))); },
            [&] { document_.setLayerVisible(layer, oneIn(2)); },
            [&] { document_.setLayerEditable(layer, oneIn(2)); },
            choose,
            [&] { document_.moveLayer(layer, std::size_t(upTo(int(layers.size()) - 1))); },
            choose};
        changes[upTo(int(std::size(changes)) - 1)]();
    }

    doc::Document& document_;
    std::mt19937 random_;
};

// Members of a compound path look like its lowest one in a file.
void unifyCompounds(doc::Document* document, doc::ArtId id) {
    const doc::Art& art = *document->find(id);
    for (doc::ArtId child = art.firstChild; child != 0; child = document->find(child)->below) {
        if (art.kind == kCompoundPathArt) {
            document->setStyle(child, *document->find(art.lastChild)->path->style);
            document->setHidden(child, false);
            document->setLocked(child, false);
            document->setName(child, "");
        }
        unifyCompounds(document, child);
    }
}

void expectRoundTrip(doc::Document* document, const std::string& unit) {
    for (doc::LayerId layer : document->layers()) unifyCompounds(document, document->layer(layer)->root);
    const std::string written = writeSvg(*document, unit);
    const Result<SvgDrawing> read = readSvg(written);
    ASSERT_TRUE(read) << read.error() << "\n" << written;
    expectSame(*document, *read->document);
    EXPECT_EQ(writeSvg(*read->document), written);
    if (::testing::Test::HasFailure()) std::cout << written << "\n";
}

TEST(SvgRoundTrip, NewDocumentsComeBackWhole) {
    const char* units[] = {"mm", "pt", "in", "px"};
    for (unsigned seed = 1; seed <= 60 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        doc::Document document(595.2756F, 841.89F);
        document.insertLayer("Layer 1", 0);
        document.setCurrentLayer(document.layers().front());
        Draughtsman(&document, seed).work(40);
        expectRoundTrip(&document, units[seed % 4]);
    }
}

// Two layers beside loose art, transforms at all depths, inherited paint, shapes, text, something foreign, and clones
// of all of these, of each other and of what is only defined.
constexpr const char* kBusyFile = R"svg(<?xml version="1.0"?>
<!-- kept -->
<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink"
     xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape"
     xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd"
     width="210mm" height="297mm" viewBox="0 0 210 297" id="root">
  <sodipodi:namedview id="view" inkscape:current-layer="one"/>
  <defs><g id="nut"><circle r="3"/><path d="M 1 1 2 2"/></g>
    <symbol id="sign" viewBox="0 0 7 9"><use xlink:href="#nut" x="1"/><rect id="plate" width="5" height="6"/></symbol></defs>
  <path id="loose" d="m 1,2 3,4 h 5" stroke="red"/>
  <g inkscape:groupmode="layer" inkscape:label="One" id="one" transform="rotate(30)" style="stroke-width:0.5;marker-end:url(#m)">
    <!-- inside -->
    <g id="g1" clip-path="url(#m)" transform="scale(2,3)" fill="#123456" fill-opacity="0.5">
      <rect id="r" x="1" y="2" width="30" height="40" rx="5"/>
      <circle id="c" cx="50" cy="60" r="7"><title>Hole</title></circle>
    </g>
    <use id="u" xlink:href="#nut" x="20" y="5" transform="skewX(10)"/>
    <text id="t" x="10" y="20" mask="url(#m)"><tspan font-size="5">A</tspan><tspan x="10" dy="6" font-weight="bold">B</tspan></text>
    <image id="i" width="10" height="10"/>
    <use xlink:href="#sign" x="3" y="4" width="21" height="13" transform="rotate(7)"/>
  </g>
  <g inkscape:groupmode="layer" inkscape:label="Two">
    <path id="p" sodipodi:nodetypes="cscc" d="M 0 0 C 1 0 2 1 3 1 L 5 5 V 8 M 20 20 A 5 6 0 0 1 30 20 Z"
       style="stroke:#000;stroke-dasharray:1,2"/>
    <g id="g2" transform="scale(0.7)"><use xlink:href="#g1" x="0.3" transform="scale(1.1)"/><use xlink:href="#t"/>
    <use xlink:href="#two"/></g><g id="two" opacity="0.5" style="filter:url(#m)"><use xlink:href="#i"/><use xlink:href="#p" y="3.3"/></g></g>
</svg>)svg";

TEST(SvgRoundTrip, ChangedFilesComeBackWhole) {
    for (unsigned seed = 1; seed <= 300 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::unique_ptr<doc::Document> document = open(kBusyFile);
        Draughtsman(document.get(), seed).work(1 + static_cast<int>(seed % 30));
        expectRoundTrip(document.get(), "");
    }
}

TEST(SvgRoundTrip, WhatIsUndoneIsNotWritten) {
    const std::unique_ptr<doc::Document> document = open(kBusyFile);
    const doc::LayerId current = document->currentLayer();
    for (unsigned seed = 1; seed <= 5; ++seed) {
        document->begin();
        Draughtsman(document.get(), seed).work(20);
        document->commit("Undo", "Redo");
    }
    EXPECT_NE(writeSvg(*document), kBusyFile);
    while (document->undo()) {
    }
    document->setCurrentLayer(current);
    EXPECT_EQ(writeSvg(*document), kBusyFile);
}

}  // namespace
}  // namespace quorvel::interchange
