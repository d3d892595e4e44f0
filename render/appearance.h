// How art looks beyond what the host's own words say: a look-up of the style that was computed for its element, and
// what its paints refer to.
#pragma once

#include <QBrush>
#include <QPainter>
#include <QTransform>
#include <Qt>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"
#include "interchange/svg/source.h"
#include "render/text/text_layout.h"
#include "svg/tree/definitions.h"
#include "svg/tree/filters.h"

namespace quorvel::render {

// Ids are views into the file's styles; empty: none.
struct Appearance {
    double opacity = 1;                         // of the art with all that is in it
    double fillOpacity = 1, strokeOpacity = 1;  // with the alpha of the colours that the file gives
    Qt::FillRule fillRule = Qt::WindingFill, clipRule = Qt::WindingFill;
    double strokeWidth = 1;  // user units; for texts, whose pieces do not say it
    std::string_view clip, mask;
    std::array<std::string_view, 3> markers;  // on an outline's first, inner and last anchors
    const svg::Filter* filter = nullptr;
    // Nothing for a mode that the toolkit does not have.
    std::optional<QPainter::CompositionMode> blend = QPainter::CompositionMode_SourceOver;
    bool isBlended = false, isIsolated = false;
    bool hasMarkers = false;  // any of them, on an outline that has them
};

// Must not outlive the document.
class AppearanceReader {
  public:
    explicit AppearanceReader(const doc::Document& document);

    // Good until the next question.
    const Appearance& of(const doc::Art& art);
    // Of a part of a text, by its number in the file's styles.
    const Appearance& ofStyle(std::uint32_t style);
    // The art's user space in document points.
    QTransform userSpace(const doc::Art& art) const;
    // Null for a drawing that is in no file.
    svg::Definitions* definitions() const;
    const interchange::SvgSource* source() const { return source_; }
    // What the paint says that is no plain colour; empty for those.
    std::string_view paintText(const AIColor& paint) const;
    // Null for a text that shows what the document says rather than its element.
    const TextLayout* textLayout(const doc::Art& art, QTransform* toDocument) {
        return layouts_.of(source_, art, toDocument);
    }
    // The art's element, such as 'path "edge"'.
    std::string nameOf(const doc::Art& art) const;
    // Whether the drawing holds art of kinds that are kept and never entered.
    bool hasForeign() const { return hasForeign_; }
    // Whether anything in the drawing is blended with what is below it.
    bool hasBlending() const { return hasBlending_; }
    // For a paint that is a gradient; nothing when it cannot be drawn. bounds: of the art, in document points.
    std::optional<QBrush> gradient(const AIColor& paint, const doc::Art& art, const RealRect& bounds) const;

  private:
    Appearance read(const svg::Element& element);
    const svg::Filter* filter(std::string_view value, double fontSize);

    const doc::Document& document_;
    const interchange::SvgSource* source_;
    bool hasForeign_ = false, hasBlending_ = false;
    std::map<std::string, svg::Filter, std::less<>> filters_;  // by their property and the font size
    TextLayoutCache layouts_;
    // By the number of the style, for outlines whose kind has no markers and for those whose kind has.
    std::vector<std::optional<Appearance>> plain_, bearing_;
};

}  // namespace quorvel::render
