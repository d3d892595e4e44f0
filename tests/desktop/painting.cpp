// What the painter shows of a drawing, point by point: what is cut away by clips and masks, what shines through, and
// what goes to files. Pages are of 100 by 100 points, one pixel each.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QUrl>
#include <cstdlib>

#include "host/host.h"
#include "interchange/svg/svg.h"
#include "render/export.h"
#include "render/painter.h"
#include "tests/desktop/window_rig.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

class Painting : public ::testing::Test {
  protected:
    void paint(const std::string& content) {
        const Result<interchange::SvgDrawing> read = interchange::readSvg(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
            "width=\"100pt\" height=\"100pt\" viewBox=\"0 0 100 100\">" +
            content + "</svg>");
        ASSERT_TRUE(read) << read.error();
        paint(*read->document);
    }
    void paint(const doc::Document& document) {
        image = QImage(100, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        render::DocumentPainter(document, files).paint(&painter, QTransform(1, 0, 0, -1, 0, 100), image.rect(), {});
    }
    // Red, green and blue of the pixel in whose middle the point lies, as the file counts, y downward.
    std::vector<int> at(int x, int y) {
        const QRgb colour = image.pixel(x, y);
        return {qRed(colour), qGreen(colour), qBlue(colour)};
    }
    static std::vector<int> grey(int light) { return {light, light, light}; }

    host::Host measuring;
    QString files;  // where linked pictures are
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

// What is in a definition inherits there and obeys the sheets; it shows nothing of itself, and nothing that is hidden.
TEST_F(Painting, DefinitionsAreDrawnAsTheirPlaceSays) {
    paint(
        "<style>path{marker:url(#m)} .red{fill:#f00}</style><defs>"
        "<marker id='m' markerUnits='userSpaceOnUse' markerWidth='20' markerHeight='20' refX='5' refY='5'>"
        "<path class='red' d='M0 0H10V10H0Z'/></marker>"
        "<g fill='#00f'><pattern id='p' width='10' height='10' patternUnits='userSpaceOnUse'><rect width='10' "
        "height='10'/></pattern></g>"
        "<linearGradient id='fade'><stop stop-color='#fff' stop-opacity='0'/><stop offset='1' stop-color='#000'/>"
        "</linearGradient><mask id='k'><rect width='100' height='20' fill='url(#fade)'/></mask>"
        "<clipPath id='c'><rect width='10' height='10'/><rect x='20' width='10' height='10' visibility='hidden'/>"
        "</clipPath></defs>"
        "<path d='M20 20V20' stroke='none'/><rect y='40' width='20' height='20' fill='url(#p)'/>"
        "<g mask='url(#k)'><rect width='100' height='20'/></g>"
        "<g transform='translate(50 50)' clip-path='url(#c)'><rect width='40' height='40'/></g>");
    EXPECT_EQ(at(22, 22), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(at(27, 22), paper) << "the marker's own path bears no marker of its kind";
    EXPECT_EQ(at(10, 50), (std::vector<int>{0, 0, 255})) << "inherited where the pattern is defined";
    EXPECT_NEAR(at(50, 5)[0], 191, 3) << "half as light, and half of that let through";
    EXPECT_EQ(at(55, 55), black);
    EXPECT_EQ(at(75, 55), paper);
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

// What a use element shows is drawn as where it stands, and takes what it inherits from the use element.
TEST_F(Painting, UsedArtLooksAsItsElementSays) {
    paint(
        "<defs><linearGradient id='g' gradientUnits='userSpaceOnUse' x1='0' x2='20'><stop stop-color='#000'/>"
        "<stop offset='1' stop-color='#fff'/></linearGradient><clipPath id='c'><rect width='5' height='99'/></clipPath>"
        "<rect id='faint' width='20' height='10' opacity='.5'/><rect id='plain' width='20' height='10'/>"
        "<path id='ring' fill-rule='evenodd' d='M0 0H20V20H0Z M5 5H15V15H5Z'/>"
        "<rect id='grade' width='20' height='10' fill='url(#g)'/><rect id='cut' width='20' height='10' "
        "clip-path='url(#c)'/></defs>"
        "<use xlink:href='#faint'/><use xlink:href='#plain' x='30' fill-opacity='.25'/>"
        "<use xlink:href='#ring' y='20'/><use xlink:href='#grade' x='50' y='20'/><use xlink:href='#cut' x='50' "
        "y='50'/>");
    EXPECT_NEAR(at(10, 5)[0], 127, 1);
    EXPECT_NEAR(at(40, 5)[0], 191, 1);
    EXPECT_EQ(at(2, 30), black);
    EXPECT_EQ(at(10, 30), paper) << "the ring's hole";
    EXPECT_NEAR(at(60, 25)[0], 134, 4) << "10.5 of 20 in the place of use";
    EXPECT_EQ(at(52, 55), black);
    EXPECT_EQ(at(58, 55), paper);
}

TEST_F(Painting, CopiesLookLikeTheirOriginals) {
    const Result<interchange::SvgDrawing> read = interchange::readSvg(
        "<svg xmlns='http://www.w3.org/2000/svg' width='100pt' height='100pt' viewBox='0 0 100 100'>"
        "<path id='ring' opacity='.5' fill-rule='evenodd' d='M0 0H20V20H0Z M5 5H15V15H5Z'/></svg>");
    ASSERT_TRUE(read);
    const doc::ArtId copy = read->document->duplicateArt(read->document->findByName("ring"), "copy");
    ASSERT_TRUE(read->document->transform(copy, {1, 0, 0, 1, 50, 0}, 1));
    const doc::ArtId pasted =
        read->document->insertCopy(read->document->copyOf(read->document->findByName("ring")), kPlaceAboveAll, 0);
    ASSERT_TRUE(read->document->transform(pasted, {1, 0, 0, 1, 0, -50}, 1));
    paint(*read->document);
    for (const auto& [x, y] : {std::pair(50, 0), std::pair(0, 50)}) {
        EXPECT_NEAR(at(x + 2, y + 10)[0], 127, 1);
        EXPECT_EQ(at(x + 10, y + 10), paper);
    }
}

TEST_F(Painting, LayersAreCutAndFadedAsWholes) {
    const std::string layer =
        "<g xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' "
        "inkscape:groupmode='layer' ";
    paint("<defs><clipPath id='c'><rect width='30' height='30'/></clipPath></defs>" + layer +
          "inkscape:label='a' opacity='.5'><rect y='50' width='20' height='20'/><rect x='10' y='50' width='20' "
          "height='20'/></g>" +
          layer + "inkscape:label='b' style='clip-path:url(#c)'><rect width='90' height='40'/></g>");
    for (const int x : {5, 15, 25}) EXPECT_NEAR(at(x, 60)[0], 127, 1) << x << ": two overlap at 15";
    EXPECT_EQ(at(20, 20), black);
    EXPECT_EQ(at(50, 20), paper);
}

// A wide stroke and a picture reach out of the bounds that the host knows; so may art of a group that fades as one.
TEST_F(Painting, GroupsReachAsFarAsTheirMembers) {
    QImage dots(2, 1, QImage::Format_RGB32);
    dots.setPixel(0, 0, qRgb(255, 0, 0));
    dots.setPixel(1, 0, qRgb(0, 0, 255));
    const QTemporaryDir folder;
    ASSERT_TRUE(dots.save(folder.filePath("two dots.png")));
    files = folder.path();
    paint(
        "<defs><image id='i' xlink:href='two%20dots.png' width='20' height='10'/></defs>"
        "<g><image xlink:href='two%20dots.png' width='20' height='10'/></g><use xlink:href='#i' x='40'/>"
        "<g opacity='.5'><path d='M0 70H100' stroke='#000' stroke-width='0.5'/>"
        "<path d='M50 99H60' stroke='#000' stroke-width='100'/></g>");
    const std::vector<int> red{255, 0, 0}, blue{0, 0, 255};
    EXPECT_EQ(at(2, 5), red) << "alone in a group";
    EXPECT_EQ(at(17, 5), blue);
    EXPECT_EQ(at(42, 5), red) << "through a use element";
    EXPECT_NEAR(at(55, 52)[0], 127, 1) << "47 points off the path";
    EXPECT_EQ(at(55, 48), paper);
}

TEST_F(Painting, ImagesFillTheirFramesAsTold) {
    QImage dots(2, 1, QImage::Format_RGB32);
    dots.setPixel(0, 0, qRgb(255, 0, 0));
    dots.setPixel(1, 0, qRgb(0, 0, 255));
    const QTemporaryDir folder;
    ASSERT_TRUE(dots.save(folder.filePath("d.png")));
    files = folder.path();
    const std::string link =
        "<image xlink:href='" + QUrl::fromLocalFile(folder.filePath("d.png")).toString().toStdString() + "' ";
    paint("<defs><mask id='m'><rect width='99' height='99' fill='#fff'/></mask></defs>" + link +
          "width='20' height='20' preserveAspectRatio='none'/>" + link +
          "x='30' width='20' height='20' preserveAspectRatio='xMinYMid slice'/>" + link +
          "x='60' width='20' height='20'/>" + link +
          "y='40' width='0.5in' height='0.25in' preserveAspectRatio='none'/>" + link +
          "x='60' y='40' width='10%' height='10' opacity='.5' mask='url(#m)'/>");
    const std::vector<int> red{255, 0, 0}, blue{0, 0, 255};
    EXPECT_EQ(at(2, 2), red) << "stretched";
    EXPECT_EQ(at(18, 18), blue);
    EXPECT_EQ(at(32, 2), red) << "its left half fills the frame";
    EXPECT_EQ(at(39, 18), red);
    EXPECT_EQ(at(52, 10), paper);
    EXPECT_EQ(at(62, 2), paper) << "as wide as the frame, 10 high";
    EXPECT_EQ(at(62, 10), red);
    EXPECT_EQ(at(46, 50), blue) << "48 units wide";
    EXPECT_EQ(at(2, 62), red) << "24 high";
    EXPECT_EQ(at(2, 66), paper);
    EXPECT_NEAR(at(61, 45)[1], 127, 1) << "masked and faded once";
    EXPECT_EQ(at(72, 45), paper);
}

TEST_F(Painting, GradientsHaveHardEdgesAndUnits) {
    paint(
        "<defs><linearGradient id='a'><stop offset='.5' stop-color='#f00'/><stop offset='.5' stop-color='#00f'/>"
        "</linearGradient><linearGradient id='e'><stop offset='0' stop-color='#0f0'/><stop offset='1' "
        "stop-color='#0f0'/><stop offset='1' stop-color='#f00'/></linearGradient>"
        "<linearGradient id='p' gradientUnits='userSpaceOnUse' x1='20%' x2='80%'><stop stop-color='#000'/>"
        "<stop offset='1' stop-color='#fff'/></linearGradient></defs>"
        "<rect width='100' height='10' fill='url(#a)'/><rect y='20' width='90' height='10' fill='url(#e)'/>"
        "<rect y='40' width='100' height='10' fill='url(#p)'/>");
    EXPECT_EQ(at(10, 5), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(at(48, 5), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(at(51, 5), (std::vector<int>{0, 0, 255}));
    EXPECT_EQ(at(87, 25), (std::vector<int>{0, 255, 0}));
    EXPECT_EQ(at(10, 45), black);
    EXPECT_NEAR(at(50, 45)[0], 129, 4) << "30.5 of 60";
    EXPECT_EQ(at(90, 45), paper);
}

// A marker 10 wide and 4 high, red in its first half. Its reference point is on its left edge, half-way up.
TEST_F(Painting, MarkersStandOnTheAnchors) {
    const std::string box = "<rect width='10' height='4' fill='#00f'/><rect width='5' height='4' fill='#f00'/>";
    const std::string size = "markerWidth='10' markerHeight='4' refY='2' markerUnits='userSpaceOnUse' ";
    paint("<defs><marker id='along' orient='auto' " + size + ">" + box +
          "</marker><marker id='back' "
          "orient='auto-start-reverse' " +
          size + ">" + box + "</marker><marker id='fixed' orient='90' " + size + ">" + box +
          "</marker><marker id='scaled' viewBox='0 0 20 8' refY='4' markerWidth='10' markerHeight='4'><rect width='99' "
          "height='99' fill='#0f0'/></marker><marker id='wide' overflow='visible'><rect width='9' height='9' "
          "fill='context-stroke'/></marker></defs>"
          "<path d='M20 20V40' stroke='#000' marker-start='url(#along)' marker-end='url(#back)'/>"
          "<g marker-start='url(#back)'><path d='M60 20V40'/><rect x='95' y='95' width='4' height='4'/></g>"
          "<polyline fill='none' points='10,70 20,70 20,80' style='marker-mid:url(#along)'/>"
          "<path d='M40 70V60' marker-start='url(#fixed)'/><path d='M70 70H60' stroke-width='2' "
          "marker-end='url(#scaled)'/><path d='M85 60V50' stroke='#f0f' marker-end='url(#wide)'/>");
    const std::vector<int> red{255, 0, 0}, blue{0, 0, 255}, green{0, 255, 0};
    EXPECT_EQ(at(18, 22), red) << "down from the first anchor";
    EXPECT_EQ(at(18, 28), blue);
    EXPECT_EQ(at(18, 43), red) << "on from the last one";
    EXPECT_EQ(at(21, 48), blue);
    EXPECT_EQ(at(24, 22), paper);
    EXPECT_EQ(at(61, 18), red) << "turned round at the start, inherited";
    EXPECT_EQ(at(61, 12), blue);
    EXPECT_EQ(at(61, 22), paper);
    EXPECT_EQ(at(90, 97), paper) << "a rectangle bears none";
    EXPECT_EQ(at(22, 72), red) << "half-way between right and down";
    EXPECT_EQ(at(26, 76), blue);
    EXPECT_EQ(at(12, 70), paper);
    EXPECT_EQ(at(41, 73), red) << "down, whatever the outline does";
    EXPECT_EQ(at(41, 78), blue);
    EXPECT_EQ(at(78, 73), green) << "20 by 8, twice the stroke's width";
    EXPECT_EQ(at(61, 67), green);
    EXPECT_EQ(at(81, 70), paper) << "cut at its frame";
    EXPECT_EQ(at(70, 75), paper);
    EXPECT_EQ(at(92, 57), (std::vector<int>{255, 0, 255})) << "not cut, and in the stroke's colour";
}

TEST_F(Painting, PatternsAreTiles) {
    paint(
        "<defs><pattern id='p' x='2' width='10' height='10' patternUnits='userSpaceOnUse'><rect width='5' height='10' "
        "fill='#f00'/></pattern><pattern id='q' xlink:href='#p' patternTransform='rotate(90)'/>"
        "<pattern id='b' width='.5' height='1' viewBox='0 0 2 1'><rect width='1' height='1' "
        "fill='#00f'/></pattern></defs>"
        "<rect width='100' height='20' fill='url(#p)'/><rect y='30' width='40' height='20' fill='url(#q)'/>"
        "<rect y='60' width='80' height='20' fill='url(#b)' fill-opacity='.5'/>");
    const std::vector<int> red{255, 0, 0};
    EXPECT_EQ(at(4, 10), red);
    EXPECT_EQ(at(9, 10), paper);
    EXPECT_EQ(at(94, 15), red);
    EXPECT_EQ(at(99, 15), paper);
    EXPECT_EQ(at(10, 34), red) << "bands across: from 32 to 37 down";
    EXPECT_EQ(at(30, 39), paper);
    EXPECT_NEAR(at(10, 70)[0], 127, 1);
    EXPECT_EQ(at(30, 70), paper);
    EXPECT_NEAR(at(50, 70)[0], 127, 1) << "the second half begins anew";
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
        return interchange::readSvg(std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"") + size +
                                    "\" height=\"72pt\"><rect width=\"10\" height=\"10\"/></svg>");
    };
    const Result<interchange::SvgDrawing> inch = page("72pt"), wide = page("90000pt");
    const QString png = folder.filePath("a.png"), pdf = folder.filePath("a.pdf");
    ASSERT_TRUE(render::exportDrawing(*inch->document, {}, {png, 300}));
    EXPECT_EQ(QImage(png).size(), QSize(300, 300));
    EXPECT_NEAR(QImage(png).dotsPerMeterX(), 300 / 0.0254, 1);
    ASSERT_TRUE(render::exportDrawing(*inch->document, {}, {pdf}));
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("/MediaBox [0 0 72."));
    const struct {
        const Result<interchange::SvgDrawing>& drawing;
        const char* name;
        double dotsPerInch;
        Error error;
    } rows[] = {{inch, "a.gif", 192, makeError(ErrorCode::kExportEnding)},
                {inch, "none/a.pdf", 192, makeError(ErrorCode::kSystem, {std::to_string(ENOENT)})},
                {inch, "big.png", 1e6, makeError(ErrorCode::kTooManyPixels, {"1000000", "1000000"})},
                {wide, "wide.png", 192, makeError(ErrorCode::kTooManyPixels, {"240000", "192"})},
                {wide, "wide.pdf", 192, makeError(ErrorCode::kPageTooLargeForPdf)}};
    for (const auto& row : rows) {
        const QString path = folder.filePath(row.name);
        const Status exported = render::exportDrawing(*row.drawing->document, {}, {path, row.dotsPerInch});
        ASSERT_FALSE(exported) << row.name;
        EXPECT_EQ(exported.error(), row.error);
        EXPECT_FALSE(QFile::exists(path));
    }
}

// Millimetres on paper are those of the drawing, though its frame may run into the printer's margins.
TEST_F(Painting, PrintsAtTrueSizeWherePaperHoldsIt) {
    constexpr int kDots = 300;
    const QPageLayout paper(QPageSize(QPageSize::A4), QPageLayout::Landscape, {10, 10, 10, 10},
                            QPageLayout::Millimeter);
    const auto onPaper = [&](const char* size) {
        const Result<interchange::SvgDrawing> read =
            interchange::readSvg(std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + size + "/>");
        const QTransform toPaper = render::printTransform(*read->document, paper, kDots);
        const QRectF dots = toPaper.mapRect(QRectF(0, 0, read->document->width(), read->document->height()));
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
