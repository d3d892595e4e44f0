// Each element goes the same way: its style, its transform, its place among the art, then what it draws. Outlines that
// cannot be read whole refuse the file, because a drawing that is half there would be measured wrongly.
#include "interchange/svg/art_loader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/text.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/entities.h"
#include "svg/values/length.h"
#include "svg/values/number.h"
#include "svg/values/paint.h"

namespace quorvel::interchange {
namespace {

// Work that copies made by use elements may cost, in elements or 256 bytes of what is read again for them.
constexpr std::size_t kMostCopies = 300'000;
constexpr std::size_t kBytesForOne = 256;

enum class Role : std::uint8_t { kNone, kContainer, kPath, kShape, kText, kUse, kForeign };

struct ElementRole {
    std::string_view name;
    Role role;
};

// Whatever is not here is unknown. Those of no role are no art: they are kept and spoken of nowhere.
constexpr std::array kRoles = {
    ElementRole{"a", Role::kContainer},
    ElementRole{"animate", Role::kNone},
    ElementRole{"animateMotion", Role::kNone},
    ElementRole{"animateTransform", Role::kNone},
    ElementRole{"audio", Role::kForeign},
    ElementRole{"canvas", Role::kForeign},
    ElementRole{"circle", Role::kShape},
    ElementRole{"clipPath", Role::kNone},
    ElementRole{"color-profile", Role::kNone},
    ElementRole{"cursor", Role::kNone},
    ElementRole{"defs", Role::kNone},
    ElementRole{"desc", Role::kNone},
    ElementRole{"ellipse", Role::kShape},
    ElementRole{"filter", Role::kNone},
    ElementRole{"flowRoot", Role::kForeign},
    ElementRole{"font", Role::kNone},
    ElementRole{"font-face", Role::kNone},
    ElementRole{"foreignObject", Role::kForeign},
    ElementRole{"g", Role::kContainer},
    ElementRole{"iframe", Role::kForeign},
    ElementRole{"image", Role::kForeign},
    ElementRole{"line", Role::kShape},
    ElementRole{"linearGradient", Role::kNone},
    ElementRole{"marker", Role::kNone},
    ElementRole{"mask", Role::kNone},
    ElementRole{"metadata", Role::kNone},
    ElementRole{"path", Role::kPath},
    ElementRole{"pattern", Role::kNone},
    ElementRole{"polygon", Role::kShape},
    ElementRole{"polyline", Role::kShape},
    ElementRole{"radialGradient", Role::kNone},
    ElementRole{"rect", Role::kShape},
    ElementRole{"script", Role::kNone},
    ElementRole{"set", Role::kNone},
    ElementRole{"style", Role::kNone},
    ElementRole{"svg", Role::kContainer},
    ElementRole{"switch", Role::kContainer},
    ElementRole{"symbol", Role::kNone},
    ElementRole{"text", Role::kText},
    ElementRole{"title", Role::kNone},
    ElementRole{"use", Role::kUse},
    ElementRole{"video", Role::kForeign},
    ElementRole{"view", Role::kNone},
};
static_assert(std::ranges::is_sorted(kRoles, {}, &ElementRole::name));

const ElementRole* roleOf(std::string_view name) {
    const auto row = std::ranges::lower_bound(kRoles, name, {}, &ElementRole::name);
    return row == kRoles.end() || row->name != name ? nullptr : &*row;
}

std::string_view valueOf(const pugi::xml_node& node, const std::string& prefix, const char* name) {
    return node.attribute((prefix + name).c_str()).value();
}

// Shifts of text end at a container. A style that is not quite what was computed is no other element's.
void settle(svg::SvgStyle* style, bool changed) {
    if (changed || style->baselineShift != 0) style->serial = 0;
    style->baselineShift = 0;
}

}  // namespace

SvgWalk::SvgWalk(doc::Document* document, SvgSource* source, SvgIds* ids)
    : document_(*document), source_(*source), ids_(*ids), paints_(ids, document), styles_(&source->styles) {
    textGrowth_ = (std::size_t{4} << 20) + 4 * source->text.size();
}

bool SvgWalk::fail(const pugi::xml_node& node, Error error) {
    const auto offset = static_cast<std::ptrdiff_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
    error_ = std::move(error);
    error_.line = std::count(source_.text.begin(), source_.text.begin() + offset, '\n') + 1;
    error_.element = node.name();
    const std::string_view id = node.attribute("id").value();
    if (id.size() < 80) error_.elementId = encodeBytes(id);
    return false;
}

Status SvgWalk::run(const pugi::xml_node& root, const svg::Affine& toDocument, const Viewport& viewport) {
    root_ = root;
    stack_.reserve(kDeepestElement + 2);  // frames stay where they are
    Frame frame;
    frame.next = root.first_child();
    frame.element = 0;
    frame.map = toDocument;
    frame.viewport = viewport;
    svg::SvgStyle initial;
    initial.diagonal = viewport.diagonal();
    Element element{root, localName(root), {}, toDocument};
    source_.ctms.push_back(toDocument);
    const bool computed = resolver.compute(root, initial, &element.style);
    frame.style = element.style;
    stack_.push_back(frame);
    bool sound = computed || fail(root, ErrorCode::kStyleSheetsTooCostly);
    if (sound) {
        source_.elements.push_back({.nameOffset = static_cast<std::uint32_t>(root.offset_debug()),
                                    .style = styleNumber(element),
                                    .kind = SvgKind::kRoot,
                                    .unmodelledProperties = element.style.unmodelledProperties});
        source_.origins.push_back({.nameOffset = static_cast<std::uint32_t>(root.offset_debug())});
        while (sound && !stack_.empty()) sound = step();
    }
    if (sound && document_.layers().empty()) parentArt();
    if (!sound) return error_;
    return {};
}

bool SvgWalk::step() {
    Frame& frame = stack_.back();
    if (!frame.next) {
        if (frame.target && frame.element >= 0) {
            source_.elements[static_cast<std::size_t>(frame.element)].content =
                contentHash(document_, document_.loading(frame.art));
        }
        stack_.pop_back();
        return true;
    }
    const pugi::xml_node node = frame.next;
    frame.next = frame.single ? pugi::xml_node() : node.next_sibling();
    if (frame.copied && !payForCopy(node)) return fail(node, ErrorCode::kTooManyCopies);
    return node.type() != pugi::node_element || visit(node);
}

bool SvgWalk::payForCopy(const pugi::xml_node& node) {
    std::size_t bytes = 0;
    for (const pugi::xml_attribute& attribute : node.attributes())
        bytes += std::string_view(attribute.name()).size() + std::string_view(attribute.value()).size();
    // A text is parsed anew, which costs more than an attribute of its size.
    if (localName(node) == "text")
        bytes += 4 * svg::elementText(source_.text, static_cast<std::uint32_t>(node.offset_debug())).size();
    copies_ += 1 + bytes / kBytesForOne;
    return copies_ <= kMostCopies;
}

bool SvgWalk::isSvg(const pugi::xml_node& node) const {
    const std::string_view name = node.name();
    const std::size_t colon = name.find(':');
    const std::string_view prefix = name.substr(0, colon == std::string_view::npos ? 0 : colon + 1);
    return std::ranges::binary_search(svgPrefixes, prefix);
}

bool SvgWalk::visit(const pugi::xml_node& node) {
    if (!isSvg(node)) return true;
    const Frame& frame = stack_.back();
    Element element{node, localName(node), {}, frame.map};
    const ElementRole* row = roleOf(element.name);
    if (!row) {
        warnings.insert(makeError(ErrorCode::kUnknownElements, {encodeBytes(element.name.substr(0, 40))}));
        return true;
    }
    const Role role = frame.single && element.name == "symbol" ? Role::kContainer : row->role;
    if (role == Role::kNone) return true;
    if (stack_.size() > kDeepestElement) return fail(node, ErrorCode::kNestedTooDeeply);
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        element.hasOwn |= name.starts_with(source_.names.own);
        element.hasSodipodi |= name.starts_with(source_.names.sodipodi);
    }
    if (!resolver.compute(node, frame.style, &element.style)) return fail(node, ErrorCode::kStyleSheetsTooCostly);
    if (const pugi::xml_attribute transform = node.attribute("transform")) {
        svg::Affine own;
        if (!svg::parseTransform(transform.value(), &own)) return fail(node, ErrorCode::kBadTransform);
        element.map = svg::compose(frame.map, own);
        if (!element.map.finite()) return fail(node, ErrorCode::kTransformOutOfRange);
    }
    switch (role) {
        case Role::kContainer:
            return enterContainer(&element);
        case Role::kUse:
            return enterUse(&element);
        case Role::kText:
            return followsPath(node) ? loadForeign(&element) : loadText(&element);
        case Role::kForeign:
            return loadForeign(&element);
        case Role::kPath:
        case Role::kShape:
            return loadOutline(&element);
        case Role::kNone:
            break;
    }
    return true;
}

