// One program for all of the window: it needs an application of Qt's, and settings that are not the user's.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <clocale>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication program(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QStandardPaths::setTestModeEnabled(true);
    QApplication::setApplicationName("quorvel-desktop-test");
    QApplication::setOrganizationName("Selkie Works");
    return RUN_ALL_TESTS();
}
