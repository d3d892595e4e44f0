// Damaged and hostile files: each is refused with one line that says what and where, and nothing is half loaded.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "tests/interchange/svg_support.h"
#include "tests/support/sanitized.h"

namespace quorvel::interchange {
namespace {

// The error of a file that must be refused; in words it is one line of moderate length.
Error refusal(const std::string& text) {
    const Result<SvgDrawing> read = readSvg(text);
    EXPECT_FALSE(read) << text.substr(0, 200);
    if (read) return {};
    EXPECT_NE(read.error().code, ErrorCode::kNone);
    const std::string words = app::sentence(read.error(), app::Language::english);
    EXPECT_EQ(words.find('\n'), std::string::npos);
    EXPECT_LT(words.size(), 300U);
    return read.error();
}

std::string repeated(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

TEST(SvgHostile, WhatIsNoDrawing) {
    refusal("");
    refusal("no markup at all");
    refusal("<html><body/></html>");
    refusal("<svg xmlns='urn:something-else'/>");
    refusal(std::string("<svg/>\0", 7));
    refusal("<svg/><svg/>");
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='klingon'?><svg/>"),
              makeError(ErrorCode::kForeignEncoding, {"klingon"}));
}

TEST(SvgHostile, CutOffAnywhereInTheMiddle) {
    const std::string whole = page("<g id='a'><path d='M 0,0 1,1'/><text>t</text><!-- c --></g>");
    const std::size_t begin = whole.find("<g"), end = whole.rfind("</svg>") + 6;
    for (std::size_t size = begin; size < end; ++size) refusal(whole.substr(0, size));
}

TEST(SvgHostile, DeepNesting) {
    const int depth = 100000;
    EXPECT_EQ(refusal(page(repeated("<g>", depth) + repeated("</g>", depth))).code, ErrorCode::kElementsTooDeep);
    refusal(page("<defs>" + repeated("<g>", depth) + repeated("</g>", depth) + "</defs>"));
    refusal(page("<text>" + repeated("<tspan>", depth) + repeated("</tspan>", depth) + "</text>"));
    EXPECT_NE(open(page(repeated("<g>", 200) + repeated("</g>", 200))), nullptr);
}

// An element in error is drawn up to it, with one warning that says where, and stays as it is in the file.
TEST(SvgHostile, GarbageInOneElement) {
    struct Case {
        const char* element;
        std::size_t anchors;
    };
    const Case cases[] = {{"path d='garbage'", 0},
                          {"path d='M 0 0 L'", 1},
                          {"path d='M 0 0 L 1'", 1},
                          {"path d='M 0,0 1,1 NaN,1'", 2},
                          {"path d='M 0 0 L inf 0'", 1},
                          {"path d='M 1e400 0'", 0},
                          {"path d='M 0 0 L 5 5 %'", 2},
                          {"path d='L 1 1'", 0},
                          {"path d='M 0 0 A 1 1 0 2 0 5 5'", 1},
                          {"path d='M 0 0 L 1 1,'", 2},
                          {"path d='M 0x10 0'", 0},
                          {"path d='M 0 0 C 1 1 2 2'", 1},
                          {"polyline points='1,2 3,4 x'", 2},
                          {"rect width='NaN' height='1'", 0},
                          {"line x2='0,002' y2='3'", 2},
                          {"path transform='turn(5)' d='M0 0 1 1'", 2},
                          {"path transform='rotate(1e400)' d='M0 0 1 1'", 2}};
    for (const Case& one : cases) {
        const std::string text = page("\n<" + std::string(one.element) + " id='bad'/>");
        const auto drawing = interchange::readSvg(text);
        ASSERT_TRUE(drawing) << one.element;
        ASSERT_EQ(drawing->warnings.size(), 1U) << one.element;
        EXPECT_EQ(drawing->warnings[0].line, 3) << one.element;
        EXPECT_EQ(drawing->warnings[0].elementId, "bad") << one.element;
        const doc::Document& document = *drawing->document;
        const doc::Art& art = *document.find(document.find(document.layer(document.layers()[0])->root)->firstChild);
        EXPECT_EQ(art.path->segments.size(), one.anchors) << one.element;
        EXPECT_EQ(interchange::writeSvg(document), text);
    }
}

TEST(SvgHostile, CoordinatesOutOfRange) {
    refusal(page("<path d='M 1e20 0'/>"));
    refusal(page("<circle cx='1e200' r='1'/>"));
    refusal(page("<text x='1e300'>t</text>"));
    EXPECT_NE(open(page("<path d='M 1e-400 0 L 0.0000001 1'/>")), nullptr);
}

TEST(SvgHostile, EntityBombs) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 40; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY a" + std::to_string(i) + " \"" + before + before + "\">";
    }
    EXPECT_EQ(refusal(bomb + "]><svg xmlns='http://www.w3.org/2000/svg' id='&a39;'/>").code,
              ErrorCode::kEntitiesTooMany);
    refusal("<!DOCTYPE svg [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><svg/>");
    refusal("<!DOCTYPE svg [<!ENTITY % x \"y\">]><svg/>");
    // One long entity used many times.
    refusal("<!DOCTYPE svg [<!ENTITY x \"" + std::string(2000, 'y') + "\">]><svg xmlns='http://www.w3.org/2000/svg'>" +
            repeated("<g id='" + repeated("&x;", 100) + "'/>", 100) + "</svg>");
    // Namespaces by entity are what some editors write.
    const auto document = open(
        "<!DOCTYPE svg [<!ENTITY ns \"http://www.w3.org/2000/svg\">]><svg xmlns='&ns;'><path id='p' d='M0 0'/></svg>");
    EXPECT_EQ(document->artCount(), 1U);
}

