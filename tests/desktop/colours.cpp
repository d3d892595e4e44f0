// Colours in every form that CSS has for them, as fills and as the stops of gradients, beside another reader.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>

#include "host/host.h"
#include "interchange/svg/svg.h"
#include "render/painter.h"
#include "tests/desktop/window_rig.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

constexpr const char* kColours[] = {"#c00",
                                    "#0a62b8",
                                    "#0a08",
                                    "#b8620a80",
                                    "teal",
                                    "rgb(10, 120, 200)",
                                    "rgb(200 30 90)",
                                    "rgb(12% 50% 80% / 60%)",
                                    "rgb(80%, 40%, 10%)",
                                    "rgba(30, 160, 60, 0.5)",
                                    "hsl(210, 80%, 40%)",
                                    "hsl(0.9turn 70% 45%)",
                                    "hsla(40, 90%, 45%, 0.6)",
                                    "currentColor"};
constexpr int kRow = 10, kSide = 4 * kRow;  // a row a colour: a fill, and a gradient by attribute, style and class

std::string drawing() {
    std::string sheet, gradients, boxes;
    int row = 0;
    for (const std::string colour : kColours) {
        const std::string number = std::to_string(row), y = std::to_string(kRow * row);
        sheet += ".s" + number + "{stop-color:" + colour + "}";
        const std::string stops[] = {"stop-color='" + colour + "'", "style='stop-color:" + colour + "'",
                                     "class='s" + number + "'"};
        for (std::size_t i = 0; i < std::size(stops); ++i) {
            const std::string id = "g" + number + "-" + std::to_string(i);
            gradients += "<linearGradient id='" + id + "'><stop " + stops[i] +
                         "/><stop offset='100%' stop-color='white' stop-opacity='50%'/></linearGradient>";
            boxes += "<rect x='" + std::to_string(kRow * (i + 1)) + "' y='" + y +
                     "' width='10' height='10' fill='url(#" + id + ")'/>";
        }
        boxes += "<rect y='" + y + "' width='10' height='10' fill='" + colour + "'/>";
        ++row;
    }
    const std::string height = std::to_string(kRow * row);
    return "<svg xmlns='http://www.w3.org/2000/svg' width='" + std::to_string(kSide) + "' height='" + height +
           "' color='#906'><style>" + sheet + "</style><defs>" + gradients + "</defs>" + boxes + "</svg>";
}

// The mean of all channels' differences, of 255, over a part of both pictures.
double meanDifference(const QImage& a, const QImage& b, const QRect& part) {
    double sum = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * part.width() * part.height());
}

TEST(Colours, FillsAndStopsLookAsAnotherReaderShowsThem) {
    if (QStandardPaths::findExecutable("rsvg-convert").isEmpty()) GTEST_SKIP() << "rsvg-convert is not installed";
    const QTemporaryDir folder;
    const std::string text = drawing();
    QFile file(folder.filePath("colours.svg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.data(), static_cast<qint64>(text.size()));
    file.close();
    const QString peer = folder.filePath("peer.png");
    ASSERT_EQ(std::system(("rsvg-convert -b white -o " + peer + ' ' + file.fileName()).toStdString().c_str()), 0);
    const QImage theirs = QImage(peer).convertToFormat(QImage::Format_RGB32);

    const host::Host measuring;
    const Result<interchange::SvgDrawing> read = interchange::readSvg(text);
    ASSERT_TRUE(read) << read.error();
    QImage ours(theirs.size(), QImage::Format_RGB32);
    ours.fill(Qt::white);
    {
        QPainter painter(&ours);
        const double scale = ours.height() / double(read->document->height());
        render::DocumentPainter(*read->document, {})
            .paint(&painter, QTransform(scale, 0, 0, -scale, 0, ours.height()), ours.rect(), {});
    }
    if (const QByteArray keep = qgetenv("QUORVEL_KEEP_PICTURES"); !keep.isEmpty()) {
        ours.save(QString::fromLocal8Bit(keep) + "/ours.png");
        theirs.save(QString::fromLocal8Bit(keep) + "/theirs.png");
    }
    int row = 0;
    for (const char* colour : kColours) {
        EXPECT_LT(meanDifference(ours, theirs, QRect(0, kRow * row, kSide, kRow)), 1) << colour;
        ++row;
    }
}

}  // namespace
}  // namespace quorvel::tests
