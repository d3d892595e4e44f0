// Which images a drawing may show, and where the one that it names is.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>

#include "base/result.h"

namespace quorvel::render {

// The files that a drawing may show are those in some folders and below. A link that leads out of them is outside.
struct ImageAccess {
    ImageAccess() = default;  // no file at all
    ImageAccess(const QString& folder, const QStringList& others = {});

    QString base;               // where names are looked for: the folder of the drawing that gives them
    QStringList roots;          // canonical paths
    bool isEverywhere = false;  // the user has allowed all that this drawing names
};

struct ImageSource {
    QString path;                        // canonical; empty for a "data:" URL
    QByteArray bytes;                    // of a "data:" URL
    std::int64_t changed = 0, size = 0;  // of the file: milliseconds since 1970, bytes
    // The same for the same content, as far as the file's own words tell.
    QByteArray key() const;
};

// href: a file, or a "data:" URL. Reads no file. Errors have the name as their first argument: kImageOutside with the
// folder that would have to be allowed, kImageRemote for an address, kImageLeftOut for what is no regular file.
Result<ImageSource> imageSource(const QString& href, const ImageAccess& access);

}  // namespace quorvel::render
