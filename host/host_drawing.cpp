// The drawing that the host holds and the view on it: opening and closing, zoom, the ruler's unit, and what handles of
// art and layers stand for.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/code_page.h"
#include "host/host_state.h"
#include "interchange/svg/svg.h"

namespace quorvel::host {

namespace {

struct RulerUnit {
    const char* name;
    const char* suffix;
    double points;
    bool splits = false;  // picas are before the letter, points behind it
};

constexpr RulerUnit kRulerUnits[] = {
    {"mm", " mm", 72 / 25.4}, {"cm", " cm", 72 / 2.54}, {"in", " in", 72},      {"pt", " pt", 1},
    {"pc", "", 12, true},     {"px", " px", 1},         {"H", " H", 18 / 25.4},  // a quarter of a millimetre
};

constexpr int kUnitPrecision = 4, kMostPrecision = 9;

const RulerUnit* findUnit(std::string_view name) {
    const auto found = std::find_if(std::begin(kRulerUnits), std::end(kRulerUnits),
                                    [&](const RulerUnit& unit) { return unit.name == name; });
    return found == std::end(kRulerUnits) ? nullptr : found;
}

// With the unit's own precision zeros at the end go.
std::string printed(double value, int precision) {
    const bool own = precision < 0;
    std::array<char, 400> text;  // the largest double has 309 digits
    std::snprintf(text.data(), text.size(), "%.*f", own ? kUnitPrecision : std::min(precision, kMostPrecision), value);
    std::string result = text.data();
    if (own && result.find('.') != std::string::npos) {
        result.erase(result.find_last_not_of('0') + 1);
        if (result.back() == '.') result.pop_back();
    }
    return result == "-0" ? "0" : result;
}

std::string printedPicas(double points, int precision) {
    const double scale = std::pow(10.0, precision < 0 ? kUnitPrecision : std::min(precision, kMostPrecision));
    const double rounded = std::round(std::abs(points) * scale) / scale;
    const double picas = std::floor(rounded / 12);
    const std::string sign = points < 0 && rounded > 0 ? "-" : "";
    return sign + printed(picas, 0) + "p" + printed(rounded - picas * 12, precision);
}

// Clamps to a pixel far outside any screen, since a double may be beyond the integers.
std::int32_t toPixel(double value) {
    constexpr double kFar = 1e9;
    return static_cast<std::int32_t>(std::lround(!(std::abs(value) <= kFar) ? std::copysign(kFar, value) : value));
}

}  // namespace

// --- the drawing ------------------------------------------------------------------------------------------------

void HostState::replaceDocument(std::unique_ptr<doc::Document> next) {
    artIndex.reset();
    document = std::move(next);
    documentSerial = documentSerial == UINT16_MAX ? 1 : documentSerial + 1;
    lastGroupNumber = 0;
    notifiedChange = document != nullptr ? document->changeCount() : 0;
    if (document == nullptr) return;
    artIndex = std::make_unique<doc::ArtIndex>(*document);
    if (depth > 0) document->begin();  // the message that is running goes on in the new drawing
    view.zoom = 1;
    view.centre = {document->width() / 2, document->height() / 2};
}

void Host::newDocument(float width, float height) {
    auto document = interchange::newDrawing(width, height);
    if (document->layers().empty()) {
        document->loadLayer("Layer 1");
        document->finishLoading();
    }
    setDocument(std::move(document), "pt");
}

void Host::setDocument(std::unique_ptr<doc::Document> document, const std::string& rulerUnit) {
    impl_->replaceDocument(std::move(document));
    setRulerUnit(rulerUnit);
    if (callbacks.viewRepainted) callbacks.viewRepainted();
}

void Host::closeDocument() {
    impl_->replaceDocument(nullptr);
    if (callbacks.viewRepainted) callbacks.viewRepainted();
}

doc::Document* Host::document() const { return impl_->document.get(); }

// --- the view

View& Host::view() { return impl_->view; }

void Host::setZoom(float zoom) {
    if (!(zoom > 0) || !std::isfinite(zoom)) return;
    impl_->view.zoom = zoom;
    if (callbacks.viewRepainted) callbacks.viewRepainted();
}

void Host::setCentre(RealPoint centre) {
    impl_->view.centre = centre;
    if (callbacks.viewRepainted) callbacks.viewRepainted();
}

doc::ArtId Host::artOfHandle(AIArtHandle handle) const {
    if (document() == nullptr) return 0;
    const doc::Art* art = document()->find(numberOf(handle, impl_->documentSerial));
    return art == nullptr ? 0 : art->id;
}

AIPoint Host::toView(RealPoint artwork) const {
    const View& view = impl_->view;
    const double zoom = view.zoom;
    return {toPixel((double{artwork.h} - view.centre.h) * zoom + view.width / 2.0),
            toPixel((double{view.centre.v} - artwork.v) * zoom + view.height / 2.0)};
}

RealPoint Host::toArtwork(AIPoint point) const {
    const View& view = impl_->view;
    return {static_cast<float>((point.h - view.width / 2.0) / view.zoom + view.centre.h),
            static_cast<float>(view.centre.v - (point.v - view.height / 2.0) / view.zoom)};
}

const std::string& Host::rulerUnit() const { return impl_->rulerUnit; }

void Host::setRulerUnit(const std::string& unit) {
    if (findUnit(unit) != nullptr) impl_->rulerUnit = unit;
}

std::string Host::formatWithRulerUnit(float points, int precision) const {
    const RulerUnit& unit = *findUnit(impl_->rulerUnit);
    if (unit.splits) return printedPicas(points, precision);
    return printed(points / unit.points, precision) + unit.suffix;
}

// --- for the slots

HostState& theHost() {
    HostState* host = runningHost();
    require(host != nullptr);
    return *host;
}

doc::Document& theDocument() {
    HostState& host = theHost();
    require(host.document != nullptr, kNoDocumentErr);
    return *host.document;
}

void requirePlugin(SPPluginRef plugin) { require(numberOf(plugin) == 1, kStaleHandleErr); }

const doc::Art& artOf(AIArtHandle handle) {
    const doc::Document& document = theDocument();
    const doc::Art* art = document.find(numberOf(handle, theHost().documentSerial));
    require(art != nullptr, kStaleHandleErr);
    return *art;
}

const doc::Layer& layerOf(AILayerHandle handle) {
    const doc::Document& document = theDocument();
    const doc::Layer* layer = document.layer(numberOf(handle, theHost().documentSerial));
    require(layer != nullptr, kStaleHandleErr);
    return *layer;
}

AIArtHandle artHandle(doc::ArtId id) { return makeHandle<AIArtHandle>(id, theHost().documentSerial); }
AILayerHandle layerHandle(doc::LayerId id) { return makeHandle<AILayerHandle>(id, theHost().documentSerial); }

namespace {

void requireOpenLayer(const doc::Layer* layer) {
    require(layer != nullptr);
    require(layer->visible && layer->editable, kLockedErr);
}

}  // namespace

Placement openPlacement(std::int16_t placement, AIArtHandle prep) {
    const doc::Document& document = theDocument();
    if (placement == kPlaceAboveAll) {
        const doc::Layer* layer = document.layer(document.currentLayer());
        requireOpenLayer(layer);
        return {kPlaceInsideOnTop, layer->root};
    }
    require(placement >= kPlaceAbove && placement <= kPlaceInsideOnBottom);
    const doc::Art& beside = artOf(prep);
    requireOpenLayer(document.layer(document.layerOf(beside.id)));
    return {static_cast<AIPaintOrder>(placement), beside.id};
}

std::u16string utf16Of(AIUnicodeStringRef string) {
    const std::vector<std::uint16_t>& units = arenaItem(theHost().arena.strings, string);
    return {units.begin(), units.end()};
}

std::string utf8Of(AIUnicodeStringRef string) { return toUtf8(utf16Of(string)); }

void copyText(std::string_view text, char* to, std::int32_t size) {
    require(to != nullptr && size > 0);
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(to, text.data(), count);
    to[count] = 0;
}

}  // namespace quorvel::host
