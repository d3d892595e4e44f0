// The drawing: layers of art with stable names, and the one place where art changes. Every change goes into a journal,
// from which undo, the cached bounds and the indexes live. Coordinates are points, v up, origin at the page's lower
// left corner, 32-bit floats.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "hostapi/types.h"

namespace quorvel::doc {

// Names an art or layer for the life of the document; never used again, 0 for none. An art that an undo brings back
// has its old name.
using ArtId = std::uint32_t;
using LayerId = std::uint32_t;

// How a path is painted. paint.reference is one of the source's numbers, for paints that AIColor cannot say.
using StylePtr = std::shared_ptr<const AIPathStyle>;

struct PathData {
    std::vector<PathSegment> segments;
    bool closed = false;
    bool guide = false;
    StylePtr style;
    // AISegmentSelection for each segment; empty: the path is selected whole or not at all, as its flag says.
    std::vector<std::uint8_t> segmentSelection;
};

struct CharFeatures {
    std::string font;  // full name
    float size = 12;
    float horizontalScale = 1, verticalScale = 1;
    float baselineShift = 0;
    bool fillOn = true, strokeOn = false;
    AIColor fill{.kind = kGrayPaint, .gray = 1}, stroke{.kind = kGrayPaint, .gray = 1};
    float miterLimit = 4;
    bool operator==(const CharFeatures&) const;
};

struct TextRun {
    std::int32_t length = 0;  // UTF-16 units
    CharFeatures features;
};

// A point text: its anchor is the origin of its own space (x along the baseline, y up, points), which the matrix takes
// into the document.
struct TextData {
    AITextFrameType type = kPointTextType;
    AITextOrientation orientation = kHorizontalText;
    RealMatrix matrix;
    std::u16string text;
    std::vector<TextRun> runs;  // lengths sum to the text's; an empty text keeps one run of length 0 for what comes
    ATEJustification justification = kJustifyLeft;
    float firstLineIndent = 0, startIndent = 0;
    ArtId pathObject = 0;  // for text in or on a path
};

// What art or a layer was read from. Only the document's source knows what the number counts.
struct SourceRef {
    std::int32_t index = -1;  // -1 for what was made since
    bool isCopy = false;      // it looks as what was read there and is none of it
    bool operator==(const SourceRef&) const = default;
};

struct Tag {
    std::string name, value;  // bytes as they are
};

struct Art {
    ArtId id = 0;
    AIArtType kind = kUnknownArt;
    bool selected = false, hidden = false, locked = false;
    bool alive = true;  // false once removed; an undo revives it
    ArtId parent = 0;   // 0 for a layer's root
    LayerId layer = 0;  // of a layer's root; the others are asked by Document::layerOf
    // Children in stacking order, top first.
    ArtId firstChild = 0, lastChild = 0, above = 0, below = 0;
    std::unique_ptr<PathData> path;
    std::unique_ptr<TextData> text;
    std::vector<Tag> tags;
    std::string name;  // its own, for scripts; no two have the same, and most have none
    SourceRef ref;     // members of a compound path have none of their own
    // How it has been moved as a whole since it was read. Of foreign art it is on top of the element's own transform;
    // paths and texts have it in their coordinates, and what is beside them in the file may have to follow.
    RealMatrix foreignMatrix;
    // 0 as read from the file; a new number at each change of what is written; an undo brings the old number back.
    std::uint64_t revision = 0;
};

// Art as it once was, to be made again: beside its original, or in another drawing.
struct ArtCopy {
    ArtId original = 0;
    std::uint64_t drawing = 0;  // Document::number
    AIArtType kind = kUnknownArt;
    bool hidden = false, locked = false;
    std::unique_ptr<PathData> path;
    std::unique_ptr<TextData> text;
    std::vector<Tag> tags;
    std::string name;
    std::vector<std::string> paints;  // texts of the paints that path and text refer to, in their order
    SourceRef ref;
    RealMatrix foreignMatrix;
    std::vector<ArtCopy> children;  // the lowest first
};

struct Layer {
    LayerId id = 0;
    ArtId root = 0;
    std::string title;  // UTF-8
    bool visible = true, editable = true;
    SourceRef ref;
    std::uint64_t revision = 0;
};

// Told of every change, also of those that undo and redo make. The art is as it is after the change. Art that moves
// within the tree is told as removed and then inserted. An observer changes nothing while it is told.
class DocumentObserver {
  public:
    virtual ~DocumentObserver() = default;
    virtual void artInserted(ArtId art) = 0;  // with all that is below it
    virtual void artRemoved(ArtId art) = 0;   // with all that was below it; they can be found until this returns
    virtual void artChanged(ArtId art) = 0;   // geometry, text, attributes
    virtual void tagChanged(ArtId art, const std::string& name) = 0;
    virtual void layersChanged() = 0;
};

// What a document was read from, as far as the document itself asks. Whoever reads files makes it, also for a drawing
// that is in no file yet.
class DocumentSource {
  public:
    virtual ~DocumentSource() = default;
    // Names that something other than art has, so that no art may take them.
    virtual std::unordered_set<std::string> reservedNames() const = 0;
    // Paints that AIColor cannot say have a text that any drawing understands, and in each drawing a number above 0.
    virtual std::string paintText(std::int32_t reference) const = 0;   // empty for no paint's number
    virtual std::int32_t paintReference(const std::string& text) = 0;  // the text gets a number when it has none
};

class Document {
  public:
    Document(float width, float height);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    std::uint64_t number() const;  // no two documents of a run have the same
    float width() const;           // of the page, points
    float height() const;

