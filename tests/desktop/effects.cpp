// What filters make of art, point by point, and what becomes of those that are too much. Pages are of 100 by 100
// points, one pixel each.
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QUrl>

#include "host/host.h"
#include "interchange/svg/svg.h"
#include "render/export.h"
#include "render/painter.h"
#include "tests/desktop/window_rig.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

class Effects : public ::testing::Test {
  protected:
    void open(const std::string& content) {
        Result<interchange::SvgDrawing> read = interchange::readSvg(
            "<svg xmlns='http://www.w3.org/2000/svg' width='100pt' height='100pt' viewBox='0 0 100 100'>" + content +
            "</svg>");
        ASSERT_TRUE(read) << read.error();
        document = std::move(read->document);
    }
    // Gives the codes of what is left out.
    std::vector<ErrorCode> paint() {
        image = QImage(100, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        render::DocumentPainter page(*document, QString());
        page.paint(&painter, QTransform(1, 0, 0, -1, 0, 100), image.rect(), {});
        std::vector<ErrorCode> codes;
        for (const Error& warning : page.warnings()) codes.push_back(warning.code);
        return codes;
    }
    QColor at(int x, int y) const { return image.pixelColor(x, y); }

    host::Host measuring;
    std::unique_ptr<doc::Document> document;
    QImage image;
    const QColor paper = Qt::white, black = Qt::black;
};

TEST_F(Effects, FiltersActOnTheArtAsItIsNow) {
    open(
        "<style>.lime{flood-color:#0f0}</style><defs>"
        "<filter id='far' x='0' y='0' width='3' height='1'><feOffset dx='30'/></filter>"
        "<filter id='flood' x='0' y='0' width='1' height='1'><feFlood class='lime'/></filter></defs>"
        "<g filter='url(#far)' transform='translate(5 0)' opacity='.5'><path id='p' d='M5 10H25V30H5Z'/></g>"
        "<path d='M10 50H30V70H10Z' fill='none' stroke='#000' stroke-width='8' filter='url(#flood)'/>"
        "<path d='M60 50H80V70H60Z' style='filter:invert(1) opacity(50%)'/>"
        "<path d='M60 80H80V90H60Z' filter='url(#nowhere)' style='mix-blend-mode:normal'/>");
    EXPECT_TRUE(paint().empty());
    EXPECT_EQ(at(15, 20), paper) << "it was here";
    EXPECT_NEAR(at(45, 20).red(), 128, 2) << "30 units to the right, half of it shining through";
    EXPECT_EQ(at(72, 20), paper) << "the region ends there";
    EXPECT_EQ(at(20, 60), QColor(0, 255, 0));
    EXPECT_EQ(at(8, 60), paper) << "the stroke does not count for the box";
    EXPECT_EQ(at(70, 60), paper) << "black turned to white";
    // To the left and down to where nothing is: the region goes with the art's box.
    ASSERT_TRUE(document->transform(document->findByName("p"), {1, 0, 0, 1, -5, -70}, 1));
    paint();
    EXPECT_EQ(at(45, 20), paper);
    EXPECT_NEAR(at(40, 90).red(), 128, 2);
}

TEST_F(Effects, BlendingTakesInTheDrawingAndNotThePaper) {
    open(
        "<rect width='50' height='100' fill='#804020'/><g style='mix-blend-mode:screen'><rect y='10' width='100' "
        "height='10' fill='#408000'/></g>"
        "<rect y='30' width='50' height='10' fill='#408000' style='mix-blend-mode:difference'/>"
        "<g style='isolation:isolate'><rect y='50' width='50' height='10' fill='#408000' "
        "style='mix-blend-mode:multiply'/></g>"
        "<rect id='hue' y='70' width='50' height='10' fill='#408000' style='mix-blend-mode:hue'/>");
    EXPECT_EQ(paint(), std::vector{ErrorCode::kEffectLeftOut});
    const auto isNear = [&](int x, int y, QColor wanted) {
        const QColor got = at(x, y);
        EXPECT_NEAR(got.red(), wanted.red(), 1) << x << ' ' << y;
        EXPECT_NEAR(got.green(), wanted.green(), 1) << x << ' ' << y;
        EXPECT_NEAR(got.blue(), wanted.blue(), 1) << x << ' ' << y;
    };
    // Screen: a + b - a b of shares of 255.
    isNear(25, 15, QColor(160, 160, 32));
    isNear(75, 15, QColor(0x40, 0x80, 0));
    isNear(25, 35, QColor(0x40, 0x40, 0x20));
    isNear(25, 55, QColor(0x40, 0x80, 0));
}

// Each asks for minutes or for gigabytes; the art itself is seen all the same.
TEST_F(Effects, FiltersThatAreTooMuchAreLeftOutAndNamed) {
    const auto times = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i) all += text;
        return all;
    };
    std::string uses = "<rect id='u0' width='1' height='1'/>";
    for (int i = 1; i < 20; ++i) {
        const std::string inner = "<use href='#u" + std::to_string(i - 1) + "'/>";
        uses += "<g id='u" + std::to_string(i) + "'>" + inner + inner + "</g>";
    }
    const std::pair<const char*, std::string> kFilters[] = {
        {"octaves", "<feTurbulence numOctaves='100000000' baseFrequency='1'/>"},
        {"a broad brush", "<feMorphology operator='dilate' radius='5000'/>"},
        {"a large matrix", "<feConvolveMatrix order='3000' kernelMatrix='" + times(9'000'000 / 2, "1 ") + "'/>"},
        {"a long chain", times(5'000, "<feGaussianBlur stdDeviation='9'/>")},
        {"uses of uses", "<feImage href='#u19'/>"},
    };
    for (const auto& [name, primitives] : kFilters) {
        SCOPED_TRACE(name);
        open("<defs>" + uses + "<filter id='f'>" + primitives +
             "</filter></defs><path d='M10 10H90V90H10Z' filter='url(#f)'/>");
        QElapsedTimer time;
        time.start();
        EXPECT_EQ(paint(), std::vector{ErrorCode::kEffectLeftOut});
        EXPECT_LT(time.elapsed(), 10'000);
        EXPECT_EQ(at(50, 50), black);
    }
}

TEST_F(Effects, FiltersReadNoFiles) {
    QTemporaryDir folder;
    QImage secret(100, 100, QImage::Format_RGB32);
    secret.fill(Qt::red);
    ASSERT_TRUE(secret.save(folder.filePath("secret.png")));
    const std::string path = folder.filePath("secret.png").toStdString();
    for (const std::string& href : {path, "file://" + path}) {
        open("<filter id='f'><feImage href='" + href + "'/></filter><path d='M10 10H90V90H10Z' filter='url(#f)'/>");
        paint();
        EXPECT_NE(at(50, 50), QColor(Qt::red)) << href;
    }
}

TEST_F(Effects, PdfHasTheTitleAndTheGivenDate) {
    open("<title>A <![CDATA[&]]> B</title><path d='M10 10H90V90H10Z'/>");
    QTemporaryDir folder;
    const auto exported = [&](const char* zone) {
        qputenv("TZ", zone);
        EXPECT_TRUE(render::exportDrawing(*document, {}, {folder.filePath("a.pdf")}));
        QFile file(folder.filePath("a.pdf"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    qputenv("SOURCE_DATE_EPOCH", "86400");
    const QByteArray utc = exported("UTC"), east = exported("Asia/Tokyo");
    qunsetenv("SOURCE_DATE_EPOCH");
    EXPECT_TRUE(utc.contains("(D:19700102000000")) << "one day after the epoch began";
    EXPECT_TRUE(east.contains("(D:19700102000000"));
    EXPECT_EQ(utc.count("(D:"), 1);
    EXPECT_FALSE(exported("UTC").contains("(D:1970"));
    qunsetenv("TZ");
    EXPECT_TRUE(utc.contains(QByteArray("\0A\0 \0&\0 \0B", 10))) << "in UTF-16";
}

}  // namespace
}  // namespace quorvel::tests
