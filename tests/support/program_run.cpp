#include "tests/support/program_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/script_run.h"

namespace quorvel::tests {

namespace fs = std::filesystem;

ProgramRun::ProgramRun() : folder_(fs::path(testing::TempDir()) / ("quorvel_program_" + std::to_string(getpid()))) {
    fs::create_directories(folder_);
}

ProgramRun::~ProgramRun() { fs::remove_all(folder_); }

void ProgramRun::write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

int ProgramRun::runCommand(const std::string& command) {
    const int status = std::system(
        ("cd '" + folder_.string() + "' && export XDG_STATE_HOME=\"$PWD/state\" && " + command + " >out.txt 2>err.txt")
            .c_str());
    out_ = readBytes(path("out.txt"));
    err_ = readBytes(path("err.txt"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int ProgramRun::runProgram(const std::string& arguments) {
    return runCommand("timeout 60 '" QUORVEL_PROGRAM_FILE "' " + arguments + " --profile profile");
}

std::string ProgramRun::printed(const std::string& pointer) const {
    using Json = nlohmann::ordered_json;
    const Json all = Json::parse(out_, nullptr, false);
    const Json::json_pointer place(pointer);
    return all.contains(place) ? all[place].dump() : "(absent)";
}

}  // namespace quorvel::tests
