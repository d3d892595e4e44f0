// The two templates of each dialog: the same controls, each once, inside the window and upon no other.
#include "plugin/resources/dialog_templates.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace quorvel {
namespace {

using platform::ControlKind;
using platform::ControlRow;
using platform::DialogTemplate;

using Rows = std::map<std::int32_t, ControlRow>;

Rows rowsOf(const DialogTemplate& dialog) {
    Rows rows;
    for (const ControlRow& row : std::span(dialog.rows, static_cast<std::size_t>(dialog.rowCount)))
        EXPECT_TRUE(rows.emplace(row.id, row).second) << row.id << " twice";
    return rows;
}

// Groups and frames surround others; of the four pictures of arrow shapes one is shown at a time.
bool sharesItsPlace(const ControlRow& row) {
    return row.kind == ControlKind::group || row.kind == ControlKind::frame || (row.id >= 65 && row.id <= 68);
}

void expectPlaces(const DialogTemplate& dialog) {
    const Rows rows = rowsOf(dialog);
    for (const auto& [id, row] : rows) {
        const platform::PixelRect& a = row.rect;
        EXPECT_TRUE(a.left >= 0 && a.left < a.right && a.right <= dialog.width) << id;
        EXPECT_TRUE(a.top >= 0 && a.top < a.bottom && a.bottom <= dialog.height) << id;
        for (const auto& [otherId, other] : rows) {
            const platform::PixelRect& b = other.rect;
            const bool apart = a.left >= b.right || b.left >= a.right || a.top >= b.bottom || b.top >= a.bottom;
            EXPECT_TRUE(apart || id == otherId || sharesItsPlace(row) || sharesItsPlace(other)) << id << ' ' << otherId;
        }
    }
}

TEST(DialogTemplates, HoldTheSameControlsInBothLanguages) {
    int found = 0;
    for (std::int32_t id = 16000; id < 16200; ++id) {
        const DialogTemplate *japanese = FindDialogTemplate(id), *english = FindDialogTemplate(id + 100);
        if (japanese == nullptr || japanese->id != id) continue;
        SCOPED_TRACE(id);
        ++found;
        ASSERT_NE(english, nullptr);
        EXPECT_TRUE(japanese->language == platform::Language::japanese && english->id == id + 100 &&
                    english->language == platform::Language::english);
        EXPECT_STRNE(japanese->title, english->title);
        expectPlaces(*japanese);
        expectPlaces(*english);
        const Rows ours = rowsOf(*japanese), theirs = rowsOf(*english);
        ASSERT_EQ(ours.size(), theirs.size());
        for (const auto& [control, row] : ours) {
            ASSERT_TRUE(theirs.contains(control)) << control;
            const ControlRow& other = theirs.at(control);
            EXPECT_TRUE(row.kind == other.kind && row.picture == other.picture) << control;
            EXPECT_EQ(*row.japanese == 0, *row.english == 0) << control << ": a label in one language alone";
            EXPECT_TRUE(std::string_view(row.japanese) == other.japanese &&
                        std::string_view(row.english) == other.english)
                << control;
        }
    }
    EXPECT_EQ(found, 9);
    EXPECT_EQ(FindDialogTemplate(16251), nullptr);
}

}  // namespace
}  // namespace quorvel
