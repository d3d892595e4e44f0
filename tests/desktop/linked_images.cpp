// Pictures that a drawing names: what is shown, and what is left out.
#include <sys/stat.h>

#include <QProcess>
#include <QToolButton>
#include <algorithm>

#include "desktop/files/image_worker.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

class LinkedImages : public testing::Test {
  protected:
    LinkedImages() {
        QDir(home_.path()).mkpath("drawing/sub");
        red_.fill(Qt::red);
        for (const char* name : {"red.png", "red.jpg", "red.webp", "sub/it is 100%.png", "../outside.png"})
            EXPECT_TRUE(red_.save(at(name))) << name;
        EXPECT_TRUE(red_.save(at("bitmap.png"), "bmp"));
        QFile::copy(at("red.png"), at("png.txt"));
        QFile::link("../outside.png", at("link.png"));
        EXPECT_EQ(mkfifo(QFile::encodeName(at("pipe.png")).constData(), 0600), 0);
        const QByteArray jpeg = bytesOf("red.jpg");
        write("half.jpg", jpeg.left(jpeg.lastIndexOf("\xff\xda") + 20));
        QImage vast(20'000, 20'000, QImage::Format_Mono);
        vast.fill(0);
        EXPECT_TRUE(vast.save(at("vast.png")));
        write("self.svg", drawingOf("self.svg"));
        write("a.svg", drawingOf("b.svg"));
        write("b.svg", drawingOf("a.svg"));
        write("1.svg", drawingOf("red.png"));
        for (int i = 2; i <= 5; ++i) write(QString::number(i) + ".svg", drawingOf(QByteArray::number(i - 1) + ".svg"));
    }
    QString at(const QString& name) const { return home_.filePath("drawing/" + name); }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray bytesOf(const QString& name) const {
        QFile file(at(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    // A page of 96 by 96 dots whose left half is red, and the image over all of it.
    static QByteArray drawingOf(const QByteArray& image) {
        return "<svg xmlns='http://www.w3.org/2000/svg' width='72pt' height='72pt' viewBox='0 0 96 96'>"
               "<rect width='48' height='96' fill='#f00'/><image href='" +
               image + "' width='96' height='96'/></svg>";
    }

    const QTemporaryDir home_;
    QImage red_{4, 4, QImage::Format_RGB32};
};

// What is no picture in the drawing's own folder is not shown, and said; what it hides stays.
TEST_F(LinkedImages, AreShownFromTheDrawingsFolderAlone) {
    const QByteArray inline64 = bytesOf("red.png").toBase64();
    const std::string leftOut = "cannot be shown and is left out",
                      outside =
                          "--allow-files " + QFileInfo(home_.path()).canonicalFilePath().toStdString() + " shows it";
    const struct {
        QByteArray image;
        std::string said;  // the end of the only warning; empty: it is shown
        QStringList options = {};
    } rows[] = {{"red.png", ""},
                {"sub/it is 100%.png", ""},
                {"sub/it%20is%20100%25.png", ""},
                {"red.webp", ""},
                {"png.txt", ""},
                {"data:image/gif;base64," + inline64, ""},
                {"4.svg", ""},
                {"5.svg", leftOut},
                {"self.svg", leftOut},
                {"a.svg", leftOut},
                {"bitmap.png", leftOut},
                {"pipe.png", leftOut},
                {"sub", leftOut},
                {"half.jpg", leftOut},
                {"vast.png", leftOut},
                {"none.png", leftOut},
                {"data:image/png;base64,AAAA", leftOut},
                {"../outside.png", outside},
                {"link.png", outside},
                {"sub/../../outside.png", outside},
                {"file:///etc/passwd", "--allow-files /etc shows it"},
                {"../outside.png", "", {"--allow-files", home_.path()}},
                {"link.png", "", {"--allow-files", "/usr", "--allow-files", home_.path()}},
                {"http://127.0.0.1:9/red.png", "nothing is fetched from a network"},
                {"//host/red.png", "nothing is fetched from a network"},
                {"file://host/red.png", "nothing is fetched from a network"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.image.left(40).toStdString());
        write("drawing.svg", drawingOf(row.image));
        QProcess program;
        program.start(QUORVEL_PROGRAM_FILE,
                      QStringList{"export", at("drawing.svg"), "-o", at("out.png"), "--dpi", "96"} + row.options);
        ASSERT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitCode(), 0);
        const std::string said = program.readAllStandardError().toStdString();
        EXPECT_EQ(said.empty(), row.said.empty()) << said;
        EXPECT_TRUE(said.empty() || said.ends_with(row.said + "\n")) << said;
        EXPECT_LE(std::ranges::count(said, '\n'), 1) << said;
        const QImage page(at("out.png"));
        const auto isRed = [&](int h) { return qRed(page.pixel(h, 48)) > 250 && qBlue(page.pixel(h, 48)) < 5; };
        EXPECT_TRUE(isRed(3));
        if (row.said.empty()) {
            EXPECT_TRUE(isRed(90));
        } else if (!row.image.endsWith(".svg")) {
            EXPECT_EQ(page.pixel(90, 48), qRgb(255, 255, 255));
            EXPECT_LT(qRed(page.pixel(72, 72)), 200) << "no cross";
        }
    }
}

TEST_F(LinkedImages, AppearInTheWindowAndOthersAfterAYes) {
    write("drawing.svg",
          "<svg xmlns='http://www.w3.org/2000/svg' width='300pt' height='100pt' viewBox='0 0 300 100'>"
          "<image href='red.png' width='100' height='100'/>"
          "<image href='../outside.png' x='200' width='100' height='100'/></svg>");
    WindowRig rig;
    const auto shows = [&](double h, QRgb color) {
        return QTest::qWaitFor([&] { return rig.canvas().shown().pixel(rig.pixel(h, 20)) == color; }, 5000);
    };
    auto* button = rig.window->findChild<QToolButton*>("showImages");
    ASSERT_TRUE(rig.window->file().open(at("drawing.svg")));
    EXPECT_TRUE(shows(50, qRgb(255, 0, 0)));
    EXPECT_TRUE(shows(230, qRgb(255, 255, 255)));
    ASSERT_TRUE(button->isVisible());
    EXPECT_EQ(button->text(), "Show 1 images from other folders");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(shows(230, qRgb(255, 0, 0)));
    EXPECT_FALSE(button->isVisible());
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    ASSERT_TRUE(rig.window->file().open(at("drawing.svg")));
    EXPECT_TRUE(shows(230, qRgb(255, 0, 0))) << "the yes is kept";
}

// A decoder that ends, gives nonsense or never ends costs the image and nothing else.
TEST_F(LinkedImages, DecoderThatFailsCostsTheImageAlone) {
    write("silent", "#!/bin/sh\nexec sleep 30\n");
    QFile::setPermissions(at("silent"), QFile::ReadOwner | QFile::ExeOwner);
    const render::ImageAccess access(at(""));
    const Result<render::ImageSource> source = render::imageSource("red.png", access);
    ASSERT_TRUE(source);
    const struct {
        QString program;
        bool isShown;
    } rows[] = {{"/bin/false", false}, {"/bin/echo", false}, {"/bin/cat", false},
                {at("silent"), false}, {at("none"), false},  {QUORVEL_DESKTOP_FILE, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.program.toStdString());
        desktop::ImageWorker worker(row.program, row.isShown ? 10'000 : 300);
        EXPECT_FALSE(worker.decode(*source, access)) << "nobody waits for it";
        worker.finish();
        const auto decoded = worker.decode(*source, access);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->image.isNull(), !row.isShown);
        if (row.isShown) {
            EXPECT_EQ(decoded->image.pixel(3, 3), qRgb(255, 0, 0));
        }
    }
}

}  // namespace
}  // namespace quorvel::tests
