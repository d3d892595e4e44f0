// The alert that a failing message ends in, and the report of internal errors. Both are written so that they work in
// the middle of a failed acquisition, when the string suite may not be held yet.
#include "plugin/shell/alert.h"

#include <cstdio>
#include <cstring>

#include "hostapi/catalogue.h"
#include "platform/text.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

constexpr const SuiteEntry& kStringSuite = kSuiteKey<AIUnicodeStringSuite>;
constexpr AIErr kSilentResult = 1;
constexpr int kAlertTextSize = 1024;

struct CodeText {
    char bytes[5] = {};
};

// The code's bytes in memory order, so that a four-character code reads reversed on a little-endian processor.
CodeText TextOfCode(std::uint32_t code) {
    CodeText text;
    std::memcpy(text.bytes, &code, sizeof code);
    return text;
}

bool IsSilent(AIErr result) {
    return result == kNoErr || result == kSilentResult || result == kSuiteNotFoundErr || result == kCanceledErr;
}

}  // namespace

void ShowErrorAlert(const char* text) {
    if (sAIUser == nullptr) return;
    // The string suite is the last row of the table: when an earlier row fails it has to be borrowed for the alert.
    const AIUnicodeStringSuite* strings = sAIUnicodeString;
    const bool borrow = strings == nullptr;
    if (borrow) {
        const void* suite = nullptr;
        if (gBasic->AcquireSuite(kStringSuite.name, kStringSuite.version, &suite) != kNoErr || suite == nullptr) return;
        strings = static_cast<const AIUnicodeStringSuite*>(suite);
    }
    AIUnicodeStringRef string = nullptr;
    const std::int32_t size = static_cast<std::int32_t>(std::strlen(text));
    if (strings->FromCodePage(text, size, platform::kCodePageJapanese, &string) == kNoErr) sAIUser->ErrorAlert(string);
    if (borrow) gBasic->ReleaseSuite(kStringSuite.name, kStringSuite.version);
}

void AlertResult(AIErr result, const char* caller, const char* selector) {
    if (IsSilent(result) || sAIUser == nullptr) return;
    const std::uint32_t code = static_cast<std::uint32_t>(result);
    char text[kAlertTextSize];
    std::snprintf(text, sizeof text, "Error=%x, %s (caller : %s, selector : %s)", code, TextOfCode(code).bytes, caller,
                  selector);
    ShowErrorAlert(text);
}

void ReportInternalError(AIErr code) {
    if (sAIUser == nullptr) return;
    const std::uint32_t value = static_cast<std::uint32_t>(code);
    char text[kAlertTextSize];
    std::snprintf(text, sizeof text, "Unexpected internal error=%x, %s", value,
                  TextOfCode(__builtin_bswap32(value)).bytes);
    ShowErrorAlert(text);
}

}  // namespace quorvel
