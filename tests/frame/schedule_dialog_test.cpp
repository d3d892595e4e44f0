// The Schedule dialog in both languages: fields from opening to OK and Cancel, the
// pages, and every road of the Preset list, with real files in the preset folder.
#include "plugin/frame/schedule_dialog.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "plugin/settings/prefs_file.h"
#include "tests/support/drawing_hand.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kOk = 1, kCancel = 2, kType = 4, kPrevious = 5, kNext = 6, kTitle = 8, kCount = 26,
                       kPresets = 106;
// Rows of the tail of an otherwise empty list: "Untitled" stands at 0.
constexpr std::int32_t kUpperLine = 1, kSave = 2, kSaveAs = 3, kDelete = 4, kLowerLine = 5, kExport = 6, kImport = 7;

template <std::size_t Size>
void Put(char (&field)[Size], const std::string& text) {
    std::snprintf(field, Size, "%s", text.c_str());
}

struct Language {
    const char* word;
    const char* tool;
    std::int32_t dialog, nameDialog;
    bool english;
};
const Language kLanguages[] = {{"JAPANESE", "図面枠ツール [下に部品]", 16159, 16152, false},
                               {"ENGLISH", "Schedule Tool [bottom]", 16259, 16252, true},
                               {"KOREAN", "Schedule Tool [bottom]", 16259, 16252, true}};

struct ScheduleDialog : testing::TestWithParam<Language> {
    ScheduleDialog() : hand(DrawingHand::speaking(GetParam().word)) { hand.prefs().flZwkDrawType = 2; }

    const char* text(const char* japanese, const char* english) const {
        return GetParam().english ? english : japanese;
    }
    void run(Steps steps) {
        hand.spy->queueDialog({GetParam().dialog, std::move(steps)});
        for (platform::DialogReply& reply : nameReplies) hand.spy->queueDialog(std::move(reply));
        nameReplies.clear();
        ASSERT_EQ(hand.host().editOptions(*hand.host().toolByTitle(GetParam().tool)), kNoErr);
    }
    // Runs the dialog; what it shows when it opens is looked at.
    void look(const std::function<void()>& eye) {
        hand.spy->opened = eye;
        run({Press(kCancel)});
        hand.spy->opened = nullptr;
    }
    // The reply to the dialog for a name that the next run will open.
    void answerName(const std::string& proposed, const std::string& name, bool ok = true) {
        nameReplies.push_back({GetParam().nameDialog, {Look(3, proposed), Type(3, name), Press(ok ? kOk : kCancel)}});
    }
    fs::path folder() const { return fs::path(hand.plugin->profile()) / "Adobe/Illustrator/Prefs/Quorvel"; }
    fs::path file(const char* name) const { return folder() / (std::string(name) + ".ini"); }
    // A preset with this title and its first row's name.
    void write(const char* name, const std::string& title) {
        fs::create_directories(folder());
        std::ofstream(file(name)) << "flZwkDrawType = 2\r\nflZwkTitle = \"" << title << "\"\r\nflZwkPartsName00 = \""
                                  << title << " part\"\r\n";
    }
    static std::string content(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        return bytes.str();
    }
    std::vector<std::string> names() {
        std::vector<std::string> rows;
        look([&] {
            rows = hand.spy->rowsOf(kPresets);
            rows.resize(rows.size() - 7);
        });
        return rows;
    }
    std::string preset() { return hand.prefs().zwk_prefspath; }

    DrawingHand hand;
    std::vector<platform::DialogReply> nameReplies;
};
INSTANTIATE_TEST_SUITE_P(Languages, ScheduleDialog, testing::ValuesIn(kLanguages),
                         [](const auto& info) { return info.param.word; });

