// Draws a frame from tables: the lines and cells of the title block, and the columns of the parts table, in fractions
// of the block's width and in row heights.
#include "plugin/frame/frame_art.h"

#include <algorithm>
#include <cstdio>

#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/units.h"
#include "plugin/frame/schedule_record.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr float kHeavyStroke = 0.5F, kThinStroke = 0.1F;
constexpr double kRowMargin = 2.0;                      // of a row beyond the text size
constexpr double kWideRows = 30.0, kNarrowRows = 15.0;  // the block's width in rows
constexpr double kBlockRows = 5.0;                      // its height
constexpr std::int16_t kNarrowType = 0, kUniversalType = 2;

// What both drawings need of the frame.
struct FrameLayout {
    double minX, minY, maxY, fw, fh;
    double r;       // row height
    double W;       // width of the title block
    double x0, y0;  // its lower left corner
    bool narrow;
    bool universal;  // English labels
};

FrameLayout LayOut(const PrefsRecord& prefs, const DoublePoint& from, const DoublePoint& to) {
    FrameLayout layout{};
    layout.minX = MinOf(from.h, to.h);
    layout.minY = MinOf(from.v, to.v);
    layout.maxY = MaxOf(from.v, to.v);
    layout.fw = AbsOf(from.h - to.h);
    layout.fh = AbsOf(from.v - to.v);
    layout.r = prefs.flArFSize + kRowMargin;
    layout.narrow = prefs.flZwkDrawType == kNarrowType;
    layout.universal = prefs.flZwkDrawType >= kUniversalType;
    layout.W = (layout.narrow ? kNarrowRows : kWideRows) * layout.r;
    layout.x0 = layout.minX + layout.fw - layout.W;
    layout.y0 = layout.minY;
    return layout;
}

// --- the title block ----------------------------------------------------------------------------------------------

// x and dx in block widths, y and dy in rows; narrowX stands for x in the narrow type.
struct BlockLine {
    double x, narrowX, y, dx, dy;
    bool heavy;
};

constexpr BlockLine kBlockLines[] = {
    {0, 0, 2, 1, 0, true},    {0.4, 0.4, 0, 0, 5, true},    {0.5, 0.5, 0, 0, 5, false}, {0, 0, 3, 0.4, 0, false},
    {0, 0, 4, 0.4, 0, false}, {0.4, 0.4, 1, 0.6, 0, false}, {0.65, 0.7, 0, 0, 2, true}, {0.8, 0.8, 0, 0, 2, false},
};

// A cell's text is a setting by its key, or a label in two languages.
struct BlockCell {
    const char* key;
    const char* japanese;
    const char* english;
    double x, narrowX, width, narrowWidth;  // block widths
    double y;                               // of the base line, rows
    bool centred;
};

constexpr BlockCell kBlockCells[] = {
    {"flZwkComm3", nullptr, nullptr, 0, 0, 0.4, 0.4, 2.2, false},
    {"flZwkComm2", nullptr, nullptr, 0, 0, 0.4, 0.4, 3.2, false},
    {"flZwkComm1", nullptr, nullptr, 0, 0, 0.4, 0.4, 4.2, false},
    {nullptr, "図　名", "Drawing", 0.4, 0.4, 0.1, 0.1, 3.2, true},
    {"flZwkTitle", nullptr, nullptr, 0.5, 0.5, 0.5, 0.5, 3.2, true},
    {"flZwkCorp", nullptr, nullptr, 0, 0, 0.4, 0.4, 0.7, true},
    {nullptr, "日　付", "Date", 0.4, 0.4, 0.1, 0.1, 0.2, true},
    {nullptr, "尺　度", "Scale", 0.4, 0.4, 0.1, 0.1, 1.2, true},
    {"flZwkDate", nullptr, nullptr, 0.5, 0.5, 0.15, 0.2, 0.2, true},
    {"flZwkScale", nullptr, nullptr, 0.5, 0.5, 0.15, 0.2, 1.2, true},
    {nullptr, "投影法", "Method of Projection", 0.65, 0.7, 0.15, 0.1, 0.2, true},
    {nullptr, "図　番", "Drawing number", 0.65, 0.7, 0.15, 0.1, 1.2, true},
    {"flZwkType", nullptr, nullptr, 0.8, 0.8, 0.2, 0.2, 0.2, true},
    {"flZwkPatNo", nullptr, nullptr, 0.8, 0.8, 0.2, 0.2, 1.2, true},
};

