// What a drawing's elements become: where their anchors lie on the page, how they are painted, where they stand in the
// tree. All expected numbers are worked out by hand from the page() of 100 x 200 points unless a case makes its own.
#include <cmath>
#include <numbers>

#include "interchange/svg/source.h"
#include "tests/interchange/svg_support.h"

namespace quorvel::interchange {
namespace {

void expectAnchors(const doc::Document& document, const std::string& id,
                   const std::vector<std::pair<double, double>>& points) {
    const auto& found = segments(document, id);
    ASSERT_EQ(found.size(), points.size()) << id;
    for (std::size_t i = 0; i < points.size(); ++i) {
        SCOPED_TRACE(id + " anchor " + std::to_string(i));
        expectPoint(found[i].p, points[i].first, points[i].second);
    }
}

// --- the page ------------------------------------------------------------------------------------------------------

TEST(SvgRead, PageSizesInAllUnits) {
    const struct {
        const char* width;
        double points;
        const char* unit;
    } cases[] = {{"25.4mm", 72, "mm"}, {"2.54cm", 72, "cm"}, {"1in", 72, "in"}, {"72pt", 72, "pt"},
                 {"6pc", 72, "pc"},    {"96px", 72, "px"},   {"96", 72, "px"}};
    for (const auto& row : cases) {
        const Result<SvgDrawing> read =
            readSvg(std::string("<svg xmlns='http://www.w3.org/2000/svg' height='10' width='") + row.width + "'/>");
        ASSERT_TRUE(read) << read.error();
        EXPECT_NEAR(read->document->width(), row.points, 1e-4) << row.width;
        EXPECT_EQ(read->document->height(), 7.5F);
        EXPECT_EQ(read->rulerUnit, row.unit);
    }
}

TEST(SvgRead, ViewBoxIsFittedAsAsked) {
    const auto corner = [](const std::string& fit) {
        const auto document =
            open("<svg xmlns='http://www.w3.org/2000/svg' width='100pt' height='50pt' viewBox='10 20 10 10' " + fit +
                 "><path id='p' d='M 10 20'/></svg>");
        return segments(*document, "p").at(0).p;
    };
    expectPoint(corner(""), 25, 50);  // scale 5, 50 wide in 100
    expectPoint(corner("preserveAspectRatio='xMinYMid meet'"), 0, 50);
    expectPoint(corner("preserveAspectRatio='xMaxYMid'"), 50, 50);
    expectPoint(corner("preserveAspectRatio='xMidYMid slice'"), 0, 75);  // scale 10, 100 high in 50
    expectPoint(corner("preserveAspectRatio='none'"), 0, 50);
}

TEST(SvgRead, APageWithoutSizeTakesItsViewBox) {
    const auto document = open("<svg xmlns='http://www.w3.org/2000/svg' width='100%' viewBox='0 0 400 200'/>");
    EXPECT_EQ(document->width(), 300);
    EXPECT_EQ(document->height(), 150);
}

TEST(SvgRead, ThePagesEdgeIsExactlyZero) {
    const auto document = open(
        "<svg xmlns='http://www.w3.org/2000/svg' width='210mm' height='297mm' viewBox='0 0 210 297'>"
        "<path id='p' d='M 0 297 L 210 0'/></svg>");
    EXPECT_EQ(segments(*document, "p")[0].p.v, 0.0F);
    EXPECT_EQ(segments(*document, "p")[0].p.h, 0.0F);
    EXPECT_EQ(segments(*document, "p")[1].p.v, document->height());
    EXPECT_EQ(segments(*document, "p")[1].p.h, document->width());
}

TEST(SvgRead, TransformsNestFromTheOutside) {
    const auto document =
        open(page("<g transform='translate(10,20) scale(2)'><g transform='rotate(90)'>"
                  "<path id='p' transform='matrix(1 0 0 -1 3 4)' d='M 1,2'/></g></g>"
                  "<path id='s' transform='rotate(180 5 5),skewX(45)' d='M 1,2'/>"));
    // (1,2) -> (4,2) -> (-2,4) -> (6,28)
    expectAnchors(*document, "p", {{6, 172}});
    // (1,2) -> (3,2) -> (7,8)
    expectAnchors(*document, "s", {{7, 192}});
}

// --- outlines ------------------------------------------------------------------------------------------------------

TEST(SvgRead, EveryPathCommand) {
    const auto document =
        open(page("<path id='p' d='m1 2 3 4h5v6H1V2l1-1L.5.5 1e1,-1E+0'/>"
                  "<path id='c' d='M0 0C1 1 2 2 3 0S5 2 6 0s2-2 3 0'/>"
                  "<path id='q' d='M0,0 Q3,3 6,0 T12,0 t6,0'/>"));
    expectAnchors(*document, "p",
                  {{1, 198}, {4, 194}, {9, 194}, {9, 188}, {1, 188}, {1, 198}, {2, 199}, {.5, 199.5}, {10, 201}});
    const auto& c = segments(*document, "c");
    ASSERT_EQ(c.size(), 4U);
    expectPoint(c[1].out, 4, 202);  // (2,2) reflected at (3,0)
    expectPoint(c[2].in, 5, 198);
    expectPoint(c[2].out, 7, 202);
    expectPoint(c[3].in, 8, 202);
    const auto& q = segments(*document, "q");
    ASSERT_EQ(q.size(), 4U);
    expectPoint(q[0].out, 2, 198);  // two thirds of the way to (3,3)
    expectPoint(q[1].in, 4, 198);
    expectPoint(q[1].out, 8, 202);  // two thirds to (9,-3)
    expectPoint(q[2].out, 14, 198);
    EXPECT_FALSE(q[1].corner);
}

TEST(SvgRead, ArcsAreQuarterTurnsWithTheirHandleRatio) {
    // From the right over the bottom to the left of a circle of radius 10 about (20, 30): two quarters.
    const auto document =
        open(page("<path id='a' d='M 30 30 A 10 10 0 0 1 10 30'/>"
                  "<path id='b' d='M 30 30 A 10 10 0 1 1 20 20'/>"
                  "<path id='small' d='M 0 0 A 1 1 0 0 0 8 0'/>"
                  "<path id='flat' d='M 0 0 A 0 5 0 0 0 8 0'/>"
                  "<path id='packed' d='M30 30a10 10 0 0110 10'/>"));
    const double k = 10 * 4.0 / 3.0 * std::tan(std::numbers::pi / 8);
    const auto& a = segments(*document, "a");
    ASSERT_EQ(a.size(), 3U);
    expectPoint(a[0].out, 30, 170 - k);
    expectPoint(a[1].in, 20 + k, 160);
    expectPoint(a[1].p, 20, 160);
    expectPoint(a[2].p, 10, 170);
    EXPECT_FALSE(a[1].corner);
    expectAnchors(*document, "b", {{30, 170}, {20, 160}, {10, 170}, {20, 180}});
    // Too small a radius grows to reach: a half circle of radius 4, here over the lower side.
    expectAnchors(*document, "small", {{0, 200}, {4, 196}, {8, 200}});
    expectAnchors(*document, "flat", {{0, 200}, {8, 200}});
    expectAnchors(*document, "packed", {{30, 170}, {40, 160}});
}

TEST(SvgRead, ShapesStartWhereSvgSays) {
    const auto document =
        open(page("<rect id='r' x='10' y='20' width='30' height='40'/>"
                  "<rect id='round' x='10' y='20' width='30' height='40' rx='5' ry='8'/>"
                  "<rect id='slot' width='40' height='10' rx='50' ry='5'/>"
                  "<circle id='c' cx='50' cy='60' r='7'/><ellipse id='e' cx='50' cy='60' rx='7' ry='3'/>"
                  "<ellipse id='auto' cx='50' cy='60' rx='-9' ry='7'/><circle id='below' r='-1'/>"
                  "<line id='l' x1='1' y1='2' x2='3' y2='4'/><polyline id='pl' points='1,2 3,4,5 6'/>"
                  "<polygon id='pg' points='1,2 3,4 5,6 1,2'/><rect id='none' width='0' height='5'/>"));
    expectAnchors(*document, "r", {{10, 180}, {40, 180}, {40, 140}, {10, 140}});
    EXPECT_TRUE(art(*document, "r").path->closed);
    expectAnchors(*document, "round",
                  {{15, 180}, {35, 180}, {40, 172}, {40, 148}, {35, 140}, {15, 140}, {10, 148}, {10, 172}});
    expectAnchors(*document, "slot", {{20, 200}, {40, 195}, {20, 190}, {0, 195}});
    expectAnchors(*document, "c", {{57, 140}, {50, 133}, {43, 140}, {50, 147}});
    expectPoint(segments(*document, "c")[0].out, 57, 140 - 7 * 0.5522847);
    expectAnchors(*document, "auto", {{57, 140}, {50, 133}, {43, 140}, {50, 147}});
    EXPECT_TRUE(segments(*document, "below").empty());
    expectAnchors(*document, "e", {{57, 140}, {50, 137}, {43, 140}, {50, 143}});
    expectAnchors(*document, "l", {{1, 198}, {3, 196}});
    expectAnchors(*document, "pl", {{1, 198}, {3, 196}, {5, 194}});
    expectAnchors(*document, "pg", {{1, 198}, {3, 196}, {5, 194}});
    EXPECT_TRUE(segments(*document, "none").empty());
}

TEST(SvgRead, SubpathsAreMembersOfACompoundPath) {
    const auto document =
        open(page("<path id='two' d='M 0 0 H 10 V 10 Z m 20 0 h 1'/><path id='one' d='M 5 6'/>"
                  "<path id='closed' d='M 0 0 L 5 5 C 6 6 7 7 0 0 Z'/>"));
    const doc::Art& two = art(*document, "two");
    EXPECT_EQ(two.kind, kCompoundPathArt);
    // The first subpath is the lowest member; behind Z the point is the start again.
    const doc::Art& low = *document->find(two.lastChild);
    EXPECT_EQ(low.path->segments.size(), 3U);
    EXPECT_TRUE(low.path->closed);
    EXPECT_EQ(low.ref.index, -1);
    expectPoint(document->find(two.firstChild)->path->segments[0].p, 20, 200);
    expectAnchors(*document, "one", {{5, 194}});
    // A curve that leads back to the start ends in the first anchor.
    const auto& closed = segments(*document, "closed");
    ASSERT_EQ(closed.size(), 2U);
    expectPoint(closed[0].in, 7, 193);
}

TEST(SvgRead, APieceThatIsLeftOfSeveralKeepsItsTags) {
    const std::string own = " xmlns:quorvel='https://quorvel.invalid/ns/1'";
    const auto document =
        open(page("<path id='one' d='M0 0 1 1' quorvel:m1-A='1' quorvel:m1-B='2' quorvel:C='3'/>"
                  "<path id='two' d='M0 0 1 1' quorvel:m0-A='1' quorvel:m1-A='2'/>",
                  own));
    const doc::ArtId one = art(*document, "one").id;
    ASSERT_EQ(art(*document, "one").tags.size(), 3U);
    EXPECT_EQ(*document->tag(one, "A"), "1");
    EXPECT_EQ(*document->tag(one, "B"), "2");
    // Which of two it was is not known.
    EXPECT_EQ(document->tag(art(*document, "two").id, "A"), nullptr);
}

TEST(SvgRead, EntitiesInTextsAreExpanded) {
    const auto document = open("<!DOCTYPE svg [<!ENTITY name 'A > \"B\"'><!ENTITY big 'font-size:20px'>]>" +
                               page("<text id='t'>&name;<tspan style='&big;'>c</tspan><![CDATA[&name;]]>&amp;</text>"));
    const doc::TextData& text = *art(*document, "t").text;
    EXPECT_EQ(text.text, u"A > \"B\"c&name;&");
    ASSERT_EQ(text.runs.size(), 3U);
    EXPECT_EQ(text.runs[1].length, 1);
    EXPECT_EQ(text.runs[1].features.size, 20);
}

TEST(SvgRead, CornersComeFromHandlesOrNodeTypes) {
    const std::string sodipodi = " xmlns:sodipodi='http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd'";
    const auto document =
        open(page("<path id='p' d='M 0 0 C 1 0 2 1 3 1 C 4 1 5 0 6 0 L 9 9'/>"
                  "<path id='n' sodipodi:nodetypes='ccsc' d='M 0 0 C 1 0 2 1 3 1 C 4 1 5 0 6 0 L 9 9'/>",
                  sodipodi));
    EXPECT_FALSE(segments(*document, "p")[1].corner);
    EXPECT_TRUE(segments(*document, "p")[2].corner);
    EXPECT_TRUE(segments(*document, "n")[1].corner);
    EXPECT_FALSE(segments(*document, "n")[2].corner);
}

// --- paint ---------------------------------------------------------------------------------------------------------

TEST(SvgRead, PaintFollowsTheCascade) {
    const auto document = open(page(R"svg(<style>
        /* types, then classes, then ids; style="" over all but !important */
        path { stroke: #00f; stroke-width: 4 } .b.a, .none { stroke: lime } #three { stroke: #ff0000 }
        .loud { stroke: yellow !important } @media print { path { stroke: none } }</style>
        <g fill="none" stroke-width="3" color="rgb(0,0,255)">
        <path id="one" d="M0 0"/><path id="two" class="a b" d="M0 0"/><path id="three" class="a b" d="M0 0"/>
        <path id="four" class="a b" d="M0 0" style="stroke:currentColor;fill:rgb(100%,50%,0%)"/>
        <path id="five" class="loud" d="M0 0" style="stroke:red"/>
        <rect id="six" width="1" height="1" stroke="#abc"/>
        <rect id="seven" width="1" height="1" stroke-width="2em" font-size="7"/></g>)svg"));
    const auto stroke = [&](const char* id) { return art(*document, id).path->style->stroke; };
    EXPECT_EQ(stroke("one").rgb[2], 1);
    EXPECT_EQ(art(*document, "one").path->style->strokeWidth, 4);
    EXPECT_FALSE(art(*document, "one").path->style->fillPaint);
    EXPECT_EQ(stroke("two").rgb[1], 1);
    EXPECT_EQ(stroke("three").rgb[0], 1);
    EXPECT_EQ(stroke("four").rgb[2], 1);
    EXPECT_EQ(art(*document, "four").path->style->fill.rgb[1], 0.5F);
    EXPECT_EQ(stroke("five").rgb[0], 1);
    EXPECT_EQ(stroke("five").rgb[1], 1);
    EXPECT_EQ(stroke("six").rgb[0], float(0xAA / 255.0));
    EXPECT_EQ(art(*document, "six").path->style->strokeWidth, 3);
    EXPECT_EQ(art(*document, "seven").path->style->strokeWidth, 14) << "the font's size counts wherever it is written";
}

// 210 degrees at 80 % and 40 %: the lightness spreads by 0.4 * 0.8 either way, and green lies half-way.
TEST(SvgRead, ColoursHaveManyForms) {
    for (const char* colour :
         {"hsl(210, 80%, 40%)", "HSLA(210deg 80% 40% / 0.5)", "hsl(-150 80% 40%)",
          "hsl(0.58333333333333333turn, 80%, 40%, 20%)", "rgb(8% 40% 72%)", "rgba(8%, 40%, 72%, 0.1)"}) {
        const auto document = open(page(std::string("<path id='p' d='M0 0' fill='") + colour + "'/>"));
        const AIColor& fill = art(*document, "p").path->style->fill;
        ASSERT_EQ(fill.kind, kRgbPaint) << colour;
        EXPECT_NEAR(fill.rgb[0], 0.08, 1e-6) << colour;
        EXPECT_NEAR(fill.rgb[1], 0.40, 1e-6) << colour;
        EXPECT_NEAR(fill.rgb[2], 0.72, 1e-6) << colour;
    }
    for (const char* colour : {"#0a6f", "rgb(0 170 102)", "rgb(0,170,102,1)", "hsl(156 100% 33.33333333%)"}) {
        const auto document = open(page(std::string("<path id='p' d='M0 0' fill='") + colour + "'/>"));
        EXPECT_NEAR(art(*document, "p").path->style->fill.rgb[1], 170 / 255.0, 1e-6) << colour;
    }
}

TEST(SvgRead, WidthsAreInPointsAndGraysAreGray) {
    const auto document = open(
        "<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'><g transform='scale(4)'>"
        "<path id='p' d='M0 0' stroke='#333' style='stroke-width:2;stroke-dasharray:3,1 2;stroke-dashoffset:1;"
        "stroke-linecap:round;stroke-linejoin:bevel;stroke-miterlimit:7'/></g></svg>");
    const AIPathStyle& style = *art(*document, "p").path->style;
    EXPECT_EQ(style.strokeWidth, 6);  // 2 units of 4 pixels of 0.75 points
    ASSERT_EQ(style.dashCount, 3);
    EXPECT_EQ(style.dashes[0], 9);
    EXPECT_EQ(style.dashes[2], 6);
    EXPECT_EQ(style.dashOffset, 3);
    EXPECT_EQ(style.cap, 1);
    EXPECT_EQ(style.join, 2);
    EXPECT_EQ(style.miterLimit, 7);
    EXPECT_EQ(style.stroke.kind, kGrayPaint);
    EXPECT_NEAR(style.stroke.gray, 0.8, 1e-6);
}

TEST(SvgRead, GradientsHaveTheirAngleAndOtherPaintsTheirText) {
    const auto document =
        open(page("<defs><linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='0' x2='5' y2='5'/>"
                  "<linearGradient id='b' href='#a' gradientTransform='rotate(-45)'/><pattern id='p'/></defs>"
                  "<path id='one' d='M0 0' fill='url(#a)'/><path id='two' d='M0 0' fill='url(#b)'/>"
                  "<path id='three' d='M0 0' fill='url(#p)'/>"));
    const auto fill = [&](const char* id) { return art(*document, id).path->style->fill; };
    EXPECT_EQ(fill("one").kind, kGradientPaint);
    EXPECT_NEAR(fill("one").gradientAngle, -45, 1e-4);  // y goes up in the document
    EXPECT_NEAR(fill("two").gradientAngle, 0, 1e-4);
    EXPECT_EQ(fill("three").kind, kOtherPaint);
    ASSERT_EQ(fill("three").reference, 3);
    EXPECT_EQ(paintTexts(*document)[2], "url(#p)");
}

// --- texts ---------------------------------------------------------------------------------------------------------

TEST(SvgRead, TextsAreFramesWithRuns) {
    const auto document = open(page(
        "<text id='t' x='10' y='20' font-size='8' font-family='DejaVu Sans'>\n  A  b\n"
        "<tspan font-weight='bold' fill='none' x='10' y='30'>C</tspan> <tspan>d</tspan>\n</text>"
        "<text id='keep' xml:space='preserve' text-anchor='middle'> x  y </text>"
        "<g transform='translate(5 5) rotate(90) scale(2)'><text id='turned' x='1' y='2' font-size='3'>q</text></g>"
        "<text id='wide' x='1'>\xE5\xAF\xB8\xF0\x9F\x98\x80&lt;</text><text id='inner'><tspan x='3' "
        "y='4'>q</tspan></text>"));
    const doc::TextData& text = *art(*document, "t").text;
    EXPECT_EQ(text.text, u"A b C d");
    ASSERT_EQ(text.runs.size(), 3U);
    EXPECT_EQ(text.runs[0].length, 4);
    EXPECT_EQ(text.runs[1].length, 1);
    EXPECT_EQ(text.runs[1].features.font, "DejaVu Sans Bold");
    EXPECT_FALSE(text.runs[1].features.fillOn);
    EXPECT_EQ(text.runs[0].features.size, 8);
    EXPECT_EQ(text.runs[0].features.fill.gray, 1);
    expectPoint({text.matrix.tx, text.matrix.ty}, 10, 180);
    EXPECT_EQ(text.matrix.a, 1);
    EXPECT_EQ(text.matrix.d, 1);
    EXPECT_EQ(art(*document, "keep").text->text, u" x  y ");
    EXPECT_EQ(art(*document, "keep").text->justification, kJustifyCenter);
    // The scale goes into the size, the turn stays in the matrix.
    const doc::TextData& turned = *art(*document, "turned").text;
    EXPECT_EQ(turned.runs[0].features.size, 6);
    EXPECT_NEAR(turned.matrix.a, 0, 1e-6);
    EXPECT_NEAR(turned.matrix.b, -1, 1e-6);
    expectPoint({turned.matrix.tx, turned.matrix.ty}, 1, 193);  // (1,2) -> (2,4) -> (-4,2) -> (1,7)
    EXPECT_EQ(art(*document, "wide").text->text, u"寸\U0001F600<");
    expectPoint({art(*document, "inner").text->matrix.tx, art(*document, "inner").text->matrix.ty}, 3, 196);
}

// --- the tree ------------------------------------------------------------------------------------------------------

constexpr const char* kEditors =
    " xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape'"
    " xmlns:sodipodi='http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd'";

TEST(SvgRead, LayersAreTheRootsLayerGroups) {
    const auto document =
        open(page("<sodipodi:namedview inkscape:current-layer='inner'/><path id='low' d='M0 0'/>"
                  "<g inkscape:groupmode='layer' inkscape:label='One' id='l1' sodipodi:insensitive='true'>"
                  "<g inkscape:groupmode='layer' inkscape:label='Inner' id='inner'><path id='p' d='M0 0'/></g></g>"
                  "<path id='between' d='M0 0'/>"
                  "<g inkscape:groupmode='layer' inkscape:label='Two' style='display:none'/>",
                  kEditors));
    std::vector<std::string> titles;
    for (doc::LayerId id : document->layers()) titles.push_back(document->layer(id)->title);
    EXPECT_EQ(titles, (std::vector<std::string>{"Two", "<root> 2", "One", "<root>"}));
    EXPECT_FALSE(topLayer(*document).visible);
    const doc::Layer& one = *document->layer(document->layers()[2]);
    EXPECT_FALSE(one.editable);
    EXPECT_EQ(document->currentLayer(), one.id);
    EXPECT_EQ(art(*document, "inner").kind, kGroupArt);
    EXPECT_EQ(document->layerOf(art(*document, "between").id), document->layers()[1]);
}

TEST(SvgRead, WithoutLayersThePageIsOne) {
    const auto document =
        open(page("<path id='a' d='M0 0'/><g id='b'><path id='c' d='M0 0' display='none'/></g>"
                  "<g visibility='hidden'><path id='d' d='M0 0'/><path id='e' d='M0 0' visibility='visible'/></g>"));
    ASSERT_EQ(document->layers().size(), 1U);
    EXPECT_EQ(topLayer(*document).title, "Layer 1");
    const doc::Art& root = *document->find(topLayer(*document).root);
    EXPECT_EQ(root.lastChild, art(*document, "a").id);  // the first in the file is the lowest
    EXPECT_TRUE(art(*document, "c").hidden);
    EXPECT_TRUE(art(*document, "d").hidden);
    EXPECT_FALSE(art(*document, "e").hidden);
    EXPECT_EQ(document->artCount(), 6U);
}

TEST(SvgRead, WhatIsNoArtIsKeptAndSaidOnce) {
    const Result<SvgDrawing> read = readSvg(
        page("<image/><image/><foo/><metadata/><defs><path d='garbage'/></defs><clipPath><path d='x'/></clipPath>"
             "<text><textPath>t</textPath></text><a><switch><path id='p' d='M0 0'/></switch></a>"));
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(read->warnings,
              (std::vector{makeError(ErrorCode::kUnknownElements, {"foo"}),
                           makeError(ErrorCode::kKeptElements, {"image"}), makeError(ErrorCode::kKeptTextsOnPaths)}));
    EXPECT_EQ(read->document->artCount(), 6U);
    EXPECT_EQ(art(*read->document, "p").kind, kPathArt);
}

TEST(SvgRead, TransformsInCssAreSaidOnceAndNotApplied) {
    const std::vector<Error> said{makeError(ErrorCode::kTransformsInCss)};
    const std::string two = "<path id='p' class='a' d='M 1 0'/><path class='a' d='M 1 0'/>";
    const Result<SvgDrawing> sheet = readSvg(page("<style>.a{transform:scale(2)}</style>" + two));
    EXPECT_EQ(sheet->warnings, said);
    expectPoint(segments(*sheet->document, "p")[0].p, 1, 200);
    EXPECT_EQ(readSvg(page("<path style='transform:scale(2)' d='M 1 0'/>"))->warnings, said);
    // Rules for nothing, other properties and the attribute are no such thing.
    EXPECT_TRUE(readSvg(page("<style>.b{transform:scale(2)}.a{transform:none;transform-origin:0 0}</style>" + two +
                             "<text style='text-transform:none' transform='scale(2)'>t</text>"))
                    ->warnings.empty());
}

TEST(SvgRead, UseElementsShowWhatTheyReferTo) {
    const auto document =
        open(page("<defs><g id='pair' stroke='red'><circle id='c' r='1'/><path d='M 0 0 L 1 0'/></g>"
                  "<symbol id='sym' viewBox='0 0 10 10'><path d='M 10 10'/></symbol></defs>"
                  "<use id='u' href='#pair' x='10' y='20' transform='scale(2)' stroke-width='5'/>"
                  "<use id='v' href='#sym' x='1' y='1' width='20' height='20'/>"
                  "<g id='loop'><use href='#loop'/></g>"));
    const doc::Art& pair = *document->find(art(*document, "u").firstChild);
    EXPECT_EQ(pair.kind, kGroupArt);
    EXPECT_EQ(svgSource(*document)->elementOf(pair.ref), -1);
    EXPECT_TRUE(pair.name.empty());
    const doc::Art& line = *document->find(pair.firstChild);
    expectPoint(line.path->segments[0].p, 20, 160);
    expectPoint(line.path->segments[1].p, 22, 160);
    EXPECT_EQ(line.path->style->strokeWidth, 10);
    EXPECT_EQ(document->findByName("c"), 0U);
    const doc::Art& symbol = *document->find(art(*document, "v").firstChild);
    expectPoint(document->find(symbol.firstChild)->path->segments[0].p, 21, 179);
    EXPECT_GT(document->artCount(), 6U);
}

TEST(SvgRead, TheNamespacePrefixMayBeAny) {
    const auto document = open(
        "<s:svg xmlns:s='http://www.w3.org/2000/svg' xmlns:i='http://www.inkscape.org/namespaces/inkscape' "
        "xmlns:q='https://quorvel.invalid/ns/1' xmlns:o='urn:other' width='10pt' height='10pt'>"
        "<s:g i:groupmode='layer' i:label='L'><s:path id='p' d='M0 0' q:tag='v'/><o:path d='junk'/></s:g></s:svg>");
    EXPECT_EQ(topLayer(*document).title, "L");
    ASSERT_NE(document->tag(art(*document, "p").id, "tag"), nullptr);
    EXPECT_EQ(document->artCount(), 1U);
}

}  // namespace
}  // namespace quorvel::interchange
