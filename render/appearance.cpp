// Reads only what is asked for and keeps it: most drawings have one gradient and no opacity at all.
#include "render/appearance.h"

#include <QDir>
#include <QSvgRenderer>
#include <QUrl>
#include <QXmlStreamReader>
#include <algorithm>
#include <cmath>
#include <vector>

#include "interchange/svg/art_loader.h"
#include "render/outline.h"
#include "svg/css/declarations.h"
#include "svg/css/style_attribute.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/affine.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::render {

struct AppearanceReader::Gradient {
    bool radial = false;
    QHash<QString, QString> words;  // attributes as they stand
    QGradientStops stops;
    QString href;
};

struct AppearanceReader::Foreign {
    QTransform toDocument;  // of the element's user space
    QImage image;
    QTransform place;  // from the image's dots to user space
    QRectF frame;      // of an image, in user space
    std::unique_ptr<QSvgRenderer> drawing;
    QRectF drawn;  // what the drawing covers, in user space
};

namespace {

constexpr int kLongestChain = 16;
constexpr char kForeignId[] = "quorvel-foreign";
constexpr double kLeastStep = 1e-9;  // between two stops of a gradient

double number(const QString& text, double otherwise) {
    QString word = text.trimmed();
    const bool percent = word.endsWith(QLatin1Char('%'));
    if (percent) word.chop(1);
    while (!word.isEmpty() && word.back().isLetter()) word.chop(1);
    bool read = false;
    const double value = word.toDouble(&read);
    return !read ? otherwise : percent ? value / 100 : value;
}

// In user units.
double length(const QString& text, double percentOf, double otherwise) {
    return text.isEmpty() ? otherwise : svg::parseLength(text.toStdString(), {percentOf}).value_or(otherwise);
}

// Stops never run back, and two at one place are a hard edge, which Qt would take for one stop.
QGradientStops parted(QGradientStops stops) {
    for (qsizetype i = 1; i < stops.size(); ++i)
        stops[i].first = std::max(stops[i].first, stops[i - 1].first + kLeastStep);
    double highest = 1;
    for (qsizetype i = stops.size() - 1; i >= 0; --i, highest -= kLeastStep)
        stops[i].first = std::min(stops[i].first, highest);
    return stops;
}

QString fromStyle(QStringView style, QLatin1String name) {
    for (const QStringView declaration : style.split(QLatin1Char(';'))) {
        const qsizetype colon = declaration.indexOf(QLatin1Char(':'));
        if (colon > 0 && declaration.left(colon).trimmed() == name)
            return declaration.mid(colon + 1).trimmed().toString();
    }
    return {};
}

QString attributeOrStyle(const QXmlStreamAttributes& attributes, const char* name) {
    const QString styled = fromStyle(attributes.value(QLatin1String("style")), QLatin1String(name));
    return styled.isEmpty() ? attributes.value(QLatin1String(name)).toString() : styled;
}

QColor stopColor(const QXmlStreamAttributes& attributes) {
    QString word = attributeOrStyle(attributes, "stop-color");
    QColor color(word.isEmpty() ? QStringLiteral("black") : word);
    if (word.startsWith(QLatin1String("rgb("))) {
        const QStringList parts = word.mid(4).chopped(1).split(QLatin1Char(','));
        if (parts.size() == 3) color = QColor(parts[0].toInt(), parts[1].toInt(), parts[2].toInt());
    }
    color.setAlphaF(static_cast<float>(std::clamp(number(attributeOrStyle(attributes, "stop-opacity"), 1), 0.0, 1.0)));
    return color;
}

QTransform readTransform(const QString& text) {
    svg::Affine map;
    return svg::parseTransform(text.toStdString(), &map) ? toQt(map) : QTransform();
}

QString paintReferenceId(const std::string& reference) {
    const std::size_t hash = reference.find('#');
    if (hash == std::string::npos) return {};
    const std::size_t end = reference.find_first_of(")\"'", hash);
    return QString::fromStdString(reference.substr(hash + 1, end == std::string::npos ? end : end - hash - 1));
}

QImage loadImage(const QString& href, const QString& folder) {
    const QString link = href.trimmed();
    if (!link.startsWith(QLatin1String("data:"))) {
        const QUrl url(link);
        const QString path = url.isLocalFile() ? url.toLocalFile() : QUrl::fromPercentEncoding(link.toUtf8());
        const QImage image(QDir(folder).absoluteFilePath(path));
        return image.isNull() ? QImage(QDir(folder).absoluteFilePath(link)) : image;  // a name with a % of its own
    }
    const qsizetype comma = link.indexOf(QLatin1Char(','));
    const QByteArray content = link.mid(comma + 1).toLatin1();
    if (!link.left(comma).endsWith(QLatin1String(";base64")))
        return QImage::fromData(QByteArray::fromPercentEncoding(content));
    return QImage::fromData(QByteArray::fromBase64(QByteArray::fromPercentEncoding(content)));
}

}  // namespace