// --- places --------------------------------------------------------------------------------------------------------

doc::ArtId SvgWalk::parentArt() {
    const doc::ArtId parent = stack_.empty() ? 0 : stack_.back().art;
    if (parent != 0) return parent;
    if (looseArt_ != 0) return looseArt_;
    std::string title = "Layer 1";
    if (!hasLayers_) {
        hasLayers_ = std::ranges::any_of(root_.children(), [&](const pugi::xml_node& child) {
            return localName(child) == "g" && valueOf(child, source_.names.inkscape, "groupmode") == "layer";
        });
    }
    if (*hasLayers_) title = looseLayers_ == 0 ? "<root>" : "<root> " + std::to_string(looseLayers_ + 1);
    if (looseLayers_ < looseLayerTitles.size()) title = looseLayerTitles[looseLayers_];
    ++looseLayers_;
    const doc::LayerId id = document_.loadLayer(title);
    document_.loadingLayer(id).source = 0;
    layers.emplace_back(root_, id);
    return looseArt_ = document_.loadingLayer(id).root;
}

std::uint32_t SvgWalk::ctmNumber(const Element& element) {
    const std::uint32_t around = stack_.back().ctm;
    if (source_.ctms[around] == element.map) return around;
    source_.ctms.push_back(element.map);
    return static_cast<std::uint32_t>(source_.ctms.size() - 1);
}

