// The few icons of the window's own, drawn in the ink that the palette has; those in lists change with a row's
// selection.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>

namespace quorvel::desktop {

QIcon ArrowIcon(const QColor& ink);
QIcon MagnifierIcon(const QColor& ink);
QIcon EyeIcon(const QPalette& colors, bool open);
QIcon LockIcon(const QPalette& colors, bool locked);
QIcon MenuIcon(const QColor& ink);
QIcon PlusIcon(const QColor& ink);

}  // namespace quorvel::desktop
