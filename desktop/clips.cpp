// The file is parsed when the first clip path or mask is asked for. A mask's content is left to Qt's own SVG reader.
#include "desktop/clips.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <pugixml.hpp>
#include <sstream>
#include <string_view>
#include <unordered_map>

#include "desktop/outline.h"
#include "host/css.h"
#include "host/path_data.h"

namespace quorvel::desktop {

namespace {

constexpr int kDeepest = 16;               // of clip paths and uses in each other
constexpr double kMaskCanvas = 1000;       // user units of the square that a mask's content is drawn in, at scale 1
constexpr std::size_t kMostNodes = 20000;  // of one clip path

std::string_view LocalName(const pugi::xml_node& node) {
    const std::string_view name = node.name();
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// A property as the style attribute or else the attribute of its name says it.
std::string PropertyOf(const pugi::xml_node& node, std::string_view name) {
    std::vector<host::CssDeclaration> declarations;
    host::parseDeclarations(node.attribute("style").value(), &declarations);
    for (auto one = declarations.rbegin(); one != declarations.rend(); ++one)
        if (one->property == name) return std::string(one->value);
    return node.attribute(std::string(name).c_str()).value();
}

std::string ReferredId(const std::string& reference) {
    const std::size_t hash = reference.find('#');
    if (hash == std::string::npos) return {};
    const std::size_t end = reference.find_first_of(")\"' ", hash);
    return reference.substr(hash + 1, end == std::string::npos ? end : end - hash - 1);
}

QTransform TransformOf(const pugi::xml_node& node) {
    host::Affine map;
    const char* text = node.attribute("transform").value();
    return *text != '\0' && host::parseTransform(text, &map) ? ToQt(map) : QTransform();
}

double LengthOf(const pugi::xml_node& node, const char* name, double otherwise = 0) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return otherwise;
    return host::parseLength(attribute.value(), {}).value_or(otherwise);
}

QTransform BoxUnits(const QRectF& box) { return {box.width(), 0, 0, box.height(), box.x(), box.y()}; }

// Of a path or a basic shape, in its own user space; empty for anything else and for what cannot be read.
QPainterPath ShapeOf(const pugi::xml_node& node) {
    host::PathShape shape;
    host::PathBuilder builder(&shape, host::Affine());
    std::string error;
    const std::string_view kind = LocalName(node);
    if (kind == "path") {
        if (!host::parsePathData(node.attribute("d").value(), &builder, &error) && shape.pieces.empty()) return {};
    } else if (kind == "polygon" || kind == "polyline") {
        if (!host::parsePoints(node.attribute("points").value(), true, &builder, &error)) return {};
    } else if (kind == "rect") {
        const double rx = LengthOf(node, "rx", LengthOf(node, "ry")), ry = LengthOf(node, "ry", rx);
        host::drawRect(LengthOf(node, "x"), LengthOf(node, "y"), LengthOf(node, "width"), LengthOf(node, "height"),
                       std::min(rx, LengthOf(node, "width") / 2), std::min(ry, LengthOf(node, "height") / 2), &builder);
    } else if (kind == "circle" || kind == "ellipse") {
        const double r = LengthOf(node, "r");
        host::drawEllipse(LengthOf(node, "cx"), LengthOf(node, "cy"), LengthOf(node, "rx", r), LengthOf(node, "ry", r),
                          &builder);
    }
    if (!builder.finish()) return {};
    QPainterPath outline;
    for (const host::PathShape::Piece& piece : shape.pieces) {
        const auto segments = shape.of(piece);
        if (segments.empty()) continue;
        outline.moveTo(ToQt(segments[0].p));
        for (std::size_t i = 1; i < segments.size(); ++i)
            outline.cubicTo(ToQt(segments[i - 1].out), ToQt(segments[i].in), ToQt(segments[i].p));
        if (piece.closed) outline.cubicTo(ToQt(segments.back().out), ToQt(segments[0].in), ToQt(segments[0].p));
        outline.closeSubpath();
    }
    return outline;
}

}  // namespace

struct Clips::Source {
    explicit Source(const std::string& svg) : text(svg) {}

    void parse() {
        if (parsed) return;
        parsed = true;
        if (!document.load_buffer(text.data(), text.size())) return;
        struct Gather : pugi::xml_tree_walker {
            Source* into = nullptr;
            bool for_each(pugi::xml_node& node) override {
                if (const char* id = node.attribute("id").value(); *id != '\0') into->byId.emplace(id, node);
                const std::string_view kind = LocalName(node);
                if (kind == "linearGradient" || kind == "radialGradient") into->gradients.push_back(node);
                return true;
            }
        } gather;
        gather.into = this;
        document.traverse(gather);
    }
    pugi::xml_node find(const std::string& id, std::string_view kind = {}) const {
        const auto found = byId.find(id);
        if (found == byId.end() || (!kind.empty() && LocalName(found->second) != kind)) return {};
        return found->second;
    }

