// The recalculation from outside: two notifications that others send, and the action that a user plays or records. The
// host's own notification that it has started brings the information panel.
#include <cstring>

#include "hostapi/names.h"
#include "plugin/record/recalculate.h"
#include "plugin/shell/menus.h"
#include "plugin/shell/panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

struct NotifierRow {
    const char* name;
    const char* type;
    AINotifierHandle PluginGlobals::*handle;  // null: not kept
};

constexpr NotifierRow kNotifierRows[] = {
    {"", kTrackNotifier, &PluginGlobals::notifierTrack},
    {"", kRecalculateNotifier, &PluginGlobals::notifierRecalc},
    {"Quorvel App Started Notifier", kApplicationStartedNotifier, nullptr},
};

constexpr char kActionName[] = "Recalculate(Dimension_lines)";
constexpr std::int32_t kActionVersion = 1;

bool TellsApplicationStarted(const AINotifierMessage* message) {
    return message->type != nullptr && std::strcmp(message->type, kApplicationStartedNotifier) == 0;
}

}  // namespace

AIErr AddNotifiers() {
    PluginGlobals* globals = gGlobals;
    for (const NotifierRow& row : kNotifierRows) {
        AINotifierHandle notifier = nullptr;
        const AIErr result = sAINotifier->AddNotifier(globals->pluginRef, row.name, row.type, &notifier);
        if (result != kNoErr) return result;
        if (row.handle != nullptr) globals->*row.handle = notifier;
    }
    return kNoErr;
}

AIErr Notify(const AINotifierMessage* message) {
    PluginGlobals* globals = gGlobals;
    if (TellsApplicationStarted(message)) {
        globals->basicAtStart = message->d.basic;
        CreateInfoPanel(globals);
    }
    if (message->notifier == globals->notifierTrack) TrackMovedArt();
    if (message->notifier == globals->notifierRecalc) RecalculateDimensions();
    return kNoErr;
}

AIErr AddAction() {
    const SPPluginRef self = gGlobals->pluginRef;
    AIActionParamValueRef parameters = nullptr;
    // Without its action the plug-in is whole but for that: no failure.
    if (self == nullptr || sAIActionManager->NewActionParamValue(&parameters) != kNoErr) return kNoErr;
    sAIActionManager->RegisterActionEvent(self, kRecalculateAction, kActionName, kActionVersion, parameters);
    sAIActionManager->DeleteActionParamValue(parameters);
    return kNoErr;
}

// The undo step is named even when the user has refused.
AIErr DoAction(const AIActionMessage*) {
    RecalculateDimensions();
    SetUndoNames(ChooseText("再計算(寸法線)", "Recalculate(Dimension lines)"));
    return kNoErr;
}

}  // namespace quorvel
