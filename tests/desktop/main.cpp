// One program for all of the window: it needs an application of Qt's, and settings that are not the user's.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <clocale>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    // A place of its own for each run: another's copies against a crash would be offered here.
    const QTemporaryDir settings;
    qputenv("XDG_DATA_HOME", QFile::encodeName(settings.path()));
    qputenv("XDG_STATE_HOME", QFile::encodeName(settings.path()));
    QApplication program(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication::setApplicationName("quorvel-desktop-test");
    QApplication::setOrganizationName("Selkie Works");
    return RUN_ALL_TESTS();
}
