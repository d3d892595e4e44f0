// The text of a dimension or comment: a point text of the settings' font and size in black, made at the origin and
// moved to its place only when it is whole, so that turning it is a turn about its anchor.
#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/units.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr float kMiterLimit = 4.0F;
constexpr float kKeepLineScale = 1.0F;

ATEApplicationPaintRef BlackPaint() {
    AIColor black;
    black.kind = kGrayPaint;
    black.gray = 1.0F;
    ATEApplicationPaintRef paint = nullptr;
    sAIATEPaint->CreateApplicationPaint(&black, &paint);
    return paint;
}

void FillCharacterFeatures(ATECharFeaturesRef characters) {
    ATEFontRef font = nullptr;
    sAIFont->FontRefFromFontKey(FindDimensionFont(gGlobals), &font);
    sATECharFeatures->SetFont(characters, font);
    sATECharFeatures->SetFontSize(characters, gGlobals->prefs.flArFSize);
    sATECharFeatures->SetFillColor(characters, BlackPaint());
    sATECharFeatures->SetStrokeColor(characters, BlackPaint());
    sATECharFeatures->SetFill(characters, 1);
    sATECharFeatures->SetStroke(characters, 0);
    sATECharFeatures->SetMiterLimit(characters, kMiterLimit);
}

void TurnAndPlace(AIArtHandle frame, const DoublePoint& p1, const DoublePoint& p2) {
    // The direction is that of the points as the host stores them.
    const double angle = AngleBetweenPoints(ToDoublePoint(ToRealPoint(p1)), ToDoublePoint(ToRealPoint(p2)));
    RealMatrix matrix;
    sAIRealMath->AIRealMatrixSetRotate(&matrix, static_cast<float>(angle));
    sAITransformArt->TransformArt(frame, &matrix, kKeepLineScale, kTransformObjects);
    const RealPoint middle = ToRealPoint({(p1.h + p2.h) / 2, (p1.v + p2.v) / 2});
    sAIRealMath->AIRealMatrixSetTranslate(&matrix, middle.h, middle.v);
    sAITransformArt->TransformArt(frame, &matrix, kKeepLineScale, kTransformObjects);
}

}  // namespace

bool BeginText(AIArtHandle group, TextParts* parts) {
    const AIErr error =
        sAITextFrame->NewPointText(kPlaceInsideOnTop, group, kHorizontalText, RealPoint{0, 0}, &parts->frame);
    if (error != kNoErr || parts->frame == nullptr) return false;
    sAITextFrame->GetATETextRange(parts->frame, &parts->range);
    sATETextRange->Remove(parts->range);
    sATETextRange->GetLocalCharFeatures(parts->range, &parts->characters);
    sATETextRange->GetLocalParaFeatures(parts->range, &parts->paragraph);
    FillCharacterFeatures(parts->characters);
    return true;
}

void ApplyParagraph(const TextParts& parts, ATEJustification justification) {
    sATEParaFeatures->SetFirstLineIndent(parts.paragraph, 0.0F);
    sATEParaFeatures->SetStartIndent(parts.paragraph, 0.0F);
    sATEParaFeatures->SetJustification(parts.paragraph, justification);
    sATETextRange->SetLocalParaFeatures(parts.range, parts.paragraph);
}

void AddDimensionText(AIArtHandle group, const DoublePoint& p1, const DoublePoint& p2, const char* text) {
    TextParts parts;
    if (!BeginText(group, &parts)) return;
    sATETextRange->SetLocalCharFeatures(parts.range, parts.characters);
    ApplyParagraph(parts, kJustifyCenter);
    SetTextFromInternal(gGlobals, parts.range, text);
    TurnAndPlace(parts.frame, p1, p2);
}

}  // namespace quorvel
