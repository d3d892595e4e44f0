// Saving a drawing: over the file that it was read from, or as a new file.
#include <algorithm>
#include <string>

#include "interchange/svg/clones/save_base.h"
#include "interchange/svg/splicer.h"
#include "interchange/svg/svg.h"
#include "svg/markup/namespaces.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::interchange {
namespace {

struct PageUnit {
    std::string_view name;
    double points;
};

constexpr PageUnit kPageUnits[] = {{"mm", 72 / 25.4}, {"cm", 72 / 2.54}, {"in", 72},
                                   {"pc", 12},        {"px", 0.75},      {"pt", 1}};

// The length that a reader turns into exactly this number of points.
std::string pageSide(float points, const PageUnit& unit) {
    const auto text = [&](double value) {
        std::string out;
        svg::appendNumber(&out, value);
        return out + std::string(unit.name);
    };
    const double side = svg::fewestDecimals(points / unit.points, [&](double value) {
        return static_cast<float>(svg::parseLength(text(value), {}).value_or(0) * 0.75) == points;
    });
    return text(side);
}

std::string emptyFile(const doc::Document& document, std::string_view rulerUnit) {
    const auto known = std::ranges::find(kPageUnits, rulerUnit, &PageUnit::name);
    const PageUnit& unit = known == std::end(kPageUnits) ? kPageUnits[5] : *known;
    const std::string width = pageSide(document.width(), unit);
    const std::string height = pageSide(document.height(), unit);
    const auto plain = [&](const std::string& side) { return side.substr(0, side.size() - unit.name.size()); };
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:inkscape=\"" +
           std::string(svg::kInkscapeNamespace) + "\" width=\"" + width + "\" height=\"" + height +
           "\" viewBox=\"0 0 " + plain(width) + " " + plain(height) + "\"/>\n";
}

}  // namespace

std::string writeSvg(const doc::Document& document, std::string_view rulerUnit) {
    if (const SvgSource* source = svgSource(document))
        return Splicer(document, SaveBase(document, *source), rulerUnit).write();
    const std::string_view unit = rulerUnit.empty() ? "pt" : rulerUnit;
    const Result<SvgDrawing> page = readSvg(emptyFile(document, unit));
    if (!page) return {};
    SvgSource source = *svgSource(*page->document);
    source.currentLayer = 0;
    return Splicer(document, SaveBase(document, source), unit).write();
}

}  // namespace quorvel::interchange
