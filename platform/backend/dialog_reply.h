// A user's answers to a dialog as scripts say them: replies that the scripted user plays, and that the window records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvel::platform {

// One step of a user in a dialog.
struct DialogStep {
    enum class Kind { setText, selectRow, check, uncheck, press, expectText } kind;
    std::int32_t control = 0;
    std::string text;      // setText, expectText
    std::int32_t row = 0;  // selectRow
};

struct DialogReply {
    std::int32_t dialogId = 0;
    std::vector<DialogStep> steps;
};

}  // namespace quorvel::platform