AppearanceReader::AppearanceReader(const doc::Document& document, QString folder)
    : document_(document),
      source_(interchange::svgSource(document)),
      folder_(std::move(folder)),
      definitions_(source_ != nullptr ? *source_->text : nothing_),
      clips_(&definitions_) {
    if (source_ == nullptr) return;
    for (const char* word : {"opacity", "evenodd", "clip-path", "mask", "marker", "<text", ":text"})
        hasLooks_ = hasLooks_ || source_->text->find(word) != std::string::npos;
    // What a use element has made may hold some.
    hasForeign_ = std::any_of(source_->tree.elements.begin(), source_->tree.elements.end(),
                              [](const svg::Element& one) { return one.role == svg::Role::kForeign; });
    if (hasLooks_ && source_->hasStyleSheet) readStyleSheet();
    readViewport();
}

AppearanceReader::~AppearanceReader() = default;

void AppearanceReader::readStyleSheet() {
    QXmlStreamReader in(QByteArray::fromStdString(*source_->text));
    while (!in.atEnd())
        if (in.readNext() == QXmlStreamReader::StartElement && in.name() == QLatin1String("style"))
            sheet_.add(in.readElementText(QXmlStreamReader::SkipChildElements).toStdString());
}

void AppearanceReader::readViewport() {
    if (source_->tree.elements.empty()) return;
    const svg::Affine& map = source_->tree.ctms[source_->tree.elements.front().ctm];
    svg::Viewport box{document_.width() / map.scale(), document_.height() / map.scale()};
    const svg::StartTag root = tagOf(source_->tree.elements.front());
    pugi::xml_document parsed;
    pugi::xml_node node = parsed.append_child("svg");
    node.append_attribute("viewBox") = root.attribute("viewBox").value_or("").c_str();
    svg::viewBoxMap(svg::viewBoxOf(svg::XmlNode(node)), {1, 1}, &box);
    viewport_ = {box.width, box.height};
}

const svg::Element* AppearanceReader::origin(std::int32_t index) const {
    const bool there =
        source_ != nullptr && index >= 0 && static_cast<std::size_t>(index) < source_->tree.elements.size();
    return there ? &source_->tree.elements[static_cast<std::size_t>(index)] : nullptr;
}

svg::StartTag AppearanceReader::tagOf(const svg::Element& origin) const {
    return svg::StartTag(svg::startTagText(*source_->text, origin.nameOffset));
}

QTransform AppearanceReader::userSpace(const doc::Art& art) const {
    const svg::Element* own = origin(art.origin);
    return own == nullptr ? QTransform() : toQt(source_->tree.ctms[own->ctm]);
}

