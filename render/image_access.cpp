#include "render/image_access.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>
#include <algorithm>

namespace quorvel::render {

namespace {

bool isWithin(const QString& path, const QStringList& roots) {
    return std::any_of(roots.begin(), roots.end(), [&](const QString& root) {
        return path.startsWith(root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/'));
    });
}

// An address of another machine, of any scheme.
bool isRemote(const QString& link) {
    static const QRegularExpression kAddress(QStringLiteral("^([a-z][a-z0-9+.-]*:)?//"),
                                             QRegularExpression::CaseInsensitiveOption);
    if (!kAddress.match(link).hasMatch()) return false;
    const QUrl url(link);
    return !url.isLocalFile() || !(url.host().isEmpty() || url.host() == QLatin1String("localhost"));
}

ImageSource dataSource(const QString& link) {
    const qsizetype comma = link.indexOf(QLatin1Char(','));
    const QByteArray raw = QByteArray::fromPercentEncoding(link.mid(comma + 1).toLatin1());
    const bool isBase64 = link.left(comma).endsWith(QLatin1String(";base64"), Qt::CaseInsensitive);
    ImageSource source;
    source.bytes = isBase64 ? QByteArray::fromBase64(raw) : raw;
    return source;
}

}  // namespace

ImageAccess::ImageAccess(const QString& folder, const QStringList& others) : base(folder) {
    for (const QString& root : QStringList(folder) + others)
        if (const QString path = QFileInfo(root).canonicalFilePath(); !path.isEmpty()) roots.append(path);
}

QByteArray ImageSource::key() const {
    if (path.isEmpty()) return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    return path.toUtf8() + '\n' + QByteArray::number(qlonglong(changed)) + '\n' + QByteArray::number(qlonglong(size));
}

Result<ImageSource> imageSource(const QString& href, const ImageAccess& access) {
    const QString link = href.trimmed();
    if (link.startsWith(QLatin1String("data:"), Qt::CaseInsensitive)) return dataSource(link);
    if (isRemote(link)) return makeError(ErrorCode::kImageRemote, {link.toStdString()});
    const QUrl url(link);
    const QString name = url.isLocalFile() ? url.path() : QUrl::fromPercentEncoding(link.toUtf8());
    // A name may have a % of its own.
    for (const QString& candidate : {name, link}) {
        const QFileInfo file(QFileInfo(QDir(access.base).absoluteFilePath(candidate)).canonicalFilePath());
        if (file.filePath().isEmpty()) continue;
        if (!access.isEverywhere && !isWithin(file.filePath(), access.roots))
            return makeError(ErrorCode::kImageOutside, {link.toStdString(), file.path().toStdString()});
        if (!file.isFile()) continue;
        return ImageSource{file.filePath(), {}, file.lastModified().toMSecsSinceEpoch(), file.size()};
    }
    return makeError(ErrorCode::kImageLeftOut, {link.toStdString()});
}

}  // namespace quorvel::render
