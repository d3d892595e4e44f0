// Saving a drawing, with the former version kept aside.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "document/document.h"

namespace quorvel::app {

struct SaveChoices {
    bool replacesReadOnly = false;  // else kReadOnlyFile
    bool keepsBackup = true;        // of the version that is there before its first save of a day
};

// Writes the document with the ruler's unit and marks it as saved. A backup that cannot be kept is a warning: it keeps
// nobody from saving.
[[nodiscard]] Status saveDrawing(doc::Document* document, const std::string& path, const std::string& rulerUnit,
                                 const SaveChoices& choices, std::vector<Error>* warnings);

}  // namespace quorvel::app
