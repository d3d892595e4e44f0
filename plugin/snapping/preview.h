// The preview: shapes drawn over the document with an inverting pen, and taken off by drawing the same again. A family
// gives one painter that draws a tool state's shape; RedrawPreview erases drawnState, draws liveState and remembers it.
#pragma once

#include "platform/surface.h"
#include "plugin/shell/globals.h"

namespace quorvel {

// What a painter draws with: a view and an inverting surface over it.
struct PreviewPen {
    AIDocumentViewHandle view = nullptr;
    platform::SurfaceRef surface = nullptr;
};

// Draws the shape that belongs to state.toolStep; nothing for a step without one. isDrawn: the state is drawnState (the
// curve chain to take is workBufferB then, else workBufferA).
using PreviewPainter = void (*)(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn);

void RedrawPreview(PluginGlobals* globals, PreviewPainter painter);
void CommitDrawnState(PluginGlobals* globals);

platform::Pixel ViewPixel(const PreviewPen& pen, const RealPoint& point);
platform::Pixel ViewPixel(const PreviewPen& pen, const DoublePoint& point);
// MoveTo a, LineTo a, LineTo b; a single pixel when both are on one.
void DrawPreviewLine(const PreviewPen& pen, const RealPoint& a, const RealPoint& b);
void DrawPreviewLine(const PreviewPen& pen, const DoublePoint& a, const DoublePoint& b);
// The segment as 32 chords, pieces below one pixel left out.
void DrawPreviewCurve(const PreviewPen& pen, const BezierBasisTables& tables, const PathSegment& s,
                      const PathSegment& t);
// Angles in radians; end below start runs clockwise.
void DrawPreviewArc(const PreviewPen& pen, const DoublePoint& centre, double radius, double startAngle,
                    double endAngle);

}  // namespace quorvel
