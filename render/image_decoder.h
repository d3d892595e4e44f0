// Images from their bytes: PNG, JPEG, GIF, WebP and SVG, told apart by the content. The bytes are not trusted.
#pragma once

#include <QImage>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "base/error.h"
#include "render/image_access.h"

namespace quorvel::render {

class PaintBudget;

struct DecodedImage {
    QImage image;                 // null: it cannot be shown
    std::vector<Error> warnings;  // of the images that an SVG image names
};

// Where decoding is done. Outlives who asks.
class ImageDecoder {
  public:
    virtual ~ImageDecoder() = default;
    // Nothing while the image is not there yet. access: of the drawing that names it.
    virtual std::optional<DecodedImage> decode(const ImageSource& source, const ImageAccess& access) = 0;
};

// The SVG images that are being drawn, the outermost first, by path; empty for one in a "data:" URL.
using DrawingsWithin = std::vector<QString>;

// In this process. Null for what has more than 100 million pixels or whose file has more than 128 MB, is damaged, or is
// a drawing that is being drawn already or within four others.
DecodedImage decodeImage(const ImageSource& source, const ImageAccess& access, const DrawingsWithin& within = {},
                         std::shared_ptr<PaintBudget> budget = nullptr);

}  // namespace quorvel::render
