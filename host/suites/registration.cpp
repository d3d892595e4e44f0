// The suites by which the plug-in adds itself to the host: tools, menu items and groups, timers, notifiers and actions.
// What is added stays until the plug-in has been shut down.
#include <algorithm>
#include <cstring>

#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// The record that a handle names, in a list that only grows; the handle's number is its place.
template <typename Record, typename Handle>
Record& recordOfHandle(std::vector<Record>& records, Handle handle) {
    const std::uint32_t number = numberOf(handle);
    require(number <= records.size(), kStaleHandleErr);
    return records[number - 1];
}

template <typename Handle, typename Record>
Handle nextHandle(const std::vector<Record>& records) {
    return makeHandle<Handle>(static_cast<std::uint32_t>(records.size()) + 1);
}

// --- tools

// The number of the tool that opened the group (or toolset) of the tool joined; a tool that joins none opens one.
template <auto member>
int joined(const HostState& host, std::int32_t number, int own) {
    if (number == kNoTool) return own;
    require(number >= 0 && static_cast<std::size_t>(number) < host.tools.size());
    return host.tools[static_cast<std::size_t>(number)].*member;
}

AIErr addTool(SPPluginRef plugin, const char* name, const AIAddToolData* data, std::int32_t, AIToolHandle* tool) {
    requirePlugin(plugin);
    require(name != nullptr && tool != nullptr && deref(data).title != nullptr);
    HostState& host = theHost();
    require(!host.fails("tool"), kRefusedErr);
    ToolRecord record;
    record.handle = nextHandle<AIToolHandle>(host.tools);
    record.name = name;
    record.title = systemTextToUtf8(data->title);
    record.tooltip = data->tooltip != nullptr ? systemTextToUtf8(data->tooltip) : std::string{};
    record.iconId = data->iconId;
    record.darkIconId = data->darkIconId;
    record.number = static_cast<int>(host.tools.size());
    record.group = joined<&ToolRecord::group>(host, data->sameGroupAs, record.number);
    record.toolset = joined<&ToolRecord::toolset>(host, data->sameToolsetAs, record.number);
    host.tools.push_back(record);
    host.toolTitles.emplace_back(data->title);
    *tool = record.handle;
    return kNoErr;
}

AIErr getToolNumberFromName(const char* name, std::int32_t* number) {
    require(name != nullptr && number != nullptr);
    const std::vector<ToolRecord>& tools = theHost().tools;
    const auto found =
        std::find_if(tools.begin(), tools.end(), [&](const ToolRecord& one) { return one.name == name; });
    require(found != tools.end());
    *number = found->number;
    return kNoErr;
}

AIErr getToolTitle(AIToolHandle tool, char* title, std::int32_t size) {
    HostState& host = theHost();
    const ToolRecord& record = recordOfHandle(host.tools, tool);
    copyText(host.toolTitles[static_cast<std::size_t>(record.number)], title, size);
    return kNoErr;
}

// --- menus

bool groupKnown(const HostState& host, std::string_view name) {
    return std::find(host.menuGroups.begin(), host.menuGroups.end(), name) != host.menuGroups.end();
}

AIErr addMenuItem(SPPluginRef plugin, const char* name, const AIMenuItemData* data, std::int32_t options,
                  AIMenuItemHandle* item) {
    requirePlugin(plugin);
    require(name != nullptr && deref(data).group != nullptr);
    HostState& host = theHost();
    require(!host.fails("menu"), kRefusedErr);
    require(groupKnown(host, data->group));
    MenuItemRecord record;
    record.handle = nextHandle<AIMenuItemHandle>(host.menuItems);
    record.name = name;
    record.group = data->group;
    record.text = utf8Of(data->text);
    record.wantsUpdate = (options & kMenuItemWantsUpdate) != 0;
    host.menuItems.push_back(record);
    if (item != nullptr) *item = record.handle;  // not everyone keeps it
    return kNoErr;
}

AIErr checkItem(AIMenuItemHandle item, AIBoolean checked) {
    recordOfHandle(theHost().menuItems, item).checked = checked != 0;
    return kNoErr;
}

AIErr countMenuGroups(std::int32_t* count) {
    deref(count) = static_cast<std::int32_t>(theHost().menuGroups.size());
    return kNoErr;
}

AIErr getNthMenuGroup(std::int32_t index, AIMenuGroup* group) {
    require(index >= 0 && static_cast<std::size_t>(index) < theHost().menuGroups.size());
    deref(group) = makeHandle<AIMenuGroup>(static_cast<std::uint32_t>(index) + 1);
    return kNoErr;
}

