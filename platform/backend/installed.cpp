// The one backend of the process, and the objects that references may name.
#include <unordered_set>

#include "platform/backend/backend.h"

namespace quorvel::platform {

namespace {

Backend* installed = nullptr;

std::unordered_set<const Referenced*>& livingObjects() {
    static std::unordered_set<const Referenced*> objects;
    return objects;
}

}  // namespace

void installBackend(Backend* backend) { installed = backend; }
Backend* installedBackend() { return installed; }

Referenced::Referenced() { livingObjects().insert(this); }
Referenced::~Referenced() { retire(); }
void Referenced::retire() { livingObjects().erase(this); }
bool isLiving(const Referenced* object) { return livingObjects().count(object) != 0; }

}  // namespace quorvel::platform
