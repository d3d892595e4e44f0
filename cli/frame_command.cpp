// Draws drawing frames from a parts list with no window: the plug-in's own Schedule dialog imports the list, and its
// own tool is dragged over each drawing. The settings of the user's profile count, and stay as they are. A drawing that
// fails is told in a line, and the others follow; the exit status says that one did.
#include <array>
#include <iostream>

#include "app/script.h"
#include "app/temporary_profile.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/output_paths.h"
#include "cli/progress_line.h"
#include "files/file_reader.h"
#include "files/file_writer.h"
#include "hostapi/names.h"
#include "platform/dialog.h"
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

Result<Corners> parseCorners(const std::string& text) {
    const auto refused = [&](Error error) { return std::move(error).inFile("--at " + text); };
    std::array<float, 4> numbers{};
    std::size_t start = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t end = i + 1 < numbers.size() ? text.find(',', start) : text.size();
        if (end == std::string::npos) return refused(makeError(ErrorCode::kNotFourNumbers));
        app::ScriptWord word;
        word.text = text.substr(start, end - start);
        const Result<double> number = app::numberIn(word);
        if (!number) return refused(number.error());
        numbers[i] = static_cast<float>(*number);
        start = end + 1;
    }
    const Corners corners{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}};
    if (corners.lower.h == corners.upper.h && corners.lower.v == corners.upper.v)
        return refused(makeError(ErrorCode::kOnePoint));
    return corners;
}

const ScheduleWords* wordsOf(app::HeadlessSession& session) {
    for (const ScheduleWords& words : kWords)
        if (session.host().toolByTitle(words.bottomTool) != nullptr) return &words;
    return nullptr;
}

// What the plug-in has asked that nobody answered.
Status faultOf(app::HeadlessSession& session) {
    std::vector<Error> faults = session.user().takeFaults();
    session.user().takeTranscript();
    if (!faults.empty()) return std::move(faults.front()).inFile("frame");
    return {};
}

std::string codePointName(std::uint32_t codePoint) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(codePoint));
    return text;
}

// The parts list in the code page, in a file of the profile: the dialog would pass over one that it cannot read, and
// ask about characters.
Result<std::string> readParts(const Options& options, const std::string& profile) {
    constexpr std::size_t kLargestList = std::size_t{256} << 20;
    Result<std::string> text = files::readInput(options.parts, kLargestList);
    if (!text) return Error(text.error()).inFile(options.parts);
    if (platform::IsUtf8List(*text)) {
        const std::string_view list = platform::WithoutByteOrderMark(*text);
        const auto lacking = platform::FirstUnwritable(list, platform::kCodePageJapanese);
        if (lacking && !options.replacesCharacters)
            return makeError(ErrorCode::kNoCharacterAt, {std::to_string(lacking->row), std::to_string(lacking->column),
                                                         codePointName(lacking->codePoint)})
                .inFile(options.parts);
        *text = platform::FromUtf8(list, platform::kCodePageJapanese);
    }
    std::string path = profile + "/parts.csv";
    if (const Status written = files::writeFile(path, *text); !written) return Error(written.error()).inFile(path);
    return path;
}

Status importParts(app::HeadlessSession& session, const ScheduleWords& words, const std::string& parts) {
    session.newDrawing(100, 100);  // without a frame in it, so that the dialog edits what the next one will say
    session.user().queueDialog({words.dialog,
                                {{DialogStep::Kind::selectRow, kPresetListControl, "", kImportRow},
                                 {DialogStep::Kind::press, platform::kOkControl, "", 0}}});
    session.user().queueFile(parts);
    session.host().editOptions(*session.host().toolByTitle(words.bottomTool));
    return faultOf(session);
}

// What a setting is set to, in the code page.
Result<std::string> textOfSet(const std::string& text, bool replaces) {
    if (platform::FindUnwritable(text, platform::kCodePageUtf8) != std::string::npos)
        return makeError(ErrorCode::kForeignByte);
    const auto lacking = platform::FirstUnwritable(text, platform::kCodePageJapanese);
    if (lacking && !replaces) return makeError(ErrorCode::kNoCharacter, {codePointName(lacking->codePoint)});
    return platform::FromUtf8(text, platform::kCodePageJapanese);
}

