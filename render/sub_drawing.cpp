#include "render/sub_drawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "interchange/svg/art_loader.h"
#include "interchange/svg/source.h"
#include "interchange/svg/svg.h"
#include "render/outline.h"
#include "render/painter.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::render {

namespace {

constexpr int kDeepest = 3;            // of parts within parts
constexpr double kMostTiles = 10'000;  // of one filling; more are too small to be told apart

void replaceAll(std::string* text, std::string_view from, std::string_view to) {
    for (std::size_t at = text->find(from); at != std::string::npos; at = text->find(from, at + to.size()))
        text->replace(at, from.size(), to);
}

double length(const pugi::xml_attribute& attribute, double percentOf, double otherwise) {
    return attribute ? svg::parseLength(attribute.value(), {percentOf}).value_or(otherwise) : otherwise;
}

// A length, or where the reference point lies within a side by name.
double referencePoint(const pugi::xml_attribute& attribute, double begin, double side) {
    const std::string_view word = attribute.value();
    if (word == "left" || word == "top") return begin;
    if (word == "center") return begin + side / 2;
    if (word == "right" || word == "bottom") return begin + side;
    return length(attribute, side, 0);
}

double degrees(std::string_view word) {
    static constexpr std::pair<std::string_view, double> kUnits[] = {
        {"grad", 0.9}, {"deg", 1}, {"rad", 180 / std::numbers::pi}, {"turn", 360}};
    for (const auto& [unit, degrees] : kUnits)
        if (word.ends_with(unit))
            return svg::readWholeNumber(word.substr(0, word.size() - unit.size())).value_or(0) * degrees;
    return svg::readWholeNumber(word).value_or(0);
}

// Of a stretch between two anchors: where it leads at its begin and at its end. A stretch without length leads nowhere.
struct Stretch {
    std::optional<QPointF> begin, end;
};

Stretch stretchOf(QPointF p, QPointF out, QPointF in, QPointF q) {
    const QPointF points[] = {p, out, in, q};
    Stretch stretch;
    for (int i = 1; i < 4 && !stretch.begin; ++i)
        if (points[i] != p) stretch.begin = points[i] - p;
    for (int i = 2; i >= 0 && !stretch.end; --i)
        if (points[i] != q) stretch.end = q - points[i];
    return stretch;
}

double angleOf(QPointF direction) { return std::atan2(direction.y(), direction.x()) * 180 / std::numbers::pi; }

// Half-way between what leads to an anchor and what leads on from it.
double angleBetween(const std::optional<QPointF>& before, const std::optional<QPointF>& after) {
    if (!before && !after) return 0;
    if (!before || !after) return angleOf(before ? *before : *after);
    const double first = angleOf(*before);
    return first + std::remainder(angleOf(*after) - first, 360) / 2;
}

void addPlaces(const doc::PathData& piece, const QTransform& map, std::vector<MarkerPlace>* places) {
    const std::size_t count = piece.segments.size();
    if (count == 0) return;
    const auto at = [&](RealPoint point) { return map.map(toQt(point)); };
    std::vector<Stretch> stretches;
    for (std::size_t i = 0; i + (piece.closed ? 0 : 1) < count; ++i) {
        const PathSegment &from = piece.segments[i], &to = piece.segments[(i + 1) % count];
        stretches.push_back(stretchOf(at(from.p), at(from.out), at(to.in), at(to.p)));
    }
    // One without length leads where the one before it does, else where the one behind it does.
    for (std::size_t i = 1; i < stretches.size(); ++i)
        if (!stretches[i].begin) stretches[i] = {stretches[i - 1].end, stretches[i - 1].end};
    for (std::size_t i = stretches.size(); i-- > 1;)
        if (!stretches[i - 1].begin) stretches[i - 1] = {stretches[i].begin, stretches[i].begin};
    const std::size_t anchors = stretches.size() + 1;
    for (std::size_t i = 0; i < anchors; ++i) {
        std::optional<QPointF> before, after;
        if (i > 0) before = stretches[i - 1].end;
        if (i + 1 < anchors) after = stretches[i].begin;
        if (piece.closed && i == 0) before = stretches.back().end;
        if (piece.closed && i + 1 == anchors) after = stretches.front().begin;
        places->push_back({1, at(piece.segments[i % count].p), angleBetween(before, after)});
    }
}

}  // namespace

