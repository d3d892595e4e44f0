// Reads the command's options, fills the title block through the Schedule dialog and drags the Schedule tool.
#include "cli/frame_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <set>

#include "app/script.h"
#include "app/sentences.h"
#include "app/temporary_profile.h"
#include "cli/commands.h"
#include "cli/output_paths.h"
#include "cli/progress_line.h"
#include "hostapi/names.h"
#include "platform/dialog.h"
#include "platform/file.h"
#include "platform/text.h"

namespace quorvel::cli {

namespace {

using platform::DialogStep;

// The Schedule tools and their dialog, in the two languages that the plug-in speaks.
struct ScheduleWords {
    const char *bottomTool, *topTool;
    std::int32_t dialog;
};
constexpr ScheduleWords kWords[] = {
    {kScheduleBottomToolTitle.english, kScheduleTopToolTitle.english, kScheduleDialogId + kEnglishDialogOffset},
    {kScheduleBottomToolTitle.japanese, kScheduleTopToolTitle.japanese, kScheduleDialogId}};
// Without a preset the list is "Untitled", then the rows of commands.
constexpr std::int32_t kImportRow = kPresetCommandRows;

struct Corners {
    RealPoint lower, upper;
};

Corners parseCorners(const std::string& text) {
    std::array<float, 4> numbers{};
    std::size_t start = 0;
    try {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const std::size_t end = i + 1 < numbers.size() ? text.find(',', start) : text.size();
            if (end == std::string::npos) throw std::invalid_argument("four numbers, LEFT,BOTTOM,RIGHT,TOP");
            app::ScriptWord word;
            word.text = text.substr(start, end - start);
            numbers[i] = static_cast<float>(app::numberIn(word));
            start = end + 1;
        }
    } catch (const std::invalid_argument& cause) {
        throw app::InputError("--at " + text + ": " + cause.what());
    }
    const Corners corners{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}};
    if (corners.lower.h == corners.upper.h && corners.lower.v == corners.upper.v)
        throw app::InputError("--at " + text + ": the two corners are one point");
    return corners;
}

const ScheduleWords& wordsOf(app::HeadlessSession& session) {
    for (const ScheduleWords& words : kWords)
        if (session.host().toolByTitle(words.bottomTool) != nullptr) return words;
    throw app::InputError("frame: the profile's settings leave the Schedule tools out (oldmode)");
}

void throwFault(app::HeadlessSession& session) {
    const std::string fault = session.user().takeFault();
    session.user().takeTranscript();
    if (!fault.empty()) throw app::InputError("frame: " + fault);
}

void importParts(app::HeadlessSession& session, const ScheduleWords& words, const std::string& parts) {
    // The dialog passes over a file that it cannot read in silence.
    if (!platform::FileCanBeOpened(parts)) throw app::InputError(parts + ": cannot be read");
    session.newDrawing(100, 100);  // without a frame in it, so that the dialog edits what the next one will say
    session.user().queueDialog({words.dialog,
                                {{DialogStep::Kind::selectRow, kPresetListControl, "", kImportRow},
                                 {DialogStep::Kind::press, platform::kOkControl, "", 0}}});
    session.user().queueFile(parts);
    session.host().editOptions(*session.host().toolByTitle(words.bottomTool));
    throwFault(session);
}

void applySets(app::HeadlessSession& session, const std::vector<std::string>& sets) {
    for (const std::string& set : sets) {
        const std::size_t equals = set.find('=');
        if (equals == std::string::npos) throw app::InputError("--set " + set + ": KEY=TEXT");
        const std::string value = platform::FromUtf8(set.substr(equals + 1), platform::kCodePageJapanese);
        if (!session.host().setField(set.substr(0, equals), value))
            throw app::InputError("--set " + set + ": unknown key");
    }
}

void drawFrame(app::HeadlessSession& session, const char* toolTitle, const Corners& corners) {
    host::Host& host = session.host();
    const int beeps = session.user().beeps();
    host.selectTool(*host.toolByTitle(toolTitle));
    // The first event is only looked at when it moves the cursor away from where the last run has left it.
    host.sendTool(kSelectorTrackCursor, corners.upper, 0);
    host.sendTool(kSelectorTrackCursor, corners.lower, 0);
    host.sendTool(kSelectorMouseDown, corners.lower, 0);
    host.sendTool(kSelectorMouseDrag, corners.upper, 0);
    host.sendTool(kSelectorMouseUp, corners.upper, 0);
    throwFault(session);
    if (session.user().beeps() != beeps) throw app::InputError("the current layer is hidden or locked");
}

std::string namedError(const std::string& file, const std::string& cause) {
    return cause.starts_with(file + ":") ? cause : file + ": " + cause;
}

}  // namespace

void addFrameOptions(CLI::App& command, FrameOptions* options) {
    command.add_option("FILE", options->files, "the drawings")->required();
    command.add_option("--parts", options->parts, "the parts list, CSV in code page 932")->required();
    command.add_option("--set", options->sets, "a setting on top of the list's, KEY=TEXT, such as flZwkTitle=Bracket")
        ->allow_extra_args(false);
    command.add_option("--mode", options->mode, "the table stands on the title block or hangs from the top")
        ->check(CLI::IsMember({"bottom", "top"}));
    command.add_option("--at", options->at, "the frame, LEFT,BOTTOM,RIGHT,TOP in document points")->required();
    command.add_option("-o,--output", options->output, "where the drawing goes");
    command.add_option("--out-dir", options->outputFolder, "the folder where all drawings go, by their names");
}

int drawFrames(const FrameOptions& options, const app::SessionOptions& sessionOptions) {
    const Corners corners = parseCorners(options.at);
    const std::vector<std::string> outputs =
        outputPaths({"frame", options.files, options.output, options.outputFolder, ""});
    const app::TemporaryProfile profile(sessionOptions);
    app::HeadlessSession session(profile.options());
    session.start();
    const ScheduleWords& words = wordsOf(session);
    importParts(session, words, options.parts);
    applySets(session, options.sets);
    session.host().setField("flUseGrid", "0");  // the corners are meant as they are given
    const char* tool = options.mode == "top" ? words.topTool : words.bottomTool;
    const ProgressLine progress(options.files.size());
    int status = kExitOk;
    for (std::size_t i = 0; i < options.files.size(); ++i) {
        const std::string& file = options.files[i];
        progress.show(i + 1, ": " + file);
        try {
            session.openDrawing(file);
            for (const std::string& warning : app::warningSentences(session.takeWarnings(), app::Language::english)) {
                progress.clear();
                std::cerr << file << ": " << warning << '\n';
            }
            drawFrame(session, tool, corners);
            session.saveDrawing(outputs[i]);
        } catch (const app::InputError& error) {
            progress.clear();
            std::cerr << namedError(file, error.what()) << '\n';
            status = kExitBadInput;
        }
    }
    return status;
}

}  // namespace quorvel::cli
