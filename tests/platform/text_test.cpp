#include "platform/text.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <random>

namespace quorvel::platform {
namespace {

TEST(CodePages, KnownCharactersBothWays) {
    const struct {
        std::int32_t codePage;
        const char *bytes, *utf8;
    } cases[] = {
        {kCodePageJapanese, "Ab\\~", "Ab\\~"},
        {kCodePageJapanese, "\x83\x63\x81\x5B\x83\x8B", "ツール"},
        {kCodePageJapanese, "\x95\x5C\x83\x5C", "表ソ"},
        {kCodePageJapanese, "\x81\x4B\x83\xD3", "゜φ"},
        {kCodePageJapanese, "\x81\x60\x87\x40\xB1", "～①ｱ"},  // vendor rows, half width
        {kCodePageKorean, "\xA1\xC6\xAC\xE6", "°ф"},
        {kCodePageKorean, "\xB0\xA1", "가"},
        {kCodePageUtf8, "\xE8\xA1\xA8", "表"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ToUtf8(c.bytes, c.codePage), c.utf8);
        EXPECT_EQ(FromUtf8(c.utf8, c.codePage), c.bytes);
    }
    EXPECT_EQ(ToUtf8(std::string_view("a\0b", 3), kCodePageJapanese), std::string("a\0b", 3));
    EXPECT_EQ(ToUtf8("", kCodePageJapanese), "");
}

TEST(CodePages, BrokenBytesAndLackingCharactersShow) {
    EXPECT_EQ(ToUtf8("a\xFFz", kCodePageJapanese), "a\uFFFDz");
    EXPECT_EQ(ToUtf8("a\x95", kCodePageJapanese), "a\uFFFD") << "cut in the middle of a character";
    EXPECT_EQ(ToUtf8("\x95 b", kCodePageJapanese), "\uFFFD b");
    for (const char* broken : {"a\xFFz", "a\x95", "\x95 b", "\x80\x8A"})
        EXPECT_EQ(FromUtf8(ToUtf8AndBack(broken, kCodePageJapanese), kCodePageJapanese), broken);
    EXPECT_EQ(ToUtf8("a\xE8\xA1", kCodePageUtf8), "a\uFFFD\uFFFD");
    EXPECT_EQ(FromUtf8("a가z", kCodePageJapanese), "a?z");
    EXPECT_EQ(FromUtf8("😀", kCodePageJapanese), "?");
    EXPECT_EQ(FromUtf8("\xE8\xA1z\xFF", kCodePageJapanese), "?z?");
}

TEST(CodePages, AnyBytesGiveValidTextAndWholeTextsReturn) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> byte(0, 255), length(0, 2000);
    for (int round = 0; round < 200; ++round) {
        std::string bytes(static_cast<std::size_t>(length(random)), '\0');
        for (char& c : bytes) c = static_cast<char>(byte(random));
        const std::string utf8 = ToUtf8(bytes, kCodePageJapanese), kept = ToUtf8AndBack(bytes, kCodePageJapanese);
        EXPECT_EQ(ToUtf8(kept, kCodePageUtf8), kept);
        // Of the doubled rows one remains; broken bytes all do.
        EXPECT_EQ(FromUtf8(kept, kCodePageJapanese).size(), bytes.size());
        EXPECT_EQ(ToUtf8(utf8, kCodePageUtf8), utf8);
        // Doubled rows (NEC and IBM) and the replaced bytes settle after one way back and forth.
        const std::string settled = FromUtf8(utf8, kCodePageJapanese);
        EXPECT_EQ(FromUtf8(ToUtf8(settled, kCodePageJapanese), kCodePageJapanese), settled);
    }
}

// The system's own table leaves the published one in two places: a Greek delta, and another private use for the apple.
TEST(CodePages, MacRomanIsThePublishedTable) {
    const iconv_t table = iconv_open("UTF-16LE", "MACINTOSH");
    ASSERT_NE(table, reinterpret_cast<iconv_t>(-1));
    for (int value = 0; value < 256; ++value) {
        char byte = static_cast<char>(value), *in = &byte;
        unsigned char unit[2] = {};
        char* out = reinterpret_cast<char*>(unit);
        std::size_t inLeft = 1, outLeft = 2;
        iconv(table, &in, &inLeft, &out, &outLeft);
        const int expected = value == 0xC6 ? 0x2206 : value == 0xF0 ? 0xF8FF : unit[0] | unit[1] << 8;
        EXPECT_EQ(MacRomanToUnicode(static_cast<std::uint8_t>(value)), expected) << value;
    }
    iconv_close(table);
    EXPECT_EQ(MacRomanToUnicode(0xDB), 0x20AC);
    EXPECT_EQ(MacRomanToUnicode(0xFB), 0x02DA);
}

}  // namespace
}  // namespace quorvel::platform
