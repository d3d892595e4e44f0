// The suites of text: frames, ranges with their character and paragraph features, and paints. Ranges, features and
// paints live until the message has returned.
#include <algorithm>
#include <cmath>

#include "fonts/fonts.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- frames

const doc::TextData& textOf(doc::ArtId id) {
    const doc::Art* art = theDocument().find(id);
    require(art != nullptr, kStaleHandleErr);
    require(art->kind == kTextFrameArt && art->text != nullptr);
    return *art->text;
}

const doc::TextData& textOf(AIArtHandle frame) { return textOf(artOf(frame).id); }

doc::TextData newPointTextData(std::int16_t orientation, RealPoint anchor) {
    doc::TextData text;
    text.orientation = static_cast<AITextOrientation>(orientation);
    text.matrix = {1, 0, 0, 1, anchor.h, anchor.v};
    text.runs.push_back({0, doc::CharFeatures{.font = fonts::fonts().front().fullName}});
    return text;
}

AIErr newPointText(std::int16_t placement, AIArtHandle prep, std::int16_t orientation, RealPoint anchor,
                   AIArtHandle* frame) {
    require(frame != nullptr && std::isfinite(anchor.h) && std::isfinite(anchor.v));
    require(orientation == kHorizontalText || orientation == kVerticalText);
    const Placement place = openPlacement(placement, prep);
    const doc::ArtId made = changeDocument([&](doc::Document& document) {
        const doc::ArtId id = document.insertArt(kTextFrameArt, place.order, place.prep);
        if (id != 0) document.setText(id, newPointTextData(orientation, anchor));
        return id;
    });
    require(made != 0);
    *frame = artHandle(made);
    return kNoErr;
}

AIErr getTextFrameType(AIArtHandle frame, std::int32_t* type) {
    deref(type) = textOf(frame).type;
    return kNoErr;
}

AIErr getPointTextAnchor(AIArtHandle frame, RealPoint* anchor) {
    const doc::TextData& text = textOf(frame);
    require(text.type == kPointTextType);
    deref(anchor) = {text.matrix.tx, text.matrix.ty};
    return kNoErr;
}

AIErr getPathObject(AIArtHandle frame, AIArtHandle* path) {
    const doc::TextData& text = textOf(frame);
    require(text.type != kPointTextType);
    deref(path) = artHandle(text.pathObject);
    return kNoErr;
}

AIErr getTextRange(AIArtHandle frame, ATETextRangeRef* range) {
    require(range != nullptr);
    const auto length = static_cast<std::int32_t>(textOf(frame).text.size());
    HostState& host = theHost();
    *range = keepInArena<ATETextRangeRef>(host.arena.ranges,
                                          TextRange{artOf(frame).id, host.documentSerial, 0, length, std::nullopt});
    return kNoErr;
}

// --- ranges

// The range, with its frame still there and still as long.
TextRange& rangeOf(ATETextRangeRef handle) {
    HostState& host = theHost();
    TextRange& range = arenaItem(host.arena.ranges, handle);
    require(range.documentSerial == host.documentSerial, kStaleHandleErr);
    require(range.end <= static_cast<std::int32_t>(textOf(range.frame).text.size()), kStaleHandleErr);
    return range;
}

// Features of the character at a place, or of what would be inserted there: those of the character before.
const doc::CharFeatures& featuresAt(const doc::TextData& text, std::int32_t place) {
    std::int32_t end = 0;
    for (const doc::TextRun& run : text.runs) {
        end += run.length;
        if (place < end) return run.features;
    }
    static const doc::CharFeatures none;
    return text.runs.empty() ? none : text.runs.back().features;
}

const doc::CharFeatures& insertionFeatures(const doc::TextData& text, std::int32_t place) {
    return featuresAt(text, std::max(place - 1, 0));
}

// Cuts the run that spans the place in two, and gives the index of the run that begins there.
std::size_t splitRuns(std::vector<doc::TextRun>* runs, std::int32_t place) {
    std::size_t index = 0;
    for (; index < runs->size() && place > 0; ++index) {
        doc::TextRun& run = (*runs)[index];
        if (place < run.length) {
            const doc::TextRun behind{run.length - place, run.features};
            run.length = place;
            runs->insert(runs->begin() + static_cast<std::ptrdiff_t>(index) + 1, behind);
            return index + 1;
        }
        place -= run.length;
    }
    return index;
}

// Neighbours alike become one, empty ones go; an empty text keeps one for what comes.
void tidyRuns(doc::TextData* text, const doc::CharFeatures& whenEmpty) {
    std::vector<doc::TextRun> tidy;
    for (const doc::TextRun& run : text->runs) {
        if (run.length == 0) continue;
        if (!tidy.empty() && tidy.back().features == run.features) {
            tidy.back().length += run.length;
        } else {
            tidy.push_back(run);
        }
    }
    if (tidy.empty()) tidy.push_back({0, whenEmpty});
    text->runs = std::move(tidy);
}