AIErr getMenuGroupName(AIMenuGroup group, const char** name) {
    const std::deque<std::string>& groups = theHost().menuGroups;
    const std::uint32_t number = numberOf(group);
    require(number <= groups.size(), kStaleHandleErr);
    deref(name) = groups[number - 1].c_str();
    return kNoErr;
}

AIErr addMenuGroupAsSubMenu(const char* name, std::int32_t, AIMenuItemHandle item, AIMenuGroup* group) {
    HostState& host = theHost();
    require(name != nullptr && *name != 0 && !groupKnown(host, name));
    recordOfHandle(host.menuItems, item);
    host.menuGroups.emplace_back(name);
    if (group != nullptr) *group = makeHandle<AIMenuGroup>(static_cast<std::uint32_t>(host.menuGroups.size()));
    return kNoErr;
}

// --- timers, notifiers, actions

AIErr addTimer(SPPluginRef plugin, const char* name, std::int32_t period, AITimerHandle* timer) {
    requirePlugin(plugin);
    require(name != nullptr && period > 0 && timer != nullptr);
    HostState& host = theHost();
    require(!host.fails("timer"), kRefusedErr);
    host.timers.push_back({nextHandle<AITimerHandle>(host.timers), name, period});
    *timer = host.timers.back().handle;
    return kNoErr;
}

AIErr addNotifier(SPPluginRef plugin, const char* name, const char* type, AINotifierHandle* notifier) {
    requirePlugin(plugin);
    require(name != nullptr && type != nullptr);
    HostState& host = theHost();
    require(!host.fails("notifier"), kRefusedErr);
    host.notifiers.push_back({nextHandle<AINotifierHandle>(host.notifiers), name, type});
    if (notifier != nullptr) *notifier = host.notifiers.back().handle;
    return kNoErr;
}

AIErr newActionParamValue(AIActionParamValueRef* parameters) {
    require(parameters != nullptr);
    HostState& host = theHost();
    host.actionParameters.insert(++host.actionParametersMade);
    *parameters = makeHandle<AIActionParamValueRef>(host.actionParametersMade);
    return kNoErr;
}

AIErr deleteActionParamValue(AIActionParamValueRef parameters) {
    require(theHost().actionParameters.erase(numberOf(parameters)) == 1, kStaleHandleErr);
    return kNoErr;
}

AIErr registerActionEvent(SPPluginRef plugin, const char* event, const char* localizedName, std::int32_t,
                          AIActionParamValueRef parameters) {
    requirePlugin(plugin);
    require(event != nullptr && *event != 0 && localizedName != nullptr);
    HostState& host = theHost();
    require(host.actionParameters.contains(numberOf(parameters)), kStaleHandleErr);
    const auto same = [&](const ActionRecord& one) { return one.event == event; };
    require(std::none_of(host.actions.begin(), host.actions.end(), same));
    host.actions.push_back({event, localizedName});
    return kNoErr;
}

AIErr playActionEvent(const char* event, std::int32_t, AIActionParamValueRef) {
    return theHost().host.playAction(&deref(event));
}

}  // namespace

SuiteRecord toolSuite() {
    static const AIToolSuite suite = [] {
        auto s = refusingSuite<AIToolSuite>();
        s.AddTool = slot<addTool>;
        s.GetToolNumberFromName = slot<getToolNumberFromName>;
        s.GetToolTitle = slot<getToolTitle>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord menuSuite() {
    static const AIMenuSuite suite = [] {
        auto s = refusingSuite<AIMenuSuite>();
        s.AddMenuItem = slot<addMenuItem>;
        s.CheckItem = slot<checkItem>;
        s.CountMenuGroups = slot<countMenuGroups>;
        s.GetNthMenuGroup = slot<getNthMenuGroup>;
        s.GetMenuGroupName = slot<getMenuGroupName>;
        s.AddMenuGroupAsSubMenu = slot<addMenuGroupAsSubMenu>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord timerSuite() {
    static const AITimerSuite suite = [] {
        auto s = refusingSuite<AITimerSuite>();
        s.AddTimer = slot<addTimer>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord notifierSuite() {
    static const AINotifierSuite suite = [] {
        auto s = refusingSuite<AINotifierSuite>();
        s.AddNotifier = slot<addNotifier>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord actionManagerSuite() {
    static const AIActionManagerSuite suite = [] {
        auto s = refusingSuite<AIActionManagerSuite>();
        s.NewActionParamValue = slot<newActionParamValue>;
        s.DeleteActionParamValue = slot<deleteActionParamValue>;
        s.RegisterActionEvent = slot<registerActionEvent>;
        s.PlayActionEvent = slot<playActionEvent>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
