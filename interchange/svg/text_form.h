// How the bytes of a file hold its text: in which encoding, and compressed or not. What is inside is UTF-8.
#pragma once

#include <string>

#include "base/result.h"

namespace quorvel::interchange {

struct TextForm {
    std::string encoding;  // as the converter of the system knows it; empty: UTF-8
    bool hasMark = false;  // a byte order mark before the text, of an encoding that is not UTF-8
    bool isCompressed = false;
};

struct FileText {
    std::string text;
    TextForm form;
};

// Takes gzip off and converts from the encoding that a byte order mark or the XML declaration names. An error when the
// file is too large, cut off, in an unknown encoding, or in one that does not give the bytes back.
Result<FileText> decodeText(std::string&& bytes);
// Characters that the encoding lacks become character references.
Result<std::string> encodeText(std::string text, const TextForm& form);

}  // namespace quorvel::interchange
