// Walks the tree from the lowest layer up and leaves out what is not seen: hidden art, and art whose bounds, grown by
// its widest stroke, miss the part that is asked for.
#include "render/painter.h"

#include <QPaintEngine>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "render/outline.h"

namespace quorvel::render {

namespace {

constexpr double kOfALook = 150;          // nanoseconds, at an element of a clip path
constexpr double kLargestPicture = 4096;  // dots of a side, of art that is painted apart

// How much smaller the picture of the place is than the place. Paper has more dots than a filter needs.
double shrinkOf(const QRect& place, const svg::Filter* filter, const QPainter& device) {
    constexpr double kFilterResolution = 300;  // dots per inch
    const double shrink = std::min(1.0, kLargestPicture / std::max(place.width(), place.height()));
    if (filter == nullptr) return shrink;
    const bool isVector = device.paintEngine()->type() != QPaintEngine::Raster;
    const double most = FilterPainter::mostDots(*filter) / (double(place.width()) * place.height());
    return std::min({shrink, std::sqrt(most), isVector ? kFilterResolution / device.device()->logicalDpiX() : 1.0});
}

bool isPlainGroup(const Appearance& look) {
    return !(look.opacity < 1) && look.mask.empty() && look.filter == nullptr && !look.isBlended && !look.isIsolated;
}

std::shared_ptr<svg::File> fileOf(const doc::Document& document) {
    const interchange::SvgSource* source = interchange::svgSource(document);
    return source == nullptr ? nullptr : source->tree.file;
}

}  // namespace

DocumentPainter::DocumentPainter(const doc::Document& document, const ImageAccess& access)
    : DocumentPainter(document, PaintResources::of(access), {}) {}

DocumentPainter::DocumentPainter(const doc::Document& document, std::shared_ptr<PaintResources> resources,
                                 const DefinitionsAround& around)
    : document_(document),
      isOutermost_(around.empty() && resources->isOutermost),
      resources_(std::move(resources)),
      looks_(document),
      drawings_(fileOf(document), resources_, around),
      clips_(fileOf(document), &drawings_, resources_->budget.get()),
      foreign_(document, resources_.get()),
      filters_(resources_->budget.get()),
      boxes_(document, &looks_, &drawings_, &foreign_),
      artPainter_(document, &looks_, &drawings_, &foreign_, &boxes_, &state_) {
    state_.budget = resources_->budget.get();
    if (!around.empty()) state_.definition = '#' + around.back();
    beginBudget();
}

void DocumentPainter::beginBudget() {
    const interchange::SvgSource* source = interchange::svgSource(document_);
    if (isOutermost_) resources_->budget->begin(source == nullptr ? 0 : source->text->size());
}

DocumentPainter::~DocumentPainter() = default;

std::vector<Error> DocumentPainter::warnings() const {
    const std::set<Error>& images = resources_->images.warnings();
    std::vector<Error> warnings(images.begin(), images.end());
    if (const std::optional<Error> leftOut = resources_->budget->warning()) warnings.push_back(*leftOut);
    return warnings;
}

bool DocumentPainter::forgetWaitingImages() {
    if (!resources_->images.forgetWaiting()) return false;
    foreign_.forgetWaiting();
    boxes_.forget();
    return true;
}

bool DocumentPainter::dependsOnMembers(const doc::Art& art) {
    if (art.kind == kCompoundPathArt) return true;
    const Appearance& look = looks_.of(art);
    return !look.clip.empty() || !look.mask.empty() || look.filter != nullptr;
}

// --- what there is to paint ----------------------------------------------------------------------------------------

void DocumentPainter::beginPaint(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options) {
    state_.options = options;
    state_.pixel = 1 / std::max(1e-9, std::sqrt(std::abs(toDevice.determinant())));
    state_.sight = toDevice.inverted().mapRect(clip);
}

void DocumentPainter::paint(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                            const PaintOptions& options) {
    paintItems(painter, toDevice, clip, options, order(toDevice, clip, options), 0,
               QDeadlineTimer(QDeadlineTimer::Forever));
}

std::vector<PaintItem> DocumentPainter::order(const QTransform& toDevice, const QRectF& clip,
                                              const PaintOptions& options) {
    beginBudget();
    beginPaint(toDevice, clip, options);
    std::vector<PaintItem> items;
    const auto& layers = document_.layers();
    for (const bool marks : {false, true}) {
        if (marks && !options.selected) break;
        for (auto id = layers.rbegin(); id != layers.rend(); ++id) {
            if (!document_.layer(*id)->visible) continue;
            const doc::Art& root = *document_.find(document_.layer(*id)->root);
            if (marks)
                addMarks(root, &items);
            else
                addItems(root, 0, &items);
        }
    }
    return items;
}

// A group that is only its members, or only cuts them, is no item of its own, so that a large one can be painted in
// steps.
void DocumentPainter::addItems(const doc::Art& art, doc::ArtId clippedBy, std::vector<PaintItem>* items) {
    if (art.hidden || (art.parent != 0 && isOutOfSight(art))) return;
    if (art.kind == kGroupArt) {
        const Appearance& look = looks_.of(art);
        const doc::ArtId cutting = look.clip.empty() ? clippedBy : art.id;
        if (isPlainGroup(look))
            return forEachChildUpwards(document_, art, [&](const doc::Art& child) { addItems(child, cutting, items); });
    }
    items->push_back({art.id, false, clippedBy});
}

void DocumentPainter::addMarks(const doc::Art& art, std::vector<PaintItem>* items) {
    if (art.hidden || (art.parent != 0 && isOutOfSight(art))) return;
    if (art.kind == kGroupArt)
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { addMarks(child, items); });
    if (art.selected) items->push_back({art.id, true, 0});
}

