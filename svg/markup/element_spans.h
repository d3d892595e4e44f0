// Where the elements of an XML text begin and end. The text is well-formed: a scan that follows quotes, comments and
// sections and nothing else.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quorvel::svg {

// Offsets into the text. For an element without content, contentEnd equals tagEnd, and end too.
struct ElementSpan {
    std::uint32_t begin = 0;       // of "<"
    std::uint32_t tagEnd = 0;      // behind the start tag's ">"
    std::uint32_t contentEnd = 0;  // of the end tag's "<"
    std::uint32_t end = 0;         // behind the element
    bool empty() const { return contentEnd == end; }
};

// Finds the elements whose names begin at these rising offsets, the first being the outermost. The text is well-formed.
std::vector<ElementSpan> findElements(std::string_view text, std::span<const std::uint32_t> nameOffsets);
// All elements of one element's text, itself first, each before those in it.
std::vector<ElementSpan> allElements(std::string_view element);
// One element's text, from "<" to the end of its end tag.
std::string_view elementText(std::string_view text, std::uint32_t nameOffset);

// Its start tag alone.
std::string_view startTagText(std::string_view text, std::uint32_t nameOffset);

// The start tags of the elements that hold the one whose name begins at the offset, the outermost first.
std::vector<std::string_view> startTagsAround(std::string_view text, std::uint32_t rootNameOffset,
                                              std::uint32_t nameOffset);

}  // namespace quorvel::svg
