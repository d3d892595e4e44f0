// What keeps the user's work when something goes wrong.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QLibraryInfo>
#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>

#include "desktop/files/drawing_file.h"
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

QDir RescueFolder() {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/rescue");
    folder.mkpath(".");
    return folder;
}

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
        rig.window->file().autosave();
        EXPECT_FALSE(QFile::exists(own)) << "nothing has changed yet";
        rig.dimensionEdge();
        rig.window->file().autosave();
        dump = rig.dump();
        ASSERT_TRUE(QFile::rename(own, crashed));
        ASSERT_TRUE(QFile::rename(own + ".origin", crashed + ".origin"));
        rig.document().markSaved();
    }
    {
        WindowRig rig;
        rig.inDialog([&] { EXPECT_FALSE(rig.window->file().offerRecovery()); },
                     [](QWidget* box) { Answer(box, QMessageBox::Cancel); });
        EXPECT_TRUE(QFile::exists(crashed)) << "offered again next time";
    }
    {
        WindowRig rig;
        rig.inDialog([&] { EXPECT_TRUE(rig.window->file().offerRecovery()); },
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

// Whatever program file the one that still runs was started from, and whatever its number.
TEST(Safety, CopyOfARunningProgramIsLeftAlone) {
    for (const QString& file : RescueFolder().entryList(QDir::Files)) RescueFolder().remove(file);
    QProcess other;
    other.start("sleep", {"60"});
    ASSERT_TRUE(other.waitForStarted());
    ASSERT_TRUE(RescueFolder().mkpath("."));
    const QString copy = RescueFolder().filePath(QString::number(other.processId()) + ".svg");
    WindowRig rig;
    ASSERT_TRUE(QFile::copy(rig.drawing(), copy));
    const int lock = ::open(QFile::encodeName(copy + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(rig.window->file().offerRecovery()) << "would have asked, and waited for an answer";
    EXPECT_TRUE(QFile::exists(copy));
    ::close(lock);  // as when it crashes, though its number lives on
    rig.inDialog([&] { EXPECT_FALSE(rig.window->file().offerRecovery()); },
                 [](QWidget* box) { Answer(box, QMessageBox::Discard); });
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(QFile::exists(copy + ".lock"));
    other.kill();
    other.waitForFinished();
}

// A crash has left a copy under the number that this process has now.
TEST(Safety, OwnCopyDoesNotOverwriteACrashedOne) {
    for (const QString& file : RescueFolder().entryList(QDir::Files)) RescueFolder().remove(file);
    ASSERT_TRUE(RescueFolder().mkpath("."));
    const QString crashed = RescueFolder().filePath(QString::number(QCoreApplication::applicationPid()) + ".svg");
    WindowRig rig;
    ASSERT_TRUE(QFile::copy(rig.drawing(), crashed));
    const QByteArray before = BytesOf(crashed);
    rig.dimensionEdge();
    rig.window->file().autosave();
    EXPECT_EQ(BytesOf(crashed), before);
    EXPECT_EQ(RescueFolder().entryList({"*.svg"}, QDir::Files).size(), 2);
    ASSERT_TRUE(rig.window->file().save());
    EXPECT_EQ(RescueFolder().entryList({"*.svg"}, QDir::Files), QStringList(QFileInfo(crashed).fileName()));
    QFile::remove(crashed);
}

// A name typed without its ending is that of a file which is there.
TEST(Safety, NoFileIsReplacedUnasked) {
    WindowRig rig;
    const QString other = rig.home.filePath("other.svg"), paper = rig.home.filePath("plate.png");
    for (const QString& path : {other, paper}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("somebody's");
    }
    const auto named = [&](const char* name) {
        return [&rig, name](QWidget* dialog) { rig.nameFile(dialog, rig.home.filePath(name)); };
    };
    const auto answered = [](QMessageBox::StandardButton button) {
        return [button](QWidget* box) { Answer(box, button); };
    };
    const auto leave = [](QWidget* dialog) { dialog->close(); };
    rig.inDialogs([&] { EXPECT_FALSE(rig.window->file().saveAs()); },
                  {named("other"), answered(QMessageBox::No), leave});
    rig.inDialogs([&] { rig.item("Export PNG...")->trigger(); }, {named("plate"), answered(QMessageBox::No), leave});
    EXPECT_EQ(BytesOf(other), "somebody's");
    EXPECT_EQ(BytesOf(paper), "somebody's");
    EXPECT_EQ(rig.window->file().path(), rig.drawing());
    rig.inDialogs([&] { EXPECT_TRUE(rig.window->file().saveAs()); }, {named("other"), answered(QMessageBox::Yes)});
    EXPECT_EQ(rig.window->file().path().toStdString(), other.toStdString());
    EXPECT_EQ(BytesOf(other).toStdString(), BytesOf(rig.drawing()).toStdString());
    rig.inDialogs([&] { rig.item("Export PNG...")->trigger(); }, {named("plate"), answered(QMessageBox::Yes)});
    EXPECT_TRUE(BytesOf(paper).startsWith("\x89PNG"));
    for (const QString& path : {other, paper}) QFile::setPermissions(path, QFile::ReadOwner);
    const QDateTime before = QFileInfo(paper).lastModified();
    rig.inDialog([&] { EXPECT_FALSE(rig.window->file().save()); }, answered(QMessageBox::No));
    rig.inDialog([&] { EXPECT_TRUE(rig.window->file().save()); }, answered(QMessageBox::Yes));
    rig.inDialogs([&] { rig.item("Export PNG...")->trigger(); },
                  {named("plate"), answered(QMessageBox::Yes), answered(QMessageBox::No)});
    EXPECT_EQ(QFileInfo(paper).lastModified(), before);
    rig.inDialogs([&] { rig.item("Export PNG...")->trigger(); },
                  {named("plate"), answered(QMessageBox::Yes), answered(QMessageBox::Yes)});
    EXPECT_GT(QFileInfo(paper).lastModified(), before);
    rig.inDialog([&] { EXPECT_TRUE(rig.window->file().saveAs()); }, named("fresh"));
    EXPECT_TRUE(QFile::exists(rig.home.filePath("fresh.svg")));
}

TEST(Safety, WaitingIsShownWhileAFileIsOpened) {
    WindowRig rig;
    std::vector<Qt::CursorShape> seen;
    QObject::connect(&rig.window->file(), &desktop::DrawingFile::drawingLeaves, [&] {
        const QCursor* over = QApplication::overrideCursor();
        seen.push_back(over != nullptr ? over->shape() : Qt::ArrowCursor);
    });
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    EXPECT_EQ(seen, std::vector<Qt::CursorShape>{Qt::WaitCursor});
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    rig.inDialog([&] { EXPECT_FALSE(rig.window->file().open(rig.home.filePath("missing.svg"))); },
                 [](QWidget* box) {
                     EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "nobody waits for a question";
                     Answer(box, QMessageBox::Ok);
                 });
}

// What was given up for a drawing that cannot be opened is still there, in the window and against a crash.
TEST(Safety, DiscardedChangesStayUntilAnotherDrawingIsOpen) {
    const QString own = RescueFolder().filePath(QString::number(QCoreApplication::applicationPid()) + ".svg");
    WindowRig rig;
    rig.dimensionEdge();
    rig.window->file().autosave();
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

TEST(Safety, FailuresAreToldInTheLanguageOfTheTools) {
    WindowRig rig({.language = "ja"});
    const auto told = [&](const QByteArray& svg) {
        const QString path = rig.home.filePath("bad.svg");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9pt\" height=\"9pt\">\n" + svg + "</svg>");
        file.close();
        QString said;
        rig.inDialog([&] { EXPECT_FALSE(rig.window->file().open(path)); },
                     [&](QWidget* box) {
                         said = qobject_cast<QMessageBox*>(box)->text();
                         Answer(box, QMessageBox::Ok);
                     });
        return said.toStdString();
    };
    EXPECT_EQ(told("<circle id=\"a\" r=\"1e20\"/>"), "bad.svg: 2 行目: circle \"a\": 座標が範囲を超えています");
    EXPECT_EQ(told("\xff"), "bad.svg: 2 行目: UTF-8 でないバイトがあります");
}

TEST(Safety, ButtonsSpeakTheLanguageOfTheTools) {
    const QString words = QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_ja.qm";
    if (!QFile::exists(words)) GTEST_SKIP() << words.toStdString() << " (qt6-translations-l10n) is not here";
    for (const char* language : {"ja", "en"}) {
        WindowRig rig({.language = language});
        rig.dimensionEdge();
        QStringList labels;
        rig.inDialog([&] { EXPECT_FALSE(rig.window->file().confirmDiscard()); },
                     [&](QWidget* box) {
                         for (QAbstractButton* button : qobject_cast<QMessageBox*>(box)->buttons())
                             labels.append(button->text().remove('&'));
                         rig.picture(box, QStringLiteral("unsaved-%1").arg(language));
                         Answer(box, QMessageBox::Cancel);
                     });
        ASSERT_EQ(labels.size(), 3);
        for (const QString& label : labels)
            EXPECT_EQ(label.at(0).unicode() >= 0x3000, language[0] == 'j') << label.toStdString();
        rig.inDialog([&] { rig.window->file().openAsking(); },
                     [&](QWidget* dialog) {
                         rig.picture(dialog, QStringLiteral("file-dialog-%1").arg(language));
                         dialog->close();
                     });
        rig.document().markSaved();
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
