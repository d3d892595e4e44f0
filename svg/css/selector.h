// Selectors (Selectors Level 3): compounds of types, classes, ids, attributes and structural pseudo-classes, joined by
// combinators. Namespaces and what depends on a user are not understood.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "svg/markup/xml.h"

namespace quorvel::svg {

struct AttributeTest {
    std::string_view name, value;
    char way = 0;  // 0: it is there; '=' it is the value; or '~', '|', '^', '$', '*' before the '='
};

enum class Structure : std::uint8_t { kRoot, kEmpty, kNthChild, kNthLastChild, kNthOfType, kNthLastOfType };
struct StructureTest {
    Structure kind = Structure::kRoot;
    std::int32_t step = 0, offset = 1;  // of the nth ones: every number step * n + offset, n from 0 on
};

// What a selector asks of one element; views into the style sheet.
struct Compound {
    std::string_view type, id;  // empty: any
    std::vector<std::string_view> classes;
    std::vector<AttributeTest> attributes;
    std::vector<StructureTest> structures;
    std::vector<Compound> excluded;  // of :not()
};

struct Selector : Compound {
    struct Step {
        char combinator = ' ';  // or '>', '+', '~': how this one is placed to the one behind it
        Compound compound;
    };
    std::vector<Step> before;                    // from the subject on, backwards
    std::array<std::uint32_t, 3> specificity{};  // ids, classes, types

    // Its rarest name, under which rules are found: "#id", ".class", "type" or "*".
    std::string key() const;
};

// Nothing for what is not understood.
std::optional<Selector> parseSelector(std::string_view text);

// What a selector that asks for the place of an element finds where that is not known.
enum class Unplaced : std::uint8_t { kFails, kHolds };

// An element as selectors see it.
struct ElementNames {
    std::string_view type, id;
    std::vector<std::string_view> classes;  // in order, each once
    XmlNode node;                           // none where its place is not known
    Unplaced unplaced = Unplaced::kFails;
};
// Sorts them and drops the double ones.
std::vector<std::string_view> classList(std::string_view attribute);

// Takes what it costs, in elements looked at, from *work; false also when that does not suffice.
bool matches(const Selector& selector, const ElementNames& element, std::size_t* work);

}  // namespace quorvel::svg
