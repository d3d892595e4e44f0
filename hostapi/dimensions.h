// What our own host and the plug-in tell each other about dimensions beyond the host's suites: a suite by which a
// rebuilt dimension takes the place of the former one, and a message that rebuilds chosen dimensions and answers with
// pairs. Other hosts neither offer the suite nor send the message; the plug-in works without both.
#pragma once

#include "hostapi/messages.h"

namespace quorvel {

struct AIDimensionSuite {
    // Removes former. The replacement takes over the name that the file has for it.
    AIErr (*ReplaceGroup)(AIArtHandle former, AIArtHandle replacement);
};

constexpr char kCallerDimensions[] = "Quorvel Dimensions";
// Rebuilds dimensions without a question, as one step. Hidden and locked layers are passed over.
constexpr char kSelectorRebuild[] = "Rebuild";

struct QuorvelRebuildMessage {
    SPMessageData d;
    const AIArtHandle* groups = nullptr;  // dimension groups
    std::int32_t count = 0;
    AIArtHandle* rebuilt = nullptr;  // room for count handles; set to the new group of each, null where none was made
};

}  // namespace quorvel
