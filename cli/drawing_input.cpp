#include "cli/drawing_input.h"

#include <iostream>

namespace quorvel::cli {

void tellWarnings(const std::string& file, const std::vector<Error>& warnings, app::Language language) {
    for (const std::string& warning : app::warningSentences(warnings, language))
        std::cerr << file << ": " << warning << '\n';
}

std::string sentenceFor(const std::string& drawing, const Error& error, app::Language language) {
    const std::string text = app::sentence(error, language);
    return text.starts_with(drawing + ":") ? text : drawing + ": " + text;
}

Result<std::unique_ptr<DrawingInput>> DrawingInput::read(const Options& options) {
    std::unique_ptr<DrawingInput> input(new DrawingInput);
    Result<interchange::SvgDrawing> drawing = interchange::readSvgFile(options.file);
    if (!drawing) return drawing.error();
    tellWarnings(options.file, drawing->warnings, app::languageOf(options));
    input->drawing_ = std::move(*drawing);
    return input;
}

Result<std::unique_ptr<DrawingSession>> DrawingSession::open(const app::SessionOptions& options,
                                                             const std::string& file) {
    Result<app::TemporaryProfile> profile = app::TemporaryProfile::make(options);
    if (!profile) return profile.error();
    std::unique_ptr<DrawingSession> drawing(new DrawingSession(std::move(*profile)));
    app::HeadlessSession& session = drawing->session_;
    if (const Status prepared = session.prepare(); !prepared) return prepared.error();
    if (const Status opened = session.openDrawing(file); !opened) return opened.error();
    tellWarnings(file, session.takeWarnings(), session.language());
    if (const Status started = session.start(); !started) return started.error();
    return drawing;
}

}  // namespace quorvel::cli
