// Reads only what is asked for and keeps it: most drawings have one gradient and no opacity at all.
#include "desktop/source_looks.h"

#include <QDir>
#include <QSvgRenderer>
#include <QXmlStreamReader>
#include <algorithm>
#include <vector>

#include "desktop/outline.h"
#include "host/svg_affine.h"
#include "host/svg_markup.h"

namespace quorvel::desktop {

struct SourceLooks::Gradient {
    bool radial = false;
    QHash<QString, QString> words;  // attributes as they stand
    QGradientStops stops;
    QString href;
};

struct SourceLooks::Foreign {
    QTransform toDocument;  // of the element's user space
    QRectF box;             // an image's
    QImage image;
    std::unique_ptr<QSvgRenderer> drawing;
};

namespace {

constexpr int kLongestChain = 16;

double Number(const QString& text, double otherwise) {
    QString word = text.trimmed();
    const bool percent = word.endsWith(QLatin1Char('%'));
    if (percent) word.chop(1);
    while (!word.isEmpty() && word.back().isLetter()) word.chop(1);
    bool read = false;
    const double value = word.toDouble(&read);
    return !read ? otherwise : percent ? value / 100 : value;
}

QString FromStyle(QStringView style, QLatin1String name) {
    for (const QStringView declaration : style.split(QLatin1Char(';'))) {
        const qsizetype colon = declaration.indexOf(QLatin1Char(':'));
        if (colon > 0 && declaration.left(colon).trimmed() == name)
            return declaration.mid(colon + 1).trimmed().toString();
    }
    return {};
}

QString AttributeOrStyle(const QXmlStreamAttributes& attributes, const char* name) {
    const QString styled = FromStyle(attributes.value(QLatin1String("style")), QLatin1String(name));
    return styled.isEmpty() ? attributes.value(QLatin1String(name)).toString() : styled;
}

QColor StopColor(const QXmlStreamAttributes& attributes) {
    QString word = AttributeOrStyle(attributes, "stop-color");
    QColor color(word.isEmpty() ? QStringLiteral("black") : word);
    if (word.startsWith(QLatin1String("rgb("))) {
        const QStringList parts = word.mid(4).chopped(1).split(QLatin1Char(','));
        if (parts.size() == 3) color = QColor(parts[0].toInt(), parts[1].toInt(), parts[2].toInt());
    }
    color.setAlphaF(static_cast<float>(std::clamp(Number(AttributeOrStyle(attributes, "stop-opacity"), 1), 0.0, 1.0)));
    return color;
}

QTransform ReadTransform(const QString& text) {
    host::Affine map;
    return host::parseTransform(text.toStdString(), &map) ? ToQt(map) : QTransform();
}

QString PaintedId(const std::string& reference) {
    const std::size_t hash = reference.find('#');
    if (hash == std::string::npos) return {};
    const std::size_t end = reference.find_first_of(")\"'", hash);
    return QString::fromStdString(reference.substr(hash + 1, end == std::string::npos ? end : end - hash - 1));
}

QImage LoadImage(const QString& href, const QString& folder) {
    if (!href.startsWith(QLatin1String("data:"))) return QImage(QDir(folder).absoluteFilePath(href));
    const qsizetype comma = href.indexOf(QLatin1Char(','));
    return QImage::fromData(QByteArray::fromBase64(href.mid(comma + 1).toLatin1()));
}

}  // namespace

SourceLooks::SourceLooks(const host::Document& document, QString folder)
    : document_(document), source_(document.source()), folder_(std::move(folder)) {
    if (source_ == nullptr) return;
    for (const char* word : {"opacity", "evenodd", "clip-path", "mask", "<text"})
        hasLooks_ = hasLooks_ || source_->text.find(word) != std::string::npos;
    if (hasLooks_ && source_->hasStyleSheet) readStyleSheet();
    clips_ = std::make_unique<Clips>(source_->text);
}

void SourceLooks::readStyleSheet() {
    QXmlStreamReader in(QByteArray::fromStdString(source_->text));
    while (!in.atEnd())
        if (in.readNext() == QXmlStreamReader::StartElement && in.name() == QLatin1String("style"))
            sheet_.add(in.readElementText(QXmlStreamReader::SkipChildElements).toStdString());
}

QTransform SourceLooks::userSpace(const host::Art& art) const {
    const host::SvgElement* own = element(art.source);
    return own == nullptr ? QTransform() : ToQt(source_->ctms[own->ctm]);
}

SourceLooks::~SourceLooks() = default;

const host::SvgElement* SourceLooks::element(std::int32_t index) const {
    const bool there = source_ != nullptr && index >= 0 && static_cast<std::size_t>(index) < source_->elements.size();
    return there ? &source_->elements[static_cast<std::size_t>(index)] : nullptr;
}

Looks SourceLooks::read(std::int32_t index) {
    const auto found = looks_.find(index);
    if (found != looks_.end()) return found->second;
    const host::SvgElement* own = element(index);
    Looks looks;
    if (own == nullptr) return looks;
    if (own->parent >= 0) looks = read(own->parent);  // what is inherited
    looks.opacity = 1;
    const host::StartTag tag(host::startTagText(source_->text, own->nameOffset));
    const std::string style = tag.attribute("style").value_or("");
    // The weakest first: the attribute, the style sheets, the style attribute.
    std::vector<host::CssDeclaration> declarations;
    const std::string type = tag.name().substr(tag.name().find(':') + 1);
    const std::string id = tag.attribute("id").value_or(""), classes = tag.attribute("class").value_or("");
    if (!sheet_.empty() && !sheet_.match(type, id, classes, &declarations)) declarations.clear();
    host::parseDeclarations(style, &declarations);
    const auto word = [&](const char* name) {
        for (auto one = declarations.rbegin(); one != declarations.rend(); ++one)
            if (one->property == name) return QString::fromUtf8(one->value.data(), qsizetype(one->value.size()));
        return QString::fromStdString(tag.attribute(name).value_or(""));
    };
    looks.opacity = std::clamp(Number(word("opacity"), 1), 0.0, 1.0);
    looks.fillOpacity = std::clamp(Number(word("fill-opacity"), looks.fillOpacity), 0.0, 1.0);
    looks.strokeOpacity = std::clamp(Number(word("stroke-opacity"), looks.strokeOpacity), 0.0, 1.0);
    const QString rule = word("fill-rule");
    if (rule == QLatin1String("evenodd")) looks.fillRule = Qt::OddEvenFill;
    if (rule == QLatin1String("nonzero")) looks.fillRule = Qt::WindingFill;
    looks.strokeWidth = std::max(0.0, Number(word("stroke-width"), looks.strokeWidth));
    looks.clip = PaintedId(word("clip-path").toStdString());
    looks.mask = PaintedId(word("mask").toStdString());
    looks_.emplace(index, looks);
    return looks;
}

Looks SourceLooks::of(const host::Art& art) { return hasLooks_ ? read(art.source) : Looks(); }

// --- gradients
// --------------------------------------------------------------------------------------------------------

void SourceLooks::readGradients() {
    gradientsRead_ = true;
    if (source_ == nullptr) return;
    QXmlStreamReader in(QByteArray::fromStdString(source_->text));
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
            const double place = std::clamp(Number(attributes.value(QLatin1String("offset")).toString(), 0), 0.0, 1.0);
            open->stops.append({place, StopColor(attributes)});
        }
    }
}

