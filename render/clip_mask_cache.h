// What keeps parts of art from sight: clip paths as outlines and masks as pictures of how much is let through, by the
// ids under which the file defines them.
#pragma once

#include <QImage>
#include <QPainterPath>
#include <QTransform>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "document/document.h"
#include "render/appearance.h"
#include "render/sub_drawing.h"
#include "svg/tree/file.h"

namespace quorvel::render {

class ClipMaskCache {
  public:
    // file may be null: then there is nothing.
    ClipMaskCache(std::shared_ptr<svg::File> file, SubDrawingCache* drawings, PaintBudget* budget);
    ~ClipMaskCache();

    // What is shown of art, in its user space. A clip path without outlines shows nothing.
    struct Cut {
        QPainterPath outline;
        bool isThere = false;  // the file has such a clip path
        bool isWhole = true;   // the budget has allowed to work it out
    };
    // box: of the art in its user space, for units of its own.
    Cut clip(std::string_view id, const QRectF& box);
    // Of the size given, each pixel's alpha the mask's luminance there (SVG 1.1, 14.4), or its alpha. Null when there
    // is no such mask.
    QImage mask(std::string_view id, const QTransform& userToPixels, QSize size, const QRectF& box);

  private:
    struct Outlines;
    struct Content;
    struct Clip {
        Cut cut;
        bool ofBox = false;  // it is another one for another box
        QRectF box;
    };
    Content* contentOf(std::string_view id, const svg::ClipPath& clip);

    std::shared_ptr<svg::File> file_;
    SubDrawingCache& drawings_;
    PaintBudget& budget_;
    std::unordered_map<std::string, Clip> clips_;  // as last asked for
    std::unordered_map<std::string, std::unique_ptr<Content>> contents_;
};

}  // namespace quorvel::render
