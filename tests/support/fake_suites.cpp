#include "tests/support/fake_suites.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>

#include "plugin/settings/prefs_file.h"
#include "plugin/shell/suites.h"

namespace quorvel::tests {

namespace {

FakeHost* host = nullptr;
std::deque<std::string> hostStrings;
std::deque<int> featureSets;  // the font index that each holds
std::vector<float> featureSizes;
std::vector<int> paragraphSets;

// Handles are indexes, one up, so that none is null.
template <typename Handle>
Handle toHandle(std::size_t index) {
    return reinterpret_cast<Handle>(index + 1);
}
template <typename Handle>
std::size_t toIndex(Handle handle) {
    return reinterpret_cast<std::size_t>(handle) - 1;
}
FakeArt& artOf(AIArtHandle handle) { return host->arts.at(toIndex(handle)); }

AIErr makeArt(std::int16_t kind, AIArtHandle parent, AIArtHandle* art) {
    if (host->refusesArt) return kRefusedErr;
    FakeArt made;
    made.kind = kind;
    made.parent = parent == nullptr ? -1 : static_cast<int>(toIndex(parent));
    host->arts.push_back(made);
    *art = toHandle<AIArtHandle>(host->arts.size() - 1);
    return kNoErr;
}

AIErr newArt(std::int16_t kind, std::int16_t, AIArtHandle prep, AIArtHandle* art) { return makeArt(kind, prep, art); }
AIErr disposeArt(AIArtHandle art) {
    artOf(art).disposed = true;
    return kNoErr;
}
AIErr firstArtOfLayer(AILayerHandle layer, AIArtHandle* art) {
    *art = toHandle<AIArtHandle>(static_cast<std::size_t>(host->layers.at(toIndex(layer)).root));
    return kNoErr;
}
AIErr layerOfArt(AIArtHandle art, AILayerHandle* layer) {
    int root = static_cast<int>(toIndex(art));
    while (host->arts.at(static_cast<std::size_t>(root)).parent >= 0) {
        root = host->arts.at(static_cast<std::size_t>(root)).parent;
    }
    for (std::size_t i = 0; i < host->layers.size(); ++i) {
        if (host->layers[i].root == root) *layer = toHandle<AILayerHandle>(i);
    }
    return kNoErr;
}

AIErr currentLayer(AILayerHandle* layer) {
    *layer = FakeHost::layerHandle(host->currentLayer);
    return kNoErr;
}
AIErr layerByTitle(AIUnicodeStringRef title, AILayerHandle* layer) {
    *layer = nullptr;
    for (std::size_t i = 0; i < host->layers.size(); ++i) {
        if (host->layers[i].title == hostStrings.at(toIndex(title))) *layer = toHandle<AILayerHandle>(i);
    }
    return kNoErr;
}
AIErr insertLayer(AILayerHandle, std::int16_t placement, AILayerHandle* layer) {
    if (placement != kPlaceAboveAll) return kBadParameterErr;
    *layer = FakeHost::layerHandle(host->addLayer(""));
    return kNoErr;
}
AIErr setLayerTitle(AILayerHandle layer, AIUnicodeStringRef title) {
    host->layers.at(toIndex(layer)).title = hostStrings.at(toIndex(title));
    return kNoErr;
}
AIErr layerVisible(AILayerHandle layer, AIBoolean* visible) {
    *visible = host->layers.at(toIndex(layer)).visible ? 1 : 0;
    return kNoErr;
}
AIErr layerEditable(AILayerHandle layer, AIBoolean* editable) {
    *editable = host->layers.at(toIndex(layer)).editable ? 1 : 0;
    return kNoErr;
}

AIErr setSegments(AIArtHandle path, std::int16_t first, std::int16_t count, const PathSegment* segments) {
    std::vector<PathSegment>& all = artOf(path).segments;
    if (static_cast<std::size_t>(first) > all.size()) return kBadParameterErr;
    all.resize(std::max(all.size(), static_cast<std::size_t>(first + count)));
    for (int i = 0; i < count; ++i) all[static_cast<std::size_t>(first + i)] = segments[i];
    return kNoErr;
}
AIErr setClosed(AIArtHandle path, AIBoolean closed) {
    artOf(path).closed = closed != 0;
    return kNoErr;
}
AIErr setStyle(AIArtHandle path, const AIPathStyle* style) {
    artOf(path).style = *style;
    return kNoErr;
}

// A text's range is its frame.
AIErr newPointText(std::int16_t, AIArtHandle prep, std::int16_t, RealPoint, AIArtHandle* frame) {
    return makeArt(kTextFrameArt, prep, frame);
}
AIErr textRange(AIArtHandle frame, ATETextRangeRef* range) {
    *range = toHandle<ATETextRangeRef>(toIndex(frame));
    return kNoErr;
}
AIErr removeText(ATETextRangeRef range) {
    host->arts.at(toIndex(range)).text.clear();
    return kNoErr;
}
AIErr insertAfter(ATETextRangeRef range, const std::uint16_t* units, std::int32_t count) {
    for (int i = 0; i < count; ++i) host->arts.at(toIndex(range)).text.push_back(static_cast<char16_t>(units[i]));
    return kNoErr;
}
AIErr charFeatures(ATETextRangeRef, ATECharFeaturesRef* features) {
    featureSets.push_back(-1);
    featureSizes.push_back(0);
    *features = toHandle<ATECharFeaturesRef>(featureSets.size() - 1);
    return kNoErr;
}
AIErr setCharFeatures(ATETextRangeRef range, ATECharFeaturesRef features) {
    host->arts.at(toIndex(range)).fontIndex = featureSets.at(toIndex(features));
    host->arts.at(toIndex(range)).fontSize = featureSizes.at(toIndex(features));
    return kNoErr;
}
AIErr paraFeatures(ATETextRangeRef, ATEParaFeaturesRef* features) {
    paragraphSets.push_back(-1);
    *features = toHandle<ATEParaFeaturesRef>(paragraphSets.size() - 1);
    return kNoErr;
}
AIErr setParaFeatures(ATETextRangeRef range, ATEParaFeaturesRef features) {
    host->arts.at(toIndex(range)).justification = paragraphSets.at(toIndex(features));
    return kNoErr;
}
AIErr setFont(ATECharFeaturesRef features, ATEFontRef font) {
    featureSets.at(toIndex(features)) = static_cast<int>(toIndex(font));
    return kNoErr;
}
AIErr setFontSize(ATECharFeaturesRef features, float points) {
    featureSizes.at(toIndex(features)) = points;
    return kNoErr;
}
AIErr setJustification(ATEParaFeaturesRef features, std::int32_t justification) {
    paragraphSets.at(toIndex(features)) = justification;
    return kNoErr;
}
AIErr ignorePaint(ATECharFeaturesRef, ATEApplicationPaintRef) { return kNoErr; }
AIErr ignoreFlag(ATECharFeaturesRef, AIBoolean) { return kNoErr; }
AIErr ignoreNumber(ATECharFeaturesRef, float) { return kNoErr; }
AIErr ignoreIndent(ATEParaFeaturesRef, float) { return kNoErr; }
AIErr applicationPaint(const AIColor*, ATEApplicationPaintRef* paint) {
    *paint = toHandle<ATEApplicationPaintRef>(0);
    return kNoErr;
}

AIErr countFonts(std::int32_t* count) {
    *count = static_cast<std::int32_t>(host->fonts.size());
    return kNoErr;
}
AIErr nthFont(std::int32_t index, AIFontKey* font) {
    *font = toHandle<AIFontKey>(static_cast<std::size_t>(index));
    return kNoErr;
}
AIErr fontName(AIFontKey font, char* name, std::int32_t size) {
    std::snprintf(name, static_cast<std::size_t>(size), "%s", host->fonts.at(toIndex(font)).name.c_str());
    return kNoErr;
}
AIErr textFont(AIFontKey font, ATEFontRef* textFont) {
    *textFont = toHandle<ATEFontRef>(toIndex(font));
    return kNoErr;
}
AIErr characterWidth(AIFontKey font, const char*, std::int32_t bytes, float* width) {
    const FakeFont& measured = host->fonts.at(toIndex(font));
    *width = bytes > 1 ? measured.wideWidth : measured.width;
    return kNoErr;
}

AIErr formatWithRulerUnit(float, std::int32_t, char* text, std::int32_t size) {
    std::snprintf(text, static_cast<std::size_t>(size), "%s", host->rulerText.c_str());
    return kNoErr;
}
AIErr fromCodePage(const char* bytes, std::int32_t size, std::int32_t, AIUnicodeStringRef* string) {
    hostStrings.emplace_back(bytes, static_cast<std::size_t>(size));
    *string = toHandle<AIUnicodeStringRef>(hostStrings.size() - 1);
    return kNoErr;
}

AIErr nthView(std::int32_t, AIDocumentViewHandle* view) {
    *view = toHandle<AIDocumentViewHandle>(0);
    return kNoErr;
}
AIErr viewZoom(AIDocumentViewHandle, float* zoom) {
    *zoom = host->zoom;
    return kNoErr;
}
AIErr toViewPoint(AIDocumentViewHandle, const RealPoint* artwork, AIPoint* pixel) {
    *pixel = {static_cast<std::int32_t>(std::lround(artwork->h)), static_cast<std::int32_t>(std::lround(-artwork->v))};
    return kNoErr;
}
AIErr transformArt(AIArtHandle art, const RealMatrix* matrix, float, std::int32_t) {
    artOf(art).transforms.push_back(*matrix);
    return kNoErr;
}
AIBoolean pointsEqual(const RealPoint* a, const RealPoint* b) { return a->h == b->h && a->v == b->v ? 1 : 0; }
float realSubtract(float a, float b) { return a - b; }
void setTranslate(RealMatrix* matrix, float h, float v) { *matrix = {1, 0, 0, 1, h, v}; }
void setRotate(RealMatrix* matrix, float radians) {
    const float c = std::cos(radians), s = std::sin(radians);
    *matrix = {c, s, -s, c, 0, 0};
}
AIErr refuseAccess(SPPluginRef, SPAccessRef*) { return kRefusedErr; }

AIArtSuite artSuite() {
    AIArtSuite suite = {};
    suite.NewArt = newArt;
    suite.DisposeArt = disposeArt;
    suite.GetFirstArtOfLayer = firstArtOfLayer;
    suite.GetLayerOfArt = layerOfArt;
    return suite;
}
AILayerSuite layerSuite() {
    AILayerSuite suite = {};
    suite.GetCurrentLayer = currentLayer;
    suite.GetLayerByTitle = layerByTitle;
    suite.InsertLayer = insertLayer;
    suite.SetLayerTitle = setLayerTitle;
    suite.GetLayerVisible = layerVisible;
    suite.GetLayerEditable = layerEditable;
    return suite;
}
AIPathSuite pathSuite() {
    AIPathSuite suite = {};
    suite.SetPathSegments = setSegments;
    suite.SetPathClosed = setClosed;
    return suite;
}
ATETextRangeSuite rangeSuite() {
    ATETextRangeSuite suite = {};
    suite.Remove = removeText;
    suite.InsertAfter = insertAfter;
    suite.GetLocalCharFeatures = charFeatures;
    suite.SetLocalCharFeatures = setCharFeatures;
    suite.GetLocalParaFeatures = paraFeatures;
    suite.SetLocalParaFeatures = setParaFeatures;
    return suite;
}
ATECharFeaturesSuite characterSuite() {
    ATECharFeaturesSuite suite = {};
    suite.SetFont = setFont;
    suite.SetFontSize = setFontSize;
    suite.SetFillColor = suite.SetStrokeColor = ignorePaint;
    suite.SetFill = suite.SetStroke = ignoreFlag;
    suite.SetMiterLimit = suite.SetHorizontalScale = suite.SetVerticalScale = suite.SetBaselineShift = ignoreNumber;
    return suite;
}
AIFontSuite fontSuite() {
    AIFontSuite suite = {};
    suite.CountFonts = countFonts;
    suite.GetNthFont = nthFont;
    suite.GetFontName = suite.GetFullFontName = suite.GetSystemFontName = fontName;
    suite.FontRefFromFontKey = textFont;
    suite.GetCharacterWidth = characterWidth;
    return suite;
}
AIRealMathSuite realMathSuite() {
    AIRealMathSuite suite = {};
    suite.AIRealPointsEqual = pointsEqual;
    suite.AIRealSubtract = realSubtract;
    suite.AIRealMatrixSetTranslate = setTranslate;
    suite.AIRealMatrixSetRotate = setRotate;
    return suite;
}

void setPointers(bool on) {
    static const AIArtSuite art = artSuite();
    static const AILayerSuite layer = layerSuite();
    static const AIPathSuite path = pathSuite();
    static const AIPathStyleSuite pathStyle = {nullptr, setStyle, nullptr};
    static const AITextFrameSuite textFrame = {newPointText, nullptr, nullptr, nullptr, textRange};
    static const ATETextRangeSuite range = rangeSuite();
    static const ATECharFeaturesSuite characters = characterSuite();
    static const ATEParaFeaturesSuite paragraph = {ignoreIndent, ignoreIndent, setJustification};
    static const AIATEPaintSuite paint = {applicationPaint};
    static const AIFontSuite font = fontSuite();
    static const AIUserSuite user = {nullptr, nullptr, nullptr, formatWithRulerUnit};
    static const AIUnicodeStringSuite unicode = {fromCodePage, nullptr};
    static const AIDocumentViewSuite view = {nthView, viewZoom, nullptr, toViewPoint};
    static const AITransformArtSuite transform = {transformArt};
    static const AIRealMathSuite realMath = realMathSuite();
    static const SPAccessSuite access = {refuseAccess, nullptr};
    sAIArt = on ? &art : nullptr;
    sAILayer = on ? &layer : nullptr;
    sAIPath = on ? &path : nullptr;
    sAIPathStyle = on ? &pathStyle : nullptr;
    sAITextFrame = on ? &textFrame : nullptr;
    sATETextRange = on ? &range : nullptr;
    sATECharFeatures = on ? &characters : nullptr;
    sATEParaFeatures = on ? &paragraph : nullptr;
    sAIATEPaint = on ? &paint : nullptr;
    sAIFont = on ? &font : nullptr;
    sAIUser = on ? &user : nullptr;
    sAIUnicodeString = on ? &unicode : nullptr;
    sAIDocumentView = on ? &view : nullptr;
    sAITransformArt = on ? &transform : nullptr;
    sAIRealMath = on ? &realMath : nullptr;
    sSPAccess = on ? &access : nullptr;
}

}  // namespace

FakeHost::FakeHost() : globals_(std::make_unique<PluginGlobals>()) {
    host = this;
    gGlobals = globals_.get();
    setPointers(true);
    for (ChainBuffer** buffer : {&globals_->workBufferA, &globals_->workBufferB, &globals_->workBufferC}) {
        *buffer = static_cast<ChainBuffer*>(std::calloc(1, kChainBlockSize));
        chains_.push_back(*buffer);
    }
    StoreDefaults(globals_.get());
    globals_->drawnState.toolStep = -1;
    addLayer("Layer 1");
}

FakeHost::~FakeHost() {
    for (ChainBuffer* buffer : chains_) std::free(buffer);
    setPointers(false);
    gGlobals = nullptr;
    host = nullptr;
    hostStrings.clear();
    featureSets.clear();
    featureSizes.clear();
    paragraphSets.clear();
}

AIArtHandle FakeHost::newGroup() {
    AIArtHandle group = nullptr;
    makeArt(kGroupArt, nullptr, &group);
    return group;
}

std::vector<FakeArt> FakeHost::piecesOf(AIArtHandle group) const {
    std::vector<FakeArt> pieces;
    for (const FakeArt& art : arts) {
        if (art.parent == static_cast<int>(toIndex(group)) && !art.disposed) pieces.push_back(art);
    }
    return pieces;
}

int FakeHost::addLayer(const std::string& title) {
    FakeLayer layer;
    layer.title = title;
    layer.root = static_cast<int>(arts.size());
    FakeArt root;
    root.kind = kGroupArt;
    arts.push_back(root);
    layers.push_back(layer);
    return static_cast<int>(layers.size()) - 1;
}

AILayerHandle FakeHost::layerHandle(int index) { return toHandle<AILayerHandle>(static_cast<std::size_t>(index)); }

}  // namespace quorvel::tests
