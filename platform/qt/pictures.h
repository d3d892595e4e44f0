// The plug-in's pictures by their resource numbers: icons, drawings in dialogs, cursors with their hot spots.
#pragma once

#include <QCursor>
#include <QPixmap>
#include <QString>
#include <cstdint>

namespace quorvel::platform {

// Makes the pictures known; before the first is asked for.
void initPictures();
bool pictureExists(std::int32_t id);
// At its own size, or fitted into the size given; null when there is none.
QPixmap loadPicture(std::int32_t id, qreal pixelRatio, QSize size = {});
QCursor pictureCursor(std::int32_t id, qreal pixelRatio);

}  // namespace quorvel::platform
