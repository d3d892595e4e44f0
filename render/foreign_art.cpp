#include "render/foreign_art.h"

#include <QImage>
#include <QSvgRenderer>
#include <algorithm>
#include <string>
#include <string_view>

#include "render/missing_image.h"
#include "render/outline.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/tree/excerpt.h"
#include "svg/tree/frame.h"

namespace quorvel::render {

struct ForeignArtCache::Foreign {
    QTransform toDocument;  // of the element's user space
    QImage image;
    std::string href;  // of an image
    bool isWaiting = false;
    QTransform place;       // from the image's dots to user space
    QRectF frame;           // of an image, in user space
    std::size_t bytes = 0;  // of the excerpt
    std::unique_ptr<QSvgRenderer> drawing;
    QRectF drawn;  // what the drawing covers, in user space
};

namespace {

constexpr char kForeignId[] = "quorvel-foreign";
// Nanoseconds, of foreign art and of a dot that it covers; of a byte of an excerpt that is read or drawn, which keeps
// as much memory as so many dots.
constexpr double kOfForeignArt = 20'000, kOfADot = 8, kOfAByte = 150, kDotsOfAByte = 3;
constexpr double kMissingImage = 96;  // user units of a side, of an image without a size that is not there

// Qt's reader would open the files that images and style sheets in the excerpt name, whatever they are, and decode
// images in this process.
bool namesFiles(std::string_view excerpt) {
    for (std::size_t at = excerpt.find('<'); at != std::string_view::npos; at = excerpt.find('<', at + 1)) {
        const std::string_view name = excerpt.substr(at + 1, excerpt.find_first_of(" \t\r\n/>", at) - at - 1);
        if (name.starts_with('?') || svg::withoutPrefix(name) == "image") return true;
    }
    return false;
}

QRectF frameAround(const svg::Frame& said, const QImage& image) {
    const QSizeF own = image.isNull() ? QSizeF(kMissingImage, kMissingImage) : QSizeF(image.size());
    double width = said.width.value_or(-1), height = said.height.value_or(-1);
    // A side that is not given follows the other one.
    if (width < 0) width = height < 0 ? own.width() : height * own.width() / own.height();
    if (height < 0) height = width * own.height() / own.width();
    return QRectF(said.x, said.y, width, height);
}

}  // namespace

ForeignArtCache::ForeignArtCache(const doc::Document& document, PaintResources* resources)
    : source_(interchange::svgSource(document)), resources_(*resources) {}

ForeignArtCache::~ForeignArtCache() = default;

void ForeignArtCache::readImage(std::int32_t element, Foreign* foreign) {
    const std::string_view start = svg::startTagText(*source_->text, source_->element(element).nameOffset);
    const svg::StartTag tag(start, &source_->entities());
    const auto word = [&](const char* name) { return tag.attribute(name).value_or(""); };
    foreign->href = word("href").empty() ? word("xlink:href") : word("href");
    const LinkedImage& linked = resources_.images.of(foreign->href);
    foreign->image = linked.image;
    foreign->isWaiting = linked.isWaiting;
    foreign->frame = frameAround(svg::frameOf(source_->tree, *source_->text, element), foreign->image);
    const std::string box =
        "0 0 " + std::to_string(foreign->image.width()) + ' ' + std::to_string(foreign->image.height());
    const std::string fit = word("preserveAspectRatio");
    svg::Viewport inner;
    foreign->place = toQt(svg::viewBoxMap({box, fit}, {foreign->frame.width(), foreign->frame.height()}, &inner)) *
                     QTransform::fromTranslate(foreign->frame.x(), foreign->frame.y());
}

std::unique_ptr<ForeignArtCache::Foreign> ForeignArtCache::leftOut(const std::string& name,
                                                                   std::unique_ptr<Foreign> foreign) {
    if (resources_.budget->leaveOut()) resources_.budget->nameLeftOut(name);
    return foreign;
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
    // The excerpt brings the style sheets along. What it keeps is not given back.
    double expected = kOfForeignArt;
    for (const std::string& sheet : tree.file->sheets()) expected += double(sheet.size()) * kOfAByte;
    if (isFull_ || !resources_.budget->take(expected)) return leftOut(tag.name(), std::move(foreign));
    const std::string excerpt = svg::excerptOf(tree, element, kForeignId);
    if (namesFiles(excerpt)) {
        resources_.images.warn(makeError(ErrorCode::kImageLeftOut, {std::string(tag.name())}));
        return foreign;
    }
    isFull_ = !resources_.budget->take(double(excerpt.size()) * kOfAByte) ||
              !resources_.budget->hold(double(excerpt.size()) * kDotsOfAByte);
    if (isFull_) return leftOut(tag.name(), std::move(foreign));
    foreign->bytes = excerpt.size();
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

void ForeignArtCache::forgetWaiting() {
    std::erase_if(known_, [](const auto& known) { return known.second != nullptr && known.second->isWaiting; });
}

double ForeignArtCache::cost(const doc::Art& art, const PaintScale& scale) {
    const Foreign& known = foreign(art);
    const QRectF seen = shownFrameOf(art).boundingRect() & scale.sight;
    const double dots = scale.isVector ? 0 : seen.width() / scale.pixel * (seen.height() / scale.pixel);
    return kOfForeignArt + dots * kOfADot + double(known.bytes) * kOfAByte;
}

void ForeignArtCache::drawImage(const Foreign& known, QPainter* painter) {
    if (known.isWaiting) return;
    if (known.image.isNull()) return drawMissingImage(known.href, known.frame, painter);
    if (!known.frame.contains(known.place.mapRect(QRectF(known.image.rect())).adjusted(1e-6, 1e-6, -1e-6, -1e-6)))
        painter->setClipRect(known.frame, Qt::IntersectClip);
    painter->setTransform(known.place, true);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(QPointF(), known.image);
}

void ForeignArtCache::draw(const doc::Art& art, QPainter* painter) {
    const Foreign& known = foreign(art);
    painter->save();
    painter->setTransform(known.toDocument * toQt(art.foreignMatrix), true);
    if (!known.frame.isEmpty()) {
        drawImage(known, painter);
    } else if (known.drawing != nullptr && known.drawing->isValid()) {
        known.drawing->render(painter, QRectF(0, 0, 1, 1));  // user units as they are
    }
    painter->restore();
}

}  // namespace quorvel::render
