// Selectors: a type, a class, an id, and compounds of these.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::svg {

// What a selector asks of an element; views into the style sheet.
struct Selector {
    std::string_view type, id;  // empty: any
    std::vector<std::string_view> classes;
    std::array<std::uint32_t, 3> specificity{};  // ids, classes, types

    // Its rarest name, under which rules are found: "#id", ".class", "type" or "*".
    std::string key() const;
};

// Nothing for what is not understood.
std::optional<Selector> parseSelector(std::string_view text);

// An element as selectors see it.
struct ElementNames {
    std::string_view type, id;
    std::vector<std::string_view> classes;  // in order, each once
};
// Sorts them and drops the double ones.
std::vector<std::string_view> classList(std::string_view attribute);

bool matches(const Selector& selector, const ElementNames& element);

}  // namespace quorvel::svg
