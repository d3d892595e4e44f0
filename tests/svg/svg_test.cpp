// The text of an SVG file, below any document: colours, start tags, style sheets, patterns.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "svg/markup/start_tag.h"
#include "svg/tree/definitions.h"
#include "svg/tree/file.h"
#include "svg/values/color.h"
#include "tests/interchange/svg_support.h"

namespace quorvel::svg {
namespace {

TEST(Colors, HexDigitsAreTakenByChannel) {
    const CssColor whole = {0x11 / 255.0, 0x22 / 255.0, 0x33 / 255.0, 1};
    EXPECT_EQ(parseColor("#123"), whole);
    EXPECT_EQ(parseColor("#112233"), whole);
    const CssColor half = {0x11 / 255.0, 0x22 / 255.0, 0x33 / 255.0, 0x88 / 255.0};
    EXPECT_EQ(parseColor("#1238"), half);
    EXPECT_EQ(parseColor("#11223388"), half);
    EXPECT_FALSE(parseColor("#12345"));
    EXPECT_FALSE(parseColor("#12g"));
}

TEST(StartTags, AValueKeepsTheQuotesOfItsAttribute) {
    StartTag tag("<a b='1' c=\"2\"/>");
    tag.set("b", "it's \"so\" it's");
    tag.set("c", "it's");
    EXPECT_EQ(tag.str().find("b='it&apos;s "), 3U) << tag.str();
    EXPECT_EQ(tag.attribute("b"), "it's \"so\" it's");
    EXPECT_EQ(StartTag(tag.str()).attribute("b"), "it's \"so\" it's") << tag.str();
    EXPECT_NE(tag.str().find("c=\"it's\""), std::string::npos) << tag.str();
}

TEST(Patterns, TakeFromOthersWhatTheyDoNotSay) {
    const auto file = File::open(
        "<svg xmlns='http://www.w3.org/2000/svg'><defs><pattern id='a' width='4' height='3'><path d='M0 "
        "0H9'/></pattern>"
        "<pattern id='b' href='#a' height='5'/><pattern id='empty' width='4' height='3'/>"
        "<pattern id='flat' width='4' height='0'><path d='M0 0H9'/></pattern></defs></svg>");
    ASSERT_TRUE(file);
    Definitions& definitions = (*file)->definitions();
    const Pattern* own = definitions.pattern("a");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->height, 3);
    const Pattern* lent = definitions.pattern("b");
    ASSERT_NE(lent, nullptr);
    EXPECT_EQ(lent->width, 4);
    EXPECT_EQ(lent->height, 5);
    EXPECT_EQ(definitions.pattern("empty"), nullptr);
    EXPECT_EQ(definitions.pattern("flat"), nullptr);
}

TEST(StyleSheets, StatementsEndWithTheirSemicolon) {
    const auto document = interchange::open(interchange::page(
        "<style>@charset 'x';path{stroke-width:3}#none{stroke-width:0}</style><path id='p' stroke='red' d='M0 0H9'/>"
        "<path id='none' stroke='red' d='M0 0H9'/>"));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(interchange::art(*document, "p").path->style->strokeWidth, 3);
    EXPECT_EQ(interchange::art(*document, "none").path->style->strokeWidth, 0);
}

TEST(Paints, WhatIsNoneOfThemLeavesTheInheritedOne) {
    const std::pair<const char*, std::array<float, 3>> cases[] = {{"#", {0, 0, 1}},
                                                                  {"paint", {0, 0, 1}},
                                                                  {"", {0, 0, 1}},
                                                                  {"red icc-color(p, 0.1, 0.5)", {1, 0, 0}},
                                                                  {"rgba(0, 100%, 0, 1)", {0, 1, 0}}};
    for (const auto& [fill, rgb] : cases) {
        const auto document = interchange::open(
            interchange::page(std::string("<g fill='#00f'><path id='p' fill='") + fill + "' d='M0 0H9V9'/></g>"));
        ASSERT_NE(document, nullptr);
        const AIColor& color = interchange::art(*document, "p").path->style->fill;
        EXPECT_TRUE(std::equal(rgb.begin(), rgb.end(), color.rgb)) << fill;
    }
}

// Which of the paths in two groups each selector finds.
TEST(StyleSheets, SelectorsFindByPlaceAndAttribute) {
    struct Case {
        const char *selector, *found;
    };
    const Case cases[] = {
        {"g path", "abcde"},
        {"#first > path", "ab"},
        {"svg>g>g path", "c"},
        {"#first path", "abc"},
        {"#first > .x path, #e", "ce"},
        {"path + path", "be"},
        {"path ~ g path", "c"},
        {"g:last-child path", "cde"},
        {"path:first-child", "acd"},
        {"path:last-child", "ce"},
        {"path:only-child", "c"},
        {"g > path:nth-child(2n)", "be"},
        {"g > path:nth-child( odd )", "acd"},
        {"path:nth-child(n+2)", "be"},
        {"path:nth-last-of-type(2)", "ad"},
        {"path:not(#a):not([d])", "e"},
        {"[d]", "abcd"},
        {"path[stroke-linecap=round]", "a"},
        {"[stroke-linecap^='ro']", "a"},
        {"path[lang|='en'],[lang~=fr]", "bd"},
        {"[d$='9'][d*='0 0']", "abcd"},
        {"svg:root > g:not(#first) > path", "de"},
        {"path::before, path:hover, ns|path, g >", ""},
        {"g /* of any */ > path:first-child", "acd"},
    };
    for (const Case& one : cases) {
        const auto document = interchange::open(
            interchange::page(std::string("<style>") + one.selector +
                              "{stroke-width:3}</style><g id='first'>"
                              "<path id='a' d='M0 0H9' stroke-linecap='round'/><path id='b' lang='en-GB' d='M0 0H9'/>"
                              "<g class='x'><path id='c' d='M0 0H9'/></g></g><g><path id='d' lang='de fr' d='M0 "
                              "0H9'/><path id='e'/></g>"));
        ASSERT_NE(document, nullptr);
        std::string found;
        for (const char* id : {"a", "b", "c", "d", "e"})
            if (interchange::art(*document, id).path->style->strokeWidth == 3) found += id;
        EXPECT_EQ(found, one.found) << one.selector;
    }
}

// One file's switches and what of each is drawn in English.
TEST(Switches, DrawTheFirstChildThatTheLanguageOffers) {
    setenv("LC_ALL", "C.UTF-8", 1);
    const auto document = interchange::open(interchange::page(
        "<switch>\n<!-- c --><path id='a' systemLanguage='ja' d='M0 0H9'/><path id='b' systemLanguage='de, en-GB' "
        "d='M0 0H9'/>"
        "<path id='c' d='M0 0H9'/></switch><switch><g requiredExtensions='urn:x'><path id='d' d='M0 0H9'/></g>"
        "<g><path id='e' d='M0 0H9'/><path id='f' d='M0 0H9'/></g></switch>"));
    ASSERT_NE(document, nullptr);
    std::string drawn;
    for (const char* id : {"a", "b", "c", "d", "e", "f"})
        if (document->findByName(id) != 0) drawn += id;
    EXPECT_EQ(drawn, "bef");
}

TEST(Uses, WarningsTellALoopFromALostTarget) {
    const auto codes = [](const char* content) {
        return interchange::readSvg(interchange::page(content))->warnings.front().code;
    };
    EXPECT_EQ(codes("<g id='g'><use href='#g'/></g>"), ErrorCode::kUseOfItself);
    EXPECT_EQ(codes("<use href='#nobody'/>"), ErrorCode::kUseOfNothing);
}

}  // namespace
}  // namespace quorvel::svg
