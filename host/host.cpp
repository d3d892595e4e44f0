// The host's life: one in a process, with one plug-in attached to it.
#include "host/host.h"

#include <iterator>
#include <stdexcept>
#include <utility>

#include "fonts/fonts.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

constexpr const char* kMenuGroups[] = {kPreferencesMenu, kToolPalettesMenu, kAboutMenu};

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

}  // namespace

HostState* runningHost() { return running; }

HostState::HostState(Host& itsHost, HostOptions itsOptions) : host(itsHost), options(std::move(itsOptions)) {
    currentStyle = initialStyle();
    random.seed(options.seed.has_value() ? *options.seed : seedFromSystem());
    menuGroups.assign(std::begin(kMenuGroups), std::end(kMenuGroups));
}

void releaseHost(const HostState* state) {
    if (running == state) running = nullptr;
}

// --- the plug-in's life

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

}  // namespace quorvel::host
