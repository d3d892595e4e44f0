// The preference file by what a user meets: settings come back, hand-made files are read by their rules, and presets
// touch the title block alone.
#include "plugin/settings/prefs_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>

#include "platform/headless/headless.h"
#include "plugin/settings/prefs_keys.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<PluginGlobals> Defaults() {
    auto globals = std::make_unique<PluginGlobals>();
    StoreDefaults(globals.get());
    return globals;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        EXPECT_NE(end, std::string::npos) << "a line without CR LF";
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

int CountOf(const std::vector<std::string>& lines, std::string_view start) {
    return static_cast<int>(
        std::count_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(start); }));
}

// Bytes that a file can hold: everything but quotes, line ends, tabs and the zero.
std::string RandomText(std::mt19937* random, std::size_t limit) {
    std::string text;
    const std::size_t length = 1 + (*random)() % limit;
    while (text.size() < length) {
        const char sign = static_cast<char>(1 + (*random)() % 255);
        if (sign != '"' && sign != '\r' && sign != '\n' && sign != '\t') text += sign;
    }
    return text;
}

void FillAtRandom(PluginGlobals* globals, std::mt19937* random) {
    for (const PrefsKey& key : PrefsKeys()) {
        std::string value = std::to_string(static_cast<std::int16_t>((*random)()));
        if (key.type == FieldType::text) value = RandomText(random, std::min<std::size_t>(key.size - 1, 200));
        if (key.type == FieldType::real) value = std::to_string(static_cast<int>((*random)()) / 7919.0);
        if (key.type == FieldType::language) value = (*random)() % 2 == 0 ? "KOREAN" : "ENGLISH";
        StorePrefsField(globals, key, value);
    }
    for (const int row : {0, 9, 10, 99}) {
        for (const PartColumn& column : kPartColumns) {
            StorePartText(&globals->prefs.flZwkParts[row], column, RandomText(random, column.size - 1));
        }
    }
}

TEST(PrefsText, AllSettingsComeBack) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 50; ++round) {
        auto written = Defaults();
        auto read = Defaults();
        FillAtRandom(written.get(), &random);
        const std::string text = ComposePrefsText(written.get(), true);
        ParsePrefsText(read.get(), text, true);
        ASSERT_EQ(ComposePrefsText(read.get(), true), text);
        for (const PrefsKey& key : PrefsKeys()) {
            const bool isSaved = key.name != "flUseFcnt" && key.name != "flCsvRaw";
            ASSERT_EQ(FormatPrefsField(read.get(), key), isSaved ? FormatPrefsField(written.get(), key) : "0")
                << key.name;
        }
    }
}

TEST(PrefsText, TheMainFileHasItsLinesInOrder) {
    auto globals = Defaults();
    globals->language = kKorean;
    const std::vector<std::string> lines = LinesOf(ComposePrefsText(globals.get(), true));
    EXPECT_EQ(lines.size(), 64U + 11U + 2U);
    EXPECT_EQ(lines.front(), "toolMode = 0");
    EXPECT_EQ(lines[1], "zwk_prefspath = \"\"");
    EXPECT_EQ(lines[3], "flOutLname = \"<<dimension lines>>\"");
    EXPECT_EQ(CountOf(lines, "flUseFlng = 1"), 2);
    EXPECT_EQ(CountOf(lines, "flUseFcnt"), 0);
    EXPECT_EQ(CountOf(lines, "flGrWidth = 14.1732"), 1) << "six digits";
    EXPECT_EQ(lines[lines.size() - 2], "oldmode = 0");
    EXPECT_EQ(lines.back(), "language = KOREAN");

    EXPECT_EQ(LinesOf(ComposePrefsText(globals.get(), false)).size(), 11U) << "a preset";
}