const SourceLooks::Gradient* SourceLooks::follow(const QString& id) const {
    const auto found = gradients_.constFind(id);
    return found == gradients_.constEnd() ? nullptr : found->get();
}

std::optional<QBrush> SourceLooks::gradient(const AIColor& paint, const host::Art& art, const RealRect& bounds) {
    if (!gradientsRead_) readGradients();
    const std::size_t number = static_cast<std::size_t>(paint.reference);
    if (paint.reference < 1 || number > document_.paintSources.size()) return std::nullopt;
    const Gradient* first = follow(PaintedId(document_.paintSources[number - 1]));
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
        gradient->setStops((*stops)->stops);
        const QString spread = word("spreadMethod");
        if (spread == QLatin1String("reflect")) gradient->setSpread(QGradient::ReflectSpread);
        if (spread == QLatin1String("repeat")) gradient->setSpread(QGradient::RepeatSpread);
    };
    QBrush brush;
    if (first->radial) {
        const QPointF centre(Number(word("cx"), 0.5), Number(word("cy"), 0.5));
        QRadialGradient radial(centre, Number(word("r"), 0.5),
                               {Number(word("fx"), centre.x()), Number(word("fy"), centre.y())});
        fill(&radial);
        brush = QBrush(radial);
    } else {
        QLinearGradient linear(Number(word("x1"), 0), Number(word("y1"), 0), Number(word("x2"), 1),
                               Number(word("y2"), 0));
        fill(&linear);
        brush = QBrush(linear);
    }
    QTransform toDocument(double(bounds.right) - bounds.left, 0, 0, double(bounds.bottom) - bounds.top, bounds.left,
                          bounds.top);  // from the box's own units, which run down
    const host::SvgElement* own = element(art.source);
    if (word("gradientUnits") == QLatin1String("userSpaceOnUse") && own != nullptr)
        toDocument = ToQt(source_->ctms[own->ctm]);
    brush.setTransform(ReadTransform(word("gradientTransform")) * toDocument);
    return brush;
}

