#include "tests/support/dialog_spy.h"

#include <tuple>

namespace quorvel::tests {

namespace {

// Stands between the window and the dialog's own logic.
struct Watched {
    const platform::WindowLogic& logic;
    void* context;
    DialogSpy* spy;
};

Watched& watchedIn(void* context) { return *static_cast<Watched*>(context); }

void tell(const std::function<void()>& listener) {
    if (listener) listener();
}

}  // namespace

std::int32_t DialogSpy::run(const platform::DialogTemplate& dialog, const platform::WindowLogic& logic, void* context) {
    Watched watched{logic, context, this};
    platform::WindowLogic watching;
    watching.opening = [](platform::WindowRef window, void* place) {
        const Watched& w = watchedIn(place);
        w.spy->window_ = window;
        w.logic.opening(window, w.context);
        tell(w.spy->opened);
    };
    watching.event = [](platform::WindowRef window, std::int32_t control, void* place) {
        const Watched& w = watchedIn(place);
        w.logic.event(window, control, w.context);
        tell(w.spy->changed);
    };
    watching.command = [](platform::WindowRef window, std::int32_t number, void* place) {
        const Watched& w = watchedIn(place);
        if (w.logic.command != nullptr) w.logic.command(window, number, w.context);
        tell(w.spy->changed);
    };
    watching.rowDisabled = [](platform::WindowRef window, std::int32_t control, std::int32_t row, void* place) {
        const Watched& w = watchedIn(place);
        return w.logic.rowDisabled != nullptr && w.logic.rowDisabled(window, control, row, w.context);
    };
    const auto below = std::tuple(window_, logic_, context_);
    logic_ = &logic;
    context_ = context;
    const std::int32_t result = played().run(dialog, watching, &watched);
    std::tie(window_, logic_, context_) = below;
    return result;
}

bool DialogSpy::showMessageBox(const std::string& text, const std::string& title, platform::MessageButtons buttons,
                               platform::MessageIcon icon) {
    lastButtons = buttons;
    lastIcon = icon;
    return played().showMessageBox(text, title, buttons, icon);
}

bool DialogSpy::askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    lastFilter = filter;
    lastProposedName = proposedName;
    return played().askSaveFile(filter, proposedName, path);
}

bool DialogSpy::askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    lastFilter = filter;
    lastProposedName = proposedName;
    return played().askOpenFile(filter, proposedName, path);
}

}  // namespace quorvel::tests
