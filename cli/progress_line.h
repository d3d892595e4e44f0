// How far a command over several files is: one line, written over itself, on a terminal only and only when there is
// something to wait for.
#pragma once

#include <string>

namespace quorvel::cli {

class ProgressLine {
  public:
    explicit ProgressLine(std::size_t files);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(std::size_t count, const std::string& what) const;  // "COUNT of FILES WHAT"
    void clear() const;                                           // before anything else is written

  private:
    std::size_t files_;
    bool shown_;
};

}  // namespace quorvel::cli
