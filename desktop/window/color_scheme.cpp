// Quiet greys, so that the page is the brightest area of the window.
#include "desktop/window/color_scheme.h"

#include <QApplication>
#include <QSettings>
#include <QStyleFactory>

namespace quorvel::desktop {

namespace {

struct Shade {
    QPalette::ColorRole role;
    QRgb light, dark;
};
constexpr Shade kShades[] = {
    {QPalette::Window, 0xfff0f1f3, 0xff33363b},
    {QPalette::WindowText, 0xff1e2226, 0xffe4e6e9},
    {QPalette::Base, 0xffffffff, 0xff26282c},
    {QPalette::AlternateBase, 0xfff6f7f8, 0xff2c2f33},
    {QPalette::Text, 0xff1e2226, 0xffe4e6e9},
    {QPalette::Button, 0xffe9ebee, 0xff3c4046},
    {QPalette::ButtonText, 0xff1e2226, 0xffe4e6e9},
    {QPalette::BrightText, 0xffffffff, 0xffffffff},
    {QPalette::Highlight, 0xff2f6fe4, 0xff5b93f5},
    {QPalette::HighlightedText, 0xffffffff, 0xff101216},
    {QPalette::ToolTipBase, 0xff2b2e33, 0xff17181b},
    {QPalette::ToolTipText, 0xfff2f3f5, 0xfff2f3f5},
    {QPalette::PlaceholderText, 0xff8a9097, 0xff8a9097},
    {QPalette::Link, 0xff2f6fe4, 0xff7aa9ff},
    {QPalette::Light, 0xffffffff, 0xff4a4e55},
    {QPalette::Midlight, 0xfff6f7f8, 0xff42464c},
    {QPalette::Mid, 0xffb9bec5, 0xff25272a},
    {QPalette::Dark, 0xffa2a8b0, 0xff1e2023},
    {QPalette::Shadow, 0xff6d737b, 0xff0c0d0e},
};
constexpr char kLookKey[] = "window/scheme";
constexpr const char* kLookNames[] = {"system", "light", "dark"};
constexpr QRgb kFaintLight = 0xff9aa0a7, kFaintDark = 0xff757b83;

QPalette paletteOf(bool dark) {
    QPalette palette;
    for (const Shade& shade : kShades) palette.setColor(shade.role, QColor(dark ? shade.dark : shade.light));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(dark ? kFaintDark : kFaintLight));
    return palette;
}

// Asked of a palette that has nothing of its own, which is the desktop's.
bool desktopIsDark(QApplication* program) {
    program->setPalette(QPalette());
    return isDark(QApplication::palette());
}

ColorScheme inForce = ColorScheme::system;

}  // namespace

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

bool applyColorScheme(QApplication* program, ColorScheme scheme) {
    inForce = scheme;
    const bool dark = scheme == ColorScheme::dark || (scheme == ColorScheme::system && desktopIsDark(program));
    program->setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    program->setPalette(paletteOf(dark));
    return dark;
}

ColorScheme currentColorScheme() { return inForce; }

ColorScheme savedColorScheme() {
    const QString kept = QSettings().value(QLatin1String(kLookKey)).toString();
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark})
        if (kept == QLatin1String(kLookNames[static_cast<int>(scheme)])) return scheme;
    return ColorScheme::system;
}

void saveColorScheme(ColorScheme scheme) {
    QSettings().setValue(QLatin1String(kLookKey), QLatin1String(kLookNames[static_cast<int>(scheme)]));
}

}  // namespace quorvel::desktop
