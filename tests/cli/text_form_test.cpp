// Files that are compressed or in another encoding than UTF-8: opened, edited, and saved as they were.
#include <gtest/gtest.h>
#include <zlib.h>

#include "interchange/svg/svg.h"
#include "interchange/svg/text_form.h"
#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

struct Case {
    const char* encoding;
    std::string name;     // U+58F2 or, where the encoding lacks it, U+00E9, in it
    std::string written;  // U+2300 in it
};

std::string drawingIn(const std::string& encoding, const std::string& name) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding +
           "\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" "
           "height=\"100\"><path id=\"p\" d=\"M 10 10 H 50\" stroke=\"#000\"/><title>" +
           name + "</title></svg>\n";
}

std::string utf16(const std::string& ascii) {
    std::string out = "\xFF\xFE";
    for (char c : ascii) out += std::string({c, 0});
    return out;
}

// By the library that the product uses, which has no other part in it.
std::string unzipped(const std::string& path) {
    gzFile file = gzopen(path.c_str(), "rb");
    std::string text(100000, 0);
    text.resize(static_cast<std::size_t>(gzread(file, text.data(), 100000)));
    gzclose(file);
    return text;
}

TEST_F(ProgramRun, OtherEncodingsAreReadAndWrittenBack) {
    for (const Case& one : {Case{"ISO-8859-1", "\xE9", "&#8960;"}, Case{"windows-1252", "\xE9\x80", "&#8960;"},
                            Case{"Shift_JIS", "\x94\x84", "&#8960;"}, Case{"EUC-JP", "\xC7\xE4", "&#8960;"}}) {
        const std::string text = drawingIn(one.encoding, one.name);
        write("a.svg", text);
        write("s.script", "open a.svg\nsave b.svg\nmove p 0 7.5\nsave c.svg\nopen c.svg\nsave d.svg\n");
        ASSERT_EQ(runProgram("run s.script"), 0) << one.encoding << err_;
        EXPECT_EQ(readBytes(path("b.svg")), text) << one.encoding;
        std::string moved = text;
        moved.replace(moved.find("M 10 10 H 50"), 12, "M 10,0 L 50,0");
        EXPECT_EQ(readBytes(path("c.svg")), moved) << one.encoding;
        EXPECT_EQ(readBytes(path("d.svg")), moved) << one.encoding;
        const auto file = interchange::decodeText(std::string(text));
        ASSERT_TRUE(file) << one.encoding;
        const auto back = interchange::encodeText("\u2300", file->form);
        ASSERT_TRUE(back) << one.encoding;
        EXPECT_EQ(*back, one.written) << one.encoding;
    }
}

TEST_F(ProgramRun, Utf16IsReadAndWrittenBack) {
    const std::string text = drawingIn("UTF-16", "t");
    write("a.svg", utf16(text));
    write("s.script", "open a.svg\nmove p 0 7.5\nsave c.svg\n");
    ASSERT_EQ(runProgram("run s.script"), 0) << err_;
    std::string moved = text;
    moved.replace(moved.find("M 10 10 H 50"), 12, "M 10,0 L 50,0");
    EXPECT_EQ(readBytes(path("c.svg")), utf16(moved));
}

TEST_F(ProgramRun, CompressedDrawingsStayCompressed) {
    const std::string text = drawingIn("UTF-8", "t");
    write("a.svg", text);
    write("s.script", "open a.svg\nsave b.svgz\nopen b.svgz\nsave c.svg\nmove p 0 7.5\nsave d.svgz\n");
    ASSERT_EQ(runProgram("run s.script"), 0) << err_;
    EXPECT_EQ(readBytes(path("b.svgz")).substr(0, 2), "\x1F\x8B");
    EXPECT_EQ(unzipped(path("b.svgz")), text);
    EXPECT_EQ(readBytes(path("c.svg")), text);
    EXPECT_NE(unzipped(path("d.svgz")).find("M 10,0 L 50,0"), std::string::npos);
    write("cut.svgz", readBytes(path("b.svgz")).substr(0, 60));
    EXPECT_EQ(runProgram("dump cut.svgz"), 2);
    EXPECT_NE(err_.find("cut off"), std::string::npos) << err_;
}

}  // namespace
}  // namespace quorvel::tests