TEST_P(ScheduleDialog, OpensWithTheFields) {
    PrefsRecord& p = hand.prefs();
    Put(p.flZwkTitle, Sjis("図面ソ"));  // its last byte is a backslash
    Put(p.flZwkPatNo, "A-1");
    Put(p.flZwkComm3, "third");
    p.flZwkNumOfParts = 12;
    Put(p.flZwkParts[9].News, "tenth");
    look([&] {
        DialogSpy& spy = *hand.spy;
        EXPECT_EQ(spy.rowsOf(kType), GetParam().english
                                         ? std::vector<std::string>({"Wide(Universal)"})
                                         : std::vector<std::string>({"Narrow", "Wide", "Wide(Universal)"}));
        EXPECT_EQ(spy.selected(kType), GetParam().english ? 0 : 2);
        EXPECT_EQ(spy.text(kTitle), "図面ソ");
        EXPECT_EQ(spy.text(20), "A-1");
        EXPECT_EQ(spy.text(16), "third");
        EXPECT_EQ(spy.text(kCount), "12");
        EXPECT_EQ(spy.text(34), "1");
        EXPECT_EQ(spy.text(97), "10");
        EXPECT_EQ(spy.text(103), "tenth");
        // The middle commands come from the string tables, which only exact English has in English.
        const bool tables = std::string(GetParam().word) == "ENGLISH";
        EXPECT_EQ(spy.rowsOf(kPresets),
                  (std::vector<std::string>{"Untitled", "-", tables ? "Save" : "保存",
                                            tables ? "Save As..." : "別名で保存...", tables ? "Delete" : "削除", "-",
                                            text("書き出し...", "Export..."), text("読み込み...", "Import...")}));
        EXPECT_EQ(spy.selected(kPresets), 0);
    });
    EXPECT_EQ(preset(), "Untitled");
}

TEST_P(ScheduleDialog, OkStoresEachFieldCutToItsLimit) {
    Steps steps;
    const std::string longText(200, 'x');
    for (std::int32_t edit = 8; edit <= 24; edit += 2) steps.push_back(Type(edit, std::to_string(edit) + longText));
    steps.push_back(Type(kCount, "42rows"));
    for (std::int32_t edit = 35; edit <= 40; ++edit) steps.push_back(Type(edit, std::to_string(edit) + longText));
    if (!GetParam().english) steps.push_back(Pick(kType, 1));
    steps.push_back(Press(kOk));
    run(steps);
    const PrefsRecord& p = hand.prefs();
    EXPECT_EQ(p.flZwkDrawType, GetParam().english ? 2 : 1);
    const auto expect = [&](const char* field, int edit, std::size_t limit) {
        EXPECT_EQ(std::string(field), (std::to_string(edit) + longText).substr(0, limit)) << edit;
    };
    expect(p.flZwkTitle, 8, 127);
    expect(p.flZwkCorp, 10, 127);
    expect(p.flZwkComm1, 12, 63);
    expect(p.flZwkComm2, 14, 63);
    expect(p.flZwkComm3, 16, 63);
    expect(p.flZwkDate, 18, 31);
    expect(p.flZwkPatNo, 20, 31);
    expect(p.flZwkScale, 22, 31);
    expect(p.flZwkType, 24, 31);
    EXPECT_EQ(p.flZwkNumOfParts, 42);
    expect(p.flZwkParts[0].Name, 35, 127);
    expect(p.flZwkParts[0].Source, 36, 63);
    expect(p.flZwkParts[0].Quantity, 37, 31);
    expect(p.flZwkParts[0].Weight, 38, 31);
    expect(p.flZwkParts[0].Progress, 39, 63);
    expect(p.flZwkParts[0].News, 40, 63);
    run({Type(kCount, "abc"), Press(kOk)});
    EXPECT_EQ(p.flZwkNumOfParts, 0);
}

