// Walks the tree from the lowest layer up and leaves out what is not seen: hidden art, and art whose bounds, grown by
// its widest stroke, miss the part that is asked for.
#include "desktop/painter.h"

#include <algorithm>
#include <cmath>

#include "desktop/glyphs.h"
#include "desktop/outline.h"

namespace quorvel::desktop {

namespace {

// Art smaller than this is drawn as a dot, since nobody sees more of it.
constexpr double kDotPixels = 0.5;
// A stroke reaches out of its path's bounds by half its width, at a sharp corner by the miter limit times that; a group
// does not know its members' strokes, so that it is left out only when it is far away.
constexpr double kWidestReach = 36, kFarAway = 1e6;
constexpr double kLargestPicture = 4096;  // dots of a side, of art that is painted apart
const QColor kGuideColor(0x00, 0xb4, 0xd8);

QBrush Faded(const QBrush& brush, double opacity) {
    if (!(opacity < 1) || brush.gradient() == nullptr) return brush;
    QGradient gradient = *brush.gradient();
    QGradientStops stops = gradient.stops();
    for (QGradientStop& stop : stops) stop.second.setAlphaF(stop.second.alphaF() * static_cast<float>(opacity));
    gradient.setStops(stops);
    QBrush faded(gradient);
    faded.setTransform(brush.transform());
    return faded;
}

double ReachOf(const AIPathStyle& style) {
    if (style.strokePaint == 0) return 0;
    const double half = style.strokeWidth / 2.0;
    return style.join == 0 ? half * std::max(1.5, double(style.miterLimit)) : half * 1.5;
}

}  // namespace

QRectF DrawnBox(const host::Document& document, const host::Art& art) {
    const RealRect bounds = document.bounds(art.id);
    if (art.kind == kForeignArt) {  // how far it reaches is not known
        return QRectF(QPointF(-kFarAway, -kFarAway), QPointF(kFarAway, kFarAway));
    }
    if (IsEmpty(bounds)) return {};
    double reach = kWidestReach;
    if (const host::PathData* path = PaintedPath(document, art); path != nullptr && path->style != nullptr)
        reach = ReachOf(*path->style);
    if (art.kind == kTextFrameArt) reach = double(bounds.top) - bounds.bottom;
    reach = std::max(reach, 0.01);  // a level line has no height, and is no empty box
    return ToQt(bounds).adjusted(-reach, -reach, reach, reach);
}

DocumentPainter::DocumentPainter(const host::Document& document, QString folder)
    : document_(document), looks_(document, std::move(folder)) {}

DocumentPainter::~DocumentPainter() = default;

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
            ForEachChildUpwards(document_, *document_.find(document_.layer(*id)->root), [&](const host::Art& art) {
                if (marks)
                    addMarks(art, &items);
                else
                    addItems(art, &items);
            });
        }
    }
    return items;
}

// A group that is only its members is no item of its own, so that a large one can be painted in steps.
void DocumentPainter::addItems(const host::Art& art, std::vector<PaintItem>* items) {
    if (art.hidden || outOfSight(art)) return;
    if (art.kind == kGroupArt) {
        const Looks looks = looks_.of(art);
        if (!(looks.opacity < 1) && looks.clip.isEmpty() && looks.mask.isEmpty())
            return ForEachChildUpwards(document_, art, [&](const host::Art& child) { addItems(child, items); });
    }
    items->push_back({art.id, false});
}

void DocumentPainter::addMarks(const host::Art& art, std::vector<PaintItem>* items) const {
    if (art.hidden || outOfSight(art)) return;
    if (art.kind == kGroupArt)
        ForEachChildUpwards(document_, art, [&](const host::Art& child) { addMarks(child, items); });
    if (art.selected) items->push_back({art.id, true});
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
    std::size_t next = first;
    while (next < items.size()) {
        const host::Art* art = document_.find(items[next].art);
        if (art != nullptr && items[next].mark)
            paintMark(*art);
        else if (art != nullptr)
            paintArt(*art);
        if (++next % kBetweenLooksAtTheClock == 0 && until.hasExpired()) break;
    }
    painter->restore();
    painter_ = nullptr;
    return next;
}

bool DocumentPainter::outOfSight(const host::Art& art) const {
    if (art.kind == kForeignArt) return false;
    QRectF box = DrawnBox(document_, art);
    if (box.isNull()) return true;
    box.adjust(-2 * pixel_, -2 * pixel_, 2 * pixel_, 2 * pixel_);
    return !(box.left() <= sight_.right() && box.right() >= sight_.left() && box.top() <= sight_.bottom() &&
             box.bottom() >= sight_.top());
}