std::size_t DocumentPainter::paintItems(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                                        const PaintOptions& options, const std::vector<PaintItem>& items,
                                        std::size_t first, const QDeadlineTimer& until) {
    if (looks_.hasBlending() && !isIsolated_ && painter->paintEngine()->type() == QPaintEngine::Raster) {
        paintIsolated(painter, toDevice, clip, options, items);
        return items.size();
    }
    constexpr std::size_t kItemsBetweenLooks = 32;  // at the clock
    constexpr double kBetweenLooks = 1e6;           // nanoseconds of work
    double spentTo = state_.budget->left();
    beginPaint(toDevice, clip, options);
    state_.painter = painter;
    painter->save();
    painter->setClipRect(clip, Qt::IntersectClip);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setTransform(toDevice, true);
    state_.world = painter->worldTransform();
    std::size_t next = first;
    doc::ArtId clippedBy = 0;
    bool isCut = true;
    while (next < items.size()) {
        if (items[next].clippedBy != clippedBy) {
            isCut = true;
            if (clippedBy != 0) painter->restore();
            clippedBy = items[next].clippedBy;
            if (clippedBy != 0) {
                painter->save();
                isCut = clipToGroups(clippedBy);
            }
        }
        const doc::Art* art = document_.find(items[next].art);
        if (art != nullptr && items[next].mark)
            artPainter_.mark(*art);
        else if (art != nullptr && isCut)
            paintArt(*art);
        const bool isLate = spentTo - state_.budget->left() > kBetweenLooks;
        if (isLate) spentTo = state_.budget->left();
        if ((++next % kItemsBetweenLooks == 0 || isLate) && until.hasExpired()) break;
    }
    if (clippedBy != 0) painter->restore();
    painter->restore();
    state_.painter = nullptr;
    return next;
}

void DocumentPainter::paintIsolated(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                                    const PaintOptions& options, const std::vector<PaintItem>& items) {
    const QTransform device = painter->deviceTransform();
    const QRect place = device.mapRect(clip).toAlignedRect();
    const HeldDots held(state_.budget, double(place.width()) * place.height());
    QImage page(held ? place.size() : QSize(), QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::transparent);
    isIsolated_ = true;
    const QDeadlineTimer forever(QDeadlineTimer::Forever);
    if (page.isNull()) {
        paintItems(painter, toDevice, clip, options, items, 0, forever);
    } else {
        QPainter apart(&page);
        const QTransform toPage = device * QTransform::fromTranslate(-place.x(), -place.y());
        paintItems(&apart, toDevice * toPage, toPage.mapRect(clip), options, items, 0, forever);
        apart.end();
        painter->save();
        painter->setTransform(toPage.inverted(), true);
        painter->drawImage(QPoint(), page);
        painter->restore();
    }
    isIsolated_ = false;
}

