// What keeps the user's work when something goes wrong.
#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>

#include "desktop/drawing_file.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

void Answer(QWidget* box, QMessageBox::StandardButton button) {
    auto* message = qobject_cast<QMessageBox*>(box);
    ASSERT_NE(message, nullptr);
    ASSERT_NE(message->button(button), nullptr) << message->text().toStdString();
    QTest::mouseClick(message->button(button), Qt::LeftButton);
}

QByteArray BytesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QDir RescueFolder() { return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/rescue"); }

TEST(Safety, UnsavedChangesAreAskedFor) {
    WindowRig rig;
    const QByteArray before = BytesOf(rig.drawing());
    rig.dimensionEdge();
    EXPECT_TRUE(rig.window->isWindowModified());
    rig.inDialog([&] { rig.window->close(); }, [](QWidget* box) { Answer(box, QMessageBox::Cancel); });
    EXPECT_TRUE(rig.window->isVisible());
    rig.inDialog([&] { rig.window->close(); }, [](QWidget* box) { Answer(box, QMessageBox::Discard); });
    EXPECT_FALSE(rig.window->isVisible());
    EXPECT_EQ(BytesOf(rig.drawing()), before);
    rig.window->show();
    rig.inDialog([&] { rig.window->close(); }, [](QWidget* box) { Answer(box, QMessageBox::Save); });
    EXPECT_FALSE(rig.window->isVisible());
    EXPECT_NE(BytesOf(rig.drawing()), before);
    rig.window->show();
    EXPECT_TRUE(rig.window->close());  // nothing is left to be asked
}

TEST(Safety, CopyOfACrashedProgramIsOffered) {
    for (const QString& file : RescueFolder().entryList(QDir::Files)) RescueFolder().remove(file);
    QProcess other;
    other.start("sleep", {"60"});
    ASSERT_TRUE(other.waitForStarted());
    const QString own = RescueFolder().filePath(QString::number(QCoreApplication::applicationPid()) + ".svg");
    // As if it had been put aside by a program whose number another one has got meanwhile.
    const QString crashed = RescueFolder().filePath(QString::number(other.processId()) + ".svg");
    std::string dump;
    QString lost;
    {
        WindowRig rig;
        lost = rig.drawing();
        rig.window->file().putCopyAside();
        EXPECT_FALSE(QFile::exists(own)) << "nothing has changed yet";
        rig.dimensionEdge();
        rig.window->file().putCopyAside();
        dump = rig.dump();
        ASSERT_TRUE(QFile::rename(own, crashed));
        ASSERT_TRUE(QFile::rename(own + ".origin", crashed + ".origin"));
        rig.document().markSaved();
    }
    {
        WindowRig rig;
        rig.inDialog([&] { EXPECT_FALSE(rig.window->file().offerRescuedCopy()); },
                     [](QWidget* box) { Answer(box, QMessageBox::Cancel); });
        EXPECT_TRUE(QFile::exists(crashed)) << "offered again next time";
    }
    {
        WindowRig rig;
        rig.inDialog([&] { EXPECT_TRUE(rig.window->file().offerRescuedCopy()); },
                     [](QWidget* box) { Answer(box, QMessageBox::Open); });
        EXPECT_EQ(rig.dump(), dump);
        EXPECT_TRUE(rig.window->isWindowModified());
        EXPECT_EQ(rig.window->file().folder(), QFileInfo(lost).absolutePath());
        EXPECT_TRUE(rig.window->windowTitle().contains("plate.svg"));
        EXPECT_FALSE(QFile::exists(crashed));
        EXPECT_TRUE(QFile::exists(own)) << "a second crash would lose it";
        EXPECT_EQ(BytesOf(own + ".origin"), lost.toUtf8());
        ASSERT_TRUE(rig.window->file().saveTo(rig.home.filePath("rescued.svg")));
        EXPECT_FALSE(QFile::exists(own));
    }
    other.kill();
    other.waitForFinished();
}

// What was given up for a drawing that cannot be opened is still there, in the window and against a crash.
TEST(Safety, DiscardedChangesStayUntilAnotherDrawingIsOpen) {
    const QString own = RescueFolder().filePath(QString::number(QCoreApplication::applicationPid()) + ".svg");
    WindowRig rig;
    rig.dimensionEdge();
    rig.window->file().putCopyAside();
    ASSERT_TRUE(QFile::exists(own));
    const std::string dump = rig.dump();
    rig.inDialogs(
        [&] { EXPECT_FALSE(rig.window->file().open(rig.home.filePath("missing.svg"))); },
        {[](QWidget* box) { Answer(box, QMessageBox::Discard); }, [](QWidget* box) { Answer(box, QMessageBox::Ok); }});
    EXPECT_EQ(rig.dump(), dump);
    EXPECT_TRUE(QFile::exists(own));
    rig.inDialog([&] { EXPECT_TRUE(rig.window->close()); }, [](QWidget* box) { Answer(box, QMessageBox::Discard); });
    EXPECT_FALSE(QFile::exists(own));
}

TEST(Safety, BrokenFileLeavesTheDrawingThatIsOpen) {
    WindowRig rig;
    rig.dimensionEdge();
    rig.document().markSaved();
    const std::string dump = rig.dump();
    const QString broken = rig.home.filePath("broken.svg");
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<svg xmlns=\"http://www.w3.org/2000/svg\"><path d=\"M0 0");
    file.close();
    for (const QString& path : {broken, rig.home.filePath("missing.svg")}) {
        QString said;
        rig.inDialog([&] { EXPECT_FALSE(rig.window->file().open(path)); },
                     [&](QWidget* box) {
                         said = qobject_cast<QMessageBox*>(box)->text();
                         Answer(box, QMessageBox::Ok);
                     });
        EXPECT_TRUE(said.startsWith(QFileInfo(path).fileName() + ": ")) << said.toStdString();
        EXPECT_FALSE(said.contains('\n'));
        EXPECT_EQ(rig.dump(), dump);
        EXPECT_EQ(rig.window->file().path(), rig.drawing());
        EXPECT_FALSE(desktop::DrawingFile::recentFiles().contains(path));
    }
}

