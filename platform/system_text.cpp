// Conversion by the system's code page, and the limit in bytes.
#include "platform/system_text.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace quorvel::platform {

std::string FromSystem(const char* bytes) { return bytes == nullptr ? "" : ToUtf8(bytes, kCodePageJapanese); }

std::string FieldFromSystem(const char* bytes) {
    return bytes == nullptr ? "" : ToUtf8AndBack(bytes, kCodePageJapanese);
}

std::int32_t CopyToSystem(const std::string& utf8, char* text, std::int32_t size) {
    if (text == nullptr || size <= 0) return 0;
    const std::string bytes = FromUtf8(utf8, kCodePageJapanese);
    const std::size_t length = std::min(bytes.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(text, bytes.data(), length);
    text[length] = '\0';
    return static_cast<std::int32_t>(std::strlen(text));
}

}  // namespace quorvel::platform