const SvgAppearance& AppearanceReader::read(std::int32_t index) {
    static const SvgAppearance kPlain;
    const auto found = looks_.find(index);
    if (found != looks_.end()) return found->second;
    const svg::Element* own = origin(index);
    if (own == nullptr) return kPlain;
    SvgAppearance looks = read(own->parent);  // what is inherited
    const svg::StartTag tag = tagOf(*own);
    const std::string style = tag.attribute("style").value_or("");
    // The weakest first: the attribute, the style sheets, the style attribute.
    std::vector<svg::CssDeclaration> declarations;
    const std::string type = tag.name().substr(tag.name().find(':') + 1);
    const std::string id = tag.attribute("id").value_or(""), classes = tag.attribute("class").value_or("");
    if (!sheet_.empty() && !sheet_.match(type, id, classes, &declarations)) declarations.clear();
    svg::parseDeclarations(style, &declarations);
    const auto word = [&](const char* name) {
        for (auto one = declarations.rbegin(); one != declarations.rend(); ++one)
            if (one->property == name) return QString::fromUtf8(one->value.data(), qsizetype(one->value.size()));
        return QString::fromStdString(tag.attribute(name).value_or(""));
    };
    looks.opacity = std::clamp(number(word("opacity"), 1), 0.0, 1.0);
    looks.fillOpacity = std::clamp(number(word("fill-opacity"), looks.fillOpacity), 0.0, 1.0);
    looks.strokeOpacity = std::clamp(number(word("stroke-opacity"), looks.strokeOpacity), 0.0, 1.0);
    const QString rule = word("fill-rule");
    if (rule == QLatin1String("evenodd")) looks.fillRule = Qt::OddEvenFill;
    if (rule == QLatin1String("nonzero")) looks.fillRule = Qt::WindingFill;
    looks.strokeWidth = std::max(0.0, length(word("stroke-width"), 0, looks.strokeWidth));
    looks.clip = paintReferenceId(word("clip-path").toStdString());
    looks.mask = paintReferenceId(word("mask").toStdString());
    static constexpr const char* kMarkers[] = {"marker-start", "marker-mid", "marker-end"};
    for (std::size_t i = 0; i < 3; ++i) {
        QString marker = word(kMarkers[i]);
        if (marker.isEmpty()) marker = word("marker");
        if (!marker.isEmpty() && marker != QLatin1String("inherit"))
            looks.markers[i] = paintReferenceId(marker.toStdString());
    }
    looks.bearsMarkers =
        (type == "path" || type == "line" || type == "polyline" || type == "polygon") &&
        std::any_of(looks.markers.begin(), looks.markers.end(), [](const QString& one) { return !one.isEmpty(); });
    return looks_.emplace(index, std::move(looks)).first->second;
}

const SvgAppearance& AppearanceReader::of(const doc::Art& art) { return read(hasLooks_ ? art.origin : -1); }

QString AppearanceReader::paintedId(const AIColor& paint) const {
    const auto number = static_cast<std::size_t>(std::max(0, paint.reference));
    if ((paint.kind != kGradientPaint && paint.kind != kOtherPaint) || number < 1 ||
        number > document_.paintSources.size())
        return {};
    return paintReferenceId(document_.paintSources[number - 1]);
}

// --- gradients
// --------------------------------------------------------------------------------------------------------

void AppearanceReader::readGradients() {
    gradientsRead_ = true;
    if (source_ == nullptr) return;
    QXmlStreamReader in(QByteArray::fromStdString(*source_->text));
    std::shared_ptr<Gradient> open;
    while (!in.atEnd()) {
        in.readNext();
        const bool linear = in.name() == QLatin1String("linearGradient");
        const bool radial = in.name() == QLatin1String("radialGradient");
        if (in.isEndElement() && (linear || radial)) open.reset();
        if (!in.isStartElement()) continue;
        const QXmlStreamAttributes attributes = in.attributes();
        if (linear || radial) {
            open = std::make_shared<Gradient>();
            open->radial = radial;
            for (const QXmlStreamAttribute& one : attributes) {
                open->words.insert(one.name().toString(), one.value().toString());
                if (one.name() == QLatin1String("href")) open->href = one.value().mid(1).toString();
            }
            gradients_.insert(attributes.value(QLatin1String("id")).toString(), open);
        } else if (open != nullptr && in.name() == QLatin1String("stop")) {
            const double place = std::clamp(number(attributes.value(QLatin1String("offset")).toString(), 0), 0.0, 1.0);
            open->stops.append({place, stopColor(attributes)});
        }
    }
}

const AppearanceReader::Gradient* AppearanceReader::follow(const QString& id) const {
    const auto found = gradients_.constFind(id);
    return found == gradients_.constEnd() ? nullptr : found->get();
}

