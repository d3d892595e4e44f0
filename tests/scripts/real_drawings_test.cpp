// Dimensions on drawings that other programs made. What is expected is worked out here from the numbers in their files.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "interchange/svg/svg.h"
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

}  // namespace
}  // namespace quorvel::tests
