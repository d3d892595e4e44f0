// Clones: what a use element shows is its own to change, in the drawing and in the file. Expected texts are written out
// by hand; a clone that is written out keeps all that the drawing has no word for.
#include "tests/interchange/svg_support.h"

namespace quorvel::interchange {
namespace {

constexpr const char* kOwnDeclared = " xmlns:quorvel=\"https://quorvel.invalid/ns/1\"";

using Change = void (*)(doc::Document&);

// Expects that the change makes this content of that one, and that the new file holds what the document does.
void expectChange(const std::string& before, const std::string& after, Change change,
                  const std::string& declared = "") {
    const auto document = open(page(before));
    ASSERT_TRUE(document);
    EXPECT_EQ(writeSvg(*document), page(before));
    change(*document);
    const std::string written = writeSvg(*document);
    EXPECT_EQ(written, page(after, declared));
    expectSame(*document, *open(written));
}

doc::ArtId member(const doc::Document& document, const std::string& id) {
    return document.find(art(document, id).lastChild)->id;
}

void moveOriginal(doc::Document& document) { document.transform(art(document, "p").id, {1, 0, 0, 1, 5, 0}, 1); }
void removeOriginal(doc::Document& document) { document.removeArt(art(document, "p").id); }

TEST(Clones, ATaggedMemberLeavesTheRestOfTheCloneAsItWas) {
    const std::string look = "fill=\"#ff000080\" fill-rule=\"evenodd\" opacity=\".5\" clip-path=\"url(#c)\"";
    const std::string inside = "<image href=\"x.png\" width=\"9\" height=\"9\"/><text y=\"3\" id=\"t\">A</text>";
    const std::string original =
        "<defs><g id=\"s\"><path id=\"q\" d=\"M0 0H30V30Z\" " + look + "/>" + inside + "</g></defs>";
    expectChange(
        original + "<g fill-opacity=\".3\"><use id=\"u\" href=\"#s\"/></g>",
        original + "<g fill-opacity=\".3\"><g id=\"u\"><g><path d=\"M0 0H30V30Z\" " + look +
            " quorvel:T=\"1\"/><image href=\"x.png\" width=\"9\" height=\"9\"/><text y=\"3\">A</text></g></g></g>",
        [](doc::Document& document) { document.setTag(document.find(member(document, "u"))->lastChild, "T", "1"); },
        kOwnDeclared);
}

TEST(Clones, AChangedMemberIsEditedLikeAnyOther) {
    expectChange(
        "<use id='u' href='#p' x='3' y=\"20\"/>\n  <defs><path id='p' opacity='.5' d='M 0 0 h 1'/></defs>",
        "<g id='u' transform=\"translate(10,0) translate(3,20)\">\n  <path opacity='.5' d='M 0 0 h 1'/>\n</g>\n"
        "  <defs><path id='p' opacity='.5' d='M 0 0 h 1'/></defs>",
        [](doc::Document& document) {
            document.transform(art(document, "u").id, {1, 0, 0, 1, 10, 0}, 1);
        });
    // No two transforms are multiplied beforehand while one of the elements is free to take the shift.
    expectChange(
        "<use id='u' href='#p' x='3' transform='scale(2)'><title>T</title></use><path id='p' d='M 0 0 h 1'/>",
        "<g id='u' transform='scale(2)'><title>T</title>\n  <path d='M 0 0 h 1' transform=\"translate(3,0)\" "
        "quorvel:T=\"1\"/>\n</g><path id='p' d='M 0 0 h 1'/>",
        [](doc::Document& document) { document.setTag(member(document, "u"), "T", "1"); }, kOwnDeclared);
}

TEST(Clones, AChangedOriginalLeavesItsClonesBehind) {
    const std::string use = "<use id=\"u\" href=\"#p\" y=\"20\"/>";
    const std::string writtenOut = "<g id=\"u\" transform=\"translate(0,20)\"><path d=\"M0 0H10\"/></g>";
    expectChange("<path id=\"p\" d=\"M0 0H10\"/>" + use, "<path id=\"p\" d=\"M 5,0 L 15,0\"/>" + writtenOut,
                 moveOriginal);
    expectChange("<path id=\"p\" d=\"M0 0H10\"/>" + use, writtenOut, removeOriginal);
    // A clone of a group follows what is in the group.
    expectChange("<g id='g'><path id='p' d='M0 0H1'/><path d='M1 1'/></g><use href='#g' x='1'/>",
                 "<g id='g'><path d='M1 1'/></g><g transform=\"translate(1,0)\"><g><path d='M0 0H1'/><path "
                 "d='M1 1'/></g></g>",
                 removeOriginal);
    // Marks that nobody sees change nothing: a dimensioned original keeps its clones.
    expectChange(
        "<path id=\"p\" d=\"M0 0H10\"/>" + use, "<path id=\"p\" d=\"M0 0H10\" quorvel:T=\"1\"/>" + use,
        [](doc::Document& document) { document.setTag(art(document, "p").id, "T", "1"); }, kOwnDeclared);
}

TEST(Clones, ACloneOfACloneFollowsToo) {
    const std::string middle = "<defs><g id='s'><use href='#p' y='1'/><path d='M5 5'/></g></defs>";
    expectChange("<path id='p' d='M0 0H1'/>" + middle + "<use id='u' href='#s' x='2'/>",
                 "<path id='p' d='M 5,0 L 6,0'/>" + middle +
                     "<g id='u' transform=\"translate(2,0)\"><g><g transform=\"translate(0,1)\"><path d='M0 0H1'/></g>"
                     "<path d='M5 5'/></g></g>",
                 moveOriginal);
}

TEST(Clones, TagsOfTheOriginalAreNotTheClones) {
    const auto document = open(page(
        "<path id='p' d='M0 0H10' quorvel:T='1' sodipodi:insensitive='true'/><use id='u' href='#p'/>", kOwnDeclared));
    document->setTag(member(*document, "u"), "V", "2");
    const auto again = open(writeSvg(*document));
    const doc::Art& clone = *again->find(member(*again, "u"));
    ASSERT_EQ(clone.tags.size(), 1U);
    EXPECT_EQ(clone.tags[0].name, "V");
    EXPECT_FALSE(clone.locked);
    EXPECT_TRUE(art(*again, "p").locked);
}

TEST(Clones, ASymbolBecomesAViewport) {
    const std::string symbol =
        "<symbol id='s' viewBox='0 0 10 10'><defs><style>.a{}</style></defs><path id='q' d='M0 0H10'/></symbol>";
    expectChange(
        symbol + "<use id='u' href='#s' x='5' width='20' height='20'/>",
        symbol +
            "<g id='u' transform=\"translate(5,0)\"><svg viewBox='0 0 10 10' width=\"20\" height=\"20\">"
            "<path d='M0 0H10' quorvel:T=\"1\"/></svg></g>",
        [](doc::Document& document) { document.setTag(document.find(member(document, "u"))->lastChild, "T", "1"); },
        kOwnDeclared);
}

TEST(Clones, WhatRulesSayOfIdsAndNamesIsKept) {
    const std::string sheet =
        "<style>#p{opacity:.5;stroke:red} .w{stroke-width:3} use{mask:url(#m)} g{filter:url(#f)}</style>";
    expectChange(
        sheet + "<defs><path id='p' class='w' d='M0 0H1' style='stroke:blue'/></defs><use id='u' href='#p'/>",
        sheet +
            "<defs><path id='p' class='w' d='M0 0H1' style='stroke:blue'/></defs><g id='u' "
            "style=\"mask:url(#m);filter:none\"><path class='w' d='M0 0H1' "
            "style='stroke:blue;opacity:.5' quorvel:T=\"1\"/></g>",
        [](doc::Document& document) { document.setTag(member(document, "u"), "T", "1"); }, kOwnDeclared);
}

TEST(Clones, ACopyDeclaresThePrefixesItFound) {
    expectChange("<g xmlns:x='urn:x'><path id='p' x:a='1' d='M0 0H1'/></g><use id='u' href='#p'/>",
                 "<g xmlns:x='urn:x'></g><g id='u'><path x:a='1' d='M0 0H1' xmlns:x=\"urn:x\"/></g>", removeOriginal);
}

TEST(Clones, CopiesOfForeignMembersAreWhole) {
    const std::string original = "<defs><g id='s'><image id='i' href='a.png'/></g></defs><use id='u' href='#s'/>";
    expectChange(original, original + "<g id=\"v\"><g><image href='a.png'/></g></g>",
                 [](doc::Document& document) { document.duplicateArt(art(document, "u").id, "v"); });
}

TEST(Clones, UsesInACircleAreStillWritten) {
    const auto document =
        open(page("<g id='a'><path id='p' d='M0 0H1'/><use href='#b'/></g><g id='b'><use href='#a'/></g><use id='u' "
                  "href='#a'/>"));
    // A tag of its own leaves it a use element.
    document->setTag(art(*document, "u").id, "T", "1");
    EXPECT_NE(writeSvg(*document).find("<use id='u' href='#a' quorvel:T=\"1\"/>"), std::string::npos)
        << writeSvg(*document);
    moveOriginal(*document);
    document->setTag(document->find(member(*document, "u"))->lastChild, "T", "1");
    const Result<SvgDrawing> again = readSvg(writeSvg(*document));
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ(segments(*again->document, "p")[0].p.h, 5);
}

}  // namespace
}  // namespace quorvel::interchange
