// Loads the art of a drawing into a document while its tree is made: groups, layers, outlines, texts, tags.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"
#include "document/document.h"
#include "interchange/svg/paint_lookup.h"
#include "interchange/svg/path_style.h"
#include "interchange/svg/source.h"
#include "interchange/svg/text.h"
#include "svg/tree/walk.h"
#include "svg/values/path_data.h"

namespace quorvel::interchange {

class ArtLoader : public svg::TreeVisitor {
  public:
    // The source has its tree, which the walk fills.
    ArtLoader(doc::Document* document, SvgSource* source);

    std::vector<std::string> looseLayerTitles;                  // for art in no layer element, lowest first
    bool readsLayers = true;                                    // groups below the root may be layers
    std::vector<std::pair<std::int32_t, doc::LayerId>> layers;  // by their elements; 0 for loose art

    void begin(const svg::Visit& root) override;
    Status visit(const svg::Visit& visit) override;
    void leave(const svg::Element& element, std::int32_t number) override;
    // Behind the walk: every drawing has a layer.
    void finish();
    const FontNames& fonts() const { return fonts_; }  // of the texts that were read

  private:
    struct Marks {  // attributes of these namespaces
        bool own = false, sodipodi = false;
    };

    Status loadOutline(const svg::Visit& visit);
    Status loadText(const svg::Visit& visit);
    void loadGroup(const svg::Visit& visit);
    void loadLayer(const svg::Visit& visit);
    bool isLayer(const svg::Visit& visit) const;
    doc::ArtId loadPaths(const svg::Visit& visit);
    void applyOutlineAttributes(const svg::Visit& visit);

    doc::ArtId parentArt();
    bool rootHasLayers();
    doc::Art& loadOwn(const svg::Visit& visit, doc::ArtId art);
    void loadTags(const svg::Visit& visit, doc::ArtId art);
    std::optional<int> onlyMember(const svg::Visit& visit) const;
    // Empty when the element has none.
    std::string_view ownValue(const svg::Visit& visit, std::string_view name) const;
    std::string_view sodipodiValue(const svg::Visit& visit, std::string_view name) const;
    AIPathStyle styleOf(const svg::Visit& visit);
    std::int32_t styleNumber(const svg::Visit& visit);
    SvgRecord& recordOf(const svg::Visit& visit) { return source_.records[static_cast<std::size_t>(visit.element)]; }

    doc::Document& document_;
    SvgSource& source_;
    SvgPaints paints_;
    StyleTable styles_;
    FontNames fonts_;
    svg::XmlNode root_;
    Marks marks_;                   // of the element that is visited
    std::vector<doc::ArtId> open_;  // art of the elements around, 0 for the root
    doc::ArtId looseArt_ = 0;       // root of the layer that takes the next art in no layer element
    std::size_t looseLayers_ = 0;
    std::optional<bool> hasLayers_;  // below the root; looked for when it is first asked
    std::size_t textGrowth_ = 0;     // what entities in texts may still add, in bytes
    svg::PathShape shape_;
    // The style number of the last element, for the computed style and scale that it was made of.
    bool hasLastStyle_ = false;
    std::uint32_t lastStyle_ = 0;
    double lastScale_ = 0;
    std::int32_t lastStyleNumber_ = -1;
};

}  // namespace quorvel::interchange
