#include "tests/support/dialog_spy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "plugin/resources/dialog_templates.h"

namespace quorvel::tests {

namespace {

using platform::ControlKind;
using platform::ControlRow;

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

bool surrounds(ControlKind kind) { return kind == ControlKind::group || kind == ControlKind::frame; }

bool overlap(const platform::PixelRect& a, const platform::PixelRect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

void expectPlaces(const platform::DialogTemplate& dialog, std::initializer_list<std::int32_t> sharePlace) {
    const auto shares = [&](std::int32_t id) {
        return std::find(sharePlace.begin(), sharePlace.end(), id) != sharePlace.end();
    };
    for (const ControlRow& a : std::span(dialog.rows, static_cast<std::size_t>(dialog.rowCount))) {
        EXPECT_TRUE(a.rect.left >= 0 && a.rect.left < a.rect.right && a.rect.right <= dialog.width) << a.id;
        EXPECT_TRUE(a.rect.top >= 0 && a.rect.top < a.rect.bottom && a.rect.bottom <= dialog.height) << a.id;
        for (const ControlRow& b : std::span(dialog.rows, static_cast<std::size_t>(dialog.rowCount))) {
            if (a.id >= b.id || surrounds(a.kind) || surrounds(b.kind) || (shares(a.id) && shares(b.id))) continue;
            EXPECT_FALSE(overlap(a.rect, b.rect)) << a.id << " and " << b.id;
        }
    }
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

void ExpectTemplates(std::int32_t japaneseId, const std::vector<ExpectedControl>& expected,
                     std::initializer_list<std::int32_t> sharePlace) {
    for (const bool english : {false, true}) {
        const std::int32_t id = japaneseId + (english ? 100 : 0);
        const platform::DialogTemplate* dialog = FindDialogTemplate(id);
        ASSERT_NE(dialog, nullptr) << id;
        EXPECT_EQ(dialog->id, id);
        EXPECT_EQ(dialog->language, english ? platform::Language::english : platform::Language::japanese);
        std::map<std::int32_t, const ControlRow*> found;
        for (const ControlRow& row : std::span(dialog->rows, static_cast<std::size_t>(dialog->rowCount)))
            EXPECT_TRUE(found.emplace(row.id, &row).second) << id << ": " << row.id << " twice";
        for (const ExpectedControl& control : expected) {
            const auto row = found.find(control.id);
            ASSERT_NE(row, found.end()) << id << ": no " << control.id;
            EXPECT_EQ(row->second->kind, control.kind) << id << ": " << control.id;
            EXPECT_STREQ(english ? row->second->english : row->second->japanese,
                         english ? control.english : control.japanese)
                << id << ": " << control.id;
            EXPECT_EQ(row->second->picture, control.picture) << id << ": " << control.id;
            found.erase(row);
        }
        for (const auto& [extra, row] : found) ADD_FAILURE() << id << ": nobody asked for " << extra;
        expectPlaces(*dialog, sharePlace);
    }
}

}  // namespace quorvel::tests