TEST(SvgHostile, CopiesOfCopies) {
    std::string text = "<path id='u0' d='M 0,0 1,1'/>";
    for (int i = 1; i < 30; ++i) {
        const std::string use = "<use href='#u" + std::to_string(i - 1) + "'/>";
        text += "<g id='u" + std::to_string(i) + "'>" + use + use + "</g>";
    }
    EXPECT_EQ(refusal(page(text)).code, ErrorCode::kTooManyCopies);
}

// Files whose size is harmless and whose cost, taken naively, grows with its square or worse. Work is measured in the
// processor's time, which no other program on the machine makes longer.
class SvgHostileWork : public testing::Test {
  protected:
    ~SvgHostileWork() override {
        EXPECT_LT(double(std::clock() - start_) / CLOCKS_PER_SEC, tests::kSanitized ? 20.0 : 5.0);
    }

  private:
    std::clock_t start_ = std::clock();
};

TEST_F(SvgHostileWork, CopiesOfWhatIsLong) {
    const std::string uses = repeated("<use href='#a'/>", 150000);
    const std::string points = "1,1" + std::string(200000, ' ');
    EXPECT_EQ(refusal(page("<defs><polygon id='a' points='" + points + "'/></defs>" + uses)).code,
              ErrorCode::kTooManyCopies);
    const std::string spans = repeated("<tspan/>", 20000);
    EXPECT_EQ(refusal(page("<defs><text id='a'>" + spans + "<textPath/></text></defs>" + uses)).code,
              ErrorCode::kTooManyCopies);
}

TEST_F(SvgHostileWork, EntitiesInOneAttribute) {
    const std::string head = "<!DOCTYPE svg [<!ENTITY x \"" + std::string(2000, 'y') + "\"><!ENTITY z \"\">]>\n";
    Error tooMuch = makeError(ErrorCode::kEntitiesTooLarge);
    tooMuch.line = 3;
    EXPECT_EQ(refusal(head + page("<g id='" + repeated("&x;", 1000000) + "'/>")), tooMuch);
    // The marks of entities that never end, read and then edited.
    const std::string marks(2000000, '&');
    const auto document = open(head + page("<path id='p' d='M0 0' class='" + marks + "' style='" + marks + "'/>"));
    document->setHidden(art(*document, "p").id, true);
    EXPECT_GT(writeSvg(*document).size(), 4000000U);
    // Many elements may each have their style by an entity.
    const std::string style = "fill:none;stroke:#010203;stroke-width:2";
    const auto styled =
        open("<!DOCTYPE svg [<!ENTITY st0 \"" + style + std::string(61, ';') + "\">]>\n" +
             page(repeated("<path style='&st0;' d='M0 0'/>", 60000) + "<path id='p' style='&st0;' d='M0 0'/>"));
    EXPECT_EQ(art(*styled, "p").path->style->strokeWidth, 2);
}

TEST_F(SvgHostileWork, ClassesAndRules) {
    const auto sheet = [](const std::string& rules, const std::string& elements) {
        return page("<style>" + rules + "</style>" + elements);
    };
    const std::string thousand = repeated("fill:red;", 1000);
    open(sheet(".a{" + thousand + "}", "<g class='" + repeated("a ", 500000) + "'/>"));
    refusal(sheet(repeated(".a,", 30000) + ".a{" + repeated(thousand, 30) + "}", "<g class='a'/>"));
    refusal(sheet(repeated(".a{fill:red}", 20000), repeated("<g class='a'/>", 5000)));
    std::string names;
    for (int i = 0; i < 99000; ++i) names += "b" + std::to_string(i) + " ";
    open(sheet(repeated(".a", 99000) + "{fill:red}", "<g class='" + names + "a'/>"));
}