std::vector<MarkerPlace> markerPlaces(const std::vector<const doc::PathData*>& pieces, const QTransform& map) {
    std::vector<MarkerPlace> places;
    for (const doc::PathData* piece : pieces) addPlaces(*piece, map, &places);
    if (places.empty()) return places;
    places.front().kind = 0;
    if (places.size() == 1) places.push_back(places.front());
    places.back().kind = 2;
    return places;
}

// --- a part --------------------------------------------------------------------------------------------------------

SubDrawing::SubDrawing(const std::string& file, const QString& folder, int depth) {
    Result<interchange::SvgDrawing> read = interchange::readSvg(file);
    if (!read) return;
    document_ = std::move(read->document);
    painter_ = std::make_unique<DocumentPainter>(*document_, folder, depth);
    toContent_ = toQt(interchange::svgSource(*document_)->tree.ctms.front()).inverted();
}

SubDrawing::~SubDrawing() = default;

QRectF SubDrawing::box() const {
    QRectF box;
    for (const doc::LayerId layer : document_->layers())
        box |= painter_->drawnBox(*document_->find(document_->layer(layer)->root));
    return toContent_.mapRect(box);
}

void SubDrawing::paint(QPainter* painter, const QTransform& toWorld, const QRectF& sight) const {
    const QTransform world = painter->worldTransform();
    painter->save();
    painter->resetTransform();
    painter_->paint(painter, toContent_ * toWorld * world, world.mapRect(sight), {});
    painter->restore();
}

SubDrawingCache::SubDrawingCache(Definitions* definitions, QString folder, int depth)
    : definitions_(*definitions), folder_(std::move(folder)), depth_(depth) {}

SubDrawingCache::~SubDrawingCache() = default;

// --- markers -------------------------------------------------------------------------------------------------------

const Marker* SubDrawingCache::marker(const QString& id, const QColor& fill, const QColor& stroke) {
    if (depth_ >= kDeepest) return nullptr;
    std::string name = id.toStdString();
    const pugi::xml_node node = definitions_.find(name, "marker");
    if (!node) return nullptr;
    const auto [file, isNew] = markerFiles_.try_emplace(name);
    if (isNew) file->second = definitions_.fileOfContent(node);
    if (file->second.find("context-") != std::string::npos)
        name += '\n' + fill.name(QColor::HexArgb).toStdString() + stroke.name(QColor::HexArgb).toStdString();
    const auto [kept, added] = markers_.try_emplace(name);
    if (added) kept->second = readMarker(node, file->second, fill, stroke);
    return kept->second.get();
}

std::unique_ptr<Marker> SubDrawingCache::readMarker(const pugi::xml_node& node, std::string file, const QColor& fill,
                                                    const QColor& stroke) {
    replaceAll(&file, "context-fill", fill.alpha() == 0 ? "none" : fill.name().toStdString());
    replaceAll(&file, "context-stroke", stroke.alpha() == 0 ? "none" : stroke.name().toStdString());
    auto marker = std::make_unique<Marker>();
    marker->part = std::make_unique<SubDrawing>(file, folder_, depth_ + 1);
    const svg::Viewport size{length(node.attribute("markerWidth"), 0, 3), length(node.attribute("markerHeight"), 0, 3)};
    if (!marker->part->read() || !(size.width > 0) || !(size.height > 0)) return nullptr;
    svg::Viewport box = size;
    const QTransform fit = toQt(svg::viewBoxMap(svg::viewBoxOf(svg::XmlNode(node)), size, &box));
    const QPointF corner = fit.inverted().map(QPointF());
    const QPointF reference = fit.map(QPointF(referencePoint(node.attribute("refX"), corner.x(), box.width),
                                              referencePoint(node.attribute("refY"), corner.y(), box.height)));
    const QTransform toReference = QTransform::fromTranslate(-reference.x(), -reference.y());
    marker->content = fit * toReference;
    const std::string overflow = propertyOf(node, "overflow");
    if (overflow != "visible" && overflow != "auto")
        marker->window = toReference.mapRect(QRectF(0, 0, size.width, size.height));
    marker->byStroke = std::string_view(node.attribute("markerUnits").value()) != "userSpaceOnUse";
    const std::string_view orient = node.attribute("orient").value();
    if (orient == "auto") marker->turn = Marker::Turn::kAlong;
    if (orient == "auto-start-reverse") marker->turn = Marker::Turn::kAlongReversedAtStart;
    marker->angle = degrees(orient);
    QRectF seen = marker->content.mapRect(marker->part->box());
    if (!marker->window.isNull()) seen &= marker->window;
    for (const QPointF& point : {seen.topLeft(), seen.topRight(), seen.bottomLeft(), seen.bottomRight()})
        marker->reach = std::max(marker->reach, std::hypot(point.x(), point.y()));
    return marker;
}

