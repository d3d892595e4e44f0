// The few icons of the window's own, drawn in the ink that the palette has; those in lists change with a row's
// selection.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>

namespace quorvel::desktop {

QIcon arrowIcon(const QColor& ink);
QIcon magnifierIcon(const QColor& ink);
QIcon eyeIcon(const QPalette& colors, bool open);
QIcon lockIcon(const QPalette& colors, bool locked);
QIcon menuIcon(const QColor& ink);
QIcon plusIcon(const QColor& ink);

}  // namespace quorvel::desktop
