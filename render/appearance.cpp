#include "render/appearance.h"

#include <QGradient>
#include <algorithm>
#include <cmath>
#include <vector>

#include "interchange/svg/svg.h"
#include "render/outline.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/reference.h"

namespace quorvel::render {

namespace {

constexpr double kLeastStep = 1e-9;  // between two stops of a gradient
constexpr double kJustInside = 0.999;

bool bearsMarkers(svg::Role role) {
    return role == svg::Role::kPath || role == svg::Role::kLine || role == svg::Role::kPolyline ||
           role == svg::Role::kPolygon;
}

double alphaOf(const svg::SvgPaint& paint, const svg::CssColor& current) {
    return paint.kind == svg::SvgPaint::kColor          ? paint.color.a
           : paint.kind == svg::SvgPaint::kCurrentColor ? current.a
                                                        : 1;
}

std::optional<QPainter::CompositionMode> modeOf(svg::BlendMode blend) {
    static constexpr QPainter::CompositionMode kModes[] = {
        QPainter::CompositionMode_SourceOver, QPainter::CompositionMode_Multiply,
        QPainter::CompositionMode_Screen,     QPainter::CompositionMode_Overlay,
        QPainter::CompositionMode_Darken,     QPainter::CompositionMode_Lighten,
        QPainter::CompositionMode_ColorDodge, QPainter::CompositionMode_ColorBurn,
        QPainter::CompositionMode_HardLight,  QPainter::CompositionMode_SoftLight,
        QPainter::CompositionMode_Difference, QPainter::CompositionMode_Exclusion};
    const auto number = static_cast<std::size_t>(blend);
    return number < std::size(kModes) ? std::optional(kModes[number]) : std::nullopt;
}

Qt::FillRule ruleOf(svg::FillRule rule) { return rule == svg::FillRule::kEvenOdd ? Qt::OddEvenFill : Qt::WindingFill; }

QColor colorOf(const svg::CssColor& color) {
    return QColor::fromRgbF(static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b),
                            static_cast<float>(color.a));
}

// Stops never run back, and two at one place are a hard edge, which Qt would take for one stop.
QGradientStops stopsOf(const svg::Gradient& gradient) {
    QGradientStops stops;
    for (const svg::GradientStop& stop : gradient.stops) stops.append({stop.offset, colorOf(stop.color)});
    for (qsizetype i = 1; i < stops.size(); ++i)
        stops[i].first = std::max(stops[i].first, stops[i - 1].first + kLeastStep);
    double highest = 1;
    for (qsizetype i = stops.size() - 1; i >= 0; --i, highest -= kLeastStep)
        stops[i].first = std::min(stops[i].first, highest);
    return stops;
}

QBrush brushOf(const svg::Gradient& gradient, const svg::Viewport& viewport) {
    static constexpr QGradient::Spread kSpreads[] = {QGradient::PadSpread, QGradient::ReflectSpread,
                                                     QGradient::RepeatSpread};
    const double across = gradient.inUserSpace ? viewport.width : 1, down = gradient.inUserSpace ? viewport.height : 1;
    const auto finish = [&](QGradient&& brush) {
        brush.setStops(stopsOf(gradient));
        brush.setInterpolationMode(QGradient::ComponentInterpolation);  // alpha apart from the colour
        brush.setSpread(kSpreads[static_cast<std::size_t>(gradient.spread)]);
        return QBrush(brush);
    };
    if (!gradient.isRadial)
        return finish(QLinearGradient(gradient.x1.of(across), gradient.y1.of(down), gradient.x2.of(across),
                                      gradient.y2.of(down)));
    const double diagonal = gradient.inUserSpace ? viewport.diagonal() : 1;
    const double radius = gradient.r.of(diagonal), first = gradient.fr.of(diagonal);
    // Without a circle all is beyond it.
    if (!(radius > 0) && !gradient.stops.empty()) return colorOf(gradient.stops.back().color);
    // A first circle as large as the last would leave nothing between them. A focus outside the circle makes a cone:
    // https://www.w3.org/TR/SVG2/pservers.html#RadialGradientNotes
    return finish(QRadialGradient(QPointF(gradient.cx.of(across), gradient.cy.of(down)), radius,
                                  QPointF(gradient.fx.of(across), gradient.fy.of(down)),
                                  std::clamp(first, 0.0, kJustInside * radius)));
}

}  // namespace

AppearanceReader::AppearanceReader(const doc::Document& document)
    : document_(document), source_(interchange::svgSource(document)) {
    if (source_ == nullptr) return;
    hasForeign_ = std::any_of(source_->tree.elements.begin(), source_->tree.elements.end(),
                              [](const svg::Element& one) { return one.role == svg::Role::kForeign; });
    hasBlending_ =
        std::any_of(source_->tree.elements.begin(), source_->tree.elements.end(), [&](const svg::Element& one) {
            return source_->tree.file->styles().element(one.style).blendMode != svg::BlendMode::kNormal;
        });
}

