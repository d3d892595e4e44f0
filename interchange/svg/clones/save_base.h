// The file that saving starts from: as it was read, but for clones that cannot stay clones. A use element is written
// out when its copy has changed, when what is around it has, or when what it refers to will not look as it did. Its
// elements have the numbers that they had when the file was read; only what was spliced in is read again.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "document/document.h"
#include "interchange/svg/source.h"
#include "svg/markup/text_edits.h"

namespace quorvel::interchange {

class SaveBase {
  public:
    // The document has been read from a file, the source.
    SaveBase(const doc::Document& document, const SvgSource& source);

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
    bool apply(const svg::TextEdits& edits, std::span<const std::int32_t> changed);
    std::uint32_t offsetNow(std::uint32_t offsetInFile) const;

    const SvgSource& read_;
    std::optional<SvgSource> base_;      // nothing: the one that was read
    std::vector<svg::TextEdits> edits_;  // from the file to the base, one after the other
    std::vector<RealMatrix> motions_;    // of elements whose transform, or that of one around them, has been changed
    // Elements that are written in the text; listed when it is first asked.
    mutable std::vector<std::int32_t> byOffset_;
};

// Whether the art of an element, or the layer, looks other than the element says; what is in it counts for use elements
// alone.
bool looksOther(const doc::Document& document, const SvgSource& source, const doc::Art& art, const doc::Layer* layer,
                std::int32_t element);

}  // namespace quorvel::interchange
