// What keeps parts of art from sight: clip paths as outlines and masks as pictures of how much is let through, by the
// ids under which the file defines them.
#pragma once

#include <QHash>
#include <QImage>
#include <QPainterPath>
#include <QString>
#include <QTransform>
#include <memory>
#include <string>
#include <unordered_map>

#include "render/definitions.h"

class QSvgRenderer;

namespace quorvel::render {

class ClipMaskCache {
  public:
    explicit ClipMaskCache(Definitions* definitions);
    ~ClipMaskCache();

    // What is shown of art that refers to the clip path, in the art's user space; box: of the art there, for units of
    // its own. Nothing is shown by a clip path without outlines; without such a clip path the second is false.
    std::pair<QPainterPath, bool> clip(const QString& id, const QRectF& box);
    // Of the size given, each pixel's alpha the mask's luminance there (SVG 1.1, 14.4). Null when there is no such
    // mask.
    QImage mask(const QString& id, const QTransform& userToPixels, QSize size, const QRectF& box);

  private:
    struct Outlines;
    struct Clip {
        QPainterPath outline;
        bool ofBox = false;  // it is another one for another box
        QRectF box;
    };

    Definitions& definitions_;
    std::unordered_map<std::string, Clip> clips_;  // as last asked for
    QHash<QString, std::shared_ptr<QSvgRenderer>> masks_;
};

}  // namespace quorvel::render