std::optional<QBrush> AppearanceReader::gradient(const AIColor& paint, const doc::Art& art, const RealRect& bounds) {
    if (!gradientsRead_) readGradients();
    const Gradient* first = follow(paintedId(paint));
    if (first == nullptr) return std::nullopt;
    // The gradient and those that it takes stops and attributes from.
    std::vector<const Gradient*> chain;
    for (const Gradient* one = first; one != nullptr && chain.size() < kLongestChain; one = follow(one->href))
        chain.push_back(one);
    const auto word = [&](const char* name) {
        for (const Gradient* one : chain)
            if (const auto found = one->words.constFind(QLatin1String(name)); found != one->words.constEnd())
                return *found;
        return QString();
    };
    const auto stops =
        std::find_if(chain.begin(), chain.end(), [](const Gradient* one) { return !one->stops.isEmpty(); });
    if (stops == chain.end()) return std::nullopt;

    const auto fill = [&](QGradient* gradient) {
        gradient->setStops(parted((*stops)->stops));
        const QString spread = word("spreadMethod");
        if (spread == QLatin1String("reflect")) gradient->setSpread(QGradient::ReflectSpread);
        if (spread == QLatin1String("repeat")) gradient->setSpread(QGradient::RepeatSpread);
    };
    QBrush brush;
    const bool inUserSpace = word("gradientUnits") == QLatin1String("userSpaceOnUse");
    // otherwise: a share of the viewport or of the box.
    const auto coordinate = [&](const char* name, double side, double otherwise) {
        const QString text = word(name);
        if (!inUserSpace) return number(text, otherwise);
        return length(text, side, otherwise * side);
    };
    const double across = viewport_.width(), down = viewport_.height();
    if (first->radial) {
        const QPointF centre(coordinate("cx", across, 0.5), coordinate("cy", down, 0.5));
        const QPointF focus(word("fx").isEmpty() ? centre.x() : coordinate("fx", across, 0.5),
                            word("fy").isEmpty() ? centre.y() : coordinate("fy", down, 0.5));
        QRadialGradient radial(centre, coordinate("r", std::hypot(across, down) / std::sqrt(2), 0.5), focus);
        fill(&radial);
        brush = QBrush(radial);
    } else {
        QLinearGradient linear(coordinate("x1", across, 0), coordinate("y1", down, 0), coordinate("x2", across, 1),
                               coordinate("y2", down, 0));
        fill(&linear);
        brush = QBrush(linear);
    }
    QTransform toDocument(double(bounds.right) - bounds.left, 0, 0, double(bounds.bottom) - bounds.top, bounds.left,
                          bounds.top);  // from the box's own units, which run down
    if (inUserSpace && origin(art.origin) != nullptr) toDocument = userSpace(art);
    brush.setTransform(readTransform(word("gradientTransform")) * toDocument);
    return brush;
}

// --- foreign elements
// ---------------------------------------------------------------------------------------------------

void AppearanceReader::readImage(const svg::StartTag& tag, Foreign* foreign) const {
    const auto word = [&](const char* attribute) {
        return QString::fromStdString(tag.attribute(attribute).value_or(""));
    };
    const QString href = word("href").isEmpty() ? word("xlink:href") : word("href");
    foreign->image = loadImage(href, folder_);
    const QSizeF own = foreign->image.isNull() ? QSizeF(0, 0) : QSizeF(foreign->image.size());
    const auto side = [&](const char* name, double percentOf) { return length(word(name), percentOf, -1); };
    double width = side("width", viewport_.width()), height = side("height", viewport_.height());
    // A side that is not given follows the other one.
    if (width < 0) width = height < 0 || own.isEmpty() ? own.width() : height * own.width() / own.height();
    if (height < 0) height = own.isEmpty() ? own.height() : width * own.height() / own.width();
    foreign->frame =
        QRectF(length(word("x"), viewport_.width(), 0), length(word("y"), viewport_.height(), 0), width, height);
    pugi::xml_document parsed;
    pugi::xml_node node = parsed.append_child("image");
    node.append_attribute("viewBox") =
        (std::to_string(foreign->image.width()) + ' ' + std::to_string(foreign->image.height()))
            .insert(0, "0 0 ")
            .c_str();
    if (const auto fit = tag.attribute("preserveAspectRatio"))
        node.append_attribute("preserveAspectRatio") = fit->c_str();
    svg::Viewport box;
    foreign->place = toQt(svg::viewBoxMap(svg::viewBoxOf(svg::XmlNode(node)), {width, height}, &box)) *
                     QTransform::fromTranslate(foreign->frame.x(), foreign->frame.y());
}

