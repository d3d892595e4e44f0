// Walks the tree from the lowest layer up and leaves out what is not seen: hidden art, and art whose bounds, grown by
// its widest stroke, miss the part that is asked for.
#include "render/painter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "render/outline.h"
#include "render/text_outlines.h"

namespace quorvel::render {

namespace {

// Art smaller than this is drawn as a dot, since nobody sees more of it.
constexpr double kDotPixels = 0.5;
constexpr double kFarAway = 1e6;          // points, for art of which it is not known how far it reaches
constexpr double kLargestPicture = 4096;  // dots of a side, of art that is painted apart
const QColor kGuideColor(0x00, 0xb4, 0xd8);

QBrush faded(const QBrush& brush, double opacity) {
    if (!(opacity < 1) || brush.gradient() == nullptr) return brush;
    QGradient gradient = *brush.gradient();
    QGradientStops stops = gradient.stops();
    for (QGradientStop& stop : stops) stop.second.setAlphaF(stop.second.alphaF() * static_cast<float>(opacity));
    gradient.setStops(stops);
    QBrush faded(gradient);
    faded.setTransform(brush.transform());
    return faded;
}

// A stroke reaches out of its path's bounds by half its width, at a sharp corner by the miter limit times that.
double reachOf(const AIPathStyle& style) {
    if (style.strokePaint == 0) return 0;
    const double half = style.strokeWidth / 2.0;
    return style.join == 0 ? half * std::max(1.5, double(style.miterLimit)) : half * 1.5;
}

// Also holds boxes without height or width, unlike Qt's own union.
QRectF united(const QRectF& a, const QRectF& b) {
    if (a.isNull()) return b;
    if (b.isNull()) return a;
    return QRectF(QPointF(std::min(a.left(), b.left()), std::min(a.top(), b.top())),
                  QPointF(std::max(a.right(), b.right()), std::max(a.bottom(), b.bottom())));
}

// How far at most the map takes a vector of length 1.
double stretchOf(const QTransform& map) {
    return std::sqrt(map.m11() * map.m11() + map.m12() * map.m12() + map.m21() * map.m21() + map.m22() * map.m22());
}

bool isPlainGroup(const SvgAppearance& looks) { return !(looks.opacity < 1) && looks.mask.isEmpty(); }

}  // namespace

DocumentPainter::DocumentPainter(const doc::Document& document, QString folder, int depth)
    : document_(document), looks_(document, folder), parts_(&looks_.definitions(), folder, depth) {}

DocumentPainter::~DocumentPainter() = default;

// --- boxes ---------------------------------------------------------------------------------------------------------

QRectF DocumentPainter::drawnBox(const doc::Art& art) {
    if (art.kind == kGroupArt) {
        if (const auto known = groupBoxes_.find(art.id); known != groupBoxes_.end()) return known->second;
        QRectF box;
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { box = united(box, drawnBox(child)); });
        return groupBoxes_[art.id] = box;
    }
    if (art.kind == kForeignArt) {
        const QPolygonF frame = looks_.frameOf(art);
        if (!frame.isEmpty()) return frame.boundingRect();
        return QRectF(QPointF(-kFarAway, -kFarAway), QPointF(kFarAway, kFarAway));
    }
    const RealRect bounds = document_.bounds(art.id);
    if (isEmpty(bounds)) return {};
    double reach = 0;
    if (const doc::PathData* path = paintedPath(document_, art); path != nullptr && path->style != nullptr)
        reach = std::max(reachOf(*path->style), markerReach(art, *path->style, looks_.of(art)));
    if (art.kind == kTextFrameArt) reach = double(bounds.top) - bounds.bottom;
    reach = std::max(reach, 0.01);  // a level line has no height, and is no empty box
    return toQt(bounds).adjusted(-reach, -reach, reach, reach);
}

QRectF DocumentPainter::renewedBox(const doc::Art& art) {
    groupBoxes_.erase(art.id);
    const QRectF box = drawnBox(art);
    for (const doc::Art* group = document_.find(art.parent); group != nullptr; group = document_.find(group->parent))
        if (const auto known = groupBoxes_.find(group->id); known != groupBoxes_.end())
            known->second = united(known->second, box);
    return box;
}

bool DocumentPainter::dependsOnMembers(const doc::Art& art) {
    if (art.kind == kCompoundPathArt) return true;
    const SvgAppearance& looks = looks_.of(art);
    return !looks.clip.isEmpty() || !looks.mask.isEmpty();
}

