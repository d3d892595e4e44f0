// Frames drawn from a parts list without a window: what ends up in the drawings, and what stays as it was.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/dimension_list.h"
#include "cli/commands.h"
#include "interchange/svg/svg.h"
#include "platform/text.h"

namespace quorvel::cli {
namespace {

namespace fs = std::filesystem;

struct FrameCommand : testing::Test {
    FrameCommand() {
        fs::create_directories(folder / "profile");
        write("drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='842pt' height='595pt'/>");
        write("list.csv",
              "1\r\n\"Bracket\"\r\n\"Works\"\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n2\r\n"
              "\"Bolt\",\"SS400\",4\r\n\"" +
                  platform::FromUtf8("座金", 932) + "\",,4\r\n");
        options.profile = (folder / "profile").string();
        options.language = "en";
        options.seed = 1;
        options.pluginFile = QUORVEL_PLUGIN_FILE;
        options.files = {path("drawing.svg")};
        options.parts = path("list.csv");
        options.at = "0,0,800,560";
        options.output = path("out.svg");
    }
    ~FrameCommand() override { fs::remove_all(folder); }
    std::string path(const char* name) const { return (folder / name).string(); }
    void write(const char* name, const std::string& text) { std::ofstream(folder / name, std::ios::binary) << text; }
    int exitStatus() {
        const Result<int> status = drawFrames(options);
        return status ? *status : -1;
    }
    // The one frame of a drawing; its outer rectangle.
    RealRect frameIn(const std::string& file, std::vector<std::string>* texts = nullptr) {
        Result<interchange::SvgDrawing> read = interchange::readSvgFile(file);
        EXPECT_TRUE(read);
        if (!read) return {};
        const std::vector<app::RecordedDimension> frames = app::listDimensions(*read->document);
        EXPECT_EQ(frames.size(), 1U);
        if (frames.size() != 1) return {};
        EXPECT_EQ(frames[0].kind, "frame");
        if (texts != nullptr) *texts = frames[0].texts;
        const doc::Document& document = *read->document;
        const doc::ArtId titles = document.find(frames[0].group)->lastChild;
        return document.bounds(document.find(titles)->lastChild);
    }

