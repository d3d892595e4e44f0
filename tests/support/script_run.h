// A script run in this process: the whole plug-in behind the messages of a scripted user, with settings and a working
// folder of its own, and the drawing that it left to look at. One at a time; taking it down removes the folder.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/dump.h"
#include "cli/list.h"
#include "cli/script.h"
#include "cli/session.h"

namespace quorvel::tests {

// A drawing of other programs, by its name; "" where the folder with them is absent. Scripts open it as
// ../shared/drawings/NAME.
std::string sharedDrawing(const std::string& name);
std::string readBytes(const std::string& path);

class ScriptRun {
  public:
    // name: as faults name it; drawings that the script opens are looked for beside it. Every run draws the same random
    // numbers.
    explicit ScriptRun(const std::string& text, const std::string& name = "test.script");
    ~ScriptRun();
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;

    const std::string& fault() const { return fault_; }             // empty when every line held
    const std::vector<std::string>& told() const { return told_; }  // a line for each thing that happened
    const std::string& absent() const { return absent_; }           // a drawing that is not here: nothing was run
    const std::vector<cli::ScriptLine>& lines() const { return lines_; }
    const std::string& folder() const { return folder_; }  // where the script saves to
    cli::Session& session() { return *session_; }
    host::Document& document() { return *session_->document(); }
    cli::Json dump();
    std::string saved();  // the file as a save would write it now
    // The lowest first, which is the order of making within a layer.
    std::vector<cli::RecordedDimension> dimensions();
    const host::Art& art(const std::string& svgId);
    // A dimension's pieces, the lowest first.
    std::vector<const host::Art*> pieces(const cli::RecordedDimension& dimension);
    std::string tag(host::ArtId art, const std::string& name);  // "(absent)" without it

  private:
    std::string folder_, returnTo_, fault_, absent_;
    std::vector<std::string> told_;
    std::vector<cli::ScriptLine> lines_;
    std::unique_ptr<cli::Session> session_;
};

}  // namespace quorvel::tests
