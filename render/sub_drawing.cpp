#include "render/sub_drawing.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/content.h"
#include "interchange/svg/source.h"
#include "render/outline.h"
#include "render/painter.h"

namespace quorvel::render {

namespace {

constexpr std::size_t kDeepest = 3;    // of drawings within drawings
constexpr double kMostTiles = 10'000;  // of one filling; more are too small to be told apart
// Nanoseconds, of opening a drawing and of each of its elements; of painting it, and of looking at each.
constexpr double kOfOpening = 50'000, kOfAnElement = 3'000, kOfPainting = 4'000, kOfALook = 60, kOfATile = 8'000;

}  // namespace

// --- a drawing within another --------------------------------------------------------------------------------------

SubDrawing::SubDrawing(const std::shared_ptr<svg::File>& file, const svg::Content& content,
                       const svg::Viewport& viewport, std::shared_ptr<PaintResources> resources,
                       const DefinitionsAround& around)
    : resources_(std::move(resources)) {
    if (!resources_->budget->take(kOfOpening)) return;
    document_ = interchange::openContent(file, content, viewport);
    if (document_ == nullptr) return;
    elements_ = double(interchange::svgSource(*document_)->tree.size());
    if (!resources_->budget->take(elements_ * kOfAnElement)) document_.reset();
    if (document_ == nullptr) return;
    painter_ = std::make_unique<DocumentPainter>(*document_, resources_, around);
    toContent_ = toQt(interchange::svgSource(*document_)->tree.map(0)).inverted();
}

SubDrawing::~SubDrawing() = default;

QRectF SubDrawing::box() const {
    QRectF box;
    for (const doc::LayerId layer : document_->layers())
        box |= painter_->drawnBox(*document_->find(document_->layer(layer)->root));
    return toContent_.mapRect(box);
}

void SubDrawing::paint(QPainter* painter, const QTransform& toWorld, const QRectF& sight,
                       const ContextPaint& context) const {
    if (resources_->budget->isSpent() || !resources_->budget->take(kOfPainting + elements_ * kOfALook)) return;
    const QTransform world = painter->worldTransform();
    PaintOptions options;
    options.context = context;
    painter->save();
    painter->resetTransform();
    painter_->paint(painter, toContent_ * toWorld * world, world.mapRect(sight), options);
    painter->restore();
}

SubDrawingCache::SubDrawingCache(std::shared_ptr<svg::File> file, std::shared_ptr<PaintResources> resources,
                                 DefinitionsAround around)
    : file_(std::move(file)), resources_(std::move(resources)), around_(std::move(around)) {}

SubDrawingCache::~SubDrawingCache() = default;

bool SubDrawingCache::mayOpen(std::string_view id) const {
    return file_ != nullptr && !id.empty() && around_.size() < kDeepest &&
           std::find(around_.begin(), around_.end(), id) == around_.end();
}

std::unique_ptr<SubDrawing> SubDrawingCache::open(std::string_view id, const svg::Content& content,
                                                  const svg::Viewport& viewport) const {
    DefinitionsAround around = around_;
    around.emplace_back(id);
    auto drawing = std::make_unique<SubDrawing>(file_, content, viewport, resources_, around);
    return drawing->isRead() ? std::move(drawing) : nullptr;
}

// --- markers -------------------------------------------------------------------------------------------------------

const MarkerDrawing* SubDrawingCache::marker(std::string_view id) {
    if (!mayOpen(id)) return nullptr;
    const auto [kept, added] = markers_.try_emplace(std::string(id));
    if (added)
        if (const svg::Marker* marker = file_->definitions().marker(id)) kept->second = readMarker(id, *marker);
    return kept->second.get();
}

std::unique_ptr<MarkerDrawing> SubDrawingCache::readMarker(std::string_view id, const svg::Marker& marker) const {
    auto made = std::make_unique<MarkerDrawing>();
    made->marker = &marker;
    made->drawing = open(id, marker.content, marker.inner);
    if (made->drawing == nullptr) return nullptr;
    made->content = toQt(marker.map);
    if (marker.isClipped) made->window = QRectF(marker.left, marker.top, marker.size.width, marker.size.height);
    QRectF seen = made->content.mapRect(made->drawing->box());
    // A window that cuts nothing off need not be set for each place.
    constexpr double kUnseen = 0.02;
    if (made->window.adjusted(-kUnseen, -kUnseen, kUnseen, kUnseen).contains(seen)) made->window = QRectF();
    if (!made->window.isNull()) seen &= made->window;
    for (const QPointF& point : {seen.topLeft(), seen.topRight(), seen.bottomLeft(), seen.bottomRight()})
        made->reach = std::max(made->reach, std::hypot(point.x(), point.y()));
    return made;
}

// --- masks ---------------------------------------------------------------------------------------------------------

const SubDrawing* SubDrawingCache::mask(std::string_view id) {
    if (!mayOpen(id)) return nullptr;
    const auto [kept, added] = masks_.try_emplace(std::string(id));
    if (added)
        if (const svg::Mask* mask = file_->definitions().mask(id))
            kept->second = open(id, mask->content, mask->inBox ? svg::Viewport{1, 1} : file_->page().viewport);
    return kept->second.get();
}

// --- patterns ------------------------------------------------------------------------------------------------------

const PatternDrawing* SubDrawingCache::pattern(std::string_view id) {
    if (!mayOpen(id)) return nullptr;
    const auto [kept, added] = patterns_.try_emplace(std::string(id));
    if (added)
        if (const svg::Pattern* pattern = file_->definitions().pattern(id)) kept->second = readPattern(id, *pattern);
    return kept->second.get();
}

std::unique_ptr<PatternDrawing> SubDrawingCache::readPattern(std::string_view id, const svg::Pattern& pattern) const {
    auto made = std::make_unique<PatternDrawing>();
    made->pattern = &pattern;
    made->tile = open(id, pattern.content, pattern.contentInBox ? svg::Viewport{1, 1} : file_->page().viewport);
    return made->tile == nullptr ? nullptr : std::move(made);
}

bool fillWithPattern(const PatternDrawing& drawing, const QPainterPath& outline, const QTransform& user,
                     const QRectF& box, const QRectF& sight, const ContextPaint& context, QPainter* painter,
                     PaintBudget* budget) {
    const svg::Pattern& pattern = *drawing.pattern;
    const QRectF said(pattern.x, pattern.y, pattern.width, pattern.height);
    const QTransform ofBox(box.width(), 0, 0, box.height(), box.x(), box.y());
    const QRectF tile = pattern.inBox ? ofBox.mapRect(said) : said;
    const QTransform toWorld = toQt(pattern.map) * user;
    if (tile.isEmpty() || !toWorld.isInvertible()) return true;
    QTransform content = pattern.contentInBox ? QTransform::fromScale(box.width(), box.height()) : QTransform();
    if (pattern.hasViewBox)
        content =
            toQt(pattern.window) * QTransform::fromScale(tile.width() / said.width(), tile.height() / said.height());
    content *= QTransform::fromTranslate(tile.x(), tile.y());
    const QRectF seen = toWorld.inverted().mapRect(outline.boundingRect() & sight);
    const double left = std::floor((seen.left() - tile.left()) / tile.width());
    const double top = std::floor((seen.top() - tile.top()) / tile.height());
    const double right = std::floor((seen.right() - tile.left()) / tile.width());
    const double bottom = std::floor((seen.bottom() - tile.top()) / tile.height());
    if (!((right - left + 1) * (bottom - top + 1) <= kMostTiles)) return true;
    painter->save();
    painter->setClipPath(outline, Qt::IntersectClip);
    for (double row = top; row <= bottom; ++row)
        for (double column = left; column <= right && !budget->isSpent() && budget->take(kOfATile); ++column) {
            const QTransform there = QTransform::fromTranslate(column * tile.width(), row * tile.height()) * toWorld;
            QPainterPath window;
            window.addPolygon(there.map(QPolygonF(tile)));
            painter->save();
            painter->setClipPath(window, Qt::IntersectClip);
            drawing.tile->paint(painter, content * there, sight, context);
            painter->restore();
        }
    painter->restore();
    return !budget->isSpent();
}

}  // namespace quorvel::render