QRectF DocumentPainter::plainBox(const doc::Art& art) {
    if (art.kind == kForeignArt) return looks_.frameOf(art).boundingRect();
    const RealRect bounds = document_.bounds(art.id);
    QRectF box = isEmpty(bounds) ? QRectF() : toQt(bounds);
    if (art.kind == kGroupArt && looks_.hasForeign())
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { box = united(box, plainBox(child)); });
    return box;
}

// --- what there is to paint ----------------------------------------------------------------------------------------

void DocumentPainter::look(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options) {
    options_ = options;
    pixel_ = 1 / std::max(1e-9, std::sqrt(std::abs(toDevice.determinant())));
    sight_ = toDevice.inverted().mapRect(clip);
}

void DocumentPainter::paint(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                            const PaintOptions& options) {
    paintItems(painter, toDevice, clip, options, order(toDevice, clip, options), 0,
               QDeadlineTimer(QDeadlineTimer::Forever));
}

std::vector<PaintItem> DocumentPainter::order(const QTransform& toDevice, const QRectF& clip,
                                              const PaintOptions& options) {
    look(toDevice, clip, options);
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
    if (art.hidden || (art.parent != 0 && outOfSight(art))) return;
    if (art.kind == kGroupArt) {
        const SvgAppearance& looks = looks_.of(art);
        const doc::ArtId cutting = looks.clip.isEmpty() ? clippedBy : art.id;
        if (isPlainGroup(looks))
            return forEachChildUpwards(document_, art, [&](const doc::Art& child) { addItems(child, cutting, items); });
    }
    items->push_back({art.id, false, clippedBy});
}

void DocumentPainter::addMarks(const doc::Art& art, std::vector<PaintItem>* items) {
    if (art.hidden || (art.parent != 0 && outOfSight(art))) return;
    if (art.kind == kGroupArt)
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { addMarks(child, items); });
    if (art.selected) items->push_back({art.id, true, 0});
}

std::size_t DocumentPainter::paintItems(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                                        const PaintOptions& options, const std::vector<PaintItem>& items,
                                        std::size_t first, const QDeadlineTimer& until) {
    constexpr std::size_t kBetweenLooksAtTheClock = 32;
    look(toDevice, clip, options);
    painter_ = painter;
    painter->save();
    painter->setClipRect(clip, Qt::IntersectClip);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setTransform(toDevice, true);
    world_ = painter->worldTransform();
    std::size_t next = first;
    doc::ArtId clippedBy = 0;
    while (next < items.size()) {
        if (items[next].clippedBy != clippedBy) {
            if (clippedBy != 0) painter->restore();
            clippedBy = items[next].clippedBy;
            if (clippedBy != 0) {
                painter->save();
                clipToGroups(clippedBy);
            }
        }
        const doc::Art* art = document_.find(items[next].art);
        if (art != nullptr && items[next].mark)
            paintMark(*art);
        else if (art != nullptr)
            paintArt(*art);
        if (++next % kBetweenLooksAtTheClock == 0 && until.hasExpired()) break;
    }
    if (clippedBy != 0) painter->restore();
    painter->restore();
    painter_ = nullptr;
    return next;
}

bool DocumentPainter::outOfSight(const doc::Art& art) {
    QRectF box = drawnBox(art);
    if (box.isNull()) return true;
    box.adjust(-2 * pixel_, -2 * pixel_, 2 * pixel_, 2 * pixel_);
    return !(box.left() <= sight_.right() && box.right() >= sight_.left() && box.top() <= sight_.bottom() &&
             box.bottom() >= sight_.top());
}

// --- art -----------------------------------------------------------------------------------------------------------

void DocumentPainter::clipTo(const doc::Art& art, const SvgAppearance& looks) {
    const QTransform user = looks_.userSpace(art);
    const auto [outline, there] = looks_.clips().clip(looks.clip, user.inverted().mapRect(plainBox(art)));
    if (there) painter_->setClipPath(user.map(outline), Qt::IntersectClip);
}

void DocumentPainter::clipToGroups(doc::ArtId nearest) {
    for (const doc::Art* group = document_.find(nearest); group != nullptr; group = document_.find(group->parent))
        if (const SvgAppearance& looks = looks_.of(*group); !looks.clip.isEmpty()) clipTo(*group, looks);
}

