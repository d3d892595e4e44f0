// Parts lists as CSV: what the system writes, what spreadsheets write, and what nobody should write.
#include "plugin/settings/parts_csv.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>

#include "platform/text.h"
#include "plugin/settings/prefs_file.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;

struct PartsCsv : testing::Test {
    PartsCsv() {
        StoreDefaults(globals.get());
        fs::create_directories(folder);
    }
    ~PartsCsv() override { fs::remove_all(folder); }
    PrefsRecord& read(std::string_view text) {
        ParsePartsCsv(globals.get(), text);
        return globals->prefs;
    }
    std::string written() {
        const std::string path = (folder / "out.csv").string();
        EXPECT_EQ(WritePartsCsv(globals.get(), path), 1);
        std::ifstream in(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        return bytes.str();
    }
    static std::ptrdiff_t lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }
    // Every text of the block ends within its field.
    void expectWhole() {
        const PrefsRecord& p = globals->prefs;
        const auto ends = [](const auto& field) { return std::memchr(field, 0, sizeof field) != nullptr; };
        EXPECT_TRUE(ends(p.flZwkTitle) && ends(p.flZwkCorp) && ends(p.flZwkDate) && ends(p.flZwkScale));
        EXPECT_TRUE(ends(p.flZwkType) && ends(p.flZwkPatNo) && ends(p.flZwkComm1) && ends(p.flZwkComm3));
        for (const ZwkPartRow& row : p.flZwkParts)
            EXPECT_TRUE(ends(row.Name) && ends(row.Source) && ends(row.Quantity) && ends(row.Weight) &&
                        ends(row.Progress) && ends(row.News));
    }

    fs::path folder = fs::path(testing::TempDir()) / ("parts_csv_" + std::to_string(getpid()));
    std::unique_ptr<PluginGlobals> globals = std::make_unique<PluginGlobals>();
    platform::UnwritableCharacter unwritable;
};

constexpr char kHeader[] =
    "1\r\n\"title\"\r\n\"corp\"\r\n\"date\"\r\n\"scale\"\r\n\"type\"\r\n\"pat\"\r\n\"c1\"\r\n\"c2\"\r\n\"c3\"\r\n2\r\n";

TEST_F(PartsCsv, WhatIsWrittenComesBack) {
    PrefsRecord& p = read(kHeader);
    std::snprintf(p.flZwkTitle, sizeof p.flZwkTitle, "a=b, 'c' ");
    std::snprintf(p.flZwkParts[1].News, sizeof p.flZwkParts[1].News, "x, y");
    std::snprintf(p.flZwkParts[2].Name, sizeof p.flZwkParts[2].Name, "beyond the count");
    const std::string text = written();
    EXPECT_EQ(text,
              "1\r\n\"a=b, 'c' \"\r\n\"corp\"\r\n\"date\"\r\n\"scale\"\r\n\"type\"\r\n\"pat\"\r\n\"c1\"\r\n\"c2\"\r\n"
              "\"c3\"\r\n2\r\n\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"\",\"\",\"\",\"\",\"\",\"x, y\"\r\n");
    read(text);
    EXPECT_STREQ(p.flZwkTitle, "a=b, 'c' ");
    EXPECT_STREQ(p.flZwkParts[1].News, "x, y");
    EXPECT_STREQ(p.flZwkParts[2].Name, "");
    EXPECT_EQ(written(), text);
    p.flZwkNumOfParts = 0;
    EXPECT_EQ(lines(written()), 11);
    p.flZwkNumOfParts = 30000;
    EXPECT_EQ(lines(written()), 111);
    p.flZwkNumOfParts = -7;
    EXPECT_EQ(lines(written()), 11);
}