void DocumentPainter::paintArt(const host::Art& art) {
    if (art.hidden || outOfSight(art)) return;
    const Looks looks = looks_.of(art);
    const bool clipped = !looks.clip.isEmpty();
    if (clipped) {
        const QTransform user = looks_.userSpace(art);
        const auto [outline, there] =
            looks_.clips().clip(looks.clip, user.inverted().mapRect(ToQt(document_.bounds(art.id))));
        painter_->save();
        if (there) painter_->setClipPath(user.map(outline), Qt::IntersectClip);
    }
    const host::PathData* path = PaintedPath(document_, art);
    const bool overlaps = art.kind == kGroupArt || (path != nullptr && path->style != nullptr &&
                                                    path->style->fillPaint != 0 && path->style->strokePaint != 0);
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

void DocumentPainter::paintContent(const host::Art& art) {
    switch (art.kind) {
        case kGroupArt:
            ForEachChildUpwards(document_, art, [this](const host::Art& child) { paintArt(child); });
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

void DocumentPainter::paintApart(const host::Art& art, const Looks& looks) {
    const QTransform toDevice = painter_->deviceTransform();
    const QRectF seen =
        ToQt(document_.bounds(art.id)).adjusted(-kWidestReach, -kWidestReach, kWidestReach, kWidestReach) & sight_;
    const QRect place = toDevice.mapRect(seen).toAlignedRect();
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
        paintContent(art);
        painter_ = below;
        if (!looks.mask.isEmpty()) {
            const QTransform user = looks_.userSpace(art);
            const QRectF box = user.inverted().mapRect(ToQt(document_.bounds(art.id)));
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

QBrush DocumentPainter::brushOf(const AIColor& color, const host::Art& art, double opacity) {
    if (color.kind == kGradientPaint || color.kind == kOtherPaint) {
        const std::optional<QBrush> gradient = looks_.gradient(color, art, document_.bounds(art.id));
        return gradient ? Faded(*gradient, opacity) : QBrush(Qt::NoBrush);
    }
    QColor solid = ToQt(color);
    solid.setAlphaF(static_cast<float>(opacity));
    return solid;
}

QPen DocumentPainter::penOf(const AIPathStyle& style, const QBrush& ink) const {
    static constexpr Qt::PenCapStyle kCaps[] = {Qt::FlatCap, Qt::RoundCap, Qt::SquareCap};
    static constexpr Qt::PenJoinStyle kJoins[] = {Qt::SvgMiterJoin, Qt::RoundJoin, Qt::BevelJoin};
    QPen pen(ink, style.strokeWidth);
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

void DocumentPainter::paintPath(const host::Art& art) {
    const host::PathData* path = PaintedPath(document_, art);
    if (path == nullptr) return;
    if (path->guide) {
        if (options_.guides) painter_->strokePath(OutlineOf(document_, art), QPen(kGuideColor, pixel_));
        return;
    }
    if (path->style == nullptr) return;
    const AIPathStyle& style = *path->style;
    const RealRect bounds = document_.bounds(art.id);
    const double extent = std::max(double(bounds.right) - bounds.left, double(bounds.top) - bounds.bottom);
    const Looks looks = looks_.of(art);
    if (extent + style.strokeWidth < kDotPixels * pixel_) {
        const AIColor& ink = style.strokePaint != 0 ? style.stroke : style.fill;
        if (style.strokePaint == 0 && style.fillPaint == 0) return;
        QColor faint = ToQt(ink);
        faint.setAlphaF(0.5F);
        painter_->fillRect(QRectF(bounds.left, bounds.bottom, kDotPixels * pixel_, kDotPixels * pixel_), faint);
        return;
    }
    QPainterPath outline = OutlineOf(document_, art);
    outline.setFillRule(looks.fillRule);
    if (style.fillPaint != 0) painter_->fillPath(outline, brushOf(style.fill, art, looks.fillOpacity));
    if (style.strokePaint != 0 && style.strokeWidth > 0)
        painter_->strokePath(outline, penOf(style, brushOf(style.stroke, art, looks.strokeOpacity)));
}

// --- texts
// ------------------------------------------------------------------------------------------------------------

void DocumentPainter::paintText(const host::Art& art) {
    if (art.text == nullptr) return;
    const RealRect bounds = document_.bounds(art.id);
    if (double(bounds.top) - bounds.bottom < pixel_ && double(bounds.right) - bounds.left < pixel_) return;
    const Looks looks = looks_.of(art);
    // In the text's own coordinates, where the outlines are.
    const double strokeWidth =
        looks.strokeWidth * std::sqrt(std::abs(looks_.userSpace(art).determinant() /
                                               std::max(1e-12, std::abs(ToQt(art.text->matrix).determinant()))));
    painter_->save();
    painter_->setTransform(ToQt(art.text->matrix), true);
    for (const TextPiece& piece : TextPieces(*art.text)) {
        if (piece.features->fillOn)
            painter_->fillPath(piece.outline, brushOf(piece.features->fill, art, looks.fillOpacity));
        if (piece.features->strokeOn)
            painter_->strokePath(piece.outline,
                                 QPen(brushOf(piece.features->stroke, art, looks.strokeOpacity), strokeWidth));
    }
    painter_->restore();
}

// --- selection
// --------------------------------------------------------------------------------------------------------

// A line of one pixel along what is selected, and its anchors while there are few enough to tell apart.
void DocumentPainter::paintMark(const host::Art& art) {
    const QPen line(options_.mark, 1.2 * pixel_);
    if (art.kind == kPathArt || art.kind == kCompoundPathArt) {
        painter_->strokePath(OutlineOf(document_, art), line);
        if (art.path == nullptr || art.path->segments.size() > 64) return;
        const double half = 2.5 * pixel_;
        for (const PathSegment& segment : art.path->segments)
            painter_->fillRect(QRectF(segment.p.h - half, segment.p.v - half, 2 * half, 2 * half), options_.mark);
    } else if (art.kind == kTextFrameArt || art.kind == kForeignArt) {
        painter_->setPen(line);
        painter_->setBrush(Qt::NoBrush);
        painter_->drawRect(ToQt(document_.bounds(art.id)));
    }
}

}  // namespace quorvel::desktop
