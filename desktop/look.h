// The window's colours, light and dark, the same on every desktop.
#pragma once

#include <QPalette>

class QApplication;

namespace quorvel::desktop {

enum class Look { system, light, dark };

// Before the first window is made, or at any time later. True when it is dark.
bool ApplyLook(QApplication* program, Look look);
// The one that was applied last.
Look LookInForce();
// What the user has chosen, over all runs of the program; the desktop's at first.
Look ChosenLook();
void KeepChosenLook(Look look);
bool IsDark(const QPalette& palette);

}  // namespace quorvel::desktop