TEST_F(SvgHostileWork, ManyClassesOnManyElementsAreHonest) {
    std::string rules, classes;
    for (int i = 0; i < 10; ++i) {
        const std::string name = "c" + std::to_string(i);
        rules += "." + name + "{" + repeated("opacity:1;", 11) + "stroke-width:" + std::to_string(i) + "}";
        classes += name + " ";
    }
    rules = "<style>" + rules + "</style>";
    const std::string path = "<path class='" + classes + "' stroke='red' d='M0 0'/>";
    const auto document = open(page(rules + repeated(path, 40000)));
    EXPECT_EQ(document->artCount(), 40000U);
    const doc::Art& top = *document->find(document->find(topLayer(*document).root)->firstChild);
    EXPECT_EQ(top.path->style->strokeWidth, 9);
    open(page(rules + "<defs><g id='a'>" + repeated(path, 10) + "</g></defs>" + repeated("<use href='#a'/>", 4500)));
}

TEST_F(SvgHostileWork, LayersAndWhatLiesBetweenThem) {
    const int count = 30000;
    const auto document = open(page(repeated("<desc/>", 50000) + repeated("<g/><g inkscape:groupmode='layer'/>", count),
                                    " xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape'"));
    ASSERT_EQ(document->layers().size(), 2U * count);
    EXPECT_EQ(topLayer(*document).title, "Layer");
    EXPECT_EQ(document->layer(document->layers()[1])->title, "<root> " + std::to_string(count));
    EXPECT_EQ(document->layer(document->layers().back())->title, "<root>");
}

TEST_F(SvgHostileWork, WhatManyElementsInherit) {
    std::string texts;
    for (int weight = 1; weight < 1000; ++weight)
        texts += "<text font-weight='" + std::to_string(weight) + "'>t</text>";
    open(page("<g font-family='" + repeated("a,", 30000) + "'>" + texts + "</g>"));
    const std::string paths = repeated("<path d='M0 0'/>", 30000);
    open(page("<g fill='url(#" + std::string(2000000, 'a') + ")'>" + paths + "</g>"));
    std::string attributes;
    for (int i = 0; i < 20000; ++i) attributes += " a" + std::to_string(i) + "=''";
    open(page("<linearGradient" + attributes + " id='l'/><g fill='url(#l)'>" + paths + "</g>"));
}

TEST_F(SvgHostileWork, Names) {
    std::string prefixes;
    for (int i = 0; i < 60000; ++i) prefixes += " xmlns:p" + std::to_string(i) + "='http://www.w3.org/2000/svg'";
    const auto document = open(page(repeated("<p9:g/>", 100000) + repeated("<other:g/>", 100000), prefixes));
    EXPECT_EQ(document->artCount(), 100000U);
    const std::string longPrefix = " xmlns:" + std::string(1000000, 'i');
    open(page(repeated("<g/>", 60000), longPrefix + "='http://www.inkscape.org/namespaces/inkscape'"));
    std::string tags;
    for (int i = 0; i < 60000; ++i) tags += " q:m" + std::to_string(59999 - i % 2) + "-t" + std::to_string(i) + "=''";
    const auto compound = open(page("<path id='c' d='" + repeated("M0 0", 60000) + "'" + tags + "/>",
                                    " xmlns:q='https://quorvel.invalid/ns/1'"));
    const doc::Art& last = *compound->find(art(*compound, "c").firstChild);
    EXPECT_EQ(last.tags.size(), 30000U);
    EXPECT_EQ(compound->find(last.below)->tags.size(), 30000U);
}

TEST_F(SvgHostileWork, FilesThatCannotBeRead) {
    EXPECT_EQ(readSvgFile("/no/such/file.svg").error(), systemError(ENOENT, "/no/such/file.svg"));
    EXPECT_EQ(readSvgFile("/").error(), systemError(EISDIR, "/"));
    EXPECT_EQ(readSvgFile("/dev/zero").error().code, ErrorCode::kNotRegular);
    const std::string name = testing::TempDir() + "svg_hostile_" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    EXPECT_EQ(readSvgFile(name).error().code, ErrorCode::kNotRegular);
    std::filesystem::remove(name);
    std::ofstream(name) << "<svg/>";
    EXPECT_TRUE(readSvgFile(name));
    std::filesystem::resize_file(name, std::uintmax_t{1} << 40);  // takes no room on the disk
    EXPECT_EQ(readSvgFile(name).error().arguments, std::vector<std::string>{"512"});
    std::filesystem::remove(name);
}

TEST(SvgHostile, PagesOutOfProportion) {
    const struct {
        std::string size;
        float width, height;  // a side is from a thousandth of a pixel to ten million
    } rows[] = {{"width='100' viewBox='0 0 1e-300 1e300'", 75, 7.5e6F},
                {"height='100' viewBox='0 0 1e-300 1e300'", 7.5e-4F, 75},
                {"viewBox='0 0 1e-300 1e300'", 7.5e-4F, 7.5e6F},
                {"width='1e-300' height='1e300'", 225, 112.5F}};
    for (const auto& row : rows) {
        const auto document = open("<svg xmlns='http://www.w3.org/2000/svg' " + row.size + "/>");
        EXPECT_EQ(document->width(), row.width) << row.size;
        EXPECT_EQ(document->height(), row.height) << row.size;
    }
}

}  // namespace
}  // namespace quorvel::interchange
