#include "app/saving.h"

#include <cerrno>

#include "files/backups.h"
#include "interchange/svg/svg.h"

namespace quorvel::app {

Status saveDrawing(doc::Document* document, const std::string& path, const std::string& rulerUnit,
                   const SaveChoices& choices, std::vector<Error>* warnings) {
    const Status kept = choices.keepsBackup ? files::keepDailyBackup(path) : Status();
    if (const Status saved = interchange::saveSvgFile(*document, path, rulerUnit, {choices.replacesReadOnly}); !saved)
        return saved;
    document->markSaved();
    if (kept) return {};
    // What is no errno is the size.
    const bool isSystem = kept.error().code == ErrorCode::kSystem;
    const std::string number = isSystem ? kept.error().arguments.front() : std::to_string(EFBIG);
    warnings->push_back(makeError(ErrorCode::kNoBackup, {number}).inFile(path));
    return {};
}

}  // namespace quorvel::app
