// Who may include whom. The rooms depend on each other in one direction only; an include against it fails here.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Include {
    std::string file, target;
};

std::vector<Include> includesBelow(const std::string& folder) {
    static const std::regex line("^\\s*#include\\s+\"([^\"]+)\"");
    std::vector<Include> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(QUORVEL_SOURCE_DIR) / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp" && extension != ".inc") continue;
        std::ifstream in(entry.path());
        std::string text;
        std::smatch match;
        while (std::getline(in, text))
            if (std::regex_search(text, match, line))
                found.push_back({fs::relative(entry.path(), QUORVEL_SOURCE_DIR).string(), match[1]});
    }
    return found;
}

bool startsWithAny(const std::string& text, const std::vector<std::string>& prefixes) {
    for (const std::string& prefix : prefixes)
        if (text.rfind(prefix, 0) == 0) return true;
    return false;
}

struct Rule {
    std::string folder;
    std::vector<std::string> allowed;  // beginnings of the paths that may be included
};

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {
        {"hostapi", {"hostapi/"}},
        {"platform", {"platform/"}},
        {"plugin",
         {"plugin/", "hostapi/", "platform/window.h", "platform/dialog.h", "platform/file.h", "platform/text.h",
          "platform/system.h"}},
        {"plugin/geometry", {"plugin/geometry/", "hostapi/types.h"}},
        {"host", {"host/", "hostapi/"}},
        {"cli", {"cli/", "host/", "hostapi/", "platform/"}},
    };
    return all;
}

TEST(House, IncludesRunOneWay) {
    for (const Rule& rule : rules()) {
        const std::vector<Include> includes = includesBelow(rule.folder);
        EXPECT_FALSE(includes.empty()) << rule.folder;
        for (const Include& include : includes)
            EXPECT_TRUE(startsWithAny(include.target, rule.allowed)) << include.file << " includes " << include.target;
    }
}

// Below the shell a room may use the record of state and the shell's services, but none of the shell's own business.
TEST(House, RoomsBelowTheShellDoNotReachIntoIt) {
    static const std::set<std::string> open = {"plugin/shell/globals.h", "plugin/shell/services.h",
                                               "plugin/shell/suites.h", "plugin/shell/tool_state.h"};
    for (const Include& include : includesBelow("plugin")) {
        if (include.file.rfind("plugin/shell/", 0) == 0 || include.target.rfind("plugin/shell/", 0) != 0) continue;
        EXPECT_TRUE(open.count(include.target)) << include.file << " includes " << include.target;
    }
}

TEST(House, EveryFileOfOneSubjectStaysReadable) {
    for (const char* folder : {"plugin", "host", "platform", "cli", "hostapi"}) {
        for (const fs::directory_entry& entry :
             fs::recursive_directory_iterator(fs::path(QUORVEL_SOURCE_DIR) / folder)) {
            if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
            std::ifstream in(entry.path());
            std::string text;
            int lines = 0;
            while (std::getline(in, text)) ++lines;
            EXPECT_LE(lines, 700) << entry.path();
        }
    }
}

}  // namespace
