// Writes what the user does as a script, so that a fault can be sent as a file and a drawing be made again without a
// window. The verbs are those of the command line's scripts.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "files/growing_file.h"
#include "hostapi/types.h"
#include "platform/headless/headless.h"

namespace quorvel::app {

class Recorder {
  public:
    Recorder() = default;
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // seed: of the random numbers, which a replay must have too; none: they were the system's, and the file says what
    // that means.
    [[nodiscard]] Status open(const std::string& path, std::optional<std::uint64_t> seed);
    bool on() const { return file_.has_value(); }
    // Called when the file can no longer be written, once. The recording ends there.
    std::function<void(const Error&)> writeFailed;

    // To be called before the action, so that the file has the line of an action that crashes the program. The replies
    // that the action asks for are written before the line.
    void line(const std::string& text);
    // The mouse is seen only where it ends: of a series of moves the last two are kept.
    void move(const char* verb, RealPoint point, std::uint16_t modifiers);
    void button(const char* verb, std::uint16_t modifiers);
    void zoom(float zoom);
    // An edit of the window's own in the lines that will say it, before it is made.
    void plan(const std::vector<std::string>& lines);
    // The step that the window has just made, in the lines that say it, each a step of the script. They replace those
    // that were planned; none: nothing has come of it.
    void step(const std::vector<std::string>& lines);
    void undo();
    void redo();
    void stepMade();
    void lastStepsJoined();  // the last two are one
    void forgetSteps();      // another drawing

    // Dialogs are nested; the outer one asks first for its reply.
    void dialogOpened();
    void dialogAnswered(const platform::DialogReply& reply);
    void boxAnswered(bool accepted);
    void fileChosen(const std::optional<std::string>& path);
    void panelUsed(const platform::DialogStep& step, bool isToggle);
    void flyout(int item);
    // A script takes an alert for a failure unless it is expected.
    void alertShown(const std::string& text);
    // The timer's ticks are written only where one has something to do.
    void tick();

  private:
    // The end of the file, which may still be written anew: what the last line asks for comes while it runs.
    struct Tail {
        std::vector<std::string> replies, lines, expectations;
        std::string moves;     // verb and modifiers when the lines are moves
        bool planned = false;  // the lines are
    };

    void settle();  // a new tail begins
    void write();   // the tail
    void reply(const std::string& text);
    void sayTick();

    std::optional<files::GrowingFile> file_;
    std::string path_;
    std::uint64_t settled_ = 0, end_ = 0;  // bytes of the file: ahead of the tail, in all
    Tail tail_;
    std::vector<std::size_t> openDialogs_;    // places among the replies, the outermost first
    std::vector<std::size_t> done_, undone_;  // script steps of each step of the drawing
    bool tickMatters_ = false;
    bool tickUnsaid_ = false;  // the last action was a tick that was not worth a line
};

// The fewest digits that read back as the same number.
std::string shortestText(double value);
std::string shortestText(float value);

}  // namespace quorvel::app
