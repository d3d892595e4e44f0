// The one door: every message of the host comes in here, with a caller and a selector that name it. The suites are held
// around it, one table says who handles it, and a failure becomes one alert. No exception gets out.
#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include "hostapi/dimensions.h"
#include "plugin/record/examine.h"
#include "plugin/record/recalculate.h"
#include "plugin/settings/about_dialog.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/shell/alert.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/menus.h"
#include "plugin/shell/property_list.h"
#include "plugin/shell/snap_report.h"
#include "plugin/shell/startup.h"
#include "plugin/shell/suites.h"
#include "plugin/shell/tools.h"

const quorvel::PropertyList PluginPropertyList = {
    16000,
    3,
    {{"ADBE", "kind", "SPEA"}, {"ADBE", "interface version", "2"}, {"ADBE", "entry point", "PluginMain"}},
};

namespace quorvel {
namespace {

bool IsEqual(const char* a, const char* b) { return gBasic->IsEqual(a, b) != 0; }

AIErr StartupStep(void* message) {
    SPMessageData* data = static_cast<SPMessageData*>(message);
    void* block = nullptr;
    const AIErr result = gBasic->AllocateBlock(sizeof(PluginGlobals), &block);
    gGlobals = block == nullptr ? nullptr : new (block) PluginGlobals{};
    data->globals = gGlobals;
    if (result != kNoErr) return result;
    if (gGlobals == nullptr) return kOutOfMemoryErr;
    return StartUp(gGlobals, data->self);
}

AIErr ShutdownStep(void* message) {
    ShutDown(gGlobals);
    gBasic->FreeBlock(gGlobals);
    gGlobals = nullptr;
    static_cast<SPMessageData*>(message)->globals = nullptr;
    return kNoErr;
}

AIErr AboutStep(void*) {
    AboutBox();
    return kNoErr;
}

AIErr SetFieldStep(void* message) {
    QuorvelSettingMessage* setting = static_cast<QuorvelSettingMessage*>(message);
    if (setting->key == nullptr) return kBadParameterErr;
    const bool asks = setting->value == nullptr;
    setting->accepted = asks ? SettingIsKnown(setting->key) : SetFieldByKey(gGlobals, setting->key, setting->value);
    return kNoErr;
}

AIErr SnapReportStep(void* message) { return SnapReport(static_cast<QuorvelSnapMessage*>(message)); }

AIErr RebuildStep(void* message) {
    QuorvelRebuildMessage* rebuild = static_cast<QuorvelRebuildMessage*>(message);
    std::optional<KeptState> kept;
    if (rebuild->isTrial && gGlobals->liveState.toolStep != 0) return kNoErr;
    if (rebuild->isTrial) kept.emplace(gGlobals);
    rebuild->isDone = true;
    for (std::int32_t i = 0; i < rebuild->count; ++i)
        rebuild->rebuilt[i] = RebuildDimension(rebuild->groups[i], rebuild->tolerance);
    return kNoErr;
}

AIErr FollowStep(void*) {
    FollowSelectedArt();
    return kNoErr;
}

AIErr ExamineStep(void* message) {
    QuorvelExamineMessage* examine = static_cast<QuorvelExamineMessage*>(message);
    const std::vector<DimensionEnd> ends = ExamineDimension(examine->group);
    examine->count = static_cast<std::int32_t>(ends.size());
    std::copy(ends.begin(), ends.end(), examine->ends);
    return kNoErr;
}

template <typename Message>
using MessageHandler = AIErr (*)(const Message* message);

template <typename Message, MessageHandler<Message> handler>
AIErr Call(void* message) {
    return handler(static_cast<const Message*>(message));
}

struct Route {
    const char* caller;
    const char* selector;
    AIErr (*handler)(void* message);
    bool needsGlobals = true;
};

const Route kRoutes[] = {
    {kCallerInterface, kSelectorStartup, StartupStep, false},
    {kCallerInterface, kSelectorAbout, AboutStep},
    {kCallerInterface, kSelectorShutdown, ShutdownStep},
    {kCallerMenu, kSelectorGo, Call<AIMenuMessage, MenuGo>},
    {kCallerMenu, kSelectorUpdate, Call<AIMenuMessage, MenuUpdate>},
    {kCallerTool, kSelectorEditOptions, Call<AIToolMessage, ToolEditOptions>},
    {kCallerTool, kSelectorTrackCursor, Call<AIToolMessage, ToolTrack>},
    {kCallerTool, kSelectorMouseDown, Call<AIToolMessage, ToolDown>},
    {kCallerTool, kSelectorMouseDrag, Call<AIToolMessage, ToolTrack>},
    {kCallerTool, kSelectorMouseUp, Call<AIToolMessage, ToolUp>},
    {kCallerTool, kSelectorSelect, Call<AIToolMessage, ToolSelect>},
    {kCallerTool, kSelectorDeselect, Call<AIToolMessage, ToolDeselect>},
    {kCallerTimer, kSelectorGo, Call<AITimerMessage, TimerGo>},
    {kCallerNotifier, kSelectorNotify, Call<AINotifierMessage, Notify>},
    {kCallerAction, kSelectorDoAction, Call<AIActionMessage, DoAction>},
    {kCallerSettings, kSelectorSetField, SetFieldStep},
    {kCallerSnap, kSelectorSnapReport, SnapReportStep},
    {kCallerDimensions, kSelectorRebuild, RebuildStep},
    {kCallerDimensions, kSelectorFollow, FollowStep},
    {kCallerDimensions, kSelectorExamine, ExamineStep},
};

// A message that nobody knows is no error: hosts send more than any plug-in reads.
AIErr RouteMessage(const char* caller, const char* selector, void* message) {
    for (const Route& route : kRoutes) {
        if (!IsEqual(caller, route.caller) || !IsEqual(selector, route.selector)) continue;
        if (route.needsGlobals && gGlobals == nullptr) return kNoErr;
        return route.handler(message);
    }
    return kNoErr;
}

// The border of the plug-in's own exceptions.
AIErr RouteGuarded(const char* caller, const char* selector, void* message) {
    try {
        return RouteMessage(caller, selector, message);
    } catch (const std::bad_alloc&) {
        return kOutOfMemoryErr;
    } catch (...) {
        return kBadParameterErr;
    }
}

// Around a purge of the plug-in's code the block of globals stays with the host, so neither hook has anything to save.
AIErr OnUnload(PluginGlobals*) { return kNoErr; }
AIErr OnReload(PluginGlobals*) { return kNoErr; }

AIErr AccessMessage(const char* selector, SPMessageData* data) {
    if (IsEqual(selector, kSelectorUnload)) {
        if (data->globals != nullptr) OnUnload(gGlobals);
        data->globals = gGlobals;
        return kNoErr;
    }
    if (IsEqual(selector, kSelectorReload)) {
        const AIErr result = data->globals != nullptr ? OnReload(gGlobals) : kNoErr;
        gGlobals = static_cast<PluginGlobals*>(data->globals);
        // Fresh code holds no suites, whatever the purged code counted.
        suiteUseCount = 0;
        return result;
    }
    return kNoErr;
}

}  // namespace
}  // namespace quorvel

extern "C" quorvel::AIErr PluginMain(const char* caller, const char* selector, void* message) {
    using namespace quorvel;
    SPMessageData* data = static_cast<SPMessageData*>(message);
    gBasic = data->basic;
    gGlobals = static_cast<PluginGlobals*>(data->globals);
    if (IsEqual(caller, kCallerAccess)) return AccessMessage(selector, data);

    AIErr result = AcquireSuites();
    if (result == kNoErr) result = RouteGuarded(caller, selector, message);
    AlertResult(result, caller, selector);
    ReleaseSuites();
    return result;
}
