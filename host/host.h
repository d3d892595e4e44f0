// The host: it loads the plug-in, offers it the suites, sends it messages and holds the open drawing. One message is
// one transaction: what it has changed becomes one undo step when it returns, and notifications that it caused are sent
// after it. One host exists in a process at a time, since suites are plain functions.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "document/document.h"
#include "hostapi/dimensions.h"
#include "hostapi/messages.h"
#include "hostapi/names.h"
#include "hostapi/suites.h"

namespace quorvel::host {

struct ToolRecord {
    AIToolHandle handle = nullptr;
    std::string name;     // system code page, as the plug-in gave it
    std::string title;    // UTF-8
    std::string tooltip;  // UTF-8
    int iconId = 0, darkIconId = 0;
    int number = 0;              // its place in the order of adding
    int group = 0, toolset = 0;  // the number of the tool that opened it
};

struct MenuItemRecord {
    AIMenuItemHandle handle = nullptr;
    std::string name, group, text;  // UTF-8
    bool wantsUpdate = false, checked = false;
};

struct NotifierRecord {
    AINotifierHandle handle = nullptr;
    std::string name, type;
};

struct TimerRecord {
    AITimerHandle handle = nullptr;
    std::string name;
    int period = 0;  // sixtieths of a second
};

struct ActionRecord {
    std::string event, localizedName;
};

struct PanelRecord {
    AIPanelRef handle = nullptr;
    std::string identifier, title;
    AIPanelSize minimum;
    bool shown = false;
    void* window = nullptr;
    AIPanelFlyoutProc flyoutProc = nullptr;
    std::vector<std::pair<int, std::string>> flyoutItems;  // number and text (UTF-8)
};

// What the plug-in's panel is to look like.
struct Theme {
    float background[4] = {1, 0.94f, 0.94f, 0.94f};  // alpha, red, green, blue, 0 to 1
    float text[4] = {1, 0, 0, 0};
    std::int16_t value = 0;  // nonzero for a dark theme
};

// What the program around the host does for it. Each may be left empty.
struct HostCallbacks {
    std::function<void(const std::string& text)> errorAlert;  // in the plug-in's own words
    std::function<void(const Error& error)> pluginFailed;     // it has thrown; its message is undone
    std::function<bool(const std::string& text)> yesNoAlert;
    std::function<void(int current, int maximum)> progress;
    std::function<void*(const PanelRecord& panel)> createPanelWindow;
    std::function<void(void* window)> destroyPanelWindow;
    std::function<void(const PanelRecord& panel)> panelShown;  // shown or hidden
    std::function<void()> viewRepainted;                       // zoom, scroll, a tool was selected, another document
    std::function<void(const std::string& undoName)> stepMade;
    std::function<void()> rangeRefused;  // a message drew beyond kLargestCoordinate and is undone
    // A tool has made a dimension; these of its points cannot follow any art.
    std::function<void(const std::vector<DimensionEnd>& ends)> pointsUnheld;
};

// What undo and redo of a step are called to the user, UTF-8.
struct StepName {
    std::string undo, redo;
};

struct View {
    float zoom = 1;                  // pixels per point
    RealPoint centre;                // the document point in the middle
    int width = 1000, height = 800;  // pixels
};

// Tests leave some of it out.
struct HostOptions {
    std::optional<std::uint64_t> seed = {};  // of the random numbers; from the system without it
    bool offerArtQuery = true;
    std::string failSuite = {};   // a suite that cannot be acquired
    std::string failAdding = {};  // "tool", "menu", "timer", "notifier", "block", "panel": these additions fail
};

class Host {
  public:
    explicit Host(HostOptions options = {});
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    HostCallbacks callbacks;

    // --- the plug-in ---------------------------------------------------------------------------------------------
    Status loadPlugin(const std::string& file);
    void attachPlugin(PluginMainProc entry, void* module);  // linked in, for tests
    AIErr startup();                                        // and "AI Application Started Notifier" when it succeeded
    AIErr about();
    AIErr unload();
    AIErr reload();
    AIErr shutdown();
    bool knowsField(std::string_view key);                        // is there a setting of this name?
    bool setField(std::string_view key, std::string_view value);  // a setting; bytes of the system code page

