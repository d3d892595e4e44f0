// Values are compared with what the file says, not with what was done to the art: what came back to its old state is
// written as it was.
#include "interchange/svg/art_writer.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/exact_text.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/svg.h"
#include "interchange/svg/text.h"
#include "svg/css/declarations.h"
#include "svg/css/style_attribute.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/number.h"
#include "svg/values/path_data.h"

namespace quorvel::interchange {
namespace {

bool samePoint(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

// The paths whose outlines one element shows, lowest first.
std::vector<const doc::Art*> piecesOf(const doc::Document& document, const doc::Art& art) {
    if (art.path) return {&art};
    std::vector<const doc::Art*> pieces;
    for (doc::ArtId id = art.lastChild; id != 0;) {
        const doc::Art* child = document.find(id);
        const std::vector<const doc::Art*> inner = piecesOf(document, *child);
        pieces.insert(pieces.end(), inner.begin(), inner.end());
        id = child->above;
    }
    return pieces;
}

// A compound path is painted as its lowest member.
const AIPathStyle& styleOf(const std::vector<const doc::Art*>& pieces) {
    static const AIPathStyle kNone;
    return pieces.empty() || !pieces.front()->path->style ? kNone : *pieces.front()->path->style;
}

std::string cornersOf(const std::vector<const doc::Art*>& pieces, bool repeatFirst, char corner, char smooth) {
    std::string flags;
    for (const doc::Art* piece : pieces) {
        const auto& segments = piece->path->segments;
        for (const PathSegment& segment : segments) flags += segment.corner ? corner : smooth;
        if (repeatFirst && piece->path->closed && !segments.empty()) flags += segments.front().corner ? corner : smooth;
    }
    return flags;
}

bool cornersAsHandlesSay(const std::vector<const doc::Art*>& pieces) {
    return std::ranges::all_of(pieces, [](const doc::Art* piece) {
        return std::ranges::all_of(piece->path->segments, [](const PathSegment& segment) {
            return (segment.corner != 0) == svg::cornerByHandles(segment);
        });
    });
}

// The handles that path data has no place for, in user space.
std::string endsOf(const std::vector<const doc::Art*>& pieces, const svg::Affine& map) {
    svg::Affine inverse;
    if (!svg::invert(map, &inverse)) return "";
    std::string ends;
    bool any = false;
    for (const doc::Art* piece : pieces) {
        if (piece != pieces.front()) ends += ';';
        const auto& segments = piece->path->segments;
        if (piece->path->closed || segments.empty()) continue;
        const PathSegment& first = segments.front();
        const PathSegment& last = segments.back();
        if (samePoint(first.in, first.p) && samePoint(last.out, last.p)) continue;
        any = true;
        for (const RealPoint& handle : {first.in, last.out}) {
            const svg::LocalPoint local = svg::localPoint(map, inverse, handle);
            if (!ends.empty() && ends.back() != ';') ends += ' ';
            svg::appendNumber(&ends, local.x);
            ends += ',';
            svg::appendNumber(&ends, local.y);
        }
    }
    return any ? ends : "";
}

}  // namespace

// --- names ---------------------------------------------------------------------------------------------------------

std::string SvgArtWriter::ownName(std::string_view attribute) {
    usesOwn = true;
    return source_.names().own + std::string(attribute);
}

std::string SvgArtWriter::inkscapeName(std::string_view attribute) {
    usesInkscape = true;
    return source_.names().inkscape + std::string(attribute);
}

svg::StartTag SvgArtWriter::newTag(std::string_view element) const {
    return svg::StartTag("<" + svgName(element) + "/>");
}

void SvgArtWriter::preserveComputedStyle(svg::StartTag* tag, const svg::StartTag& was) const {
    const std::string id = was.attribute("id").value_or("");
    if (tag->name() == was.name() && tag->attribute("id").value_or("") == id) return;
    rules_.preserveComputedStyle(tag, std::string_view(was.name()).substr(was.name().find(':') + 1), id);
}

std::string SvgArtWriter::definitionsTag(svg::StartTag tag) const {
    const svg::StartTag was = tag;
    tag.rename(svgName("defs"));
    for (const std::string& name : tag.attributeNames()) {
        const bool ofEditors = name.starts_with(source_.names().own) || name.starts_with(source_.names().inkscape) ||
                               name.starts_with(source_.names().sodipodi);
        if (ofEditors || name == "id" || name == "transform" || name == "display" || name == "href") tag.remove(name);
    }
    for (const char* name : {"x", "y", "width", "height", "viewBox", "d", "points"}) tag.remove(name);
    preserveComputedStyle(&tag, was);
    tag.setSelfClosing(false);
    return tag.str();
}

// An attribute that is not there leaves no trace when it is not wanted.
void SvgArtWriter::setOwn(svg::StartTag* tag, const char* attribute, const std::string& value) {
    if (value.empty()) {
        tag->remove(source_.names().own + attribute);
    } else {
        tag->set(ownName(attribute), value);
    }
}

// --- marks ---------------------------------------------------------------------------------------------------------

void SvgArtWriter::hideTag(svg::StartTag* tag, bool hidden, std::int32_t element) {
    if (hidden == (element >= 0 && source_.record(element).hidden)) return;
    if (hidden) {
        svg::setProperty(tag, "display", "none");
        return;
    }
    tag->remove("display");
    svg::removeProperty(tag, "display");
    if (source_.hasStyleSheet) svg::setProperty(tag, "display", "inline");
    if (unmodelledProperties(source_.tree.file->styles(), source_.element(element).style) & kInvisible)
        svg::setProperty(tag, "visibility", "visible");
}

void SvgArtWriter::lockTag(svg::StartTag* tag, bool locked) {
    const std::string name = source_.names().sodipodi + "insensitive";
    if ((tag->attribute(name) == "true") == locked) return;
    if (locked) {
        usesSodipodi = true;
        tag->set(name, "true");
    } else {
        tag->remove(name);
    }
}

void SvgArtWriter::markTag(svg::StartTag* tag, const doc::Art& art, std::int32_t element) {
    if (tag->attribute("id").value_or("") != art.name) {
        if (art.name.empty()) {
            tag->remove("id");
        } else {
            tag->set("id", art.name);
        }
    }
    hideTag(tag, art.hidden, element);
    lockTag(tag, art.locked);

    std::vector<std::pair<std::string, std::string>> wanted;
    const auto want = [&](const doc::Art& bearer, int member) {
        for (const doc::Tag& own : bearer.tags)
            wanted.emplace_back(source_.names().own + tagAttribute({member, own.name}), encodeBytes(own.value));
    };
    want(art, -1);
    if (art.kind == kCompoundPathArt) {
        int number = 0;
        for (const doc::Art* piece : piecesOf(document_, art)) {
            if (!piece->name.empty())
                wanted.emplace_back(source_.names().own + memberIdAttribute(number), encodeBytes(piece->name));
            want(*piece, number++);
        }
    }
    for (const std::string& name : tag->attributeNames()) {
        if (!name.starts_with(source_.names().own) || !tagOfAttribute(name.substr(source_.names().own.size())))
            continue;
        if (std::ranges::find(wanted, name, &std::pair<std::string, std::string>::first) == wanted.end())
            tag->remove(name);
    }
    for (const auto& [name, value] : wanted) {
        const std::optional<std::string> there = tag->attribute(name);
        if (!there || decodeBytes(*there) != decodeBytes(value)) {
            usesOwn = true;
            tag->set(name, value);
        }
    }
}

void SvgArtWriter::layerTag(svg::StartTag* tag, const doc::Layer& layer, std::int32_t element) {
    const bool isNew = element < 0;
    const std::string label = source_.names().inkscape + "label";
    std::string title = tag->attribute(label).value_or("");
    if (!isNew && title.empty()) title = tag->attribute("id").value_or("Layer");
    if (isNew) tag->set(inkscapeName("groupmode"), "layer");
    if (isNew || title != layer.title) tag->set(inkscapeName("label"), layer.title);
    hideTag(tag, !layer.visible, element);
    lockTag(tag, !layer.editable);
}

// --- outlines ------------------------------------------------------------------------------------------------------

bool SvgArtWriter::sameMap(std::int32_t element, const SvgScope& scope) const {
    return scope.map == source_.tree.map(source_.element(element).parent);
}

void SvgArtWriter::setOutline(svg::StartTag* tag, const doc::Art& art, const svg::Affine& map) {
    const std::vector<const doc::Art*> pieces = piecesOf(document_, art);
    std::vector<svg::PathPiece> outline;
    for (const doc::Art* piece : pieces) outline.push_back({piece->path->segments, piece->path->closed});
    tag->set("d", svg::formatPathData(outline, map));
    setOwn(tag, own_attribute::kEnds, endsOf(pieces, map));
    setOwn(tag, own_attribute::kMembers,
           art.kind == kCompoundPathArt && pieces.size() < 2 ? std::to_string(pieces.size()) : "");
    const bool guide = !pieces.empty() && pieces.front()->path->guide;
    setOwn(tag, own_attribute::kGuide, guide ? "true" : "");
    // Corners: the other editor's attribute where it is, else ours where the handles do not tell.
    const std::string nodeTypes = source_.names().sodipodi + "nodetypes";
    std::string corners;
    if (tag->attribute(nodeTypes)) {
        tag->set(nodeTypes, cornersOf(pieces, true, 'c', 's'));
    } else if (!cornersAsHandlesSay(pieces)) {
        corners = cornersOf(pieces, false, '1', '0');
    }
    setOwn(tag, own_attribute::kCorners, corners);
}

void SvgArtWriter::setStyle(svg::StartTag* tag, const AIPathStyle& style, const AIPathStyle* inForce,
                            const AIPathStyle* original, double scale) {
    const PaintSources& sources = paintTexts(document_);
    for (const StyleProperty& property : styleProperties(style, inForce, scale, sources))
        svg::setProperty(tag, property.name, property.value);
    if (style.fillPaint && !(original && original->fillPaint && paintsAlike(style.fill, original->fill)))
        setOwn(tag, own_attribute::kFill, exactPaint(style.fill, sources));
    if (style.strokePaint && !(original && original->strokePaint && paintsAlike(style.stroke, original->stroke)))
        setOwn(tag, own_attribute::kStroke, exactPaint(style.stroke, sources));
}

bool SvgArtWriter::editOutline(svg::StartTag* tag, const doc::Art& art, std::int32_t element, const SvgScope& scope,
                               bool inPlace) {
    const SvgRecord& record = source_.record(element);
    const svg::Role role = source_.element(element).role;
    const bool stays = sameMap(element, scope);
    const svg::Affine& map = stays ? source_.tree.map(element) : scope.map;
    if (!stays) tag->remove("transform");
    const AIPathStyle& was = *source_.styles[static_cast<std::size_t>(record.style)];
    setStyle(tag, styleOf(piecesOf(document_, art)), inPlace ? &was : nullptr, &was, map.scale());
    markTag(tag, art, element);
    const bool changed = !stays || outlineHash(document_, art) != record.content;
    if (!changed) return role == svg::Role::kPath;
    if (svg::isShape(role)) {
        tag->rename(svgName("path"));
        for (const char* name :
             {"x", "y", "width", "height", "rx", "ry", "cx", "cy", "r", "x1", "y1", "x2", "y2", "points"}) {
            tag->remove(name);
        }
    }
    // Another editor would draw the outline anew from these.
    for (const char* name : {"type", "cx", "cy", "rx", "ry", "sides", "r1", "r2", "arg1", "arg2", "start", "end",
                             "open", "arc-type", "expansion", "revolution", "radius", "argument", "t0"}) {
        tag->remove(source_.names().sodipodi + name);
    }
    for (const char* name :
         {"path-effect", "original-d", "original", "connector-curvature", "flatsided", "rounded", "randomized"}) {
        tag->remove(source_.names().inkscape + name);
    }
    setOutline(tag, art, map);
    return true;
}

// --- texts ---------------------------------------------------------------------------------------------------------

void SvgArtWriter::setText(svg::StartTag* tag, const doc::Art& art, const SvgScope& scope, std::string* content) {
    const SvgTextParts parts = formatText(*art.text, scope.map, source_.names(),
                                          resetProperties(scope.unmodelledProperties), paintTexts(document_));
    if (parts.transform.empty()) {
        tag->set("x", parts.x);
        tag->set("y", parts.y);
    } else {
        tag->set("transform", parts.transform);
    }
    if (parts.preserveSpace) tag->set("xml:space", "preserve");
    std::vector<svg::CssDeclaration> declarations;
    svg::parseDeclarations(parts.style, &declarations);
    if (!tag->attribute("style")) {
        tag->set("style", parts.style);
    } else {
        for (const svg::CssDeclaration& declaration : declarations)
            svg::setProperty(tag, declaration.property, declaration.value);
    }
    setOwn(tag, own_attribute::kText, parts.exact);
    *content = parts.content;
}

// A text that only moves keeps its spans and their places: it gets another transform.
bool SvgArtWriter::moveText(svg::StartTag* tag, const doc::Art& art, std::int32_t element, const SvgScope& scope) {
    const SvgTextOrigin& origin = source_.texts[static_cast<std::size_t>(source_.record(element).text)];
    const RealMatrix& m = art.text->matrix;
    const double det = double(m.a) * m.d - double(m.b) * m.c;
    svg::Affine inverse;
    if (textHash(*art.text, true) != origin.wording || !(std::abs(std::abs(det) - 1) < 1e-5) ||
        tag->attribute(source_.names().own + own_attribute::kText) || !svg::invert(scope.map, &inverse)) {
        return false;
    }
    const double scale = source_.tree.map(element).scale();
    // Floats turn with a trace of scale, which would change the size.
    const double trace = std::sqrt(std::abs(det));
    const svg::Affine turn{m.a / trace, m.b / trace, m.c / trace, m.d / trace, m.tx, m.ty};
    const svg::Affine wanted = svg::compose(svg::compose(turn, svg::Affine{scale, 0, 0, -scale, 0, 0}),
                                            svg::Affine{1, 0, 0, 1, -origin.x, -origin.y});
    const svg::Affine exact = svg::compose(inverse, wanted);
    const auto comesBack = [&](const svg::Affine& own) {
        const svg::Affine map = svg::compose(scope.map, own);
        const RealMatrix got = textMatrix(map, origin.x, origin.y);
        return std::abs(map.scale() - scale) <= 1e-12 * scale && got.a == m.a && got.b == m.b && got.c == m.c &&
               got.d == m.d && got.tx == m.tx && got.ty == m.ty;
    };
    svg::Affine own = exact;
    for (double power = 1e3; power <= 1e15; power *= 10) {
        svg::Affine rounded;
        double* const to[] = {&rounded.a, &rounded.b, &rounded.c, &rounded.d, &rounded.e, &rounded.f};
        const double from[] = {exact.a, exact.b, exact.c, exact.d, exact.e, exact.f};
        for (int i = 0; i < 6; ++i) *to[i] = std::nearbyint(from[i] * power) / power + 0.0;
        if (!comesBack(rounded)) continue;
        own = rounded;
        break;
    }
    const std::string transform = formatMatrix(own);
    if (!svg::parseTransform(transform, &own)) return false;
    if (own == svg::Affine{}) {
        tag->remove("transform");
    } else {
        tag->set("transform", transform);
    }
    setOwn(tag, own_attribute::kText,
           exactMatrix(*art.text, textMatrix(svg::compose(scope.map, own), origin.x, origin.y)));
    return true;
}

std::optional<std::string> SvgArtWriter::editText(svg::StartTag* tag, const doc::Art& art, std::int32_t element,
                                                  const SvgScope& scope, bool inPlace) {
    markTag(tag, art, element);
    const SvgTextOrigin& origin = source_.texts[static_cast<std::size_t>(source_.record(element).text)];
    const RealMatrix& m = art.text->matrix;
    const bool moved = m.a != origin.matrix.a || m.b != origin.matrix.b || m.c != origin.matrix.c ||
                       m.d != origin.matrix.d || m.tx != origin.matrix.tx || m.ty != origin.matrix.ty;
    const bool sameWording = textHash(*art.text, true) == origin.wording;
    if (inPlace && !moved && sameWording) return std::nullopt;
    if (inPlace && moveText(tag, art, element, scope)) return std::nullopt;
    for (const char* name : {"x", "y", "dx", "dy", "rotate", "textLength", "lengthAdjust", "transform", "xml:space",
                             "font", "baseline-shift", "writing-mode"}) {
        tag->remove(name);
    }
    for (const char* name : {"font", "baseline-shift", "writing-mode", "text-align", "line-height", "white-space",
                             "shape-inside", "inline-size", "-inkscape-font-specification"}) {
        svg::removeProperty(tag, name);
    }
    tag->remove(source_.names().sodipodi + "linespacing");
    std::string content;
    setText(tag, art, scope, &content);
    return content;
}

// --- foreign art ---------------------------------------------------------------------------------------------------

void SvgArtWriter::editForeign(svg::StartTag* tag, const doc::Art& art, const SvgScope& scope) {
    svg::Affine inverse;
    if (!svg::invert(scope.map, &inverse)) return;
    const svg::Affine own = svg::compose(inverse, base_.placeOf(art));
    if (own == svg::Affine{}) {
        tag->remove("transform");
    } else {
        tag->set("transform", formatMatrix(own));
    }
}

// --- new art -------------------------------------------------------------------------------------------------------

std::string SvgArtWriter::newLeaf(const doc::Art& art, const SvgScope& scope) {
    if (art.kind == kForeignArt) {
        if (art.ref.index < 0) return newTag("g").str();
        const std::uint32_t nameOffset = source_.element(art.ref.index).nameOffset;
        const std::string_view text = svg::elementText(*source_.text, nameOffset);
        const std::string_view start = svg::startTagText(text, 1);
        svg::StartTag tag(start, &source_.entities());
        const svg::StartTag was = tag;
        markTag(&tag, art, base_.elementAt(nameOffset));
        editForeign(&tag, art, scope);
        preserveComputedStyle(&tag, was);
        return tag.str() + std::string(text.substr(start.size()));
    }
    if (art.kind == kTextFrameArt) {
        svg::StartTag tag = newTag("text");
        if (!art.name.empty()) tag.set("id", art.name);
        std::string content;
        setText(&tag, art, scope, &content);
        markTag(&tag, art, -1);
        rules_.blockInheritedStyle(&tag);
        tag.setSelfClosing(false);
        return tag.str() + content + "</" + tag.name() + ">";
    }
    svg::StartTag tag = newTag("path");
    if (!art.name.empty()) tag.set("id", art.name);
    const bool known = scope.style >= 0 && !source_.hasStyleSheet;
    setStyle(&tag, styleOf(piecesOf(document_, art)),
             known ? source_.styles[static_cast<std::size_t>(scope.style)].get() : nullptr, nullptr, scope.map.scale());
    for (const StyleProperty& property : resetProperties(scope.unmodelledProperties))
        svg::setProperty(&tag, property.name, property.value);
    setOutline(&tag, art, scope.map);
    markTag(&tag, art, -1);
    rules_.blockInheritedStyle(&tag);
    return tag.str();
}

}  // namespace quorvel::interchange
