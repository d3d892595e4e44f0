// What the painter shows of a drawing, point by point: what is cut away by clips and masks, what shines through, and
// what goes to files. Pages are of 100 by 100 points, one pixel each.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <cstdlib>

#include "desktop/export.h"
#include "desktop/painter.h"
#include "host/host.h"
#include "host/svg.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

class Painting : public ::testing::Test {
  protected:
    void paint(const std::string& content) {
        const host::SvgReadResult read = host::readSvg(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
            "width=\"100pt\" height=\"100pt\" viewBox=\"0 0 100 100\">" +
            content + "</svg>");
        ASSERT_NE(read.document, nullptr) << read.error;
        image = QImage(100, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        desktop::DocumentPainter(*read.document, QString())
            .paint(&painter, QTransform(1, 0, 0, -1, 0, 100), image.rect(), {});
    }
    // Red, green and blue of the pixel in whose middle the point lies, as the file counts, y downward.
    std::vector<int> at(int x, int y) {
        const QRgb colour = image.pixel(x, y);
        return {qRed(colour), qGreen(colour), qBlue(colour)};
    }
    static std::vector<int> grey(int light) { return {light, light, light}; }

    host::Host measuring;
    QImage image;
    const std::vector<int> paper = grey(255), black = grey(0);
};

TEST_F(Painting, ClipsCutByTheirOutlines) {
    paint(
        "<defs><clipPath id='c'><rect width='30' height='30'/><use xlink:href='#far'/></clipPath>"
        "<clipPath id='ring'><path clip-rule='evenodd' d='M50 0H90V40H50Z M60 10H80V30H60Z'/></clipPath>"
        "<clipPath id='half' clipPathUnits='objectBoundingBox'><rect width='0.5' height='1'/></clipPath>"
        "<clipPath id='both' clip-path='url(#c)'><rect y='20' width='100' height='5'/></clipPath></defs>"
        "<rect id='far' x='0' y='40' width='10' height='10' fill='none'/>"
        "<g clip-path='url(#c)' transform='translate(5 0)'><rect width='100' height='100'/></g>"
        "<rect x='50' width='50' height='50' style='clip-path:url(#ring)'/>"
        "<rect x='20' y='60' width='40' height='10' clip-path='url(#half)'/>"
        "<rect y='80' x='70' width='9' height='9' clip-path='url(#nowhere)'/>"
        "<g fill='#f00' clip-path='url(#both)'><rect width='100' height='100'/></g>");
    EXPECT_EQ(at(34, 10), black) << "the clip moves with its user space";
    EXPECT_EQ(at(2, 10), paper);
    EXPECT_EQ(at(36, 10), paper);
    EXPECT_EQ(at(10, 45), black) << "what is used counts";
    EXPECT_EQ(at(20, 45), paper);
    EXPECT_EQ(at(55, 20), black);
    EXPECT_EQ(at(70, 20), paper) << "the ring's hole";
    EXPECT_EQ(at(39, 65), black);
    EXPECT_EQ(at(41, 65), paper) << "half of the rectangle";
    EXPECT_EQ(at(75, 85), black) << "no such clip cuts nothing";
    EXPECT_EQ(at(10, 22), (std::vector<int>{255, 0, 0}));
    EXPECT_NE(at(10, 28), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(at(50, 22), black) << "the outer clip cuts too: this is the ring";
}

TEST_F(Painting, MasksLetThroughByTheirLight) {
    paint(
        "<defs><mask id='m'><rect width='50' height='100' fill='#fff'/><rect x='50' width='50' height='100' "
        "fill='#808080'/></mask></defs><g mask='url(#m)'><rect width='100' height='50'/></g>");
    EXPECT_EQ(at(25, 25), black);
    EXPECT_NEAR(at(75, 25)[0], 127, 2) << "half light lets half through";
    EXPECT_EQ(at(25, 75), paper);
}

TEST_F(Painting, OpacityIsOfTheWhole) {
    paint(
        "<style>.faint{opacity:.5} #strong{fill-opacity:1}</style>"
        "<g class='faint'><rect width='20' height='20'/><rect x='10' width='20' height='20'/></g>"
        "<rect class='faint' x='50' y='10' width='20' height='20' stroke='#000' stroke-width='8'/>"
        "<rect id='strong' fill-opacity='.1' x='50' y='60' width='20' height='20'/>"
        "<rect style='fill-opacity:.5' x='10' y='60' width='20' height='20'/>");
    for (const int x : {5, 15, 25}) EXPECT_NEAR(at(x, 10)[0], 127, 1) << x << ": two overlap at 15";
    EXPECT_NEAR(at(60, 20)[0], 127, 1);
    EXPECT_NEAR(at(52, 20)[0], 127, 1) << "where the stroke lies on the fill";
    EXPECT_EQ(at(60, 70), black) << "a sheet is stronger than an attribute";
    EXPECT_NEAR(at(20, 70)[0], 127, 1);
}

TEST_F(Painting, GradientsRunFromEndToEnd) {
    paint(
        "<defs><linearGradient id='a'><stop offset='0' stop-color='#000'/><stop offset='1' stop-color='#fff'/>"
        "</linearGradient><linearGradient id='b' xlink:href='#a' x1='0' x2='0' y1='0' y2='50' "
        "gradientUnits='userSpaceOnUse'/></defs>"
        "<rect width='100' height='10' fill='url(#a)'/><rect y='20' width='10' height='60' fill='url(#b)'/>");
    EXPECT_LT(at(1, 5)[0], 8);
    EXPECT_NEAR(at(50, 5)[0], 128, 4);
    EXPECT_GT(at(98, 5)[0], 247);
    EXPECT_NEAR(at(5, 25)[0], 130, 5) << "25.5 of 50, in user space";
    EXPECT_EQ(at(5, 75), paper) << "padded";
}

TEST_F(Painting, TextStrokesHaveTheirWidth) {
    // A dash: its stem is a level rectangle, outlined alone.
    const std::string text =
        "<g transform='scale(2)'><text x='5' y='40' font-family='DejaVu Sans' font-size='60' fill='none' "
        "stroke='#000' stroke-width='%'>-</text></g>";
    const auto inked = [&](const char* width) {
        std::string wanted = text;
        wanted.replace(wanted.find('%'), 1, width);
        paint(wanted);
        int pixels = 0;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x) pixels += 255 - at(x, y)[0];
        return pixels / 255.0;
    };
    const double thin = inked("0.5"), thick = inked("1.5");
    EXPECT_GT(thin, 50);
    EXPECT_NEAR(thick / thin, 3, 0.2);
}

TEST_F(Painting, FilesSayWhyTheyAreNotWritten) {
    const QTemporaryDir folder;
    const auto page = [&](const char* size) {
        return host::readSvg(std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"") + size +
                             "\" height=\"72pt\"><rect width=\"10\" height=\"10\"/></svg>");
    };
    const host::SvgReadResult inch = page("72pt"), wide = page("90000pt");
    QString cause;
    const QString png = folder.filePath("a.png"), pdf = folder.filePath("a.pdf");
    ASSERT_TRUE(desktop::ExportDrawing(*inch.document, {}, {png, 300}, &cause)) << cause.toStdString();
    EXPECT_EQ(QImage(png).size(), QSize(300, 300));
    EXPECT_NEAR(QImage(png).dotsPerMeterX(), 300 / 0.0254, 1);
    ASSERT_TRUE(desktop::ExportDrawing(*inch.document, {}, {pdf}, &cause)) << cause.toStdString();
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("/MediaBox [0 0 72."));
    for (const auto& [document, target] : {std::pair(&inch, desktop::ExportTarget{folder.filePath("a.gif")}),
                                           std::pair(&inch, desktop::ExportTarget{folder.filePath("none/a.pdf")}),
                                           std::pair(&inch, desktop::ExportTarget{folder.filePath("big.png"), 1e6}),
                                           std::pair(&wide, desktop::ExportTarget{folder.filePath("wide.png")}),
                                           std::pair(&wide, desktop::ExportTarget{folder.filePath("wide.pdf")})}) {
        cause.clear();
        EXPECT_FALSE(desktop::ExportDrawing(*document->document, {}, target, &cause));
        EXPECT_FALSE(cause.isEmpty());
        EXPECT_FALSE(QFile::exists(target.path));
    }
}