TEST_F(PartsCsv, RandomBlocksComeBack) {
    std::mt19937 random(5);
    const std::string signs = "abcXYZ 019=,'.-/\x83\x5C\x95\x7D";
    const auto fill = [&](auto& field) {
        std::string text(random() % sizeof field, ' ');
        for (char& c : text) c = signs[random() % signs.size()];
        std::memcpy(field, text.c_str(), text.size() + 1);
    };
    for (int round = 0; round < 50; ++round) {
        PrefsRecord& p = globals->prefs;
        for (auto* field : {&p.flZwkDate, &p.flZwkScale, &p.flZwkType, &p.flZwkPatNo}) fill(*field);
        for (auto* field : {&p.flZwkComm1, &p.flZwkComm2, &p.flZwkComm3}) fill(*field);
        fill(p.flZwkTitle);
        fill(p.flZwkCorp);
        p.flZwkNumOfParts = 100;
        for (ZwkPartRow& row : p.flZwkParts) {
            fill(row.Name);
            fill(row.Source);
            fill(row.Quantity);
            fill(row.Weight);
            fill(row.Progress);
            fill(row.News);
        }
        const std::string text = written();
        read(text);
        EXPECT_EQ(written(), text);
    }
}

TEST_F(PartsCsv, ASpreadsheetsFile) {
    // All texts quoted, numbers bare, blanks and tabs about, comments, an empty line, no end behind the last.
    const PrefsRecord& p = read(
        "' parts of the bracket\r\n0\r\n\"Bracket, left\"\r\n\"\"\r\n \t\"2024/05/01\"\r\n1:2\r\n\r\n\"3rd angle\"\r\n"
        "\"A-1\"\r\nplain text\r\n\"\"\r\n\"\"\r\n3\r\n\"Bolt M6 x 20\",\"SS400\",4,0.0125,,\"see, sheet 2\"\r\n"
        "Nut M6,\"S45C\",4\r\n   'not a part\r\n\"Pin\",\"\",\"\",\"\",\"\",\"\",\"more\",\"columns\"\r\nlast,");
    EXPECT_STREQ(p.flZwkTitle, "Bracket, left");
    EXPECT_STREQ(p.flZwkCorp, "");
    EXPECT_STREQ(p.flZwkDate, "2024/05/01");
    EXPECT_STREQ(p.flZwkScale, "1:2");
    EXPECT_STREQ(p.flZwkPatNo, "A-1");
    EXPECT_STREQ(p.flZwkComm1, "plaintext") << "blanks count inside quotes alone";
    EXPECT_EQ(p.flZwkNumOfParts, 3);
    EXPECT_STREQ(p.flZwkParts[0].Name, "Bolt M6 x 20");
    EXPECT_STREQ(p.flZwkParts[0].Weight, "0.0125");
    EXPECT_STREQ(p.flZwkParts[0].Progress, "");
    EXPECT_STREQ(p.flZwkParts[0].News, "see, sheet 2");
    EXPECT_STREQ(p.flZwkParts[1].Name, "NutM6");
    EXPECT_STREQ(p.flZwkParts[1].Quantity, "4");
    EXPECT_STREQ(p.flZwkParts[1].Weight, "");
    EXPECT_STREQ(p.flZwkParts[2].Name, "Pin");
    EXPECT_STREQ(p.flZwkParts[3].Name, "last");
    EXPECT_STREQ(p.flZwkParts[4].Name, "");
}

TEST_F(PartsCsv, LinesOfOneValueAreTheHeaderWhereverTheyStand) {
    const PrefsRecord& p = read("a,b\r2\nx=y\n\"title\"\r\nbolt\r\nthree, four\r\n\"d\"\n5\n6\n7\n8\n9\n10\n77\n99\n");
    EXPECT_EQ(p.flZwkDrawType, 2);
    EXPECT_STREQ(p.flZwkTitle, "title");
    EXPECT_STREQ(p.flZwkCorp, "bolt");
    EXPECT_STREQ(p.flZwkDate, "d");
    EXPECT_STREQ(p.flZwkComm3, "10");
    EXPECT_EQ(p.flZwkNumOfParts, 77) << "a twelfth is passed over";
    EXPECT_STREQ(p.flZwkParts[0].Source, "b");
    EXPECT_STREQ(p.flZwkParts[1].Source, "y");
    EXPECT_STREQ(p.flZwkParts[2].Name, "three") << "an unquoted comma makes a row";
}

