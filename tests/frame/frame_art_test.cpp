// The art of a drawing frame against tables worked out by hand: a text size of 12 gives rows of 14 points, a title
// block of 420 or 210 by 70, and a frame dragged from (100, 50) to (700, 450) puts the block's corner at 280 or 490.
#include "plugin/frame/frame_art.h"

#include <cmath>
#include <regex>

#include "fonts/fonts.h"
#include "interchange/svg/svg.h"
#include "tests/support/drawing_hand.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

using doc::Art;
using doc::ArtId;

constexpr float kNear = 2e-4F;
constexpr char kBottomTool[] = "Schedule Tool [bottom]", kTopTool[] = "Schedule Tool [top + bottom]";
constexpr char kJapaneseTool[] = "図面枠ツール [下に部品]", kJapaneseTopTool[] = "図面枠ツール [上に部品]";

struct Line {
    float left, bottom, width, height;
    float stroke;
    bool rectangle;
};
struct Cell {
    const char* text;
    float h, v;  // where the text's anchor stands
    float width;
    bool centred;
};

// The title block ends at 700, stands at 50 and has five rows of 14. Its columns begin at these parts of its width; in
// the narrow one the third label has a tenth less to stand in.
struct Block {
    float width, third;
    float at(float part) const { return 700 - width + part * width; }
};
constexpr Block kNarrow = {210, 0.7F}, kWide = {420, 0.65F};
const Block& BlockOf(int type) { return type == 0 ? kNarrow : kWide; }

std::vector<Line> BlockLines(const Block& b) {
    const float left = b.at(0), width = b.width;
    return {{100, 50, 600, 400, 0.5F, true},           {left, 50, width, 70, 0.5F, true},
            {left, 78, width, 0, 0.5F, false},         {b.at(0.4F), 50, 0, 70, 0.5F, false},
            {b.at(0.5F), 50, 0, 70, 0.1F, false},      {left, 92, 0.4F * width, 0, 0.1F, false},
            {left, 106, 0.4F * width, 0, 0.1F, false}, {b.at(0.4F), 64, 0.6F * width, 0, 0.1F, false},
            {b.at(b.third), 50, 0, 28, 0.5F, false},   {b.at(0.8F), 50, 0, 28, 0.1F, false}};
}
std::vector<Cell> BlockCells(const Block& b, bool english) {
    const auto cell = [&](const char* text, float from, float to, float base) {
        return Cell{text, b.at((from + to) / 2), base, (to - from) * b.width, true};
    };
    const auto note = [&](const char* text, float base) {
        return Cell{text, b.at(0) + 2, base, 0.4F * b.width, false};
    };
    return {note("c3", 80.8F),
            note("c2", 94.8F),
            note("c1", 108.8F),
            cell(english ? "Drawing" : "図　名", 0.4F, 0.5F, 94.8F),
            cell("title", 0.5F, 1, 94.8F),
            cell("corp", 0, 0.4F, 59.8F),
            cell(english ? "Date" : "日　付", 0.4F, 0.5F, 52.8F),
            cell(english ? "Scale" : "尺　度", 0.4F, 0.5F, 66.8F),
            cell("date", 0.5F, b.third, 52.8F),
            cell("scale", 0.5F, b.third, 66.8F),
            cell(english ? "Method of Projection" : "投影法", b.third, 0.8F, 52.8F),
            cell(english ? "Drawing number" : "図　番", b.third, 0.8F, 66.8F),
            cell("type", 0.8F, 1, 52.8F),
            cell("pat", 0.8F, 1, 66.8F)};
}

constexpr int kParts = 3;
struct Part {
    const char *name, *source, *quantity, *weight, *progress, *news;
};
const Part kPartRows[kParts] = {{"Bracket", "SS400", "4", "1.2", "cut", "see 2"},
                                {"", "", "", "", "", ""},
                                {"Bolt", "A2", "16", "0.3", "buy", "M8"}};

// Where the columns of the parts table begin, as parts of the block's width.
constexpr float kColumns[] = {0, 0.05F, 0.5F, 0.65F, 0.7F, 0.775F, 0.85F, 1};

// The header and three rows, on the block's top or hanging from the frame's.
struct TablePlace {
    float edge, header, step;  // header: of its base line
};
constexpr TablePlace kOnBlock = {120, 122.8F, 14}, kFromTop = {450, 438.8F, -14};