// --- foreign elements
// ---------------------------------------------------------------------------------------------------

std::unique_ptr<SourceLooks::Foreign> SourceLooks::readForeign(std::int32_t index) const {
    auto foreign = std::make_unique<Foreign>();
    const host::SvgElement* own = element(index);
    if (own == nullptr) return foreign;
    foreign->toDocument = ToQt(source_->ctms[own->ctm]);
    host::StartTag tag(host::startTagText(source_->text, own->nameOffset));
    const std::string& name = tag.name();
    const auto word = [&](const char* attribute) {
        return QString::fromStdString(tag.attribute(attribute).value_or(""));
    };
    if (name.substr(name.find(':') + 1) == "image") {
        const QString href = word("href").isEmpty() ? word("xlink:href") : word("href");
        foreign->image = LoadImage(href, folder_);
        foreign->box = QRectF(Number(word("x"), 0), Number(word("y"), 0), Number(word("width"), foreign->image.width()),
                              Number(word("height"), foreign->image.height()));
        return foreign;
    }
    // The element alone, under the file's own root, so that what it refers to is found: its transform is in toDocument.
    const std::string whole(host::elementText(source_->text, own->nameOffset));
    const std::string start(host::startTagText(source_->text, own->nameOffset));
    tag.remove("transform");
    const std::size_t defs = source_->text.find("<defs"), defsEnd = source_->text.find("</defs>");
    std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:svg=\"http://www.w3.org/2000/svg\" "
        "xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"1000\" height=\"1000\" "
        "viewBox=\"0 0 1000 1000\">";
    if (defs != std::string::npos && defsEnd != std::string::npos && defs < defsEnd)
        text += source_->text.substr(defs, defsEnd + 7 - defs);
    text += tag.str() + whole.substr(start.size()) + "</svg>";
    foreign->drawing = std::make_unique<QSvgRenderer>(QByteArray::fromStdString(text));
    return foreign;
}

void SourceLooks::drawForeign(const host::Art& art, QPainter* painter) {
    const std::int32_t index = art.foreignSource >= 0 ? art.foreignSource : art.source;
    std::unique_ptr<Foreign>& kept = foreign_[index];
    if (kept == nullptr) kept = readForeign(index);
    painter->save();
    painter->setTransform(kept->toDocument * ToQt(art.foreignMatrix), true);
    if (!kept->image.isNull()) {
        QSizeF shown = QSizeF(kept->image.size()).scaled(kept->box.size(), Qt::KeepAspectRatio);
        QRectF box(QPointF(), shown);
        box.moveCenter(kept->box.center());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(box, kept->image);
    } else if (kept->drawing != nullptr && kept->drawing->isValid()) {
        kept->drawing->render(painter, QRectF(0, 0, 1000, 1000));
    }
    painter->restore();
}

}  // namespace quorvel::desktop
