// The message pump: each message to the plug-in is one transaction over the drawing, what it changed becomes one undo
// step, and what it set off is told afterwards. The host's own steps go the same way.
#include "host/host.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "fonts/fonts.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

constexpr std::int32_t kMessageCheck = 0x51564D53;  // 'QVMS'
constexpr AIErr kPluginFailedErr = -1;              // the plug-in has thrown
constexpr const char* kMenuGroups[] = {"Preferences", "Tool Palettes", "About"};

HostState* running = nullptr;

float measureText(const std::string& fontName, char32_t character) {
    const fonts::Font* font = fonts::findFont(fontName);
    return fonts::characterWidth(font != nullptr ? *font : fonts::fonts().front(), character);
}

AIPathStyle initialStyle() {
    AIPathStyle style;
    style.strokePaint = 1;
    style.stroke.gray = 1;
    style.strokeWidth = 1;
    style.miterLimit = 4;
    return style;
}

std::uint64_t seedFromSystem() {
    std::random_device source;
    return std::uint64_t{source()} << 32 | source();
}

// Holds a counter or flag up for as long as it lives, whatever is thrown.
template <typename T>
class Raised {
  public:
    explicit Raised(T& what) : what_(what) { ++what_; }
    ~Raised() { --what_; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

  private:
    T& what_;
};

}  // namespace

const char* MessageTexts::keep(const std::string& text) {
    if (text.size() < kLong) return add(text);
    std::string_view& recent = recent_[std::hash<std::string_view>()(text) % recent_.size()];
    if (recent.data() == nullptr || recent != text) recent = {add(text), text.size()};
    return recent.data();
}

const char* MessageTexts::add(const std::string& text) {
    const std::size_t size = text.size() + 1;
    if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < size)
        blocks_.emplace_back().reserve(std::max(size, kBlock));
    std::vector<char>& block = blocks_.back();
    const std::size_t start = block.size();
    block.insert(block.end(), text.c_str(), text.c_str() + size);
    return block.data() + start;
}

void MessageArena::clear() {
    const auto next = static_cast<std::uint16_t>(generation + 1);
    *this = {};
    generation = next != 0 ? next : 1;
}

HostState* runningHost() { return running; }

HostState::HostState(Host& itsHost, HostOptions itsOptions) : host(itsHost), options(std::move(itsOptions)) {
    currentStyle = initialStyle();
    random.seed(options.seed.has_value() ? *options.seed : seedFromSystem());
    menuGroups.assign(std::begin(kMenuGroups), std::end(kMenuGroups));
}

// --- one message
// ---------------------------------------------------------------------------------------------------------

bool HostState::invokeGuarded(const std::function<void()>& call) {
    std::string failure = "unknown cause";
    try {
        call();
        return true;
    } catch (const std::exception& thrown) {
        failure = thrown.what();
    } catch (...) {  // nothing is known of it
    }
    if (host.callbacks.errorAlert) host.callbacks.errorAlert("The plug-in has failed: " + failure);
    return false;
}

AIErr HostState::callPlugin(const char* caller, const char* selector, SPMessageData* message) {
    *message = {kMessageCheck, makeHandle<SPPluginRef>(1), globals, &basicSuite()};
    AIErr result = kPluginFailedErr;
    const bool survived = invokeGuarded([&] {
        const Raised deeper(depth);
        result = entry(caller, selector, message);
    });
    globals = message->globals;
    if (!survived && document != nullptr && document->inTransaction()) document->rollback();
    return result;
}

void HostState::beginMessage() {
    undoName.clear();
    redoName.clear();
    if (sending == 0) lastUndoName.clear();  // what a message sets off does not wipe out the name that it gave
    if (document != nullptr && !document->inTransaction()) document->begin();
}

void HostState::finishMessage() {
    const std::string undo = undoName.empty() ? "Undo" : undoName, redo = redoName.empty() ? "Redo" : redoName;
    const bool stepped = document != nullptr && document->inTransaction() && document->commit(undo, redo);
    arena.clear();
    queueArtChange();
    if (stepped && host.callbacks.stepMade) host.callbacks.stepMade(undo);
    sendQueued();
}

// Changes that are made in answer to a notification are not told again, or two who answer would never end.
void HostState::queueArtChange() {
    if (document == nullptr || document->changeCount() == notifiedChange) return;
    notifiedChange = document->changeCount();
    const auto asks = [](const NotifierRecord& one) { return one.type == kArtChangedNotifier; };
    if (sending == 0 && std::any_of(notifiers.begin(), notifiers.end(), asks)) queued.emplace_back(kArtChangedNotifier);
}

void HostState::sendQueued() {
    if (depth > 0 || sending > 0) return;
    const Raised busy(sending);
    while (!queued.empty()) {
        const std::string type = std::move(queued.front());
        queued.pop_front();
        sendNotification(type);
    }
}

AIErr HostState::sendNotification(const std::string& type) {
    AIErr first = kNoErr;
    const std::vector<NotifierRecord> asked = notifiers;
    for (const NotifierRecord& notifier : asked) {
        if (notifier.type != type) continue;
        AINotifierMessage message;
        message.notifier = notifier.handle;
        message.type = type.c_str();
        const AIErr result = host.send(kCallerNotifier, kSelectorNotify, &message.d);
        if (first == kNoErr) first = result;
    }
    return first;
}

