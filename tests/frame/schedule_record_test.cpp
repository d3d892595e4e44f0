// What a frame keeps in its tags and how it is found and drawn anew: the pieces of the header, rows by position, and
// the flow of Edit Options over a selected frame.
#include "plugin/frame/schedule_record.h"

#include "host/host_state.h"
#include "tests/support/drawing_hand.h"

namespace quorvel::tests {
namespace {

using doc::Art;
using doc::ArtId;
using doc::Document;

constexpr char kTool[] = "Schedule Tool [bottom]";
constexpr std::int32_t kDialog = 16259;
constexpr std::int32_t kTitleEdit = 8, kCountEdit = 26, kOk = 1, kCancel = 2;

template <std::size_t Size>
void Put(char (&field)[Size], const std::string& text) {
    std::snprintf(field, Size, "%s", text.c_str());
}

struct ScheduleRecord : testing::Test {
    ScheduleRecord() {
        hand.prefs().flZwkDrawType = 2;
        hand.take(kTool);
    }
    const Art* draw(RealPoint from = {100, 50}, RealPoint to = {700, 450}) {
        hand.drag(from, to);
        return hand.newest();
    }
    void change(const std::function<void(Document&)>& work) {
        hand.host().edit("Change", [&](Document& document) {
            work(document);
            return true;
        });
    }
    void select(ArtId art) {
        change([art](Document& document) { document.setSelected(art, true); });
    }
    // Runs work inside a message, where the plug-in's functions may be called: while the dialog stands open.
    void inMessage(const std::function<void()>& work) {
        hand.spy->opened = work;
        hand.options(kTool, {Press(kCancel)}, kDialog);
        hand.spy->opened = nullptr;
    }
    RealRect outerRect(const Art* frame) {
        return hand.document().bounds(hand.piecesOf(hand.piecesOf(frame->id).at(0)->id).at(0)->id);
    }
    void editFrame() { hand.options(kTool, {Press(kOk)}, kDialog); }

    DrawingHand hand;
};

TEST_F(ScheduleRecord, TheHeaderIsCutAt255) {
    // 2,"...","","","","","","...","","",0 is 30 bytes without its texts.
    Put(hand.prefs().flZwkTitle, std::string(127, 't'));
    Put(hand.prefs().flZwkCorp, std::string(127, 'c'));
    Put(hand.prefs().flZwkComm1, std::string(16, 'm'));
    const ArtId frame = draw()->id;
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_1").size(), 255U);
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_2").size(), 45U);
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_1") + hand.tag(frame, "QUORVEL_ZWK_SETTING_2"),
              "2,\"" + std::string(127, 't') + "\",\"" + std::string(127, 'c') + "\",\"\",\"\",\"\",\"\",\"" +
                  std::string(16, 'm') + "\",\"\",\"\",0");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_3"), "(absent)");
    // The same group with a shorter header loses its second piece, and a row that is empty now loses its tags.
    Put(hand.prefs().flZwkCorp, "");
    change([&](Document& document) { document.setTag(frame, "QUORVEL_ZWK_PARTS005_2", "\"\",\"\",\"\",\"old\""); });
    inMessage([&] { WriteScheduleRecord(host::artHandle(frame)); });
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_1").size(), 173U);
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_2"), "(absent)");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS005_2"), "(absent)");
}

TEST_F(ScheduleRecord, TheLongestHeaderComesBackWhole) {
    PrefsRecord& p = hand.prefs();
    const PrefsRecord blank = p;
    const auto fill = [](auto& field, const char* unit) {
        std::string text;
        while (text.size() + 2 < sizeof field) text += unit;
        Put(field, text);
    };
    // Characters of two bytes, cut in the middle by the pieces.
    const std::string wide = Sjis("図");
    fill(p.flZwkTitle, wide.c_str());
    fill(p.flZwkCorp, wide.c_str());
    for (auto* field : {&p.flZwkDate, &p.flZwkScale, &p.flZwkType, &p.flZwkPatNo}) fill(*field, wide.c_str());
    for (auto* field : {&p.flZwkComm1, &p.flZwkComm2, &p.flZwkComm3}) fill(*field, wide.c_str());
    p.flZwkNumOfParts = -32768;
    const PrefsRecord full = p;
    const ArtId frame = draw()->id;
    EXPECT_NE(hand.tag(frame, "QUORVEL_ZWK_SETTING_3"), "(absent)");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_SETTING_4"), "(absent)");
    p = blank;
    inMessage([&] { ReadScheduleRecord(host::artHandle(frame)); });
    EXPECT_STREQ(p.flZwkTitle, full.flZwkTitle);
    EXPECT_STREQ(p.flZwkCorp, full.flZwkCorp);
    EXPECT_STREQ(p.flZwkDate, full.flZwkDate);
    EXPECT_STREQ(p.flZwkPatNo, full.flZwkPatNo);
    EXPECT_STREQ(p.flZwkComm3, full.flZwkComm3);
    EXPECT_EQ(p.flZwkNumOfParts, -32768);
}