// Copies have an origin alone, so that nothing is ever written into what a use element refers to.
void SvgWalk::record(Element* element, SvgKind kind) {
    const auto nameOffset = static_cast<std::uint32_t>(element->node.offset_debug());
    const std::uint32_t ctm = ctmNumber(*element);
    element->origin = static_cast<std::int32_t>(source_.origins.size());
    source_.origins.push_back({nameOffset, stack_.back().origin, ctm});
    if (stack_.back().copied) return;
    element->number = static_cast<std::int32_t>(source_.elements.size());
    source_.elements.push_back({.nameOffset = nameOffset,
                                .parent = stack_.back().element,
                                .ctm = ctm,
                                .kind = kind,
                                .unmodelledProperties = element->style.unmodelledProperties});
}

doc::Art& SvgWalk::loadOwn(const Element& element, doc::ArtId id) {
    doc::Art& art = document_.loading(id);
    art.source = element.number;
    art.origin = element.origin;
    if (element.number < 0) {
        art.hidden = !element.style.displayed || (art.kind != kGroupArt && !element.style.visible);
        return art;
    }
    art.svgId = element.node.attribute("id").value();
    art.hidden = !element.style.displayed || (art.kind != kGroupArt && !element.style.visible);
    art.locked = sodipodiValue(element, "insensitive") == "true";
    SvgElement& own = source_.elements[static_cast<std::size_t>(element.number)];
    own.hidden = art.hidden;
    own.locked = art.locked;
    if (element.hasOwn) loadTags(element, id);
    return art;
}

