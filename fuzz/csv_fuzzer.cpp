// Any bytes as a parts list: every text stays within its field, and reading the same bytes again gives the same.
#include "fuzz/fuzz_support.h"
#include "plugin/settings/parts_csv.h"

using namespace quorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static auto globals = std::make_unique<PluginGlobals>();
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ParsePartsCsv(globals.get(), text);
    const std::string first = fuzz::scheduleText(*globals);
    ParsePartsCsv(globals.get(), text);
    fuzz::require(fuzz::scheduleText(*globals) == first);
    return 0;
}
