// How large files, folders and functions may be. The ten longest functions are printed, so that a reviewer sees what
// grows towards the limit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kFileLines = 450, kFunctionLines = 60, kFolderFiles = 40;
constexpr std::size_t kPrinted = 10;

// Folders that the limits hold for, each with all below it.
constexpr const char* kRooms[] = {"base",   "files",    "hostapi", "platform",    "plugin", "svg",
                                  "fonts",  "document", "host",    "interchange", "app",    "cli",
                                  "render", "desktop",  "bench",   "fuzz",        "tests"};

struct SourceFile {
    std::string name;  // from the top of the sources
    std::string text;
};

const std::vector<SourceFile>& sourceFiles() {
    static const std::vector<SourceFile> all = [] {
        std::vector<SourceFile> found;
        for (const char* room : kRooms)
            for (const fs::directory_entry& entry :
                 fs::recursive_directory_iterator(fs::path(QUORVEL_SOURCE_DIR) / room)) {
                const fs::path extension = entry.path().extension();
                if (extension != ".h" && extension != ".cpp" && extension != ".inc") continue;
                std::ifstream in(entry.path(), std::ios::binary);
                found.push_back({fs::relative(entry.path(), QUORVEL_SOURCE_DIR).string(),
                                 std::string(std::istreambuf_iterator<char>(in), {})});
            }
        return found;
    }();
    return all;
}

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '\''; }

// The end of the comment, literal or preprocessor line that begins at the place; the place itself when none does.
std::size_t endOfHidden(std::string_view text, std::size_t at) {
    const auto after = [&](std::string_view mark, std::size_t from) {
        const std::size_t found = text.find(mark, from);
        return found == text.npos ? text.size() : found + mark.size();
    };
    const std::string_view rest = text.substr(at);
    const char before = at == 0 ? '\n' : text[at - 1];
    if (rest.starts_with("//")) return std::min(text.find('\n', at), text.size());
    if (rest.starts_with("/*")) return after("*/", at + 2);
    if (rest.starts_with("R\"")) {
        const std::size_t opening = text.find('(', at);
        return after(')' + std::string(text.substr(at + 2, opening - at - 2)) + '"', opening);
    }
    std::size_t word = at;
    while (word > 0 && isWordCharacter(text[word - 1])) --word;
    const bool isSeparator = word < at && std::isdigit(static_cast<unsigned char>(text[word])) != 0;  // 1'000, not u'0'
    if (rest[0] != '"' && (rest[0] != '\'' || isSeparator) && (rest[0] != '#' || before != '\n')) return at;
    const char end = rest[0] == '#' ? '\n' : rest[0];
    std::size_t i = at + 1;
    while (i < text.size() && text[i] != end) i += text[i] == '\\' ? 2 : 1;
    return std::min(end == '\n' ? i : i + 1, text.size());
}

// The text with blanks for comments, literals and preprocessor lines. Line ends stay.
std::string blanked(const std::string& text) {
    std::string code = text;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = endOfHidden(text, at);
        if (end == at) continue;
        for (std::size_t i = at; i < end; ++i)
            if (code[i] != '\n') code[i] = ' ';
        at = end - 1;
    }
    return code;
}

struct Function {
    std::string file, head;
    int line, lines;  // from the first line of its head to the line of its closing brace
};

// Finds functions by their braces in formatted code: before a body there is a blank, before a list of values none or
// an equals sign. What is inside a function belongs to it.
class FunctionFinder {
  public:
    FunctionFinder(const SourceFile& file, std::vector<Function>* found)
        : file_(file), code_(blanked(file.text)), found_(found) {}

    void run() {
        for (std::size_t at = 0; at < code_.size(); ++at) {
            const char c = code_[at];
            if (c == '\n') ++line_;
            if (c == '(') ++parentheses_;
            if (c == ')') --parentheses_;
            if (c == '{') open(at);
            if (c == '}') close(at);
            if (c == ';' && parentheses_ == 0) startHead(at + 1);
            if (c == ':' && isAccess(code_.substr(head_, at - head_))) startHead(at + 1);
        }
        EXPECT_TRUE(scopes_.empty()) << file_.name << ": braces are not in pairs";
    }

  private:
    enum class Scope { kOpen, kFunction, kOther };  // open: namespaces and classes

    static bool isAccess(const std::string& head) {
        static const std::regex access(R"re(\s*(public|private|protected|signals|public slots|private slots))re");
        return head.size() < 40 && std::regex_match(head, access);
    }

