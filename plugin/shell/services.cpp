// The services that all tools share: ending a step, naming what can be undone, the cursor's shape, the beep, the size
// of a pixel, and texts on their way to the host.
#include "plugin/shell/services.h"

#include <iterator>

#include "platform/system.h"
#include "platform/text.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

constexpr std::int32_t kTitleSize = 256;
constexpr std::int32_t kPlainCursor = 16102;

// Indexed by SnapKind.
constexpr std::int32_t kSnapCursors[] = {kPlainCursor, 16104, 16105, 16106, 16107, 16108, 16109, 16110};

std::int32_t CodePageSize(std::string_view bytes) { return static_cast<std::int32_t>(bytes.size()); }

// The suffix of a Japanese name, or the prefix of an English one.
std::string UndoName(std::string_view base, const char* japaneseSuffix, const char* englishPrefix) {
    if (gGlobals->language != kJapanese) return englishPrefix + std::string(base);
    return std::string(base) + ToCodePage(japaneseSuffix);
}

}  // namespace

void CommitCursor(PluginGlobals* globals) {
    ToolState& live = globals->liveState;
    live.endPoint = live.cursorPoint;
    live.toolStep = 0;
    live.cursorPoint = RealPoint{};
    live.cursorModifiers = 0;
}

void NameUndoForTool(AIToolHandle tool) {
    sAIUndo->UndoChanges();
    char title[kTitleSize] = "";
    sAITool->GetToolTitle(tool, title, kTitleSize);
    std::string base = title;
    // Case-sensitive and byte by byte: an English title keeps its "Tool".
    const std::string word = ChooseText("ツール", "tool");
    if (const std::size_t at = base.find(word); at != std::string::npos) base.erase(at, word.size());
    SetUndoNames(base);
}

void SetUndoNames(std::string_view undoBase) {
    const std::string undo = UndoName(undoBase, "の取り消し", "Undo ");
    const std::string redo = UndoName(undoBase, "のやり直し", "Redo ");
    sAIUndo->SetUndoTextUS(HostString(undo), HostString(redo));
}

bool ReachModule() {
    if (sSPAccess == nullptr) return false;
    SPAccessRef access = nullptr;
    SPPlatformModule module = nullptr;
    if (sSPAccess->GetPluginAccess(gGlobals->pluginRef, &access) != kNoErr) return false;
    if (sSPAccess->GetAccessModule(access, &module) != kNoErr) return false;
    gModule = module;
    return true;
}

void SetToolCursor(std::int32_t cursorId) {
    if (!ReachModule()) return;
    platform::SetCursor(platform::LoadCursorResource(gModule, cursorId));
}

std::int32_t CursorForSnapKind(std::int16_t kind) {
    return kind > 0 && kind < static_cast<int>(std::size(kSnapCursors)) ? kSnapCursors[kind] : kPlainCursor;
}

void Beep() { platform::MessageBeep(0); }

void EndRunWithBeep(PluginGlobals* globals) {
    ContextBracket(globals);
    Beep();
}

double ViewZoom() {
    AIDocumentViewHandle view = nullptr;
    float zoom = 1.0F;
    if (sAIDocumentView->GetNthDocumentView(0, &view) != kNoErr || view == nullptr) return 1.0;
    if (sAIDocumentView->GetDocumentViewZoom(view, &zoom) != kNoErr) return 1.0;
    return zoom;
}

double PixelSize() {
    const double zoom = ViewZoom();
    return zoom > 0 ? 1.0 / zoom : -zoom;
}

std::string ToCodePage(std::string_view utf8) { return platform::FromUtf8(utf8, platform::kCodePageJapanese); }

std::string ChooseText(const char* japanese, const char* english) {
    return ToCodePage(gGlobals->language != kJapanese ? english : japanese);
}

AIUnicodeStringRef HostString(std::string_view bytes) {
    AIUnicodeStringRef string = nullptr;
    const AIErr result =
        sAIUnicodeString->FromCodePage(bytes.data(), CodePageSize(bytes), platform::kCodePageJapanese, &string);
    return result == kNoErr ? string : nullptr;
}

}  // namespace quorvel
