// The rubber band over the document: an inverting pen draws what the running tool would make, and the same strokes take
// it off again. Nothing is added to the document and nothing is repainted, so erasing must repeat the drawing to the
// pixel.
#include "plugin/snapping/preview.h"

#include <algorithm>
#include <cstring>

#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr int kPreviewChords = 32;

void CopyChain(const ChainBuffer* from, ChainBuffer* to) {
    if (from == nullptr || to == nullptr) return;
    to->count = static_cast<std::uint16_t>(std::min<int>(from->count, kChainCapacity));
    to->reversed = from->reversed;
    to->length = from->length;
    std::memcpy(to->segments, from->segments, to->count * sizeof(PathSegment));
}

}  // namespace

// When the view has painted itself anew since the last drawing, that drawing is gone already, and inverting it would
// bring it back.
void RedrawPreview(PluginGlobals* globals, PreviewPainter painter) {
    PreviewPen pen;
    sAIDocumentView->GetNthDocumentView(0, &pen.view);
    pen.surface = platform::BeginSurface(FindViewWindow());
    const std::uint32_t generation = platform::SurfaceGeneration(pen.surface);
    if (generation == globals->drawnGeneration) painter(pen, globals, &globals->drawnState, true);
    painter(pen, globals, &globals->liveState, false);
    globals->drawnGeneration = generation;
    platform::EndSurface(pen.surface);
    CommitDrawnState(globals);
}

// The curve chain is part of what was drawn: the next erasing takes it from workBufferB.
void CommitDrawnState(PluginGlobals* globals) {
    globals->drawnState = globals->liveState;
    CopyChain(globals->workBufferA, globals->workBufferB);
}

platform::Pixel ViewPixel(const PreviewPen& pen, const RealPoint& point) {
    AIPoint pixel;
    sAIDocumentView->ArtworkPointToViewPoint(pen.view, &point, &pixel);
    return {pixel.h, pixel.v};
}

platform::Pixel ViewPixel(const PreviewPen& pen, const DoublePoint& point) {
    return ViewPixel(pen, ToRealPoint(point));
}

void DrawPreviewLine(const PreviewPen& pen, const RealPoint& a, const RealPoint& b) {
    const platform::Pixel start = ViewPixel(pen, a), end = ViewPixel(pen, b);
    platform::MoveTo(pen.surface, start);
    platform::LineTo(pen.surface, start);
    platform::LineTo(pen.surface, end);
}

void DrawPreviewLine(const PreviewPen& pen, const DoublePoint& a, const DoublePoint& b) {
    DrawPreviewLine(pen, ToRealPoint(a), ToRealPoint(b));
}

void DrawPreviewCurve(const PreviewPen& pen, const BezierBasisTables& tables, const PathSegment& s,
                      const PathSegment& t) {
    const DoublePoint p0 = ToDoublePoint(s.p), p1 = ToDoublePoint(s.out);
    const DoublePoint p2 = ToDoublePoint(t.in), p3 = ToDoublePoint(t.p);
    const double pixelSize = PixelSize();
    RealPoint drawn = s.p;
    platform::Pixel drawnPixel = ViewPixel(pen, drawn);
    platform::MoveTo(pen.surface, drawnPixel);
    for (int k = 1; k <= kPreviewChords; ++k) {
        const RealPoint next =
            k < kPreviewChords ? ToRealPoint(BezierSample(tables, kPreviewChords, k, p0, p1, p2, p3)) : t.p;
        if (AbsOf(double{next.h} - drawn.h) < pixelSize && AbsOf(double{next.v} - drawn.v) < pixelSize) continue;
        const platform::Pixel nextPixel = ViewPixel(pen, next);
        platform::LineTo(pen.surface, drawnPixel);
        platform::LineTo(pen.surface, nextPixel);
        drawn = next;
        drawnPixel = nextPixel;
    }
}

void DrawPreviewArc(const PreviewPen& pen, const DoublePoint& centre, double radius, double startAngle,
                    double endAngle) {
    const platform::Pixel a = ViewPixel(pen, DoublePoint{centre.h - radius, centre.v - radius});
    const platform::Pixel b = ViewPixel(pen, DoublePoint{centre.h + radius, centre.v + radius});
    const platform::PixelRect box = {std::min(a.h, b.h), std::min(a.v, b.v), std::max(a.h, b.h), std::max(a.v, b.v)};
    const platform::Pixel start = ViewPixel(pen, PolarPoint(centre, radius, startAngle));
    const platform::Pixel end = ViewPixel(pen, PolarPoint(centre, radius, endAngle));
    if (endAngle >= startAngle) {
        platform::DrawArc(pen.surface, box, start, end);
    } else {
        platform::DrawArc(pen.surface, box, end, start);
    }
}

}  // namespace quorvel
