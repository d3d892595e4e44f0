// Replacements in a text, and where its other places are afterwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::svg {

class TextEdits {
  public:
    // In rising order; the stretches do not overlap.
    void replace(std::size_t begin, std::size_t end, std::string text);
    std::string applied(std::string_view text) const;
    // Where a place of the text is then. Places in a stretch keep their distance from its begin.
    std::uint32_t map(std::uint32_t place) const;

  private:
    struct Edit {
        std::size_t begin = 0, end = 0;
        std::string text;
        std::int64_t shift = 0;  // of what follows
    };
    std::vector<Edit> edits_;
};

}  // namespace quorvel::svg