TEST_F(PartsCsv, FieldsAreCutAtTheirLimits) {
    const std::string x(200, 'x');
    std::string header = "1\n";
    for (int i = 0; i < 9; ++i) header += x + "\n";
    const PrefsRecord& p =
        read(header + "5\n" + x.substr(0, 80) + "," + x.substr(0, 80) + "," + x.substr(0, 80) + "," + x.substr(0, 80) +
             "," + x.substr(0, 80) + "," + x.substr(0, 80) + "\n" + x + "," + x + "," + x.substr(0, 150) + "\n");
    EXPECT_EQ(std::strlen(p.flZwkTitle), 127U);
    EXPECT_EQ(std::strlen(p.flZwkPatNo), 31U);
    EXPECT_EQ(std::strlen(p.flZwkComm1), 63U);
    EXPECT_EQ(std::strlen(p.flZwkParts[0].Name), 80U);
    EXPECT_EQ(std::strlen(p.flZwkParts[0].Source), 63U);
    EXPECT_EQ(std::strlen(p.flZwkParts[0].Quantity), 31U);
    EXPECT_EQ(std::strlen(p.flZwkParts[0].News), 63U);
    EXPECT_EQ(std::strlen(p.flZwkParts[1].Name), 127U);
    // A line ends at 512 signs: of the third value 110 are left.
    read(x + "," + x + "," + x);
    EXPECT_EQ(std::strlen(p.flZwkParts[0].Quantity), 31U);
    read(x + x + x.substr(0, 90) + ",,,ab" + x + "\n\"c\",d\n");
    EXPECT_EQ(std::strlen(p.flZwkParts[0].Weight), 19U) << "490 signs and three commas stand before it";
    EXPECT_STREQ(p.flZwkParts[1].Name, "c") << "a quote begins anew on each line";
    expectWhole();
}

TEST_F(PartsCsv, HostileFiles) {
    const std::string header(kHeader, sizeof kHeader - 1);
    std::string rows;
    for (int i = 0; i < 10000; ++i) rows += "part" + std::to_string(i) + ",steel\r\n";
    PrefsRecord& p = read(header + rows);
    EXPECT_STREQ(p.flZwkParts[99].Name, "part99");
    EXPECT_STREQ(p.flZwkComm1, "c1");
    EXPECT_EQ(p.zwkPresetIndex, 0) << "what lies behind the rows is untouched";
    read(std::string(10 << 20, 'x') + "\r\n\"title\"");
    EXPECT_STREQ(p.flZwkTitle, "title");
    read(std::string(10 << 20, ','));
    read(std::string(10 << 20, '"'));
    read(std::string("1\r\n\"ti\0tle\"\r\n\"corp\"", 19));
    EXPECT_STREQ(p.flZwkTitle, "ti") << "a zero byte ends the file";
    EXPECT_STREQ(p.flZwkCorp, "");
    read(std::string(100, '\0'));
    read("999999999999999999999\n");
    read("");
    EXPECT_STREQ(p.flZwkTitle, "");
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        std::string bytes(random() % 4000, '\0');
        for (char& c : bytes) c = random() % 3 == 0 ? "\",=\r\n'\t "[random() % 8] : static_cast<char>(random());
        read(bytes);
        expectWhole();
    }
}