// Millimetres on paper are those of the drawing, though its frame may run into the printer's margins.
TEST_F(Painting, PrintsAtTrueSizeWherePaperHoldsIt) {
    constexpr int kDots = 300;
    const QPageLayout paper(QPageSize(QPageSize::A4), QPageLayout::Landscape, {10, 10, 10, 10},
                            QPageLayout::Millimeter);
    const auto onPaper = [&](const char* size) {
        const host::SvgReadResult read =
            host::readSvg(std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + size + "/>");
        const QTransform toPaper = desktop::PrintTransform(*read.document, paper, kDots);
        const QRectF dots = toPaper.mapRect(QRectF(0, 0, read.document->width(), read.document->height()));
        const double millimetres = 25.4 / kDots;
        return QRectF(dots.topLeft() * millimetres, dots.size() * millimetres);
    };
    const QRectF same = onPaper("width=\"297mm\" height=\"210mm\"");
    EXPECT_NEAR(same.width(), 297, 0.01);
    EXPECT_NEAR(same.left(), 0, 0.3);
    EXPECT_NEAR(same.top(), 0, 0.3);
    const QRectF small = onPaper("width=\"100mm\" height=\"50mm\"");
    EXPECT_NEAR(small.width(), 100, 0.01);
    EXPECT_NEAR(small.left(), 10, 0.3);
    const QRectF larger = onPaper("width=\"420mm\" height=\"297mm\"");
    EXPECT_NEAR(larger.height(), 190, 0.3);  // the margins leave 277 by 190
    EXPECT_NEAR(larger.width() / larger.height(), 420.0 / 297, 0.001);
    EXPECT_LE(larger.bottom(), 200.3);
    EXPECT_LE(larger.right(), 287.3);
}

TEST_F(Painting, TheCommandExportsManyAndTellsWhatItCannot) {
    const QTemporaryDir folder;
    const auto run = [&](const std::string& words) {
        return std::system((std::string(QUORVEL_PROGRAM_FILE) + " export " + words + " > " +
                            folder.filePath("said").toStdString() + " 2>&1")
                               .c_str());
    };
    const auto said = [&] {
        QFile file(folder.filePath("said"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    };
    const std::string examples = QUORVEL_SOURCE_DIR "/examples/", into = " --out-dir " + folder.path().toStdString();
    EXPECT_EQ(run(examples + "bracket.svg " + examples + "day.svg --format png" + into), 0) << said().toStdString();
    EXPECT_EQ(said(), "");
    EXPECT_FALSE(QImage(folder.filePath("bracket.png")).isNull());
    EXPECT_FALSE(QImage(folder.filePath("day.png")).isNull());
    EXPECT_NE(run(examples + "bracket.svg " + examples + "day.script" + into), 0);
    EXPECT_EQ(said().count('\n'), 1) << said().toStdString();
    EXPECT_TRUE(said().contains("day.script"));
    EXPECT_TRUE(QFile::exists(folder.filePath("bracket.pdf"))) << "the others follow";
}

}  // namespace
}  // namespace quorvel::tests
