// What the host knows while it runs: the plug-in, the drawing, what the plug-in has added, and what lives for the
// length of one message. The message pump and the suites' slots share it.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document/art_index.h"
#include "host/host.h"
#include "host/suites/suite_support.h"

namespace quorvel::fonts {
struct Font;
}

namespace quorvel::host {

struct TextRange {
    doc::ArtId frame = 0;
    std::uint16_t documentSerial = 0;
    std::int32_t start = 0, end = 0;           // UTF-16 units
    std::optional<doc::CharFeatures> pending;  // for what is inserted next, while the range is empty
};

struct ParaFeatures {
    float firstLineIndent = 0, startIndent = 0;
    ATEJustification justification = kJustifyLeft;
};

// Copies of texts, packed closely: a recalculation reads the records of all dimensions in one message. The settings in
// those records are long and mostly the same, so a long text that was kept lately is given again.
class MessageTexts {
  public:
    const char* keep(const std::string& text);

  private:
    static constexpr std::size_t kBlock = 1 << 16, kLong = 64;

    const char* add(const std::string& text);

    std::deque<std::vector<char>> blocks_;       // each reserved once, so that its texts stay where they are
    std::array<std::string_view, 64> recent_{};  // long ones by hash
};

// What slots give for the length of a message. A handle is the place in its list, from 1, with the generation.
struct MessageArena {
    std::uint16_t generation = 1;
    std::deque<std::vector<std::uint16_t>> strings;
    MessageTexts texts;
    std::deque<TextRange> ranges;
    std::deque<doc::CharFeatures> charFeatures;
    std::deque<ParaFeatures> paraFeatures;
    std::deque<AIColor> paints;
    std::vector<AIArtHandle> foundArt;

    void clear();
};

struct FlyoutMenu {
    std::uint32_t number = 0;
    std::vector<std::pair<int, std::string>> items;
};

struct HostState {
    explicit HostState(Host& itsHost, HostOptions itsOptions);

    // A call into the plug-in; false, and the user is told, when it throws.
    bool invokeGuarded(const std::function<void()>& call);
    // Runs the plug-in's function once. When it throws, the message's changes are dropped.
    AIErr callPlugin(const char* caller, const char* selector, SPMessageData* message);
    void beginMessage();
    void tryOut(const std::function<void()>& body);  // with all layers open; its changes are undone at its end
    std::vector<doc::ArtId> sendRebuild(const std::vector<doc::ArtId>& groups, double tolerance, bool isTrial,
                                        bool* isDone);
    void finishMessage();
    void sendQueued();
    AIErr sendNotification(const std::string& type);
    void queueArtChange();
    void dropRegistrations();
    void replaceDocument(std::unique_ptr<doc::Document> next);
    bool fails(std::string_view what) const { return options.failAdding == what; }
    PanelRecord* panel(AIPanelRef handle);
    void destroyPanel(AIPanelRef handle);

    Host& host;
    HostOptions options;

    PluginMainProc entry = nullptr;
    void* library = nullptr;  // null when the plug-in is linked in
    void* module = nullptr;
    void* globals = nullptr;
    std::int32_t pluginOptions = 0;
    std::map<int, int> held;  // acquisitions less releases, by the suite's row of the catalogue

    std::unique_ptr<doc::Document> document;
    std::unique_ptr<doc::ArtIndex> artIndex;
    std::uint16_t documentSerial = 0;
    std::uint32_t lastGroupNumber = 0;  // of the ids given to groups of this document
    std::uint64_t notifiedChange = 0;   // the document's change count when its changes were last told
    View view;
    std::string rulerUnit = "pt";
    AIPathStyle currentStyle;

    int depth = 0;    // messages that are running
    int sending = 0;  // not 0 while queued notifications are being sent
    std::deque<std::string> queued;
    std::string undoName, redoName, lastUndoName;
    MessageArena arena;
    std::mt19937_64 random;