// The member of a compound path that alone bears tags: when another editor has left but one piece, it is the one.
std::optional<int> SvgWalk::onlyMember(const Element& element) const {
    const std::string& prefix = source_.names.own;
    std::optional<int> only;
    for (const pugi::xml_attribute& attribute : element.node.attributes()) {
        const std::string_view name = attribute.name();
        if (!name.starts_with(prefix)) continue;
        const std::optional<TagPlace> tag = tagOfAttribute(name.substr(prefix.size()));
        if (!tag || tag->member < 0) continue;
        if (only && *only != tag->member) return std::nullopt;
        only = tag->member;
    }
    return only;
}

void SvgWalk::loadTags(const Element& element, doc::ArtId id) {
    const std::string& prefix = source_.names.own;
    std::vector<doc::ArtId> members;  // of a compound path, the lowest first; listed for the first tag that asks
    std::optional<std::optional<int>> only;
    for (const pugi::xml_attribute& attribute : element.node.attributes()) {
        const std::string_view name = attribute.name();
        if (!name.starts_with(prefix)) continue;
        std::optional<TagPlace> tag = tagOfAttribute(name.substr(prefix.size()));
        if (!tag || tag->name.empty()) continue;
        doc::ArtId bearer = id;
        if (tag->member >= 0) {
            if (document_.loading(id).kind == kPathArt) {
                if (!only) only = onlyMember(element);
                if (*only && ownValue(element, tagAttribute({-1, tag->name}).c_str()).empty())
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
        document_.loading(bearer).tags.push_back({std::move(tag->name), decodeBytes(attribute.value())});
    }
}

std::string_view SvgWalk::ownValue(const Element& element, const char* name) const {
    return element.hasOwn ? valueOf(element.node, source_.names.own, name) : std::string_view();
}

std::string_view SvgWalk::sodipodiValue(const Element& element, const char* name) const {
    return element.hasSodipodi ? valueOf(element.node, source_.names.sodipodi, name) : std::string_view();
}

// Neighbours mostly look alike. A reference may look different in each.
std::int32_t SvgWalk::styleNumber(const Element& element) {
    const svg::SvgStyle& style = element.style;
    const bool plain = !element.hasOwn && style.fill.kind != svg::SvgPaint::kReference &&
                       style.stroke.kind != svg::SvgPaint::kReference;
    const double scale = element.map.scale();
    if (plain && style.serial == lastStyle_ && scale == lastScale_) return lastStyleNumber_;
    const std::int32_t number = styles_.add(styleOf(element));
    if (plain) {
        lastStyle_ = style.serial;
        lastScale_ = scale;
        lastStyleNumber_ = number;
    }
    return number;
}

AIPathStyle SvgWalk::styleOf(const Element& element) {
    AIPathStyle style = pathStyleOf(element.style, element.map, &paints_);
    if (const auto fill = ownValue(element, own_attribute::kFill); !fill.empty())
        style.fill = withExactPaint(style.fill, element.style.fill, fill);
    if (const auto stroke = ownValue(element, own_attribute::kStroke); !stroke.empty())
        style.stroke = withExactPaint(style.stroke, element.style.stroke, stroke);
    return style;
}

// --- containers ----------------------------------------------------------------------------------------------------

bool SvgWalk::enterContainer(Element* element) {
    const Frame& around = stack_.back();
    Frame frame;
    frame.viewport = around.viewport;
    if (element->name == "svg" || element->name == "symbol") {
        std::string bad;
        const double x = length(*element, "x", around.viewport.width, &bad).value_or(0);
        const double y = length(*element, "y", around.viewport.height, &bad).value_or(0);
        Viewport size{length(*element, "width", around.viewport.width, &bad).value_or(around.viewport.width),
                      length(*element, "height", around.viewport.height, &bad).value_or(around.viewport.height)};
        if (!bad.empty()) return fail(element->node, makeError(ErrorCode::kBadLength, {bad}));
        if (around.useSize.width > 0) size.width = around.useSize.width;
        if (around.useSize.height > 0) size.height = around.useSize.height;
        frame.viewport = size;
        element->map = svg::compose(element->map, svg::Affine{1, 0, 0, 1, x, y});
        element->map = svg::compose(element->map, viewBoxMap(element->node, size, &frame.viewport));
        element->style.diagonal = frame.viewport.diagonal();
        if (!element->map.finite()) return fail(element->node, ErrorCode::kViewBoxOutOfRange);
    }
    const bool isLayer = around.art == 0 && element->name == "g" &&
                         valueOf(element->node, source_.names.inkscape, "groupmode") == "layer";
    const doc::ArtId parent = isLayer ? 0 : parentArt();
    record(element, isLayer ? SvgKind::kLayer : SvgKind::kGroup);
    if (isLayer) {
        std::string title(valueOf(element->node, source_.names.inkscape, "label"));
        if (title.empty()) title = element->node.attribute("id").as_string("Layer");
        const doc::LayerId id = document_.loadLayer(title);
        doc::Layer& layer = document_.loadingLayer(id);
        layer.visible = element->style.displayed;
        layer.editable = sodipodiValue(*element, "insensitive") != "true";
        layer.source = element->number;
        frame.art = layer.root;
        document_.loading(layer.root).origin = element->origin;
        SvgElement& own = source_.elements[static_cast<std::size_t>(element->number)];
        own.hidden = !layer.visible;
        own.locked = !layer.editable;
        layers.emplace_back(element->node, id);
        looseArt_ = 0;
    } else {
        frame.art = document_.loadArt(kGroupArt, parent);
        loadOwn(*element, frame.art);
    }
    if (element->number >= 0) {
        const std::int32_t style = styleNumber(*element);
        source_.elements[static_cast<std::size_t>(element->number)].style = style;
    }
    frame.origin = element->origin;
    frame.ctm = source_.origins[static_cast<std::size_t>(element->origin)].ctm;
    frame.next = element->node.first_child();
    frame.element = element->number;
    frame.map = element->map;
    frame.style = element->style;
    settle(&frame.style, element->style.diagonal != around.style.diagonal);
    frame.copied = around.copied;
    stack_.push_back(frame);
    return true;
}

bool SvgWalk::enterUse(Element* element) {
    const Frame& around = stack_.back();
    const pugi::xml_node target = ids_.find(hrefId(element->node));
    const bool loops = std::ranges::any_of(stack_, [&](const Frame& frame) { return frame.target == target; });
    if (!target || loops || !isSvg(target)) {
        warnings.insert(makeError(loops && target ? ErrorCode::kUseOfItself : ErrorCode::kUseOfNothing));
        return loadForeign(element);
    }
    std::string bad;
    Frame frame;
    const double x = length(*element, "x", around.viewport.width, &bad).value_or(0);
    const double y = length(*element, "y", around.viewport.height, &bad).value_or(0);
    frame.useSize = {length(*element, "width", around.viewport.width, &bad).value_or(0),
                     length(*element, "height", around.viewport.height, &bad).value_or(0)};
    if (!bad.empty()) return fail(element->node, makeError(ErrorCode::kBadLength, {bad}));
    const doc::ArtId parent = parentArt();
    record(element, SvgKind::kUse);
    frame.art = document_.loadArt(kGroupArt, parent);
    loadOwn(*element, frame.art);
    if (element->number >= 0) {
        const std::int32_t style = styleNumber(*element);
        source_.elements[static_cast<std::size_t>(element->number)].style = style;
        source_.uses.push_back({element->number, x, y, frame.useSize.width, frame.useSize.height});
    }
    frame.next = target;
    frame.element = element->number;
    frame.origin = element->origin;
    frame.ctm = source_.origins[static_cast<std::size_t>(element->origin)].ctm;
    frame.single = true;
    frame.copied = true;
    frame.target = target;
    frame.viewport = around.viewport;
    frame.map = svg::compose(element->map, svg::Affine{1, 0, 0, 1, x, y});
    if (!frame.map.finite()) return fail(element->node, ErrorCode::kCoordinateOutOfRange);
    frame.style = element->style;
    settle(&frame.style, element->style.diagonal != around.style.diagonal);
    stack_.push_back(frame);
    return true;
}

// --- what is drawn -------------------------------------------------------------------------------------------------

std::optional<double> SvgWalk::length(const Element& element, const char* name, double percentOf, std::string* bad) {
    const pugi::xml_attribute attribute = element.node.attribute(name);
    if (!attribute || std::string_view(attribute.value()) == "auto") return std::nullopt;
    const std::optional<double> value = svg::parseLength(attribute.value(), {percentOf, element.style.fontSize});
    if (!value) *bad = name;
    return value;
}

Status SvgWalk::drawShape(const Element& element, svg::PathBuilder* builder) {
    std::string bad;
    const Viewport& viewport = stack_.back().viewport;
    const auto across = [&](const char* name) { return length(element, name, viewport.width, &bad); };
    const auto down = [&](const char* name) { return length(element, name, viewport.height, &bad); };
    const std::string_view name = element.name;
    if (name == "polyline" || name == "polygon") {
        return svg::parsePoints(element.node.attribute("points").value(), name == "polygon", builder);
    }
    if (name == "rect") {
        const double width = across("width").value_or(0);
        const double height = down("height").value_or(0);
        const std::optional<double> rx = across("rx");
        const std::optional<double> ry = down("ry");
        // A radius that is not given is the other one.
        if (width > 0 && height > 0) {
            svg::drawRect(across("x").value_or(0), down("y").value_or(0), width, height, rx.value_or(ry.value_or(0)),
                          ry.value_or(rx.value_or(0)), builder);
        }
    } else if (name == "line") {
        builder->moveTo(across("x1").value_or(0), down("y1").value_or(0));
        builder->lineTo(across("x2").value_or(0), down("y2").value_or(0));
    } else {
        std::optional<double> rx = across("rx");
        std::optional<double> ry = down("ry");
        if (name == "circle") rx = ry = length(element, "r", viewport.diagonal(), &bad);
        if (!rx) rx = ry;
        if (!ry) ry = rx;
        if (rx && *rx > 0 && *ry > 0) {
            svg::drawEllipse(across("cx").value_or(0), down("cy").value_or(0), *rx, *ry, builder);
        }
    }
    if (!bad.empty()) return makeError(ErrorCode::kBadLength, {bad});
    if (!builder->finish()) return makeError(ErrorCode::kCoordinateOutOfRange);
    return {};
}

namespace {

// A character for each anchor, one more for a closed piece where the writer repeats its first: nothing else fits.
void readNodeTypes(std::string_view types, svg::PathShape* shape) {
    std::size_t plain = 0;
    std::size_t repeated = 0;
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        plain += piece.count;
        repeated += piece.count + (piece.closed ? 1 : 0);
    }
    if (types.size() != plain && types.size() != repeated) return;
    std::size_t at = 0;
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        for (std::uint32_t i = 0; i < piece.count; ++i, ++at) {
            const char type = types[at];
            if (type == 'c' || type == '1') shape->segments[piece.first + i].corner = 1;
            if (type == 's' || type == 'z' || type == 'a' || type == '0') shape->segments[piece.first + i].corner = 0;
        }
        if (types.size() == repeated && piece.closed) ++at;
    }
}

// "x,y x,y" for each piece, parted by ";": the first anchor's arriving and the last one's leaving handle.
void readEnds(std::string_view ends, const svg::Affine& map, svg::PathShape* shape) {
    const char* at = ends.data();
    const char* end = at + ends.size();
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        double v[4];
        if (at != end && *at != ';') {
            for (double& value : v) {
                if (!svg::readNumber(&at, end, &value)) return;
                svg::skipSeparator(&at, end);
            }
            const RealPoint in = map.point(v[0], v[1]);
            const RealPoint out = map.point(v[2], v[3]);
            if (!std::isfinite(in.h) || !std::isfinite(in.v) || !std::isfinite(out.h) || !std::isfinite(out.v)) return;
            if (!piece.closed && piece.count > 0) {
                PathSegment* segments = shape->segments.data() + piece.first;
                segments[0].in = in;
                segments[piece.count - 1].out = out;
                segments[0].corner = svg::cornerByHandles(segments[0]);
                segments[piece.count - 1].corner = svg::cornerByHandles(segments[piece.count - 1]);
            }
        }
        if (at == end) return;
        ++at;
    }
}

}  // namespace

