// A script run in this process: the whole plug-in behind the messages of a scripted user, with settings and a working
// folder of its own, and the drawing that it left to look at. One at a time; taking it down removes the folder.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/dimension_list.h"
#include "app/dump.h"
#include "app/headless_session.h"
#include "app/script.h"
#include "host/code_page.h"

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
    const std::vector<app::ScriptLine>& lines() const { return lines_; }
    const std::string& folder() const { return folder_; }  // where the script saves to
    app::HeadlessSession& session() { return *session_; }
    doc::Document& document() { return *session_->document(); }
    std::string dump();   // as `quorvel dump` prints it
    std::string saved();  // the file as a save would write it now
    // Without comments and balloons. The lowest first, which is the order of making within a layer.
    std::vector<app::RecordedDimension> dimensions();
    const doc::Art& art(const std::string& name);
    // A dimension's pieces, the lowest first.
    std::vector<const doc::Art*> pieces(const app::RecordedDimension& dimension);
    std::string tag(doc::ArtId art, const std::string& name);  // "(absent)" without it

  private:
    std::string folder_, returnTo_, fault_, absent_;
    std::vector<std::string> told_;
    std::vector<app::ScriptLine> lines_;
    std::unique_ptr<app::HeadlessSession> session_;
};

}  // namespace quorvel::tests
