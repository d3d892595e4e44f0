// Dimensions on drawings that other programs made, and snaps to them. What is expected is worked out here from the
// numbers in their files.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "tests/scripts/real_drawings.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

struct Style {
    int type = 0;
    double size = 9, angle = 20;  // of the arrow; degrees
    double gap = 6, past = 4;     // of extension lines: off the point, past the dimension line
    double above = 3;             // text
    double limit = 30, lead = 11;

    std::string settings() const {
        std::ostringstream out;
        out << "set flArType " << type << "\nset flArSize" << type + 1 << ' ' << size << "\nset flArAngle " << angle
            << "\nset flScOfst " << gap << "\nset flArLead " << past << "\nset flScLead " << above << "\nset flOsLimt "
            << limit << "\nset flOsLead " << lead << '\n';
        return out.str();
    }
};

struct Piece {
    std::vector<Point> points;
    bool filled = false, closed = false;
    std::string text = {};  // of a text: then the first point is its place and the second where it runs to
};

// What a row of measured points with their feet on the dimension line must be drawn as, the lowest piece first.
std::vector<Piece> linear(const std::vector<Point>& measured, const std::vector<Point>& feet,
                          const std::vector<std::string>& texts, const Style& style) {
    std::vector<Piece> pieces;
    Point start = feet.front(), end = feet.back();
    for (std::size_t i = 0; i + 1 < feet.size(); ++i) {
        const Point a = feet[i], b = feet[i + 1], along = unit(b - a);
        const bool outside = style.type < 2 && length(b - a) < style.limit;
        if (outside && i == 0) start = a - style.lead * along;
        if (outside && i + 2 == feet.size()) end = b + style.lead * along;
        for (std::size_t side = i == 0 ? 0 : 1; side < 2; ++side) {
            const Point from = measured[i + side], foot = feet[i + side], out = unit(foot - from);
            pieces.push_back({{from + std::min(style.gap, length(foot - from)) * out, foot + style.past * out}});
        }
        for (const auto& [tip, into] : {std::pair{a, along}, {b, -1 * along}}) {
            if (style.type == 3) {
                const double r = style.size / 2;
                pieces.push_back(
                    {{tip + Point{r, 0}, tip + Point{0, r}, tip - Point{r, 0}, tip - Point{0, r}}, true, true});
                continue;
            }
            const Point trail = outside ? -1 * into : into;
            const double wing = style.type == 2 ? style.size / 2 : style.size;
            const double other = style.type == 2 ? style.angle + 180 : -style.angle;
            pieces.push_back(
                {{tip + wing * turned(trail, style.angle), tip, tip + wing * turned(trail, other)}, style.type == 1});
        }
        const Point place = 0.5 * (a + b) + style.above * turned(along, 90);
        pieces.push_back({{place, place + along}, false, false, texts[i]});
    }
    pieces.push_back({{start, end}});
    return pieces;
}

void expectPieces(const std::vector<const doc::Art*>& found, const std::vector<Piece>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        SCOPED_TRACE("piece " + std::to_string(i));
        const doc::Art& art = *found[i];
        const Piece& piece = expected[i];
        ASSERT_EQ(art.text != nullptr, !piece.text.empty());
        if (art.text != nullptr) {
            const RealMatrix& matrix = art.text->matrix;
            const Point along = piece.points[1] - piece.points[0];
            EXPECT_EQ(host::toUtf8(art.text->text), piece.text);
            EXPECT_NEAR(matrix.tx, piece.points[0].h, kPlace);
            EXPECT_NEAR(matrix.ty, piece.points[0].v, kPlace);
            EXPECT_NEAR(matrix.a, along.h, 1e-5);
            EXPECT_NEAR(matrix.b, along.v, 1e-5);
            EXPECT_EQ(art.text->justification, kJustifyCenter);
            continue;
        }
        ASSERT_NE(art.path, nullptr);
        ASSERT_EQ(art.path->segments.size(), piece.points.size());
        EXPECT_EQ(art.path->closed, piece.closed);
        EXPECT_EQ(art.path->style->fillPaint != 0, piece.filled);
        EXPECT_NE(art.path->style->strokePaint, 0);
        for (std::size_t k = 0; k < piece.points.size(); ++k) {
            EXPECT_NEAR(art.path->segments[k].p.h, piece.points[k].h, kPlace) << k;
            EXPECT_NEAR(art.path->segments[k].p.v, piece.points[k].v, kPlace) << k;
        }
    }
}

bool told(const ScriptRun& run, const std::string& line) {
    return std::find(run.told().begin(), run.told().end(), line) != run.told().end();
}

