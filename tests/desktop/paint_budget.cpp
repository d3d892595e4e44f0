// Drawings that ask for far more work than their size lets expect.
#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "interchange/svg/svg.h"
#include "render/export.h"

namespace quorvel::tests {
namespace {

std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

// Anchors all over a square from the origin.
std::string anchors(int count, int side) {
    std::mt19937 random(7);
    std::string all;
    for (int i = 0; i < 2 * count; ++i) all += std::to_string(random() % static_cast<unsigned>(side)) + ' ';
    return all;
}

struct Row {
    const char* what;
    std::string drawing;
    const char* leftOut;  // the element that the warning names; null: all is painted
};

std::vector<Row> rows() {
    const std::string page = "<rect id='a' width='400' height='400' ";
    const auto inEachOther = [&](int level) {
        const std::string own = std::to_string(level), next = std::to_string(level + 1);
        return "<pattern id='p" + own + "' width='8' height='8' patternUnits='userSpaceOnUse'>" +
               times(300, "<rect width='8' height='8' fill='url(#p" + next + ")'/>") + "</pattern>";
    };
    const auto marked = [](int count, const std::string& content) {
        return "<marker id='m' overflow='visible'>" + content +
               "</marker><path id='a' fill='none' marker-mid='url(#m)' d='M" + anchors(count, 400) + "'/>";
    };
    const std::string crossing = "<path id='a' d='M" + anchors(30'000, 400) + "'/>";
    return {
        {"markers on 100,000 anchors", marked(100'000, "<path d='M0 0L2 1L0 2z'/>"), nullptr},
        {"large markers", marked(9'000, times(9'000, "<rect width='9' height='9'/>")), "path \"a\""},
        {"patterns in patterns", inEachOther(0) + inEachOther(1) + inEachOther(2) + page + "fill='url(#p0)'/>",
         "rect \"a\""},
        {"dashes", "<path id='a' stroke='#000' stroke-dasharray='.0001' d='M" + anchors(99, 400) + "'/>", "path \"a\""},
        {"a hatch", "<path fill='none' stroke='#000' d='" + times(900, "M0 0L400 399") + "'/>", nullptr},
        {"edges that cross", crossing, "path \"a\""},
        {"a clip path of edges that cross",
         "<clipPath id='c'>" + times(2, crossing) + "</clipPath>" + page + "clip-path='url(#c)'/>", "rect \"a\""},
        {"pictures in pictures", times(250, "<g id='a' opacity='.9'>") + page + "/><path/>" + times(250, "</g>"),
         nullptr},
        {"far coordinates", times(20, "<circle r='1e7' fill='none' stroke='#000'/>"), nullptr},
        {"a long text", "<text id='a'>" + times(900'000, "W") + "</text>", "text \"a\""},
    };
}

// Ten seconds at most, whatever is asked for, one warning, and what costs little is painted also behind it.
TEST(PaintBudget, LeavesOutWhatWouldTakeTooLong) {
    const QTemporaryDir folder;
    const QString png = folder.filePath("out.png");
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.what);
        const auto read = interchange::readSvg(
            "<svg xmlns='http://www.w3.org/2000/svg' width='400pt' height='400pt' "
            "viewBox='0 0 400 400'>" +
            row.drawing + "<rect width='9' height='9' fill='#00f'/></svg>");
        ASSERT_TRUE(read);
        std::vector<Error> warnings;
        const std::clock_t begin = std::clock();
        ASSERT_TRUE(render::exportDrawing(*read->document, {}, {png, 72}, &warnings));
        EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC);
        EXPECT_EQ(QImage(png).pixel(4, 4), qRgb(0, 0, 255));
        ASSERT_EQ(warnings.size(), row.leftOut == nullptr ? 0 : 1);
        if (row.leftOut != nullptr) {
            EXPECT_EQ(warnings[0].code, ErrorCode::kPaintingLeftOut);
            EXPECT_NE(warnings[0].arguments[1].find(row.leftOut), std::string::npos) << warnings[0].arguments[1];
        }
    }
}

}  // namespace
}  // namespace quorvel::tests
