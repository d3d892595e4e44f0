// What the program around the host asks the plug-in about dimensions, by messages of our own.
#include "host/host_state.h"

namespace quorvel::host {

std::vector<doc::ArtId> HostState::sendRebuild(const std::vector<doc::ArtId>& groups, double tolerance, bool isTrial,
                                               bool* isDone) {
    std::vector<AIArtHandle> handles, rebuilt(groups.size());
    for (const doc::ArtId group : groups) handles.push_back(artHandle(group));
    QuorvelRebuildMessage message;
    message.groups = handles.data();
    message.count = static_cast<std::int32_t>(handles.size());
    message.tolerance = tolerance;
    message.isTrial = isTrial;
    message.rebuilt = rebuilt.data();
    host.send(kCallerDimensions, kSelectorRebuild, &message.d);
    if (isDone != nullptr) *isDone = message.isDone;
    std::vector<doc::ArtId> made;
    for (const AIArtHandle group : rebuilt) made.push_back(group == nullptr ? 0 : host.artOfHandle(group));
    return made;
}

std::vector<doc::ArtId> Host::rebuildDimensions(const std::vector<doc::ArtId>& groups, double tolerance) {
    return impl_->sendRebuild(groups, tolerance, false, nullptr);
}

void Host::tryRebuild(const std::vector<doc::ArtId>& groups, double tolerance,
                      const std::function<void(const std::vector<doc::ArtId>& rebuilt)>& inspect) {
    impl_->tryOut([&] {
        bool isDone = false;
        const std::vector<doc::ArtId> rebuilt = impl_->sendRebuild(groups, tolerance, true, &isDone);
        if (isDone) inspect(rebuilt);
    });
}

void Host::followSelection() {
    SPMessageData message;
    send(kCallerDimensions, kSelectorFollow, &message);
}

std::vector<std::vector<DimensionEnd>> Host::examineDimensions(const std::vector<doc::ArtId>& groups) {
    std::vector<std::vector<DimensionEnd>> all(groups.size());
    impl_->tryOut([&] {
        for (std::size_t i = 0; i < groups.size(); ++i) {
            QuorvelExamineMessage message;
            message.group = artHandle(groups[i]);
            send(kCallerDimensions, kSelectorExamine, &message.d);
            all[i].assign(message.ends, message.ends + message.count);
        }
    });
    return all;
}

}  // namespace quorvel::host