std::unique_ptr<AppearanceReader::Foreign> AppearanceReader::readForeign(const svg::Element& own) {
    auto foreign = std::make_unique<Foreign>();
    foreign->toDocument = toQt(source_->tree.ctms[own.ctm]);
    svg::StartTag tag = tagOf(own);
    const std::string& name = tag.name();
    const std::size_t colon = name.find(':');
    const std::string prefix = colon == std::string::npos ? std::string() : name.substr(0, colon + 1);
    if (name.substr(prefix.size()) == "image") {
        readImage(tag, foreign.get());
        return foreign;
    }
    // The element alone among what it inherits. Its transform is in toDocument, and what acts on it as a whole is the
    // painter's business.
    const std::string whole(svg::elementText(*source_->text, own.nameOffset));
    const std::string rest = whole.substr(svg::startTagText(*source_->text, own.nameOffset).size());
    tag.remove("transform");
    for (const char* done : {"opacity", "clip-path", "mask"}) {
        tag.remove(done);
        if (tag.attribute("style")) svg::removeProperty(&tag, done);
    }
    tag.set("id", kForeignId);
    std::string content = tag.str() + rest;
    for (const svg::Element* around = origin(own.parent); around != nullptr; around = origin(around->parent)) {
        const svg::StartTag outer = tagOf(*around);
        const std::string group = groupInheriting([&](const char* attribute) { return outer.attribute(attribute); });
        content = '<' + prefix + group.substr(1) + content + "</" + prefix + "g>";
    }
    foreign->drawing = std::make_unique<QSvgRenderer>(QByteArray::fromStdString(definitions_.fileAround(content)));
    if (foreign->drawing->isValid()) foreign->drawn = foreign->drawing->boundsOnElement(kForeignId);
    return foreign;
}

AppearanceReader::Foreign& AppearanceReader::foreign(const doc::Art& art) {
    std::unique_ptr<Foreign>& kept = foreign_[art.origin];
    if (kept == nullptr) {
        const svg::Element* own = origin(art.origin);
        kept = own == nullptr ? std::make_unique<Foreign>() : readForeign(*own);
    }
    return *kept;
}

QPolygonF AppearanceReader::frameOf(const doc::Art& art) {
    const Foreign& known = foreign(art);
    if (known.frame.isEmpty()) return {};
    return (known.toDocument * toQt(art.foreignMatrix)).map(QPolygonF(known.frame));
}

QPolygonF AppearanceReader::shownFrameOf(const doc::Art& art) {
    const Foreign& known = foreign(art);
    if (!known.frame.isEmpty() || known.drawn.isEmpty()) return frameOf(art);
    return (known.toDocument * toQt(art.foreignMatrix)).map(QPolygonF(known.drawn));
}

void AppearanceReader::drawForeign(const doc::Art& art, QPainter* painter) {
    const Foreign& known = foreign(art);
    painter->save();
    painter->setTransform(known.toDocument * toQt(art.foreignMatrix), true);
    if (!known.image.isNull() && !known.frame.isEmpty()) {
        if (!known.frame.contains(known.place.mapRect(QRectF(known.image.rect())).adjusted(1e-6, 1e-6, -1e-6, -1e-6)))
            painter->setClipRect(known.frame, Qt::IntersectClip);
        painter->setTransform(known.place, true);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(QPointF(), known.image);
    } else if (known.drawing != nullptr && known.drawing->isValid()) {
        known.drawing->render(painter, QRectF(0, 0, 1, 1));  // user units as they are
    }
    painter->restore();
}

}  // namespace quorvel::render
