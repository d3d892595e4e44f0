// The suites between the plug-in and its user: the view, alerts and progress, the ruler's unit, undo, panels with their
// flyouts, and the theme.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- view

AIErr getNthDocumentView(std::int32_t index, AIDocumentViewHandle* view) {
    require(index == 0 && view != nullptr);
    const HostState& host = theHost();
    *view = host.document != nullptr ? makeHandle<AIDocumentViewHandle>(1, host.documentSerial) : nullptr;
    return kNoErr;
}

const View& viewOf(AIDocumentViewHandle handle) {
    theDocument();
    numberOf(handle, theHost().documentSerial);
    return theHost().view;
}

AIErr getDocumentViewZoom(AIDocumentViewHandle view, float* zoom) {
    deref(zoom) = viewOf(view).zoom;
    return kNoErr;
}

AIErr getDocumentViewCenter(AIDocumentViewHandle view, RealPoint* centre) {
    deref(centre) = viewOf(view).centre;
    return kNoErr;
}

AIErr artworkPointToViewPoint(AIDocumentViewHandle view, const RealPoint* artwork, AIPoint* viewPoint) {
    viewOf(view);
    deref(viewPoint) = theHost().host.toView(deref(artwork));
    return kNoErr;
}

// --- user

AIErr errorAlert(AIUnicodeStringRef text) {
    const std::string shown = utf8Of(text);
    if (const auto& callback = theHost().host.callbacks.errorAlert) callback(shown);
    return kNoErr;
}

AIBoolean yesNoAlert(AIUnicodeStringRef text) {
    const std::string asked = utf8Of(text);
    const auto& callback = theHost().host.callbacks.yesNoAlert;
    return callback && callback(asked);
}

AIErr setProgress(std::int32_t current, std::int32_t maximum) {
    if (const auto& callback = theHost().host.callbacks.progress) callback(current, maximum);
    return kNoErr;
}

AIErr formatWithRulerUnit(float points, std::int32_t precision, char* text, std::int32_t size) {
    require(precision >= -1);
    copyText(theHost().host.formatWithRulerUnit(points, precision), text, size);
    return kNoErr;
}

// --- undo

AIErr undoChanges() {
    HostState& host = theHost();
    require(host.depth > 0);
    if (host.document != nullptr && host.document->inTransaction()) host.document->rollback();
    return kNoErr;
}

AIErr setUndoText(AIUnicodeStringRef undo, AIUnicodeStringRef redo) {
    const std::string undoName = utf8Of(undo), redoName = utf8Of(redo);
    HostState& host = theHost();
    require(host.depth > 0);
    host.undoName = undoName;
    host.redoName = redoName;
    host.lastUndoName = undoName;
    return kNoErr;
}

// --- panels

PanelRecord& panelOf(AIPanelRef handle) {
    numberOf(handle);
    PanelRecord* panel = theHost().panel(handle);
    require(panel != nullptr, kStaleHandleErr);
    return *panel;
}

FlyoutMenu& flyoutOf(AIPanelFlyoutMenuRef handle) {
    const std::uint32_t number = numberOf(handle);
    std::vector<FlyoutMenu>& menus = theHost().flyouts;
    const auto found =
        std::find_if(menus.begin(), menus.end(), [&](const FlyoutMenu& menu) { return menu.number == number; });
    require(found != menus.end(), kStaleHandleErr);
    return *found;
}

AIErr createPanel(SPPluginRef plugin, const char* identifier, AIUnicodeStringRef title, std::int32_t stateCount,
                  AIPanelSize minimum, AIPanelFlyoutMenuRef flyout, AIPanelRef* panel) {
    requirePlugin(plugin);
    require(identifier != nullptr && panel != nullptr && stateCount >= 1);
    HostState& host = theHost();
    require(!host.fails("panel"), kRefusedErr);
    PanelRecord record;
    record.identifier = identifier;
    record.title = utf8Of(title);
    record.minimum = minimum;
    if (flyout != nullptr) record.flyoutItems = flyoutOf(flyout).items;
    record.handle = makeHandle<AIPanelRef>(++host.panelsMade);
    if (host.host.callbacks.createPanelWindow) record.window = host.host.callbacks.createPanelWindow(record);
    host.panels.push_back(record);
    host.panelFlyouts.push_back(flyout);
    *panel = record.handle;
    return kNoErr;
}

AIErr destroyPanel(AIPanelRef panel) {
    panelOf(panel);
    theHost().destroyPanel(panel);
    return kNoErr;
}

AIErr panelIsShown(AIPanelRef panel, AIBoolean* shown) {
    deref(shown) = panelOf(panel).shown;
    return kNoErr;
}