void AddCell(AIArtHandle group, const FrameLayout& layout, double x, double width, double y, const std::string& text,
             bool centred) {
    const DoublePoint a{layout.x0 + x * layout.W, y};
    AddCellText(group, a, {a.h + width * layout.W, y}, text.c_str(), centred);
}

std::string BlockCellText(const PluginGlobals* globals, const FrameLayout& layout, const BlockCell& cell) {
    if (cell.key != nullptr) return FormatPrefsField(globals, *FindPrefsKey(cell.key));
    return ToCodePage(layout.universal ? cell.english : cell.japanese);
}

// --- the parts table ----------------------------------------------------------------------------------------------

struct TableColumn {
    double x, width;  // block widths
    const char* japanese;
    const char* english;
    int part;  // index in kPartColumns, -1 for the row's number
    bool centred;
};

constexpr TableColumn kTableColumns[] = {
    {0, 0.05, "品番", "No.", -1, true},
    {0.05, 0.45, "名　　称", "Item", 0, false},
    {0.5, 0.15, "材質", "Material", 1, true},
    {0.65, 0.05, "個数", "Quantity", 2, true},
    {0.7, 0.075, "重量", "Weight", 3, true},
    {0.775, 0.075, "工程", "Work Schedule", 4, true},
    {0.85, 0.15, "記事", "Description", 5, false},
};

std::string TableCellText(const PrefsRecord& prefs, const TableColumn& column, int row) {
    if (column.part < 0) return std::to_string(row + 1);
    return PartText(prefs.flZwkParts[row], kPartColumns[column.part]);
}

AIArtHandle NewGroupIn(AIArtHandle parent) {
    AIArtHandle group = nullptr;
    return sAIArt->NewArt(kGroupArt, kPlaceInsideOnTop, parent, &group) == kNoErr ? group : nullptr;
}

void AddFramePath(AIArtHandle group, const DoublePoint* anchors, int count, bool closed, float width) {
    PathSegment segments[4];
    std::transform(anchors, anchors + count, segments, CornerAt);
    AIPathStyle style;
    InitDimensionStyle(&style, false, true);
    style.strokeWidth = width;
    AddStyledPath(group, style, segments, count, closed);
}

}  // namespace

void AddFrameRect(AIArtHandle group, double x, double y, double w, double h) {
    const DoublePoint corners[] = {{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}};
    AddFramePath(group, corners, 4, true, kHeavyStroke);
}

void AddFrameLine(AIArtHandle group, double x, double y, double dx, double dy, bool heavy) {
    const DoublePoint ends[] = {{x, y}, {x + dx, y + dy}};
    AddFramePath(group, ends, 2, false, heavy ? kHeavyStroke : kThinStroke);
}

void AddCellText(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const char* text, bool centred) {
    TextParts parts;
    if (!BeginText(group, &parts)) return;
    sATECharFeatures->SetHorizontalScale(parts.characters, 1.0F);
    sATECharFeatures->SetVerticalScale(parts.characters, 1.0F);
    sATETextRange->SetLocalCharFeatures(parts.range, parts.characters);
    ApplyParagraph(parts, centred ? kJustifyCenter : kJustifyLeft);
    SetTextFromInternal(gGlobals, parts.range, text[0] == '\0' ? "     " : text);

    RealRect bounds;
    sAIArt->GetArtBounds(parts.frame, &bounds);
    const double width = static_cast<double>(bounds.right) - bounds.left;
    const double room = DistanceBetweenPoints(a, b) - 4.0;
    // A text without extent keeps its size.
    double k = width > 0 ? room / width : 1.0;
    if (k > 1.0) k = 1.0;
    const RealPoint place =
        ToRealPoint(centred ? DoublePoint{(a.h + b.h) / 2, (a.v + b.v) / 2} : DoublePoint{a.h + 2.0, a.v});
    RealMatrix matrix;
    sAIRealMath->AIRealMatrixSetScale(&matrix, static_cast<float>(k), static_cast<float>(k));
    sAIRealMath->AIRealMatrixConcatRotate(&matrix, static_cast<float>(AngleBetweenPoints(a, b)));
    sAIRealMath->AIRealMatrixConcatTranslate(&matrix, place.h, place.v);
    sAITransformArt->TransformArt(parts.frame, &matrix, 1.0F, kTransformObjects);
}

