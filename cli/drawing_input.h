// What the commands do alike with the drawings that they are given.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/headless_session.h"
#include "app/temporary_profile.h"
#include "cli/commands.h"
#include "host/host.h"
#include "interchange/svg/svg.h"

namespace quorvel::cli {

// A line each on the standard error, with the file's name.
void tellWarnings(const std::string& file, const std::vector<Error>& warnings, app::Language language);
// The error's sentence, which begins with the drawing's name also when the error is one of another file.
std::string sentenceFor(const std::string& drawing, const Error& error, app::Language language);

// A drawing for the commands that run no plug-in; its warnings have been told.
class DrawingInput {
  public:
    static Result<std::unique_ptr<DrawingInput>> read(const Options& options);
    const doc::Document& document() const { return *drawing_.document; }
    const std::string& rulerUnit() const { return drawing_.rulerUnit; }

  private:
    DrawingInput() = default;
    host::Host measuring_;  // texts measure as they do while the plug-in runs
    interchange::SvgDrawing drawing_;
};

// A session on a copy of the profile's settings, with the drawing open and the plug-in started; warnings have been
// told.
class DrawingSession {
  public:
    static Result<std::unique_ptr<DrawingSession>> open(const app::SessionOptions& options, const std::string& file);
    app::HeadlessSession& session() { return session_; }

  private:
    explicit DrawingSession(app::TemporaryProfile profile)
        : profile_(std::move(profile)), session_(profile_.options()) {}
    app::TemporaryProfile profile_;
    app::HeadlessSession session_;
};

}  // namespace quorvel::cli
