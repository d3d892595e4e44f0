// Every error has its sentence in each language, and the place before it.
#include "app/sentences.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/errors.h"

namespace quorvel::app {
namespace {

// How often {n} is in the sentence.
int placesOf(std::string_view text, int n) {
    const std::string place = "{" + std::to_string(n) + "}";
    int count = 0;
    for (std::size_t at = text.find(place); at != std::string_view::npos; at = text.find(place, at + 1)) ++count;
    return count;
}

bool isJapanese(std::string_view text) {
    return text.find('\xE3') != std::string_view::npos;  // the first byte of every kana in UTF-8
}

TEST(Sentences, EachCodeHasOneInEachLanguageThatPlacesItsArguments) {
    for (const SentenceRow& row : sentenceTable().subspan(1)) {
        for (const std::string_view text : {row.english, row.japanese}) {
            for (int n = 1; n <= 9; ++n) EXPECT_EQ(placesOf(text, n), n <= row.arguments ? 1 : 0) << text;
            EXPECT_FALSE(text.ends_with('.') || text.ends_with("。")) << text;
        }
        EXPECT_FALSE(row.english.empty());
        EXPECT_FALSE(isJapanese(row.english)) << row.english;
        EXPECT_TRUE(isJapanese(row.japanese)) << row.english;
        std::vector<std::string> arguments;
        for (int n = 1; n <= row.arguments; ++n) arguments.push_back(std::to_string(7 * n) + "{1}");
        for (const Language language : {Language::english, Language::japanese}) {
            const std::string said = sentence(makeError(row.code, arguments), language);
            if (row.code == ErrorCode::kSystem) continue;
            for (const std::string& argument : arguments) EXPECT_NE(said.find(argument), std::string::npos) << said;
        }
    }
}

TEST(Sentences, ThePlaceStandsBeforeTheSentence) {
    Error error = makeError(ErrorCode::kBadLength, {"width"});
    EXPECT_EQ(sentence(error, Language::english), "bad length in width");
    error.file = "a.svg";
    error.line = 3;
    EXPECT_EQ(sentence(error, Language::english), "a.svg: line 3: bad length in width");
    error.element = "rect";
    EXPECT_EQ(sentence(error, Language::english), "a.svg: line 3: rect: bad length in width");
    error.elementId = "plate";
    EXPECT_EQ(sentence(error, Language::english), "a.svg: line 3: rect \"plate\": bad length in width");
    EXPECT_EQ(sentence(error, Language::japanese), "a.svg: 3 行目: rect \"plate\": width の長さが正しくありません");
}

TEST(Sentences, TheSystemsErrorsInBothLanguages) {
    const auto said = [](int number, Language language) {
        return sentence(makeError(ErrorCode::kSystem, {std::to_string(number)}), language);
    };
    EXPECT_EQ(said(ENOSPC, Language::english), "No space left on device");
    EXPECT_EQ(said(ENOSPC, Language::japanese), "ディスクの空き容量がありません");
    EXPECT_EQ(said(EXFULL, Language::japanese), "Exchange full") << "rarer than anyone translates";
    EXPECT_EQ(said(4711, Language::english), "system error 4711");
    EXPECT_EQ(said(4711, Language::japanese), "システムエラー 4711");
}

TEST(Sentences, WarningsOfAGreatManyKindsAreCounted) {
    std::vector<Error> warnings;
    for (int i = 999; i >= 0; --i)
        warnings.push_back(makeError(ErrorCode::kUnknownElements, {"u" + std::to_string(1000 + i)}));
    const std::vector<std::string> said = warningSentences(warnings, Language::english);
    ASSERT_EQ(said.size(), 21U);
    EXPECT_EQ(said.front(), "elements \"u1000\" are kept but not understood");
    EXPECT_EQ(said.back(), "and 980 more kinds of things");
    EXPECT_EQ(warningSentences(warnings, Language::japanese).back(), "ほかに 980 種類あります");
}

}  // namespace
}  // namespace quorvel::app
