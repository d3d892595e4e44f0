// What stays of a file behind its document: the text as it was read, where the elements that are art stand in it, and
// just enough of each to tell later whether its art has changed.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "document/document.h"
#include "svg/markup/entities.h"
#include "svg/markup/namespaces.h"
#include "svg/values/affine.h"

namespace quorvel::interchange {

enum class SvgKind : std::uint8_t {
    kRoot,
    kLayer,  // a layer group below the root
    kGroup,  // g, a, switch, nested svg
    kPath,   // a path element
    kShape,  // rect, circle, ellipse, line, polyline, polygon
    kText,
    kUse,      // a group of what it refers to, which has no elements of its own
    kForeign,  // kept, never entered
};

struct SvgElement {
    std::uint32_t nameOffset = 0;  // of the element's name in the text
    std::int32_t parent = -1;      // the element that holds it, of those that are art
    std::uint32_t ctm = 0;         // of its content, with its own transform
    std::int32_t style = -1;       // paths and shapes: their style; containers: what their content inherits
    std::int32_t text = -1;
    SvgKind kind = SvgKind::kGroup;
    std::uint8_t unmodelledProperties = 0;
    bool hidden = false, locked = false;
    std::uint64_t content = 0;  // contentOf its art when it was read
};

// Where the look of art is said. Art made by a use element has one of its own, though its element is no child of the
// use element and nothing may be written into it.
struct SvgOrigin {
    std::uint32_t nameOffset = 0;  // of the element's name in the text
    std::int32_t parent = -1;      // what it inherits from: the origin of the container or use element around it
    std::uint32_t ctm = 0;         // of its content, with its own transform
};

// How a text element stood when it was read.
struct SvgTextOrigin {
    RealMatrix matrix;
    double x = 0, y = 0;        // in the element's own space
    std::uint64_t wording = 0;  // wordingOf its text
};

// How a use element places what it refers to, in user units; a size of 0 is none.
struct SvgUse {
    std::int32_t element = -1;
    double x = 0, y = 0, width = 0, height = 0;
};

struct SvgSource : doc::DocumentSource {
    std::unordered_set<std::string> reservedNames() const override;  // of elements that are no art

    std::string text;
    svg::XmlEntities entities;        // of the document type
    std::vector<std::string> sheets;  // texts of the style elements
    // In the order of the file; the root is the first.
    std::vector<SvgElement> elements;
    std::vector<SvgOrigin> origins;  // the root's is the first
    std::vector<svg::Affine> ctms;
    std::vector<doc::StylePtr> styles;
    std::vector<SvgTextOrigin> texts;
    std::vector<SvgUse> uses;  // those among the elements, in their order
    std::size_t artCount = 0;  // when it was read
    svg::SvgNames names;
    bool hasStyleSheet = false;
    std::string rulerUnit;
    std::uint32_t namedViewOffset = 0;  // of the name of the named view element, 0 when there is none
    // The layer that the file names as the current one; 0 when it names none, so that it is the topmost.
    doc::LayerId currentLayer = 0;
};

// Null for a document that was not read from a file.
inline SvgSource* svgSource(const doc::Document& document) { return static_cast<SvgSource*>(document.source()); }

}  // namespace quorvel::interchange
