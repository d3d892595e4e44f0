// The whole art tree of a drawing as JSON, in document points: what scripts and tests compare.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/document.h"

namespace quorvel::cli {

using Json = nlohmann::ordered_json;

// The number whose shortest form is the shortest that reads back to this float.
double shortest(float value);
// A tag's bytes, from the system code page; broken pieces are U+FFFD.
std::string tagText(const std::string& bytes);
std::string toUtf8(const std::u16string& text);

// As text, indented. Bytes that are no UTF-8, as file names may hold, become U+FFFD.
std::string writtenJson(const Json& json);
Json dumpDocument(const host::Document& document, const std::string& rulerUnit);

}  // namespace quorvel::cli
