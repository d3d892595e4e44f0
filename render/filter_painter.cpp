#include "render/filter_painter.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <algorithm>
#include <cmath>

#include "render/rsvg_picture.h"
#include "svg/css/style_text.h"
#include "svg/markup/entities.h"
#include "svg/tree/file.h"

namespace quorvel::render {

namespace {

constexpr double kMostDots = 1e7;       // of one filtered picture
constexpr double kMostHeldDots = 1e8;   // of all pictures while one is filtered
constexpr double kMostKnownDots = 2e7;  // of the pictures that are kept: 80 MB
constexpr double kOfADot = 60;          // nanoseconds, from the painter's picture to librsvg's and back
constexpr double kOfAKnownDot = 4;      // the same for one that is kept
constexpr double kPicturesBeside = 5;

QByteArray numbers(std::initializer_list<double> values) {
    QByteArray text;
    for (const double value : values) text += QByteArray::number(value, 'g', 17) + ' ';
    return text;
}

std::string pngOf(const QImage& picture) {
    constexpr int kFast = 90;  // the less it is compressed
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG", kFast);
    return png.toBase64().toStdString();
}

// The art is an outline of its own box that shows nothing; the picture is a marker on it, which no box takes in.
std::string filterText(const svg::Filter& filter, const svg::ComputedStyle& style, const svg::File& file,
                       const QRectF& box, const QTransform& toPicture, const QImage& picture) {
    const std::string& p = file.names().svg;
    const svg::Viewport& view = file.page().viewport;
    const QTransform from = toPicture.inverted() * QTransform::fromTranslate(-box.x(), -box.y());
    const auto matrix = [](const QTransform& map) {
        return "transform=\"matrix(" +
               numbers({map.m11(), map.m12(), map.m21(), map.m22(), map.dx(), map.dy()}).toStdString() + ")\"";
    };
    const auto sides = [](double width, double height) {
        const std::string w = numbers({width}).toStdString(), h = numbers({height}).toStdString();
        return " width=\"" + w + "\" height=\"" + h + "\" viewBox=\"0 0 " + w + h + '"';
    };
    const std::string plain = "opacity:1;clip-path:none;mask:none;mix-blend-mode:normal;display:inline;";
    const std::string still = " style=\"filter:none;" + plain + "visibility:visible\"";
    const std::string corners = "M" + numbers({box.left(), box.top()}).toStdString() + "H" +
                                numbers({box.right()}).toStdString() + "V" + numbers({box.bottom()}).toStdString() +
                                "H" + numbers({box.left()}).toStdString() + "Z";
    std::string text = "<" + p + "svg xmlns:xlink=\"http://www.w3.org/1999/xlink\"";
    if (filter.parts.namespaces.find("xmlns:xlink=") != std::string::npos) text = "<" + p + "svg";
    text += filter.parts.namespaces + sides(picture.width(), picture.height()) + still + ">" + filter.parts.sheets +
            "<" + p + "defs>" + filter.parts.definitions + "<" + p +
            "marker id=\"quorvel-picture\" markerUnits=\"userSpaceOnUse\" style=\"overflow:visible\">" + "<" + p +
            "image width=\"" + std::to_string(picture.width()) + "\" height=\"" + std::to_string(picture.height()) +
            "\" " + matrix(from) + still + " xlink:href=\"data:image/png;base64," + pngOf(picture) + "\"/></" + p +
            "marker></" + p + "defs><" + p + "g " + matrix(toPicture) + still + "><" + p + "svg" +
            sides(view.width, view.height) + " style=\"filter:none;overflow:visible;" + plain +
            svg::escapeXml(svg::inheritedDeclarations(style)) + "visibility:visible\"><" + p + "path d=\"" + corners +
            "\" style=\"" + plain + "marker:none;marker-start:url(#quorvel-picture);fill-opacity:0;stroke-opacity:0;" +
            "filter:" + svg::escapeXml(filter.value) + "\"/></" + p + "svg></" + p + "g></" + p + "svg>";
    return text;
}

}  // namespace

QRectF filteredBox(const svg::Filter& filter, const QRectF& box, const QRectF& drawn) {
    QRectF all = drawn | box;
    for (const svg::FilterRegion& region : filter.regions) {
        const QRectF said(region.x, region.y, region.width, region.height);
        all |= region.inBox ? QRectF(box.x() + said.x() * box.width(), box.y() + said.y() * box.height(),
                                     said.width() * box.width(), said.height() * box.height())
                            : said;
    }
    return all.adjusted(-filter.reach, -filter.reach, filter.reach, filter.reach);
}

double FilterPainter::mostDots(const svg::Filter& filter) {
    return std::min(kMostDots, kMostHeldDots / (filter.pictures + kPicturesBeside));
}

bool FilterPainter::apply(const svg::Filter& filter, const svg::ComputedStyle& style, const svg::File& file,
                          const QRectF& box, const QTransform& toPicture, QImage* picture) {
    if (!filter.isSound || !toPicture.isInvertible()) return false;
    const double dots = double(picture->width()) * picture->height();
    const double scale = std::abs(toPicture.determinant());
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(QByteArrayView(picture->constBits(), picture->sizeInBytes()));
    hash.addData(QByteArray::fromStdString(filter.value + svg::inheritedDeclarations(style)));
    hash.addData(numbers({box.x(), box.y(), box.width(), box.height(), toPicture.m11(), toPicture.m12(),
                          toPicture.m21(), toPicture.m22(), toPicture.dx(), toPicture.dy(), double(picture->width())}));
    const QByteArray key = hash.result();
    const auto kept = std::find_if(known_.begin(), known_.end(), [&](const auto& one) { return one.first == key; });
    if (kept != known_.end()) {
        if (!budget_.take(dots * kOfAKnownDot)) return false;
        known_.splice(known_.begin(), known_, kept);
        *picture = kept->second;
        return true;
    }
    const HeldDots held(&budget_, dots * (filter.pictures + kPicturesBeside));
    if (!held || !budget_.take(dots * (kOfADot + filter.ofADot + scale * filter.ofAScaledDot))) return false;
    QImage filtered(picture->size(), QImage::Format_ARGB32_Premultiplied);
    if (filtered.isNull()) return false;
    filtered.fill(Qt::transparent);
    if (!drawSvgText(filterText(filter, style, file, box, toPicture, *picture), &filtered)) return false;
    *picture = filtered;
    known_.emplace_front(key, filtered);
    for (knownDots_ += dots; knownDots_ > kMostKnownDots && known_.size() > 1; known_.pop_back())
        knownDots_ -= double(known_.back().second.width()) * known_.back().second.height();
    return true;
}

}  // namespace quorvel::render