bool DocumentPainter::isOutOfSight(const doc::Art& art) {
    QRectF box = boxes_.drawn(art);
    if (box.isNull()) return true;
    const double margin = 2 * state_.pixel;
    box.adjust(-margin, -margin, margin, margin);
    return !(box.left() <= state_.sight.right() && box.right() >= state_.sight.left() &&
             box.top() <= state_.sight.bottom() && box.bottom() >= state_.sight.top());
}

// --- art -----------------------------------------------------------------------------------------------------------

bool DocumentPainter::clipTo(const doc::Art& art, const Appearance& look) {
    const QTransform user = looks_.userSpace(art);
    const ClipMaskCache::Cut cut = clips_.clip(look.clip, user.inverted().mapRect(boxes_.plain(art)));
    if (!cut.isThere) return true;
    const QPainterPath outline = user.map(cut.outline);
    if (!cut.isWhole)
        artPainter_.leaveOut(art);
    else if (artPainter_.take(outline.elementCount() * kOfALook, art) &&
             artPainter_.take(clipCost(outline, state_.scale()), art)) {
        state_.painter->setClipPath(outline, Qt::IntersectClip);
        return true;
    }
    return false;
}

bool DocumentPainter::clipToGroups(doc::ArtId nearest) {
    for (const doc::Art* group = document_.find(nearest); group != nullptr; group = document_.find(group->parent))
        if (const Appearance& look = looks_.of(*group); !look.clip.empty() && !clipTo(*group, look)) return false;
    return true;
}

void DocumentPainter::paintArt(const doc::Art& art) {
    if (art.hidden || (art.parent != 0 && isOutOfSight(art))) return;
    const Appearance look = looks_.of(art);
    if (look.clip.empty()) return paintUnclipped(art, look);
    state_.painter->save();
    if (clipTo(art, look)) paintUnclipped(art, look);
    state_.painter->restore();
}

bool DocumentPainter::isApart(const Appearance& look) const {
    if (!look.mask.empty() || look.filter != nullptr) return true;
    return looks_.hasBlending() && (look.isBlended || look.isIsolated) &&
           state_.painter->paintEngine()->type() == QPaintEngine::Raster;
}

void DocumentPainter::paintUnclipped(const doc::Art& art, const Appearance& look) {
    if (look.isBlended && (!look.blend || state_.scale().isVector))
        resources_->images.warn(makeError(ErrorCode::kEffectLeftOut, {looks_.nameOf(art)}));
    const doc::PathData* path = paintedPath(document_, art);
    const bool overlaps =
        art.kind == kGroupArt || look.hasMarkers ||
        (path != nullptr && path->style != nullptr && path->style->fillPaint != 0 && path->style->strokePaint != 0);
    if (isApart(look) || (look.opacity < 1 && overlaps)) {
        paintApart(art, look);
    } else {
        const double before = state_.painter->opacity();
        if (look.opacity < 1) state_.painter->setOpacity(before * look.opacity);
        paintContent(art);
        state_.painter->setOpacity(before);
    }
}

void DocumentPainter::paintContent(const doc::Art& art) {
    switch (art.kind) {
        case kGroupArt:
            forEachChildUpwards(document_, art, [this](const doc::Art& child) { paintArt(child); });
            break;
        case kPathArt:
        case kCompoundPathArt:
            artPainter_.path(art);
            break;
        case kTextFrameArt:
            artPainter_.text(art);
            break;
        case kForeignArt:
            if (artPainter_.take(foreign_.cost(art, state_.scale()), art)) foreign_.draw(art, state_.painter);
            break;
        case kUnknownArt:
            break;
    }
}

