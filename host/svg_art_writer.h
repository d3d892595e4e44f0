// The elements of a saved drawing: new art becomes elements, changed art has its start tag edited, everything else is
// copied. Which of them apply where is the splicer's business.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/svg_ground.h"
#include "host/svg_markup.h"
#include "host/svg_path_style.h"
#include "host/svg_rules.h"
#include "host/svg_source.h"

namespace quorvel::host {

// What an element finds around it where it is written.
struct SvgScope {
    Affine map;               // user space to document
    std::int32_t style = -1;  // what is inherited, of the source's styles; -1 when that is not known
    std::uint8_t oddities = 0;
    std::string lineBreak;  // before each child: a line end with its indentation, or nothing
};

class SvgArtWriter {
  public:
    SvgArtWriter(const Document& document, const SvgGround& ground)
        : document_(document), ground_(ground), source_(ground.source()), rules_(source_) {}

    // Namespaces that what was written needs.
    bool usesOwn = false, usesInkscape = false, usesSodipodi = false;

    std::string ownName(std::string_view attribute);
    std::string inkscapeName(std::string_view attribute);
    std::string svgName(std::string_view element) const { return source_.names.svg + std::string(element); }
    StartTag newTag(std::string_view element) const;
    const SvgRules& rules() const { return rules_; }
    // An element that has got another name or id keeps what style sheets say of it.
    void keepLook(StartTag* tag, const StartTag& was) const;
    // The tag of an element for the definitions in a removed one, from which they inherit the same.
    std::string definitionsTag(StartTag tag) const;

    // Id, hidden, locked and tags. record: how the element was read, null for new art.
    void markTag(StartTag* tag, const Art& art, const SvgElement* record);
    void hideTag(StartTag* tag, bool hidden, const SvgElement* record);
    void lockTag(StartTag* tag, bool locked);
    void layerTag(StartTag* tag, const Layer& layer, const SvgElement* record);

    // Whole elements for new paths, compound paths, texts and copies of foreign art; their text from "<" to ">".
    std::string newLeaf(const Art& art, const SvgScope& scope);

    // Edits of elements that were read. `inPlace`: what is around is as it was then.
    // True when the element is a path element now.
    bool editOutline(StartTag* tag, const Art& art, const SvgElement& record, const SvgScope& scope, bool inPlace);
    // The new content when that has to be replaced.
    std::optional<std::string> editText(StartTag* tag, const Art& art, const SvgElement& record, const SvgScope& scope,
                                        bool inPlace);
    void editForeign(StartTag* tag, const Art& art, const SvgScope& scope);

  private:
    void setOutline(StartTag* tag, const Art& art, const Affine& map);
    void setStyle(StartTag* tag, const AIPathStyle& style, const AIPathStyle* inForce, const AIPathStyle* original,
                  double scale);
    void setOwn(StartTag* tag, const char* attribute, const std::string& value);
    void setText(StartTag* tag, const Art& art, const SvgScope& scope, std::string* content);
    bool moveText(StartTag* tag, const Art& art, const SvgElement& record, const SvgScope& scope);
    bool sameMap(const SvgElement& record, const SvgScope& scope) const;

    const Document& document_;
    const SvgGround& ground_;
    const SvgSource& source_;
    SvgRules rules_;
};

}  // namespace quorvel::host