void DrawTitleBlock(AIArtHandle group, const DoublePoint& from, const DoublePoint& to) {
    const PluginGlobals* globals = gGlobals;
    const FrameLayout layout = LayOut(globals->prefs, from, to);
    AddFrameRect(group, layout.minX, layout.minY, layout.fw, layout.fh);
    AddFrameRect(group, layout.x0, layout.y0, layout.W, kBlockRows * layout.r);
    for (const BlockLine& line : kBlockLines) {
        const double x = layout.narrow ? line.narrowX : line.x;
        AddFrameLine(group, layout.x0 + x * layout.W, layout.y0 + line.y * layout.r, line.dx * layout.W,
                     line.dy * layout.r, line.heavy);
    }
    for (const BlockCell& cell : kBlockCells)
        AddCell(group, layout, layout.narrow ? cell.narrowX : cell.x, layout.narrow ? cell.narrowWidth : cell.width,
                layout.y0 + cell.y * layout.r, BlockCellText(globals, layout, cell), cell.centred);
}

void DrawPartsTable(AIArtHandle group, const DoublePoint& from, const DoublePoint& to, std::int16_t mode) {
    const PrefsRecord& prefs = gGlobals->prefs;
    const FrameLayout layout = LayOut(prefs, from, to);
    const bool hangs = mode != 0;
    const double step = hangs ? -layout.r : layout.r;
    const double baseLine = (hangs ? -0.8 : 0.2) * layout.r;
    const int rows = std::min<int>(prefs.flZwkNumOfParts, kPartRowCount);
    const double height = step * (rows + 1);
    double y = hangs ? layout.maxY : layout.minY + kBlockRows * layout.r;

    AddFrameRect(group, layout.x0, y, layout.W, height);
    for (const TableColumn& column : kTableColumns)
        if (column.x > 0) AddFrameLine(group, layout.x0 + column.x * layout.W, y, 0, height, false);
    for (const TableColumn& column : kTableColumns)
        AddCell(group, layout, column.x, column.width, y + baseLine,
                ToCodePage(layout.universal ? column.english : column.japanese), true);
    for (int row = 0; row < rows; ++row) {
        y += step;
        AddFrameLine(group, layout.x0, y, layout.W, 0, false);
        for (const TableColumn& column : kTableColumns)
            AddCell(group, layout, column.x, column.width, y + baseLine, TableCellText(prefs, column, row),
                    column.centred);
    }
}

std::int32_t BuildSchedule() {
    PluginGlobals* globals = gGlobals;
    PrefsRecord& prefs = globals->prefs;
    const DoublePoint from = ToDoublePoint(globals->liveState.fromPoint);
    const DoublePoint to = ToDoublePoint(globals->liveState.toPoint);
    AILayerHandle layer = nullptr;
    sAILayer->GetCurrentLayer(&layer);
    if (layer == nullptr || LayerIsBlocked(layer)) return 0;
    // Only the Japanese language has the two Japanese frame types.
    if (globals->language != kJapanese && prefs.flZwkDrawType < kUniversalType) prefs.flZwkDrawType = kUniversalType;
    AIArtHandle root = nullptr;
    sAIArt->GetFirstArtOfLayer(layer, &root);
    AIArtHandle frame = NewGroupIn(root);
    if (frame == nullptr) return 1;
    if (AIArtHandle titles = NewGroupIn(frame)) DrawTitleBlock(titles, from, to);
    if (prefs.flZwkNumOfParts != 0)
        if (AIArtHandle table = NewGroupIn(frame)) DrawPartsTable(table, from, to, prefs.flZukiwakuMode);
    WriteScheduleRecord(frame);
    return 1;
}

}  // namespace quorvel
