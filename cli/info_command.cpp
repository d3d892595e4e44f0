// Says of each drawing its page, its user unit and what is in it, one process each. Exit status: 0, or 2 when a file
// could not be read.
#include "app/drawing_information.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/json_output.h"
#include "cli/verdicts.h"

namespace quorvel::cli {

namespace {

WorkerVerdict informationOn(const std::string& file, const Options& options) {
    const app::Language language = app::languageOf(options);
    const host::Host measuring;  // texts measure as they do while the plug-in runs
    const auto drawing = interchange::readSvgFile(file);
    if (!drawing) {
        if (options.isJson) return {kExitBadInput, errorJson(file, app::sentence(drawing.error(), language))};
        return {kExitBadInput, sentenceFor(file, drawing.error(), language) + '\n'};
    }
    const app::DrawingInformation information = app::informationAbout(*drawing);
    return {kExitOk, options.isJson ? informationJson(file, information, language)
                                    : app::informationText(file, information, language)};
}

}  // namespace

Result<int> informAbout(const Options& options) { return printVerdicts(options, " drawings read", informationOn); }

}  // namespace quorvel::cli
