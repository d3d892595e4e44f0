// Gradients that reflect or repeat, for devices that write every repetition across the whole page.
#pragma once

#include <QBrush>
#include <QRectF>

namespace quorvel::render {

// The brush with its repetitions written as stops of one padded gradient that reaches over box, which is in the
// brush's user space; at most 1,024 of them. Unchanged when it does not repeat.
QBrush spreadOver(const QBrush& brush, const QRectF& box);

}  // namespace quorvel::render
