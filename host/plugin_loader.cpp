// Loads a plug-in from its library file, as a host finds it: one exported function, everything else stays its own.
#include <dlfcn.h>

#include <filesystem>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

constexpr char kEntryPoint[] = "PluginMain";

std::string lastLoaderError() {
    const char* text = dlerror();
    return text != nullptr ? text : "";
}

}  // namespace

Status Host::loadPlugin(const std::string& file) {
    // A bare name would be looked for in the system's folders.
    std::error_code unknown;
    const std::filesystem::path path = std::filesystem::absolute(file, unknown);
    void* const library = unknown ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return makeError(ErrorCode::kPluginNotLoaded, {unknown ? unknown.message() : lastLoaderError()}).inFile(file);
    const auto entry = reinterpret_cast<PluginMainProc>(dlsym(library, kEntryPoint));
    if (entry == nullptr) {
        dlclose(library);
        return makeError(ErrorCode::kNoEntryPoint, {kEntryPoint}).inFile(file);
    }
    attachPlugin(entry, library);
    if (impl_->library != nullptr) dlclose(impl_->library);
    impl_->library = library;
    return {};
}

Host::~Host() {
    releaseHost(impl_.get());
    if (impl_->library != nullptr) dlclose(impl_->library);
}

}  // namespace quorvel::host
