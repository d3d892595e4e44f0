// Finds the art under a point and the art that has a tag, at a cost that does not grow with the drawing. The index is
// filled at the first question, for tags at the first one for each name; from then on each change of the document costs
// its own share at the next one.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/box_tree.h"
#include "document/document.h"
#include "document/tag_index.h"

namespace quorvel::doc {

// Must end before its document does.
class ArtIndex : public DocumentObserver {
  public:
    explicit ArtIndex(Document& document);
    ~ArtIndex() override;
    ArtIndex(const ArtIndex&) = delete;
    ArtIndex& operator=(const ArtIndex&) = delete;

    // Both replace what is in *out and give it in walk order.
    //
    // The paths and text frames of the layer whose control bounds, grown by tolerance in 32-bit floats, hold the point,
    // bounds inclusive; a point text counts by its anchor, which must be within tolerance on each axis and may be out
    // by the last bit. Art below a group or compound path that has the tag excludeUnder (empty: none) is left out,
    // as is art that a walk through groups and compound paths does not reach.
    void findAtPoint(LayerId layer, RealPoint point, float tolerance, std::string_view excludeUnder,
                     std::vector<ArtId>* out);
    // The art of all layers that has the tag with this value, or with any. Of two tags of one name the first counts.
    void findByTag(std::string_view name, std::optional<std::string_view> value, std::vector<ArtId>* out);

    void artInserted(ArtId art) override;
    void artRemoved(ArtId art) override;
    void artChanged(ArtId art) override;
    void tagChanged(ArtId art, const std::string& name) override;
    void layersChanged() override;

  private:
    // Art to look at again, each once.
    class ChangeList {
      public:
        void note(ArtId id);
        template <typename Refresh>
        void settle(Refresh refresh);

      private:
        std::vector<ArtId> arts_;
        std::vector<bool> isNoted_;  // by art
    };

    void catchUpBoxes();
    void fillBoxes();
    void refreshBox(ArtId id);
    void catchUpTags();
    void refreshTags(ArtId id);
    const TagIndex& tagIndex(std::string_view name);
    void noteSubtree(ArtId top);
    template <typename Visit>
    void visitSubtree(ArtId top, Visit visit) const;
    bool reachable(const Art& art, std::string_view excludeUnder) const;
    BoxTree& treeOf(LayerId layer);

    Document& document_;
    bool boxesFilled_ = false;
    ChangeList changedBoxes_, changedTags_;        // apart, since a question needs but one of them
    std::vector<LayerId> layerIndexed_;            // by art: the layer in whose tree it is, 0 for none
    std::vector<std::uint32_t> leafOf_;            // by art, for the trees
    std::vector<std::unique_ptr<BoxTree>> trees_;  // by layer
    std::vector<BoxTree::Item> candidates_;        // of the question that is asked
    // By name, those that have been asked for: a record has many tags, and few of them are ever looked for.
    std::map<std::string, TagIndex, std::less<>> tagged_;
};

}  // namespace quorvel::doc
