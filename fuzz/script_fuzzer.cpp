// A script over the real tools is made from the input and run on a small drawing. However it ends: the drawing comes
// back from its file as it is, undoing everything gives the bytes that were opened, and redoing gives the drawing
// again.
#include <dlfcn.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "app/editing.h"
#include "app/script.h"
#include "app/script_runner.h"
#include "fuzz/require.h"
#include "interchange/svg/svg.h"
#include "tests/support/compact_dump.h"

using namespace quorvel;
using fuzz::require;
using fuzz::requireSame;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDrawing = R"svg(<svg xmlns="http://www.w3.org/2000/svg"
 xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape" width="400pt" height="300pt" viewBox="0 0 400 300">
<style>.thin{stroke-width:.5;stroke:#00f}</style>
<defs><path id="mark" d="M0,0 H10 V10"/></defs>
<g id="view" inkscape:groupmode="layer" inkscape:label="View" fill="none" stroke="black">
  <path id="plate" d="M 50,250 H 194 V 142 H 50 Z"/>
  <circle id="hole" class="thin" cx="122" cy="200" r="36"/>
  <g id="turned" transform="rotate(10 200 100)"><path id="slope" d="M 230,250 L 310,190"/>
    <use id="copy" href="#mark" x="250" y="60"/></g>
  <path id="wave" d="M 20,40 C 60,0 100,90 140,40 S 200,20 220,60"/>
</g>
<g inkscape:groupmode="layer" inkscape:label="Notes"><text id="note" x="230" y="150" font-size="10">Plate
 <tspan dy="5">2</tspan></text><path id="two" d="M240,100h50v50zM250,110h5v5z" fill="#ddd"/></g>
</svg>
)svg";

// What each name may stand for; names in braces are replaced in turn. A point is on the drawing's outlines, or beside
// them; a dialog comes with what makes it appear, or waits for the tool that shows it.
struct Rule {
    std::string_view name, choices;
};
constexpr Rule kGrammar[] = {
    {"line", "{use}|{use}|{use}|{mouse}|{mouse}|{mouse}|{edit}|{edit}|{edit}|set {setting}|{dialog}|{event}|{event}"},
    {"use", "tool \"{tool}\"\n{mouse}\n{mouse}\n{mouse}"},
    {"mouse",
     "press {point}{keys}|press {point}{keys}|press {point}{keys}|click {point}{keys}|track {point}{keys}|"
     "drag {point}{keys}|up{keys}|pull {point} {point}{keys}"},
    {"keys", "||| alt| shift| alt shift"},
    {"point",
     "50 50|194 50|194 158|50 158|122 50|158 100|86 100|122 136|122 100|20 260|140 260|220 240|80 260|240 200|"
     "290 200|290 150|230 150|120 20|250 75|30 100|210 100|300 280|230 50|310 110|390 290|10 10|350 40|"
     "180 180|100 0|50 5e3|-20 -20|122 64|{along} {along}|{along} {along}"},
    {"along", "0|23|57.5|81|119|152|187.25|203|231|268|296"},
    {"tool",
     "Straight Dimension Tool|Straight Dimension Tool|Oblique Dimension Tool|Curve Dimension Tool|Radius Tool|"
     "Diameter Tool|Angle Tool|Fillet Tool [Addition]|Fillet Tool [Separate]|Fillet Tool [Replace]|Slant Tool|"
     "Arc Tool [Tangential Line]|Arc Tool [Three Points]|Arc Tool [Center and Two Points]|Comment Tool|"
     "Object Number Tool|Length Comment Tool|Dimention Comment Tool|Schedule Tool [bottom]|"
     "Schedule Tool [top + bottom]"},
    {"edit",
     "move {art} {number} {number}|turn {art} {number} {point}|copy {art} new|delete {art}|select {art}|"
     "clip {art}\npaste {number} {number}|layer {layer} {change}"},
    {"art", "plate|hole|slope|turned|wave|note|two|copy|view|new|@0|@1|@3|@5|@9|@12|all|none"},
    {"number", "0|1|-3.5|30|90|0.001|200|1e4"},
    {"layer", "View|Notes|New|\"<<dimension lines>>\""},
    {"change", "new|current|hide|show|lock|unlock|up|down|title Other"},
    {"setting",
     "flOutLayer 1|flOutLayer 0|flScale 0.1|flScale 20|flScFix 5|flScFix 1|flArType 1|flArType 2|flArType 3|"
     "flArType 4|flArLenUnit 1|flArDim2Show 1|flArDim3Show 1|flArDim2ConvUnit 3|flRdSpos 1|flRdSpos 2|"
     "flRadiusMode 1|flDiameterMode 1|flUseGrid 1|flUseFcrs 1|flUseTani 1|flUseZero 1|flArSpStr 1|"
     "flArAngle 60|flArFSize 4|flOsLimt 100|flScOfst 6|flArThick 3|flArDim2UnitName \"k\xC2\xB2\"|"
     "flScaleText \"1:7\"|flMrkComment \"a\xE2\x8C\x80\"|flUseFcnt 1"},
    {"dialog",
     "dialog 16265 5=on 7=row:1 press:1\noptions \"Diameter Tool\"|dialog 16257 press:1|dialog 16258 press:1|"
     "dialog 16265 5=off 7=row:2 press:1\noptions \"Diameter Tool\"|answer yes|answer no|"
     "dialog 16266 5=on 7=row:2 press:1\noptions \"Radius Tool\"|"
     "dialog 16260 5=\"3 mm\" press:1\noptions \"Fillet Tool [Addition]\"|"
     "dialog 16281 5=row:2 6=row:3 18=\"1/5\" press:1\nmenu \"Orvane Group\"|"
     "dialog 16259 35=\"Flange\" 26=\"3\" press:1\noptions \"Schedule Tool [bottom]\""},
    {"event",
     "action Recalculate_Dimension_lines|notify 2644-3993-9293-3747-5729-7605|follow|tick|tick 5|undo|undo|redo|"
     "notify 2644-3993-9293-3747-5729-5825|notify \"AI Art Changed Notifier\"|menu \"Orvane Info Group\"|zoom 3|"
     "zoom 0.2|ruler mm|ruler in|panel toggle 11|panel toggle 13|panel text 20 \"5 mm\"|select all|select none"}};