// The rectangle and the six verticals, then one line for each row.
std::vector<Line> TableLines(const Block& block, const TablePlace& place) {
    std::vector<Line> lines = {{block.at(0), place.edge, block.width, 4 * place.step, 0.5F, true}};
    for (int i = 1; i < 7; ++i) lines.push_back({block.at(kColumns[i]), place.edge, 0, 4 * place.step, 0.1F, false});
    for (int row = 1; row <= kParts; ++row)
        lines.push_back({block.at(0), place.edge + float(row) * place.step, block.width, 0, 0.1F, false});
    return lines;
}
// Seven headers, then seven cells for each row; the item and the description begin two points from the left.
std::vector<Cell> TableCells(const Block& block, const TablePlace& place, bool english) {
    const char* const headers[][2] = {{"品番", "No."},        {"名　　称", "Item"}, {"材質", "Material"},
                                      {"個数", "Quantity"},   {"重量", "Weight"},   {"工程", "Work Schedule"},
                                      {"記事", "Description"}};
    const char* const numbers[kParts] = {"1", "2", "3"};
    std::vector<Cell> cells;
    const auto add = [&](const char* text, int i, float base, bool centred) {
        const float left = block.at(kColumns[i]), right = block.at(kColumns[i + 1]);
        cells.push_back({text, centred ? (left + right) / 2 : left + 2, base, right - left, centred});
    };
    for (int i = 0; i < 7; ++i) add(headers[i][english], i, place.header, true);
    for (int row = 0; row < kParts; ++row) {
        const Part& part = kPartRows[row];
        const char* const texts[] = {numbers[row], part.name,     part.source, part.quantity,
                                     part.weight,  part.progress, part.news};
        for (int i = 0; i < 7; ++i)
            add(texts[i][0] == '\0' ? "     " : texts[i], i, place.header + float(row + 1) * place.step,
                i != 1 && i != 6);
    }
    return cells;
}

void ExpectLine(const Art& art, const Line& line) {
    ASSERT_EQ(art.kind, kPathArt);
    const auto& segments = art.path->segments;
    std::vector<RealPoint> corners = {{line.left, line.bottom}, {line.left + line.width, line.bottom + line.height}};
    if (line.rectangle) {
        corners.insert(corners.begin() + 1, {line.left + line.width, line.bottom});
        corners.push_back({line.left, line.bottom + line.height});
    }
    ASSERT_EQ(segments.size(), corners.size());
    EXPECT_EQ(art.path->closed, line.rectangle);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const PathSegment& s = segments[i];
        EXPECT_NEAR(s.p.h, corners[i].h, kNear);
        EXPECT_NEAR(s.p.v, corners[i].v, kNear);
        EXPECT_TRUE(s.in.h == s.p.h && s.in.v == s.p.v && s.out.h == s.p.h && s.out.v == s.p.v && s.corner != 0);
    }
    const AIPathStyle& style = *art.path->style;
    EXPECT_TRUE(style.fillPaint == 0 && style.strokePaint != 0);
    EXPECT_TRUE(style.stroke.kind == kGrayPaint && style.stroke.gray == 1 && style.fill.gray == 1);
    EXPECT_EQ(style.strokeWidth, line.stroke);
    EXPECT_EQ(style.miterLimit, 4.0F);
}

float AdvanceAt(float size, const std::u16string& text) {
    float sum = 0;
    for (const char16_t unit : text) sum += fonts::characterWidth(fonts::fonts().front(), unit);
    return sum * size;
}

void ExpectCell(const Art& art, const Cell& cell) {
    ASSERT_EQ(art.kind, kTextFrameArt);
    const doc::TextData& text = *art.text;
    EXPECT_EQ(TextOf(art), cell.text);
    EXPECT_NEAR(text.matrix.tx, cell.h, kNear) << cell.text;
    EXPECT_NEAR(text.matrix.ty, cell.v, kNear) << cell.text;
    const float k = std::min(1.0F, (cell.width - 4) / AdvanceAt(12, text.text));
    EXPECT_NEAR(text.matrix.a, k, 1e-3F) << cell.text;
    EXPECT_NEAR(text.matrix.d, k, 1e-3F) << cell.text;
    EXPECT_TRUE(text.matrix.b == 0 && text.matrix.c == 0);
    EXPECT_EQ(text.justification, cell.centred ? kJustifyCenter : kJustifyLeft) << cell.text;
    ASSERT_EQ(text.runs.size(), 1U);
    const doc::CharFeatures& f = text.runs[0].features;
    EXPECT_EQ(f.font, fonts::fonts().front().fullName);
    EXPECT_TRUE(f.size == 12 && f.horizontalScale == 1 && f.verticalScale == 1 && f.miterLimit == 4);
    EXPECT_TRUE(f.fillOn && !f.strokeOn && f.fill.kind == kGrayPaint && f.fill.gray == 1);
}