TEST_P(ScheduleDialog, CancelStoresNothing) {
    Put(hand.prefs().flZwkTitle, "old");
    run({Type(kTitle, "new"), Type(kCount, "5"), Type(35, "row"), Press(kCancel)});
    EXPECT_STREQ(hand.prefs().flZwkTitle, "old");
    EXPECT_EQ(hand.prefs().flZwkNumOfParts, 0);
    EXPECT_STREQ(hand.prefs().flZwkParts[0].Name, "");
}

TEST_P(ScheduleDialog, TenPagesOfTenRows) {
    Steps steps = {Press(kPrevious), Look(34, "1"), Type(35, "row 1")};
    for (int page = 1; page <= 3; ++page) steps.push_back(Press(kNext));
    steps.insert(steps.end(), {Look(34, "31"), Look(35, ""), Type(38, "heavy"), Press(kNext), Look(34, "41"),
                               Look(38, ""), Press(kPrevious), Look(38, "heavy")});
    for (int page = 4; page <= 9; ++page) steps.push_back(Press(kNext));
    steps.insert(steps.end(), {Look(34, "91"), Look(97, "100"), Type(103, "the last"), Press(kNext), Look(34, "91"),
                               Look(103, "the last"), Press(kOk)});
    run(steps);
    EXPECT_STREQ(hand.prefs().flZwkParts[0].Name, "row 1");
    EXPECT_STREQ(hand.prefs().flZwkParts[30].Weight, "heavy");
    EXPECT_STREQ(hand.prefs().flZwkParts[99].News, "the last");
}

TEST_P(ScheduleDialog, SaveAndDeleteNeedAPreset) {
    look([&] {
        for (std::int32_t row = 0; row <= kImport; ++row)
            EXPECT_EQ(hand.spy->rowIsDisabled(kPresets, row), row == kSave || row == kDelete) << row;
    });
    // Lines and disabled rows leave the selection where it was.
    run({Pick(kPresets, kUpperLine), Look(kPresets, "Untitled"), Pick(kPresets, kLowerLine), Look(kPresets, "Untitled"),
         Pick(kPresets, kSave), Pick(kPresets, kDelete), Look(kPresets, "Untitled"), Press(kCancel)});
    EXPECT_FALSE(fs::exists(folder()) && !fs::is_empty(folder()));
    write("one", "first");
    Put(hand.prefs().zwk_prefspath, "one");
    look([&] {
        for (std::int32_t row = 0; row <= kImport; ++row) EXPECT_FALSE(hand.spy->rowIsDisabled(kPresets, row));
    });
}

TEST_P(ScheduleDialog, APresetReplacesTheFieldsForGood) {
    write("alpha", "Alpha");
    write("beta", "Beta");
    Put(hand.prefs().zwk_prefspath, "beta");
    Put(hand.prefs().flZwkTitle, "unsaved");
    Put(hand.prefs().flZwkParts[50].Name, "unsaved");
    run({Look(kPresets, "beta"), Look(kTitle, "unsaved"), Type(35, "typed"), Press(kNext), Pick(kPresets, 0),
         Look(kPresets, "alpha"), Look(kTitle, "Alpha"), Look(34, "1"), Look(35, "Alpha part"), Type(kTitle, "typed"),
         Pick(kPresets, 0), Look(kTitle, "typed"), Press(kCancel)});
    EXPECT_EQ(preset(), "alpha");
    EXPECT_STREQ(hand.prefs().flZwkTitle, "Alpha");
    EXPECT_STREQ(hand.prefs().flZwkParts[50].Name, "");
    // A file that has gone leaves the fields, and drops what was typed.
    hand.spy->opened = [&] { fs::remove(file("beta")); };
    run({Type(kTitle, "typed"), Pick(kPresets, 1), Look(kPresets, "beta"), Look(kTitle, "Alpha"), Press(kCancel)});
    hand.spy->opened = nullptr;
    EXPECT_EQ(preset(), "beta");
}

