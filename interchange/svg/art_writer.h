// The elements of a saved drawing: new art becomes elements, changed art has its start tag edited, everything else is
// copied. Which of them apply where is the splicer's business.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/svg/clones/save_base.h"
#include "interchange/svg/path_style.h"
#include "interchange/svg/rules.h"
#include "interchange/svg/source.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

// What an element finds around it where it is written.
struct SvgScope {
    svg::Affine map;          // user space to document
    std::int32_t style = -1;  // what is inherited, of the source's styles; -1 when that is not known
    std::uint8_t unmodelledProperties = 0;
    std::string lineBreak;  // before each child: a line end with its indentation, or nothing
};

class SvgArtWriter {
  public:
    SvgArtWriter(const doc::Document& document, const SaveBase& base)
        : document_(document), base_(base), source_(base.source()), rules_(source_) {}

    // Namespaces that what was written needs.
    bool usesOwn = false, usesInkscape = false, usesSodipodi = false;

    std::string ownName(std::string_view attribute);
    std::string inkscapeName(std::string_view attribute);
    std::string svgName(std::string_view element) const { return source_.names().svg + std::string(element); }
    svg::StartTag newTag(std::string_view element) const;
    const SvgRules& rules() const { return rules_; }
    // An element that has got another name or id keeps what style sheets say of it.
    void preserveComputedStyle(svg::StartTag* tag, const svg::StartTag& was) const;
    // The tag of an element for the definitions in a removed one, from which they inherit the same.
    std::string definitionsTag(svg::StartTag tag) const;

    // Id, hidden, locked and tags. element: theirs in the base, -1 for new art.
    void markTag(svg::StartTag* tag, const doc::Art& art, std::int32_t element);
    void hideTag(svg::StartTag* tag, bool hidden, std::int32_t element);
    void lockTag(svg::StartTag* tag, bool locked);
    void layerTag(svg::StartTag* tag, const doc::Layer& layer, std::int32_t element);

    // Whole elements for new paths, compound paths, texts and copies of foreign art; their text from "<" to ">".
    std::string newLeaf(const doc::Art& art, const SvgScope& scope);

    // Edits of elements that were read. `inPlace`: what is around is as it was then.
    // True when the element is a path element now.
    bool editOutline(svg::StartTag* tag, const doc::Art& art, std::int32_t element, const SvgScope& scope,
                     bool inPlace);
    // The new content when that has to be replaced.
    std::optional<std::string> editText(svg::StartTag* tag, const doc::Art& art, std::int32_t element,
                                        const SvgScope& scope, bool inPlace);
    void editForeign(svg::StartTag* tag, const doc::Art& art, const SvgScope& scope);

  private:
    void setOutline(svg::StartTag* tag, const doc::Art& art, const svg::Affine& map);
    void setStyle(svg::StartTag* tag, const AIPathStyle& style, const AIPathStyle* inForce, const AIPathStyle* original,
                  double scale);
    void setOwn(svg::StartTag* tag, const char* attribute, const std::string& value);
    void setText(svg::StartTag* tag, const doc::Art& art, const SvgScope& scope, std::string* content);
    bool moveText(svg::StartTag* tag, const doc::Art& art, std::int32_t element, const SvgScope& scope);
    bool sameMap(std::int32_t element, const SvgScope& scope) const;

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    SvgRules rules_;
};

}  // namespace quorvel::interchange
