// The few icons of the window's own, drawn in the ink that the palette has.
#pragma once

#include <QColor>
#include <QIcon>

namespace quorvel::desktop {

QIcon ArrowIcon(const QColor& ink);
QIcon MagnifierIcon(const QColor& ink);
QIcon EyeIcon(const QColor& ink, bool open);
QIcon LockIcon(const QColor& ink, bool locked);
QIcon MenuIcon(const QColor& ink);
QIcon PlusIcon(const QColor& ink);

}  // namespace quorvel::desktop
