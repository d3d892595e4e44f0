// The whole art tree of a drawing as JSON, in document points: what scripts and tests compare.
#pragma once

#include <string>

#include "document/document.h"

namespace quorvel::app {

// The number whose shortest form is the shortest that reads back to this float.
double shortest(float value);

// JSON text, indented by one blank. Bytes that are no UTF-8, as tags may hold, become U+FFFD.
std::string dumpDocument(const doc::Document& document, const std::string& rulerUnit);

}  // namespace quorvel::app