TEST(Safety, RefusedSaveKeepsTheChanges) {
    WindowRig rig;
    ASSERT_TRUE(QDir(rig.home.path()).mkdir("gone"));
    const QString path = rig.home.filePath("gone/plate.svg");
    ASSERT_TRUE(QFile::copy(rig.drawing(), path));
    ASSERT_TRUE(rig.window->file().open(path));
    EXPECT_EQ(desktop::DrawingFile::recentFiles().first(), path);
    rig.dimensionEdge();
    ASSERT_TRUE(QDir(rig.home.filePath("gone")).removeRecursively());
    rig.inDialog([&] { EXPECT_FALSE(rig.window->file().save()); }, [](QWidget* box) { Answer(box, QMessageBox::Ok); });
    EXPECT_TRUE(rig.window->isWindowModified());
    EXPECT_EQ(rig.newestText(), "71");
    ASSERT_TRUE(rig.window->file().saveTo(rig.home.filePath("elsewhere.svg")));
    EXPECT_FALSE(rig.window->isWindowModified());
}

TEST(Safety, PluginThatThrowsLeavesWindowAndDrawing) {
    WindowRig rig({.pluginFile = QUORVEL_FAILING_PLUGIN_FILE});
    const std::string dump = rig.dump();
    rig.window->tools()->choose("Failing Tool");
    for (int time = 0; time < 2; ++time) {
        QString said;
        rig.inDialog([&] { rig.click(rig.pixel(200, 200)); },
                     [&](QWidget* box) {
                         said = qobject_cast<QMessageBox*>(box)->text();
                         Answer(box, QMessageBox::Ok);
                     });
        EXPECT_TRUE(said.contains("the disk is on fire")) << said.toStdString();
        EXPECT_EQ(rig.dump(), dump);
        EXPECT_FALSE(rig.window->isWindowModified());
    }
    rig.window->editing().selectAll();
    rig.window->editing().remove();
    EXPECT_LT(rig.dump().size(), dump.size());
    rig.window->undo();
    rig.document().markSaved();
}

}  // namespace
}  // namespace quorvel::tests
