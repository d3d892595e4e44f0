// A plug-in whose one tool throws at each press, and draws half a path before it does.
#include <stdexcept>

#include "hostapi/catalogue.h"
#include "hostapi/messages.h"

namespace quorvel {
namespace {

template <typename Suite>
const Suite& acquired(SPMessageData* message) {
    constexpr const SuiteEntry& kKey = kSuiteKey<Suite>;
    const void* suite = nullptr;
    if (message->basic->AcquireSuite(kKey.name, kKey.version, &suite) != kNoErr) throw std::runtime_error(kKey.name);
    return *static_cast<const Suite*>(suite);
}

}  // namespace
}  // namespace quorvel

extern "C" __attribute__((visibility("default"))) quorvel::AIErr PluginMain(const char* caller, const char* selector,
                                                                            void* record) {
    using namespace quorvel;
    auto* message = static_cast<SPMessageData*>(record);
    const std::string from = caller, what = selector;
    if (from == kCallerInterface && what == kSelectorStartup) {
        AIToolHandle tool = nullptr;
        AIAddToolData data;
        data.title = "Failing Tool";
        return acquired<AIToolSuite>(message).AddTool(message->self, "Failing", &data, 0, &tool);
    }
    if (what != kSelectorMouseDown) return kNoErr;
    const auto& arts = acquired<AIArtSuite>(message);
    AIArtHandle root = nullptr, path = nullptr;
    arts.GetFirstArtOfLayer(nullptr, &root);
    arts.NewArt(kPathArt, kPlaceInsideOnTop, root, &path);
    throw std::runtime_error("the disk is on fire");
}
