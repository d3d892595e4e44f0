// All suites that the host offers, by name and version. Those that no caller needs are there to be acquired: empty
// records with one slot that refuses.
#include <array>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

struct EmptySuite {
    AIErr (*Refuse)();
};

SuiteRecord empty() {
    static constexpr EmptySuite suite = refusingSuite<EmptySuite>();
    return recordOf(suite);
}

struct Row {
    std::string_view name;
    std::int32_t version;
    SuiteRecord (*record)() = empty;
};

constexpr Row kRows[] = {
    {"SP Blocks Suite", 2},
    {"SP Access Suite", 3, accessSuite},
    {"AI Plugin Suite", 4, pluginSuite},
    {"AI MdMemory Suite", 2},
    {"AI Real Math Suite", 2, realMathSuite},
    {"AI Art Suite", 16, artSuite},
    {"AI User Interface Theme Suite", 1, themeSuite},
    {"AI Panel Suite", 1, panelSuite},
    {"AI Panel Flyout Menu Suite", 1, panelFlyoutMenuSuite},
    {"AI Layer Suite", 12, layerSuite},
    {"AI User Suite", 10, userSuite},
    {"AI Runtime Suite", 11},
    {"AI Data Filter Suite", 7},
    {"AI Path Suite", 10, pathSuite},
    {"AI Path Style Suite", 12, pathStyleSuite},
    {"AI Matching Art Suite", 6},
    {"AI Document Suite", 13},
    {"AI Document View Suite", 11, documentViewSuite},
    {"AI Transform Art Suite", 2, transformArtSuite},
    {"AI Text Frame Suite", 3, textFrameSuite},
    {"AI Font Suite", 5, fontSuite},
    {"AI Foreign Object Suite", 3},
    {"AIATE Paint Suite", 2, paintSuite},
    {"ATE ApplicationPaint Suite", 1},
    {"ATE CompFont Suite", 1},
    {"ATE CompFontClass Suite", 1},
    {"ATE CompFontClassSet Suite", 1},
    {"ATE CompFontComponent Suite", 1},
    {"ATE CompFontSet Suite", 1},
    {"ATE GlyphRun Suite", 1},
    {"ATE GlyphRunsIterator Suite", 1},
    {"ATE MojiKumi Suite", 1},
    {"ATE MojiKumiSet Suite", 1},
    {"ATE TextFrame Suite", 101},
    {"ATE TextFramesIterator Suite", 1},
    {"ATE TextLine Suite", 1},
    {"ATE TextLinesIterator Suite", 1},
    {"ATE TextResources Suite", 1},
    {"ATE ApplicationTextResources Suite", 1},
    {"ATE DocumentTextResources Suite", 101},
    {"ATE ArrayApplicationPaintRef Suite", 1},
    {"ATE ArrayReal Suite", 1},
    {"ATE ArrayBool Suite", 1},
    {"ATE ArrayInteger Suite", 1},
    {"ATE ArrayLineCapType Suite", 1},
    {"ATE ArrayFigureStyle Suite", 1},
    {"ATE ArrayLineJoinType Suite", 1},
    {"ATE ArrayWariChuJustification Suite", 1},
    {"ATE ArrayStyleRunAlignment Suite", 1},
    {"ATE ArrayAutoKernType Suite", 1},
    {"ATE ArrayBaselineDirection Suite", 1},
    {"ATE ArrayLanguage Suite", 1},
    {"ATE ArrayFontCapsOption Suite", 1},
    {"ATE ArrayFontBaselineOption Suite", 1},
    {"ATE ArrayParagraphJustification Suite", 1},
    {"ATE ArrayArrayReal Suite", 1},
    {"ATE ArrayBurasagariType Suite", 1},
    {"ATE ArrayPreferredKinsokuOrder Suite", 1},
    {"ATE ArrayKinsokuRef Suite", 1},
    {"ATE ArrayMojiKumiRef Suite", 1},
    {"ATE ArrayMojiKumiSetRef Suite", 1},
    {"ATE ArrayTabStopsRef Suite", 1},
    {"ATE ArrayLeadingType Suite", 1},
    {"ATE ArrayFontRef Suite", 1},
    {"ATE ArrayGlyphID Suite", 1},
    {"ATE ArrayRealPoint Suite", 1},
    {"ATE ArrayRealMatrix Suite", 1},
    {"ATE CharFeatures Suite", 101, charFeaturesSuite},
    {"ATE CharInspector Suite", 101},
    {"ATE CharStyle Suite", 1},
    {"ATE CharStyles Suite", 1},
    {"ATE CharStylesIterator Suite", 1},
    {"ATE Find Suite", 101},
    {"ATE Font Suite", 1},
    {"ATE Glyph Suite", 1},
    {"ATE Glyphs Suite", 1},
    {"ATE GlyphsIterator Suite", 1},
    {"ATE Kinsoku Suite", 1},
    {"ATE KinsokuSet Suite", 1},
    {"ATE ParaFeatures Suite", 101, paraFeaturesSuite},
    {"ATE Paragraph Suite", 1},
    {"ATE ParagraphsIterator Suite", 1},
    {"ATE ParaInspector Suite", 101},
    {"ATE ParaStyle Suite", 1},
    {"ATE ParaStyles Suite", 1},
    {"ATE ParaStylesIterator Suite", 1},
    {"ATE Spell Suite", 101},
    {"ATE Stories Suite", 1},
    {"ATE Story Suite", 1},
    {"ATE TabStop Suite", 1},
    {"ATE TabStops Suite", 1},
    {"ATE TabStopsIterator Suite", 1},
    {"ATE TextRange Suite", 1, textRangeSuite},
    {"ATE TextRanges Suite", 1},
    {"ATE TextRangesIterator Suite", 1},
    {"ATE TextRunsIterator Suite", 1},
    {"ATE WordsIterator Suite", 1},
    {"AI Undo Suite", 6, undoSuite},
    {"AI Context Suite", 6},
    {"AI Preference Suite", 5},
    {"AI Hard Soft Suite", 4},
    {"AI Tag Suite", 3, tagSuite},
    {"AI Random Suite", 4, randomSuite},
    {"AI Menu Suite", 10, menuSuite},
    {"AI Tool Suite", 12, toolSuite},
    {"AI Timer Suite", 4, timerSuite},
    {"AI Notifier Suite", 3, notifierSuite},
    {"AI Action Manager Suite", 4, actionManagerSuite},
    {"AI File Path Suite", 3},
    {"AI Unicode String Suite", 7, unicodeStringSuite},
    {kArtQuerySuiteName, kArtQuerySuiteVersion, artQuerySuite},
    {kDimensionSuiteName, kDimensionSuiteVersion, dimensionSuite},
};

