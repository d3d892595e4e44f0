// Dimensions on drawings that other programs made. What is expected is worked out here from the numbers in their files:
// where the page's box puts a point, and what stands round a span.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <regex>
#include <span>
#include <sstream>

#include "interchange/svg/svg.h"
#include "tests/support/errors.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;
constexpr double kMillimetre = 72 / 25.4;

struct Point {
    double h = 0, v = 0;
};
Point operator+(Point a, Point b) { return {a.h + b.h, a.v + b.v}; }
Point operator-(Point a, Point b) { return {a.h - b.h, a.v - b.v}; }
Point operator*(double s, Point a) { return {s * a.h, s * a.v}; }
double dot(Point a, Point b) { return a.h * b.h + a.v * b.v; }
double length(Point a) { return std::hypot(a.h, a.v); }
Point unit(Point a) { return 1 / length(a) * a; }
Point turned(Point a, double degrees) {
    const double angle = degrees * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    return {c * a.h - s * a.v, s * a.h + c * a.v};
}

// Where a page puts a point of its file: the box is fitted into the page, centred.
struct Page {
    const char* file;
    double width, height;        // points
    double boxWidth, boxHeight;  // user units
    double shiftX = 0, shiftY = 0;

    double scale() const { return std::min(width / boxWidth, height / boxHeight); }
    Point at(double x, double y) const {
        const double left = (width - boxWidth * scale()) / 2, top = (height - boxHeight * scale()) / 2;
        return {left + (x + shiftX) * scale(), height - top - (y + shiftY) * scale()};
    }
    std::string open() const { return std::string("open ../shared/drawings/") + file + "\n"; }
};

const Page kEndmill{"endmill.svg", 210 * kMillimetre, 297 * kMillimetre, 210, 297.00001, 0.19510138, 82.181594};
const Page kTablet{"intuos-pro-s.svg", 240, 156, 320, 208};  // pixels of 0.75 points
const Page kSheet{"A4_Landscape_ISO7200_Pep.svg", 297 * kMillimetre, 210 * kMillimetre, 297, 210};
const Page kTutorial{"tutorial-shapes.ja.svg", 255, 255, 340, 340};  // pixels; most of it lies below the page

// Ends of the endmill's straight lines.
const Point kHeightTop = kEndmill.at(131.26491, 22.267499), kHeightBottom = kEndmill.at(131.26491, 170.59241);
const Point kShankLeft = kEndmill.at(57.313954, -48.540717), kShankRight = kEndmill.at(116.35772, -48.540717);
const Point kLeftFoot = kEndmill.at(53.656636, 194.48411), kRightFoot = kEndmill.at(118.43165, 191.92376);
const Point kUpperMark = kEndmill.at(114.72832 + 24.62222, 19.499193);
const Point kWidthMiddle = kEndmill.at(90, 179.67926);

std::string where(Point p) {
    std::ostringstream out;
    out.precision(9);
    out << ' ' << p.h << ' ' << p.v;
    return out.str();
}

// From a point to another and on to where the dimension stands, with the cursor a little off both points.
std::string measure(Point from, Point to, Point place) {
    return "track" + where(from + Point{0.6, -0.7}) + "\ndown\ndrag" + where(to + Point{-0.5, 0.8}) + "\nup\ntrack" +
           where(place) + "\ndown\n";
}

struct Language {
    const char *word, *oblique, *straight, *obliqueUndo, *straightUndo;
};
constexpr Language kLanguages[] = {
    {"ENGLISH", "Oblique Dimension Tool", "Straight Dimension Tool", "undo \"Undo Oblique Dimension Tool\"",
     "undo \"Undo Straight Dimension Tool\""},
    {"JAPANESE", "斜め寸法線ツール", "寸法線ツール", "undo \"斜め寸法線の取り消し\"", "undo \"寸法線の取り消し\""}};

