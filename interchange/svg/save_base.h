// The file that saving starts from: as it was read, but for clones that cannot stay clones. A use element is written
// out when its copy has changed, when what is around it has, or when what it refers to will not look as it did.
#pragma once

#include <memory>
#include <vector>

#include "document/document.h"
#include "interchange/svg/source.h"

namespace quorvel::interchange {

class SaveBase {
  public:
    // The document has been read from a file, the source.
    SaveBase(const doc::Document& document, const SvgSource& source);
    ~SaveBase();

    const SvgSource& source() const;
    // Its element there, -1 when it has none. Of a layer: 0 for art in no layer element.
    std::int32_t elementOf(const doc::Art& art) const;
    std::int32_t elementOf(const doc::Layer& layer) const;
    // The one whose name begins there in the text, -1 for none.
    std::int32_t elementAt(std::uint32_t nameOffset) const;
    // Part of a clone that is written out now, so that its element has not been compared with it yet.
    bool writtenOut(const doc::Art& art) const;
    // A use element that is written out now.
    bool isClone(const doc::Art& art) const;
    // Whether foreign art has not moved since its element there.
    bool isUnmoved(const doc::Art& art) const;
    // The map of foreign art's content to the document, as it has moved.
    svg::Affine placeOf(const doc::Art& art) const;

  private:
    void writeOutClones(const doc::Document& document);
    void rewriteMovedTransforms(const doc::Document& document);
    bool readAgain(std::string text, const doc::Document& document);

    const SvgSource& read_;
    mutable std::vector<std::int32_t>
        byOffset_;                     // elements that are written in the text; listed when it is first asked
    std::vector<RealMatrix> motions_;  // of elements whose transform, or that of one around them, has been changed
    std::unique_ptr<doc::Document>
        again_;  // the file with clones written out; its art has the names that it had in read_
};

// Whether the art of an element, or the layer, looks other than the element says; what is in it counts for use elements
// alone.
bool looksOther(const doc::Document& document, const SvgSource& source, const doc::Art& art, const doc::Layer* layer,
                std::int32_t element);

}  // namespace quorvel::interchange
