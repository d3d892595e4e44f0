// Lays a text element out: shaped runs of glyphs at their places, in the element's user space.
#pragma once

#include <QPainterPath>
#include <QRectF>
#include <QTransform>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/document.h"
#include "fonts/faces.h"
#include "interchange/svg/source.h"
#include "render/text/text_characters.h"

namespace quorvel::render {

struct PlacedGlyph {
    std::uint32_t id = 0;
    std::uint32_t cluster = 0;  // index of the first character that it shows
    QTransform place;           // from the glyph at size 1, y up, to user space
};

// Glyphs of one face, size and style, from left to right.
struct GlyphRun {
    const fonts::Face* face = nullptr;
    double size = 0;                 // user units
    std::size_t begin = 0, end = 0;  // its characters
    std::size_t unit = 0;            // of its first character in the UTF-16 text
    std::uint32_t style = 0;         // of the file's StyleTable
    bool isVisible = true;
    std::vector<PlacedGlyph> glyphs;

    QPainterPath outline() const;  // in user space
};

struct TextLayout {
    std::u32string text;
    std::u16string wording;  // the same text
    std::vector<GlyphRun> runs;
    QTransform place;  // of the document's text that this shows, y up, in document points
    QRectF box;        // of the outlines, in user space
};

TextLayout layOut(const TextCharacters& characters);

// The layouts of a drawing's texts, each made when it is first asked for.
class TextLayoutCache {
  public:
    // The layout of art that shows its element as the file has it, and the map from the element's user space to where
    // the art is now. Null for other art. Good until the next question.
    const TextLayout* of(const interchange::SvgSource* source, const doc::Art& art, QTransform* toDocument);

  private:
    std::shared_ptr<const std::string> text_;  // of the file that the layouts are from
    std::unordered_map<std::int32_t, std::unique_ptr<TextLayout>> layouts_;
    std::size_t glyphs_ = 0;
};

}  // namespace quorvel::render
