// The real program run from its command line in a folder of its own, with what it printed and left behind.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace quorvel::tests {

class ProgramRun : public testing::Test {
  protected:
    ProgramRun();
    ~ProgramRun() override;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    void write(const std::string& name, const std::string& bytes) const;

    // The exit code, -1 for another end; what was printed is in out_ and err_.
    int runCommand(const std::string& command);
    int runProgram(const std::string& arguments);  // with a profile of its own
    // A value of the JSON that was printed, by its pointer ("/searches/0/kind"), as JSON; "(absent)" when it is not
    // there.
    std::string printed(const std::string& pointer) const;

    std::filesystem::path folder_;
    std::string out_, err_;
};

}  // namespace quorvel::tests
