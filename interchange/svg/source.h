// What stays of a file behind its document: the text as it was read, the tree of what is drawn, and just enough of each
// element to tell later whether its art has changed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "document/document.h"
#include "interchange/svg/text_form.h"
#include "svg/markup/entities.h"
#include "svg/markup/namespaces.h"
#include "svg/tree/tree.h"
#include "svg/values/affine.h"

namespace quorvel::interchange {

// How the art of an element was when it was read. Of an instance only what its use element asks for is filled.
struct SvgRecord {
    std::uint64_t content = 0;  // outlineHash of a path or shape, contentHash of a use element's art
    std::int32_t style = -1;    // paths and shapes: their style; containers: what their content inherits
    std::int32_t text = -1;
    bool isLayer = false;  // a group below the root that is a layer
    bool hidden = false, locked = false;
};

// How a text element was when it was read.
struct SvgTextOrigin {
    RealMatrix matrix;
    double x = 0, y = 0;        // in the element's own space
    std::uint64_t wording = 0;  // textHash of its text
};

// How a use element places what it refers to, in user units; a size of 0 is none.
struct SvgUse {
    std::int32_t element = -1;
    double x = 0, y = 0, width = 0, height = 0;
};

// Paints of a drawing by their texts ("url(#id)" and the like); all there is of one that is in no file yet.
class PaintTexts : public doc::DocumentSource {
  public:
    std::unordered_set<std::string> reservedNames() const override { return {}; }
    std::string paintText(std::int32_t reference) const override;
    std::int32_t paintReference(const std::string& text) override;
    const std::vector<std::string>& all() const { return texts_; }  // number 1 first

  private:
    std::vector<std::string> texts_;
    std::unordered_map<std::string, std::int32_t> numbers_;
};

struct SvgSource : PaintTexts {
    std::unordered_set<std::string> reservedNames() const override;  // of elements that are no art

    svg::Tree tree;                           // offsets are those in the text
    std::shared_ptr<const std::string> text;  // the file's, or one that saving has made of it
    std::vector<SvgRecord> records;           // of the tree's elements
    std::vector<doc::StylePtr> styles;
    std::vector<SvgTextOrigin> texts;
    std::vector<SvgUse> uses;  // those that are no instances, in their order
    bool hasStyleSheet = false;
    TextForm form;  // of the file that was read
    std::string rulerUnit;
    std::uint32_t namedViewOffset = 0;  // of the name of the named view element, 0 when there is none
    // The layer that the file names as the current one; 0 when it names none, so that it is the topmost.
    doc::LayerId currentLayer = 0;

    const svg::Element& element(std::int32_t number) const { return tree[number]; }
    const SvgRecord& record(std::int32_t number) const { return records[static_cast<std::size_t>(number)]; }
    const svg::SvgNames& names() const { return tree.file->names(); }
    const svg::XmlEntities& entities() const { return tree.file->entities(); }
    // The element in which the art or layer is written, -1 for none: copies and instances have none of their own.
    std::int32_t elementOf(const doc::SourceRef& ref) const {
        const bool isOwn = ref.index >= 0 && !ref.isCopy && !element(ref.index).isInstance;
        return isOwn ? ref.index : -1;
    }
};

// Null for a document that was not read from a file.
inline SvgSource* svgSource(const doc::Document& document) { return dynamic_cast<SvgSource*>(document.source()); }

}  // namespace quorvel::interchange
