// How art looks beyond what the host's own words say: opacity, fill rules, clips, gradients and foreign elements are
// read from the file that the drawing came from.
#pragma once

#include <QBrush>
#include <QGradient>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QTransform>
#include <memory>
#include <optional>
#include <unordered_map>

#include "desktop/clips.h"
#include "host/css.h"
#include "host/document.h"
#include "host/svg_source.h"

class QSvgRenderer;

namespace quorvel::desktop {

struct Looks {
    double opacity = 1;  // of the art with all that is in it
    double fillOpacity = 1, strokeOpacity = 1;
    Qt::FillRule fillRule = Qt::WindingFill;
    double strokeWidth = 1;  // user units; for texts, whose pieces do not say it
    QString clip, mask;      // ids; empty: none
};

class SourceLooks {
  public:
    SourceLooks(const host::Document& document, QString folder);
    ~SourceLooks();

    Looks of(const host::Art& art);
    // The art's user space in document points.
    QTransform userSpace(const host::Art& art) const;
    Clips& clips() { return *clips_; }
    // For a paint that is a gradient; nothing when it cannot be drawn. bounds: of the art, in document points.
    std::optional<QBrush> gradient(const AIColor& paint, const host::Art& art, const RealRect& bounds);
    // Draws foreign art; the painter's coordinates are document points, y up.
    void drawForeign(const host::Art& art, QPainter* painter);

  private:
    struct Gradient;
    struct Foreign;

    const host::SvgElement* element(std::int32_t index) const;
    Looks read(std::int32_t index);
    void readStyleSheet();
    void readGradients();
    const Gradient* follow(const QString& id) const;
    std::unique_ptr<Foreign> readForeign(std::int32_t index) const;

    const host::Document& document_;
    const host::SvgSource* source_;
    QString folder_;
    bool hasLooks_ = false, gradientsRead_ = false;
    host::StyleSheet sheet_;
    std::unique_ptr<Clips> clips_;
    std::unordered_map<std::int32_t, Looks> looks_;
    QHash<QString, std::shared_ptr<Gradient>> gradients_;
    std::unordered_map<std::int32_t, std::unique_ptr<Foreign>> foreign_;
};

}  // namespace quorvel::desktop
