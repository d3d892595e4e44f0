// Writes what the user does as a script, so that a fault can be sent as a file and a drawing be made again without a
// window. The verbs are those of the command line's scripts.
#pragma once

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi/types.h"
#include "platform/headless/headless.h"

namespace quorvel::desktop {

class Recorder {
  public:
    Recorder() = default;
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // False when the file cannot be written.
    bool open(const std::string& path);
    bool on() const { return out_.is_open(); }
    // What has been done so far stands in the file.
    void flush();

    // To be called before the deed: the replies that it asks for are written ahead of it.
    void line(const std::string& text);
    // The mouse is seen only where it ends: of a series of moves the last two are kept.
    void move(const char* verb, RealPoint point, std::uint16_t modifiers);
    void button(const char* verb, std::uint16_t modifiers);
    void zoom(float zoom);
    // The step that the window has just made, in the lines that say it.
    void step(const std::vector<std::string>& lines);
    void undo();
    void redo();
    void stepMade();
    void forgetSteps();  // another drawing

    void dialogAnswered(const platform::DialogReply& reply);
    void boxAnswered(bool accepted);
    void fileChosen(const std::optional<std::string>& path);
    void panelUsed(const platform::DialogStep& step, bool isToggle);
    void flyout(int item);
    // The timer's ticks are written only where one has something to do.
    void tick();

  private:
    void write(const std::string& text);
    void writeOpenLine();
    void writeMoves();

    std::ofstream out_;
    std::optional<std::string> open_;  // the last line, whose replies may still come
    std::vector<std::string> replies_;
    std::vector<std::string> moves_;
    std::string movesKey_;                    // verb and modifiers of the moves that wait
    std::vector<std::size_t> done_, undone_;  // script steps of each step of the drawing
    bool tickMatters_ = false;
};

// The fewest digits that read back as the same number.
std::string Shortest(double value);
std::string Shortest(float value);

}  // namespace quorvel::desktop