TEST(PrefsText, PartsRowsKeepTheirPlaces) {
    auto globals = Defaults();
    StorePartText(&globals->prefs.flZwkParts[7], kPartColumns[5], "bolt");
    const std::vector<std::string> lines = LinesOf(ComposePrefsText(globals.get(), false));
    EXPECT_EQ(lines.size(), 11U + 6U);
    EXPECT_EQ(lines[11], "flZwkPartsName07 = \"\"");
    EXPECT_EQ(lines[16], "flZwkPartsNews07 = \"bolt\"");

    ParsePrefsText(globals.get(),
                   "flZwkPartsQuantity42 = 3\n"
                   "flZwkPartsW42 = light\n"      // a shortened stem
                   "flZwkParts43 = first\n"       // ... goes to the first column that begins so
                   "flZwkPartsNamely44 = lost\n"  // a longer one matches nothing
                   "flZwkPartsName4x = lost\n"
                   "flZwkPartsName = lost\n",
                   false);
    const ZwkPartRow* rows = globals->prefs.flZwkParts;
    EXPECT_STREQ(rows[42].Quantity, "3");
    EXPECT_STREQ(rows[42].Weight, "light");
    EXPECT_STREQ(rows[43].Name, "first");
    EXPECT_TRUE(PartRowIsEmpty(rows[44]));
    EXPECT_TRUE(PartRowIsEmpty(rows[4]));
    EXPECT_TRUE(PartRowIsEmpty(rows[7])) << "a row that the file lacks is empty";
}

TEST(PrefsText, LinesAreReadByTheirRules) {
    struct Case {
        const char* line;
        const char* title;
    };
    const Case cases[] = {
        {"flZwkTitle = \"a=b, c\"", "a=b, c"},
        {"flZwkTitle = a=b, c", "a"},
        {"flZwkTitle = a b c", "abc"},
        {"\t flZwkTitle\t=  \"a\tb\"", "ab"},
        {"flZwkTitle = \"a\"b\"c d\"", "abc d"},
        {"flZwkTitle = \"open to the end", "open to the end"},
        {"   ' flZwkTitle = note", ""},
        {"flZwkTitle = ' note", "'note"},
        {"flZwkTitle", ""},
        {"= a", ""},
        {"flzwktitle = a", ""},
        {"flZwkTitle, a", "a"},
    };
    for (const Case& c : cases) {
        auto globals = Defaults();
        ParsePrefsText(globals.get(), c.line, true);
        EXPECT_STREQ(globals->prefs.flZwkTitle, c.title) << c.line;
    }
}

TEST(PrefsText, EveryLineEndIsALineEnd) {
    for (const std::string end : {"\r", "\n", "\r\n"}) {
        auto globals = Defaults();
        // An open quote ends with its line.
        ParsePrefsText(globals.get(), "flZwkTitle = \"x" + end + end + "flZwkCorp = a b" + end + "flScFix = 3", true);
        EXPECT_STREQ(globals->prefs.flZwkTitle, "x");
        EXPECT_STREQ(globals->prefs.flZwkCorp, "ab");
        EXPECT_EQ(globals->prefs.flScFix, 3);
    }
    auto globals = Defaults();
    ParsePrefsText(globals.get(), std::string_view("flScFix = 3\n\0flScFix = 4\n", 25), true);
    EXPECT_EQ(globals->prefs.flScFix, 3) << "a zero ends the file";
}

TEST(PrefsText, ALongLineIsCut) {
    auto globals = Defaults();
    // Of 256 kept characters `zwk_prefspath="` takes 15, so 241 of the value are left.
    ParsePrefsText(globals.get(), "zwk_prefspath = \"" + std::string(300, 'p') + "\"\nflScFix = 3\n", true);
    EXPECT_EQ(globals->prefs.zwk_prefspath, std::string(241, 'p'));
    EXPECT_EQ(globals->prefs.flScFix, 3);
    // Dropped blanks do not count.
    ParsePrefsText(globals.get(), "flScFix" + std::string(500, ' ') + "= 4", true);
    EXPECT_EQ(globals->prefs.flScFix, 4);
}

TEST(PrefsText, TextsAreCutToTheirFields) {
    for (const PrefsKey& key : PrefsKeys()) {
        if (key.type != FieldType::text) continue;
        auto globals = Defaults();
        StorePrefsField(globals.get(), key, std::string(400, 'x'));
        EXPECT_EQ(FormatPrefsField(globals.get(), key), std::string(key.size - 1, 'x')) << key.name;
    }
    auto globals = Defaults();
    ParsePrefsText(globals.get(), "flZwkComm1 = kept\nflZwkPatNo = " + std::string(63, '8'), false);
    EXPECT_EQ(globals->prefs.flZwkPatNo, std::string(31, '8'));
    EXPECT_STREQ(globals->prefs.flZwkComm1, "kept");
}