void SvgWalk::applyOutlineAttributes(const Element& element) {
    if (const auto ends = ownValue(element, own_attribute::kEnds); !ends.empty()) readEnds(ends, element.map, &shape_);
    if (const auto types = sodipodiValue(element, "nodetypes"); !types.empty()) readNodeTypes(types, &shape_);
    if (const auto corners = ownValue(element, own_attribute::kCorners); !corners.empty())
        readNodeTypes(corners, &shape_);
}

// One path, or a compound path with the pieces as its members.
doc::ArtId SvgWalk::loadPaths(const Element& element) {
    const bool compound = shape_.pieces.size() > 1 || !ownValue(element, own_attribute::kMembers).empty();
    const bool guide = !ownValue(element, own_attribute::kGuide).empty();
    const std::int32_t style = styleNumber(element);
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
    if (element.number >= 0) {
        SvgElement& record = source_.elements[static_cast<std::size_t>(element.number)];
        record.style = style;
        record.content = outlineHash(document_, document_.loading(top));
    }
    return top;
}

bool SvgWalk::loadOutline(Element* element) {
    shape_.clear();
    svg::PathBuilder builder(&shape_, element->map);
    const Status read = element->name == "path" ? svg::parsePathData(element->node.attribute("d").value(), &builder)
                                                : drawShape(*element, &builder);
    if (!read) return fail(element->node, read.error());
    record(element, element->name == "path" ? SvgKind::kPath : SvgKind::kShape);
    applyOutlineAttributes(*element);
    loadOwn(*element, loadPaths(*element));
    return true;
}