// A spreadsheet runs what begins with a sign, also behind blanks, in wide characters, or behind a quote that ends a
// field.
TEST_F(PartsCsv, NoFieldIsAFormula) {
    struct {
        const char *field, *written;
    } const kRows[] = {
        {"=1+1", "'=1+1"},
        {"@SUM(A1)", "'@SUM(A1)"},
        {"+5V rail", "'+5V rail"},
        {"-2 mm", "'-2 mm"},
        {"  =A1", "'  =A1"},
        {"\x81\x81\x82\x60", "'\x81\x81\x82\x60"},  // wide "=A"
        {"'=1", "''=1"},
        {"-2.5", "-2.5"},
        {"+1e3", "+1e3"},
        {"-", "-"},
        {"\x81\x7C", "\x81\x7C"},  // wide "-"
        {"'quoted'", "'quoted'"},
        {"a=b", "a=b"},
        {"1-2", "1-2"},
    };
    for (const auto& row : kRows) {
        PrefsRecord& p = read(kHeader);
        std::snprintf(p.flZwkTitle, sizeof p.flZwkTitle, "%s", row.field);
        std::snprintf(p.flZwkParts[0].Weight, sizeof p.flZwkParts[0].Weight, "%s", row.field);
        const std::string text = written();
        EXPECT_EQ(text.find("1\r\n\"" + std::string(row.written) + "\"\r\n"), 0U) << text;
        EXPECT_NE(text.find(",\"" + std::string(row.written) + "\","), std::string::npos) << text;
        read(text);
        EXPECT_STREQ(p.flZwkTitle, row.field);
        EXPECT_STREQ(p.flZwkParts[0].Weight, row.field);
    }
    PrefsRecord& p = read(kHeader);
    const std::string longest = "=" + std::string(126, 'x');
    std::snprintf(p.flZwkTitle, sizeof p.flZwkTitle, "%s", longest.c_str());
    read(written());
    EXPECT_EQ(p.flZwkTitle, longest);
    std::snprintf(p.flZwkTitle, sizeof p.flZwkTitle, "x\",\"=1+1");
    EXPECT_NE(written().find("\r\n\"x\"\",\"\"=1+1\"\r\n"), std::string::npos) << "one field of quotes and all";
    ASSERT_TRUE(SetFieldByKey(globals.get(), "flCsvRaw", "1"));
    EXPECT_NE(written().find("\r\n\"x\",\"=1+1\"\r\n"), std::string::npos);
}

TEST_F(PartsCsv, ListsInUtf8AreRecognised) {
    const auto readFile = [&](const std::string& text, bool replaces = false) {
        const std::string path = (folder / "in.csv").string();
        std::ofstream(path, std::ios::binary) << text;
        unwritable = {};
        return ReadPartsCsv(globals.get(), path, replaces, &unwritable);
    };
    const std::string plate = platform::FromUtf8("底板", 932);
    const PrefsRecord& p = globals->prefs;
    EXPECT_EQ(readFile("0\n底板\n"), 1);
    EXPECT_EQ(p.flZwkTitle, plate);
    EXPECT_EQ(readFile("\xEF\xBB\xBF"
                       "0\nplain\n"),
              1);
    EXPECT_STREQ(p.flZwkTitle, "plain") << "the mark is none of the first line";
    EXPECT_EQ(readFile("0\n" + plate + "\n"), 1);
    EXPECT_EQ(p.flZwkTitle, plate) << "in the code page";
    // 0xE9 is no character of its own in either; the list is not UTF-8, so that it is taken as it is.
    EXPECT_EQ(readFile("0\ncaf\xE9\n"), 1);

    const std::string foreign = "0\n\"底, 板\"\nbolt,\"x, y\",Überzug 𝄞\n";
    EXPECT_EQ(readFile("0\n\"kept\"\n"), 1);
    EXPECT_EQ(readFile(foreign), 0);
    EXPECT_STREQ(p.flZwkTitle, "kept");
    EXPECT_EQ(unwritable.row, 3);
    EXPECT_EQ(unwritable.column, 3);
    EXPECT_EQ(unwritable.codePoint, 0xDCU);
    EXPECT_EQ(readFile(foreign, true), 1);
    EXPECT_EQ(p.flZwkTitle, platform::FromUtf8("底, 板", 932));
    EXPECT_STREQ(p.flZwkParts[0].Quantity, "?berzug?") << "unquoted, so that the blank goes";
}

TEST_F(PartsCsv, AFileThatCannotBeReachedChangesNothing) {
    read(kHeader);
    EXPECT_EQ(ReadPartsCsv(globals.get(), (folder / "none.csv").string(), false, &unwritable), 0);
    EXPECT_STREQ(globals->prefs.flZwkTitle, "title");
    EXPECT_EQ(ReadPartsCsv(globals.get(), folder.string(), false, &unwritable), 0) << "a folder is no file";
    EXPECT_EQ(WritePartsCsv(globals.get(), (folder / "none" / "out.csv").string()), 0);
    std::ofstream(folder / "empty.csv");
    EXPECT_EQ(ReadPartsCsv(globals.get(), (folder / "empty.csv").string(), false, &unwritable), 1);
    EXPECT_STREQ(globals->prefs.flZwkTitle, "");
}

}  // namespace
}  // namespace quorvel
