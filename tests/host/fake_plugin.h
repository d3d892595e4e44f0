// A plug-in that is one function of the test: what a message does is said where it is sent.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "host/host.h"
#include "hostapi/catalogue.h"

namespace quorvel::host {

struct FakePlugin {
    using Handler =
        std::function<AIErr(const std::string& caller, const std::string& selector, SPMessageData* message)>;
    inline static Handler handler;

    static AIErr main(const char* caller, const char* selector, void* message) {
        return handler ? handler(caller, selector, static_cast<SPMessageData*>(message)) : kNoErr;
    }

    // Runs the code inside a message of the host.
    static AIErr within(Host& host, const std::function<void(SPMessageData*)>& code) {
        handler = [&](const std::string&, const std::string&, SPMessageData* message) {
            code(message);
            return kNoErr;
        };
        SPMessageData message;
        const AIErr result = host.send(kCallerInterface, "Test", &message);
        handler = nullptr;
        return result;
    }
};

template <typename Suite>
const Suite& suiteOf() {
    return *static_cast<const Suite*>(findSuite(kSuiteKey<Suite>.name, kSuiteKey<Suite>.version));
}

inline const AIArtSuite& art() { return suiteOf<AIArtSuite>(); }
inline const AILayerSuite& layers() { return suiteOf<AILayerSuite>(); }
inline const AIPathSuite& paths() { return suiteOf<AIPathSuite>(); }
inline const AITagSuite& tags() { return suiteOf<AITagSuite>(); }
inline const AIUndoSuite& undoing() { return suiteOf<AIUndoSuite>(); }
inline const AIUnicodeStringSuite& strings() { return suiteOf<AIUnicodeStringSuite>(); }

inline AIUnicodeStringRef hostText(const std::string& utf8) {
    AIUnicodeStringRef string = nullptr;
    strings().FromCodePage(utf8.data(), static_cast<std::int32_t>(utf8.size()), 65001, &string);
    return string;
}

inline AIArtHandle rootOfCurrentLayer() {
    AIArtHandle root = nullptr;
    art().GetFirstArtOfLayer(nullptr, &root);
    return root;
}

inline AIArtHandle newPath(std::initializer_list<RealPoint> anchors = {}) {
    AIArtHandle path = nullptr;
    art().NewArt(kPathArt, kPlaceInsideOnTop, rootOfCurrentLayer(), &path);
    std::int16_t index = 0;
    for (const RealPoint& anchor : anchors) {
        const PathSegment segment{anchor, anchor, anchor, 1};
        paths().SetPathSegments(path, index++, 1, &segment);
    }
    return path;
}

class Suites : public testing::Test {
  protected:
    Suites() {
        host.attachPlugin(FakePlugin::main, nullptr);
        host.newDocument(400, 300);
    }
    void within(const std::function<void()>& code) {
        FakePlugin::within(host, [&](SPMessageData*) { code(); });
    }

    Host host{HostOptions{.seed = 1}};
};

}  // namespace quorvel::host
