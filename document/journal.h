// Undo and redo: what each step has changed. Content is kept once for each art that a step touches and is exchanged
// with the art's own, either way; changes of the tree are kept in their order. A step costs what it touches, however
// large the drawing is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "document/document_state.h"

namespace quorvel::doc {

// What of an art a change touches; each is kept apart, so that selecting a drawing does not copy its paths.
enum Aspect : std::uint8_t {
    kSelectionAspect = 1,  // flag and segments
    kMarkAspect = 2,       // hidden, locked and the revision: touched by every change of what is written
    kShapeAspect = 4,      // path, text, movement of foreign art
    kNameAspect = 8,       // name and tags
    kAllAspects = 15,
};

struct TreeChange {
    enum Kind { kInsert, kRemove, kMove, kInsertLayer, kMoveLayer } kind = kInsert;
    ArtId art = 0;
    LayerId layer = 0;
    Place from{}, to{};        // of art: before and after
    std::size_t position = 0;  // of a layer, after the change
    std::size_t fromPosition = 0;
};

struct KeptSelection {
    ArtId art = 0;
    bool selected = false;
    std::vector<std::uint8_t> segments;
};

struct KeptMarks {
    ArtId art = 0;
    bool hidden = false, locked = false;
    std::uint64_t revision = 0;
};

struct KeptShape {
    ArtId art = 0;
    std::unique_ptr<PathData> path;  // but its selection
    std::unique_ptr<TextData> text;
    RealMatrix foreignMatrix;
};

struct KeptNames {
    ArtId art = 0;
    std::string name;
    std::vector<Tag> tags;
};

struct Step {
    std::string undoName, redoName;
    std::vector<TreeChange> tree;
    std::vector<KeptSelection> selections;
    std::vector<KeptMarks> marks;
    std::vector<KeptShape> shapes;
    std::vector<KeptNames> names;
    std::vector<Layer> layers;            // as they were
    LayerId currentLayer = 0;             // the one on the other side of the step; 0 when it is the same
    std::uint64_t before = 0, after = 0;  // states of the document

    // Not when nothing but the selection or the current layer has changed.
    bool changesDocument() const { return !tree.empty() || !marks.empty() || !layers.empty(); }
};

class Journal {
  public:
    explicit Journal(DocumentState& drawing) : drawing_(drawing) {}

    void begin();
    bool commit(const std::string& undoName, const std::string& redoName);
    void rollback();
    bool open() const { return open_; }
    bool joinLast();  // the last two steps become one, named as the first of them; false when there are no two
    bool undo();
    bool redo();
    const std::string* undoName() const { return done_.empty() ? nullptr : &done_.back().undoName; }
    const std::string* redoName() const { return undone_.empty() ? nullptr : &undone_.back().redoName; }

    // To be called before a change. Outside a transaction the steps are dropped: they would be played on another
    // drawing than the one they were made on.
    void keep(Slot& slot, unsigned aspects);
    void keepLayer(LayerSlot& layer);
    // To be called after a change of the tree.
    void add(const TreeChange& change);

    bool modified() const;
    void markSaved() { saved_ = state_; }

  private:
    void changeUnkept();
    bool keptAlready(const Slot& slot, unsigned aspect) const;
    void revert(const TreeChange& change);
    void apply(const TreeChange& change);
    void play(Step& step, bool forward);
    void exchangeContent(Step& step);
    void exchangeShape(KeptShape& kept);
    void exchangeNames(KeptNames& kept);
    void tellIfLiving(ArtId art);
    void release(const Step& step, TreeChange::Kind kind);
    void dropUndone();
    void startStep();

    DocumentState& drawing_;
    bool open_ = false;
    Step step_;                      // being made
    std::uint32_t transaction_ = 0;  // tells what was kept in this one from what was in others
    LayerId currentLayerBefore_ = 0;
    std::vector<Step> done_, undone_;
    // Each state that the document can return to has a number of its own.
    std::uint64_t state_ = 0, lastState_ = 0, saved_ = 0;
};

}  // namespace quorvel::doc