bool offered(const Row& row) {
    const HostState* host = runningHost();
    if (host == nullptr) return true;
    if (host->options.failSuite == row.name) return false;
    return host->options.offerArtQuery || row.name != kArtQuerySuiteName;
}

// Each name stands in the table once. Every message acquires and releases the whole table, so that looking through it
// for each row would be most of what a small message costs.
const std::unordered_map<std::string_view, int>& placesByName() {
    static const std::unordered_map<std::string_view, int> places = [] {
        std::unordered_map<std::string_view, int> made;
        for (std::size_t i = 0; i < std::size(kRows); ++i) made.emplace(kRows[i].name, static_cast<int>(i));
        return made;
    }();
    return places;
}

}  // namespace

int suitePlace(std::string_view name, std::int32_t version) {
    const auto found = placesByName().find(name);
    return found != placesByName().end() && kRows[found->second].version == version ? found->second : -1;
}

const void* findSuite(std::string_view name, std::int32_t version, std::size_t* size) {
    const int place = suitePlace(name, version);
    if (place < 0 || !offered(kRows[place])) return nullptr;
    const SuiteRecord suite = kRows[place].record();
    if (size != nullptr) *size = suite.size;
    return suite.record;
}

std::vector<std::pair<std::string, std::int32_t>> offeredSuites() {
    std::vector<std::pair<std::string, std::int32_t>> suites;
    for (const Row& row : kRows)
        if (offered(row)) suites.emplace_back(row.name, row.version);
    return suites;
}

}  // namespace quorvel::host
