#include "render/art_painter.h"

#include <QGradient>
#include <QPaintEngine>
#include <algorithm>
#include <cmath>
#include <vector>

#include "render/gradient_spread.h"
#include "render/marker_places.h"
#include "render/outline.h"
#include "render/text/text_outlines.h"
#include "svg/values/reference.h"

namespace quorvel::render {

namespace {

// Art smaller than this is drawn as a dot, since nobody sees more of it.
constexpr double kDotPixels = 0.5;
constexpr double kOfAnAnchor = 300, kOfACharacter = 5'000;  // nanoseconds
constexpr double kManyLines = 5e7;                          // nanoseconds
const QColor kGuideColor(0x00, 0xb4, 0xd8);

QBrush plain(QColor color, double opacity) {
    if (color.alpha() == 0) return Qt::NoBrush;
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

QBrush faded(const QBrush& brush, double opacity) {
    if (brush.style() == Qt::SolidPattern) return plain(brush.color(), opacity);
    if (!(opacity < 1) || brush.gradient() == nullptr) return brush;
    QGradient gradient = *brush.gradient();
    QGradientStops stops = gradient.stops();
    for (QGradientStop& stop : stops) stop.second.setAlphaF(stop.second.alphaF() * static_cast<float>(opacity));
    gradient.setStops(stops);
    QBrush faded(gradient);
    faded.setTransform(brush.transform());
    return faded;
}

QPen penOf(const AIPathStyle& style) {
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

// The paths of the art, whose anchors get markers, the lowest first.
std::vector<const doc::PathData*> piecesOf(const doc::Document& document, const doc::Art& art) {
    std::vector<const doc::PathData*> pieces;
    if (art.path != nullptr) pieces.push_back(art.path.get());
    if (art.kind == kCompoundPathArt)
        forEachChildUpwards(document, art, [&](const doc::Art& child) {
            if (child.path != nullptr) pieces.push_back(child.path.get());
        });
    return pieces;
}

const doc::CharFeatures* featuresAt(const doc::TextData& text, std::size_t unit) {
    std::size_t end = 0;
    for (const doc::TextRun& run : text.runs) {
        end += static_cast<std::size_t>(std::max(0, run.length));
        if (unit < end) return &run.features;
    }
    return nullptr;
}

}  // namespace

ArtPainter::ArtPainter(const doc::Document& document, AppearanceReader* looks, SubDrawingCache* drawings,
                       ForeignArtCache* foreign, ArtBoxes* boxes, const PaintState* state)
    : document_(document), looks_(*looks), drawings_(*drawings), foreign_(*foreign), boxes_(*boxes), state_(*state) {}

PaintScale PaintState::scale() const {
    PaintScale scale{painter->paintEngine()->type() != QPaintEngine::Raster, pixel, sight};
    // Text is painted in coordinates of its own.
    if (const QTransform now = painter->worldTransform(); now != world) {
        const QTransform fromDocument = world * now.inverted();
        scale.pixel *= std::sqrt(std::abs(fromDocument.determinant()));
        scale.sight = fromDocument.mapRect(sight);
    }
    return scale;
}

bool ArtPainter::take(double nanoseconds, const doc::Art& art) {
    if (state_.budget->take(nanoseconds)) return true;
    leaveOut(art);
    return false;
}

void ArtPainter::leaveOut(const doc::Art& art) {
    if (!state_.budget->leaveOut()) return;
    state_.budget->nameLeftOut(state_.definition.empty() ? looks_.nameOf(art) : state_.definition);
}

// --- paints --------------------------------------------------------------------------------------------------------

QBrush ArtPainter::brushOf(const AIColor& color, const doc::Art& art, double opacity) const {
    if (color.kind == kGradientPaint || color.kind == kOtherPaint) {
        const std::string_view said = looks_.paintText(color);
        if (said == "context-fill") return plain(state_.options.context.fill, opacity);
        if (said == "context-stroke") return plain(state_.options.context.stroke, opacity);
        const std::optional<QBrush> gradient = looks_.gradient(color, art, document_.bounds(art.id));
        return gradient ? faded(*gradient, opacity) : QBrush(Qt::NoBrush);
    }
    QColor solid = toQt(color);
    solid.setAlphaF(static_cast<float>(opacity));
    return solid;
}

void ArtPainter::fill(const QPainterPath& outline, const AIColor& color, const doc::Art& art, double opacity) {
    const PatternDrawing* pattern =
        color.kind == kOtherPaint ? drawings_.pattern(svg::urlFragment(looks_.paintText(color))) : nullptr;
    if (pattern == nullptr) {
        QBrush brush = brushOf(color, art, opacity);
        if (state_.scale().isVector) brush = spreadOver(brush, outline.boundingRect());
        if (take(fillCost(outline, brush, state_.scale()), art)) to().fillPath(outline, brush);
        return;
    }
    if (!take(clipCost(outline, state_.scale()), art)) return;
    const QTransform user = looks_.userSpace(art);
    const double before = to().opacity();
    to().setOpacity(before * opacity);
    // Text is filled in coordinates of its own.
    const QTransform toDocument = to().worldTransform() * state_.world.inverted();
    const bool isWhole = fillWithPattern(
        *pattern, outline, user * toDocument.inverted(), user.inverted().mapRect(boxes_.plain(art)),
        toDocument.inverted().mapRect(state_.sight), state_.options.context, state_.painter, state_.budget);
    if (!isWhole) leaveOut(art);
    to().setOpacity(before);
}

void ArtPainter::stroke(const QPainterPath& outline, QPen pen, const AIColor& color, const doc::Art& art,
                        double opacity) {
    const PaintScale scale = state_.scale();
    if (color.kind != kOtherPaint) {
        const QBrush brush = brushOf(color, art, opacity);
        const double reach = pen.widthF() * std::max(1.0, pen.miterLimit());
        const QRectF box = outline.boundingRect().adjusted(-reach, -reach, reach, reach);
        pen.setBrush(scale.isVector ? spreadOver(brush, box) : brush);
    }
    const double cost = strokeCost(outline, pen, scale);
    // Each of many lines on its own takes far less than all at once, and looks the same where it hides what is below.
    if (cost > kManyLines && !scale.isVector && pen.brush().isOpaque()) return strokeEach(outline, pen, art);
    if (!take(cost, art)) return;
    if (color.kind == kOtherPaint) return fill(QPainterPathStroker(pen).createStroke(outline), color, art, opacity);
    to().strokePath(outline, pen);
}

void ArtPainter::strokeEach(const QPainterPath& outline, const QPen& pen, const doc::Art& art) {
    const PaintScale scale = state_.scale();
    for (int begin = 0, end = 0; begin < outline.elementCount(); begin = end) {
        QPainterPath line;
        line.moveTo(outline.elementAt(begin));
        for (end = begin + 1; end < outline.elementCount() && !outline.elementAt(end).isMoveTo(); ++end)
            if (const auto element = outline.elementAt(end); element.isLineTo()) {
                line.lineTo(element);
            } else {
                line.cubicTo(element, outline.elementAt(end + 1), outline.elementAt(end + 2));
                end += 2;
            }
        if (line.elementCount() > 2 && line.currentPosition() == QPointF(line.elementAt(0))) line.closeSubpath();
        if (take(strokeCost(line, pen, scale), art)) to().strokePath(line, pen);
    }
}

// --- outlines ------------------------------------------------------------------------------------------------------

// False for art that is large enough to be seen.
bool ArtPainter::dot(const doc::Art& art, const AIPathStyle& style) {
    const RealRect bounds = document_.bounds(art.id);
    const double extent = std::max(double(bounds.right) - bounds.left, double(bounds.top) - bounds.bottom);
    const double side = kDotPixels * state_.pixel;
    if (!(extent + style.strokeWidth < side)) return false;
    if (style.strokePaint == 0 && style.fillPaint == 0) return true;
    QColor faint = toQt(style.strokePaint != 0 ? style.stroke : style.fill);
    faint.setAlphaF(0.5F);
    to().fillRect(QRectF(bounds.left, bounds.bottom, side, side), faint);
    return true;
}

void ArtPainter::path(const doc::Art& art) {
    const doc::PathData* path = paintedPath(document_, art);
    if (path == nullptr) return;
    if (path->guide) {
        if (state_.options.guides) to().strokePath(outlineOf(document_, art), QPen(kGuideColor, state_.pixel));
        return;
    }
    if (path->style == nullptr) return;
    const AIPathStyle& style = *path->style;
    const Appearance& look = looks_.of(art);
    if (!look.hasMarkers && dot(art, style)) return;
    std::size_t anchors = 0;
    for (const doc::PathData* piece : piecesOf(document_, art)) anchors += piece->segments.size();
    if (!take(double(anchors) * kOfAnAnchor, art)) return;
    QPainterPath outline = withoutFarCurves(outlineOf(document_, art), state_.pixel);
    outline.setFillRule(look.fillRule);
    if (style.fillPaint != 0) fill(outline, style.fill, art, look.fillOpacity);
    if (style.strokePaint != 0 && style.strokeWidth > 0)
        stroke(outline, penOf(style), style.stroke, art, look.strokeOpacity);
    if (look.hasMarkers) markers(art, style, look);
}

// --- markers -------------------------------------------------------------------------------------------------------

void ArtPainter::markers(const doc::Art& art, const AIPathStyle& style, const Appearance& look) {
    const QTransform user = looks_.userSpace(art);
    if (!user.isInvertible()) return;
    // A gradient is no colour that a marker could take up; it takes the middle of all.
    const auto ink = [&](bool on, const AIColor& color) {
        if (!on) return QColor(Qt::transparent);
        return brushOf(color, art, 1).style() == Qt::SolidPattern ? toQt(color) : QColor(Qt::gray);
    };
    const ContextPaint context{ink(style.fillPaint != 0, style.fill), ink(style.strokePaint != 0, style.stroke)};
    for (const MarkerPlace& place : markerPlaces(piecesOf(document_, art), user.inverted())) {
        if (state_.budget->isSpent()) return leaveOut(art);
        const MarkerDrawing* drawing = drawings_.marker(look.markers[static_cast<std::size_t>(place.kind)]);
        if (drawing == nullptr) continue;
        const svg::Marker& said = *drawing->marker;
        double angle = said.turn == svg::Marker::Turn::kFixed ? said.angle : place.angle;
        if (said.turn == svg::Marker::Turn::kAlongReversedAtStart && place.kind == 0) angle += 180;
        const double unit = markerUnit(said, style, user);
        QTransform there = user;
        marker(*drawing, there.translate(place.at.x(), place.at.y()).rotate(angle).scale(unit, unit), context);
    }
}

void ArtPainter::marker(const MarkerDrawing& drawing, const QTransform& there, const ContextPaint& context) {
    to().save();
    if (!drawing.window.isNull()) {
        QPainterPath window;
        window.addPolygon(there.map(QPolygonF(drawing.window)));
        to().setClipPath(window, Qt::IntersectClip);
    }
    drawing.drawing->paint(state_.painter, drawing.content * there, state_.sight, context);
    to().restore();
}

// --- texts ---------------------------------------------------------------------------------------------------------

void ArtPainter::text(const doc::Art& art) {
    if (art.text == nullptr) return;
    const RealRect bounds = document_.bounds(art.id);
    const double tall = double(bounds.top) - bounds.bottom, wide = double(bounds.right) - bounds.left;
    if (tall < state_.pixel && wide < state_.pixel) return;
    if (!take(double(art.text->text.size()) * kOfACharacter, art)) return;
    QTransform toDocument;
    if (const TextLayout* layout = looks_.textLayout(art, &toDocument)) return textLayout(*layout, toDocument, art);
    const Appearance& look = looks_.of(art);
    // In the text's own coordinates, where the outlines are.
    const double strokeWidth =
        look.strokeWidth * std::sqrt(std::abs(looks_.userSpace(art).determinant() /
                                              std::max(1e-12, std::abs(toQt(art.text->matrix).determinant()))));
    to().save();
    to().setTransform(toQt(art.text->matrix), true);
    for (const TextPiece& piece : textPieces(*art.text)) {
        if (piece.features->fillOn) fill(piece.outline, piece.features->fill, art, look.fillOpacity);
        if (piece.features->strokeOn)
            stroke(piece.outline, QPen(Qt::black, strokeWidth), piece.features->stroke, art, look.strokeOpacity);
    }
    to().restore();
}

void ArtPainter::textLayout(const TextLayout& layout, const QTransform& toDocument, const doc::Art& art) {
    const double scale = std::sqrt(std::abs(toDocument.determinant()));
    for (const GlyphRun& run : layout.runs) {
        const doc::CharFeatures* features = featuresAt(*art.text, run.unit);
        if (!run.isVisible || features == nullptr) continue;
        const Appearance& look = looks_.ofStyle(run.style);
        const QPainterPath outline = toDocument.map(run.outline());
        if (features->fillOn) fill(outline, features->fill, art, look.fillOpacity);
        if (features->strokeOn)
            stroke(outline, QPen(Qt::black, look.strokeWidth * scale), features->stroke, art, look.strokeOpacity);
    }
}

// --- selection -----------------------------------------------------------------------------------------------------

void ArtPainter::mark(const doc::Art& art) {
    constexpr std::size_t kMostAnchors = 64;
    const QPen line(state_.options.mark, 1.2 * state_.pixel);
    if (art.kind == kPathArt || art.kind == kCompoundPathArt) {
        to().strokePath(outlineOf(document_, art), line);
        if (art.path == nullptr || art.path->segments.size() > kMostAnchors) return;
        const double half = 2.5 * state_.pixel;
        for (const PathSegment& segment : art.path->segments)
            to().fillRect(QRectF(segment.p.h - half, segment.p.v - half, 2 * half, 2 * half), state_.options.mark);
        return;
    }
    if (art.kind != kTextFrameArt && art.kind != kForeignArt) return;
    to().setPen(line);
    to().setBrush(Qt::NoBrush);
    if (art.kind == kTextFrameArt)
        to().drawRect(toQt(document_.bounds(art.id)));
    else
        to().drawPolygon(foreign_.shownFrameOf(art));
}

}  // namespace quorvel::render