// --- patterns ------------------------------------------------------------------------------------------------------

const Pattern* SubDrawingCache::pattern(const QString& id) {
    if (depth_ >= kDeepest || id.isEmpty()) return nullptr;
    const auto [kept, added] = patterns_.try_emplace(id.toStdString());
    if (added)
        if (const pugi::xml_node node = definitions_.find(kept->first, "pattern")) kept->second = readPattern(node);
    return kept->second.get();
}

std::unique_ptr<Pattern> SubDrawingCache::readPattern(const pugi::xml_node& node) {
    // The pattern and those that it takes attributes and content from.
    std::vector<pugi::xml_node> chain;
    for (pugi::xml_node one = node; one && chain.size() < 16;) {
        chain.push_back(one);
        one = definitions_.find(std::string(svg::hrefId(svg::XmlNode(one))), "pattern");
    }
    const auto attribute = [&](const char* name) {
        for (const pugi::xml_node& one : chain)
            if (const pugi::xml_attribute found = one.attribute(name)) return found;
        return pugi::xml_attribute();
    };
    const auto content =
        std::find_if(chain.begin(), chain.end(), [](const pugi::xml_node& one) { return bool(one.first_child()); });
    if (content == chain.end()) return nullptr;
    auto pattern = std::make_unique<Pattern>();
    pattern->boxUnits = std::string_view(attribute("patternUnits").value()) != "userSpaceOnUse";
    pattern->boxContent = std::string_view(attribute("patternContentUnits").value()) == "objectBoundingBox";
    const auto side = [&](const char* name) { return length(attribute(name), 1, 0); };
    pattern->tile = QRectF(side("x"), side("y"), side("width"), side("height"));
    if (pattern->tile.isEmpty()) return nullptr;
    svg::Affine map;
    if (const pugi::xml_attribute own = attribute("patternTransform"); own && svg::parseTransform(own.value(), &map))
        pattern->map = toQt(map);
    pattern->hasWindow = bool(node.attribute("viewBox"));
    if (pattern->hasWindow) {
        svg::Viewport box;
        pattern->window = toQt(
            svg::viewBoxMap(svg::viewBoxOf(svg::XmlNode(node)), {pattern->tile.width(), pattern->tile.height()}, &box));
    }
    pattern->part = std::make_unique<SubDrawing>(definitions_.fileOfContent(*content), folder_, depth_ + 1);
    return pattern->part->read() ? std::move(pattern) : nullptr;
}

void fillWithPattern(const Pattern& pattern, const QPainterPath& outline, const QTransform& user, const QRectF& box,
                     const QRectF& sight, QPainter* painter) {
    const QTransform ofBox(box.width(), 0, 0, box.height(), box.x(), box.y());
    const QRectF tile = pattern.boxUnits ? ofBox.mapRect(pattern.tile) : pattern.tile;
    const QTransform toWorld = pattern.map * user;
    if (tile.isEmpty() || !toWorld.isInvertible()) return;
    QTransform content = pattern.boxContent ? QTransform::fromScale(box.width(), box.height()) : QTransform();
    if (pattern.hasWindow)
        content = pattern.window *
                  QTransform::fromScale(tile.width() / pattern.tile.width(), tile.height() / pattern.tile.height());
    content *= QTransform::fromTranslate(tile.x(), tile.y());
    const QRectF seen = toWorld.inverted().mapRect(outline.boundingRect() & sight);
    const double left = std::floor((seen.left() - tile.left()) / tile.width());
    const double top = std::floor((seen.top() - tile.top()) / tile.height());
    const double right = std::floor((seen.right() - tile.left()) / tile.width());
    const double bottom = std::floor((seen.bottom() - tile.top()) / tile.height());
    if (!((right - left + 1) * (bottom - top + 1) <= kMostTiles)) return;
    painter->save();
    painter->setClipPath(outline, Qt::IntersectClip);
    for (double row = top; row <= bottom; ++row)
        for (double column = left; column <= right; ++column) {
            const QTransform there = QTransform::fromTranslate(column * tile.width(), row * tile.height()) * toWorld;
            QPainterPath window;
            window.addPolygon(there.map(QPolygonF(tile)));
            painter->save();
            painter->setClipPath(window, Qt::IntersectClip);
            pattern.part->paint(painter, content * there, sight);
            painter->restore();
        }
    painter->restore();
}

}  // namespace quorvel::render