    const std::string& text;
    bool parsed = false;
    pugi::xml_document document;
    std::unordered_map<std::string, pugi::xml_node> byId;
    std::vector<pugi::xml_node> gradients;
};

// Gathers the outlines in a clip path.
struct Clips::Outlines {
    const Source& source;
    std::size_t nodes = 0;

    QPainterPath clipOf(const pugi::xml_node& clip, const QRectF& box, int depth) {
        const bool boxUnits = std::string_view(clip.attribute("clipPathUnits").value()) == "objectBoundingBox";
        const QTransform units = (boxUnits ? BoxUnits(box) : QTransform());
        QPainterPath whole;
        for (const pugi::xml_node& child : clip.children())
            whole |= outlineOf(child, TransformOf(clip) * units, "nonzero", depth + 1);
        if (const pugi::xml_node outer = source.find(ReferredId(PropertyOf(clip, "clip-path")), "clipPath");
            outer && depth < kDeepest)
            whole &= clipOf(outer, box, depth + 1);
        return whole;
    }
    // The union of what an element and its children cover.
    QPainterPath outlineOf(const pugi::xml_node& node, const QTransform& outer, const std::string& ruleAround,
                           int depth) {
        if (depth > kDeepest || ++nodes > kMostNodes || PropertyOf(node, "display") == "none") return {};
        const QTransform map = TransformOf(node) * outer;
        std::string rule = PropertyOf(node, "clip-rule");
        if (rule.empty()) rule = ruleAround;
        QPainterPath covered;
        if (LocalName(node) == "use") {
            const char* href = node.attribute("href") ? "href" : "xlink:href";
            const QTransform moved = QTransform::fromTranslate(LengthOf(node, "x"), LengthOf(node, "y")) * map;
            if (const pugi::xml_node used = source.find(ReferredId(node.attribute(href).value())))
                covered = outlineOf(used, moved, rule, depth + 1);
        } else if (LocalName(node) == "g") {
            for (const pugi::xml_node& child : node.children()) covered |= outlineOf(child, map, rule, depth + 1);
        } else {
            covered = map.map(ShapeOf(node));
            covered.setFillRule(rule == "evenodd" ? Qt::OddEvenFill : Qt::WindingFill);
        }
        if (const pugi::xml_node own = source.find(ReferredId(PropertyOf(node, "clip-path")), "clipPath"))
            covered &= map.map(clipOf(own, map.inverted().mapRect(covered.boundingRect()), depth + 1));
        return covered;
    }
};

Clips::Clips(const std::string& svg) : source_(std::make_unique<Source>(svg)) {}
Clips::~Clips() = default;

std::pair<QPainterPath, bool> Clips::clip(const QString& id, const QRectF& box) const {
    source_->parse();
    const pugi::xml_node node = source_->find(id.toStdString(), "clipPath");
    if (!node) return {QPainterPath(), false};
    return {Outlines{*source_}.clipOf(node, box, 0), true};
}

QImage Clips::mask(const QString& id, const QTransform& userToPixels, QSize size, const QRectF& box) {
    source_->parse();
    const pugi::xml_node node = source_->find(id.toStdString(), "mask");
    if (!node) return {};
    std::shared_ptr<QSvgRenderer>& content = masks_[id];
    if (content == nullptr) {
        std::ostringstream text;
        text << R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" viewBox="0 0 )"
             << kMaskCanvas << ' ' << kMaskCanvas << R"("><defs>)";
        for (const pugi::xml_node& gradient : source_->gradients) gradient.print(text, "", pugi::format_raw);
        text << "</defs>";
        for (const pugi::xml_node& child : node.children()) child.print(text, "", pugi::format_raw);
        text << "</svg>";
        content = std::make_shared<QSvgRenderer>(QByteArray::fromStdString(text.str()));
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool boxUnits = std::string_view(node.attribute("maskContentUnits").value()) == "objectBoundingBox";
        painter.setTransform((boxUnits ? BoxUnits(box) : QTransform()) * userToPixels);
        content->render(&painter, QRectF(0, 0, kMaskCanvas, kMaskCanvas));
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

}  // namespace quorvel::desktop