std::string_view chosen(std::string_view name, FuzzedDataProvider* bytes) {
    const Rule* rule = std::ranges::find(kGrammar, name, &Rule::name);
    std::string_view rest = rule->choices;
    for (auto left = bytes->ConsumeIntegralInRange<std::ptrdiff_t>(0, std::ranges::count(rest, '|')); left > 0; --left)
        rest.remove_prefix(rest.find('|') + 1);
    return rest.substr(0, rest.find('|'));
}

std::string expanded(std::string_view text, FuzzedDataProvider* bytes) {
    const std::size_t open = text.find('{'), close = text.find('}');
    if (open == text.npos) return std::string(text);
    return std::string(text.substr(0, open)) + expanded(chosen(text.substr(open + 1, close - open - 1), bytes), bytes) +
           expanded(text.substr(close + 1), bytes);
}

std::string scriptFrom(FuzzedDataProvider* bytes) {
    constexpr int kLongest = 40;
    std::string script = "set language ENGLISH\nopen drawing.svg\n";
    for (int i = 0; i < kLongest && bytes->remaining_bytes() > 0; ++i) script += expanded("{line}\n", bytes);
    return script;
}

// In memory: a settings file that is flushed to disk takes longer than the script.
class Folder {
  public:
    Folder() : path_("/dev/shm/quorvel-fuzz-" + std::to_string(getpid())) {
        fs::create_directories(path_);
        std::ofstream(path_ + "/drawing.svg") << kDrawing;
        // The library stays, so that what was covered in it is not forgotten.
        require(dlopen(QUORVEL_PLUGIN_FILE, RTLD_NOW | RTLD_NODELETE) != nullptr);
    }
    ~Folder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string freshProfile() const {
        const std::string profile = path_ + "/profile";
        fs::remove_all(profile);
        fs::create_directories(profile);
        return profile;
    }
    std::string script() const { return path_ + "/fuzz.script"; }

  private:
    std::string path_;
};

std::string dumped(const doc::Document& document) {
    return tests::compactDump(document, "", tests::Selection::kLeftOut);
}

// A file holds other numbers than the document does, with the last digits of a float's.
void requireSameDrawing(const std::string& wanted, const std::string& found) {
    const std::string difference = tests::firstDifference(wanted, found);
    if (!difference.empty()) std::fprintf(stderr, "%s\n", difference.c_str());
    require(difference.empty());
}

void checkDrawing(app::HeadlessSession& session) {
    host::Host& host = session.host();
    require(host.suitesHeld() == 0);
    host.selectTool(host.tools().front());
    require(session.user().visiblePixels() == 0);
    require(static_cast<bool>(app::selectArt(host, {"none"})));
    const std::string before = dumped(*session.document());
    const std::string bytes = interchange::writeSvg(*session.document());
    const Result<interchange::SvgDrawing> again = interchange::readSvg(bytes);
    require(static_cast<bool>(again));
    requireSameDrawing(before, dumped(*again->document));
    requireSame(bytes, interchange::writeSvg(*again->document));
    int steps = 0;
    while (host.undo()) ++steps;
    const doc::LayerId current = session.document()->currentLayer();
    session.document()->setCurrentLayer(session.document()->layers().front());  // as it was; no step of its own
    requireSame(std::string(kDrawing), interchange::writeSvg(*session.document()));
    session.document()->setCurrentLayer(current);
    for (; steps > 0; --steps) require(host.redo());
    requireSameDrawing(before, dumped(*session.document()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider bytes(data, size);
    const std::string script = scriptFrom(&bytes);
    static const Folder folder;
    fuzz::show(script);
    const auto lines = app::parseScript(script);
    require(static_cast<bool>(lines));
    app::SessionOptions options;
    options.profile = folder.freshProfile();
    options.seed = 1;
    options.pluginFile = QUORVEL_PLUGIN_FILE;
    app::HeadlessSession session(options);
    const app::ScriptOutcome outcome = app::runScript(*lines, folder.script(), session, [](const std::string&) {});
    if (outcome.error) fuzz::show(app::sentence(*outcome.error, app::Language::english));
    checkDrawing(session);
    return 0;
}
