// Text elements: each becomes one point text with a run for each stretch of like characters, and a point text becomes
// an element that any program shows and that comes back to the last bit here.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <tuple>

#include "document/document.h"
#include "interchange/svg/path_style.h"
#include "interchange/svg/source.h"
#include "svg/css/cascade.h"
#include "svg/markup/namespaces.h"
#include "svg/markup/xml.h"

namespace quorvel::interchange {

struct SvgText {
    doc::TextData text;
    double x = 0, y = 0;  // where the first character is in the element's space
};

// Full names of fonts by family list, weight and slant, as they were found.
using FontNames = std::map<std::tuple<std::string_view, int, bool>, std::string>;

// What texts are read with. The fonts' keys are texts of the cascade's styles.
struct TextContext {
    svg::Cascade& cascade;
    PaintLookup& paints;
    FontNames& fonts;
    const svg::SvgNames& names;
    double diagonal = 0;  // of the viewport, user units
};

// element: parsed with its blanks. toDocument: of its content. style: its own, computed. False when the style sheets
// ask for too much work.
[[nodiscard]] bool readText(const svg::XmlNode& element, const svg::Affine& toDocument, const svg::ComputedStyle& style,
                            TextContext* context, SvgText* result);

// The matrix of a text whose element's space is mapped so and whose first character is at (x, y) in it.
RealMatrix textMatrix(const svg::Affine& toDocument, double x, double y);

// What a text element says for a text, to be set into its start tag.
struct SvgTextParts {
    std::string transform;  // empty: none, the place is x and y
    std::string x, y;
    std::string style;
    bool preserveSpace = false;
    std::string content;  // escaped, with tspan elements
    std::string exact;    // the value of our attribute; empty when the rest says it all
};
// toDocument: of the container. reset: undoes what the container would do to it.
SvgTextParts formatText(const doc::TextData& text, const svg::Affine& toDocument, const svg::SvgNames& names,
                        const std::vector<StyleProperty>& reset, const PaintSources& sources);

// The transform that makes an element mapped by `was` be where `motion` takes it, below a container mapped so; for
// texts that are only moved and for elements that are kept as they are. Empty when the container is flat.
svg::Affine concat(const RealMatrix& motion, const svg::Affine& was);
std::string formatMatrix(const svg::Affine& matrix);

}  // namespace quorvel::interchange