TEST_P(ScheduleDialog, SaveWritesWhatStandsInTheDialog) {
    write("one", "first");
    Put(hand.prefs().zwk_prefspath, "one");
    run({Type(kTitle, "saved"), Type(36, "steel"), Pick(kPresets, kSave), Look(kPresets, "one"), Type(kTitle, "again"),
         Pick(kPresets, kSave), Press(kCancel)});
    EXPECT_NE(content(file("one")).find("flZwkTitle = \"again\"\r\n"), std::string::npos);
    EXPECT_NE(content(file("one")).find("flZwkPartsSource00 = \"steel\"\r\n"), std::string::npos);
    EXPECT_STREQ(hand.prefs().flZwkTitle, "again") << "saving collects, whatever follows";
    // A folder in the file's place cannot be written to.
    hand.spy->opened = [&] { fs::remove(file("one")) && fs::create_directories(file("one")); };
    hand.spy->takeTranscript();
    hand.spy->queueAnswer(true);
    run({Pick(kPresets, kSave), Look(kPresets, "one"), Press(kCancel)});
    hand.spy->opened = nullptr;
    EXPECT_TRUE(hand.spy->takeTranscript().at(2).starts_with("message "));
    EXPECT_EQ(names(), (std::vector<std::string>{"Untitled"})) << "what is no file is not listed";
}

TEST_P(ScheduleDialog, SaveAsMakesAPreset) {
    write("beta", "Beta");
    Put(hand.prefs().zwk_prefspath, "beta");
    answerName(text("カスタム-1", "Custom-1"), "alpha");
    run({Type(kTitle, "mine"), Pick(kPresets, 3), Look(kPresets, "alpha"), Press(kCancel)});
    EXPECT_EQ(preset(), "alpha");
    EXPECT_EQ(hand.prefs().zwkPresetIndex, 1) << "below beta until the next opening";
    EXPECT_NE(content(file("alpha")).find("flZwkTitle = \"mine\""), std::string::npos);
    EXPECT_NE(content(file("beta")).find("flZwkTitle = \"Beta\""), std::string::npos);
    EXPECT_EQ(names(), (std::vector<std::string>{"alpha", "beta"}));
    // The next free name is offered; Cancel leaves all as it was.
    write(text("カスタム-1", "Custom-1"), "x");
    answerName(text("カスタム-2", "Custom-2"), "gamma", false);
    run({Pick(kPresets, 5), Look(kPresets, "alpha"), Press(kCancel)});
    EXPECT_EQ(preset(), "alpha");
    EXPECT_FALSE(fs::exists(file("gamma")));
}

TEST_P(ScheduleDialog, ATakenNameSavesIntoTheFormerPreset) {
    write("one", "first");
    write("two", "second");
    Put(hand.prefs().zwk_prefspath, "one");
    const std::string question = std::string("question \"") +
                                 text("プリセット \\\"two\\\" が重複しています。\\r上書きしてよろしいですか？",
                                      "The file already exists. \\rDo you want the 'two' file to overwrite?") +
                                 "\" ";
    for (const bool ok : {true, false}) {
        hand.spy->takeTranscript();
        answerName(text("カスタム-1", "Custom-1"), "two");
        hand.spy->queueAnswer(ok);
        run({Type(kTitle, ok ? "saved" : "not saved"), Pick(kPresets, 4), Look(kPresets, "one"), Press(kCancel)});
        const std::vector<std::string> said = hand.spy->takeTranscript();
        EXPECT_NE(std::find(said.begin(), said.end(), question + (ok ? "ok" : "cancel")), said.end());
        EXPECT_EQ(preset(), ok ? "one" : "two");
        EXPECT_NE(content(file("one")).find("flZwkTitle = \"saved\""), std::string::npos);
        EXPECT_NE(content(file("two")).find("flZwkTitle = \"second\""), std::string::npos);
    }
    EXPECT_STREQ(hand.prefs().flZwkTitle, "saved");
}

