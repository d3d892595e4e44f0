// What saving has to write: which art and layers are there, in which order, and which elements have anything changed in
// or below them. All other elements go through in one piece.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "document/document.h"
#include "interchange/svg/clones/save_base.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

// What is written as one element: an art, a layer, or a stretch of art in no layer element that becomes a layer.
struct SaveItem {
    const doc::Art* art = nullptr;
    const doc::Layer* layer = nullptr;
    std::int32_t element = -1;  // where it is in the file, -1 when it is new
};

class SavePlan {
  public:
    // Both outlive the plan.
    SavePlan(const doc::Document& document, const SaveBase& base);

    // Of the root, the lowest first.
    const std::vector<SaveItem>& rootItems() const { return rootItems_; }
    std::vector<SaveItem> itemsOf(const doc::Art& parent) const;
    // The elements below each element, in the order of the file.
    std::span<const std::int32_t> childrenOf(std::int32_t number) const;
    bool isChanged() const { return isDirty_[0]; }  // anything but the root's own attributes
    bool isDirty(std::int32_t number) const { return isDirty_[static_cast<std::size_t>(number)]; }
    bool isPresent(std::int32_t number) const { return isPresent_[static_cast<std::size_t>(number)]; }

    // Titles of art in no layer element, to be said on the root, empty for none; nothing: what is said stays.
    const std::optional<std::string>& looseTitles() const { return looseTitles_; }
    // The id by which the current layer is named; empty: a reader finds it by itself.
    const std::string& currentId() const { return currentId_; }
    // The current layer has no id yet, so that it gets this one.
    bool needsId(const doc::Layer* layer) const { return layer != nullptr && layer == needsId_; }
    bool rootNeedsId() const;

  private:
    void listChildren();
    void planLayers();
    void planTitles(const std::vector<const doc::Layer*>& loose, bool hasLayerElements);
    void planCurrentLayer();
    void checkArt();
    bool sameItems(std::span<const SaveItem> items, std::int32_t number) const;
    bool check(const SaveItem& item);
    bool membersChanged(const doc::Art& art, const SvgRecord& record) const;
    bool isWrapped(const doc::Layer* layer) const;
    svg::StartTag startTag(std::int32_t number) const;

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    std::vector<std::size_t> childStart_;
    std::vector<std::int32_t> childList_;
    std::vector<bool> isDirty_;
    std::vector<bool> isPresent_;  // elements whose art is still in the document
    std::vector<SaveItem> rootItems_;
    std::vector<const doc::Layer*> wrapped_;  // art in no layer element that gets one now
    std::optional<std::string> looseTitles_;
    std::string currentId_;
    const doc::Layer* needsId_ = nullptr;  // the current layer, when its element has no id yet
};

}  // namespace quorvel::interchange