void SetText(char* field, const char* text) { std::snprintf(field, 32, "%s", text); }

struct FrameArt : testing::Test {
    void begin(const char* language, std::int16_t type) {
        hand = std::make_unique<DrawingHand>(DrawingHand::speaking(language));
        tool = std::string(language) == "JAPANESE" ? kJapaneseTool : kBottomTool;
        PrefsRecord& p = hand->prefs();
        p.flZwkDrawType = type;
        const std::pair<char*, const char*> texts[] = {
            {p.flZwkTitle, "title"}, {p.flZwkCorp, "corp"}, {p.flZwkDate, "date"},
            {p.flZwkScale, "scale"}, {p.flZwkType, "type"}, {p.flZwkPatNo, "pat"},
            {p.flZwkComm1, "c1"},    {p.flZwkComm2, "c2"},  {p.flZwkComm3, "c3"}};
        for (const auto& [field, text] : texts) SetText(field, text);
        for (int i = 0; i < kParts; ++i) {
            const Part& part = kPartRows[i];
            ZwkPartRow& row = p.flZwkParts[i];
            const std::pair<char*, const char*> parts[] = {{row.Name, part.name},         {row.Source, part.source},
                                                           {row.Quantity, part.quantity}, {row.Weight, part.weight},
                                                           {row.Progress, part.progress}, {row.News, part.news}};
            for (const auto& [field, text] : parts) SetText(field, text);
        }
    }
    const Art* draw(RealPoint from = {100, 50}, RealPoint to = {700, 450}) {
        hand->take(tool.c_str());
        hand->drag(from, to);
        return hand->newest();
    }
    // Lines first, then cells: the order in the title block.
    void expectBlock(const Art* frame, int type) {
        const std::vector<Line> lines = BlockLines(BlockOf(type));
        const std::vector<Cell> cells = BlockCells(BlockOf(type), type == 2);
        const std::vector<const Art*> pieces = hand->piecesOf(hand->piecesOf(frame->id).at(0)->id);
        ASSERT_EQ(pieces.size(), lines.size() + cells.size());
        for (std::size_t i = 0; i < lines.size(); ++i) ExpectLine(*pieces[i], lines[i]);
        for (std::size_t i = 0; i < cells.size(); ++i) ExpectCell(*pieces[lines.size() + i], cells[i]);
    }
    std::vector<const Art*> table(const Art* frame) { return hand->piecesOf(hand->piecesOf(frame->id).at(1)->id); }
    // The rectangle, six verticals and seven headers, then each row's line and its seven cells.
    void expectTable(const Art* frame, int type, const TablePlace& place) {
        ASSERT_EQ(hand->piecesOf(frame->id).size(), 2U);
        const std::vector<const Art*> pieces = table(frame);
        const std::vector<Line> lines = TableLines(BlockOf(type), place);
        const std::vector<Cell> cells = TableCells(BlockOf(type), place, type == 2);
        ASSERT_EQ(pieces.size(), lines.size() + cells.size());
        for (int i = 0; i < 7; ++i) ExpectLine(*pieces[i], lines[i]);
        for (int i = 0; i < 7; ++i) ExpectCell(*pieces[7 + i], cells[i]);
        for (int row = 0; row < kParts; ++row) {
            ExpectLine(*pieces[14 + 8 * row], lines[7 + row]);
            for (int i = 0; i < 7; ++i) ExpectCell(*pieces[15 + 8 * row + i], cells[7 + 7 * row + i]);
        }
    }

    std::string tool;
    std::unique_ptr<DrawingHand> hand;
};