    std::vector<ToolRecord> tools;
    std::vector<std::string> toolTitles;  // by tool, as the plug-in gave them
    AIToolHandle selectedTool = nullptr;
    std::vector<MenuItemRecord> menuItems;
    std::deque<std::string> menuGroups;  // a name once given stays where it is
    std::vector<NotifierRecord> notifiers;
    std::vector<TimerRecord> timers;
    std::vector<ActionRecord> actions;
    std::set<std::uint32_t> actionParameters;
    std::uint32_t actionParametersMade = 0;
    std::vector<PanelRecord> panels;
    std::vector<AIPanelFlyoutMenuRef> panelFlyouts;  // by panel
    std::uint32_t panelsMade = 0;
    std::vector<FlyoutMenu> flyouts;
    std::uint32_t flyoutsMade = 0;
    Theme theme;
};

struct Host::Impl : HostState {
    using HostState::HostState;
};

// --- for the slots -----------------------------------------------------------------------------------------------

HostState* runningHost();                  // null when there is none
void releaseHost(const HostState* state);  // it ends: another one may run
HostState& theHost();                      // refuses when there is none
doc::Document& theDocument();              // refuses when none is open
void requirePlugin(SPPluginRef plugin);

const doc::Art& artOf(AIArtHandle handle);
const doc::Layer& layerOf(AILayerHandle handle);
AIArtHandle artHandle(doc::ArtId id);  // null for 0
AILayerHandle layerHandle(doc::LayerId id);

// Where new art goes, with "above all" said as a place in the current layer. Refuses a hidden or locked layer.
struct Placement {
    AIPaintOrder order;
    doc::ArtId prep;
};
Placement openPlacement(std::int16_t placement, AIArtHandle prep);

// An item of one of the arena's lists by its handle.
template <typename Handle, typename Item>
Item& arenaItem(std::deque<Item>& list, Handle handle) {
    const std::uint32_t number = numberOf(handle, theHost().arena.generation);
    require(number <= list.size(), kStaleHandleErr);
    return list[number - 1];
}

template <typename Handle, typename Item>
Handle keepInArena(std::deque<Item>& list, Item item) {
    list.push_back(std::move(item));
    return makeHandle<Handle>(static_cast<std::uint32_t>(list.size()), theHost().arena.generation);
}

const fonts::Font& fontAt(std::uint32_t number);  // of a font's handle, from 1; refuses numbers behind the last

std::u16string utf16Of(AIUnicodeStringRef string);
std::string utf8Of(AIUnicodeStringRef string);
// Zero-terminated, cut to size - 1 bytes.
void copyText(std::string_view text, char* to, std::int32_t size);

// A change of the drawing. Outside of messages it is a step of its own.
template <typename Change>
auto changeDocument(Change change) {
    doc::Document& document = theDocument();
    if (document.inTransaction()) return change(document);
    document.begin();
    try {
        auto result = change(document);
        document.commit("Undo", "Redo");
        return result;
    } catch (...) {
        document.rollback();
        document.commit("Undo", "Redo");
        throw;
    }
}

// --- the suites by family; each is made once -----------------------------------------------------------------------

const SPBasicSuite& basicSuite();
SuiteRecord accessSuite();
SuiteRecord pluginSuite();
SuiteRecord realMathSuite();
SuiteRecord unicodeStringSuite();
SuiteRecord randomSuite();
SuiteRecord artSuite();
SuiteRecord layerSuite();
SuiteRecord pathSuite();
SuiteRecord pathStyleSuite();
SuiteRecord tagSuite();
SuiteRecord transformArtSuite();
SuiteRecord artQuerySuite();
SuiteRecord dimensionSuite();
SuiteRecord textFrameSuite();
SuiteRecord textRangeSuite();
SuiteRecord charFeaturesSuite();
SuiteRecord paraFeaturesSuite();
SuiteRecord paintSuite();
SuiteRecord fontSuite();
SuiteRecord documentViewSuite();
SuiteRecord userSuite();
SuiteRecord undoSuite();
SuiteRecord menuSuite();
SuiteRecord toolSuite();
SuiteRecord timerSuite();
SuiteRecord notifierSuite();
SuiteRecord actionManagerSuite();
SuiteRecord panelSuite();
SuiteRecord panelFlyoutMenuSuite();
SuiteRecord themeSuite();

// The suite's row of the catalogue; -1 when none has the name and version.
int suiteRow(std::string_view name, std::int32_t version);

}  // namespace quorvel::host