void DocumentPainter::paintArt(const doc::Art& art) {
    if (art.hidden || (art.parent != 0 && outOfSight(art))) return;
    const SvgAppearance& looks = looks_.of(art);
    const bool clipped = !looks.clip.isEmpty();
    if (clipped) {
        painter_->save();
        clipTo(art, looks);
    }
    const doc::PathData* path = paintedPath(document_, art);
    const bool overlaps =
        art.kind == kGroupArt || looks.bearsMarkers ||
        (path != nullptr && path->style != nullptr && path->style->fillPaint != 0 && path->style->strokePaint != 0);
    if (!looks.mask.isEmpty() || (looks.opacity < 1 && overlaps)) {
        paintApart(art, looks);
    } else {
        const double before = painter_->opacity();
        if (looks.opacity < 1) painter_->setOpacity(before * looks.opacity);
        paintContent(art);
        painter_->setOpacity(before);
    }
    if (clipped) painter_->restore();
}

void DocumentPainter::paintContent(const doc::Art& art) {
    switch (art.kind) {
        case kGroupArt:
            forEachChildUpwards(document_, art, [this](const doc::Art& child) { paintArt(child); });
            break;
        case kPathArt:
        case kCompoundPathArt:
            paintPath(art);
            break;
        case kTextFrameArt:
            paintText(art);
            break;
        case kForeignArt:
            looks_.drawForeign(art, painter_);
            break;
        case kUnknownArt:
            break;
    }
}

void DocumentPainter::paintApart(const doc::Art& art, const SvgAppearance& looks) {
    const QTransform toDevice = painter_->deviceTransform();
    // With a dot more on each side, where edges are smooth.
    const QRect place = toDevice.mapRect(drawnBox(art) & sight_).toAlignedRect().adjusted(-1, -1, 1, 1);
    if (place.isEmpty()) return;
    // Paper has more dots than a picture needs.
    const double shrink = std::min(1.0, kLargestPicture / std::max(place.width(), place.height()));
    const QTransform toPicture =
        toDevice * QTransform::fromTranslate(-place.x(), -place.y()) * QTransform::fromScale(shrink, shrink);
    QImage picture(QSize(static_cast<int>(std::ceil(place.width() * shrink)),
                         static_cast<int>(std::ceil(place.height() * shrink))),
                   QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull()) return;
    picture.fill(Qt::transparent);
    QPainter* const below = painter_;
    {
        QPainter apart(&picture);
        apart.setRenderHint(QPainter::Antialiasing);
        apart.setTransform(toPicture);
        painter_ = &apart;
        const QTransform around = std::exchange(world_, apart.worldTransform());
        paintContent(art);
        world_ = around;
        painter_ = below;
        if (!looks.mask.isEmpty()) {
            const QTransform user = looks_.userSpace(art);
            const QRectF box = user.inverted().mapRect(plainBox(art));
            const QImage through = looks_.clips().mask(looks.mask, user * toPicture, picture.size(), box);
            apart.resetTransform();
            apart.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            if (!through.isNull()) apart.drawImage(QPoint(), through);
        }
    }
    // From the picture's dots to the painter's own coordinates, whatever lies between those and the device.
    painter_->save();
    painter_->setTransform(toPicture.inverted(), true);
    painter_->setOpacity(painter_->opacity() * looks.opacity);
    painter_->setRenderHint(QPainter::SmoothPixmapTransform, shrink < 1);
    painter_->drawImage(QPoint(), picture);
    painter_->restore();
}

// --- paths
// ------------------------------------------------------------------------------------------------------------

QBrush DocumentPainter::brushOf(const AIColor& color, const doc::Art& art, double opacity) {
    if (color.kind == kGradientPaint || color.kind == kOtherPaint) {
        const std::optional<QBrush> gradient = looks_.gradient(color, art, document_.bounds(art.id));
        return gradient ? faded(*gradient, opacity) : QBrush(Qt::NoBrush);
    }
    QColor solid = toQt(color);
    solid.setAlphaF(static_cast<float>(opacity));
    return solid;
}