TEST_F(FrameArt, EachTypeHasItsLinesAndCells) {
    begin("JAPANESE", 0);
    expectBlock(draw(), 0);
    EXPECT_EQ(hand->piecesOf(hand->newest()->id).size(), 1U) << "no parts, no table";
    hand->prefs().flZwkDrawType = 1;
    expectBlock(draw(), 1);
    hand->prefs().flZwkDrawType = 2;
    expectBlock(draw(), 2);
    EXPECT_EQ(hand->host().lastUndoName(), "図面枠 [下に部品]の取り消し");
}

TEST_F(FrameArt, OnlyJapaneseHasTheJapaneseTypes) {
    for (const char* language : {"ENGLISH", "KOREAN"}) {
        begin(language, 0);
        const Art* frame = draw();
        expectBlock(frame, 2);
        EXPECT_EQ(hand->prefs().flZwkDrawType, 2);
        EXPECT_TRUE(hand->tag(frame->id, "QUORVEL_ZWK_SETTING_1").starts_with("2,"));
        hand.reset();
    }
}

TEST_F(FrameArt, TheTableStandsOnTheBlockOrHangsFromTheTop) {
    const struct {
        const char *language, *bottom, *top;
        std::int16_t type;
    } rows[] = {{"JAPANESE", kJapaneseTool, kJapaneseTopTool, 0},
                {"JAPANESE", kJapaneseTool, kJapaneseTopTool, 1},
                {"JAPANESE", kJapaneseTool, kJapaneseTopTool, 2},
                {"ENGLISH", kBottomTool, kTopTool, 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.language << " " << row.type);
        begin(row.language, row.type);
        hand->prefs().flZwkNumOfParts = kParts;
        for (const bool top : {false, true}) {
            SCOPED_TRACE(top ? "top" : "bottom");
            tool = top ? row.top : row.bottom;
            const Art* frame = draw();
            expectBlock(frame, row.type);
            expectTable(frame, row.type, top ? kFromTop : kOnBlock);
        }
        hand.reset();
    }
}

TEST_F(FrameArt, CornersComeInAnyOrder) {
    begin("ENGLISH", 2);
    hand->prefs().flZwkNumOfParts = kParts;
    for (const char* title : {kBottomTool, kTopTool}) {
        tool = title;
        for (const auto& [from, to] : {std::pair<RealPoint, RealPoint>{{700, 450}, {100, 50}},
                                       {{100, 450}, {700, 50}},
                                       {{700, 50}, {100, 450}}}) {
            const Art* frame = draw(from, to);
            expectBlock(frame, 2);
            expectTable(frame, 2, title == kBottomTool ? kOnBlock : kFromTop);
        }
    }
}

TEST_F(FrameArt, TheCountIsHeldToTheRowsWhereItIsDrawn) {
    begin("ENGLISH", 2);
    hand->prefs().flZwkNumOfParts = 150;
    const Art* frame = draw();
    EXPECT_EQ(table(frame).size(), 14U + 100 * 8);
    ExpectLine(*table(frame)[0], {280, 120, 420, 14 * 101, 0.5F, true});
    EXPECT_EQ(TextOf(*table(frame)[14 + 99 * 8 + 1]), "100");
    EXPECT_TRUE(hand->tag(frame->id, "QUORVEL_ZWK_SETTING_1").ends_with(",150")) << "what was typed is kept";
    EXPECT_EQ(hand->prefs().flZwkNumOfParts, 150);
    hand->prefs().flZwkNumOfParts = -3;
    frame = draw();
    ASSERT_EQ(table(frame).size(), 14U) << "rectangle, verticals and header alone";
    ExpectLine(*table(frame)[0], {280, 120, 420, -28, 0.5F, true});
    EXPECT_EQ(TextOf(*table(frame)[7]), "No.");
}

