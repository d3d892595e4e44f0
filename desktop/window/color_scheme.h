// The window's colours, light and dark, the same on every desktop.
#pragma once

#include <QPalette>

class QApplication;

namespace quorvel::desktop {

enum class ColorScheme { system, light, dark };

// Before the first window is made, or at any time later. True when it is dark.
bool applyColorScheme(QApplication* program, ColorScheme scheme);
// The one that was applied last.
ColorScheme currentColorScheme();
// What the user has chosen, over all runs of the program; the desktop's at first.
ColorScheme savedColorScheme();
void saveColorScheme(ColorScheme scheme);
bool isDark(const QPalette& palette);

}  // namespace quorvel::desktop
