// The walk over a parsed file that loads its art into a document: groups, outlines, texts, copies made by use elements.
// It keeps its own stack, so that no depth of nesting costs more than an error.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/result.h"
#include "document/document.h"
#include "interchange/svg/path_style.h"
#include "interchange/svg/source.h"
#include "svg/values/path_data.h"

namespace quorvel::interchange {

// Elements deeper than this are refused; real drawings stay far below, and other readers stop here too.
constexpr int kDeepestElement = 256;

std::string_view localName(const pugi::xml_node& element);

// The part of a file that is looked up by id.
class SvgIds {
  public:
    explicit SvgIds(const pugi::xml_node& root) : root_(root) {}
    pugi::xml_node find(std::string_view id);  // the first with this id

  private:
    pugi::xml_node root_;
    bool indexed_ = false;
    std::unordered_map<std::string_view, pugi::xml_node> byId_;
};

// "#id" of an href attribute under any prefix, without "#"; empty when there is none.
std::string_view hrefId(const pugi::xml_node& element);

struct SvgGradient {
    bool linear = false, inUserSpace = false;
    double x1 = 0, y1 = 0, x2 = 1, y2 = 0;
    svg::Affine own;
};

// Gradients get their angle; patterns and the like are kept as texts.
class SvgPaints : public PaintLookup {
  public:
    SvgPaints(SvgIds* ids, doc::Document* document);
    AIColor paintOf(std::string_view reference, const svg::Affine& toDocument) override;

  private:
    std::optional<SvgGradient> gradientOf(std::string_view reference);

    SvgIds& ids_;
    doc::Document& document_;
    std::unordered_map<std::string, std::int32_t> numbers_;
    std::unordered_map<std::int32_t, std::optional<SvgGradient>> gradients_;  // by the reference's number, once read
};

struct Viewport {
    double width = 0, height = 0;
    double diagonal() const;
};
// Maps a viewBox into a viewport at the origin; the identity when there is no sound viewBox. *box becomes its size.
svg::Affine viewBoxMap(const pugi::xml_node& element, const Viewport& viewport, Viewport* box);

class SvgWalk {
  public:
    SvgWalk(doc::Document* document, SvgSource* source, SvgIds* ids);

    svg::StyleResolver resolver;
    std::set<Error> warnings;
    std::vector<std::string> svgPrefixes;                         // with colon, in order; "" among them
    std::vector<std::string> looseLayerTitles;                    // for art in no layer element, lowest first
    std::vector<std::pair<pugi::xml_node, doc::LayerId>> layers;  // the root's node for loose art

    // An error names the element.
    Status run(const pugi::xml_node& root, const svg::Affine& toDocument, const Viewport& viewport);

  private:
    struct Frame {
        pugi::xml_node next;  // child to be read
        doc::ArtId art = 0;   // 0 on the root, where layers come first
        std::int32_t element = -1;
        std::int32_t origin = 0;
        std::uint32_t ctm = 0;
        svg::SvgStyle style;
        Viewport viewport;
        svg::Affine map;
        bool copied = false;    // below a use element: has no elements in the source
        bool single = false;    // only this one child: what a use element refers to
        pugi::xml_node target;  // of the use element that this frame stands for
        Viewport useSize;       // of the use element, 0 where it gives none
    };
    struct Element {  // on the way from the file into the document
        pugi::xml_node node;
        std::string_view name;
        svg::SvgStyle style;
        svg::Affine map;
        bool hasOwn = false, hasSodipodi = false;  // attributes of these namespaces
        std::int32_t number = -1;
        std::int32_t origin = -1;
    };

    bool fail(const pugi::xml_node& node, Error error);
    bool fail(const pugi::xml_node& node, ErrorCode code) { return fail(node, makeError(code)); }
    bool step();
    bool payForCopy(const pugi::xml_node& node);
    bool visit(const pugi::xml_node& node);
    bool isSvg(const pugi::xml_node& node) const;
    bool enterContainer(Element* element);
    bool enterUse(Element* element);
    bool loadOutline(Element* element);
    Status drawShape(const Element& element, svg::PathBuilder* builder);
    bool loadText(Element* element);
    bool loadForeign(Element* element);
    doc::ArtId parentArt();
    std::uint32_t ctmNumber(const Element& element);
    void record(Element* element, SvgKind kind);
    doc::Art& loadOwn(const Element& element, doc::ArtId art);
    void loadTags(const Element& element, doc::ArtId art);
    std::optional<int> onlyMember(const Element& element) const;
    // Empty when the element has none.
    std::string_view ownValue(const Element& element, const char* name) const;
    std::string_view sodipodiValue(const Element& element, const char* name) const;
    doc::ArtId loadPaths(const Element& element);
    void applyOutlineAttributes(const Element& element);
    AIPathStyle styleOf(const Element& element);
    std::int32_t styleNumber(const Element& element);
    // Nothing for an attribute that is not there, and for a bad one, which *bad then names.
    std::optional<double> length(const Element& element, const char* name, double percentOf, std::string* bad);

    doc::Document& document_;
    SvgSource& source_;
    SvgIds& ids_;
    SvgPaints paints_;
    StyleTable styles_;
    std::vector<Frame> stack_;
    pugi::xml_node root_;
    doc::ArtId looseArt_ = 0;  // root of the layer that takes the next art in no layer element
    std::size_t looseLayers_ = 0;
    std::optional<bool> hasLayers_;  // below the root; looked for when it is first asked
    std::size_t copies_ = 0;
    std::size_t textGrowth_ = 0;  // what entities in texts may still add, in bytes
    svg::PathShape shape_;
    // The style number of the last element, for the computed style and scale that it was made of.
    std::uint64_t lastStyle_ = 0;
    double lastScale_ = 0;
    std::int32_t lastStyleNumber_ = -1;
    Error error_;  // of the element at which the walk has ended
};

}  // namespace quorvel::interchange
