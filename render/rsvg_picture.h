// Draws SVG texts by librsvg, for effects that this painter does not compute.
#pragma once

#include <QImage>
#include <string>

namespace quorvel::render {

// The text's page fills the picture's size, over what is in the picture, which is premultiplied ARGB. Opens no file and
// no address: images are "data:" URLs alone. False, with the picture as it was or half drawn, for what librsvg refuses.
[[nodiscard]] bool drawSvgText(const std::string& text, QImage* picture);

}  // namespace quorvel::render