svg::Definitions* AppearanceReader::definitions() const {
    return source_ == nullptr ? nullptr : &source_->tree.file->definitions();
}

QTransform AppearanceReader::userSpace(const doc::Art& art) const {
    return art.ref.index < 0 || source_ == nullptr ? QTransform() : toQt(source_->tree.map(art.ref.index));
}

const svg::Filter* AppearanceReader::filter(std::string_view value, double fontSize) {
    if (value.empty()) return nullptr;
    const auto [known, added] = filters_.try_emplace(std::string(value) + ' ' + std::to_string(fontSize));
    if (added) known->second = svg::readFilter(source_->tree.file.get(), value, fontSize);
    return &known->second;
}

Appearance AppearanceReader::read(const svg::Element& element) {
    const svg::StyleTable& styles = source_->tree.file->styles();
    const svg::PaintStyle& paint = styles.paint(element.style);
    const svg::TextStyle& text = styles.text(element.style);
    const svg::ElementStyle& whole = styles.element(element.style);
    Appearance look;
    look.opacity = whole.opacity;
    look.fillOpacity = paint.fillOpacity * alphaOf(paint.fill, paint.color);
    look.strokeOpacity = paint.strokeOpacity * alphaOf(paint.stroke, paint.color);
    look.fillRule = ruleOf(paint.fillRule);
    look.clipRule = ruleOf(text.clipRule);
    look.strokeWidth = paint.strokeWidth;
    look.clip = whole.clipPath;
    look.mask = whole.mask;
    look.blend = modeOf(whole.blendMode);
    look.isBlended = whole.blendMode != svg::BlendMode::kNormal;
    look.isIsolated = whole.isolated;
    look.filter = filter(whole.filter, text.fontSize);
    look.markers = text.markers;
    look.hasMarkers = bearsMarkers(element.role) &&
                      std::any_of(look.markers.begin(), look.markers.end(), [](auto id) { return !id.empty(); });
    return look;
}

const Appearance& AppearanceReader::of(const doc::Art& art) {
    static const Appearance kPlain;
    if (art.ref.index < 0 || source_ == nullptr) return kPlain;
    const svg::Element& element = source_->element(art.ref.index);
    std::vector<std::optional<Appearance>>& known = bearsMarkers(element.role) ? bearing_ : plain_;
    if (element.style >= known.size()) known.resize(element.style + std::size_t{1});
    std::optional<Appearance>& look = known[element.style];
    if (!look) look = read(element);
    return *look;
}

const Appearance& AppearanceReader::ofStyle(std::uint32_t style) {
    if (style >= plain_.size()) plain_.resize(style + std::size_t{1});
    if (!plain_[style]) {
        svg::Element element;
        element.style = style;
        element.role = svg::Role::kText;
        plain_[style] = read(element);
    }
    return *plain_[style];
}

std::string_view AppearanceReader::paintText(const AIColor& paint) const {
    const std::vector<std::string>& texts = interchange::paintTexts(document_);
    const auto number = static_cast<std::size_t>(std::max(0, paint.reference));
    if ((paint.kind != kGradientPaint && paint.kind != kOtherPaint) || number < 1 || number > texts.size()) return {};
    return texts[number - 1];
}

std::string AppearanceReader::nameOf(const doc::Art& art) const {
    if (art.ref.index < 0 || source_ == nullptr) return "path";
    const svg::StartTag tag(svg::startTagText(*source_->text, source_->element(art.ref.index).nameOffset));
    const std::string name(svg::withoutPrefix(tag.name()));
    const std::optional<std::string> id = tag.attribute("id");
    return id ? name + " \"" + *id + '"' : name;
}

std::optional<QBrush> AppearanceReader::gradient(const AIColor& paint, const doc::Art& art,
                                                 const RealRect& bounds) const {
    if (source_ == nullptr) return std::nullopt;
    const svg::Gradient* gradient = definitions()->gradient(svg::urlFragment(paintText(paint)));
    if (gradient == nullptr || gradient->stops.empty()) return std::nullopt;
    QTransform toDocument(double(bounds.right) - bounds.left, 0, 0, double(bounds.bottom) - bounds.top, bounds.left,
                          bounds.top);  // from the box's own units, which run down
    if (gradient->inUserSpace && art.ref.index >= 0) toDocument = userSpace(art);
    QBrush brush = brushOf(*gradient, source_->tree.file->page().viewport);
    brush.setTransform(toQt(gradient->map) * toDocument);
    return brush;
}

}  // namespace quorvel::render