Status applySets(app::HeadlessSession& session, const Options& options) {
    for (const std::string& set : options.sets) {
        const std::size_t equals = set.find('=');
        if (equals == std::string::npos) return makeError(ErrorCode::kNotKeyAndText).inFile("--set " + set);
        const Result<std::string> value = textOfSet(set.substr(equals + 1), options.replacesCharacters);
        if (!value) return Error(value.error()).inFile("--set " + set);
        if (!session.host().setField(set.substr(0, equals), *value))
            return makeError(ErrorCode::kUnknownKey).inFile("--set " + set);
    }
    return {};
}

Status drawFrame(app::HeadlessSession& session, const char* toolTitle, const Corners& corners) {
    host::Host& host = session.host();
    const int beeps = session.user().beeps();
    host.selectTool(*host.toolByTitle(toolTitle));
    // The first event is only looked at when it moves the cursor away from where the last run has left it.
    host.sendTool(kSelectorTrackCursor, corners.upper, 0);
    host.sendTool(kSelectorTrackCursor, corners.lower, 0);
    host.sendTool(kSelectorMouseDown, corners.lower, 0);
    host.sendTool(kSelectorMouseDrag, corners.upper, 0);
    host.sendTool(kSelectorMouseUp, corners.upper, 0);
    if (const Status drawn = faultOf(session); !drawn) return drawn;
    if (session.user().beeps() != beeps) return makeError(ErrorCode::kLayerClosed);
    return {};
}

// The plug-in with the parts list in its settings; the words are those of its language.
Result<const ScheduleWords*> startWithParts(app::HeadlessSession& session, const Options& options,
                                            const std::string& profile) {
    const Result<std::string> parts = readParts(options, profile);
    if (!parts) return parts.error();
    if (const Status started = session.start(); !started) return started.error();
    const ScheduleWords* words = wordsOf(session);
    if (words == nullptr) return makeError(ErrorCode::kNoScheduleTools).inFile("frame");
    if (const Status imported = importParts(session, *words, *parts); !imported) return imported.error();
    if (const Status applied = applySets(session, options); !applied) return applied.error();
    session.host().setField("flUseGrid", "0");  // the corners are meant as they are given
    return words;
}

}  // namespace

Result<int> drawFrames(const Options& options) {
    const Result<Corners> corners = parseCorners(options.at);
    if (!corners) return corners.error();
    const auto outputs = outputPaths(options, "frame", "");
    if (!outputs) return outputs.error();
    const Result<app::TemporaryProfile> profile = app::TemporaryProfile::make(options);
    if (!profile) return profile.error();
    app::HeadlessSession session(profile->options());
    const Result<const ScheduleWords*> words = startWithParts(session, options, profile->options().profile);
    if (!words) return words.error();
    const char* tool = options.mode == "top" ? (*words)->topTool : (*words)->bottomTool;
    const ProgressLine progress(options.files.size());
    const auto tellAll = [&](const std::string& file) {
        const std::vector<Error> warnings = session.takeWarnings();
        if (!warnings.empty()) progress.clear();
        tellWarnings(file, warnings, session.language());
    };
    const auto frame = [&](const std::string& file, const std::string& output) -> Status {
        if (const Status opened = session.openDrawing(file); !opened) return opened;
        tellAll(file);
        if (const Status drawn = drawFrame(session, tool, *corners); !drawn) return drawn;
        const Status saved = session.saveDrawing(output);
        tellAll(output);
        return saved;
    };
    int status = kExitOk;
    for (std::size_t i = 0; i < options.files.size(); ++i) {
        const std::string& file = options.files[i];
        progress.show(i + 1, ": " + file);
        const Status framed = frame(file, (*outputs)[i]);
        if (framed) continue;
        progress.clear();
        std::cerr << sentenceFor(file, framed.error(), session.language()) << '\n';
        status = kExitBadInput;
    }
    return status;
}

}  // namespace quorvel::cli