TEST(RealDrawings, ComeBackByteForByteFromOpeningAndSaving) {
    const std::string one = sharedDrawing(kEndmill.file);
    if (one.empty()) GTEST_SKIP() << "../shared/drawings is not here";
    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(one).parent_path())) {
        if (entry.path().extension() != ".svg") continue;
        const std::string name = entry.path().filename().string();
        ScriptRun run("open ../shared/drawings/" + name + "\nsave out.svg\n");
        ASSERT_EQ(run.fault(), "");
        EXPECT_TRUE(readBytes("out.svg") == readBytes(entry.path().string())) << name;
        ++files;
    }
    EXPECT_GE(files, 5);
}

TEST(RealDrawings, CarryAStraightDimensionWithEachArrowInBothLanguages) {
    NEEDS_DRAWING(kEndmill);
    const Point place{450, 300};
    for (const Language& language : kLanguages) {
        for (int type = 0; type < 4; ++type) {
            SCOPED_TRACE(type);
            Style style;
            style.type = type;
            ScriptRun run(speaking(language.word, style.settings()) + kEndmill.open() + taking(language.straight) +
                          measure(kHeightTop, kHeightBottom, place));
            ASSERT_EQ(run.fault(), "");
            EXPECT_TRUE(told(run, language.straightUndo));
            // 170.59241 less 22.267499 mm
            expectPieces(run.pieces(run.dimensions().at(0)),
                         linear({kHeightTop, kHeightBottom}, {{place.h, kHeightTop.v}, {place.h, kHeightBottom.v}},
                                {"148.32"}, style));
        }
    }
}

TEST(RealDrawings, CarryASeriesOverTwoStopsWhoseLastSpanIsNarrow) {
    NEEDS_DRAWING(kEndmill);
    const Point place{180, 800};  // more above the first point than beside it: the line runs level
    Style style;
    for (const Language& language : kLanguages) {
        ScriptRun run(speaking(language.word, style.settings()) + kEndmill.open() + taking(language.straight) +
                      "track" + where(kShankLeft) + "\ndown\ndrag" + where(kShankRight) +
                      " alt\nup alt\ndown alt\nup alt\ntrack" + where(kHeightTop) + " alt\ndown alt\nup alt\ndrag" +
                      where(kUpperMark) + "\nup\ntrack" + where(place) + "\ndown\n");
        ASSERT_EQ(run.fault(), "");
        EXPECT_FALSE(told(run, "beep"));
        const std::vector<Point> measured{kShankLeft, kShankRight, kHeightTop, kUpperMark};
        std::vector<Point> feet;
        for (const Point& point : measured) feet.push_back({point.h, place.v});
        // 116.35772 - 57.313954, 131.26491 - 116.35772 and 139.35054 - 131.26491 mm; the last is 22.9 pt
        expectPieces(run.pieces(run.dimensions().at(0)), linear(measured, feet, {"59.04", "14.91", "8.09"}, style));
    }
}

TEST(RealDrawings, TurnArrowsOutwardStrictlyBelowTheLimit) {
    for (int type = 0; type < 4; ++type) {
        for (const double span : {29.9, 30.0}) {
            SCOPED_TRACE(std::to_string(type) + " " + std::to_string(span));
            Style style;
            style.type = type;
            const Point from{100, 100}, to{100 + span, 100};
            ScriptRun run(speaking("ENGLISH", style.settings()) + "set flArUnit 5\nnew 300 300\n" +
                          taking("Oblique Dimension Tool") + "track" + where(from) + "\ndown\ndrag" + where(to) +
                          "\nup\ntrack 110 150\ndown\n");
            ASSERT_EQ(run.fault(), "");
            expectPieces(run.pieces(run.dimensions().at(0)),
                         linear({from, to}, {{from.h, 150}, {to.h, 150}}, {span < 30 ? "29.9" : "30"}, style));
        }
    }
}

