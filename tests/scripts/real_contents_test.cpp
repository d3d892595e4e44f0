// Snaps to drawings that other programs made, and what notes and frames leave on them. What is expected is worked out
// here from the numbers in their files.
#include <gtest/gtest.h>

#include <regex>
#include <span>

#include "interchange/svg/svg.h"
#include "tests/scripts/real_drawings.h"
#include "tests/support/errors.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

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

TEST(RealContents, DrawTheCursorToWhatTheirNumbersSay) {
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

TEST(RealContents, DrawTheCursorToWhereTwoCurvesCross) {
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
TEST(RealContents, TellTheAreaOfAWheelLessItsHole) {
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
TEST(RealContents, CarryTheNotesThatTheScriptPromises) {
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
TEST(RealContents, CarryAFrameInTheRightPlaces) {
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
