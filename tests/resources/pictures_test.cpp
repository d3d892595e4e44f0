// Every picture that a dialog, the panel, a tool or a cursor names is there, in the size at which it is shown, drawn
// with nothing that depends on another file or a font, and told from the grounds on which it stands.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "plugin/resources/dialog_templates.h"
#include "plugin/resources/panel_rows.h"
#include "plugin/shell/services.h"
#include "svg/markup/xml_file.h"
#include "tests/support/plugin_host.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using platform::ControlKind;
using platform::ControlRow;

constexpr int kIconSize = 32;
constexpr std::size_t kLargestFile = 2048;
constexpr int kFirstCursor = 16101, kLastCursor = 16110;

fs::path folder() { return fs::path(QUORVEL_SOURCE_DIR) / "plugin/resources/pictures"; }

std::string textOf(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string textOf(int id) { return textOf(folder() / (std::to_string(id) + ".svg")); }

void expectPicture(int id, int width, int height) {
    SCOPED_TRACE(id);
    const std::string text = textOf(id);
    EXPECT_LT(text.size(), kLargestFile);
    svg::XmlFile file;
    ASSERT_TRUE(file.parse(text));
    const svg::XmlNode svg = file.root();
    EXPECT_EQ(svg.name(), "svg");
    EXPECT_EQ(svg.attribute("xmlns").value(), "http://www.w3.org/2000/svg");
    EXPECT_EQ(svg.attribute("width").value(), std::to_string(width));
    EXPECT_EQ(svg.attribute("height").value(), std::to_string(height));
    const auto children = svg.children();
    EXPECT_TRUE(std::any_of(children.begin(), children.end(), [](const svg::XmlNode& child) {
        return child.name() == "title" && !child.firstChild().value().empty();
    }));
    // The view has the picture's proportions, so that one unit is a whole or half number of pixels in both directions.
    double left = 0, top = 0, viewWidth = 0, viewHeight = 0;
    std::istringstream(std::string(svg.attribute("viewBox").value())) >> left >> top >> viewWidth >> viewHeight;
    ASSERT_GT(viewWidth, 0);
    EXPECT_EQ(viewWidth * height, viewHeight * width);
    for (const svg::XmlNode& child : children) {
        const std::string_view name = child.name();
        EXPECT_TRUE(name == "title" || name == "path" || name == "rect") << name;
    }
}

void expectPictureOf(const ControlRow& row, int id) {
    const bool button = row.kind == ControlKind::toggle || row.kind == ControlKind::pushButton;
    expectPicture(id, button ? kIconSize : row.rect.right - row.rect.left,
                  button ? kIconSize : row.rect.bottom - row.rect.top);
}

TEST(Pictures, EveryControlHasItsPictureInItsSize) {
    std::set<int> seen;
    const auto expectRow = [&](const ControlRow& row) {
        const bool bears =
            row.kind == ControlKind::picture || row.kind == ControlKind::toggle || row.kind == ControlKind::pushButton;
        EXPECT_EQ(bears, row.picture != 0) << row.id;
        if (!bears) return;
        for (const int id : {row.picture, row.darkPicture}) {
            expectPictureOf(row, id);
            seen.insert(id);
        }
    };
    for (int id = 16000; id < 16400; ++id) {
        const platform::DialogTemplate* dialog = FindDialogTemplate(id);
        if (dialog == nullptr) continue;
        for (int i = 0; i < dialog->rowCount; ++i) expectRow(dialog->rows[i]);
    }
    for (const ControlRow& row : PanelRows()) expectRow(row);
    // Four line ends, the diagram, the fillet, the program; nineteen controls of the panel in two sets.
    EXPECT_EQ(seen.size(), 7U + 2 * 19U);
}

TEST(Pictures, EveryToolHasTwoIcons) {
    tests::PluginHost plugin;
    ASSERT_EQ(plugin.start(), kNoErr);
    ASSERT_EQ(plugin.host().tools().size(), 19U);
    for (const host::ToolRecord& tool : plugin.host().tools()) {
        EXPECT_NE(tool.iconId, tool.darkIconId);
        expectPicture(tool.iconId, kIconSize, kIconSize);
        expectPicture(tool.darkIconId, kIconSize, kIconSize);
    }
}

TEST(Pictures, EveryCursorHasAPictureAndAHotSpotInIt) {
    struct Spot {
        int h, v;
    };
    std::map<int, Spot> spots;
    std::ifstream in(folder() / "hotspots.txt");
    for (int id = 0, h = 0, v = 0; in >> id >> h >> v;) spots[id] = {h, v};
    EXPECT_TRUE(in.eof());
    EXPECT_EQ(spots.size(), static_cast<std::size_t>(kLastCursor - kFirstCursor + 1));
    for (int id = kFirstCursor; id <= kLastCursor; ++id) {
        expectPicture(id, kIconSize, kIconSize);
        ASSERT_TRUE(spots.contains(id)) << id;
        EXPECT_TRUE(spots[id].h >= 0 && spots[id].h < kIconSize && spots[id].v >= 0 && spots[id].v < kIconSize) << id;
    }
    for (std::int16_t kind = 0; kind <= 8; ++kind) EXPECT_TRUE(spots.contains(CursorForSnapKind(kind))) << kind;
}

// As seen by the eye: 1 for equal colours, 21 for black on white.
double contrast(const std::string& a, const std::string& b) {
    const auto luminance = [](const std::string& colour) {
        const double weights[] = {0.2126, 0.7152, 0.0722};
        double sum = 0;
        for (int i = 0; i < 3; ++i) {
            const double channel =
                std::stoi(colour.substr(1 + 2 * static_cast<std::size_t>(i), 2), nullptr, 16) / 255.0;
            sum += weights[i] * (channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4));
        }
        return sum;
    };
    const double first = luminance(a), second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

TEST(Pictures, BothSetsStandOutOnTheirGrounds) {
    // The panel's own ground in either theme, and the highlight on which an icon of that set is lit.
    const std::map<char, std::vector<std::string>> grounds = {{'2', {"#f0f0f0", "#aaaaaa"}},
                                                              {'3', {"#323232", "#444444"}}};
    static const std::regex colour("#[0-9a-f]{6}");
    constexpr double kStrong = 7, kFaint = 2.3;
    int icons = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder())) {
        const std::string id = entry.path().stem().string();
        if (entry.path().extension() != ".svg" || id < "16200") continue;
        SCOPED_TRACE(id);
        ++icons;
        const std::string text = textOf(entry.path());
        for (const std::string& ground : grounds.at(id[2])) {
            double best = 0;
            for (std::sregex_iterator found(text.begin(), text.end(), colour), end; found != end; ++found) {
                const double here = contrast(found->str(), ground);
                EXPECT_GT(here, kFaint) << found->str() << " on " << ground;
                best = std::max(best, here);
            }
            EXPECT_GT(best, kStrong) << ground;
        }
    }
    EXPECT_EQ(icons, 2 * (18 + 19));
}

TEST(Pictures, TheSecondSetIsTheFirstInOtherColours) {
    static const std::regex colour("#[0-9a-f]{6}");
    for (int id = 16200; id < 16300; ++id) {
        if (!fs::exists(folder() / (std::to_string(id) + ".svg"))) continue;
        EXPECT_EQ(std::regex_replace(textOf(id), colour, "#"), std::regex_replace(textOf(id + 100), colour, "#"))
            << id << ": run tools/make_pictures";
    }
}

}  // namespace
}  // namespace quorvel
