// Which files of the preset folder are presets, in which order they are listed, and which name is offered for a new
// one.
#include "plugin/settings/presets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/plugin_host.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

struct Presets : testing::Test {
    Presets() {
        EXPECT_EQ(plugin.start(), kNoErr);
        fs::create_directories(folder);
    }
    void make(const std::string& fileName) { std::ofstream(folder / fileName) << "x"; }

    tests::PluginHost plugin;
    fs::path folder = fs::path(plugin.profile()) / "Adobe/Illustrator/Prefs/Quorvel";
};

TEST_F(Presets, AreTheIniFilesInOrder) {
    for (const char* file :
         {"b.ini", "A.ini", "C.INI", "Bracket.ini", "_last.ini", "@hidden.ini", "Untitled.ini", "Untitled2.ini",
          "untitled3.ini", ".ini", "notes.txt", "old.ini.bak", "old.ini~", "x.INI.y.ini", "x.Ini"})
        make(file);
    fs::create_directories(folder / "folder.ini");
    // "_" stands before the small letters to which the large ones are brought.
    EXPECT_EQ(ListPresetNames(), (Names{"_last", "A", "b", "Bracket", "C", "untitled3", "x"}));
}

TEST_F(Presets, NamesAreOfTheCodePage) {
    make("図面.ini");
    make("caf\xC3\xA9 \xF0\x9F\x98\x80.ini");  // neither sign is in the code page
    const Names names = ListPresetNames();
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0], "\x90\x7D\x96\xCA");
    EXPECT_TRUE(PresetExists(names[0]));
}

TEST_F(Presets, AHundredAreListed) {
    for (int i = 0; i < 130; ++i) make("p" + std::to_string(1000 + i) + ".ini");
    const Names names = ListPresetNames();
    ASSERT_EQ(names.size(), 100U);
    EXPECT_EQ(names.front(), "p1000");
    EXPECT_EQ(names.back(), "p1099");
}

TEST_F(Presets, TheFirstFreeNumberIsOffered) {
    EXPECT_EQ(ProposePresetName(), "Custom-1");
    make("Custom-1.ini");
    make("Custom-3.ini");
    EXPECT_EQ(ProposePresetName(), "Custom-2");
    for (int i = 2; i <= 997; ++i) make("Custom-" + std::to_string(i) + ".ini");
    EXPECT_EQ(ProposePresetName(), "Custom-998");
    make("Custom-998.ini");
    EXPECT_EQ(ProposePresetName(), "Custom-998") << "the last, when all are taken";
    EXPECT_FALSE(PresetExists("Custom-999"));
    EXPECT_FALSE(PresetExists("../Quorvel"));
    EXPECT_FALSE(PresetExists(""));
}

}  // namespace
}  // namespace quorvel
