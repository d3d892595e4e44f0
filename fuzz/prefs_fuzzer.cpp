// Any bytes as a settings file or a preset (the first byte says which): what was read is written, and what is written
// is stable once it has been read and written again.
#include "fuzz/fuzz_support.h"

using namespace quorvel;

namespace {

std::string readAndWrite(std::string_view text, bool mainFile) {
    static auto globals = std::make_unique<PluginGlobals>();
    StoreDefaults(globals.get());
    ParsePrefsText(globals.get(), text, mainFile);
    fuzz::scheduleText(*globals);
    return ComposePrefsText(globals.get(), mainFile);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const bool mainFile = (data[0] & 1) != 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    // A line holds fewer signs than the longest text and its key: the second round may cut what the first has kept.
    const std::string written = readAndWrite(readAndWrite(text, mainFile), mainFile);
    fuzz::require(readAndWrite(written, mainFile) == written);
    return 0;
}
