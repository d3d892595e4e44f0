// Start-up and shutdown: the record gets its defaults and the user's settings, then the host gets the tools, the
// notifiers, the menus, the timer and the action. At the end the settings are written and the panel is taken down.
#include "plugin/shell/startup.h"

#include <cstdio>

#include "platform/dialog.h"
#include "platform/system.h"
#include "plugin/geometry/bezier.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/shell/menus.h"
#include "plugin/shell/suites.h"
#include "plugin/shell/tools.h"

namespace quorvel {

PluginGlobals* gGlobals = nullptr;
const SPBasicSuite* gBasic = nullptr;
SPPlatformModule gModule = nullptr;

namespace {

constexpr std::int32_t kWantedOption = 2;
constexpr char kProductName[] = "Quorvel";
constexpr char kProductVersion[] = "4.5.1.3";
constexpr std::int16_t kDrawnIdleStep = -1;

AIErr AddPluginOption(SPPluginRef self) {
    // The rows before the AI User Suite may be missing without an error of their own.
    if (sAIPlugin == nullptr) return kSuiteNotFoundErr;
    std::int32_t options = 0;
    const AIErr result = sAIPlugin->GetPluginOptions(self, &options);
    if (result != kNoErr) return result;
    return sAIPlugin->SetPluginOptions(self, options | kWantedOption);
}

void ClearToolStates(PluginGlobals* globals) {
    globals->liveState = ToolState{};
    globals->drawnState = ToolState{};
    globals->drawnState.toolStep = kDrawnIdleStep;
    globals->hitKind = kSnapNothing;
}

// The block came zeroed; what is left are the words whose empty value is another one.
void InitShellWords(PluginGlobals* globals, SPPluginRef self) {
    ClearToolStates(globals);
    globals->pluginRef = self;
}

void InitProduct(PluginGlobals* globals) {
    std::snprintf(globals->productName, sizeof globals->productName, "%s", kProductName);
    std::snprintf(globals->productVersion, sizeof globals->productVersion, "%s", kProductVersion);
    globals->oldmode = 0;
    globals->language = kJapanese;
}

// They stay when a later one fails: the shutdown frees what is there.
AIErr AllocateChainBuffers(PluginGlobals* globals) {
    for (ChainBuffer** buffer : {&globals->workBufferA, &globals->workBufferB, &globals->workBufferC}) {
        *buffer = static_cast<ChainBuffer*>(platform::AllocateZeroed(kChainBlockSize));
        if (*buffer == nullptr && platform::LastError() != 0) return kOutOfMemoryErr;
    }
    return kNoErr;
}

void FreeChainBuffers(PluginGlobals* globals) {
    for (ChainBuffer** buffer : {&globals->workBufferA, &globals->workBufferB, &globals->workBufferC}) {
        if (*buffer != nullptr) platform::FreeZeroed(*buffer);
        *buffer = nullptr;
    }
}

void TakeDownPanel(PluginGlobals* globals) {
    if (globals->infoPanel != nullptr) {
        // Whatever the host still says of its window: what listens there must not outlive the record of state.
        if (globals->panelWindow != nullptr) platform::DestroyPanel(globals->panelWindow);
        if (sAIPanel != nullptr) sAIPanel->Destroy(globals->infoPanel);
        globals->panelWindow = nullptr;
        globals->infoPanel = nullptr;
    }
    if (globals->infoFlyout != nullptr) {
        if (sAIPanelFlyoutMenu != nullptr) sAIPanelFlyoutMenu->Destroy(globals->infoFlyout);
        globals->infoFlyout = nullptr;
    }
}

}  // namespace

void ClearSnapCells(SnapCell* cells, int count) {
    for (int i = 0; i < count; ++i) cells[i] = SnapCell{};
}

void ContextBracket(PluginGlobals* globals) {
    ClearToolStates(globals);
    if (globals->workBufferA != nullptr) globals->workBufferA->count = 0;
    if (globals->workBufferB != nullptr) globals->workBufferB->count = 0;
}

AIErr StartUp(PluginGlobals* globals, SPPluginRef self) {
    if (const AIErr result = AddPluginOption(self); result != kNoErr) return result;
    InitShellWords(globals, self);
    StoreDefaults(globals);
    ClearScheduleBlock(&globals->prefs);
    InitProduct(globals);
    if (const AIErr result = AllocateChainBuffers(globals); result != kNoErr) return result;
    BuildBezierBasisTables(&globals->bezierTables);
    // Brings the language in effect, so everything that has a text comes after it. A missing file is the first run.
    ReadPrefsFile(globals, nullptr);
    for (AIErr (*add)() : {AddTools, AddNotifiers, AddMenus, AddTimer, AddAction}) {
        if (const AIErr result = add(); result != kNoErr) return result;
    }
    return kNoErr;
}

void ShutDown(PluginGlobals* globals) {
    FreeChainBuffers(globals);
    // There is nobody left to tell when it cannot be written.
    WritePrefsFile(globals, nullptr);
    ForgetSettingsOnFile(globals);
    TakeDownPanel(globals);
}

}  // namespace quorvel