AIErr showPanel(AIPanelRef handle, AIBoolean shown) {
    PanelRecord& panel = panelOf(handle);
    if (panel.shown == (shown != 0)) return kNoErr;
    panel.shown = shown != 0;
    const PanelRecord told = panel;  // whoever is told may add or destroy panels
    if (const auto& callback = theHost().host.callbacks.panelShown) callback(told);
    return kNoErr;
}

AIErr getPlatformWindow(AIPanelRef panel, AIPlatformWindow* window) {
    deref(window) = panelOf(panel).window;
    return kNoErr;
}

AIErr setFlyoutMenuProc(AIPanelRef panel, AIPanelFlyoutProc proc) {
    panelOf(panel).flyoutProc = proc;
    return kNoErr;
}

AIErr createFlyoutMenu(AIPanelFlyoutMenuRef* menu) {
    require(menu != nullptr);
    HostState& host = theHost();
    host.flyouts.push_back({++host.flyoutsMade, {}});
    *menu = makeHandle<AIPanelFlyoutMenuRef>(host.flyoutsMade);
    return kNoErr;
}

AIErr destroyFlyoutMenu(AIPanelFlyoutMenuRef menu) {
    const std::uint32_t number = flyoutOf(menu).number;
    std::erase_if(theHost().flyouts, [number](const FlyoutMenu& one) { return one.number == number; });
    return kNoErr;
}

AIErr insertFlyoutItem(AIPanelFlyoutMenuRef menu, std::int32_t item, AIUnicodeStringRef text) {
    FlyoutMenu& flyout = flyoutOf(menu);
    flyout.items.emplace_back(item, utf8Of(text));
    HostState& host = theHost();
    for (std::size_t i = 0; i < host.panels.size(); ++i)
        if (host.panelFlyouts[i] == menu) host.panels[i].flyoutItems = flyout.items;
    return kNoErr;
}

// --- theme

AIErr getUIThemeColor(std::int32_t component, float colour[4]) {
    require(colour != nullptr && (component == kThemeBackground || component == kThemeText));
    const Theme& theme = theHost().theme;
    std::copy_n(component == kThemeBackground ? theme.background : theme.text, 4, colour);
    return kNoErr;
}

// All windows share one theme.
AIErr getThemeValue(AIPlatformWindow, std::int16_t* value) {
    deref(value) = theHost().theme.value;
    return kNoErr;
}

}  // namespace

SuiteRecord documentViewSuite() {
    static const AIDocumentViewSuite suite = [] {
        auto s = refusingSuite<AIDocumentViewSuite>();
        s.GetNthDocumentView = slot<getNthDocumentView>;
        s.GetDocumentViewZoom = slot<getDocumentViewZoom>;
        s.GetDocumentViewCenter = slot<getDocumentViewCenter>;
        s.ArtworkPointToViewPoint = slot<artworkPointToViewPoint>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord userSuite() {
    static const AIUserSuite suite = [] {
        auto s = refusingSuite<AIUserSuite>();
        s.ErrorAlert = slot<errorAlert>;
        s.YesNoAlert = booleanSlot<yesNoAlert>;
        s.SetProgress = slot<setProgress>;
        s.FormatWithRulerUnit = slot<formatWithRulerUnit>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord undoSuite() {
    static const AIUndoSuite suite = [] {
        auto s = refusingSuite<AIUndoSuite>();
        s.UndoChanges = slot<undoChanges>;
        s.SetUndoTextUS = slot<setUndoText>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord panelSuite() {
    static const AIPanelSuite suite = [] {
        auto s = refusingSuite<AIPanelSuite>();
        s.Create = slot<createPanel>;
        s.Destroy = slot<destroyPanel>;
        s.IsShown = slot<panelIsShown>;
        s.Show = slot<showPanel>;
        s.GetPlatformWindow = slot<getPlatformWindow>;
        s.SetFlyoutMenuProc = slot<setFlyoutMenuProc>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord panelFlyoutMenuSuite() {
    static const AIPanelFlyoutMenuSuite suite = [] {
        auto s = refusingSuite<AIPanelFlyoutMenuSuite>();
        s.Create = slot<createFlyoutMenu>;
        s.Destroy = slot<destroyFlyoutMenu>;
        s.InsertItem = slot<insertFlyoutItem>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord themeSuite() {
    static const AIUIThemeSuite suite = [] {
        auto s = refusingSuite<AIUIThemeSuite>();
        s.GetUIThemeColor = slot<getUIThemeColor>;
        s.GetThemeValue = slot<getThemeValue>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