TEST_F(FrameArt, AShrunkTextIsShrunkInTheFileToo) {
    begin("ENGLISH", 2);
    std::snprintf(hand->prefs().flZwkTitle, sizeof hand->prefs().flZwkTitle, "%s", std::string(50, 'W').c_str());
    const Art& drawn = *hand->piecesOf(hand->piecesOf(draw()->id).at(0)->id).at(14);
    const doc::TextData& title = *drawn.text;
    const RealRect bounds = hand->document().bounds(drawn.id);
    EXPECT_NEAR(bounds.right - bounds.left, 206, 0.05);  // half of 420, two points free on each side
    EXPECT_NEAR((bounds.right + bounds.left) / 2, 595, 0.05);
    EXPECT_EQ(title.matrix.a, title.matrix.d);
    const std::string saved = interchange::writeSvg(hand->document());
    // As a program shows it that knows nothing of our own attributes.
    const std::string plain = std::regex_replace(saved, std::regex(" quorvel:text-exact=\"[^\"]*\""), "");
    ASSERT_NE(plain, saved);
    const Result<interchange::SvgDrawing> read = interchange::readSvg(plain);
    ASSERT_TRUE(read) << read.error();
    const doc::Document& document = *read->document;
    const doc::ArtId root = document.layer(document.currentLayer())->root;
    const Art* text =
        document.find(document.find(document.find(document.find(root)->firstChild)->lastChild)->lastChild);
    for (int i = 0; i < 14; ++i) text = document.find(text->above);
    ASSERT_EQ(TextOf(*text), std::string(50, 'W'));
    EXPECT_NEAR(text->text->runs[0].features.size * text->text->matrix.a, 12 * title.matrix.a, 1e-3);
    EXPECT_NEAR(text->text->matrix.tx, 595, kNear);
}

TEST_F(FrameArt, ACellTooNarrowForItsMarginTurnsItsText) {
    begin("JAPANESE", 0);
    hand->prefs().flZwkNumOfParts = 1;
    hand->prefs().flArFSize = 2;  // rows of 4, a block of 60: the number's column is 3 wide
    const std::vector<const Art*> pieces = table(draw());
    EXPECT_LT(pieces.at(15)->text->matrix.a, 0);
    EXPECT_NEAR(pieces.at(15)->text->matrix.tx, 700 - 60 + 1.5F, kNear);
}

TEST_F(FrameArt, TheFrameIsDrawnWhereItCanBe) {
    begin("ENGLISH", 2);
    doc::Document& document = hand->document();
    const std::size_t before = document.artCount();
    hand->take(kBottomTool);
    int beeps = hand->spy->beeps();
    hand->click({300, 300});
    EXPECT_EQ(hand->spy->beeps(), ++beeps) << "equal corners";
    for (const bool locked : {true, false}) {
        hand->host().edit("Layer", [&](doc::Document& d) {
            return locked ? d.setLayerEditable(d.currentLayer(), false) : d.setLayerVisible(d.currentLayer(), false);
        });
        hand->drag({100, 50}, {700, 450});
        EXPECT_EQ(hand->spy->beeps(), ++beeps);
        hand->host().edit("Layer", [&](doc::Document& d) {
            return d.setLayerEditable(d.currentLayer(), true) && d.setLayerVisible(d.currentLayer(), true);
        });
    }
    EXPECT_EQ(document.artCount(), before);
    hand->drag({100, 50}, {100, 450});
    EXPECT_EQ(hand->spy->beeps(), beeps) << "a frame without width is a frame";
    ExpectLine(*hand->piecesOf(hand->newestPieces().at(0)->id).at(0), {100, 50, 0, 400, 0.5F, true});
    ExpectLine(*hand->piecesOf(hand->newestPieces().at(0)->id).at(1), {-320, 50, 420, 70, 0.5F, true});
}

TEST_F(FrameArt, TheBandFollowsTheHandAndGoes) {
    begin("ENGLISH", 2);
    hand->take(kBottomTool);
    hand->press({100, 50});
    hand->send(kSelectorMouseDrag, {200, 150});
    EXPECT_EQ(hand->spy->visiblePixels(), 400U);  // a square of 100 pixels' sides
    EXPECT_EQ(hand->spy->lastCursor(), 16104);
    hand->send(kSelectorMouseDrag, {300, 250});
    EXPECT_EQ(hand->spy->visiblePixels(), 800U);
    // The grid first: (300, 300). Then Shift about the first corner: 320.156 away at 51 degrees becomes 45.
    hand->prefs().flUseGrid = 1;
    hand->prefs().flGrWidth = hand->prefs().flGrHeight = 50;
    hand->send(kSelectorMouseDrag, {312, 290}, kShiftModifier);
    hand->send(kSelectorMouseUp, {0, 0});
    EXPECT_EQ(hand->spy->visiblePixels(), 0U);
    ExpectLine(*hand->piecesOf(hand->newestPieces().at(0)->id).at(0), {100, 50, 226.3846F, 226.3846F, 0.5F, true});
}

}  // namespace
}  // namespace quorvel::tests
