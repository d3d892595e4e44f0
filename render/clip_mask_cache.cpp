// A mask's content is left to Qt's own SVG reader.
#include "render/clip_mask_cache.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <string_view>

#include "render/outline.h"
#include "svg/values/length.h"
#include "svg/values/path_data.h"

namespace quorvel::render {

namespace {

constexpr int kDeepest = 16;               // of clip paths and uses in each other
constexpr std::size_t kMostNodes = 20000;  // of one clip path

QTransform transformOf(const pugi::xml_node& node) {
    svg::Affine map;
    const char* text = node.attribute("transform").value();
    return *text != '\0' && svg::parseTransform(text, &map) ? toQt(map) : QTransform();
}

double lengthOf(const pugi::xml_node& node, const char* name, double otherwise = 0) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return otherwise;
    return svg::parseLength(attribute.value(), {}).value_or(otherwise);
}

QTransform boxTransform(const QRectF& box) { return {box.width(), 0, 0, box.height(), box.x(), box.y()}; }

// Of a path or a basic shape, in its own user space; empty for anything else and for what cannot be read.
QPainterPath shapeOf(const pugi::xml_node& node) {
    svg::PathShape shape;
    svg::PathBuilder builder(&shape, svg::Affine());
    const std::string_view kind = localName(node);
    if (kind == "path") {
        if (!svg::parsePathData(node.attribute("d").value(), &builder) && shape.pieces.empty()) return {};
    } else if (kind == "polygon" || kind == "polyline") {
        if (!svg::parsePoints(node.attribute("points").value(), true, &builder)) return {};
    } else if (kind == "rect") {
        const double rx = lengthOf(node, "rx", lengthOf(node, "ry")), ry = lengthOf(node, "ry", rx);
        svg::drawRect(lengthOf(node, "x"), lengthOf(node, "y"), lengthOf(node, "width"), lengthOf(node, "height"),
                      std::min(rx, lengthOf(node, "width") / 2), std::min(ry, lengthOf(node, "height") / 2), &builder);
    } else if (kind == "circle" || kind == "ellipse") {
        const double r = lengthOf(node, "r");
        svg::drawEllipse(lengthOf(node, "cx"), lengthOf(node, "cy"), lengthOf(node, "rx", r), lengthOf(node, "ry", r),
                         &builder);
    }
    if (!builder.finish()) return {};
    QPainterPath outline;
    for (const svg::PathShape::Piece& piece : shape.pieces) {
        const auto segments = shape.of(piece);
        if (segments.empty()) continue;
        outline.moveTo(toQt(segments[0].p));
        for (std::size_t i = 1; i < segments.size(); ++i)
            outline.cubicTo(toQt(segments[i - 1].out), toQt(segments[i].in), toQt(segments[i].p));
        if (piece.closed) outline.cubicTo(toQt(segments.back().out), toQt(segments[0].in), toQt(segments[0].p));
        outline.closeSubpath();
    }
    return outline;
}

}  // namespace

// Gathers the outlines in a clip path.
struct ClipMaskCache::Outlines {
    Definitions& source;
    std::size_t nodes = 0;
    bool ofBox = false;

    QPainterPath clipOf(const pugi::xml_node& clip, const QRectF& box, int depth) {
        const bool boxUnits = std::string_view(clip.attribute("clipPathUnits").value()) == "objectBoundingBox";
        ofBox = ofBox || boxUnits;
        const QTransform units = (boxUnits ? boxTransform(box) : QTransform());
        QPainterPath whole;
        for (const pugi::xml_node& child : clip.children())
            whole |= outlineOf(child, transformOf(clip) * units, "nonzero", depth + 1);
        if (const pugi::xml_node outer = source.find(referredId(propertyOf(clip, "clip-path")), "clipPath");
            outer && depth < kDeepest)
            whole &= clipOf(outer, box, depth + 1);
        return whole;
    }
    // The union of what an element and its children cover.
    QPainterPath outlineOf(const pugi::xml_node& node, const QTransform& outer, const std::string& ruleAround,
                           int depth) {
        if (depth > kDeepest || ++nodes > kMostNodes || propertyOf(node, "display") == "none") return {};
        const QTransform map = transformOf(node) * outer;
        std::string rule = propertyOf(node, "clip-rule");
        if (rule.empty()) rule = ruleAround;
        QPainterPath covered;
        if (localName(node) == "use") {
            const char* href = node.attribute("href") ? "href" : "xlink:href";
            const QTransform moved = QTransform::fromTranslate(lengthOf(node, "x"), lengthOf(node, "y")) * map;
            if (const pugi::xml_node used = source.find(referredId(node.attribute(href).value())))
                covered = outlineOf(used, moved, rule, depth + 1);
        } else if (localName(node) == "g") {
            for (const pugi::xml_node& child : node.children()) covered |= outlineOf(child, map, rule, depth + 1);
        } else {
            covered = map.map(shapeOf(node));
            covered.setFillRule(rule == "evenodd" ? Qt::OddEvenFill : Qt::WindingFill);
        }
        if (const pugi::xml_node own = source.find(referredId(propertyOf(node, "clip-path")), "clipPath"))
            covered &= map.map(clipOf(own, map.inverted().mapRect(covered.boundingRect()), depth + 1));
        return covered;
    }
};

ClipMaskCache::ClipMaskCache(Definitions* definitions) : definitions_(*definitions) {}
ClipMaskCache::~ClipMaskCache() = default;

// Uniting outlines is slow, and each painting asks.
std::pair<QPainterPath, bool> ClipMaskCache::clip(const QString& id, const QRectF& box) {
    const pugi::xml_node node = definitions_.find(id.toStdString(), "clipPath");
    if (!node) return {QPainterPath(), false};
    const auto [kept, added] = clips_.try_emplace(id.toStdString());
    if (Clip& clip = kept->second; added || (clip.ofBox && clip.box != box)) {
        Outlines outlines{definitions_};
        clip.outline = outlines.clipOf(node, box, 0);
        clip.ofBox = outlines.ofBox;
        clip.box = box;
    }
    return {kept->second.outline, true};
}

QImage ClipMaskCache::mask(const QString& id, const QTransform& userToPixels, QSize size, const QRectF& box) {
    const pugi::xml_node node = definitions_.find(id.toStdString(), "mask");
    if (!node) return {};
    std::shared_ptr<QSvgRenderer>& content = masks_[id];
    if (content == nullptr) {
        content = std::make_shared<QSvgRenderer>(QByteArray::fromStdString(definitions_.fileOfContent(node)));
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool boxUnits = std::string_view(node.attribute("maskContentUnits").value()) == "objectBoundingBox";
        painter.setTransform((boxUnits ? boxTransform(box) : QTransform()) * userToPixels);
        content->render(&painter, QRectF(0, 0, 1, 1));  // user units as they are
    }
    // Luminance of the colours as they stand, times their opacity, which is in them already.
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const double light = 0.2125 * qRed(line[x]) + 0.7154 * qGreen(line[x]) + 0.0721 * qBlue(line[x]);
            const int through = std::clamp(static_cast<int>(light + 0.5), 0, 255);
            line[x] = qRgba(through, through, through, through);
        }
    }
    return image;
}

}  // namespace quorvel::render
