// The font list and the widths, against the design widths of the fonts that the project's tests rely on.
#include "fonts/fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace quorvel::fonts {
namespace {

TEST(Fonts, StandardFontFirstThenEachNameOnceInOrder) {
    ASSERT_FALSE(fonts().empty());
    std::set<std::string> names;
    for (const Font& font : fonts()) {
        EXPECT_FALSE(font.fullName.empty());
        EXPECT_TRUE(names.insert(font.fullName).second) << font.fullName;
        EXPECT_EQ(findFont(font.fullName), &font);
    }
    EXPECT_TRUE(std::is_sorted(fonts().begin() + 1, fonts().end(),
                               [](const Font& a, const Font& b) { return a.fullName < b.fullName; }));
    EXPECT_EQ(findFont("No Such Font"), nullptr);
    EXPECT_EQ(findFont("dejavu sans"), nullptr);  // names are kept exactly
}

class InstalledFonts : public testing::Test {
  protected:
    void SetUp() override {
        if (findFont("DejaVu Sans") == nullptr || findFont("IPAGothic") == nullptr)
            GTEST_SKIP() << "needs fonts-dejavu-core and fonts-ipafont-gothic";
    }
};

TEST_F(InstalledFonts, WidthsAreThoseOfTheDesign) {
    // From the fonts' own tables: 2048 units to the em in DejaVu, 1303 for a figure, 651 for a blank; a full-width
    // character of a Gothic is one em and its Latin half of that.
    EXPECT_EQ(fonts().front().fullName, "DejaVu Sans");
    EXPECT_EQ(characterWidth(*findFont("DejaVu Sans"), '0'), static_cast<float>(1303.0 / 2048));
    EXPECT_EQ(characterWidth(*findFont("DejaVu Sans"), ' '), static_cast<float>(651.0 / 2048));
    EXPECT_EQ(characterWidth(*findFont("IPAGothic"), U'寸'), 1.0f);
    EXPECT_EQ(characterWidth(*findFont("IPAGothic"), 'a'), 0.5f);
}

TEST_F(InstalledFonts, MissingCharactersAreMeasuredElsewhere) {
    const Font& sans = *findFont("DejaVu Sans");
    EXPECT_EQ(characterWidth(sans, U'寸'), 1.0f);
    EXPECT_EQ(characterWidth(sans, U'寸'), 1.0f);     // and again, remembered
    EXPECT_EQ(characterWidth(sans, 0x10FFFD), 0.5f);  // no font has it
    EXPECT_EQ(characterWidth(sans, '\r'), 0.0f);
}

TEST_F(InstalledFonts, MatchingGoesByFamilyThenSlantWidthAndWeight) {
    EXPECT_EQ(matchFont("DejaVu Sans", 400, false).fullName, "DejaVu Sans");
    EXPECT_EQ(matchFont("dejavu sans", 700, false).fullName, "DejaVu Sans Bold");
    EXPECT_EQ(matchFont("'No Such', \"DejaVu Sans Mono\", serif", 400, false).fullName, "DejaVu Sans Mono");
    EXPECT_EQ(matchFont("IPAゴシック", 400, false).fullName, "IPAGothic");
    EXPECT_EQ(matchFont("DejaVu Sans Bold", 400, false).fullName, "DejaVu Sans Bold");  // a full name
    EXPECT_EQ(matchFont("No Such", 700, false).fullName, "DejaVu Sans Bold");
    EXPECT_EQ(matchFont("", 400, false).fullName, "DejaVu Sans");
    EXPECT_EQ(findFont("DejaVu Sans Bold")->weight, 700);
    EXPECT_EQ(findFont("DejaVu Sans Bold")->postScriptName, "DejaVuSans-Bold");
}

}  // namespace
}  // namespace quorvel::fonts