    // --- the drawing ---------------------------------------------------------------------------------------------
    void newDocument(float width, float height);
    void setDocument(std::unique_ptr<doc::Document> document, const std::string& rulerUnit);  // zoom 1
    void closeDocument();
    doc::Document* document() const;  // null when none is open
    View& view();
    void setZoom(float zoom);  // about the centre; the view is repainted
    void setCentre(RealPoint centre);
    AIPoint toView(RealPoint artwork) const;
    RealPoint toArtwork(AIPoint point) const;
    const std::string& rulerUnit() const;  // "mm", "cm", "in", "pt", "pc", "px", "H"
    void setRulerUnit(const std::string& unit);
    std::string formatWithRulerUnit(float points, int precision) const;

    // --- messages ------------------------------------------------------------------------------------------------
    const std::vector<ToolRecord>& tools() const;
    const ToolRecord* toolByTitle(std::string_view titleUtf8) const;
    AIErr selectTool(const ToolRecord& tool);  // Deselect to the former one, Select to this
    const ToolRecord* selectedTool() const;
    // kSelectorTrackCursor, kSelectorMouseDown, ... to the selected tool.
    AIErr sendTool(const char* selector, RealPoint cursor, std::uint16_t modifiers);
    AIErr editOptions(const ToolRecord& tool);
    const std::vector<MenuItemRecord>& menuItems() const;
    AIErr menuGo(std::string_view name);
    AIErr menuUpdate(std::string_view name);
    const std::vector<TimerRecord>& timers() const;
    AIErr tick();                         // one AI Go to each timer
    bool busy() const;                    // a message is running: wait with the next
    AIErr notify(std::string_view type);  // to each notifier of that type; later, when a message is running
    const std::vector<ActionRecord>& actions() const;
    AIErr playAction(std::string_view event);
    const std::vector<PanelRecord>& panels() const;
    bool chooseFlyout(int item);        // false when no panel has it
    void setTheme(const Theme& theme);  // light at first
    // What a new path of the host itself gets: at first a black stroke of 1 pt and no fill.
    void setCurrentPathStyle(const AIPathStyle& style);
    // What each search of the tool's chain finds at the point; null when the plug-in does not answer.
    std::unique_ptr<QuorvelSnapMessage> snapReport(const ToolRecord& tool, RealPoint cursor);
    // The art that a handle names, 0 when it is gone.
    doc::ArtId artOfHandle(AIArtHandle handle) const;
    // Rebuilds dimension groups without a question. tolerance: as in QuorvelRebuildMessage. The new group of each, in
    // their order; 0 where none was made.
    std::vector<doc::ArtId> rebuildDimensions(const std::vector<doc::ArtId>& groups, double tolerance);
    // The same on all layers, hidden and locked ones too, and undone again when inspect has seen it. The drawing, its
    // steps and the settings are as before. Nothing is done, and inspect not called, while a message or a tool runs.
    void tryRebuild(const std::vector<doc::ArtId>& groups, double tolerance,
                    const std::function<void(const std::vector<doc::ArtId>& rebuilt)>& inspect);
    // The host has moved the selection: dimensions of all kinds follow it, as one step.
    void followSelection();
    // The measured points of each group, with hidden and locked layers taken for others.
    std::vector<std::vector<DimensionEnd>> examineDimensions(const std::vector<doc::ArtId>& groups);
    // A message of our own making, as one transaction.
    AIErr send(const char* caller, const char* selector, SPMessageData* message);

    // --- steps ---------------------------------------------------------------------------------------------------
    // The host's own editing as one step; "Move" makes a step "Undo Move". False, and nothing has changed, when change
    // gives false or a message is running.
    bool edit(const std::string& name, const std::function<bool(doc::Document&)>& change);
    bool edit(const StepName& name, const std::function<bool(doc::Document&)>& change);
    bool undo();
    bool redo();
    // The name of what was done last, UTF-8: the one that a message gave its step, also when nothing came of it, or the
    // host's own. Empty behind a message that gave none, and behind undo and redo.
    const std::string& lastUndoName() const;
    int suitesHeld() const;  // acquisitions less releases

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The record of a suite by name and version; null when it is not offered. size: of the record in bytes.
const void* findSuite(std::string_view name, std::int32_t version, std::size_t* size = nullptr);
// Names and versions of all suites offered.
std::vector<std::pair<std::string, std::int32_t>> offeredSuites();

}  // namespace quorvel::host