// With a dot more on each side, where edges are smooth. What a filter makes of a piece depends on all that is round it.
QRect DocumentPainter::placeApart(const doc::Art& art, const Appearance& look, const QTransform& toDevice) {
    constexpr double kAround = 512;  // dots
    QRectF place = toDevice.mapRect(boxes_.drawn(art));
    const QRectF sight = toDevice.mapRect(state_.sight);
    const bool isLarge = std::max(place.width(), place.height()) > kLargestPicture;
    if (look.filter == nullptr)
        place &= sight;
    else if (isLarge)
        place &= sight.adjusted(-kAround, -kAround, kAround, kAround);
    return place.toAlignedRect().adjusted(-1, -1, 1, 1);
}

void DocumentPainter::paintApart(const doc::Art& art, const Appearance& look) {
    QPainter* const below = state_.painter;
    const QTransform toDevice = below->deviceTransform();
    const QRect place = placeApart(art, look, toDevice);
    if (place.isEmpty()) return;
    // Paper has more dots than a picture needs.
    const double shrink = std::min(1.0, shrinkOf(place, look.filter, *below));
    const QTransform toPicture =
        toDevice * QTransform::fromTranslate(-place.x(), -place.y()) * QTransform::fromScale(shrink, shrink);
    const QSize size(static_cast<int>(std::ceil(place.width() * shrink)),
                     static_cast<int>(std::ceil(place.height() * shrink)));
    const double dots = double(size.width()) * size.height();
    const double laidOn = double(place.width()) * place.height();
    const HeldDots held(state_.budget, look.mask.empty() ? dots : 2 * dots);
    if (!held) return artPainter_.leaveOut(art);
    if (!artPainter_.take(pictureCost(dots, !look.mask.empty(), laidOn, state_.scale().isVector), art)) return;
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull()) return;
    picture.fill(Qt::transparent);
    {
        QPainter apart(&picture);
        apart.setRenderHint(QPainter::Antialiasing);
        apart.setTransform(toPicture);
        state_.painter = &apart;
        const QTransform around = std::exchange(state_.world, apart.worldTransform());
        paintContent(art);
        state_.world = around;
        state_.painter = below;
        if (look.filter != nullptr) filterPicture(art, *look.filter, toPicture, &apart, &picture);
        if (!look.mask.empty()) maskPicture(art, look, toPicture, &apart);
    }
    // From the picture's dots to the painter's own coordinates, whatever the map from those to the device is.
    below->save();
    below->setTransform(toPicture.inverted(), true);
    below->setOpacity(below->opacity() * look.opacity);
    below->setRenderHint(QPainter::SmoothPixmapTransform, shrink < 1);
    if (look.blend && below->paintEngine()->type() == QPaintEngine::Raster) below->setCompositionMode(*look.blend);
    below->drawImage(QPoint(), picture);
    below->restore();
}

void DocumentPainter::filterPicture(const doc::Art& art, const svg::Filter& filter, const QTransform& toPicture,
                                    QPainter* apart, QImage* picture) {
    const interchange::SvgSource& source = *looks_.source();
    const QTransform user = looks_.userSpace(art);
    const svg::ComputedStyle style = source.tree.file->styles().at(source.element(art.ref.index).style);
    const QRectF box = user.inverted().mapRect(boxes_.plain(art));
    apart->end();  // it would copy the picture
    if (!filters_.apply(filter, style, *source.tree.file, box, user * toPicture, picture))
        resources_->images.warn(makeError(ErrorCode::kEffectLeftOut, {looks_.nameOf(art)}));
    apart->begin(picture);
}

void DocumentPainter::maskPicture(const doc::Art& art, const Appearance& look, const QTransform& toPicture,
                                  QPainter* picture) {
    const QTransform user = looks_.userSpace(art);
    const QRectF box = user.inverted().mapRect(boxes_.plain(art));
    const QSize size(picture->device()->width(), picture->device()->height());
    const QImage through = clips_.mask(look.mask, user * toPicture, size, box);
    picture->resetTransform();
    picture->setCompositionMode(QPainter::CompositionMode_DestinationIn);
    if (!through.isNull()) picture->drawImage(QPoint(), through);
}

}  // namespace quorvel::render
