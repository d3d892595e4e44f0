// How art looks beyond what the host's own words say: opacity, fill rules, clips, markers, gradients and foreign
// elements are read from the file that the drawing came from.
#pragma once

#include <QBrush>
#include <QGradient>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QTransform>
#include <array>
#include <memory>
#include <optional>
#include <unordered_map>

#include "document/document.h"
#include "interchange/svg/source.h"
#include "render/clip_mask_cache.h"
#include "render/definitions.h"
#include "svg/css/style_sheet.h"
#include "svg/markup/start_tag.h"

class QSvgRenderer;

namespace quorvel::render {

struct SvgAppearance {
    double opacity = 1;  // of the art with all that is in it
    double fillOpacity = 1, strokeOpacity = 1;
    Qt::FillRule fillRule = Qt::WindingFill;
    double strokeWidth = 1;  // user units; for texts, whose pieces do not say it
    QString clip, mask;      // ids; empty: none
    // Ids of the markers on an outline's first, inner and last anchors; also where an outline bears none by its kind,
    // since they are handed down.
    std::array<QString, 3> markers;
    bool bearsMarkers = false;
};

class AppearanceReader {
  public:
    AppearanceReader(const doc::Document& document, QString folder);
    ~AppearanceReader();

    const SvgAppearance& of(const doc::Art& art);
    // The art's user space in document points.
    QTransform userSpace(const doc::Art& art) const;
    Definitions& definitions() { return definitions_; }
    ClipMaskCache& clips() { return clips_; }
    // The id that a paint refers to; empty for plain colours.
    QString paintedId(const AIColor& paint) const;
    // For a paint that is a gradient; nothing when it cannot be drawn. bounds: of the art, in document points.
    std::optional<QBrush> gradient(const AIColor& paint, const doc::Art& art, const RealRect& bounds);

    bool hasForeign() const { return hasForeign_; }
    // Draws foreign art; the painter's coordinates are document points, y up.
    void drawForeign(const doc::Art& art, QPainter* painter);
    // What foreign art covers, in document points: an image's frame. Empty where that is not known.
    QPolygonF frameOf(const doc::Art& art);
    // The same, or for what is no image a box round what Qt can draw of it. Empty for what it cannot.
    QPolygonF shownFrameOf(const doc::Art& art);

  private:
    struct Gradient;
    struct Foreign;

    const svg::Element* origin(std::int32_t index) const;
    svg::StartTag tagOf(const svg::Element& origin) const;
    const SvgAppearance& read(std::int32_t index);
    void readStyleSheet();
    void readViewport();
    void readGradients();
    const Gradient* follow(const QString& id) const;
    Foreign& foreign(const doc::Art& art);
    std::unique_ptr<Foreign> readForeign(const svg::Element& own);
    void readImage(const svg::StartTag& tag, Foreign* image) const;

    const doc::Document& document_;
    const interchange::SvgSource* source_;
    QString folder_;
    bool hasLooks_ = false, hasForeign_ = false, gradientsRead_ = false;
    QSizeF viewport_;  // of the root, in user units: what percentages are of
    svg::StyleSheet sheet_;
    const std::string nothing_;  // the text of a drawing without a file
    Definitions definitions_;
    ClipMaskCache clips_;
    std::unordered_map<std::int32_t, SvgAppearance> looks_;
    QHash<QString, std::shared_ptr<Gradient>> gradients_;
    std::unordered_map<std::int32_t, std::unique_ptr<Foreign>> foreign_;  // by origin
};

}  // namespace quorvel::render
