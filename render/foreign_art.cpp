#include "render/foreign_art.h"

#include <QImage>
#include <QSvgRenderer>
#include <algorithm>
#include <string>
#include <string_view>

#include "render/linked_image.h"
#include "render/outline.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/tree/excerpt.h"
#include "svg/tree/frame.h"

namespace quorvel::render {

struct ForeignArtCache::Foreign {
    QTransform toDocument;  // of the element's user space
    QImage image;
    QTransform place;  // from the image's dots to user space
    QRectF frame;      // of an image, in user space
    std::unique_ptr<QSvgRenderer> drawing;
    QRectF drawn;  // what the drawing covers, in user space
};

namespace {

constexpr char kForeignId[] = "quorvel-foreign";

// Qt's reader would open the files that images in the excerpt name, whatever they are.
bool namesImageFiles(const std::string& excerpt) {
    for (std::size_t at = excerpt.find("href="); at != std::string::npos; at = excerpt.find("href=", at + 1)) {
        const std::string_view value = std::string_view(excerpt).substr(std::min(at + 6, excerpt.size()));
        const std::size_t tag = excerpt.rfind('<', at);
        const std::string_view name =
            std::string_view(excerpt).substr(tag + 1, excerpt.find_first_of(" \t\r\n", tag) - tag - 1);
        if (svg::withoutPrefix(name) == "image" && value.substr(0, 5) != "data:") return true;
    }
    return false;
}

}  // namespace

ForeignArtCache::ForeignArtCache(const doc::Document& document, QString folder)
    : source_(interchange::svgSource(document)), folder_(std::move(folder)) {}

ForeignArtCache::~ForeignArtCache() = default;

void ForeignArtCache::readImage(std::int32_t element, Foreign* foreign) {
    const std::string_view start = svg::startTagText(*source_->text, source_->element(element).nameOffset);
    const svg::StartTag tag(start, &source_->entities());
    const auto word = [&](const char* name) { return tag.attribute(name).value_or(""); };
    const std::string href = word("href").empty() ? word("xlink:href") : word("href");
    Result<QImage> image = readLinkedImage(QString::fromStdString(href), folder_);
    if (image)
        foreign->image = *std::move(image);
    else
        warnings_.push_back(image.error());
    const QSizeF own = foreign->image.isNull() ? QSizeF(0, 0) : QSizeF(foreign->image.size());
    const svg::Frame said = svg::frameOf(source_->tree, *source_->text, element);
    double width = said.width.value_or(-1), height = said.height.value_or(-1);
    // A side that is not given follows the other one.
    if (width < 0) width = height < 0 || own.isEmpty() ? own.width() : height * own.width() / own.height();
    if (height < 0) height = own.isEmpty() ? own.height() : width * own.height() / own.width();
    foreign->frame = QRectF(said.x, said.y, width, height);
    const std::string box =
        "0 0 " + std::to_string(foreign->image.width()) + ' ' + std::to_string(foreign->image.height());
    const std::string fit = word("preserveAspectRatio");
    svg::Viewport inner;
    foreign->place = toQt(svg::viewBoxMap({box, fit}, {width, height}, &inner)) *
                     QTransform::fromTranslate(foreign->frame.x(), foreign->frame.y());
}

std::unique_ptr<ForeignArtCache::Foreign> ForeignArtCache::read(std::int32_t element) {
    auto foreign = std::make_unique<Foreign>();
    if (source_ == nullptr || element < 0) return foreign;
    const svg::Tree& tree = source_->tree;
    foreign->toDocument = toQt(tree.map(element));
    const svg::StartTag tag(svg::startTagText(*source_->text, tree[element].nameOffset));
    if (svg::withoutPrefix(tag.name()) == "image") {
        readImage(element, foreign.get());
        return foreign;
    }
    const std::string excerpt = svg::excerptOf(tree, element, kForeignId);
    if (namesImageFiles(excerpt)) {
        warnings_.push_back(makeError(ErrorCode::kImageLeftOut, {std::string(tag.name())}));
        return foreign;
    }
    foreign->drawing = std::make_unique<QSvgRenderer>(QByteArray::fromStdString(excerpt));
    if (foreign->drawing->isValid()) foreign->drawn = foreign->drawing->boundsOnElement(kForeignId);
    return foreign;
}

const ForeignArtCache::Foreign& ForeignArtCache::foreign(const doc::Art& art) {
    std::unique_ptr<Foreign>& kept = known_[art.ref.index];
    if (kept == nullptr) kept = read(art.ref.index);
    return *kept;
}

QPolygonF ForeignArtCache::frameOf(const doc::Art& art) {
    const Foreign& known = foreign(art);
    if (known.frame.isEmpty()) return {};
    return (known.toDocument * toQt(art.foreignMatrix)).map(QPolygonF(known.frame));
}

QPolygonF ForeignArtCache::shownFrameOf(const doc::Art& art) {
    const Foreign& known = foreign(art);
    if (!known.frame.isEmpty() || known.drawn.isEmpty()) return frameOf(art);
    return (known.toDocument * toQt(art.foreignMatrix)).map(QPolygonF(known.drawn));
}

void ForeignArtCache::draw(const doc::Art& art, QPainter* painter) {
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
