#include "app/drawing_information.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "app/dimension_list.h"
#include "hostapi/record_additions.h"
#include "hostapi/records.h"
#include "interchange/svg/source.h"

namespace quorvel::app {

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kMillimetresPerPoint = kMillimetresPerInch / 72;

bool isNearly(double value, double expected) {
    // A viewBox is often rounded to whole pixels or tenths of a millimetre.
    constexpr double kTolerance = 5e-4;
    return std::abs(value - expected) <= kTolerance * expected;
}

std::string printed(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

// Tenths are plain enough: 1 : 2.5.
std::string plainRatio(double ratio) {
    constexpr double kLargest = 1e6;
    const double tenths = std::round(ratio * 10) / 10;
    return ratio > 1 && ratio <= kLargest && isNearly(ratio, tenths) ? printed(tenths) : "";
}

struct Counts {
    std::size_t paths = 0, compounds = 0, texts = 0;
};

// Art below the root, but for what is in the groups of records.
Counts countArt(const doc::Document& document, doc::ArtId root, const std::set<doc::ArtId>& records) {
    Counts counts;
    std::vector<doc::ArtId> open{root};
    while (!open.empty()) {
        const doc::Art& art = *document.find(open.back());
        open.pop_back();
        if (records.contains(art.id)) continue;
        counts.paths += art.kind == kPathArt ? 1 : 0;
        counts.compounds += art.kind == kCompoundPathArt ? 1 : 0;
        counts.texts += art.kind == kTextFrameArt ? 1 : 0;
        if (art.kind == kCompoundPathArt) continue;
        for (doc::ArtId child = art.firstChild; child != 0; child = document.find(child)->below) open.push_back(child);
    }
    return counts;
}

std::size_t countFilters(const svg::Tree& tree) {
    return static_cast<std::size_t>(std::ranges::count_if(tree.elements, [&](const svg::Element& element) {
        return !tree.file->styles().at(element.style).filter.empty();
    }));
}

void count(const interchange::SvgDrawing& drawing, DrawingInformation* information) {
    const doc::Document& document = *drawing.document;
    std::set<doc::ArtId> records;
    std::size_t dimensions = 0;
    std::size_t comments = 0;
    std::size_t frames = 0;
    for (const RecordedDimension& record : listDimensions(document)) {
        records.insert(record.group);
        const bool isMark = document.tag(record.group, kMarkTag) != nullptr;
        ++(record.kind == "frame" ? frames : isMark ? comments : dimensions);
    }
    Counts counts;
    for (const doc::LayerId layer : document.layers()) {
        const Counts own = countArt(document, document.layer(layer)->root, records);
        counts.paths += own.paths;
        counts.compounds += own.compounds;
        counts.texts += own.texts;
    }
    const interchange::SvgSource* source = interchange::svgSource(document);
    information->counts = {{"paths", counts.paths},
                           {"compounds", counts.compounds},
                           {"texts", counts.texts},
                           {"dimensions", dimensions},
                           {"comments", comments},
                           {"frames", frames},
                           {"filters", countFilters(source->tree)}};
}

// --- the words
// ----------------------------------------------------------------------------------------------------------------

struct Label {
    std::string_view name, english, japanese;
};

constexpr Label kLabels[] = {
    {"page", "page", "用紙"},
    {"unit", "user unit", "ユーザー単位"},
    {"scale", "scale, where a user unit is 1 mm", "縮尺 (ユーザー単位が 1 mm のとき)"},
    {"paths", "paths", "パス"},
    {"compounds", "compound paths", "複合パス"},
    {"texts", "texts", "テキスト"},
    {"dimensions", "dimensions", "寸法"},
    {"comments", "comments and balloons", "コメントと風船"},
    {"frames", "drawing frames", "図面枠"},
    {"filters", "elements with filters", "フィルターのある要素"},
    {"font", "font missing", "ないフォント"},
    {"warning", "warning", "警告"},
};

std::string labelled(std::string_view name, const std::string& value, Language language) {
    const Label& label = *std::ranges::find(kLabels, name, &Label::name);
    std::string line = "    ";
    line += language == Language::english ? label.english : label.japanese;
    return line + ": " + value + '\n';
}

std::string unitText(const UserUnit& unit) {
    std::string text = printed(unit.width);
    if (unit.width != unit.height) text += " x " + printed(unit.height);
    text += " mm";
    return unit.name.empty() || unit.name == "mm" ? text : text + " (" + unit.name + ")";
}

}  // namespace

UserUnit userUnitOf(double width, double height) {
    struct Named {
        const char* name;
        double size;
    };
    static constexpr Named kUnits[] = {{"mm", 1},
                                       {"cm", 10},
                                       {"in", kMillimetresPerInch},
                                       {"pt", kMillimetresPerPoint},
                                       {"pc", kMillimetresPerInch / 6},
                                       {"px", kMillimetresPerInch / 96},
                                       {"px90", kMillimetresPerInch / 90}};
    UserUnit unit{width, height, {}, {}};
    if (!isNearly(width, height)) return unit;
    const auto* named = std::ranges::find_if(kUnits, [&](const Named& one) { return isNearly(width, one.size); });
    if (named != std::end(kUnits)) {
        unit.name = named->name;
        return unit;
    }
    if (const std::string less = plainRatio(1 / width); !less.empty()) unit.scale = "1/" + less;
    if (const std::string more = plainRatio(width); !more.empty()) unit.scale = more + "/1";
    return unit;
}

DrawingInformation informationAbout(const interchange::SvgDrawing& drawing) {
    DrawingInformation information;
    const svg::Page& page = interchange::svgSource(*drawing.document)->tree.file->page();
    information.pageWidth = page.width * kMillimetresPerPoint;
    information.pageHeight = page.height * kMillimetresPerPoint;
    information.unit =
        userUnitOf(std::abs(page.map.a) * kMillimetresPerPoint, std::abs(page.map.d) * kMillimetresPerPoint);
    count(drawing, &information);
    information.missingFonts = drawing.missingFonts;
    information.warnings = drawing.warnings;
    return information;
}

std::string informationText(const std::string& file, const DrawingInformation& information, Language language) {
    std::string text = file + ":\n";
    text +=
        labelled("page", printed(information.pageWidth) + " x " + printed(information.pageHeight) + " mm", language);
    text += labelled("unit", unitText(information.unit), language);
    if (std::string scale = information.unit.scale; !scale.empty())
        text += labelled("scale", scale.replace(scale.find('/'), 1, " : "), language);
    for (const auto& [name, count] : information.counts) text += labelled(name, std::to_string(count), language);
    for (const std::string& font : information.missingFonts) text += labelled("font", font, language);
    for (const std::string& warning : warningSentences(information.warnings, language))
        text += labelled("warning", warning, language);
    return text;
}

}  // namespace quorvel::app
