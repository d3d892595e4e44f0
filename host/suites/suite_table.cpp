// The records behind the catalogue. Suites that no caller needs can be acquired too: empty records with one slot that
// refuses.
#include <array>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/host_state.h"
#include "hostapi/catalogue.h"

namespace quorvel::host {

namespace {

struct EmptySuite {
    AIErr (*Refuse)();
};

SuiteRecord empty() {
    static constexpr EmptySuite suite = refusingSuite<EmptySuite>();
    return recordOf(suite);
}

using RecordFunction = SuiteRecord (*)();

struct Offer {
    int row;
    RecordFunction record;
};

template <typename Suite>
constexpr Offer offer(RecordFunction record) {
    return {SuiteRow<Suite>(), record};
}

constexpr Offer kOffers[] = {
    offer<SPAccessSuite>(accessSuite),
    offer<AIPluginSuite>(pluginSuite),
    offer<AIRealMathSuite>(realMathSuite),
    offer<AIArtSuite>(artSuite),
    offer<AIUIThemeSuite>(themeSuite),
    offer<AIPanelSuite>(panelSuite),
    offer<AIPanelFlyoutMenuSuite>(panelFlyoutMenuSuite),
    offer<AILayerSuite>(layerSuite),
    offer<AIUserSuite>(userSuite),
    offer<AIPathSuite>(pathSuite),
    offer<AIPathStyleSuite>(pathStyleSuite),
    offer<AIDocumentViewSuite>(documentViewSuite),
    offer<AITransformArtSuite>(transformArtSuite),
    offer<AITextFrameSuite>(textFrameSuite),
    offer<AIFontSuite>(fontSuite),
    offer<AIATEPaintSuite>(paintSuite),
    offer<ATECharFeaturesSuite>(charFeaturesSuite),
    offer<ATEParaFeaturesSuite>(paraFeaturesSuite),
    offer<ATETextRangeSuite>(textRangeSuite),
    offer<AIUndoSuite>(undoSuite),
    offer<AITagSuite>(tagSuite),
    offer<AIRandomSuite>(randomSuite),
    offer<AIMenuSuite>(menuSuite),
    offer<AIToolSuite>(toolSuite),
    offer<AITimerSuite>(timerSuite),
    offer<AINotifierSuite>(notifierSuite),
    offer<AIActionManagerSuite>(actionManagerSuite),
    offer<AIUnicodeStringSuite>(unicodeStringSuite),
    offer<AIArtQuerySuite>(artQuerySuite),
    offer<AIDimensionSuite>(dimensionSuite),
};

// By row of the catalogue.
constexpr std::array<RecordFunction, kSuiteCount> kRecords = [] {
    std::array<RecordFunction, kSuiteCount> records{};
    records.fill(empty);
    for (const Offer& one : kOffers) records[one.row] = one.record;
    return records;
}();

bool isOffered(const SuiteEntry& suite) {
    const HostState* host = runningHost();
    if (host == nullptr) return true;
    if (host->options.failSuite == suite.name) return false;
    return host->options.offerArtQuery || std::string_view(suite.name) != kSuiteKey<AIArtQuerySuite>.name;
}

// Each name has one row. Every message acquires and releases the whole table, so that looking through it for each row
// would be most of what a small message costs.
const std::unordered_map<std::string_view, int>& rowsByName() {
    static const std::unordered_map<std::string_view, int> rows = [] {
        std::unordered_map<std::string_view, int> made;
        for (int i = 0; i < kSuiteCount; ++i) made.emplace(kSuiteCatalogue[i].name, i);
        return made;
    }();
    return rows;
}

}  // namespace

int suiteRow(std::string_view name, std::int32_t version) {
    const auto found = rowsByName().find(name);
    return found != rowsByName().end() && kSuiteCatalogue[found->second].version == version ? found->second : -1;
}

const void* findSuite(std::string_view name, std::int32_t version, std::size_t* size) {
    const int row = suiteRow(name, version);
    if (row < 0 || !isOffered(kSuiteCatalogue[row])) return nullptr;
    const SuiteRecord suite = kRecords[row]();
    if (size != nullptr) *size = suite.size;
    return suite.record;
}

std::vector<std::pair<std::string, std::int32_t>> offeredSuites() {
    std::vector<std::pair<std::string, std::int32_t>> suites;
    for (const SuiteEntry& suite : kSuiteCatalogue)
        if (isOffered(suite)) suites.emplace_back(suite.name, suite.version);
    return suites;
}

}  // namespace quorvel::host
