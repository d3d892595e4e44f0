// What the program around the host asks the plug-in about dimensions, by messages of our own.
#include "host/host_state.h"

namespace quorvel::host {

std::vector<doc::ArtId> Host::rebuildDimensions(const std::vector<doc::ArtId>& groups) {
    std::vector<AIArtHandle> handles, rebuilt(groups.size());
    for (const doc::ArtId group : groups) handles.push_back(artHandle(group));
    QuorvelRebuildMessage message;
    message.groups = handles.data();
    message.count = static_cast<std::int32_t>(handles.size());
    message.rebuilt = rebuilt.data();
    send(kCallerDimensions, kSelectorRebuild, &message.d);
    std::vector<doc::ArtId> made;
    for (const AIArtHandle group : rebuilt) made.push_back(artOfHandle(group));
    return made;
}

}  // namespace quorvel::host