void setText(doc::ArtId frame, const doc::TextData& text) {
    require(changeDocument([&](doc::Document& document) { return document.setText(frame, text); }));
}

AIErr removeRange(ATETextRangeRef handle) {
    TextRange& range = rangeOf(handle);
    doc::TextData text = textOf(range.frame);
    const doc::CharFeatures first = featuresAt(text, range.start);
    const std::size_t begin = splitRuns(&text.runs, range.start), end = splitRuns(&text.runs, range.end);
    if (range.start < range.end) {
        text.runs.erase(text.runs.begin() + static_cast<std::ptrdiff_t>(begin),
                        text.runs.begin() + static_cast<std::ptrdiff_t>(end));
        text.text.erase(static_cast<std::size_t>(range.start), static_cast<std::size_t>(range.end - range.start));
        tidyRuns(&text, first);
        setText(range.frame, text);
    }
    range.end = range.start;
    range.pending.reset();
    return kNoErr;
}

AIErr insertAfter(ATETextRangeRef handle, const std::uint16_t* units, std::int32_t count) {
    TextRange& range = rangeOf(handle);
    require(count >= 0 && (units != nullptr || count == 0));
    if (count == 0) return kNoErr;
    doc::TextData text = textOf(range.frame);
    require(count <= INT32_MAX - static_cast<std::int32_t>(text.text.size()));
    const bool pends = range.start == range.end && range.pending.has_value();
    const doc::CharFeatures features = pends ? *range.pending : insertionFeatures(text, range.end);
    const std::size_t index = splitRuns(&text.runs, range.end);
    text.runs.insert(text.runs.begin() + static_cast<std::ptrdiff_t>(index), {count, features});
    text.text.insert(static_cast<std::size_t>(range.end), std::u16string(units, units + count));
    tidyRuns(&text, features);
    setText(range.frame, text);
    range.end += count;
    range.pending.reset();
    return kNoErr;
}

AIErr getStart(ATETextRangeRef range, std::int32_t* start) {
    deref(start) = rangeOf(range).start;
    return kNoErr;
}

AIErr getEnd(ATETextRangeRef range, std::int32_t* end) {
    deref(end) = rangeOf(range).end;
    return kNoErr;
}

AIErr setRange(ATETextRangeRef handle, std::int32_t start, std::int32_t end) {
    TextRange& range = rangeOf(handle);
    require(0 <= start && start <= end && end <= static_cast<std::int32_t>(textOf(range.frame).text.size()));
    range.start = start;
    range.end = end;
    range.pending.reset();
    return kNoErr;
}

AIErr getLocalCharFeatures(ATETextRangeRef handle, ATECharFeaturesRef* features) {
    require(features != nullptr);
    const TextRange& range = rangeOf(handle);
    const doc::TextData& text = textOf(range.frame);
    const doc::CharFeatures& local = range.pending.has_value() ? *range.pending
                                     : range.start < range.end ? featuresAt(text, range.start)
                                                               : insertionFeatures(text, range.start);
    *features = keepInArena<ATECharFeaturesRef>(theHost().arena.charFeatures, local);
    return kNoErr;
}

doc::CharFeatures& charFeaturesOf(ATECharFeaturesRef handle) { return arenaItem(theHost().arena.charFeatures, handle); }

AIErr setLocalCharFeatures(ATETextRangeRef handle, ATECharFeaturesRef featuresHandle) {
    TextRange& range = rangeOf(handle);
    const doc::CharFeatures features = charFeaturesOf(featuresHandle);
    doc::TextData text = textOf(range.frame);
    if (range.start == range.end) range.pending = features;
    if (range.start == range.end && !text.text.empty()) return kNoErr;
    const std::size_t begin = splitRuns(&text.runs, range.start), end = splitRuns(&text.runs, range.end);
    for (std::size_t i = begin; i < end; ++i) text.runs[i].features = features;
    tidyRuns(&text, features);
    setText(range.frame, text);
    return kNoErr;
}

AIErr getLocalParaFeatures(ATETextRangeRef handle, ATEParaFeaturesRef* features) {
    require(features != nullptr);
    const doc::TextData& text = textOf(rangeOf(handle).frame);
    *features = keepInArena<ATEParaFeaturesRef>(
        theHost().arena.paraFeatures, ParaFeatures{text.firstLineIndent, text.startIndent, text.justification});
    return kNoErr;
}

ParaFeatures& paraFeaturesOf(ATEParaFeaturesRef handle) { return arenaItem(theHost().arena.paraFeatures, handle); }

