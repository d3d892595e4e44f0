// The scripted user's steps on the panel.
#include "platform/headless/headless.h"

namespace quorvel::platform {

bool HeadlessBackend::panelPress(std::int32_t control) {
    return windows_.panelStep({DialogStep::Kind::press, control, {}, 0});
}

bool HeadlessBackend::panelType(std::int32_t control, const std::string& text) {
    return windows_.panelStep({DialogStep::Kind::setText, control, text, 0});
}

bool HeadlessBackend::panelText(std::int32_t control, std::string* text) const {
    const ControlState* found = windows_.panelControl(control);
    if (found != nullptr) *text = found->text;
    return found != nullptr;
}

bool HeadlessBackend::panelToggled(std::int32_t control, bool* on) const {
    const ControlState* found = windows_.panelControl(control);
    if (found != nullptr) *on = found->checked;
    return found != nullptr;
}

}  // namespace quorvel::platform
