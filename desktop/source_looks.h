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

#include "desktop/clips.h"
#include "desktop/definitions.h"
#include "host/css.h"
#include "host/document.h"
#include "host/svg_markup.h"
#include "host/svg_source.h"

class QSvgRenderer;

namespace quorvel::desktop {

struct Looks {
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

class SourceLooks {
  public:
    SourceLooks(const host::Document& document, QString folder);
    ~SourceLooks();

    const Looks& of(const host::Art& art);
    // The art's user space in document points.
    QTransform userSpace(const host::Art& art) const;
    Definitions& definitions() { return definitions_; }
    Clips& clips() { return clips_; }
    // The id that a paint refers to; empty for plain colours.
    QString paintedId(const AIColor& paint) const;
    // For a paint that is a gradient; nothing when it cannot be drawn. bounds: of the art, in document points.
    std::optional<QBrush> gradient(const AIColor& paint, const host::Art& art, const RealRect& bounds);

    bool hasForeign() const { return hasForeign_; }
    // Draws foreign art; the painter's coordinates are document points, y up.
    void drawForeign(const host::Art& art, QPainter* painter);
    // What foreign art covers, in document points: an image's frame. Empty where that is not known.
    QPolygonF frameOf(const host::Art& art);
    // The same, or for what is no image a box round what Qt can draw of it. Empty for what it cannot.
    QPolygonF shownFrameOf(const host::Art& art);

  private:
    struct Gradient;
    struct Foreign;

    const host::SvgOrigin* origin(std::int32_t index) const;
    host::StartTag tagOf(const host::SvgOrigin& origin) const;
    const Looks& read(std::int32_t index);
    void readStyleSheet();
    void readViewport();
    void readGradients();
    const Gradient* follow(const QString& id) const;
    Foreign& foreign(const host::Art& art);
    std::unique_ptr<Foreign> readForeign(const host::SvgOrigin& own);
    void readImage(const host::StartTag& tag, Foreign* image) const;

    const host::Document& document_;
    const host::SvgSource* source_;
    QString folder_;
    bool hasLooks_ = false, hasForeign_ = false, gradientsRead_ = false;
    QSizeF viewport_;  // of the root, in user units: what percentages are of
    host::StyleSheet sheet_;
    const std::string nothing_;  // the text of a drawing without a file
    Definitions definitions_;
    Clips clips_;
    std::unordered_map<std::int32_t, Looks> looks_;
    QHash<QString, std::shared_ptr<Gradient>> gradients_;
    std::unordered_map<std::int32_t, std::unique_ptr<Foreign>> foreign_;  // by origin
};

}  // namespace quorvel::desktop
