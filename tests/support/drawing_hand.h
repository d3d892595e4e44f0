// A hand at the tools of a whole plug-in, and an eye on what they have drawn: pieces come in the order in which they
// were made, the lowest first.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/dump.h"
#include "host/code_page.h"
#include "platform/text.h"
#include "tests/support/dialog_spy.h"
#include "tests/support/errors.h"
#include "tests/support/plugin_host.h"

namespace quorvel::tests {

// Started, with an empty page and the spy as its user.
struct DrawingHand {
    explicit DrawingHand(PluginHostOptions options = {}) {
        auto user = std::make_unique<DialogSpy>();
        spy = user.get();
        options.user = std::move(user);
        plugin = std::make_unique<PluginHost>(std::move(options));
        plugin->newDrawing(900, 700);
        EXPECT_EQ(plugin->start(), kNoErr);
    }
    static PluginHostOptions speaking(const char* language) {
        PluginHostOptions options;
        options.language = language;
        return options;
    }
    ~DrawingHand() {
        EXPECT_EQ(said(spy->takeFaults()), "");
        EXPECT_FALSE(spy->hasRepliesLeft());
    }

    host::Host& host() { return plugin->host(); }
    doc::Document& document() { return *plugin->host().document(); }
    PrefsRecord& prefs() { return plugin->prefs(); }

    void take(const char* title) {
        const host::ToolRecord* tool = host().toolByTitle(title);
        ASSERT_NE(tool, nullptr) << title;
        ASSERT_EQ(host().selectTool(*tool), kNoErr);
    }
    void options(const char* title, Steps steps, std::int32_t dialog) {
        const host::ToolRecord* tool = host().toolByTitle(title);
        ASSERT_NE(tool, nullptr) << title;
        spy->queueDialog({dialog, std::move(steps)});
        ASSERT_EQ(host().editOptions(*tool), kNoErr);
    }
    void send(const char* selector, RealPoint cursor, std::uint16_t modifiers = 0) {
        EXPECT_EQ(host().sendTool(selector, cursor, modifiers), kNoErr);
    }
    void press(RealPoint at) {
        send(kSelectorTrackCursor, {at.h + 50, at.v + 50});  // a cursor that has not moved is not looked at
        send(kSelectorTrackCursor, at);
        send(kSelectorMouseDown, at);
    }
    void drag(RealPoint from, RealPoint to) {
        press(from);
        send(kSelectorMouseDrag, to);
        send(kSelectorMouseUp, to);
    }
    void click(RealPoint at) {
        press(at);
        send(kSelectorMouseUp, at);
    }

    doc::ArtId root() { return document().layer(document().currentLayer())->root; }
    std::vector<const doc::Art*> piecesOf(doc::ArtId group) {
        std::vector<const doc::Art*> pieces;
        for (doc::ArtId id = document().find(group)->lastChild; id != 0; id = document().find(id)->above)
            pieces.push_back(document().find(id));
        return pieces;
    }
    // The topmost art of the current layer.
    const doc::Art* newest() { return document().find(document().find(root())->firstChild); }
    std::vector<const doc::Art*> newestPieces() { return piecesOf(newest()->id); }
    std::string tag(doc::ArtId art, const std::string& name) {
        const std::string* value = document().tag(art, name);
        return value == nullptr ? "(absent)" : *value;
    }

    DialogSpy* spy = nullptr;
    std::unique_ptr<PluginHost> plugin;
};

inline std::string TextOf(const doc::Art& art) { return host::toUtf8(art.text->text); }
inline RealPoint AnchorOf(const doc::Art& text) { return {text.text->matrix.tx, text.text->matrix.ty}; }
inline std::string Sjis(const char* utf8) { return platform::FromUtf8(utf8, platform::kCodePageJapanese); }

}  // namespace quorvel::tests