void DocumentPainter::fill(const QPainterPath& outline, const AIColor& color, const doc::Art& art, double opacity) {
    const Pattern* pattern = color.kind == kOtherPaint ? parts_.pattern(looks_.paintedId(color)) : nullptr;
    if (pattern == nullptr) return painter_->fillPath(outline, brushOf(color, art, opacity));
    const QTransform user = looks_.userSpace(art);
    const double before = painter_->opacity();
    painter_->setOpacity(before * opacity);
    // Text is filled in coordinates of its own.
    const QTransform toDocument = painter_->worldTransform() * world_.inverted();
    fillWithPattern(*pattern, outline, user * toDocument.inverted(), user.inverted().mapRect(plainBox(art)),
                    toDocument.inverted().mapRect(sight_), painter_);
    painter_->setOpacity(before);
}

void DocumentPainter::stroke(const QPainterPath& outline, QPen pen, const AIColor& color, const doc::Art& art,
                             double opacity) {
    if (color.kind == kOtherPaint) return fill(QPainterPathStroker(pen).createStroke(outline), color, art, opacity);
    pen.setBrush(brushOf(color, art, opacity));
    painter_->strokePath(outline, pen);
}

QPen DocumentPainter::penOf(const AIPathStyle& style) const {
    static constexpr Qt::PenCapStyle kCaps[] = {Qt::FlatCap, Qt::RoundCap, Qt::SquareCap};
    static constexpr Qt::PenJoinStyle kJoins[] = {Qt::SvgMiterJoin, Qt::RoundJoin, Qt::BevelJoin};
    QPen pen(Qt::black, style.strokeWidth);
    pen.setCapStyle(kCaps[std::clamp(style.cap, 0, 2)]);
    pen.setJoinStyle(kJoins[std::clamp(style.join, 0, 2)]);
    pen.setMiterLimit(std::max(1.0F, style.miterLimit));
    if (style.dashCount > 0) {
        QList<qreal> dashes;
        for (std::int32_t i = 0; i < std::min(style.dashCount, 6); ++i)
            dashes.append(double(style.dashes[i]) / style.strokeWidth);
        if (dashes.size() % 2 != 0) dashes += QList<qreal>(dashes);
        double sum = 0;
        for (const qreal dash : dashes) sum += dash;
        if (sum > 0) {
            pen.setDashPattern(dashes);
            pen.setDashOffset(double(style.dashOffset) / style.strokeWidth);
        }
    }
    return pen;
}

void DocumentPainter::paintPath(const doc::Art& art) {
    const doc::PathData* path = paintedPath(document_, art);
    if (path == nullptr) return;
    if (path->guide) {
        if (options_.guides) painter_->strokePath(outlineOf(document_, art), QPen(kGuideColor, pixel_));
        return;
    }
    if (path->style == nullptr) return;
    const AIPathStyle& style = *path->style;
    const RealRect bounds = document_.bounds(art.id);
    const double extent = std::max(double(bounds.right) - bounds.left, double(bounds.top) - bounds.bottom);
    const SvgAppearance& looks = looks_.of(art);
    if (extent + style.strokeWidth < kDotPixels * pixel_ && !looks.bearsMarkers) {
        const AIColor& ink = style.strokePaint != 0 ? style.stroke : style.fill;
        if (style.strokePaint == 0 && style.fillPaint == 0) return;
        QColor faint = toQt(ink);
        faint.setAlphaF(0.5F);
        painter_->fillRect(QRectF(bounds.left, bounds.bottom, kDotPixels * pixel_, kDotPixels * pixel_), faint);
        return;
    }
    QPainterPath outline = outlineOf(document_, art);
    outline.setFillRule(looks.fillRule);
    if (style.fillPaint != 0) fill(outline, style.fill, art, looks.fillOpacity);
    if (style.strokePaint != 0 && style.strokeWidth > 0)
        stroke(outline, penOf(style), style.stroke, art, looks.strokeOpacity);
    if (looks.bearsMarkers) paintMarkers(art, style, looks);
}

// --- markers -------------------------------------------------------------------------------------------------------

const Marker* DocumentPainter::markerOf(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks,
                                        int kind) {
    const QString& id = looks.markers[static_cast<std::size_t>(kind)];
    if (id.isEmpty()) return nullptr;
    // A gradient is no colour that a marker could take up; it takes the middle of all.
    const auto ink = [&](bool on, const AIColor& color) {
        if (!on) return QColor(Qt::transparent);
        return brushOf(color, art, 1).style() == Qt::SolidPattern ? toQt(color) : QColor(Qt::gray);
    };
    return parts_.marker(id, ink(style.fillPaint != 0, style.fill), ink(style.strokePaint != 0, style.stroke));
}

