// What the host sends: the callers, the selectors and the message records that PluginMain is given with them. Each
// record begins with the four words of SPMessageData.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

struct SPBasicSuite;

constexpr char kCallerAccess[] = "SP Access";
constexpr char kCallerInterface[] = "SP Interface";
constexpr char kCallerMenu[] = "AI Menu";
constexpr char kCallerTool[] = "AI Tool";
constexpr char kCallerTimer[] = "AI Timer";
constexpr char kCallerNotifier[] = "AI Notifier";
constexpr char kCallerAction[] = "Action Manager";

constexpr char kSelectorReload[] = "Reload";
constexpr char kSelectorUnload[] = "Unload";
constexpr char kSelectorStartup[] = "Startup";
constexpr char kSelectorAbout[] = "About";
constexpr char kSelectorShutdown[] = "Shutdown";
constexpr char kSelectorGo[] = "AI Go";
constexpr char kSelectorUpdate[] = "AI Update";
constexpr char kSelectorEditOptions[] = "AI Edit Options";
constexpr char kSelectorTrackCursor[] = "AI Track Cursor";
constexpr char kSelectorMouseDown[] = "AI Mouse Down";
constexpr char kSelectorMouseDrag[] = "AI Mouse Drag";
constexpr char kSelectorMouseUp[] = "AI Mouse Up";
constexpr char kSelectorSelect[] = "AI Select";
constexpr char kSelectorDeselect[] = "AI Deselect";
constexpr char kSelectorNotify[] = "AI Notify";
constexpr char kSelectorDoAction[] = "Do Action";

struct SPMessageData {
    std::int32_t check = 0;
    SPPluginRef self = nullptr;
    void* globals = nullptr;  // kept by the host between the calls
    const SPBasicSuite* basic = nullptr;
};

struct AIEvent {
    std::uint16_t modifiers = 0;
};

struct AIToolMessage {
    SPMessageData d;
    AIToolHandle tool = nullptr;
    RealPoint cursor;
    float pressure = 0;
    const AIEvent* event = nullptr;
};

struct AIMenuMessage {
    SPMessageData d;
    AIMenuItemHandle menuItem = nullptr;
};

struct AITimerMessage {
    SPMessageData d;
    AITimerHandle timer = nullptr;
};

struct AINotifierMessage {
    SPMessageData d;
    AINotifierHandle notifier = nullptr;
    const char* type = nullptr;
};

struct AIActionMessage {
    SPMessageData d;
    const char* event = nullptr;
    AIActionParamValueRef parameters = nullptr;
};

// A message of our own host: sets one field of the settings by its key in the preference file, as scripts do.
constexpr char kCallerSettings[] = "Quorvel Settings";
constexpr char kSelectorSetField[] = "Set Field";

struct QuorvelSettingMessage {
    SPMessageData d;
    const char* key = nullptr;
    const char* value = nullptr;  // system code page; the empty text empties a text field, null only asks for the key
    AIBoolean accepted = 0;       // set by the plug-in: the key is known
};

// A message of our own host: what each search of a tool's chain finds at a point, the tool standing at its first step.
// Nothing changes.
constexpr char kCallerSnap[] = "Quorvel Snap";
constexpr char kSelectorSnapReport[] = "Report";
constexpr std::int32_t kSnapReportCells = 5, kSnapReportRows = 16;

struct QuorvelSnapRow {
    const char* search = nullptr;   // "anchor", "intersection", ...
    const char* setting = nullptr;  // key of its switch; null: always on
    AIBoolean on = 0;               // its switch is on
    AIBoolean now = 0;              // the tool runs it at this step
    AIBoolean wins = 0;             // it is the one that moves the cursor
    std::int16_t kind = 0;          // what it finds when it runs alone: the snap kind, 0 for nothing
    RealPoint point;
    std::int16_t cellCount = 0;
    AIArtHandle arts[kSnapReportCells] = {};
    std::int16_t indices[kSnapReportCells] = {};
};

struct QuorvelSnapMessage {
    SPMessageData d;
    AIToolHandle tool = nullptr;
    RealPoint cursor;
    std::int32_t rowCount = 0;  // set by the plug-in; 0 for a tool without a chain
    QuorvelSnapRow rows[kSnapReportRows];
};

using PluginMainProc = AIErr (*)(const char* caller, const char* selector, void* message);

}  // namespace quorvel
