// Which art has which value in one tag: a question costs what is found, and a change costs the same however many arts
// have the value. Values themselves stay in the document; the index keeps their hashes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"

namespace quorvel::doc {

// What a value is found by: of a whole number its digits without zeros ahead, of other texts the text.
std::string_view tagKey(std::string_view value);

class TagIndex {
  public:
    // Null: the art does not have the tag, or no more.
    void put(ArtId art, const std::string* value);
    // Adds all that have the value, and perhaps others, which the caller sorts out.
    void find(std::string_view value, std::vector<ArtId>* arts) const;
    // Adds all that have the tag.
    void all(std::vector<ArtId>* arts) const;

  private:
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    struct Entry {
        std::size_t hash = 0;
        ArtId art = 0;  // 0 for a free one
        // In the list of its bucket; of a free one, after is the next free one.
        std::uint32_t before = kNone, after = kNone;
    };

    void add(ArtId art, std::size_t hash);
    void remove(std::uint32_t entry);
    void link(std::uint32_t entry);
    void unlink(std::uint32_t entry);
    void grow();
    std::size_t bucketOf(std::size_t hash) const { return hash & (buckets_.size() - 1); }

    std::vector<Entry> entries_;
    std::vector<std::uint32_t> buckets_;  // the first entry of each; none, or a power of two of them
    std::vector<std::uint32_t> entryOf_;  // by art
    std::uint32_t free_ = kNone;
    std::size_t count_ = 0;
};

}  // namespace quorvel::doc