double DocumentPainter::markerReach(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks) {
    if (!looks.bearsMarkers) return 0;
    const QTransform user = looks_.userSpace(art);
    double reach = 0;
    for (const int kind : {0, 1, 2})
        if (const Marker* marker = markerOf(art, style, looks, kind)) {
            const double unit = marker->byStroke ? style.strokeWidth / std::sqrt(std::abs(user.determinant())) : 1;
            reach = std::max(reach, marker->reach * unit * stretchOf(user));
        }
    return reach;
}

void DocumentPainter::paintMarkers(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks) {
    const QTransform user = looks_.userSpace(art);
    if (!user.isInvertible()) return;
    std::vector<const doc::PathData*> pieces;
    if (art.path != nullptr) pieces.push_back(art.path.get());
    if (art.kind == kCompoundPathArt)
        forEachChildUpwards(document_, art, [&](const doc::Art& child) {
            if (child.path != nullptr) pieces.push_back(child.path.get());
        });
    for (const MarkerPlace& place : markerPlaces(pieces, user.inverted())) {
        const Marker* marker = markerOf(art, style, looks, place.kind);
        if (marker == nullptr) continue;
        double angle = marker->turn == Marker::Turn::kFixed ? marker->angle : place.angle;
        if (marker->turn == Marker::Turn::kAlongReversedAtStart && place.kind == 0) angle += 180;
        const double unit = marker->byStroke ? style.strokeWidth / std::sqrt(std::abs(user.determinant())) : 1;
        QTransform there = user;
        there.translate(place.at.x(), place.at.y()).rotate(angle).scale(unit, unit);
        painter_->save();
        if (!marker->window.isNull()) {
            QPainterPath window;
            window.addPolygon(there.map(QPolygonF(marker->window)));
            painter_->setClipPath(window, Qt::IntersectClip);
        }
        marker->part->paint(painter_, marker->content * there, sight_);
        painter_->restore();
    }
}

// --- texts
// ------------------------------------------------------------------------------------------------------------

void DocumentPainter::paintText(const doc::Art& art) {
    if (art.text == nullptr) return;
    const RealRect bounds = document_.bounds(art.id);
    if (double(bounds.top) - bounds.bottom < pixel_ && double(bounds.right) - bounds.left < pixel_) return;
    const SvgAppearance& looks = looks_.of(art);
    // In the text's own coordinates, where the outlines are.
    const double strokeWidth =
        looks.strokeWidth * std::sqrt(std::abs(looks_.userSpace(art).determinant() /
                                               std::max(1e-12, std::abs(toQt(art.text->matrix).determinant()))));
    painter_->save();
    painter_->setTransform(toQt(art.text->matrix), true);
    for (const TextPiece& piece : textPieces(*art.text)) {
        if (piece.features->fillOn) fill(piece.outline, piece.features->fill, art, looks.fillOpacity);
        if (piece.features->strokeOn)
            stroke(piece.outline, QPen(Qt::black, strokeWidth), piece.features->stroke, art, looks.strokeOpacity);
    }
    painter_->restore();
}

// --- selection
// --------------------------------------------------------------------------------------------------------

// A line of one pixel along what is selected, and its anchors while there are few enough to tell apart.
void DocumentPainter::paintMark(const doc::Art& art) {
    const QPen line(options_.mark, 1.2 * pixel_);
    if (art.kind == kPathArt || art.kind == kCompoundPathArt) {
        painter_->strokePath(outlineOf(document_, art), line);
        if (art.path == nullptr || art.path->segments.size() > 64) return;
        const double half = 2.5 * pixel_;
        for (const PathSegment& segment : art.path->segments)
            painter_->fillRect(QRectF(segment.p.h - half, segment.p.v - half, 2 * half, 2 * half), options_.mark);
    } else if (art.kind == kTextFrameArt) {
        painter_->setPen(line);
        painter_->setBrush(Qt::NoBrush);
        painter_->drawRect(toQt(document_.bounds(art.id)));
    } else if (art.kind == kForeignArt) {
        painter_->setPen(line);
        painter_->setBrush(Qt::NoBrush);
        painter_->drawPolygon(looks_.shownFrameOf(art));
    }
}

}  // namespace quorvel::render