bool SvgWalk::loadText(Element* element) {
    const std::string_view markup =
        svg::elementText(source_.text, static_cast<std::uint32_t>(element->node.offset_debug()));
    pugi::xml_document fragment;  // parsed again, because here blanks count
    const std::optional<std::string> plain = svg::expandMarkup(markup, source_.entities, &textGrowth_);
    if (!plain) return fail(element->node, ErrorCode::kEntitiesTooLarge);
    if (!fragment.load_buffer(plain->data(), plain->size(), pugi::parse_default | pugi::parse_ws_pcdata,
                              pugi::encoding_utf8)) {
        return fail(element->node, ErrorCode::kTextUnreadable);
    }
    SvgText text;
    if (!readText(fragment.document_element(), element->map, element->style, source_.names, &resolver, &paints_,
                  &text)) {
        return fail(element->node, ErrorCode::kStyleSheetsTooCostly);
    }
    const RealMatrix& m = text.text.matrix;
    if (!(std::abs(element->map.x(text.x, text.y)) <= 1e9) || !(std::abs(element->map.y(text.x, text.y)) <= 1e9)) {
        return fail(element->node, ErrorCode::kCoordinateOutOfRange);
    }
    const doc::ArtId parent = parentArt();
    record(element, SvgKind::kText);
    if (element->number >= 0) {
        source_.elements[static_cast<std::size_t>(element->number)].text =
            static_cast<std::int32_t>(source_.texts.size());
        source_.texts.push_back({m, text.x, text.y, textHash(text.text, true)});
    }
    const doc::ArtId art = document_.loadArt(kTextFrameArt, parent);
    *document_.loading(art).text = std::move(text.text);
    loadOwn(*element, art);
    return true;
}

bool SvgWalk::loadForeign(Element* element) {
    if (element->name != "use") {
        warnings.insert(element->name == "text" ? makeError(ErrorCode::kKeptTextsOnPaths)
                                                : makeError(ErrorCode::kKeptElements, {std::string(element->name)}));
    }
    const doc::ArtId parent = parentArt();
    record(element, SvgKind::kForeign);
    loadOwn(*element, document_.loadArt(kForeignArt, parent));
    return true;
}

}  // namespace quorvel::interchange
