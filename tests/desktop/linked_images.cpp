// Pictures that a drawing names: what is shown, and what is left out.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <vector>

#include "interchange/svg/svg.h"
#include "render/export.h"

namespace quorvel::tests {
namespace {

// Files that a drawing names are not trusted: what cannot be shown is left out, and said.
TEST(LinkedImages, AreLeftOutWhenTheyCannotBeShown) {
    const QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    const auto drawingOf = [](const char* image, const char* size) {
        return QByteArray(
                   "<svg xmlns='http://www.w3.org/2000/svg' width='72pt' height='72pt' viewBox='0 0 96 96'>"
                   "<rect width='48' height='96' fill='#f00'/><image href='") +
               image + "' " + size + "/></svg>";
    };
    const char* whole = "width='96' height='96'";
    QImage red(4, 4, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(folder.filePath("red.png")));
    ASSERT_TRUE(red.save(folder.filePath("whole.jpg")));
    QFile jpeg(folder.filePath("whole.jpg"));
    ASSERT_TRUE(jpeg.open(QIODevice::ReadOnly));
    write("cut.jpg", jpeg.readAll().left(100));
    // The header of a picture of 20,000 by 20,000 dots, with its checksum.
    write("vast.png", QByteArray::fromHex("89504e470d0a1a0a0000000d4948445200004e2000004e2008020000006c12d16e"));
    write("self.svg", drawingOf("self.svg", whole));
    write("a.svg", drawingOf("b.svg", whole));
    write("b.svg", drawingOf("a.svg", whole));
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.filePath("pipe.png")).constData(), 0600), 0);
    const struct {
        const char* image;
        std::size_t leftOut;
        QRgb right;  // the colour in the middle of the page's right half
    } rows[] = {{"red.png", 0, qRgb(255, 0, 0)},      {"pipe.png", 1, qRgb(255, 255, 255)},
                {"cut.jpg", 1, qRgb(255, 255, 255)},  {"vast.png", 1, qRgb(255, 255, 255)},
                {"none.png", 1, qRgb(255, 255, 255)}, {"self.svg", 0, qRgb(255, 255, 255)},
                {"a.svg", 0, qRgb(255, 255, 255)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.image);
        const auto read = interchange::readSvg(drawingOf(row.image, whole).toStdString());
        ASSERT_TRUE(read);
        std::vector<Error> warnings;
        const QString png = folder.filePath("out.png");
        ASSERT_TRUE(render::exportDrawing(*read->document, folder.path(), {png, 96}, &warnings));
        EXPECT_EQ(warnings.size(), row.leftOut);
        EXPECT_EQ(QImage(png).pixel(72, 48), row.right);
        EXPECT_EQ(QImage(png).pixel(24, 48), qRgb(255, 0, 0));
    }
}

}  // namespace
}  // namespace quorvel::tests
