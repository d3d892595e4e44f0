// What a host reads of the library before it calls it: the kind of plug-in, the version of its interface and the name
// of its entry point.
#pragma once

#include <cstdint>

#include "hostapi/messages.h"

namespace quorvel {

struct PluginProperty {
    char vendor[8];
    char key[24];
    char value[16];
};

struct PropertyList {
    std::int32_t resourceId;
    std::int32_t count;
    PluginProperty properties[3];
};

}  // namespace quorvel

// The library's two exported names.
extern "C" {
extern __attribute__((visibility("default"))) const quorvel::PropertyList PluginPropertyList;
__attribute__((visibility("default"))) quorvel::AIErr PluginMain(const char* caller, const char* selector,
                                                                 void* message);
}
