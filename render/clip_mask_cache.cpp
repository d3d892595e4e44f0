#include "render/clip_mask_cache.h"

#include <QPainter>
#include <algorithm>

#include "interchange/svg/content.h"
#include "render/outline.h"
#include "render/paint_cost.h"

namespace quorvel::render {

namespace {

constexpr int kDeepest = 16;               // of clip paths in each other
constexpr std::size_t kMostNodes = 20000;  // of one clip path

QTransform boxTransform(const QRectF& box) { return {box.width(), 0, 0, box.height(), box.x(), box.y()}; }

}  // namespace

// What is in a clip path, opened.
struct ClipMaskCache::Content {
    std::unique_ptr<doc::Document> document;  // null: it cannot be read
    std::unique_ptr<AppearanceReader> looks;
    QTransform toContent;  // from the document's points
};

ClipMaskCache::ClipMaskCache(std::shared_ptr<svg::File> file, SubDrawingCache* drawings, PaintBudget* budget)
    : file_(std::move(file)), drawings_(*drawings), budget_(*budget) {}
ClipMaskCache::~ClipMaskCache() = default;

ClipMaskCache::Content* ClipMaskCache::contentOf(std::string_view id, const svg::ClipPath& clip) {
    std::unique_ptr<Content>& kept = contents_[std::string(id)];
    if (kept == nullptr) {
        kept = std::make_unique<Content>();
        const svg::Viewport viewport = clip.inBox ? svg::Viewport{1, 1} : file_->page().viewport;
        kept->document = interchange::openContent(file_, clip.content, viewport);
        if (kept->document != nullptr) {
            kept->looks = std::make_unique<AppearanceReader>(*kept->document);
            kept->toContent = toQt(kept->looks->source()->tree.map(0)).inverted();
        }
    }
    return kept.get();
}

// Gathers the outlines in a clip path.
struct ClipMaskCache::Outlines {
    ClipMaskCache& cache;
    std::size_t nodes = 0;
    bool ofBox = false, isWhole = true;

    bool mayCombine(const QPainterPath& one, const QPainterPath& other) {
        isWhole = isWhole && cache.budget_.take(combineCost(one, other));
        return isWhole;
    }
    // One that is alone keeps its own fill rule.
    void unite(QPainterPath* whole, const QPainterPath& more) {
        if (!mayCombine(*whole, more) || more.isEmpty()) return;
        *whole = whole->isEmpty() ? more : *whole | more;
    }
    QPainterPath intersection(const QPainterPath& one, const QPainterPath& other) {
        return mayCombine(one, other) ? one & other : QPainterPath();
    }

    QPainterPath clipOf(std::string_view id, const svg::ClipPath& clip, const QRectF& box, int depth) {
        ofBox = ofBox || clip.inBox;
        const QTransform map = toQt(clip.map) * (clip.inBox ? boxTransform(box) : QTransform());
        QPainterPath whole;
        if (const Content* content = cache.contentOf(id, clip); content->document != nullptr)
            for (const doc::LayerId layer : content->document->layers())
                unite(&whole,
                      outlineIn(*content, *content->document->find(content->document->layer(layer)->root), map, depth));
        if (const svg::ClipPath* outer = cache.file_->definitions().clipPath(clip.clippedBy); outer && depth < kDeepest)
            whole = intersection(whole, clipOf(clip.clippedBy, *outer, box, depth + 1));
        return whole;
    }

    // A viewport is no part of a clip path. The root of the content is no element.
    static bool mayClip(const Content& content, const doc::Art& art) {
        return art.ref.index < 0 || content.looks->source()->element(art.ref.index).role != svg::Role::kViewport;
    }

    // The union of what the art and all in it cover, in the space that map leads to.
    QPainterPath outlineIn(const Content& content, const doc::Art& art, const QTransform& map, int depth) {
        if (!isWhole || ++nodes > kMostNodes || art.hidden) return {};
        QPainterPath covered;
        if (art.kind == kGroupArt && mayClip(content, art)) {
            forEachChildUpwards(*content.document, art,
                                [&](const doc::Art& child) { unite(&covered, outlineIn(content, child, map, depth)); });
        } else if (art.kind == kPathArt || art.kind == kCompoundPathArt) {
            covered = (content.toContent * map).map(outlineOf(*content.document, art));
            covered.setFillRule(content.looks->of(art).clipRule);
        }
        const std::string_view id = content.looks->of(art).clip;
        const svg::ClipPath* own = depth < kDeepest ? cache.file_->definitions().clipPath(id) : nullptr;
        if (own == nullptr) return covered;
        const QTransform user = content.looks->userSpace(art) * content.toContent * map;
        return intersection(covered,
                            user.map(clipOf(id, *own, user.inverted().mapRect(covered.boundingRect()), depth + 1)));
    }
};

// Uniting outlines is slow, and each painting asks.
ClipMaskCache::Cut ClipMaskCache::clip(std::string_view id, const QRectF& box) {
    const svg::ClipPath* clipPath = file_ == nullptr ? nullptr : file_->definitions().clipPath(id);
    if (clipPath == nullptr) return {};
    if (budget_.isSpent()) return {{}, true, false};
    const auto [kept, added] = clips_.try_emplace(std::string(id));
    if (Clip& clip = kept->second; added || (clip.ofBox && clip.box != box)) {
        Outlines outlines{*this};
        clip.cut = {outlines.clipOf(id, *clipPath, box, 0), true, outlines.isWhole};
        clip.ofBox = outlines.ofBox;
        clip.box = box;
    }
    return kept->second.cut;
}

QImage ClipMaskCache::mask(std::string_view id, const QTransform& userToPixels, QSize size, const QRectF& box) {
    const svg::Mask* mask = file_ == nullptr ? nullptr : file_->definitions().mask(id);
    if (mask == nullptr) return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    image.fill(Qt::transparent);
    if (const SubDrawing* content = drawings_.mask(id)) {
        QPainter painter(&image);
        content->paint(&painter, (mask->inBox ? boxTransform(box) : QTransform()) * userToPixels, image.rect(), {});
    }
    // Luminance of the colours as they are, times their opacity, which is in them already.
    const bool byAlpha = mask->type == svg::MaskType::kAlpha;
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const double light = 0.2125 * qRed(line[x]) + 0.7154 * qGreen(line[x]) + 0.0721 * qBlue(line[x]);
            const int through = byAlpha ? qAlpha(line[x]) : std::clamp(qRound(light), 0, 255);
            line[x] = qRgba(through, through, through, through);
        }
    }
    return image;
}

}  // namespace quorvel::render
