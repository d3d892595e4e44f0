// Damaged and hostile files: each is refused with one line that says what and where, and nothing is half loaded.
#include <gtest/gtest.h>

#include "tests/host/svg_support.h"

namespace quorvel::host {
namespace {

// The error of a file that must be refused.
std::string refusal(const std::string& text) {
    const SvgReadResult read = readSvg(text);
    EXPECT_EQ(read.document, nullptr) << text.substr(0, 200);
    EXPECT_NE(read.error, "");
    EXPECT_EQ(read.error.find('\n'), std::string::npos);
    EXPECT_LT(read.error.size(), 300U);
    return read.error;
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
    EXPECT_NE(refusal("<?xml version='1.0' encoding='ISO-8859-1'?><svg/>").find("iso-8859-1"), std::string::npos);
}

TEST(SvgHostile, CutOffAnywhereInTheMiddle) {
    const std::string whole = page("<g id='a'><path d='M 0,0 1,1'/><text>t</text><!-- c --></g>");
    const std::size_t begin = whole.find("<g"), end = whole.rfind("</svg>") + 6;
    for (std::size_t size = begin; size < end; ++size) refusal(whole.substr(0, size));
}

TEST(SvgHostile, DeepNesting) {
    const int depth = 100000;
    EXPECT_NE(refusal(page(repeated("<g>", depth) + repeated("</g>", depth))).find("nested"), std::string::npos);
    refusal(page("<defs>" + repeated("<g>", depth) + repeated("</g>", depth) + "</defs>"));
    refusal(page("<text>" + repeated("<tspan>", depth) + repeated("</tspan>", depth) + "</text>"));
    EXPECT_NE(open(page(repeated("<g>", 200) + repeated("</g>", 200))), nullptr);
}

TEST(SvgHostile, GarbageInOutlines) {
    for (const char* data :
         {"garbage", "M 0 0 L", "M 0 0 L 1", "M 0,0 NaN,1", "M 0 0 L inf 0", "M 1e400 0", "M 0 0 L 5 5 %", "L 1 1",
          "M 0 0 A 1 1 0 2 0 5 5", "M 1e20 0", "M 0 0 L 1 1,", "M 0x10 0", "M 0 0 C 1 1 2 2"}) {
        const std::string error = refusal(page("\n<path id='bad' d='" + std::string(data) + "'/>"));
        EXPECT_NE(error.find("line 3: path \"bad\""), std::string::npos) << error;
    }
    refusal(page("<polygon points='1,2 x'/>"));
    refusal(page("<rect width='NaN' height='1'/>"));
    refusal(page("<circle r='1e400'/>"));
    refusal(page("<circle cx='1e200' r='1'/>"));
    refusal(page("<g transform='rotate(1e400)'/>"));
    refusal(page("<g transform='scale(1e200) scale(1e200)'/>"));
    refusal(page("<g transform='turn(5)'/>"));
    refusal(page("<text x='1e300'>t</text>"));
    EXPECT_NE(open(page("<path d='M 1e-400 0 L 0.0000001 1'/>")), nullptr);
}

TEST(SvgHostile, EntityBombs) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 40; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY a" + std::to_string(i) + " \"" + before + before + "\">";
    }
    EXPECT_NE(refusal(bomb + "]><svg xmlns='http://www.w3.org/2000/svg' id='&a39;'/>").find("entit"),
              std::string::npos);
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
    EXPECT_NE(refusal(page(text)).find("copies"), std::string::npos);
}

TEST(SvgHostile, StyleSheetsThatCostTooMuch) {
    refusal(page("<style>" + repeated(".a{fill:red}", 20000) + "</style>" + repeated("<g class='a'/>", 5000)));
}

TEST(SvgHostile, FilesThatCannotBeRead) {
    EXPECT_EQ(readSvgFile("/no/such/file.svg").error, "No such file or directory");
    EXPECT_EQ(readSvgFile("/").error, "Is a directory");
}

}  // namespace
}  // namespace quorvel::host
