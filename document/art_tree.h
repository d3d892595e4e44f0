// All art of a document by name: where it is, what it extends over, which of two comes first. Changing the tree
// keeps these right; it knows nothing of undoing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "document/document.h"

namespace quorvel::doc {

// Directly above `below` among the children of the parent, or lowest when that is 0.
struct Place {
    ArtId parent = 0, below = 0;
    bool operator==(const Place&) const = default;
};

struct Slot {
    Art art;
    std::uint64_t order = 0;  // rises from the topmost sibling down
    // The ring of living art with the same name, by rising ArtId.
    ArtId sameNameBefore = 0, sameNameAfter = 0;
    // While an art's bounds are known, those of all below it are; both kinds are found together.
    bool boundsKnown = false;
    std::uint8_t kept = 0;  // aspects that the journal holds since the transaction `keptIn`
    std::uint32_t keptIn = 0;
    RealRect bounds, controlBounds;
};

class ArtTree {
  public:
    ArtTree();
    // A slot stays where it is for the life of the tree and is never used for other art.
    Slot& create(AIArtType kind);  // not yet alive, in no place
    Slot& slot(ArtId id) { return chunks_[id / kChunk][id % kChunk]; }
    const Slot& slot(ArtId id) const { return chunks_[id / kChunk][id % kChunk]; }
    Slot* living(ArtId id) { return id < end_ && slot(id).art.alive ? &slot(id) : nullptr; }
    const Slot* living(ArtId id) const { return id < end_ && slot(id).art.alive ? &slot(id) : nullptr; }
    std::size_t count() const { return count_; }  // living art but the roots

    void link(ArtId art, Place place);
    void unlink(ArtId art);
    Place placeOf(ArtId art) const { return {slot(art).art.parent, slot(art).art.below}; }
    // The art with all that is below it comes to life or ends; what has ended keeps its links.
    void raise(ArtId top);
    void bury(ArtId top);
    // Frees what dead art still holds.
    void release(ArtId top);

    // Depth first, first child first; 0 behind the last art below top.
    ArtId next(ArtId art, ArtId top) const;
    ArtId rootOf(ArtId art) const;
    bool isWithin(ArtId art, ArtId ancestor) const;  // also when they are the same
    // Neither of the two is the root of a layer, or both have the same one.
    bool precedes(ArtId a, ArtId b) const;

    void setName(Slot& slot, std::string name);
    ArtId findByName(std::string_view name) const;  // the oldest one that lives
    // While a file is read names are set from outside; this finds them all.
    void indexNames();

    void invalidateBounds(ArtId art);
    const Slot& withBounds(ArtId art) const;  // a slot whose bounds are known

  private:
    static constexpr std::size_t kChunk = 1024;

    std::uint64_t orderBetween(ArtId above, ArtId below);
    void makeRoom(ArtId art);
    void addName(ArtId art);
    void removeName(ArtId art);
    std::size_t namePlace(std::string_view name) const;
    void growNames();
    void closeGap(std::size_t place);
    void computeBounds(Slot& slot) const;

    std::vector<std::unique_ptr<Slot[]>> chunks_;
    ArtId end_ = 0;
    std::size_t count_ = 0;
    // Open addressing, a power of two of places; each holds the oldest art of its name, 0 for none.
    std::vector<ArtId> names_;
    std::size_t nameCount_ = 0;
};

}  // namespace quorvel::doc