TEST(PrefsText, NumbersAreReadAsFarAsTheyGo) {
    auto globals = Defaults();
    ParsePrefsText(globals.get(),
                   "flRdLead = 70000\nflScFix = -2x\nflArUnit = x\nflScale = 1e400\nflOsLead = 2.5pt\nflRadius =\n"
                   "flUseFcnt = 1\nlanguage = english\n",
                   true);
    EXPECT_EQ(globals->prefs.flRdLead, 70000 - 65536);
    EXPECT_EQ(globals->prefs.flScFix, -2);
    EXPECT_EQ(globals->prefs.flArUnit, 0);
    EXPECT_GT(globals->prefs.flScale, 3e38F);
    EXPECT_EQ(globals->prefs.flOsLead, 2.5F);
    EXPECT_EQ(globals->prefs.flRadius, 0.0F);
    EXPECT_EQ(globals->prefs.flUseFcnt, 1) << "a hand-made file may set the centre switch";
    EXPECT_EQ(globals->language, kJapanese) << "words of a language are read by case";
}

TEST(PrefsText, ScriptsSetSingleFields) {
    auto globals = Defaults();
    EXPECT_TRUE(SetFieldByKey(globals.get(), "flMrkComment", ""));
    EXPECT_TRUE(SetFieldByKey(globals.get(), "flScale", "0.5"));
    EXPECT_TRUE(SetFieldByKey(globals.get(), "flArThick", ""));
    EXPECT_TRUE(SetFieldByKey(globals.get(), "language", "ENGLISH"));
    EXPECT_TRUE(SetFieldByKey(globals.get(), "flZwkPartsNews03", "x"));
    EXPECT_FALSE(SetFieldByKey(globals.get(), "flscale", "2"));
    EXPECT_STREQ(globals->prefs.flMrkComment, "");
    EXPECT_EQ(globals->prefs.flScale, 0.5F);
    EXPECT_EQ(globals->prefs.flArThick, 0.1F);
    EXPECT_EQ(globals->language, kEnglish);
    EXPECT_STREQ(globals->prefs.flZwkParts[3].News, "x");
}

// Files below a documents folder of the test's own.
class PrefsFiles : public testing::Test {
  protected:
    void SetUp() override {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        documents_ = fs::path(testing::TempDir()) / (std::string("quorvel_prefs_") + info->name());
        fs::remove_all(documents_);
        fs::create_directories(documents_);
        backend_.setDocumentsFolder(documents_.string());
        platform::installBackend(&backend_);
    }
    void TearDown() override {
        platform::installBackend(nullptr);
        fs::remove_all(documents_);
    }
    fs::path prefs() const { return documents_ / "Adobe" / "Illustrator" / "Prefs"; }
    static void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    std::string mainFile() const {
        std::stringstream text;
        text << std::ifstream(prefs() / "Quorvel.ini", std::ios::binary).rdbuf();
        return text.str();
    }
    int fileCount() const {
        int count = 0;
        for (const auto& entry : fs::recursive_directory_iterator(documents_)) count += entry.is_regular_file();
        return count;
    }

    fs::path documents_;
    platform::HeadlessBackend backend_;
};

TEST_F(PrefsFiles, TheMainFileIsWrittenInItsOrderAndKeepsForeignLines) {
    auto globals = Defaults();
    EXPECT_EQ(ReadPrefsFile(globals.get(), nullptr), 0) << "the first run";
    EXPECT_EQ(WritePrefsFile(globals.get(), nullptr), 1);
    EXPECT_EQ(mainFile(), ComposePrefsText(globals.get(), true));
    write(prefs() / "Quorvel.ini", "' by hand\nflUseFlng = 0\nmine = 1\nflUseFcnt = 1\nflScFix = 2\nflScale=2.0");
    EXPECT_EQ(ReadPrefsFile(globals.get(), nullptr), 1);
    EXPECT_EQ(globals->prefs.flScFix, 2);
    globals->prefs.flUseFcnt = 0;  // never saved
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(WritePrefsFile(globals.get(), nullptr), 1);
        std::string expected = ComposePrefsText(globals.get(), true);
        const std::string twice = "flUseFlng = 0\r\nflUseFlng = 0\r\n";
        expected.insert(expected.find(twice) + twice.size(), "mine = 1\r\nflUseFcnt = 1\r\n");
        EXPECT_EQ(mainFile(), "' by hand\r\n" + expected);
    }
}

