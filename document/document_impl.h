// What a document consists of, for the files that make it up.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "document/document.h"
#include "document/document_state.h"
#include "document/journal.h"

namespace quorvel::doc {

// What insertCopy has made of a copy and all below it.
using MadeCopies = std::vector<std::pair<ArtId, const ArtCopy*>>;

struct Document::Impl {
    const std::uint64_t number = ++lastNumber;
    static std::uint64_t lastNumber;
    float width = 0, height = 0;
    DocumentState drawing;
    Journal journal{drawing};
    std::uint64_t lastRevision = 0;
    StylePtr lastStyle;  // most paths share the style of the one before
    std::unique_ptr<DocumentSource> source;
    mutable std::optional<std::unordered_set<std::string>> reservedNames;  // of the source; listed when first asked for

    std::optional<Place> placeFor(AIArtType kind, AIPaintOrder placement, ArtId prep) const;
    void insertNew(ArtId art, Place place);
    void done(Slot& slot, unsigned aspects);
    StylePtr shared(const AIPathStyle& style);
    bool refusedRange = false;  // since the transaction began
    bool refuseRange() {
        refusedRange = true;
        return false;
    }
    bool canTransform(ArtId id, const RealMatrix& matrix) const;
    void transformShape(Slot& slot, const RealMatrix& matrix, float lineScale);
    bool isNameTaken(std::string_view name) const;
    std::string freeName(const std::string& base) const;
    ArtId make(const ArtCopy& copy, MadeCopies* made);
    ArtId insertMade(const ArtCopy& copy, MadeCopies* made, const Place& place);
    template <typename Value>
    bool changeLayer(LayerId id, Value Layer::*field, const Value& value);
};

}  // namespace quorvel::doc
