// What saving changes in a file's text: nothing where nothing has changed, else the least. Expected texts are written
// out by hand.
#include "tests/interchange/svg_support.h"

namespace quorvel::interchange {
namespace {

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

constexpr const char* kOwnDeclared = " xmlns:quorvel=\"https://quorvel.invalid/ns/1\"";
constexpr const char* kEditorsDeclared =
    " xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\""
    " xmlns:sodipodi=\"http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd\"";

// Expects that the change of the page with this content leaves the page with that content.
template <class Change>
void expectChange(const std::string& before, const std::string& after, Change change,
                  const std::string& attributes = "", const std::string& attributesAfter = "") {
    const auto document = open(page(before, attributes));
    EXPECT_EQ(writeSvg(*document), page(before, attributes));
    change(*document);
    EXPECT_EQ(writeSvg(*document), page(after, attributes + attributesAfter));
}

doc::ArtId addLine(doc::Document& document, AIPaintOrder placement, doc::ArtId prep) {
    const doc::ArtId id = document.insertArt(kPathArt, placement, prep);
    const PathSegment ends[] = {{{1, 190}, {1, 190}, {1, 190}, 1}, {{2.5F, 180}, {2.5F, 180}, {2.5F, 180}, 1}};
    document.setSegments(id, 0, ends);
    AIPathStyle style;
    style.strokePaint = 1;
    style.stroke.gray = 1;
    style.strokeWidth = 0.75F;
    style.miterLimit = 4;
    document.setStyle(id, style);
    return id;
}

// A black line of the initial width beside what every page inherits.
constexpr const char* kLine = "<path style=\"fill:none;stroke:#000000;stroke-width:0.75\" d=\"M 1,10 L 2.5,20\"/>";

TEST(SvgWrite, OddBytesAreKept) {
    for (const std::string& text :
         {"\xEF\xBB\xBF" + page("<path d = 'M0 0'\t/>"), page("\r\n<g >\r\n</g\n>\r\n"),
          page("<path d='M0 0' a='<>&#10;\"'/><?pi <g> ?>"), page("<!-- <g> --><text>a<![CDATA[<g>]]>&amp;</text>"),
          "<svg/>" + std::string("\n\n<!-- end -->")}) {
        const auto document = open(text);
        ASSERT_TRUE(document);
        EXPECT_EQ(writeSvg(*document), text);
    }
}

TEST(SvgWrite, ATagIsOneAttribute) {
    expectChange(
        "  <path\n     id=\"p\"\n     d='m 0,0 1 1' />",
        "  <path\n     id=\"p\"\n     d='m 0,0 1 1'\n     quorvel:quorvel_object_id=\"1234\" />",
        [](doc::Document& document) { document.setTag(art(document, "p").id, "quorvel_object_id", "1234"); }, "",
        kOwnDeclared);
}

// A member has no element whose id it could be.
TEST(SvgWrite, ACopiedMemberKeepsItsId) {
    const std::string before = "<path id=\"c\" d=\"M 0,0 L 9,0 M 0,5 L 9,5\"/>";
    const std::string after = "<path id=\"c\" d=\"M 0,0 L 9,0 M 0,5 L 9,5 M 0,5 L 9,5\" quorvel:m2-path-id=\"twin\"/>";
    expectChange(
        before, after, [](doc::Document& document) { document.duplicateArt(art(document, "c").firstChild, "twin"); },
        "", kOwnDeclared);
    const auto again = open(page(after, kOwnDeclared));
    EXPECT_EQ(again->findByName("twin"), art(*again, "c").firstChild);
    EXPECT_TRUE(again->find(again->findByName("twin"))->tags.empty());
    // Other editors split paths.
    EXPECT_EQ(open(page("<path d=\"M 0,0 L 9,0\" quorvel:m0-path-id=\"twin\"/>", kOwnDeclared))->findByName("twin"),
              0U);
}

TEST(SvgWrite, TagsAreBytes) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    const auto document = open(page("<g id='g'><path id='two' d='M0 0 1 1M5 5 6 6'/></g>"));
    const doc::ArtId g = art(*document, "g").id, two = art(*document, "two").id;
    document->setTag(g, "QUORVEL_SETTING_1", "\x83\x5C\"<&>%41\n");
    document->setTag(g, "1 odd-name\xFF", all);
    document->setTag(g, "empty", "");
    document->setTag(art(*document, "two").firstChild, "upper", "1");
    document->setTag(art(*document, "two").lastChild, "lower", "2");
    const std::string written = writeSvg(*document);
    EXPECT_NE(written.find("quorvel:QUORVEL_SETTING_1=\"%83\\&quot;&lt;&amp;&gt;%2541%0A\""), std::string::npos)
        << written;
    const auto again = open(written);
    expectSame(*document, *again);
    again->removeTag(art(*again, "g").id, "empty");
    EXPECT_EQ(writeSvg(*again), replaced(written, " quorvel:empty=\"\"", ""));
    (void)two;
}

TEST(SvgWrite, NewArtIsIndentedLikeItsNeighbours) {
    const std::string before =
        "  <g id=\"g\">\n\t<path id=\"a\" d=\"M0 0\"/>\n\t<!-- note -->\n\t<path id=\"b\" d=\"M0 0\"/>\n  </g>";
    const auto line = [](AIPaintOrder placement, const char* id) {
        return [=](doc::Document& document) { addLine(document, placement, art(document, id).id); };
    };
    const std::string a = "<path id=\"a\" d=\"M0 0\"/>", b = "<path id=\"b\" d=\"M0 0\"/>";
    expectChange(before, replaced(before, a, a + "\n\t" + kLine), line(kPlaceAbove, "a"));
    expectChange(before, replaced(before, a, kLine + ("\n\t" + a)), line(kPlaceBelow, "a"));
    expectChange(before, replaced(before, b, b + "\n\t" + kLine), line(kPlaceInsideOnTop, "g"));
    expectChange("<g id=\"e\"/>", std::string("<g id=\"e\">\n  ") + kLine + "\n</g>", line(kPlaceInsideOnTop, "e"));
    expectChange("<g id='e'>\n</g>", std::string("<g id='e'>\n  ") + kLine + "\n</g>", line(kPlaceInsideOnTop, "e"));
    expectChange("<g id='x'/><g id='y'/>", std::string("<g id='x'/>\n") + kLine + "<g id='y'/>",
                 line(kPlaceAbove, "x"));
}

TEST(SvgWrite, ANewGroupHoldsItsArt) {
    expectChange(
        "  <path id=\"a\" d=\"M0 0\"/>",
        std::string("  <path id=\"a\" d=\"M0 0\"/>\n  <g id=\"dim\" quorvel:T=\"1\">\n    ") + kLine + "\n    " +
            kLine + "\n  </g>",
        [](doc::Document& document) {
            const doc::ArtId group = document.insertArt(kGroupArt, kPlaceAboveAll, 0);
            document.setName(group, "dim");
            document.setTag(group, "T", "1");
            addLine(document, kPlaceInsideOnTop, group);
            addLine(document, kPlaceInsideOnTop, group);
        },
        "", kOwnDeclared);
}

TEST(SvgWrite, RemovedArtTakesItsLineWithIt) {
    const std::string before =
        "  <!-- 1 -->\n  <path id=\"a\" d=\"M0 0\"/>\n  <g id=\"b\">\n    <path d=\"M0 0\"/>\n  </g>\n  <!-- 2 -->";
    expectChange(before, "  <!-- 1 -->\n  <path id=\"a\" d=\"M0 0\"/>\n  <!-- 2 -->",
                 [](doc::Document& document) { document.removeArt(art(document, "b").id); });
    expectChange("<g id='a'/><g id='b'/>", "<g id='b'/>",
                 [](doc::Document& document) { document.removeArt(art(document, "a").id); });
}

TEST(SvgWrite, MovedArtMovesItsText) {
    expectChange("<g id='g'>\n<path id='x' d='m0,0'/>\n</g>\n<path id='a' d='m 1 1'/>\n<path id='b' d='m 2 2'/>",
                 "<g id='g'>\n<path id='x' d='m0,0'/>\n<path id='a' d='m 1 1'/>\n</g>\n<path id='b' d='m 2 2'/>",
                 [](doc::Document& document) {
                     document.moveArt(art(document, "a").id, kPlaceInsideOnTop, art(document, "g").id);
                 });
    expectChange(
        "<g id='a'/>\n<g id='b'/>\n<g id='c'/>", "<g id='b'/>\n<g id='c'/>\n<g id='a'/>",
        [](doc::Document& document) { document.moveArt(art(document, "a").id, kPlaceAbove, art(document, "c").id); });
    // Into a group that is scaled and painted: the outline and the paint follow.
    expectChange(
        "<path id='a' d='M 10,20 h 2' fill='none'/>\n<g id='g' transform='scale(2)' stroke='red'>\n</g>",
        "<g id='g' transform='scale(2)' stroke='red'>\n  <path id='a' d='M 5,10 L 6,10' fill='none' "
        "style=\"fill:none;stroke:none;"
        "stroke-width:0.5;stroke-miterlimit:4;stroke-linecap:butt;stroke-linejoin:miter;stroke-dasharray:none;stroke-"
        "dashoffset:0\"/>\n</g>",
        [](doc::Document& document) {
            document.moveArt(art(document, "a").id, kPlaceInsideOnTop, art(document, "g").id);
        });
}

TEST(SvgWrite, ChangedShapesBecomePaths) {
    const auto shift = [](const char* id) {
        return [=](doc::Document& document) { document.transform(art(document, id).id, {1, 0, 0, 1, 10, -5}, 1); };
    };
    expectChange(
        "<rect id=\"r\" class=\"c\" x=\"1\" y=\"2\" width=\"3\" height=\"4\" fill=\"red\"><title>T</title></rect>",
        "<path id=\"r\" class=\"c\" fill=\"red\" d=\"M 11,7 L 14,7 L 14,11 L 11,11 Z\"><title>T</title></path>",
        shift("r"));
    expectChange("<path id=\"p\" d=\"m 1 2 h 3 v 4 z m 5 5 1 1\" transform=\"translate(1)\"/>",
                 "<path id=\"p\" d=\"M 11,7 L 14,7 L 14,11 Z M 16,12 L 17,13\" transform=\"translate(1)\"/>",
                 shift("p"));
    // Down the page is up the file's axis when it is turned.
    expectChange("<g transform=\"rotate(90)\"><line id=\"l\" x2=\"7\"/></g>",
                 "<g transform=\"rotate(90)\"><path id=\"l\" d=\"M 5,-10 L 12,-10\"/></g>", shift("l"));
    expectChange("<use id='u' href='#s' x='3'/><defs><path id='s' d='M 0 0 1 1'/></defs>",
                 "<g id='u' transform=\"translate(10,5) translate(3,0)\">\n  <path d='M 0 0 1 1'/>\n</g><defs><path "
                 "id='s' d='M 0 0 1 "
                 "1'/></defs>",
                 shift("u"));
    expectChange("<image id=\"i\" transform=\"scale(2)\"/>", "<image id=\"i\" transform=\"matrix(2 0 0 2 10 5)\"/>",
                 shift("i"));
    expectChange("<text id=\"t\" x=\"5\" y=\"6\"><tspan>A</tspan><tspan x=\"5\" y=\"9\">B</tspan></text>",
                 "<text id=\"t\" x=\"5\" y=\"6\" transform=\"matrix(1 0 0 1 10 5)\"><tspan>A</tspan><tspan x=\"5\" "
                 "y=\"9\">B</tspan></text>",
                 shift("t"));
}

TEST(SvgWrite, AttributesAndStylesAreEditedInPlace) {
    const std::string line = "<path id=\"p\" stroke=\"red\" style=\"stroke-width:2; opacity:0.5\" d=\"M0 0 1 1\"/>";
    const auto restyle = [](doc::Document& document) {
        AIPathStyle style = *art(document, "p").path->style;
        style.strokeWidth = 3;
        style.stroke = AIColor{.kind = kRgbPaint, .gray = 0, .rgb = {0, 0, 1}};
        document.setStyle(art(document, "p").id, style);
    };
    expectChange(line,
                 "<path id=\"p\" stroke=\"red\" style=\"stroke-width:3; opacity:0.5;stroke:#0000ff\" d=\"M0 0 1 1\"/>",
                 restyle);
    const auto hide = [](bool hidden) {
        return [=](doc::Document& document) { document.setHidden(art(document, "p").id, hidden); };
    };
    expectChange("<path id=\"p\" d=\"M0 0\"/>", "<path id=\"p\" d=\"M0 0\" style=\"display:none\"/>", hide(true));
    expectChange("<path id=\"p\" style=\"display:none\" d=\"M0 0\"/>", "<path id=\"p\" d=\"M0 0\"/>", hide(false));
    expectChange("<path\n   style=\"display:none\" id=\"p\" d=\"M0 0\"/>", "<path\n   id=\"p\" d=\"M0 0\"/>",
                 hide(false));
    expectChange("<g visibility='hidden'><path id=\"p\" d=\"M0 0\"/></g>",
                 "<g visibility='hidden'><path id=\"p\" d=\"M0 0\" style=\"visibility:visible\"/></g>", hide(false));
    const auto lock = [](doc::Document& document) { document.setLocked(art(document, "p").id, true); };
    expectChange("<g id=\"p\"/>", "<g id=\"p\" sodipodi:insensitive=\"true\"/>", lock, kEditorsDeclared);
    const auto undone = [&](doc::Document& document) {
        document.begin();
        restyle(document);
        document.commit("a", "b");
        document.undo();
    };
    expectChange(line, line, undone);
}

TEST(SvgWrite, ArtThatMovesWholeTakesAlongWhatItRefersTo) {
    const auto shift = [](const char* id) {
        return [=](doc::Document& document) { document.transform(art(document, id).id, {1, 0, 0, 1, 10, -5}, 1); };
    };
    const auto turn = [](const char* id) {
        return [=](doc::Document& document) { document.transform(art(document, id).id, {0, 1, -1, 0, 200, 200}, 1); };
    };
    const std::string group = "<g id=\"g\" clip-path=\"url(#c)\"><path id='p' d='M0 0H9'/><image id='i'/></g>";
    expectChange(group, replaced(group, "(#c)\"", "(#c)\" transform=\"translate(10,5)\""), shift("g"));
    expectChange(group, replaced(group, "(#c)\"", "(#c)\" transform=\"matrix(0 -1 1 0 0 0)\""), turn("g"));
    // What moves alone moves within the clip.
    expectChange(group, replaced(group, "M0 0H9", "M 10,5 L 19,5"), shift("p"));
    // What is new in the group is drawn for where it is.
    expectChange(group,
                 replaced(replaced(group, "(#c)\"", "(#c)\" transform=\"translate(10,5)\""), "</g>",
                          "<path style=\"fill:none;stroke:#000000;stroke-width:0.75\" d=\"M -9,5 L -7.5,15\"/></g>"),
                 [&](doc::Document& document) {
                     shift("g")(document);
                     addLine(document, kPlaceInsideOnTop, art(document, "g").id);
                 });
    expectChange("<path id='p' mask='url(#m)' transform='scale(2)' d='M0 0H9'/>",
                 "<path id='p' mask='url(#m)' transform='translate(10,5) scale(2)' d='M0 0H9'/>", shift("p"));
    expectChange("<style>.c{clip-path:url(#c)}</style><path id=\"p\" class=\"c\" d=\"M0 0H9\"/>",
                 "<style>.c{clip-path:url(#c)}</style><path id=\"p\" class=\"c\" d=\"M0 0H9\" "
                 "transform=\"translate(10,5)\"/>",
                 shift("p"));
    // What is scaled to nothing has no shift of its own that would be one of the page.
    const auto flat = open(page("<g transform='scale(0)'><path id='p' mask='url(#m)' d='M0 0H9'/></g>"));
    shift("p")(*flat);
    EXPECT_EQ(writeSvg(*flat).find("translate"), std::string::npos) << writeSvg(*flat);
    // A gradient's angle is the drawing's own and does not turn with it.
    const std::string gradient =
        "<linearGradient id='l'/><g fill='url(#l)'><path id=\"p\" d=\"M0 0H9\"/><path d='M1 1'/></g>";
    expectChange(gradient, replaced(gradient, "H9\"", "H9\" transform=\"translate(10,5)\""), shift("p"));
    expectChange(gradient, replaced(gradient, "M0 0H9", "M 0,0 L 0,-9"), turn("p"));
    expectChange(group, group, [&](doc::Document& document) {
        document.begin();
        shift("g")(document);
        document.commit("a", "b");
        document.undo();
    });
}

TEST(SvgWrite, DefinitionsInARemovedGroupStay) {
    const std::string gradient = "<defs><linearGradient id=\"lg\"><stop offset=\"0\"/></linearGradient></defs>";
    const std::string user = "<path id=\"b\" fill=\"url(#lg)\" d=\"M0 0H9V9Z\"/>";
    const auto removeG = [](doc::Document& document) { document.removeArt(art(document, "g").id); };
    expectChange(
        "<g id=\"g\" color=\"red\" transform=\"scale(2)\">" + gradient + "<path id=\"a\" d=\"M0 0H9\"/></g>" + user,
        "<defs color=\"red\">" + gradient + "</defs>" + user, removeG);
    // Also those of what was in it, but not of what has gone elsewhere.
    expectChange(
        "<g id='g'>\n  <title>T</title>\n  <g><clipPath id='c'/><clipPath/></g>\n  <g id='k'><marker id='m'/>"
        "</g>\n</g>\n<g id='h'/>",
        "<defs><defs><clipPath id='c'/></defs></defs>\n<g id='h'>\n  <g id='k'><marker id='m'/></g>\n</g>",
        [](doc::Document& document) {
            document.moveArt(art(document, "k").id, kPlaceInsideOnTop, art(document, "h").id);
            document.removeArt(art(document, "g").id);
        });
    expectChange("<g id='g'><style>.a{fill:red}</style><path d='M0 0'/></g><path class='a' d='M0 0'/>",
                 "<defs><style>.a{fill:red}</style></defs><path class='a' d='M0 0'/>", removeG);
}

TEST(SvgWrite, AShapeThatBecomesAPathKeepsTheRulesOfShapes) {
    const auto shift = [](doc::Document& document) {
        document.transform(art(document, "r").id, {1, 0, 0, 1, 1, 0}, 1);
    };
    const std::string sheet =
        "<style>rect{fill:none;stroke:red;opacity:.5;rx:1}path{opacity:.2;mask:url(#m);fill-rule:evenodd}</style>";
    expectChange(sheet + "<rect id=\"r\" style=\"stroke:blue\" width=\"3\" height=\"4\"/>",
                 sheet +
                     "<path id=\"r\" style=\"stroke:blue;fill:none;opacity:.5;rx:1;mask:none;fill-rule:inherit\" "
                     "d=\"M 1,0 L 4,0 L 4,4 L 1,4 Z\"/>",
                 shift);
}

TEST(SvgWrite, NewArtTakesOnNoRules) {
    // The rules for what is not understood may be any.
    const auto draw = [](doc::Document& document) { addLine(document, kPlaceAboveAll, 0); };
    const std::string whole =
        "fill:none;stroke:#000000;stroke-width:0.75;stroke-miterlimit:4;stroke-linecap:butt;stroke-linejoin:miter;"
        "stroke-dasharray:none;stroke-dashoffset:0";
    const auto line = [](const std::string& style) { return "<path style=\"" + style + "\" d=\"M 1,10 L 2.5,20\"/>"; };
    const std::string nested = "<style>svg path{stroke-width:9}</style><path d=\"M0 0\"/>";
    expectChange(nested, nested + line(whole), draw);
    const std::string rules = "<style>path{opacity:.2;marker-end:url(#m);fill:red}</style><path d=\"M0 0\"/>";
    expectChange(rules, rules + line(whole + ";opacity:1;marker-end:none"), draw);
}

TEST(SvgWrite, EntitiesInAttributesSurviveAnEdit) {
    const std::string type = "<!DOCTYPE svg [<!ENTITY st0 \"fill:none;stroke:#f00;\">]>";
    const std::string before =
        type + page("<g id=\"g\" style=\"&st0;\"><path id=\"p\" style=\"&st0;\" d=\"M0 0H10\"/></g>");
    const auto document = open(before);
    document->setTag(art(*document, "g").id, "T", "1");
    document->setHidden(art(*document, "p").id, true);
    EXPECT_EQ(writeSvg(*document), type + page("<g id=\"g\" style=\"&st0;\" quorvel:T=\"1\"><path id=\"p\" "
                                               "style=\"fill:none;stroke:#f00;display:none;\" d=\"M0 0H10\"/></g>",
                                               kOwnDeclared));
}

TEST(SvgWrite, PrefixesOfOthersAreNotTaken) {
    const std::string others = " xmlns:sodipodi=\"urn:a\" xmlns:quorvel=\"urn:b\" xmlns:quorvel-own=\"urn:c\"";
    expectChange(
        "<g id=\"p\"/>", "<g id=\"p\" sodipodi-own:insensitive=\"true\" quorvel-own-own:T=\"1\"/>",
        [](doc::Document& document) {
            document.setLocked(art(document, "p").id, true);
            document.setTag(art(document, "p").id, "T", "1");
        },
        others,
        " xmlns:quorvel-own-own=\"https://quorvel.invalid/ns/1\" "
        "xmlns:sodipodi-own=\"http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd\"");
}

TEST(SvgWrite, LayersAreGroupsOfTheRoot) {
    const std::string one =
        "  <g inkscape:groupmode=\"layer\" id=\"l1\" inkscape:label=\"One\">\n    <path d=\"M0 0\"/>\n  </g>";
    expectChange(
        one, one + "\n  <g inkscape:groupmode=\"layer\" inkscape:label=\"A &lt; B\"/>",
        [](doc::Document& document) {
            document.insertLayer("A < B", 0);
            document.setCurrentLayer(document.layers().front());
        },
        kEditorsDeclared);
    expectChange(
        one,
        replaced(replaced(one, "\"One\"", "\"Two\""), ">", " style=\"display:none\" sodipodi:insensitive=\"true\">"),
        [](doc::Document& document) {
            document.setLayerTitle(document.layers()[0], "Two");
            document.setLayerVisible(document.layers()[0], false);
            document.setLayerEditable(document.layers()[0], false);
        },
        kEditorsDeclared);
    // Art in no layer element becomes one only when its layer's state must be said.
    expectChange(
        "<path d=\"M0 0\"/>",
        "<g inkscape:groupmode=\"layer\" inkscape:label=\"Layer 1\" style=\"display:none\">\n  <path d=\"M0 "
        "0\"/>\n</g>",
        [](doc::Document& document) { document.setLayerVisible(document.layers()[0], false); }, kEditorsDeclared);
    expectChange(
        "<path d=\"M0 0\"/>",
        "<g inkscape:groupmode=\"layer\" inkscape:label=\"Layer 1\" sodipodi:insensitive=\"true\">\n  <path d=\"M0 "
        "0\"/>\n</g>",
        [](doc::Document& document) { document.setLayerEditable(document.layers()[0], false); }, kEditorsDeclared);
    const auto document = open(page("<sodipodi:namedview id='v'/><path d='M0 0'/>", kEditorsDeclared));
    document->insertLayer("Top", 0);
    const auto again = open(writeSvg(*document));
    expectSame(*document, *again);
}

TEST(SvgWrite, NewTextsShowEverywhereAndComeBackExactly) {
    const auto document = open(page("", " font-size=\"3\""));
    const doc::ArtId id = document->insertArt(kTextFrameArt, kPlaceAboveAll, 0);
    doc::TextData text;
    text.text = u"R5 \xE000²";  // the first code point behind the surrogates
    text.matrix.tx = 30;
    text.matrix.ty = 150;
    text.justification = kJustifyCenter;
    text.runs = {{5, {.font = "DejaVu Sans", .size = 9}}};
    document->setText(id, text);
    const std::string plain =
        "<text x=\"30\" y=\"50\" style=\"font-family:'DejaVu Sans';font-size:9px;font-weight:400;font-style:normal;"
        "fill:#000000;stroke:none;text-anchor:middle\">R5 \xEE\x80\x80\xC2\xB2</text>";
    EXPECT_NE(writeSvg(*document).find(plain), std::string::npos) << writeSvg(*document);
    // What SVG cannot say is in an attribute that counts only while the rest stands.
    text.runs[0].features.horizontalScale = 0.8F;
    text.startIndent = 5;
    document->setText(id, text);
    const std::string written = writeSvg(*document);
    EXPECT_NE(written.find("matrix(0.8 0 0 1 30 50)"), std::string::npos) << written;
    expectSame(*document, *open(written));
    const auto edited = open(replaced(written, ">R5 ", ">R6 "));
    const doc::Art& art = *edited->find(edited->find(topLayer(*edited).root)->firstChild);
    EXPECT_EQ(art.text->text, u"R6 \xE000²");
    EXPECT_EQ(art.text->startIndent, 0);
}

TEST(SvgWrite, CopiesOfForeignArtAreWritten) {
    expectChange("<g id='g'><image id='i' href='a.png'><title>T</title></image></g>",
                 "<g id='g'><image id='i' href='a.png'><title>T</title></image><image id='j' href='a.png' "
                 "transform=\"matrix(1 0 0 1 2 3)\"><title>T</title></image></g>",
                 [](doc::Document& document) {
                     document.transform(document.duplicateArt(art(document, "i").id, "j"), {1, 0, 0, 1, 2, -3}, 1);
                 });
}

TEST(SvgWrite, TheRulerIsSaidOnlyWhenItChanged) {
    const auto document = open(page(""));
    EXPECT_EQ(writeSvg(*document, "pt"), page(""));
    const Result<SvgDrawing> again = readSvg(writeSvg(*document, "mm"));
    EXPECT_EQ(again->rulerUnit, "mm");
}

}  // namespace
}  // namespace quorvel::interchange