    void startHead(std::size_t at) { head_ = at; }

    Scope scopeOf(std::string_view head, std::size_t brace) const {
        static const std::regex openHead(
            R"re(^(template\s*<[^{]*>\s*)?(inline )?(namespace|class|struct|union|extern)\b)re");
        const bool isNested = !scopes_.empty() && scopes_.back() != Scope::kOpen;
        if (isNested || parentheses_ != 0 || code_[brace - 1] != ' ') return Scope::kOther;
        if (std::regex_search(head.begin(), head.end(), openHead) && head.back() != '=') return Scope::kOpen;
        return head.find('(') != head.npos && head.back() != '=' ? Scope::kFunction : Scope::kOther;
    }

    void open(std::size_t brace) {
        while (head_ < brace && std::isspace(static_cast<unsigned char>(code_[head_]))) ++head_;
        std::size_t end = brace;
        while (end > head_ && code_[end - 1] == ' ') --end;
        const std::string_view head = std::string_view(code_).substr(head_, end - head_);
        const Scope scope = head.empty() ? Scope::kOther : scopeOf(head, brace);
        scopes_.push_back(scope);
        if (scope == Scope::kFunction) functionStart_ = head_;
        if (scope == Scope::kOpen) startHead(brace + 1);
    }

    void close(std::size_t brace) {
        ASSERT_FALSE(scopes_.empty()) << file_.name << ':' << line_ << ": a brace too many";
        const Scope scope = scopes_.back();
        scopes_.pop_back();
        if (scope == Scope::kFunction) {
            const auto from = code_.begin() + static_cast<std::ptrdiff_t>(functionStart_);
            const auto lines =
                static_cast<int>(std::count(from, code_.begin() + static_cast<std::ptrdiff_t>(brace), '\n'));
            found_->push_back({file_.name, file_.text.substr(functionStart_, 60), line_ - lines, lines + 1});
        }
        if (scope != Scope::kOther) startHead(brace + 1);
    }

    const SourceFile& file_;
    std::string code_;
    std::vector<Function>* found_;
    std::vector<Scope> scopes_;
    std::size_t head_ = 0, functionStart_ = 0;
    int line_ = 1, parentheses_ = 0;
};

std::vector<Function> functionsOf(const SourceFile& file) {
    std::vector<Function> found;
    FunctionFinder(file, &found).run();
    return found;
}

TEST(Limits, FilesStayReadable) {
    for (const SourceFile& file : sourceFiles())
        EXPECT_LE(std::count(file.text.begin(), file.text.end(), '\n'), kFileLines) << file.name;
}

TEST(Limits, FoldersStaySmall) {
    std::map<std::string, int> files;
    for (const SourceFile& file : sourceFiles()) ++files[fs::path(file.name).parent_path().string()];
    for (const auto& [folder, count] : files) EXPECT_LE(count, kFolderFiles) << folder;
}

TEST(Limits, FunctionsStayShort) {
    std::vector<Function> all;
    for (const SourceFile& file : sourceFiles()) {
        const std::vector<Function> found = functionsOf(file);
        all.insert(all.end(), found.begin(), found.end());
    }
    std::ranges::stable_sort(all, std::greater(), &Function::lines);
    ASSERT_GT(all.size(), sourceFiles().size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Function& function = all[i];
        const std::string head = function.head.substr(0, function.head.find('\n'));
        if (i < kPrinted)
            std::printf("%3d lines  %s:%d  %s\n", function.lines, function.file.c_str(), function.line, head.c_str());
        EXPECT_LE(function.lines, kFunctionLines) << function.file << ':' << function.line << ' ' << head;
    }
}

// What is no function by its braces alone: tables, literals with braces, namespaces, classes, lists of values.
TEST(Limits, CountsFromTheHeadToTheClosingBrace) {
    const std::vector<Function> found = functionsOf({"sample", R"(#define OPEN {
namespace a {
const int kTable[] = {
    f(1), // {
};
class B : public C {
  public:
    B(int a,
      int b)
        : a_{a}, b_(b) {
        g([&] { return '{'; });
    }
    int d{0}, e = 1'000;
};
template <typename T>
std::string h(T t) {
    if (t) {
        return "{";
    }
}
int one() { return 1; }
}  // namespace a
)"});
    ASSERT_EQ(found.size(), 3U);
    const int expected[][2] = {{8, 5}, {15, 6}, {21, 1}};
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].line, expected[i][0]);
        EXPECT_EQ(found[i].lines, expected[i][1]);
    }
}

}  // namespace
