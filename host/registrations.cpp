// What the plug-in has added: tools, menu items, timers, actions and panels, and the messages that each of them gets.
#include <algorithm>
#include <utility>

#include "host/host.h"
#include "host/host_state.h"

namespace quorvel::host {

// --- tools

namespace {

AIErr sendToTool(Host& host, AIToolHandle tool, const char* selector, RealPoint cursor, std::uint16_t modifiers) {
    const AIEvent event{modifiers};
    AIToolMessage message;
    message.tool = tool;
    message.cursor = cursor;
    message.event = &event;
    return host.send(kCallerTool, selector, &message.d);
}

}  // namespace

const std::vector<ToolRecord>& Host::tools() const { return impl_->tools; }

const ToolRecord* Host::toolByTitle(std::string_view titleUtf8) const {
    for (const ToolRecord& tool : impl_->tools)
        if (tool.title == titleUtf8) return &tool;
    return nullptr;
}

AIErr Host::selectTool(const ToolRecord& tool) {
    const AIToolHandle next = tool.handle;
    const AIToolHandle former = std::exchange(impl_->selectedTool, next);
    if (former != nullptr) sendToTool(*this, former, kSelectorDeselect, {}, 0);
    const AIErr result = sendToTool(*this, next, kSelectorSelect, {}, 0);
    if (callbacks.viewRepainted) callbacks.viewRepainted();
    return result;
}

const ToolRecord* Host::selectedTool() const {
    for (const ToolRecord& tool : impl_->tools)
        if (tool.handle == impl_->selectedTool) return &tool;
    return nullptr;
}

AIErr Host::sendTool(const char* selector, RealPoint cursor, std::uint16_t modifiers) {
    if (impl_->selectedTool == nullptr) return kBadParameterErr;
    return sendToTool(*this, impl_->selectedTool, selector, cursor, modifiers);
}

AIErr Host::editOptions(const ToolRecord& tool) { return sendToTool(*this, tool.handle, kSelectorEditOptions, {}, 0); }

std::unique_ptr<QuorvelSnapMessage> Host::snapReport(const ToolRecord& tool, RealPoint cursor) {
    auto message = std::make_unique<QuorvelSnapMessage>();
    message->tool = tool.handle;
    message->cursor = cursor;
    return send(kCallerSnap, kSelectorSnapReport, &message->d) == kNoErr ? std::move(message) : nullptr;
}

// --- menus, timers, actions, panels

namespace {

AIErr sendToItem(Host& host, std::string_view name, const char* selector, bool onlyWhenAsked) {
    for (const MenuItemRecord& item : host.menuItems()) {
        if (item.name != name) continue;
        if (onlyWhenAsked && !item.wantsUpdate) return kNoErr;
        AIMenuMessage message;
        message.menuItem = item.handle;
        return host.send(kCallerMenu, selector, &message.d);
    }
    return kBadParameterErr;
}

}  // namespace

const std::vector<MenuItemRecord>& Host::menuItems() const { return impl_->menuItems; }
AIErr Host::menuGo(std::string_view name) { return sendToItem(*this, name, kSelectorGo, false); }
AIErr Host::menuUpdate(std::string_view name) { return sendToItem(*this, name, kSelectorUpdate, true); }

const std::vector<TimerRecord>& Host::timers() const { return impl_->timers; }

AIErr Host::tick() {
    AIErr first = kNoErr;
    const std::vector<TimerRecord> due = impl_->timers;
    for (const TimerRecord& timer : due) {
        AITimerMessage message;
        message.timer = timer.handle;
        const AIErr result = send(kCallerTimer, kSelectorGo, &message.d);
        if (first == kNoErr) first = result;
    }
    return first;
}

const std::vector<ActionRecord>& Host::actions() const { return impl_->actions; }

AIErr Host::playAction(std::string_view event) {
    const auto named = [&](const ActionRecord& one) { return one.event == event; };
    if (std::none_of(impl_->actions.begin(), impl_->actions.end(), named)) return kBadParameterErr;
    const std::string name(event);
    AIActionMessage message;
    message.event = name.c_str();
    return send(kCallerAction, kSelectorDoAction, &message.d);
}

const std::vector<PanelRecord>& Host::panels() const { return impl_->panels; }

// A call back into the plug-in that is no message: it acquires no suites.
bool Host::chooseFlyout(int item) {
    for (const PanelRecord& panel : impl_->panels) {
        const auto isItem = [item](const std::pair<int, std::string>& one) { return one.first == item; };
        if (std::none_of(panel.flyoutItems.begin(), panel.flyoutItems.end(), isItem)) continue;
        const AIPanelFlyoutProc proc = panel.flyoutProc;
        if (proc != nullptr) impl_->invokeGuarded([proc, item, handle = panel.handle] { proc(handle, item); });
        return true;
    }
    return false;
}

void Host::setTheme(const Theme& theme) { impl_->theme = theme; }

void Host::setCurrentPathStyle(const AIPathStyle& style) { impl_->currentStyle = style; }

PanelRecord* HostState::panel(AIPanelRef handle) {
    for (PanelRecord& record : panels)
        if (record.handle == handle) return &record;
    return nullptr;
}

void HostState::destroyPanel(AIPanelRef handle) {
    const PanelRecord* record = panel(handle);
    if (record == nullptr) return;
    const auto place = record - panels.data();
    void* const window = record->window;
    panels.erase(panels.begin() + place);
    panelFlyouts.erase(panelFlyouts.begin() + place);
    if (window != nullptr && host.callbacks.destroyPanelWindow) host.callbacks.destroyPanelWindow(window);
}

}  // namespace quorvel::host
