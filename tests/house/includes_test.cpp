// Who may include whom. The rooms depend on each other in one direction only; an include against it fails here.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Include {
    std::string file, target;
    bool bracketed;
};

std::vector<Include> includesBelow(const std::string& folder) {
    static constexpr std::string_view kDirective = "#include ";
    static constexpr std::size_t kName = kDirective.size() + 1;
    std::vector<Include> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(QUORVEL_SOURCE_DIR) / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp" && extension != ".inc") continue;
        std::ifstream in(entry.path());
        const std::string file = fs::relative(entry.path(), QUORVEL_SOURCE_DIR).string();
        for (std::string line; std::getline(in, line);) {
            if (!line.starts_with(kDirective) || line.size() < kName) continue;
            const char opening = line[kName - 1];  // else the name is a macro's
            if (opening == '<' || opening == '"')
                found.push_back({file, line.substr(kName, line.find_first_of(">\"", kName) - kName), opening == '<'});
        }
    }
    return found;
}

bool startsWithAny(const std::string& text, const std::vector<std::string>& prefixes) {
    for (const std::string& prefix : prefixes)
        if (text.rfind(prefix, 0) == 0) return true;
    return false;
}

// Each is a folder of the sources, and the beginning of what is included from it.
const std::vector<std::string>& rooms() {
    static const std::vector<std::string> all = {"hostapi/",  "platform/",    "plugin/", "svg/",   "fonts/",
                                                 "document/", "interchange/", "host/",   "app/",   "cli/",
                                                 "render/",   "desktop/",     "tests/",  "bench/", "fuzz/"};
    return all;
}

struct Rule {
    std::string folder;
    std::vector<std::string> allowed;  // beginnings of the paths that may be included
};

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {
        {"hostapi", {"hostapi/"}},
        {"base", {"base/"}},
        {"files", {"files/", "base/"}},
        {"platform", {"platform/", "files/", "base/"}},
        {"plugin",
         {"plugin/", "hostapi/", "platform/window.h", "platform/surface.h", "platform/dialog.h", "platform/file.h",
          "platform/text.h", "platform/system.h"}},
        {"plugin/geometry", {"plugin/geometry/", "hostapi/types.h"}},
        {"svg", {"base/", "svg/", "hostapi/"}},
        {"svg/values", {"base/", "svg/values/", "hostapi/"}},
        {"svg/markup", {"base/", "svg/markup/", "svg/values/"}},
        {"svg/css", {"base/", "svg/css/", "svg/markup/", "svg/values/", "hostapi/"}},
        {"fonts", {"base/", "fonts/"}},
        {"document", {"base/", "document/", "hostapi/"}},
        {"interchange", {"base/", "files/", "interchange/", "document/", "svg/", "fonts/", "hostapi/"}},
        {"host", {"base/", "host/", "interchange/", "document/", "fonts/", "hostapi/"}},
        {"app", {"base/", "files/", "app/", "host/", "interchange/", "document/", "hostapi/", "platform/"}},
        {"cli", {"base/", "files/", "cli/", "app/", "host/", "interchange/", "document/", "hostapi/", "platform/"}},
        {"render", {"base/", "files/", "render/", "app/", "interchange/", "document/", "svg/", "fonts/", "hostapi/"}},
        {"desktop",
         {"base/", "files/", "desktop/", "render/", "app/", "host/", "interchange/", "document/", "fonts/", "hostapi/",
          "platform/"}},
    };
    return all;
}

TEST(House, IncludesRunOneWay) {
    for (const Rule& rule : rules()) {
        const std::vector<Include> includes = includesBelow(rule.folder);
        EXPECT_FALSE(includes.empty()) << rule.folder;
        for (const Include& include : includes) {
            if (include.bracketed && !startsWithAny(include.target, rooms())) continue;
            EXPECT_TRUE(startsWithAny(include.target, rule.allowed)) << include.file << " includes " << include.target;
        }
    }
}

const std::set<std::string>& standardHeaders() {
    static const std::set<std::string> all = [] {
        std::istringstream names(
            "algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono "
            "cinttypes climits clocale cmath codecvt compare complex concepts condition_variable coroutine "
            "csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque "
            "exception execution filesystem format forward_list fstream functional future initializer_list "
            "iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource "
            "mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator "
            "semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf "
            "string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo "
            "unordered_map unordered_set utility valarray variant vector version");
        return std::set<std::string>(std::istream_iterator<std::string>(names), {});
    }();
    return all;
}

// The plug-in has to build wherever a host is: no system of files, fonts or windows but the one that platform offers.
TEST(House, ThePluginKnowsTheStandardLibraryAlone) {
    for (const char* room : {"plugin", "hostapi"}) {
        int seen = 0;
        for (const Include& include : includesBelow(room)) {
            if (!include.bracketed) continue;
            ++seen;
            EXPECT_TRUE(standardHeaders().count(include.target)) << include.file << " includes " << include.target;
        }
        EXPECT_GT(seen, 0) << room;
    }
}

TEST(House, OnlyMarkupKnowsTheXmlLibrary) {
    int seen = 0;
    for (const std::string& room : rooms()) {
        for (const Include& include : includesBelow(room)) {
            if (include.target.rfind("pugixml", 0) != 0) continue;
            ++seen;
            EXPECT_EQ(include.file.rfind("svg/markup/", 0), 0U) << include.file << " includes " << include.target;
        }
    }
    EXPECT_GT(seen, 0);
}

TEST(House, OnlyTheWindowKnowsQt) {
    static const std::vector<std::string> window = {"platform/qt/",   "render/",           "desktop/",
                                                    "tests/desktop/", "bench/desktop.cpp", "fuzz/painter_fuzzer.cpp"};
    int seen = 0;
    for (const std::string& room : rooms()) {
        for (const Include& include : includesBelow(room)) {
            if (include.target[0] != 'Q') continue;
            ++seen;
            EXPECT_TRUE(startsWithAny(include.file, window)) << include.file << " includes " << include.target;
        }
    }
    EXPECT_GT(seen, 0);
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

}  // namespace