// A frame is one paragraph.
AIErr setLocalParaFeatures(ATETextRangeRef handle, ATEParaFeaturesRef featuresHandle) {
    const doc::ArtId frame = rangeOf(handle).frame;
    const ParaFeatures& features = paraFeaturesOf(featuresHandle);
    doc::TextData text = textOf(frame);
    text.firstLineIndent = features.firstLineIndent;
    text.startIndent = features.startIndent;
    text.justification = features.justification;
    setText(frame, text);
    return kNoErr;
}

// --- features

const AIColor& colourOf(ATEApplicationPaintRef paint) { return arenaItem(theHost().arena.paints, paint); }

template <auto member>
AIErr setNumber(ATECharFeaturesRef features, float value) {
    require(std::isfinite(value));
    charFeaturesOf(features).*member = value;
    return kNoErr;
}

template <auto member>
AIErr setColour(ATECharFeaturesRef features, ATEApplicationPaintRef paint) {
    charFeaturesOf(features).*member = colourOf(paint);
    return kNoErr;
}

template <auto member>
AIErr setSwitch(ATECharFeaturesRef features, AIBoolean on) {
    charFeaturesOf(features).*member = on != 0;
    return kNoErr;
}

AIErr setFont(ATECharFeaturesRef features, ATEFontRef font) {
    charFeaturesOf(features).font = fontAt(numberOf(font)).fullName;
    return kNoErr;
}

AIErr setFontSize(ATECharFeaturesRef features, float points) {
    require(points > 0);
    return setNumber<&doc::CharFeatures::size>(features, points);
}

template <auto member>
AIErr setIndent(ATEParaFeaturesRef features, float points) {
    require(std::isfinite(points));
    paraFeaturesOf(features).*member = points;
    return kNoErr;
}

AIErr setJustification(ATEParaFeaturesRef features, std::int32_t justification) {
    require(justification >= kJustifyLeft && justification <= kJustifyCenter);
    paraFeaturesOf(features).justification = static_cast<ATEJustification>(justification);
    return kNoErr;
}

AIErr createApplicationPaint(const AIColor* colour, ATEApplicationPaintRef* paint) {
    require(colour != nullptr && paint != nullptr);
    *paint = keepInArena<ATEApplicationPaintRef>(theHost().arena.paints, *colour);
    return kNoErr;
}

}  // namespace

SuiteRecord textFrameSuite() {
    static const AITextFrameSuite suite = [] {
        auto s = refusingSuite<AITextFrameSuite>();
        s.NewPointText = slot<newPointText>;
        s.GetTextFrameType = slot<getTextFrameType>;
        s.GetPointTextAnchor = slot<getPointTextAnchor>;
        s.GetPathObject = slot<getPathObject>;
        s.GetATETextRange = slot<getTextRange>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord textRangeSuite() {
    static const ATETextRangeSuite suite = [] {
        auto s = refusingSuite<ATETextRangeSuite>();
        s.Remove = slot<removeRange>;
        s.InsertAfter = slot<insertAfter>;
        s.GetStart = slot<getStart>;
        s.GetEnd = slot<getEnd>;
        s.SetRange = slot<setRange>;
        s.GetLocalCharFeatures = slot<getLocalCharFeatures>;
        s.SetLocalCharFeatures = slot<setLocalCharFeatures>;
        s.GetLocalParaFeatures = slot<getLocalParaFeatures>;
        s.SetLocalParaFeatures = slot<setLocalParaFeatures>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord charFeaturesSuite() {
    static const ATECharFeaturesSuite suite = [] {
        auto s = refusingSuite<ATECharFeaturesSuite>();
        s.SetFont = slot<setFont>;
        s.SetFontSize = slot<setFontSize>;
        s.SetFillColor = slot<setColour<&doc::CharFeatures::fill>>;
        s.SetStrokeColor = slot<setColour<&doc::CharFeatures::stroke>>;
        s.SetFill = slot<setSwitch<&doc::CharFeatures::fillOn>>;
        s.SetStroke = slot<setSwitch<&doc::CharFeatures::strokeOn>>;
        s.SetMiterLimit = slot<setNumber<&doc::CharFeatures::miterLimit>>;
        s.SetHorizontalScale = slot<setNumber<&doc::CharFeatures::horizontalScale>>;
        s.SetVerticalScale = slot<setNumber<&doc::CharFeatures::verticalScale>>;
        s.SetBaselineShift = slot<setNumber<&doc::CharFeatures::baselineShift>>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord paraFeaturesSuite() {
    static const ATEParaFeaturesSuite suite = [] {
        auto s = refusingSuite<ATEParaFeaturesSuite>();
        s.SetFirstLineIndent = slot<setIndent<&ParaFeatures::firstLineIndent>>;
        s.SetStartIndent = slot<setIndent<&ParaFeatures::startIndent>>;
        s.SetJustification = slot<setJustification>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord paintSuite() {
    static const AIATEPaintSuite suite = [] {
        auto s = refusingSuite<AIATEPaintSuite>();
        s.CreateApplicationPaint = slot<createApplicationPaint>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