std::string speaking(const char* language, const std::string& more = "") {
    return std::string("set language ") + language + "\nset flArFName \"DejaVu Sans\"\nset flScFix 2\n" + more;
}
std::string taking(const char* tool) { return std::string("tool \"") + tool + "\"\n"; }

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

constexpr double kPlace = 2e-3;  // points: files hold six to eight digits, art holds floats

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

#define NEEDS_DRAWING(page) \
    if (sharedDrawing((page).file).empty()) GTEST_SKIP() << (page).file << " is not here"

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

TEST(RealDrawings, CarryAnObliqueDimensionInBothLanguages) {
    NEEDS_DRAWING(kEndmill);
    const Style style;
    const Point place{240, 30};
    const Point across = turned(unit(kRightFoot - kLeftFoot), 90);
    const Point down = dot(place - kLeftFoot, across) * across;
    for (const Language& language : kLanguages) {
        ScriptRun run(speaking(language.word, style.settings()) + kEndmill.open() + taking(language.oblique) +
                      measure(kLeftFoot, kRightFoot, place));
        ASSERT_EQ(run.fault(), "");
        EXPECT_TRUE(told(run, language.obliqueUndo));
        ASSERT_EQ(run.dimensions().size(), 1U);
        // 64.775014 and 2.56035 mm along the axes
        expectPieces(run.pieces(run.dimensions()[0]),
                     linear({kLeftFoot, kRightFoot}, {kLeftFoot + down, kRightFoot + down}, {"64.83"}, style));
    }
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

TEST(RealDrawings, PutDimensionsOnANewLayerWhenToldTo) {
    NEEDS_DRAWING(kEndmill);
    ScriptRun run(speaking("ENGLISH", "set flOutLayer 1\nset flOutLname \"Measures\"\n") + kEndmill.open() +
                  taking("Straight Dimension Tool") + measure(kHeightTop, kHeightBottom, {450, 300}) +
                  measure(kHeightTop, kHeightBottom, {480, 300}));
    ASSERT_EQ(run.fault(), "");
    const std::vector<doc::LayerId> layers = run.document().layers();
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(run.document().layer(layers[0])->title, "Measures");
    EXPECT_EQ(run.document().currentLayer(), layers[1]);
    for (const app::RecordedDimension& dimension : run.dimensions()) EXPECT_EQ(dimension.layer, "Measures");
}

TEST(RealDrawings, StayAsTheyAreWhenTheLayerIsLocked) {
    NEEDS_DRAWING(kEndmill);
    const std::string lock = speaking("ENGLISH") + kEndmill.open() + "layer \"Layer 1\" lock\n";
    const std::string dimension = taking("Straight Dimension Tool") + measure(kHeightTop, kHeightBottom, {450, 300});
    const std::string unlock = "expect beep\nexpect preview 0\nlayer \"Layer 1\" unlock\nsave out.svg\n";
    std::string locked;
    {
        ScriptRun run(lock);
        locked = run.saved();
    }
    {
        ScriptRun run(lock + dimension);
        EXPECT_TRUE(run.saved() == locked);
    }
    ScriptRun run(lock + dimension + unlock);
    ASSERT_EQ(run.fault(), "");
    EXPECT_TRUE(readBytes("out.svg") == readBytes(sharedDrawing(kEndmill.file)));
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

std::string six(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}
std::string six(Point p) { return six(static_cast<float>(p.h)) + "," + six(static_cast<float>(p.v)); }

TEST(RealDrawings, KeepTheRecordInTagsLetterByLetter) {
    NEEDS_DRAWING(kEndmill);
    ScriptRun run(speaking("ENGLISH", "set flScaleText \"1/1, or so\"\nset flArThick 0.25\n") + kEndmill.open() +
                  taking("Straight Dimension Tool") + measure(kHeightTop, kHeightBottom, {450, 300}) +
                  taking("Oblique Dimension Tool") + "track 500 100\ndown\ndrag" + where(kHeightBottom) +
                  " alt\nup alt\ndown alt\nup alt\ntrack 510 200 alt\ndown alt\nup alt\ntrack 520 300.5\nup\ntrack 550 "
                  "150 shift\ndown\n");
    ASSERT_EQ(run.fault(), "");
    ASSERT_EQ(run.dimensions().size(), 2U);
    const doc::ArtId straight = run.dimensions()[0].group, series = run.dimensions()[1].group;
    const std::string id = run.tag(run.art("path897").id, "quorvel_object_id");
    EXPECT_TRUE(std::regex_match(id, std::regex("[1-9][0-9]{0,7}"))) << id;
    // The axis was chosen as level while the cursor stood below the first point; the points' own h then decides.
    const std::pair<const char*, std::string> first[] = {
        {"QUORVEL_TOOLCNF", "5001,0,0,0,0"},
        {"QUORVEL_CURSPOS", "450,300,32000,1"},
        {"QUORVEL_FROMPOS", "32000,2," + six(kHeightTop)},
        {"QUORVEL_TOPOS", "32000,2," + six(kHeightBottom)},
        {"QUORVEL_ENDPOS", "32000,0,450,300"},
        {"QUORVEL_TMPPOS", "450,300"},
        {"QUORVEL_SETTING_1",
         "0,1,\"1/1, or so\",2,2,0,10,30,10,10,20,2,10,0,0.25,15,0,12,\"DejaVu Sans\",0,0,5,0,0,0,1,0,0,0,0,0"},
        {"QUORVEL_SETTING_2", "(absent)"},
        {"QUORVEL_FROMCELL", id + ",0,0," + six(kHeightTop)},
        {"QUORVEL_TOCELL", id + ",1,0," + six(kHeightBottom)},
        {"QUORVEL_STOPCELL01", "(absent)"},
    };
    for (const auto& [name, value] : first) EXPECT_EQ(run.tag(straight, name), value) << name;
    const std::pair<const char*, std::string> second[] = {
        {"QUORVEL_TOOLCNF", "0,0,0,0,0"},
        {"QUORVEL_CURSPOS", "550,150,32000,0"},
        {"QUORVEL_FROMPOS", "32000,1,500,100"},
        {"QUORVEL_TOPOS", "32000,1,520,300.5"},
        {"QUORVEL_ENDPOS", "32000,0,550,150"},
        {"QUORVEL_TMPPOS", "550,150"},
        {"QUORVEL_FROMCELL", "(absent)"},
        {"QUORVEL_TOCELL", "(absent)"},
        {"QUORVEL_STOPCELL01", id + ",1,0," + six(kHeightBottom)},
        {"QUORVEL_STOPCELL02", "0,510,200"},
        {"QUORVEL_STOPCELL03", "(absent)"},
    };
    for (const auto& [name, value] : second) EXPECT_EQ(run.tag(series, name), value) << name;
}

TEST(RealDrawings, AreRebuiltFromTheRecordAsTheyWere) {
    NEEDS_DRAWING(kEndmill);
    const Style style;
    const Point place{450, 300};
    for (const char* sets : {"", "set flArType 3\nset flScLead 40\nset flScFix 0\n"}) {  // the record's settings win
        ScriptRun run(speaking("ENGLISH", style.settings()) + kEndmill.open() + taking("Straight Dimension Tool") +
                      measure(kHeightTop, kHeightBottom, place) + sets +
                      "select all\nanswer yes\naction Recalculate_Dimension_lines\nexpect no-beep\n");
        ASSERT_EQ(run.fault(), "");
        ASSERT_EQ(run.dimensions().size(), 1U);
        expectPieces(run.pieces(run.dimensions()[0]),
                     linear({kHeightTop, kHeightBottom}, {{place.h, kHeightTop.v}, {place.h, kHeightBottom.v}},
                            {"148.32"}, style));
    }
}

// The id 0 and what stands behind it go where a link is led to another art.
TEST(RealDrawings, TellACopyFromWhatWasMeasuredFirst) {
    const std::string open = std::string("open ") + QUORVEL_SOURCE_DIR + "/tests/scripts/plate.svg\n";
    const std::string start = speaking("ENGLISH") + open + taking("Oblique Dimension Tool") +
                              measure({230, 50}, {310, 110}, {260, 110}) + "copy slope twin\n";
    for (const bool copyStays : {true, false}) {
        SCOPED_TRACE(copyStays);
        const std::string away = copyStays ? "move slope 0 -40\n" : "move twin 0 180\n";
        const Point shift = copyStays ? Point{0, 0} : Point{0, 180};
        ScriptRun run(start + away + measure(Point{230, 50} + shift, Point{310, 110} + shift, Point{280, 30} + shift));
        ASSERT_EQ(run.fault(), "");
        ASSERT_EQ(run.dimensions().size(), 2U);
        const doc::ArtId old = run.dimensions()[0].group, young = run.dimensions()[1].group;
        const std::string kept = run.tag(run.art("slope").id, "quorvel_object_id");
        const std::string given = run.tag(run.art("twin").id, "quorvel_object_id");
        EXPECT_NE(kept, given);
        EXPECT_EQ(run.tag(young, "QUORVEL_FROMCELL"), given + ",0,0," + six(Point{230, 50} + shift));
        EXPECT_EQ(run.tag(young, "QUORVEL_TOCELL"), given + ",1,0," + six(Point{310, 110} + shift));
        EXPECT_EQ(run.tag(old, "QUORVEL_FROMCELL"), copyStays ? given + ",0" : kept + ",0,0,230,50");
        EXPECT_EQ(run.tag(old, "QUORVEL_TOCELL"), copyStays ? given + ",1" : kept + ",1,0,310,110");
    }
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

// Square user units of each closed stroke of an element's path data, which are straight and relative, by the shoelace
// formula.
std::vector<double> areasOf(const std::string& file, const std::string& id) {
    const std::string svg = readBytes(sharedDrawing(file));
    std::smatch data;
    EXPECT_TRUE(std::regex_search(svg, data, std::regex("id=\"" + id + "\"\\s+d=\"([mz0-9. -]+)\"")));
    const std::string strokes = data[1];
    std::vector<double> areas;
    Point at;
    std::size_t begin = 0;
    for (std::size_t end; (end = strokes.find('z', begin)) != std::string::npos; begin = end + 1) {
        const std::string one = strokes.substr(begin, end - begin);
        const Point start = at;
        Point first;
        double twice = 0;
        bool none = true;
        static const std::regex kPair("(-?[0-9]*\\.?[0-9]+)\\s*(-?[0-9]*\\.?[0-9]+)");
        for (std::sregex_iterator pair(one.begin(), one.end(), kPair), last; pair != last; ++pair) {
            const Point next = (none ? start : at) + Point{std::stod((*pair)[1]), std::stod((*pair)[2])};
            if (none)
                first = next;
            else
                twice += at.h * next.v - next.h * at.v;
            at = next;
            none = false;
        }
        twice += at.h * first.v - first.h * at.v;
        at = first;
        areas.push_back(std::abs(twice) / 2);
    }
    return areas;
}

// The selection's area leaves the hole out; a leader to what is not selected means the stroke that it points at.
TEST(RealDrawings, TellTheAreaOfAWheelLessItsHole) {
    NEEDS_DRAWING(kSheet);
    const std::vector<double> areas = areasOf(kSheet.file, "path126");  // square millimetres
    ASSERT_EQ(areas.size(), 2U);
    for (const bool selected : {true, false}) {
        ScriptRun run(speaking("ENGLISH", "set flUseTani 1\nset flArDim1ConvUnit 0\n") + kSheet.open() +
                      (selected ? "select path126\n" : "") + taking("Dimention Comment Tool") + "track" +
                      where(kSheet.at(138 + 7.7927, 192 + 3.4504)) + "\ndown\ndrag 380 80\nup\nexpect no-beep\n");
        ASSERT_EQ(run.fault(), "");
        std::ostringstream text;
        text.precision(2);
        text << '"' << std::fixed << areas[0] - (selected ? areas[1] : 0) << " mm2\"";
        EXPECT_NE(run.dump().find(text.str()), std::string::npos) << text.str();
    }
}

// Art of one kind below a parent, the lowest first.
void collect(const doc::Document& document, doc::ArtId parent, AIArtType kind, std::vector<const doc::Art*>* found) {
    for (doc::ArtId id = document.find(parent)->lastChild; id != 0; id = document.find(id)->above) {
        if (document.find(id)->kind == kind) found->push_back(document.find(id));
        collect(document, id, kind, found);
    }
}
std::vector<const doc::Art*> textsOf(const doc::Document& document) {
    std::vector<const doc::Art*> found;
    for (std::size_t i = document.layers().size(); i-- > 0;)
        collect(document, document.layer(document.layers()[i])->root, kTextFrameArt, &found);
    return found;
}

std::string scriptFile(const char* name) { return std::string(QUORVEL_SOURCE_DIR) + "/tests/scripts/" + name; }

struct Placed {
    const char* text;
    Point place;
    ATEJustification justification;
};
void expectPlaced(const doc::TextData& text, const Placed& expected) {
    SCOPED_TRACE(expected.text);
    EXPECT_EQ(host::toUtf8(text.text), expected.text);
    EXPECT_NEAR(text.matrix.tx, expected.place.h, kPlace);
    EXPECT_NEAR(text.matrix.ty, expected.place.v, kPlace);
    EXPECT_EQ(text.justification, expected.justification);
}

// What real_annotation.script promises, as it stands in the saved file above the drawing's own labels.
TEST(RealDrawings, CarryTheNotesThatTheScriptPromises) {
    NEEDS_DRAWING(kTablet);
    constexpr double kTextSize = 4.5;
    const Point ring = kTablet.at(34, 104);
    // A balloon's radius is 0.7 of the text size, and its number's base line stands 0.4 below the middle.
    const auto balloon = [](Point from, Point end) {
        return end + 0.7 * kTextSize * unit(end - from) - Point{0, 0.4 * kTextSize};
    };
    // The text begins 1 point behind its shelf's left end and stands 0.2 of its size above; the shelf is 2 points
    // longer than the text and begins at the leader, or ends there.
    const auto shelf = [](Point end, double toTheLeft = 0) { return end + Point{1 - toTheLeft, 0.2 * kTextSize}; };
    const double keys = kTextSize * (1186 + 1260 + 1212 + 1067) / 2048;  // the font's advances of k, e, y and s
    const Placed notes[] = {
        // 16 px of 25.4 / 96 mm, from 26 to 42; the line stands at 15 and its text 1 above
        {"4.23", {kTablet.at(34, 175).h, 16}, kJustifyCenter},
        // leaders from the upper end of a key's corner, from the ring, and from the lower end of another corner
        {"1", balloon(kTablet.at(42, 33), {70, 142}), kJustifyCenter},
        {"2", balloon(ring + 19.5 * 0.75 * unit(Point{38.17, 85.31} - ring), {80, 100}), kJustifyCenter},
        {"3", balloon(kTablet.at(44, 173), {80, 16}), kJustifyCenter},
        {"keys", shelf({19, 143}, keys + 2), kJustifyLeft},
        {"mode switch, four ways", shelf({80, 70}), kJustifyLeft},
        // 2 px down and 26 px along: 28 px of 25.4 / 96 mm
        {"7.41 mm", shelf({80, 52}), kJustifyLeft},
        // Four curves with handles of k = 0.55228 radii hold r2 (10 + 12 k - 3 k2) / 5: 3.14247 times the square of
        // 19.5 px or 5.159375 mm, where the circle itself holds 83.63 mm2.
        {"83.65 mm2", shelf({80, 87}), kJustifyLeft},
    };
    const std::size_t own = textsOf(*interchange::readSvgFile(sharedDrawing(kTablet.file))->document).size();
    EXPECT_EQ(own, 9U) << "labels of six keys, of the ring's two ways and of its middle";
    ScriptRun run(readBytes(scriptFile("real_annotation.script")), scriptFile("real_annotation.script"));
    ASSERT_EQ(run.fault(), "");
    const Result<interchange::SvgDrawing> saved = interchange::readSvg(run.saved());
    ASSERT_TRUE(saved) << saved.error();
    const std::vector<const doc::Art*> texts = textsOf(*saved->document);
    ASSERT_EQ(texts.size(), own + std::size(notes));
    for (std::size_t i = 0; i < std::size(notes); ++i) expectPlaced(*texts[own + i]->text, notes[i]);
    const std::vector<doc::TextRun>& runs = texts.back()->text->runs;
    ASSERT_EQ(runs.size(), 2U) << "the 2 of mm2 is small and raised";
    EXPECT_EQ(runs[1].length, 1);
    EXPECT_NEAR(runs[1].features.size, kTextSize / 2, 1e-5);
    EXPECT_NEAR(runs[1].features.baselineShift, kTextSize * 0.3, 1e-5);
}

// A box or a line of a frame: left and width as parts of the title block's width, bottom and height in rows above its
// lower edge.
struct Rule {
    double left, bottom, width, height;
};
struct Cell {
    const char* text;
    double left, width, base;
    bool centred = true;
};

// The frame of real_frame.script, from (34, 130) to (808, 538). 7 point text makes rows of 9, and the block 30 rows
// wide and 5 high; the table of three parts under its header stands on it.
TEST(RealDrawings, CarryAFrameInTheRightPlaces) {
    NEEDS_DRAWING(kSheet);
    constexpr double kRow = 9, kWidth = 270, kLeft = 808 - kWidth, kBottom = 130;
    const Rule titleRules[] = {{0, 0, 1, 5},   {0, 2, 1, 0},     {0.4, 0, 0, 5},  {0.5, 0, 0, 5}, {0, 3, 0.4, 0},
                               {0, 4, 0.4, 0}, {0.4, 1, 0.6, 0}, {0.65, 0, 0, 2}, {0.8, 0, 0, 2}};
    const Rule tableRules[] = {{0, 5, 1, 4},     {0.05, 5, 0, 4}, {0.5, 5, 0, 4}, {0.65, 5, 0, 4}, {0.7, 5, 0, 4},
                               {0.775, 5, 0, 4}, {0.85, 5, 0, 4}, {0, 6, 1, 0},   {0, 7, 1, 0},    {0, 8, 1, 0}};
    const char* const none = "     ";
    const Cell titleCells[] = {{"ISO 2768-m", 0, 0.4, 2.2, false},
                               {none, 0, 0.4, 3.2, false},
                               {"Break all edges 0.5", 0, 0.4, 4.2, false},
                               {"Drawing", 0.4, 0.1, 3.2},
                               {"Bracket for a shaft", 0.5, 0.5, 3.2},
                               {"Quorvel Works", 0, 0.4, 0.7},
                               {"Date", 0.4, 0.1, 0.2},
                               {"Scale", 0.4, 0.1, 1.2},
                               {"2026-11-23", 0.5, 0.15, 0.2},
                               {"1:2", 0.5, 0.15, 1.2},
                               {"Method of Projection", 0.65, 0.15, 0.2},
                               {"Drawing number", 0.65, 0.15, 1.2},
                               {"third angle", 0.8, 0.2, 0.2},
                               {"QV-0042", 0.8, 0.2, 1.2}};
    const char* const rows[4][7] = {{"No.", "Item", "Material", "Quantity", "Weight", "Work Schedule", "Description"},
                                    {"1", "Bracket", "S235", "1", "1.2 kg", "mill", "painted"},
                                    {"2", "Bolt M8 x 25", none, "4", none, none, none},
                                    {"3", "Washer 8", none, "4", none, none, none}};
    constexpr double kColumns[8] = {0, 0.05, 0.5, 0.65, 0.7, 0.775, 0.85, 1};
    std::vector<Cell> tableCells;
    for (int row = 0; row < 4; ++row)
        for (int i = 0; i < 7; ++i)
            tableCells.push_back(
                {rows[row][i], kColumns[i], kColumns[i + 1] - kColumns[i], 5.2 + row, row == 0 || (i != 1 && i != 6)});

    ScriptRun run(readBytes(scriptFile("real_frame.script")), scriptFile("real_frame.script"));
    ASSERT_EQ(run.fault(), "");
    ASSERT_EQ(run.dimensions().size(), 1U);
    const std::vector<const doc::Art*> parts = run.pieces(run.dimensions()[0]);
    ASSERT_EQ(parts.size(), 2U) << "the block and the table";
    const doc::Document& document = run.document();
    const auto expectRule = [&](const doc::Art& art, double left, double bottom, double width, double height) {
        const RealRect box = document.bounds(art.id);
        EXPECT_NEAR(box.left, left, 1e-3);
        EXPECT_NEAR(box.bottom, bottom, 1e-3);
        EXPECT_NEAR(box.right - box.left, width, 1e-3);
        EXPECT_NEAR(box.top - box.bottom, height, 1e-3);
    };
    const auto expectRules = [&](std::span<const doc::Art* const> lines, std::span<const Rule> rules) {
        ASSERT_EQ(lines.size(), rules.size());
        for (std::size_t i = 0; i < rules.size(); ++i) {
            SCOPED_TRACE("rule " + std::to_string(i));
            const Rule& rule = rules[i];
            expectRule(*lines[i], kLeft + rule.left * kWidth, kBottom + rule.bottom * kRow, rule.width * kWidth,
                       rule.height * kRow);
        }
    };
    const auto expectCells = [&](doc::ArtId group, std::span<const Cell> cells) {
        std::vector<const doc::Art*> texts;
        collect(document, group, kTextFrameArt, &texts);
        ASSERT_EQ(texts.size(), cells.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Cell& cell = cells[i];
            SCOPED_TRACE("cell " + std::to_string(i));
            const double width = cell.width * kWidth, left = kLeft + cell.left * kWidth;
            expectPlaced(*texts[i]->text, {cell.text,
                                           {cell.centred ? left + width / 2 : left + 2, kBottom + cell.base * kRow},
                                           cell.centred ? kJustifyCenter : kJustifyLeft});
            // It keeps its size where two points stay free on both sides, and else is shrunk until they do.
            const RealRect box = document.bounds(texts[i]->id);
            const float scale = texts[i]->text->matrix.a;
            EXPECT_EQ(texts[i]->text->matrix.d, scale);
            if (scale == 1)
                EXPECT_LE(box.right - box.left, width - 4);
            else
                EXPECT_NEAR(box.right - box.left, width - 4, 1e-2);
            EXPECT_GE(box.left, left + 2 - 1e-2);
            EXPECT_LE(box.right, left + width - 2 + 1e-2);
        }
    };
    std::vector<const doc::Art*> titleLines, tableLines;
    collect(document, parts[0]->id, kPathArt, &titleLines);
    collect(document, parts[1]->id, kPathArt, &tableLines);
    ASSERT_FALSE(titleLines.empty());
    expectRule(*titleLines[0], 34, 130, 774, 408);
    expectRules(std::span(titleLines).subspan(1), titleRules);
    expectRules(tableLines, tableRules);
    expectCells(parts[0]->id, titleCells);
    expectCells(parts[1]->id, tableCells);
}

}  // namespace
}  // namespace quorvel::tests
