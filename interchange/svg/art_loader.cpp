// Each element becomes art in its place, has its id, marks and tags, and leaves in its record how it was read.
#include "interchange/svg/art_loader.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/outline_attributes.h"
#include "interchange/svg/own_attributes.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/xml_file.h"
#include "svg/tree/shapes.h"

namespace quorvel::interchange {

using svg::Role;
using svg::Visit;
using svg::XmlAttribute;
using svg::XmlNode;

ArtLoader::ArtLoader(doc::Document* document, SvgSource* source)
    : document_(*document),
      source_(*source),
      paints_(source),
      styles_(&source->styles),
      textGrowth_((std::size_t{4} << 20) + 4 * source->text->size()) {}

void ArtLoader::begin(const Visit& root) {
    root_ = root.node;
    open_.push_back(0);
    source_.records.emplace_back();
    recordOf(root).style = styleNumber(root);
}

void ArtLoader::finish() {
    if (document_.layers().empty()) parentArt();
}

Status ArtLoader::visit(const Visit& visit) {
    source_.records.emplace_back();
    marks_ = {};
    for (const XmlAttribute& attribute : visit.node.attributes()) {
        const std::string_view name = attribute.name();
        marks_.own |= name.starts_with(source_.names().own);
        marks_.sodipodi |= name.starts_with(source_.names().sodipodi);
    }
    switch (visit.role) {
        case Role::kGroup:
        case Role::kViewport:
        case Role::kUse:
            isLayer(visit) ? loadLayer(visit) : loadGroup(visit);
            return {};
        case Role::kText:
            return loadText(visit);
        case Role::kForeign:
            loadOwn(visit, document_.loadArt(kForeignArt, parentArt()));
            return {};
        default:
            return loadOutline(visit);
    }
}

void ArtLoader::leave(const svg::Element& element, std::int32_t number) {
    if (element.role == Role::kUse && !element.isInstance)
        source_.records[static_cast<std::size_t>(number)].content =
            contentHash(document_, document_.loading(open_.back()));
    open_.pop_back();
}

// --- places --------------------------------------------------------------------------------------------------------

bool ArtLoader::rootHasLayers() {
    if (!hasLayers_) {
        const auto children = root_.children();
        hasLayers_ = std::any_of(children.begin(), children.end(), [&](const XmlNode& child) {
            return child.localName() == "g" &&
                   child.attribute(source_.names().inkscape, "groupmode").value() == "layer";
        });
    }
    return *hasLayers_;
}

doc::ArtId ArtLoader::parentArt() {
    const doc::ArtId parent = open_.back();
    if (parent != 0) return parent;
    if (looseArt_ != 0) return looseArt_;
    std::string title = "Layer 1";
    if (rootHasLayers()) title = looseLayers_ == 0 ? "<root>" : "<root> " + std::to_string(looseLayers_ + 1);
    if (looseLayers_ < looseLayerTitles.size()) title = looseLayerTitles[looseLayers_];
    ++looseLayers_;
    const doc::LayerId id = document_.loadLayer(title);
    document_.loadingLayer(id).ref = {0};
    layers.emplace_back(0, id);
    return looseArt_ = document_.loadingLayer(id).root;
}

// Nothing is ever written into what a use element refers to: its copies have no id and no tags.
doc::Art& ArtLoader::loadOwn(const Visit& visit, doc::ArtId id) {
    doc::Art& art = document_.loading(id);
    art.ref = {visit.element};
    art.hidden = !visit.style.displayed || (art.kind != kGroupArt && !visit.style.visible);
    if (visit.isInstance) return art;
    art.name = visit.node.attribute("id").value();
    art.locked = sodipodiValue(visit, "insensitive") == "true";
    SvgRecord& record = recordOf(visit);
    record.hidden = art.hidden;
    record.locked = art.locked;
    if (marks_.own) loadTags(visit, id);
    return art;
}

// The member of a compound path that alone has tags: when another editor has left but one piece, it is the one.
std::optional<int> ArtLoader::onlyMember(const Visit& visit) const {
    const std::string& prefix = source_.names().own;
    std::optional<int> only;
    for (const XmlAttribute& attribute : visit.node.attributes()) {
        const std::string_view name = attribute.name();
        if (!name.starts_with(prefix)) continue;
        const std::optional<TagPlace> tag = tagOfAttribute(name.substr(prefix.size()));
        if (!tag || tag->member < 0 || memberOfIdAttribute(name.substr(prefix.size()))) continue;
        if (only && *only != tag->member) return std::nullopt;
        only = tag->member;
    }
    return only;
}

void ArtLoader::loadTags(const Visit& visit, doc::ArtId id) {
    const std::string& prefix = source_.names().own;
    std::vector<doc::ArtId> members;  // of a compound path, the lowest first; listed for the first tag that asks
    std::optional<std::optional<int>> only;
    for (const XmlAttribute& attribute : visit.node.attributes()) {
        const std::string_view name = attribute.name();
        if (!name.starts_with(prefix)) continue;
        std::optional<TagPlace> tag = tagOfAttribute(name.substr(prefix.size()));
        if (!tag || tag->name.empty()) continue;
        doc::ArtId bearer = id;
        const bool isId = memberOfIdAttribute(name.substr(prefix.size())).has_value();
        if (tag->member >= 0) {
            if (document_.loading(id).kind == kPathArt) {
                if (isId) continue;  // the element has its own
                if (!only) only = onlyMember(visit);
                if (*only && ownValue(visit, tagAttribute({-1, tag->name})).empty())
                    document_.loading(id).tags.push_back({std::move(tag->name), decodeBytes(attribute.value())});
                continue;
            }
            if (document_.loading(id).kind != kCompoundPathArt) continue;
            if (members.empty()) {
                for (doc::ArtId at = document_.loading(id).lastChild; at != 0; at = document_.loading(at).above)
                    members.push_back(at);
            }
            if (static_cast<std::size_t>(tag->member) >= members.size()) continue;
            bearer = members[static_cast<std::size_t>(tag->member)];
        }
        if (isId)
            document_.loading(bearer).name = decodeBytes(attribute.value());
        else
            document_.loading(bearer).tags.push_back({std::move(tag->name), decodeBytes(attribute.value())});
    }
}

std::string_view ArtLoader::ownValue(const Visit& visit, std::string_view name) const {
    return marks_.own ? visit.node.attribute(source_.names().own, name).value() : std::string_view();
}

std::string_view ArtLoader::sodipodiValue(const Visit& visit, std::string_view name) const {
    return marks_.sodipodi ? visit.node.attribute(source_.names().sodipodi, name).value() : std::string_view();
}

// Neighbours mostly look alike. A reference may look different in each.
std::int32_t ArtLoader::styleNumber(const Visit& visit) {
    const bool plain = !marks_.own && visit.style.fill.kind != svg::SvgPaint::kReference &&
                       visit.style.stroke.kind != svg::SvgPaint::kReference;
    const double scale = visit.map.scale();
    if (plain && hasLastStyle_ && visit.style.number == lastStyle_ && scale == lastScale_) return lastStyleNumber_;
    const std::int32_t number = styles_.add(styleOf(visit));
    if (plain) {
        hasLastStyle_ = true;
        lastStyle_ = visit.style.number;
        lastScale_ = scale;
        lastStyleNumber_ = number;
    }
    return number;
}

AIPathStyle ArtLoader::styleOf(const Visit& visit) {
    AIPathStyle style = pathStyleOf(visit.style, visit.map, &paints_);
    if (const auto fill = ownValue(visit, own_attribute::kFill); !fill.empty())
        style.fill = withExactPaint(style.fill, visit.style.fill, fill);
    if (const auto stroke = ownValue(visit, own_attribute::kStroke); !stroke.empty())
        style.stroke = withExactPaint(style.stroke, visit.style.stroke, stroke);
    return style;
}

// --- containers ----------------------------------------------------------------------------------------------------

bool ArtLoader::isLayer(const Visit& visit) const {
    return readsLayers && open_.back() == 0 && visit.name == "g" &&
           visit.node.attribute(source_.names().inkscape, "groupmode").value() == "layer";
}

void ArtLoader::loadGroup(const Visit& visit) {
    const doc::ArtId art = document_.loadArt(kGroupArt, parentArt());
    loadOwn(visit, art);
    open_.push_back(art);
    if (visit.isInstance) return;
    recordOf(visit).style = styleNumber(visit);
    if (visit.role == Role::kUse)
        source_.uses.push_back({visit.element, visit.use.x, visit.use.y, visit.use.width, visit.use.height});
}

void ArtLoader::loadLayer(const Visit& visit) {
    std::string title(visit.node.attribute(source_.names().inkscape, "label").value());
    const XmlAttribute id = visit.node.attribute("id");
    if (title.empty()) title = id ? id.value() : "Layer";
    const doc::LayerId number = document_.loadLayer(title);
    doc::Layer& layer = document_.loadingLayer(number);
    layer.visible = visit.style.displayed;
    layer.editable = sodipodiValue(visit, "insensitive") != "true";
    layer.ref = {visit.element};
    document_.loading(layer.root).ref = {visit.element};
    open_.push_back(layer.root);
    layers.emplace_back(visit.element, number);
    looseArt_ = 0;
    const std::int32_t style = styleNumber(visit);
    SvgRecord& record = recordOf(visit);
    record.isLayer = true;
    record.hidden = !layer.visible;
    record.locked = !layer.editable;
    record.style = style;
}

// --- what is drawn -------------------------------------------------------------------------------------------------

void ArtLoader::applyOutlineAttributes(const Visit& visit) {
    if (const auto ends = ownValue(visit, own_attribute::kEnds); !ends.empty()) readEnds(ends, visit.map, &shape_);
    if (const auto types = sodipodiValue(visit, "nodetypes"); !types.empty()) readNodeTypes(types, &shape_);
    if (const auto corners = ownValue(visit, own_attribute::kCorners); !corners.empty())
        readNodeTypes(corners, &shape_);
}

// One path, or a compound path with the pieces as its members.
doc::ArtId ArtLoader::loadPaths(const Visit& visit) {
    const bool compound = shape_.pieces.size() > 1 || !ownValue(visit, own_attribute::kMembers).empty();
    const bool guide = !ownValue(visit, own_attribute::kGuide).empty();
    const std::int32_t style = styleNumber(visit);
    const doc::ArtId top = document_.loadArt(compound ? kCompoundPathArt : kPathArt, parentArt());
    const auto fill = [&](doc::ArtId id, const svg::PathShape::Piece* piece) {
        doc::PathData& path = *document_.loading(id).path;
        if (piece) {
            const auto segments = shape_.of(*piece);
            path.segments.assign(segments.begin(), segments.end());
            path.closed = piece->closed;
        }
        path.guide = guide;
        path.style = source_.styles[static_cast<std::size_t>(style)];
    };
    if (compound) {
        for (const svg::PathShape::Piece& piece : shape_.pieces) fill(document_.loadArt(kPathArt, top), &piece);
    } else {
        fill(top, shape_.pieces.empty() ? nullptr : &shape_.pieces.front());
    }
    if (!visit.isInstance) {
        SvgRecord& record = recordOf(visit);
        record.style = style;
        record.content = outlineHash(document_, document_.loading(top));
    }
    return top;
}

Status ArtLoader::loadOutline(const Visit& visit) {
    shape_.clear();
    svg::PathBuilder builder(&shape_, visit.map);
    const Status drawn = svg::drawOutline(visit, &builder);
    if (!drawn && !svg::isFaultOfElement(drawn.error().code)) return drawn;
    applyOutlineAttributes(visit);
    loadOwn(visit, loadPaths(visit));
    return drawn;
}

// Parsed again, because in a text blanks count.
Status ArtLoader::loadText(const Visit& visit) {
    const std::string_view markup = svg::elementText(visit.text, visit.node.offset());
    const std::optional<std::string> plain = svg::expandMarkup(markup, source_.entities(), &textGrowth_);
    if (!plain) return makeError(ErrorCode::kEntitiesTooLarge);
    svg::XmlFile fragment;
    if (!fragment.parseWithBlanks(*plain)) return makeError(ErrorCode::kTextUnreadable);
    TextContext context{source_.tree.file->cascade(), paints_, fonts_, source_.names(), visit.viewport.diagonal()};
    SvgText text;
    if (!readText(fragment.root(), visit.map, visit.style, &context, &text))
        return makeError(ErrorCode::kStyleSheetsTooCostly);
    const RealMatrix& m = text.text.matrix;
    if (!(std::abs(visit.map.x(text.x, text.y)) <= 1e9) || !(std::abs(visit.map.y(text.x, text.y)) <= 1e9))
        return makeError(ErrorCode::kCoordinateOutOfRange);
    if (!visit.isInstance) {
        recordOf(visit).text = static_cast<std::int32_t>(source_.texts.size());
        source_.texts.push_back({m, text.x, text.y, textHash(text.text, true)});
    }
    const doc::ArtId art = document_.loadArt(kTextFrameArt, parentArt());
    *document_.loading(art).text = std::move(text.text);
    loadOwn(visit, art);
    return {};
}

}  // namespace quorvel::interchange
