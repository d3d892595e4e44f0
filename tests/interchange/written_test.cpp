// What is written can be read back, in the file's own encoding and precision, and else is not written at all.
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/interchange/svg_support.h"

namespace quorvel::interchange {
namespace {

TEST(SvgWritten, AFileInAsciiStaysSo) {
    const std::string head = "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n";
    const auto document = open(head + page("<g id='g'/>"));
    document->setLayerTitle(document->layers()[0], "\u5BF8\u6CD5 \xC3\xA9\xF0\x9F\x98\x80");
    document->setLayerVisible(document->layers()[0], false);
    const std::string written = writeSvg(*document);
    EXPECT_NE(written.find("\"&#23544;&#27861; &#233;&#128512;\""), std::string::npos) << written;
    expectSame(*document, *open(written));
}

TEST(SvgWritten, IdsOfDefinitionsAreNotGivenAgain) {
    const auto document =
        open(page("<defs><linearGradient id='g-2'/></defs><g id='g'><path id='p' d='M0 0'/></g>"
                  "<!-- p-2 --><clipPath id='p-2'/><clipPath id='quorvel-layer-1'/>"));
    const doc::ArtId g = art(*document, "g").id;
    EXPECT_EQ(document->duplicateArt(g, "g-2"), 0U);
    EXPECT_FALSE(document->setName(g, "p-2"));
    const doc::ArtId copy = document->duplicateArt(g, "copy");
    EXPECT_EQ(document->find(document->find(copy)->firstChild)->name, "p-3");
    // The current layer's element gets a name as well.
    document->insertLayer("Top", 0);
    document->setCurrentLayer(document->layers().back());
    EXPECT_NE(writeSvg(*document).find("quorvel-layer-2"), std::string::npos) << writeSvg(*document);
    // What was art's own is free when the art is gone.
    document->removeArt(g);
    EXPECT_TRUE(document->setName(copy, "g"));
}

TEST(SvgWritten, CoordinatesAreShort) {
    const auto document = open(
        "<svg xmlns='http://www.w3.org/2000/svg' width='210mm' height='297mm' viewBox='0 0 210 297'>"
        "<path id='p' d='M 10.5,20.25 L 30.1,40'/></svg>");
    const auto before = segments(*document, "p");
    document->setClosed(art(*document, "p").id, true);
    EXPECT_NE(writeSvg(*document).find("'M 10.5,20.25 L 30.1,40 Z'") +
                  writeSvg(*document).find("\"M 10.5,20.25 L 30.1,40 Z\""),
              2 * std::string::npos);
    EXPECT_EQ(segments(*open(writeSvg(*document)), "p")[1].p.h, before[1].p.h);
}

// A drawing that could not be opened again does not take the place of one that can.
TEST(SvgWritten, WhatCannotBeReadBackIsNotSaved) {
    const std::string target = testing::TempDir() + "read_back-" + std::to_string(getpid()) + ".svg";
    std::ofstream(target) << page("");
    const auto document = open(page(""));
    auto nestTo = [&, innermost = doc::ArtId{0}, depth = 0](int wanted) mutable {
        for (; depth < wanted; ++depth)
            innermost = document->insertArt(kGroupArt, depth == 0 ? kPlaceAboveAll : kPlaceInsideOnTop, innermost);
        return saveSvgFile(*document, target, "");
    };
    const auto textOfTarget = [&] {
        std::ifstream in(target);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    ASSERT_TRUE(nestTo(200));
    const std::string before = textOfTarget();
    EXPECT_NE(before, page(""));
    const Status saved = nestTo(300);  // deeper than the reader goes
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().code, ErrorCode::kNotReadBack);
    EXPECT_EQ(textOfTarget(), before);
    std::filesystem::remove(target);
}

TEST(SvgWritten, AFailureNamesTheFile) {
    const Status noFolder = saveSvgFile(*open(page("")), "/none/a.svg", "");
    ASSERT_FALSE(noFolder);
    EXPECT_EQ(noFolder.error(), systemError(ENOENT, "/none/a.svg"));
}

}  // namespace
}  // namespace quorvel::interchange