TEST_P(ScheduleDialog, ATakenNameOverUntitledWritesNothing) {
    Put(hand.prefs().zwk_prefspath, "");
    hand.spy->opened = [&] { write("two", "second"); };
    answerName(text("カスタム-1", "Custom-1"), "two");
    hand.spy->queueAnswer(true);
    run({Type(kTitle, "new"), Pick(kPresets, kSaveAs), Look(kPresets, "Untitled"), Press(kCancel)});
    hand.spy->opened = nullptr;
    EXPECT_EQ(preset(), "Untitled");
    EXPECT_FALSE(fs::exists(file("Untitled")));
    EXPECT_NE(content(file("two")).find("flZwkTitle = \"second\""), std::string::npos);
}

TEST_P(ScheduleDialog, ANameThatIsNoFileNameIsTold) {
    const int beeps = hand.spy->beeps();
    int told = 0;
    for (const char* name : {"a/b", "..", "", "sub\\name"}) {
        hand.spy->takeTranscript();
        answerName(text("カスタム-1", "Custom-1"), name);
        hand.spy->queueAnswer(true);
        run({Pick(kPresets, kSaveAs), Look(kPresets, "Untitled"), Press(kCancel)});
        std::string shown;
        for (const std::string& line : hand.spy->takeTranscript())
            if (line.starts_with("message ")) shown = line;
        const std::string quoted = std::string(name) == "sub\\name" ? "sub\\\\name" : name;
        EXPECT_EQ(shown,
                  GetParam().english
                      ? "message \"Create '" + quoted +
                            "' File is Failed.\\rDestination file already exists or filename is invalid.\" ok"
                      : "message \"\\\"" + quoted +
                            "\\\" ファイルを作成出来ませんでした。[-1]\\rファイル名が不適切か重複しています。\" ok");
        EXPECT_EQ(hand.spy->lastIcon, platform::MessageIcon::information);
        EXPECT_EQ(hand.spy->lastButtons, platform::MessageButtons::ok);
        EXPECT_EQ(hand.spy->beeps(), beeps + ++told);
        EXPECT_EQ(preset(), "Untitled");
    }
    for (const auto& entry : fs::recursive_directory_iterator(hand.plugin->profile()))
        EXPECT_TRUE(entry.is_directory() || entry.path().filename() == "Quorvel.ini") << entry.path();
}

TEST_P(ScheduleDialog, DeleteGoesToANeighbourAndAtLastToUntitled) {
    for (const char* name : {"a", "b", "c"}) write(name, name);
    std::ofstream(folder().parent_path() / "Quorvel.fct") << "flZwkTitle = \"factory\"\r\nflZwkNumOfParts = 3\r\n";
    Put(hand.prefs().zwk_prefspath, "b");
    const std::string question =
        std::string("question \"") +
        text("プリセット \\\"b\\\" を完全に削除しますか？", "Do you want to completely remove the file \\\"b\\\"?");
    hand.spy->takeTranscript();
    hand.spy->queueAnswer(false);
    run({Type(kTitle, "typed"), Pick(kPresets, 6), Look(kPresets, "b"), Look(kTitle, "typed"), Press(kCancel)});
    EXPECT_TRUE(fs::exists(file("b")));
    EXPECT_EQ(hand.spy->takeTranscript().at(1), question + "\" cancel");
    for (int i = 0; i < 3; ++i) hand.spy->queueAnswer(true);
    run({Pick(kPresets, 6), Look(kPresets, "c"), Look(kTitle, "c"), Pick(kPresets, 5), Look(kPresets, "a"),
         Look(kTitle, "a"), Look(35, "a part"), Pick(kPresets, 4), Look(kPresets, "Untitled"), Look(kTitle, "factory"),
         Look(kCount, "3"), Press(kCancel)});
    EXPECT_TRUE(fs::is_empty(folder()));
    EXPECT_EQ(preset(), "Untitled");
}