TEST_F(ScheduleRecord, RowsKeepTheirPlaces) {
    PrefsRecord& p = hand.prefs();
    p.flZwkNumOfParts = 1;
    Put(p.flZwkParts[2].News, "a, b");
    Put(p.flZwkParts[99].Name, "last");
    Put(p.flZwkParts[99].Weight, "3");
    const ArtId frame = draw()->id;
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS001_1"), "(absent)");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS003_1"), "\"\",\"\"");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS003_2"), "\"\",\"\",\"\",\"a, b\"");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS100_1"), "\"last\",\"\"");
    EXPECT_EQ(hand.tag(frame, "QUORVEL_ZWK_PARTS100_2"), "\"\",\"3\",\"\",\"\"");
    for (ZwkPartRow& row : p.flZwkParts) Put(row.Name, "other");
    select(frame);
    hand.options(kTool, {Press(kCancel)}, kDialog);
    EXPECT_STREQ(p.flZwkParts[2].News, "a, b");
    EXPECT_STREQ(p.flZwkParts[99].Name, "last");
    EXPECT_STREQ(p.flZwkParts[99].Weight, "3");
    for (int i = 0; i < 99; ++i) EXPECT_STREQ(p.flZwkParts[i].Name, "") << i;
    EXPECT_EQ(hand.newest()->id, frame) << "a look changes no art";
}

TEST_F(ScheduleRecord, DamagedTagsAreReadAsFarAsTheyGo) {
    const ArtId frame = draw()->id;
    const std::string longText(300, 'x');
    change([&](Document& document) {
        // An open quote guards all commas behind it, a number may be none, texts may be too long.
        document.setTag(frame, "QUORVEL_ZWK_SETTING_1", "7q,\"a\"b,,\"" + longText.substr(0, 60));
        document.setTag(frame, "QUORVEL_ZWK_SETTING_3", "\",s,t,\"" + longText.substr(0, 40) + "\",c1,c2,c3,12");
        document.setTag(frame, "QUORVEL_ZWK_PARTS001_1", longText + ",steel,more");
        document.setTag(frame, "QUORVEL_ZWK_PARTS002_2", "\"1,2");
    });
    select(frame);
    Put(hand.prefs().flZwkParts[1].Weight, "stale");
    hand.options(kTool, {Press(kCancel)}, kDialog);
    const PrefsRecord& p = hand.prefs();
    EXPECT_EQ(p.flZwkDrawType, 7);
    EXPECT_STREQ(p.flZwkTitle, "ab");
    EXPECT_STREQ(p.flZwkCorp, "");
    EXPECT_EQ(std::string(p.flZwkDate), std::string(31, 'x')) << "the missing second piece is passed over";
    EXPECT_STREQ(p.flZwkScale, "s");
    EXPECT_EQ(std::string(p.flZwkPatNo), std::string(31, 'x'));
    EXPECT_STREQ(p.flZwkComm3, "c3");
    EXPECT_EQ(p.flZwkNumOfParts, 12);
    EXPECT_EQ(std::string(p.flZwkParts[0].Name), std::string(127, 'x'));
    EXPECT_STREQ(p.flZwkParts[0].Source, "steel");
    EXPECT_STREQ(p.flZwkParts[1].Quantity, "1,2");
    EXPECT_STREQ(p.flZwkParts[1].Weight, "");
}

TEST_F(ScheduleRecord, AFrameIsFoundWhereItsUserCanReachIt) {
    Put(hand.prefs().flZwkTitle, "first");
    const ArtId first = draw()->id;
    Put(hand.prefs().flZwkTitle, "second");
    const ArtId second = draw()->id;
    const auto shownTitle = [&] {
        Put(hand.prefs().flZwkTitle, "own");
        std::string title;
        hand.spy->opened = [&] { title = hand.spy->text(kTitleEdit); };
        hand.options(kTool, {Press(kCancel)}, kDialog);
        hand.spy->opened = nullptr;
        return title;
    };
    EXPECT_EQ(shownTitle(), "own") << "nothing selected";
    // In a group of the user's that is selected too; only the frame's own selection counts.
    change([&](Document& document) {
        const ArtId group = document.insertArt(kGroupArt, kPlaceAboveAll, 0);
        document.moveArt(first, kPlaceInsideOnTop, group);
        document.setSelected(group, true);
    });
    EXPECT_EQ(shownTitle(), "own");
    select(first);
    EXPECT_EQ(shownTitle(), "first");
    select(second);
    EXPECT_EQ(shownTitle(), "first") << "the first in walk order";
    const auto layer = [&](bool visible, bool editable) {
        change([&](Document& document) {
            document.setLayerVisible(document.currentLayer(), visible);
            document.setLayerEditable(document.currentLayer(), editable);
        });
    };
    layer(false, true);
    EXPECT_EQ(shownTitle(), "own");
    layer(true, false);
    EXPECT_EQ(shownTitle(), "own");
    layer(true, true);
    change([&](Document& document) { document.setTag(first, "QUORVEL_ZWK_SETTING_1", ""); });
    EXPECT_EQ(shownTitle(), "second") << "an empty header is none";
}

