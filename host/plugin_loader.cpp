// Loads a plug-in from its library file, as a host finds it: one exported function, everything else stays its own.
#include <dlfcn.h>

#include <filesystem>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

constexpr char kEntryPoint[] = "PluginMain";

std::string lastLoaderError() {
    const char* text = dlerror();
    return text != nullptr ? text : "unknown cause";
}

}  // namespace

bool Host::loadPlugin(const std::string& file, std::string* error) {
    // A bare name would be looked for in the system's folders.
    std::error_code unknown;
    const std::filesystem::path path = std::filesystem::absolute(file, unknown);
    void* const library = unknown ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        if (error != nullptr)
            *error = "the plug-in cannot be loaded: " + (unknown ? unknown.message() : lastLoaderError());
        return false;
    }
    const auto entry = reinterpret_cast<PluginMainProc>(dlsym(library, kEntryPoint));
    if (entry == nullptr) {
        if (error != nullptr) *error = std::string("no plug-in: the library has no ") + kEntryPoint;
        dlclose(library);
        return false;
    }
    attachPlugin(entry, library);
    if (impl_->library != nullptr) dlclose(impl_->library);
    impl_->library = library;
    return true;
}

Host::~Host() {
    releaseHost(impl_.get());
    if (impl_->library != nullptr) dlclose(impl_->library);
}

}  // namespace quorvel::host