TEST_P(ScheduleDialog, UntitledCanBeChosenAgain) {
    std::ofstream(fs::path(hand.plugin->profile()) / "Adobe/Illustrator/Prefs/Quorvel.fct")
        << "flZwkTitle = \"factory\"\r\n";
    answerName(text("カスタム-1", "Custom-1"), "mine");
    run({Type(kTitle, "typed"), Pick(kPresets, kSaveAs), Look(kPresets, "mine"), Pick(kPresets, 0),
         Look(kPresets, "Untitled"), Look(kTitle, "factory"), Press(kCancel)});
    EXPECT_EQ(preset(), "Untitled");
    EXPECT_EQ(names(), (std::vector<std::string>{"Untitled", "mine"}));
}

TEST_P(ScheduleDialog, PartsListsGoOutAndIn) {
    const std::string path = hand.plugin->profile() + "/list.csv";
    hand.spy->queueFile(path);
    run({Type(kTitle, "out"), Type(kCount, "1"), Type(35, "bolt"), Pick(kPresets, kExport), Look(kPresets, "Untitled"),
         Press(kCancel)});
    EXPECT_EQ(hand.spy->lastFilter, "*.csv");
    EXPECT_EQ(hand.spy->lastProposedName, "Untitled.csv");
    EXPECT_EQ(content(path),
              "2\r\n\"out\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n1\r\n"
              "\"bolt\",\"\",\"\",\"\",\"\",\"\"\r\n");
    std::ofstream(path, std::ios::app) << "\"nut\",\"brass\"\r\n";
    write("one", "first");
    Put(hand.prefs().zwk_prefspath, "one");
    hand.spy->queueFile(path);
    run({Type(35, "typed"), Press(kNext), Pick(kPresets, kImport), Look(kPresets, "one"), Look(kTitle, "out"),
         Look(34, "1"), Look(35, "bolt"), Look(42, "nut"), Look(43, "brass"), Look(kCount, "1"), Press(kCancel)});
    EXPECT_EQ(preset(), "one") << "a later Save goes to the current preset";
    EXPECT_STREQ(hand.prefs().flZwkParts[1].Source, "brass");
    // A character that the code page lacks is asked about.
    std::ofstream(path) << "2\n\"Überplatte\"\n";
    for (const bool replaces : {false, true}) {
        hand.spy->queueFile(path);
        hand.spy->queueAnswer(replaces);
        run({Pick(kPresets, kImport), Look(kTitle, replaces ? "?berplatte" : "out"), Press(kCancel)});
    }
    Put(hand.prefs().flZwkTitle, "out");
    // Refused, unreadable and unwritable files change nothing; what could not be written is told.
    hand.spy->queueFileRefusal();
    hand.spy->queueFileRefusal();
    hand.spy->queueFile(hand.plugin->profile() + "/none.csv");
    hand.spy->queueFile(hand.plugin->profile() + "/none/none.csv");
    hand.spy->queueAnswer(true);
    const int beeps = hand.spy->beeps();
    run({Pick(kPresets, kImport), Pick(kPresets, kExport), Pick(kPresets, kImport), Pick(kPresets, kExport),
         Look(kTitle, "out"), Press(kCancel)});
    EXPECT_EQ(hand.spy->beeps(), beeps);
}

TEST_P(ScheduleDialog, EnglishShowsTheUniversalTypeAlone) {
    write("one", "first");
    std::ofstream(file("one")) << "flZwkTitle = \"narrow\"\r\n";  // type 0
    Put(hand.prefs().zwk_prefspath, "other");
    run({Pick(kPresets, 1), Look(kTitle, "narrow"), Look(kType, GetParam().english ? "Wide(Universal)" : "Narrow"),
         Pick(kPresets, 3), Press(kCancel)});
    EXPECT_TRUE(content(file("one")).starts_with(GetParam().english ? "flZwkDrawType = 2" : "flZwkDrawType = 0"));
}

}  // namespace
}  // namespace quorvel::tests