TEST_F(ScheduleRecord, OkDrawsTheFrameAnewOnTheCurrentLayer) {
    Put(hand.prefs().flZwkTitle, "old");
    const Art* old = draw();
    const ArtId oldId = old->id, oldRoot = old->parent;
    select(oldId);
    change([](Document& document) { document.setCurrentLayer(document.insertLayer("other", 0)); });
    hand.options(kTool, {Look(kTitleEdit, "old"), Type(kTitleEdit, "new"), Press(kOk)}, kDialog);
    EXPECT_EQ(hand.document().find(oldId), nullptr);
    EXPECT_EQ(hand.document().find(oldRoot)->firstChild, 0U);
    const Art* frame = hand.newest();
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->parent, hand.root());
    EXPECT_TRUE(hand.tag(frame->id, "QUORVEL_ZWK_SETTING_1").starts_with("2,\"new\","));
    const RealRect rect = outerRect(frame);
    EXPECT_TRUE(rect.left == 100 && rect.bottom == 50 && rect.right == 700 && rect.top == 450);
    EXPECT_EQ(hand.host().lastUndoName(), "") << "the step bears no name of ours";
    ASSERT_TRUE(hand.host().undo());
    EXPECT_NE(hand.document().find(oldId), nullptr);
}

TEST_F(ScheduleRecord, ATableAboveTheFrameMakesItLarger) {
    hand.prefs().flZwkNumOfParts = 3;  // 70 and four rows of 14: up to 126 above the lower edge
    select(draw({100, 50}, {700, 150})->id);
    for (int edit = 0; edit < 2; ++edit) {
        editFrame();
        const RealRect rect = outerRect(hand.newest());
        EXPECT_EQ(rect.top, 176) << edit;
        EXPECT_EQ(rect.bottom, 50);
        select(hand.newest()->id);
    }
    // The tool in hand says where the table goes, whatever drew the frame.
    hand.take("Schedule Tool [top + bottom]");
    editFrame();
    const Art* table = hand.piecesOf(hand.newest()->id).at(1);
    EXPECT_EQ(hand.document().bounds(hand.piecesOf(table->id).at(0)->id).bottom, 176 - 56);
}

TEST_F(ScheduleRecord, ALockedCurrentLayerStillLosesTheOldFrame) {
    const ArtId frame = draw()->id;
    select(frame);
    change([](Document& document) {
        document.setCurrentLayer(document.insertLayer("locked", 0));
        document.setLayerEditable(document.currentLayer(), false);
    });
    const int beeps = hand.spy->beeps();
    editFrame();
    EXPECT_EQ(hand.document().artCount(), 0U);
    EXPECT_EQ(hand.spy->beeps(), beeps);
}

TEST_F(ScheduleRecord, AFrameWithoutLinesStays) {
    const ArtId frame = draw()->id;
    change([&](Document& document) {
        for (const Art* piece : hand.piecesOf(hand.piecesOf(frame).at(0)->id))
            if (piece->kind == kPathArt) document.removeArt(piece->id);
    });
    select(frame);
    hand.options(kTool, {Type(kTitleEdit, "new"), Press(kOk)}, kDialog);
    EXPECT_EQ(hand.newest()->id, frame) << "texts give no size to draw in";
    EXPECT_STREQ(hand.prefs().flZwkTitle, "new");
}

TEST_F(ScheduleRecord, OkWithoutAFrameChangesTheFieldsAlone) {
    draw();
    const std::uint64_t before = hand.document().changeCount();
    hand.options(kTool, {Type(kTitleEdit, "next"), Type(kCountEdit, "2"), Press(kOk)}, kDialog);
    EXPECT_EQ(hand.document().changeCount(), before);
    EXPECT_STREQ(hand.prefs().flZwkTitle, "next");
    EXPECT_EQ(hand.prefs().flZwkNumOfParts, 2);
}

}  // namespace
}  // namespace quorvel::tests
