// The resolved tree: every element that is drawn, in the order of drawing, with the style that was computed for it and
// its place on the page. What a use element makes is in it as instances behind the use element.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "svg/tree/file.h"
#include "svg/tree/viewport.h"
#include "svg/values/affine.h"

namespace quorvel::svg {

enum class Role : std::uint8_t {
    kRoot,      // of the tree: the root of the file, or the definition whose content the tree is
    kGroup,     // g, a, switch
    kViewport,  // svg; of instances also symbol
    kPath,
    kRect,
    kCircle,
    kEllipse,
    kLine,
    kPolyline,
    kPolygon,
    kText,
    kUse,      // holds one instance
    kForeign,  // kept, never entered
};
constexpr bool isGroup(Role role) { return role == Role::kGroup || role == Role::kViewport; }
constexpr bool isShape(Role role) { return role >= Role::kRect && role <= Role::kPolygon; }

struct Element {
    std::uint32_t nameOffset = 0;  // of its name in the text; of an instance: of what it shows
    std::int32_t parent = -1;      // the element that holds it, or the use element that it is an instance of
    std::uint32_t ctm = 0;         // of its content, with its own transform
    std::uint32_t style = 0;       // of the file's StyleTable
    Role role = Role::kGroup;
    // Made by a use element: it shows an element that is written elsewhere. All below an instance are instances.
    bool isInstance = false;
};

struct Tree {
    std::shared_ptr<File> file;
    std::vector<Element> elements;  // the root is the first; those in an element follow it
    std::vector<Affine> ctms;       // from user space to document points
    struct ElementViewport {
        std::int32_t element;
        Viewport size;
    };
    std::vector<ElementViewport> viewports;  // of the elements that make one, in their order; the root is the first

    const Element& operator[](std::int32_t number) const { return elements[static_cast<std::size_t>(number)]; }
    std::size_t size() const { return elements.size(); }
    const Affine& map(std::int32_t number) const { return ctms[(*this)[number].ctm]; }
    // The viewport that what is in the element belongs to.
    const Viewport& viewportIn(std::int32_t number) const;
    // Behind the last element in this one.
    std::int32_t endOf(std::int32_t number) const;
};

}  // namespace quorvel::svg