    // --- reading -------------------------------------------------------------------------------------------------
    const std::vector<LayerId>& layers() const;  // top first
    const Layer* layer(LayerId id) const;        // null when it is gone
    LayerId currentLayer() const;
    const Art* find(ArtId id) const;  // null when it is gone
    LayerId layerOf(ArtId id) const;
    ArtId findByName(std::string_view name) const;  // 0 when none
    bool isNameTaken(std::string_view name) const;  // by art, or by anything else in the file that was read
    std::size_t artCount() const;                   // all art but the layers' roots
    const std::string* tag(ArtId id, std::string_view name) const;
    // Cached; the empty set (left > right) when the art has no extent. Text: the box of its advance and ascent.
    RealRect bounds(ArtId id) const;         // tight, without stroke
    RealRect controlBounds(ArtId id) const;  // with control points
    // In walk order (layers top first, depth first, first child first): is a before b?
    bool precedes(ArtId a, ArtId b) const;
    void sortInWalkOrder(std::vector<ArtId>* arts) const;  // all of them living
    std::uint64_t changeCount() const;                     // changes whenever anything but the view has changed
    bool modified() const;                                 // since it was read or last saved
    void markSaved();

    // --- changing: each goes into the journal; false or 0 when it is refused ---------------------------------------
    // Refused are stale ids, coordinates beyond kLargestCoordinate, numbers that are not finite, parents that cannot
    // hold the art and names that are taken; whether a layer is locked or hidden is the caller's business. A change
    // outside a transaction can't be undone and drops the steps before it, unless it is one of selection or current
    // layer. kPlaceAboveAll is the top of the current layer.
    ArtId insertArt(AIArtType kind, AIPaintOrder placement, ArtId prep);
    bool removeArt(ArtId id);
    // Moves the art within the tree (the host's own editing).
    bool moveArt(ArtId id, AIPaintOrder placement, ArtId prep);
    ArtId duplicateArt(ArtId id, const std::string& newName);  // directly above it, with its tags
    ArtCopy copyOf(ArtId id) const;
    // With its own names where they are free, and not selected. Foreign art lives in its own drawing alone: of a copy
    // from another one it is left out, and 0 is given when nothing else is in the copy.
    ArtId insertCopy(const ArtCopy& copy, AIPaintOrder placement, ArtId prep);
    bool setSegments(ArtId id, std::size_t first, std::span<const PathSegment> segments);  // may grow at the end
    bool setSegmentCount(ArtId id, std::size_t count);
    bool setClosed(ArtId id, bool closed);
    bool setStyle(ArtId id, const AIPathStyle& style);
    bool setText(ArtId id, const TextData& text);
    bool transform(ArtId id, const RealMatrix& matrix, float lineScale);  // with all that is below
    bool setTag(ArtId id, std::string_view name, std::string_view value);
    bool removeTag(ArtId id, std::string_view name);
    bool setSelected(ArtId id, bool selected);  // this art alone
    bool setSegmentSelected(ArtId id, std::size_t index, AISegmentSelection state);
    bool setHidden(ArtId id, bool hidden);
    bool setLocked(ArtId id, bool locked);
    bool setName(ArtId id, const std::string& name);
    LayerId insertLayer(const std::string& title, LayerId above);  // above 0: on top
    bool moveLayer(LayerId id, std::size_t position);              // 0: on top; refused behind the last
    bool setLayerTitle(LayerId id, const std::string& title);
    bool setLayerVisible(LayerId id, bool visible);
    bool setLayerEditable(LayerId id, bool editable);
    bool setCurrentLayer(LayerId id);  // no step of its own

    // --- steps -------------------------------------------------------------------------------------------------------
    // A transaction collects changes into one step; they do not nest. commit gives false, and makes no step, when
    // nothing but the selection has changed.
    void begin();
    bool commit(const std::string& undoName, const std::string& redoName);
    void rollback();  // undoes what has changed since begin; the transaction goes on
    bool inTransaction() const;
    // Was a change of this transaction refused because a coordinate is beyond kLargestCoordinate, or no number?
    bool hasRefusedRange() const;
    // The last two steps become one with the name of the first, for changes that have to be made one after the other
    // and are one action to the user. False when there are no two, or within a transaction.
    bool joinLastSteps();
    bool undo();
    bool redo();
    const std::string* undoName() const;  // null when there is nothing to undo
    const std::string* redoName() const;

    void addObserver(DocumentObserver* observer);
    void removeObserver(DocumentObserver* observer);

    // --- loading: used by the file reader, before any transaction ------------------------------------------------
    ArtId loadArt(AIArtType kind, ArtId parent);  // at the top of parent's children (files list the lowest first)
    LayerId loadLayer(const std::string& title);  // on top
    Art& loading(ArtId id);
    Layer& loadingLayer(LayerId id);
    void finishLoading();

    DocumentSource* source() const;  // null when none was set
    void setSource(std::unique_ptr<DocumentSource> source);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Advance of a text at size 1 comes from the fonts; bounds of texts need it. Set once by the host; without it a
// character counts 0.6 em. Gives back the one before.
using TextMeasure = float (*)(const std::string& font, char32_t character);
TextMeasure setTextMeasure(TextMeasure measure);

}  // namespace quorvel::doc
