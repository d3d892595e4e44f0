// Texts on their way between the plug-in, which works in the system's code page, and a backend, which works in UTF-8.
#pragma once

#include <cstdint>
#include <string>

namespace quorvel::platform {

// Null is the empty text.
std::string FromSystem(const char* bytes);
// Of a control, from which it may be read again: no byte is lost on the way.
std::string FieldFromSystem(const char* bytes);
// At most size - 1 bytes and a zero; gives the length. A text that is too long is cut at its byte, in the middle of a
// character where that falls so: limits count bytes.
std::int32_t CopyToSystem(const std::string& utf8, char* text, std::int32_t size);

}  // namespace quorvel::platform