AIErr Host::send(const char* caller, const char* selector, SPMessageData* message) {
    if (impl_->entry == nullptr || caller == nullptr || selector == nullptr || message == nullptr)
        return kBadParameterErr;
    const bool outermost = impl_->depth == 0;
    if (outermost) impl_->beginMessage();
    const AIErr result = impl_->callPlugin(caller, selector, message);
    if (outermost) impl_->finishMessage();
    return result;
}

bool Host::busy() const { return impl_->depth > 0; }

AIErr Host::notify(std::string_view type) {
    if (impl_->depth > 0 || impl_->sending > 0) {
        impl_->queued.emplace_back(type);
        return kNoErr;
    }
    return impl_->sendNotification(std::string(type));
}

// --- the plug-in's life
// --------------------------------------------------------------------------------------------------

Host::Host(HostOptions options) : impl_(std::make_unique<Impl>(*this, std::move(options))) {
    if (running != nullptr) throw std::logic_error("there is a host already");
    running = impl_.get();
    doc::setTextMeasure(measureText);
}

void Host::attachPlugin(PluginMainProc entry, void* module) {
    impl_->dropRegistrations();
    impl_->entry = entry;
    impl_->module = module;
    impl_->globals = nullptr;
    impl_->pluginOptions = 0;
}

AIErr Host::startup() {
    SPMessageData message;
    const AIErr result = send(kCallerInterface, kSelectorStartup, &message);
    if (result == kNoErr) notify(kApplicationStartedNotifier);
    return result;
}

AIErr Host::about() {
    SPMessageData message;
    return send(kCallerInterface, kSelectorAbout, &message);
}

AIErr Host::unload() {
    SPMessageData message;
    return send(kCallerAccess, kSelectorUnload, &message);
}

AIErr Host::reload() {
    SPMessageData message;
    return send(kCallerAccess, kSelectorReload, &message);
}

AIErr Host::shutdown() {
    SPMessageData message;
    const AIErr result = send(kCallerInterface, kSelectorShutdown, &message);
    impl_->dropRegistrations();
    return result;
}

void HostState::dropRegistrations() {
    while (!panels.empty()) destroyPanel(panels.back().handle);
    tools.clear();
    toolTitles.clear();
    selectedTool = nullptr;
    menuItems.clear();
    menuGroups.assign(std::begin(kMenuGroups), std::end(kMenuGroups));
    notifiers.clear();
    timers.clear();
    actions.clear();
    actionParameters.clear();
    flyouts.clear();
    queued.clear();
}

bool Host::knowsField(std::string_view key) {
    const std::string keyText(key);
    QuorvelSettingMessage message;
    message.key = keyText.c_str();
    return send(kCallerSettings, kSelectorSetField, &message.d) == kNoErr && message.accepted != 0;
}

bool Host::setField(std::string_view key, std::string_view value) {
    const std::string keyText(key), valueText(value);
    QuorvelSettingMessage message;
    message.key = keyText.c_str();
    message.value = valueText.c_str();
    return send(kCallerSettings, kSelectorSetField, &message.d) == kNoErr && message.accepted != 0;
}

int Host::suitesHeld() const {
    int sum = 0;
    for (const auto& [place, count] : impl_->held) sum += count;
    return sum;
}

// --- tools
// ---------------------------------------------------------------------------------------------------------------

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

// --- menus, timers, actions, panels
// ----------------------------------------------------------------------------------------

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
        const auto bears = [item](const std::pair<int, std::string>& one) { return one.first == item; };
        if (std::none_of(panel.flyoutItems.begin(), panel.flyoutItems.end(), bears)) continue;
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

// --- steps
// ---------------------------------------------------------------------------------------------------------------

bool Host::edit(const std::string& name, const std::function<bool(doc::Document&)>& change) {
    return edit(StepName{"Undo " + name, "Redo " + name}, change);
}

bool Host::edit(const StepName& name, const std::function<bool(doc::Document&)>& change) {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction()) return false;
    document->begin();
    bool done = false;
    try {
        done = change(*document);
    } catch (...) {
        document->rollback();
        document->commit({}, {});
        throw;
    }
    if (!done) document->rollback();
    const bool stepped = document->commit(name.undo, name.redo);
    impl_->lastUndoName = stepped ? name.undo : std::string();
    if (stepped && callbacks.stepMade) callbacks.stepMade(name.undo);
    impl_->queueArtChange();
    impl_->sendQueued();
    return done;
}

bool Host::undo() {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction() || !document->undo()) return false;
    impl_->lastUndoName.clear();
    impl_->queueArtChange();
    impl_->sendQueued();
    return true;
}

bool Host::redo() {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction() || !document->redo()) return false;
    impl_->lastUndoName.clear();
    impl_->queueArtChange();
    impl_->sendQueued();
    return true;
}

const std::string& Host::lastUndoName() const { return impl_->lastUndoName; }

void releaseHost(const HostState* state) {
    if (running == state) running = nullptr;
}

std::unique_ptr<QuorvelSnapMessage> Host::snapReport(const ToolRecord& tool, RealPoint cursor) {
    auto message = std::make_unique<QuorvelSnapMessage>();
    message->tool = tool.handle;
    message->cursor = cursor;
    return send(kCallerSnap, kSelectorSnapReport, &message->d) == kNoErr ? std::move(message) : nullptr;
}

}  // namespace quorvel::host