TEST(RealDrawings, ChangeByTheNewGroupAlone) {
    NEEDS_DRAWING(kEndmill);
    ScriptRun run(speaking("ENGLISH") + kEndmill.open() + taking("Straight Dimension Tool") +
                  measure(kHeightTop, kHeightBottom, {450, 300}) + "save out.svg\n");
    ASSERT_EQ(run.fault(), "");
    std::string text = readBytes("out.svg");
    const auto cut = [&text](const char* pattern) {
        std::smatch found;
        ASSERT_TRUE(std::regex_search(text, found, std::regex(pattern))) << pattern;
        text = found.prefix().str() + found.suffix().str();
    };
    cut(R"(\s+xmlns:quorvel="[^"]*")");
    cut(R"(\s+quorvel:quorvel_object_id="\d+")");
    const std::size_t group = text.rfind("\n  <g ", text.find("quorvel:QUORVEL_TOOLCNF"));
    const std::size_t end = text.find("</g>", group);
    ASSERT_NE(group, std::string::npos);
    ASSERT_NE(end, std::string::npos);
    text.erase(group, end + 4 - group);
    EXPECT_TRUE(text == readBytes(sharedDrawing(kEndmill.file)));
}

TEST(RealDrawings, ShowLengthsAlongPathsRoundPartsAndAngles) {
    NEEDS_DRAWING(kEndmill);
    const Point ring = kTablet.at(34, 104);
    const auto onRing = [&](double pixels, double degrees) { return ring + pixels * 0.75 * turned({1, 0}, degrees); };
    const auto pull = [](Point from, Point to) {
        return "track" + where(from) + "\ndown\ndrag" + where(to) + "\nup\n";
    };
    const Point onHeight = kEndmill.at(131.26491, 140), byBoth = kEndmill.at(110, 160), offBoth = kEndmill.at(150, 188);
    const Point onRightLine = kEndmill.at(118.43165, 170);
    struct Case {
        std::string script, text;
    };
    const Case cases[] = {
        {kEndmill.open() + taking("Curve Dimension Tool") + measure(kHeightTop, kHeightBottom, {390, 300}), "148.32"},
        // up 2 pixels and along 26: 21 pt
        {kTablet.open() + taking("Curve Dimension Tool") + measure(kTablet.at(34, 84), kTablet.at(60, 82), {40, 110}),
         "7.41"},
        {kTablet.open() + taking("Radius Tool") + pull(onRing(19.5, 40), onRing(60, 40)), "R5.16"},  // 14.625 pt
        {kTablet.open() + taking("Diameter Tool") + pull(onRing(9.5, 40), onRing(5, 30)), "ø5.03"},  // 14.25 pt
        {kEndmill.open() + taking("Angle Tool") + pull(onHeight, kWidthMiddle) + "track" + where(byBoth) + "\ndown\n",
         " 90˚"},
        {kEndmill.open() + taking("Angle Tool") + pull(onHeight, kWidthMiddle) + "track" + where(offBoth) + "\ndown\n",
         " 270˚"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.script);
        ScriptRun run(speaking("ENGLISH") + one.script);
        ASSERT_EQ(run.fault(), "");
        EXPECT_FALSE(told(run, "beep"));
        ASSERT_EQ(run.dimensions().size(), 1U);
        EXPECT_EQ(run.dimensions()[0].texts, std::vector<std::string>{one.text});
    }
    ScriptRun parallel(speaking("ENGLISH") + kEndmill.open() + taking("Angle Tool") + pull(onHeight, onRightLine) +
                       "track" + where(byBoth) + "\ndown\nexpect beep\nexpect preview 0\n");
    EXPECT_EQ(parallel.fault(), "");
    EXPECT_TRUE(parallel.dimensions().empty());
}

struct SnapCase {
    std::string open, settings;
    Point cursor, lands;
    const char* shape;
    int links;
};

void expectSnap(const SnapCase& snap, double slack) {
    SCOPED_TRACE(snap.open + where(snap.cursor));
    ScriptRun run(speaking("ENGLISH", snap.settings) + snap.open + taking("Oblique Dimension Tool") + "track" +
                  where(snap.cursor) + "\ndown\ndrag 7 7\nup\ntrack 3 11\ndown\n");
    ASSERT_EQ(run.fault(), "");
    EXPECT_EQ(run.told().at(0), snap.shape);
    const app::RecordedDimension dimension = run.dimensions().at(0);
    EXPECT_EQ(dimension.points.at(0).first, "from");
    EXPECT_NEAR(dimension.points[0].second.h, snap.lands.h, slack);  // the record has six digits
    EXPECT_NEAR(dimension.points[0].second.v, snap.lands.v, slack);
    EXPECT_EQ(std::count_if(dimension.links.begin(), dimension.links.end(),
                            [](const app::LinkedArt& link) { return link.from == "from"; }),
              snap.links);
}

TEST(RealDrawings, DrawTheCursorToWhatTheirNumbersSay) {
    NEEDS_DRAWING(kEndmill);
    const std::string crossings = std::string("open ") + QUORVEL_SOURCE_DIR + "/tests/scripts/crossing.svg\n";
    const std::string noAnchors = "set flUseFcur 0\n", centres = "set flUseFcnt 1\n";
    const Point onLine = kEndmill.at(131.26491, 100), ringCentre = kTablet.at(34, 104);
    const double ring = 19.5 * 0.75;
    const Point aslant = turned({1, 0}, 30);
    const SnapCase cases[] = {
        {kEndmill.open(), "", kHeightTop + Point{1.2, 1}, kHeightTop, "cursor 16105", 1},
        {kEndmill.open(), "", kHeightBottom + Point{-1.5, 0.4}, kHeightBottom, "cursor 16105", 1},
        {kEndmill.open(), "", onLine + Point{1.5, 0}, onLine, "cursor 16107", 1},
        {kTablet.open(), centres, ringCentre + Point{0.9, -0.8}, ringCentre, "cursor 16110", 1},
        {kTablet.open(), "", ringCentre + (ring + 1) * aslant, ringCentre + ring * aslant, "cursor 16107", 1},
        {kSheet.open(), "", kSheet.at(237, 177) + Point{0.7, 1.1}, kSheet.at(237, 177), "cursor 16106", 2},
        // circles of 50 about (150, 150) and (210, 150)
        {crossings, "", {180.7, 190.6}, {180, 190}, "cursor 16106", 2},
        {crossings, "", {179.2, 109.5}, {180, 110}, "cursor 16106", 2},
        // the level line at 180 and the first circle, and the wave that is even about (110, 40) and its rest
        {crossings, "", {110.6, 179.3}, {110, 180}, "cursor 16106", 2},
        {crossings, noAnchors, {110.4, 40.3}, {110, 40}, "cursor 16106", 2},
    };
    for (const SnapCase& snap : cases) expectSnap(snap, 0.01);
}

struct Curve {
    Point p0, p1, p2, p3;

    Point at(double t) const {
        const double u = 1 - t;
        return u * u * u * p0 + 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t * p3;
    }
};

TEST(RealDrawings, DrawTheCursorToWhereTwoCurvesCross) {
    NEEDS_DRAWING(kEndmill);
    NEEDS_DRAWING(kTutorial);
    const std::string crossingsAlone = "set flUseFcur 0\nset flUseFops 0\nset flUseFrad 0\nset flUseFcnt 0\n";
    constexpr double kSlack = 0.05;
    // General curves of path14: the outline's first, and the first of the fleck at its foot, which begins where the
    // moves of the strokes up to it add up. They meet twice, 0.26 mm apart.
    const Point begin{72.888356, 172.78619}, fleckBegin{59.841167, 171.95993};
    const Curve outline{begin, begin + Point{-6.142817, -1.36503}, begin + Point{-16.123011, 2.39642},
                        begin + Point{-20.11178, -2.13054}};
    const Curve fleck{fleckBegin, fleckBegin + Point{-3.339496, -0.33615}, fleckBegin + Point{-9.58622, 0.11474},
                      fleckBegin + Point{-2.524113, 0.11062}};
    // How far along each, found by halving both while their boxes meet.
    const std::pair<double, double> meetings[] = {{0.884462887, 0.551381723}, {0.869804768, 0.809451309}};
    for (const auto& [t, u] : meetings) {
        const Point meeting = outline.at(t);
        ASSERT_LT(length(fleck.at(u) - meeting), 1e-6);
        const Point lands = kEndmill.at(meeting.h, meeting.v);
        expectSnap(
            {kEndmill.open() + "zoom 16\n", crossingsAlone, lands + Point{0.06, -0.05}, lands, "cursor 16106", 2},
            kSlack);
    }
    // Two ellipses about one centre, sheared by one matrix, so that their crossings are those of the upright ones.
    const double a = 32.589, b = 22.827, c = 6.8571, d = 42.356;
    const double square = (1 - b * b / (d * d)) / (1 / (c * c) - b * b / (a * a * d * d));
    const double x = std::sqrt(square), y = b * std::sqrt(1 - square / (a * a));
    for (const Point& corner : {Point{x, y}, {x, -y}, {-x, y}, {-x, -y}}) {
        const Point p = Point{129.13, -36.549} + corner;
        const Point lands = kTutorial.at(0.91395 * p.h - 0.87516 * p.v + 20, 0.40583 * p.h + 0.48384 * p.v + 3235.7);
        expectSnap({kTutorial.open(), crossingsAlone, lands + Point{0.9, -0.7}, lands, "cursor 16106", 2}, kSlack);
    }
}

}  // namespace
}  // namespace quorvel::tests
