// The Slant tool from press to turned art: the two points, the line between them, and the walk that turns paths anchor
// by anchor and hands all other art to the host.
#include "plugin/construction/slant.h"

#include "plugin/shell/suites.h"
#include "plugin/snapping/tool_steps.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

// --- events -------------------------------------------------------------------------------------------------------

AIErr SlantTrack(const AIToolMessage* /*message*/) { return TrackTwoPoints(SnapFamily::slant, PaintRubberLine); }

AIErr SlantDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

AIErr SlantUp(const AIToolMessage* message) {
    return ReleaseTwoStep(message, {PaintRubberLine, TwoPointsPicked, LevelSelection});
}

// --- turning ------------------------------------------------------------------------------------------------------

namespace {

void TurnGradient(AIBoolean painted, AIColor* color, double angle) {
    if (!painted || color->kind != kGradientPaint) return;
    const float degrees = static_cast<float>(-angle / kPi * 180.0);
    color->gradientAngle = sAIRealMath->AIRealAdd(color->gradientAngle, degrees);
    color->gradientHiliteAngle = sAIRealMath->AIRealAdd(color->gradientHiliteAngle, degrees);
}

void TurnPaint(AIArtHandle path, double angle) {
    AIPathStyle style;
    if (sAIPathStyle->GetPathStyle(path, &style) != kNoErr) return;
    TurnGradient(style.fillPaint, &style.fill, angle);
    TurnGradient(style.strokePaint, &style.stroke, angle);
    sAIPathStyle->SetPathStyle(path, &style);
}

AIErr TurnPath(AIArtHandle path, const DoublePoint& pivot, double angle) {
    const int count = SegmentCount(path);
    if (count <= 0) return kNoErr;
    TurnPaint(path, angle);
    for (int i = 0; i < count; ++i) {
        const auto index = static_cast<std::int16_t>(i);
        PathSegment segment;
        if (const AIErr error = sAIPath->GetPathSegments(path, index, 1, &segment); error != kNoErr) return error;
        TurnPoint(&segment.p, pivot, angle);
        TurnPoint(&segment.in, pivot, angle);
        TurnPoint(&segment.out, pivot, angle);
        sAIPath->SetPathSegments(path, index, 1, &segment);
    }
    return kNoErr;
}

AIErr Transform(AIArtHandle art, const RealMatrix& matrix) {
    return sAITransformArt->TransformArt(art, &matrix, 1.0F, kTransformObjects);
}

// Three steps and not one matrix: a host rounds each of them to its own coordinates.
AIErr TurnOtherArt(AIArtHandle art, const DoublePoint& pivot, double angle) {
    const RealPoint about = ToRealPoint(pivot);
    RealMatrix matrix;
    sAIRealMath->AIRealMatrixSetIdentity(&matrix);
    sAIRealMath->AIRealMatrixConcatTranslate(&matrix, -about.h, -about.v);
    if (const AIErr error = Transform(art, matrix); error != kNoErr) return error;
    sAIRealMath->AIRealMatrixSetIdentity(&matrix);
    sAIRealMath->AIRealMatrixConcatRotate(&matrix, static_cast<float>(-angle));
    if (const AIErr error = Transform(art, matrix); error != kNoErr) return error;
    sAIRealMath->AIRealMatrixSetIdentity(&matrix);
    sAIRealMath->AIRealMatrixConcatTranslate(&matrix, about.h, about.v);
    return Transform(art, matrix);
}

}  // namespace

bool LevelSelection() {
    const ToolState& live = gGlobals->liveState;
    const DoublePoint pivot = ToDoublePoint(live.fromPoint);
    const double angle = AngleBetweenPoints(pivot, ToDoublePoint(live.toPoint));
    std::int32_t count = 0;
    AIErr error = sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count && error == kNoErr; ++i) {
        AILayerHandle layer = nullptr;
        AIArtHandle root = nullptr;
        error = sAILayer->GetNthLayer(i, &layer);
        if (error == kNoErr) error = sAIArt->GetFirstArtOfLayer(layer, &root);
        if (error == kNoErr && root != nullptr) error = TurnArt(root, pivot, angle);
    }
    return true;
}

AIErr TurnArt(AIArtHandle art, const DoublePoint& pivot, double angle) {
    std::int16_t type = kUnknownArt;
    if (const AIErr error = sAIArt->GetArtType(art, &type); error != kNoErr) return error;
    if (type == kGroupArt || type == kCompoundPathArt) {
        if (IsToolGroup(art)) return kNoErr;
        return WalkChildren(
            art, [&](AIArtHandle child) { return TurnArt(child, pivot, angle); }, [] { return false; });
    }
    std::int32_t selected = 0;
    const AIErr error = sAIArt->GetArtUserAttr(art, kArtSelected, &selected);
    if (error != kNoErr || selected == 0) return error;
    return type == kPathArt ? TurnPath(art, pivot, angle) : TurnOtherArt(art, pivot, angle);
}

void TurnPoint(RealPoint* point, const DoublePoint& pivot, double angle) {
    const DoublePoint p = ToDoublePoint(*point);
    *point = ToRealPoint(PolarPoint(pivot, DistanceBetweenPoints(pivot, p), AngleBetweenPoints(pivot, p) - angle));
}

}  // namespace quorvel
