// The suites of texts, strings, units, views and random numbers, as a plug-in sees them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "fonts/fonts.h"
#include "host/code_page.h"
#include "tests/host/fake_plugin.h"

namespace quorvel::host {
namespace {

struct TextEngine {
    const AITextFrameSuite& frames = suiteOf<AITextFrameSuite>();
    const ATETextRangeSuite& ranges = suiteOf<ATETextRangeSuite>();
    const ATECharFeaturesSuite& chars = suiteOf<ATECharFeaturesSuite>();

    AIArtHandle frame = nullptr;
    ATETextRangeRef range = nullptr;
    ATECharFeaturesRef features = nullptr;

    TextEngine() {
        frames.NewPointText(kPlaceInsideOnTop, rootOfCurrentLayer(), kHorizontalText, {5, 7}, &frame);
        frames.GetATETextRange(frame, &range);
        ranges.GetLocalCharFeatures(range, &features);
    }
    AIErr insert(const std::u16string& text) {
        const std::vector<std::uint16_t> units(text.begin(), text.end());
        return ranges.InsertAfter(range, units.data(), static_cast<std::int32_t>(units.size()));
    }
};

TEST_F(Suites, FeaturesOfAnEmptyRangeAreThoseOfWhatIsInsertedNext) {
    within([&] {
        TextEngine text;
        text.ranges.Remove(text.range);
        text.chars.SetFontSize(text.features, 10);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        EXPECT_EQ(text.insert(u"cm"), kNoErr);
        EXPECT_EQ(text.insert(u"\x00B0"), kNoErr);
        std::int32_t start = -1, end = -1;
        text.ranges.GetStart(text.range, &start);
        text.ranges.GetEnd(text.range, &end);
        EXPECT_EQ(start, 0);
        EXPECT_EQ(end, 3);
        // A raised small figure behind it.
        text.ranges.SetRange(text.range, end, end);
        text.chars.SetFontSize(text.features, 5);
        text.chars.SetBaselineShift(text.features, 3);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        text.insert(u"2");
        EXPECT_EQ(text.ranges.SetRange(text.range, 0, 4), kNoErr);
        EXPECT_NE(text.ranges.SetRange(text.range, 0, 5), kNoErr);
        EXPECT_NE(text.ranges.SetRange(text.range, 3, 2), kNoErr);

        const doc::Document& document = *host.document();
        const doc::Art& root = *document.find(document.layer(document.currentLayer())->root);
        const doc::TextData& data = *document.find(root.firstChild)->text;
        EXPECT_EQ(data.text,
                  u"cm\x00B0"
                  u"2");
        ASSERT_EQ(data.runs.size(), 2u);
        EXPECT_EQ(data.runs[0].length, 3);
        EXPECT_EQ(data.runs[0].features.size, 10);
        EXPECT_EQ(data.runs[0].features.font, fonts::fonts().front().fullName);
        EXPECT_EQ(data.runs[1].length, 1);
        EXPECT_EQ(data.runs[1].features.size, 5);
        EXPECT_EQ(data.runs[1].features.baselineShift, 3);

        // Cut out of the middle; the runs around it stay.
        text.ranges.SetRange(text.range, 1, 3);
        text.ranges.Remove(text.range);
        EXPECT_EQ(data.text, u"c2");
        ASSERT_EQ(data.runs.size(), 2u);
        EXPECT_EQ(data.runs[0].length, 1);
        // Everything out: one run stays for what comes, and new text takes it.
        text.ranges.SetRange(text.range, 0, 2);
        text.ranges.Remove(text.range);
        ASSERT_EQ(data.runs.size(), 1u);
        EXPECT_EQ(data.runs[0].length, 0);
        text.insert(u"x");
        EXPECT_EQ(data.runs[0].features.size, 10);
    });
}

TEST_F(Suites, FeaturesOfARangeReplaceThoseOfItsCharactersAlone) {
    within([&] {
        TextEngine text;
        text.insert(u"abcdef");
        text.ranges.SetRange(text.range, 2, 4);
        text.chars.SetHorizontalScale(text.features, 0.5f);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        const doc::Document& document = *host.document();
        const doc::Art& root = *document.find(document.layer(document.currentLayer())->root);
        const std::vector<doc::TextRun>& runs = document.find(root.firstChild)->text->runs;
        ASSERT_EQ(runs.size(), 3u);
        EXPECT_EQ(runs[0].features.horizontalScale, 1);
        EXPECT_EQ(runs[1].length, 2);
        EXPECT_EQ(runs[1].features.horizontalScale, 0.5f);
        EXPECT_EQ(runs[2].length, 2);
        RealPoint anchor;
        EXPECT_EQ(text.frames.GetPointTextAnchor(text.frame, &anchor), kNoErr);
        EXPECT_EQ(anchor.h, 5);
        AIArtHandle path = nullptr;
        EXPECT_NE(text.frames.GetPathObject(text.frame, &path), kNoErr);
    });
}

TEST_F(Suites, RangesEndWithTheirMessage) {
    ATETextRangeRef range = nullptr;
    AIUnicodeStringRef string = nullptr;
    within([&] {
        range = TextEngine().range;
        string = hostText("x");
    });
    within([&] {
        TextEngine another;
        hostText("y");
        std::int32_t start = 0, count = 0;
        const std::uint16_t* units = nullptr;
        EXPECT_EQ(another.ranges.GetStart(range, &start), kStaleHandleErr);
        EXPECT_EQ(strings().GetUTF16(string, &units, &count), kStaleHandleErr);
    });
}

TEST_F(Suites, StringsComeFromTheCodePages) {
    const auto read = [](const std::string& bytes, int codePage) {
        AIUnicodeStringRef string = nullptr;
        EXPECT_EQ(strings().FromCodePage(bytes.data(), static_cast<std::int32_t>(bytes.size()), codePage, &string),
                  kNoErr);
        const std::uint16_t* units = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(strings().GetUTF16(string, &units, &count), kNoErr);
        return std::u16string(units, units + count);
    };
    within([&] {
        EXPECT_EQ(read("\x90\xA1\x96\x40~\\", 932), u"寸法~\\");
        EXPECT_EQ(read("\x87\x40", 932), u"①");  // the vendor's own row
        EXPECT_EQ(read("a\x81", 932), u"a\xFFFD");
        EXPECT_EQ(read("\xC7\xD1", 949), u"한");
        EXPECT_EQ(read("\xF0\x9F\x98\x80", 65001), u"\xD83D\xDE00");
        EXPECT_EQ(read("\xEE\x80\x80", 65001), u"\xE000");
        EXPECT_EQ(toUtf8(u"\xDFFF\xE000"), "\xEF\xBF\xBD\xEE\x80\x80") << "half a pair, and what comes behind them";
        EXPECT_EQ(read("", 932), u"");
        AIUnicodeStringRef string = nullptr;
        EXPECT_NE(strings().FromCodePage("a", 1, 1252, &string), kNoErr);
        EXPECT_NE(strings().FromCodePage("a", -1, 932, &string), kNoErr);
    });
}

TEST_F(Suites, RulerTextsEndInTheUnit) {
    const auto& user = suiteOf<AIUserSuite>();
    const auto format = [&](const char* unit, float points, int precision) {
        host.setRulerUnit(unit);
        char text[32] = "";
        EXPECT_EQ(user.FormatWithRulerUnit(points, precision, text, sizeof(text)), kNoErr);
        return std::string(text);
    };
    const char* zeros[][2] = {{"mm", "0 mm"}, {"cm", "0 cm"}, {"in", "0 in"}, {"pt", "0 pt"},
                              {"pc", "0p0"},  {"px", "0 px"}, {"H", "0 H"}};
    for (const auto& [unit, text] : zeros) EXPECT_EQ(format(unit, 0, -1), text);
    EXPECT_EQ(format("mm", 72, -1), "25.4 mm");
    EXPECT_EQ(format("H", 72, -1), "101.6 H");
    EXPECT_EQ(format("mm", 72, 2), "25.40 mm");
    EXPECT_EQ(format("in", -0.000001f, -1), "0 in");
    EXPECT_EQ(format("pc", 30, -1), "2p6");
    EXPECT_EQ(format("pc", 11.99999f, -1), "1p0");
    EXPECT_EQ(format("pc", -18.5f, -1), "-1p6.5");
    EXPECT_EQ(format("furlong", 72, -1), "6p0");  // an unknown unit keeps the present one
    char small[4] = "";
    EXPECT_EQ(user.FormatWithRulerUnit(0, -1, small, sizeof(small)), kNoErr);
    EXPECT_STREQ(small, "0p0");
    EXPECT_NE(user.FormatWithRulerUnit(0, -1, small, 0), kNoErr);
}

TEST_F(Suites, ViewPointsRoundToPixelsDownwards) {
    const auto& views = suiteOf<AIDocumentViewSuite>();
    AIDocumentViewHandle view = nullptr;
    ASSERT_EQ(views.GetNthDocumentView(0, &view), kNoErr);
    host.setCentre({100, 50});
    host.setZoom(2);
    host.setZoom(0);                                        // no zoom at all: the present one stays
    host.setZoom(std::numeric_limits<float>::quiet_NaN());  // neither is this
    float zoom = 0;
    views.GetDocumentViewZoom(view, &zoom);
    EXPECT_EQ(zoom, 2);
    const RealPoint point{110.3f, 60};
    AIPoint pixel;
    views.ArtworkPointToViewPoint(view, &point, &pixel);  // 1000 by 800 pixels
    EXPECT_EQ(pixel.h, 521);
    EXPECT_EQ(pixel.v, 380);
    const RealPoint back = host.toArtwork(pixel);
    EXPECT_EQ(back.h, 110.5f);
    EXPECT_EQ(back.v, 60);
    host.closeDocument();
    EXPECT_EQ(views.GetNthDocumentView(0, &view), kNoErr);
    EXPECT_EQ(view, nullptr);
}

TEST_F(Suites, RandomNumbersFollowTheSeed) {
    const auto& random = suiteOf<AIRandomSuite>();
    std::mt19937_64 same(1);
    double sum = 0;
    for (int i = 0; i < 1000; ++i) {
        const float number = random.FloatRnd();
        EXPECT_GE(number, 0);
        EXPECT_LT(number, 1);
        EXPECT_EQ(std::floor(number * 0x1p24f), static_cast<double>(same() >> 40));
        sum += number;
    }
    EXPECT_NEAR(sum / 1000, 0.5, 0.05);
}

}  // namespace
}  // namespace quorvel::host
