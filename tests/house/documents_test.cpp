// The documents name files and folders of the house; each name is that of a file that exists.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

// What is set as code and is a path: it has a slash between its parts, or an extension.
std::set<std::string> pathsIn(const std::string& text) {
    static const std::regex path("`((?:[a-z_0-9]+/)+[a-z_0-9]+(?:\\.[a-z]+)?|[a-z_0-9]+\\.(?:cpp|h|md))`");
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), path), end; match != end; ++match)
        found.insert((*match)[1]);
    return found;
}

bool exists(const std::string& path) {
    const fs::path full = fs::path(QUORVEL_SOURCE_DIR) / path;
    if (fs::exists(full)) return true;
    return path.find('.') == std::string::npos &&
           (fs::exists(full.string() + ".h") || fs::exists(full.string() + ".cpp"));
}

std::string document(const std::string& name) {
    std::ifstream in(fs::path(QUORVEL_SOURCE_DIR) / name);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Documents, NameFilesThatExist) {
    for (const char* name : {"docs/architecture.md", "CONTRIBUTING.md", "README.md"}) {
        const std::set<std::string> paths = pathsIn(document(name));
        EXPECT_FALSE(paths.empty()) << name;
        for (const std::string& path : paths)
            EXPECT_TRUE(exists(path) || path.rfind("build/", 0) == 0) << name << " names " << path;
    }
}

// The road of one click and that of one file are followed from end to end, each in one paragraph.
TEST(Documents, TheTwoRoadsAreAParagraphEach) {
    const std::string text = document("docs/architecture.md");
    for (const char* heading : {"## The road of one click\n\n", "## The road of one file\n\n"}) {
        const std::size_t start = text.find(heading);
        ASSERT_NE(start, std::string::npos) << heading;
        const std::size_t first = start + std::string(heading).size();
        const std::set<std::string> paths = pathsIn(text.substr(first, text.find("\n\n", first) - first));
        EXPECT_GE(paths.size(), 8U) << heading;
    }
}

}  // namespace
