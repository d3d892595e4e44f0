// A picture that a drawing names or holds in itself. The file is not trusted: it may be a pipe, damaged, too large, or
// a drawing that shows itself.
#pragma once

#include <QImage>
#include <QString>

#include "base/result.h"

namespace quorvel::render {

// href: a file, looked for from folder, or a "data:" URL. What it is counts by its content: PNG, JPEG, GIF, WebP or
// SVG. Errors have the name as an argument where they have one: kImageLeftOut when it cannot be read, is no such
// picture, has more than 100 million pixels, or is a drawing that is being drawn already or within four others.
Result<QImage> readLinkedImage(const QString& href, const QString& folder);

}  // namespace quorvel::render