    fs::path folder = fs::path(testing::TempDir()) / ("frame_command_" + std::to_string(getpid()));
    Options options;
};

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

TEST_F(FrameCommand, TheListStandsInTheFrame) {
    for (const char* language : {"en", "ja"}) {
        options.language = language;
        options.sets = {"flZwkTitle=Überplatte = 図", "flZwkScale=1:5"};
        options.replacesCharacters = true;
        ASSERT_EQ(exitStatus(), kExitOk);
        std::vector<std::string> texts;
        const RealRect rect = frameIn(options.output, &texts);
        EXPECT_TRUE(rect.left == 0 && rect.bottom == 0 && rect.right == 800 && rect.top == 560);
        for (const char* text : {"Works", "1:5", "Bolt", "SS400"}) EXPECT_TRUE(Contains(texts, text)) << text;
        if (std::string(language) == "en") {
            EXPECT_TRUE(Contains(texts, "Item"));
        } else {
            for (const char* text : {"?berplatte = 図", "座金", "名　　称"}) EXPECT_TRUE(Contains(texts, text)) << text;
        }
        EXPECT_FALSE(Contains(texts, "Bracket"));
    }
}

TEST_F(FrameCommand, ManyDrawingsInOneCall) {
    write("second.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='842pt' height='595pt'/>");
    write("broken.svg", "<svg");
    options.files = {path("drawing.svg"), path("broken.svg"), path("second.svg")};
    options.output.clear();
    options.outputFolder = path("frames");
    options.mode = "top";
    testing::internal::CaptureStderr();
    EXPECT_EQ(exitStatus(), kExitBadInput) << "one could not be read";
    EXPECT_TRUE(testing::internal::GetCapturedStderr().find("\n" + path("broken.svg") + ": ") != std::string::npos);
    for (const char* name : {"frames/drawing.svg", "frames/second.svg"}) EXPECT_EQ(frameIn(path(name)).top, 560);
    EXPECT_FALSE(fs::exists(path("frames/broken.svg")));
}

TEST_F(FrameCommand, TheProfileCountsAndStaysAsItIs) {
    fs::create_directories(folder / "profile/Adobe/Illustrator/Prefs/Quorvel");
    const fs::path settings = folder / "profile/Adobe/Illustrator/Prefs/Quorvel.ini";
    const std::string text = "flUseGrid = 1\r\nflGrWidth = 300\r\nflArFSize = 6\r\nzwk_prefspath = \"own\"\r\n";
    std::ofstream(settings, std::ios::binary) << text;
    std::ofstream(folder / "profile/Adobe/Illustrator/Prefs/Quorvel/own.ini") << "flZwkTitle = \"own\"\r\n";
    options.at = "10,20,810,570";
    ASSERT_EQ(exitStatus(), kExitOk);
    const RealRect rect = frameIn(options.output);
    EXPECT_TRUE(rect.left == 10 && rect.right == 810) << "no grid";
    Result<interchange::SvgDrawing> read = interchange::readSvgFile(options.output);
    const doc::ArtId frame = app::listDimensions(*read->document).at(0).group;
    const doc::ArtId titles = read->document->find(frame)->lastChild;
    const doc::ArtId block = read->document->find(read->document->find(titles)->lastChild)->above;
    EXPECT_EQ(read->document->bounds(block).left, 810 - 240) << "rows of 8";
    std::ifstream in(settings, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    EXPECT_EQ(bytes.str(), text);
}

TEST_F(FrameCommand, BadInputIsNamed) {
    const auto with = [&](auto change) -> std::string {
        Options bad = options;
        change(bad);
        const Result<int> status = drawFrames(bad);
        return status ? "accepted" : app::sentence(status.error(), app::Language::english);
    };
    EXPECT_EQ(with([](Options& o) { o.at = "1,2,3"; }), "--at 1,2,3: four numbers, LEFT,BOTTOM,RIGHT,TOP");
    EXPECT_EQ(with([](Options& o) { o.at = "1,2,1,2"; }), "--at 1,2,1,2: the two corners are one point");
    EXPECT_NE(with([](Options& o) { o.at = "1,2,3,x"; }), "accepted");
    EXPECT_EQ(with([](Options& o) { o.parts = "none.csv"; }), "none.csv: No such file or directory");
    EXPECT_EQ(with([](Options& o) { o.sets = {"flNone=1"}; }), "--set flNone=1: unknown key");
    EXPECT_EQ(with([](Options& o) { o.sets = {"flZwkTitle=Über"}; }),
              "--set flZwkTitle=Über: code page 932 has no character U+00DC; --replace puts \"?\" in its place");
    write("utf8.csv", "1\n底板\nWorks\n\"Bolt, long\",\"a\nÜ\"\n");
    EXPECT_EQ(with([&](Options& o) { o.parts = path("utf8.csv"); }),
              path("utf8.csv") +
                  ": row 5, column 1: code page 932 has no character U+00DC; --replace puts \"?\" in its place");
    EXPECT_EQ(with([](Options& o) { o.sets = {"flZwkTitle"}; }), "--set flZwkTitle: KEY=TEXT");
    EXPECT_NE(with([](Options& o) { o.output.clear(); }), "accepted");
    EXPECT_NE(with([](Options& o) { o.files.push_back("other.svg"); }), "accepted");
    EXPECT_FALSE(fs::exists(options.output));
    write("locked.svg",
          "<svg xmlns='http://www.w3.org/2000/svg' xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' "
          "xmlns:sodipodi='http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd' width='100' height='100'>"
          "<g inkscape:groupmode='layer' id='l' sodipodi:insensitive='true'/></svg>");
    options.files = {path("locked.svg")};
    testing::internal::CaptureStderr();
    EXPECT_EQ(exitStatus(), kExitBadInput);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), path("locked.svg") + ": the current layer is hidden or locked\n");
}

}  // namespace
}  // namespace quorvel::cli