// Two programs with one profile: each has read the file, then both change it.
TEST_F(PrefsFiles, ProgramsKeepEachOthersSettings) {
    auto first = Defaults(), second = Defaults();
    const auto set = [](const std::unique_ptr<PluginGlobals>& globals, const char* key, const char* value) {
        ASSERT_TRUE(SetFieldByKey(globals.get(), key, value));
    };
    set(first, "flArDim2UnitName", "tsubo");
    set(first, "flZwkPartsName03", "bolt");
    set(first, "flZwkPartsName05", "nut");
    ASSERT_EQ(WritePrefsFile(first.get(), nullptr), 1);
    ASSERT_EQ(ReadPrefsFile(first.get(), nullptr), 1);
    ASSERT_EQ(ReadPrefsFile(second.get(), nullptr), 1);

    set(first, "flScale", "0.5");
    set(first, "flArDim2UnitName", "");
    set(first, "flZwkPartsName03", "");
    set(first, "flZwkPartsWeight05", "2 kg");
    ASSERT_EQ(WritePrefsFile(first.get(), nullptr), 1);
    set(second, "flScFix", "3");
    set(second, "flZwkPartsName07", "washer");
    ASSERT_EQ(WritePrefsFile(second.get(), nullptr), 1);
    ASSERT_EQ(WritePrefsFile(second.get(), nullptr), 1) << "what the other one has set is still the other one's";

    auto wanted = Defaults();
    for (const auto& [key, value] :
         {std::pair("flScale", "0.5"), std::pair("flScFix", "3"), std::pair("flZwkPartsName05", "nut"),
          std::pair("flZwkPartsWeight05", "2 kg"), std::pair("flZwkPartsName07", "washer")})
        set(wanted, key, value);
    EXPECT_EQ(mainFile(), ComposePrefsText(wanted.get(), true));
    // Of one key that both change, the later one counts.
    set(first, "flScFix", "1");
    ASSERT_EQ(WritePrefsFile(first.get(), nullptr), 1);
    set(wanted, "flScFix", "1");
    EXPECT_EQ(mainFile(), ComposePrefsText(wanted.get(), true));
}

TEST_F(PrefsFiles, PresetsHoldTheTitleBlockAlone) {
    auto globals = Defaults();
    write(prefs() / "Quorvel" / "a.ini", "flScale = 2\nlanguage = ENGLISH\nflZwkCorp = Selkie\n");
    StorePrefsField(globals.get(), *FindPrefsKey("flZwkTitle"), "old");
    EXPECT_EQ(ReadPrefsFile(globals.get(), "a"), 1);
    EXPECT_EQ(globals->prefs.flScale, 1.0F);
    EXPECT_EQ(globals->language, kJapanese);
    EXPECT_STREQ(globals->prefs.flZwkCorp, "Selkie");
    EXPECT_STREQ(globals->prefs.flZwkTitle, "");
    EXPECT_EQ(ReadPrefsFile(globals.get(), "b"), 0);
    EXPECT_STREQ(globals->prefs.flZwkCorp, "Selkie") << "a file that is not there clears nothing";
}

TEST_F(PrefsFiles, UntitledIsTheFactoryFile) {
    auto globals = Defaults();
    EXPECT_EQ(WritePrefsFile(globals.get(), "Untitled"), 1);
    EXPECT_EQ(fileCount(), 0);
    EXPECT_EQ(ReadPrefsFile(globals.get(), "Untitled"), 0);
    write(prefs() / "Quorvel.fct", "flZwkCorp = Selkie\nflScale = 2\n");
    EXPECT_EQ(ReadPrefsFile(globals.get(), "Untitled"), 1);
    EXPECT_STREQ(globals->prefs.flZwkCorp, "Selkie");
    EXPECT_EQ(globals->prefs.flScale, 1.0F);
}

TEST_F(PrefsFiles, APresetsNameIsReadInTheCodePage) {
    auto globals = Defaults();
    EXPECT_EQ(WritePrefsFile(globals.get(), "\x90\x7d\x96\xca"), 1);
    EXPECT_TRUE(fs::exists(prefs() / "Quorvel" / "図面.ini"));
}

TEST_F(PrefsFiles, APresetsNameLeadsNowhereElse) {
    auto globals = Defaults();
    for (const char* name : {"..", "../x", "..\\x", "a/b", "a\\b", "", "a\nb"}) {
        EXPECT_EQ(WritePrefsFile(globals.get(), name), 0) << name;
        EXPECT_EQ(ReadPrefsFile(globals.get(), name), 0) << name;
    }
    EXPECT_EQ(fileCount(), 0);
}

}  // namespace
}  // namespace quorvel
