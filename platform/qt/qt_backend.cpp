// Sound and cursors; a cursor's reference is the place of its number.
#include "platform/qt/qt_backend.h"

#include <QApplication>

#include "platform/qt/pictures.h"

namespace quorvel::platform {

QtBackend::QtBackend(const std::string& documentsFolder) {
    setDocumentsFolder(documentsFolder);
    initPictures();
    services_.pixelRatio = [this] {
        return dialogs_.parent != nullptr ? dialogs_.parent->devicePixelRatioF() : qreal{1};
    };
}

void QtServices::beep(std::uint32_t) {
    QApplication::beep();
    if (beeped) beeped();
}

CursorRef QtServices::loadCursor(void*, std::int32_t id) {
    if (!pictureExists(id)) return nullptr;
    std::unique_ptr<std::int32_t>& place = cursors_[id];
    if (place == nullptr) place = std::make_unique<std::int32_t>(id);
    return reinterpret_cast<CursorRef>(place.get());
}

void QtServices::setCursor(CursorRef cursor) {
    const std::int32_t id = *reinterpret_cast<std::int32_t*>(cursor);
    if (cursorChosen) cursorChosen(id, pictureCursor(id, pixelRatio ? pixelRatio() : qreal{1}));
}

}  // namespace quorvel::platform
