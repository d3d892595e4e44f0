// What the window and the process that decodes its images tell each other: each message is its length in bytes, four
// of them, and a QDataStream. The dots go through memory that both have.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "render/image_decoder.h"

namespace quorvel::desktop {

constexpr char kDecodeImages[] = "--decode-images";  // the program's only argument

struct ImageRequest {
    render::ImageSource source;
    render::ImageAccess access;
    QString dots;  // the path of the memory
};
QByteArray messageOf(const ImageRequest& request);
// image: without dots.
QByteArray messageOf(const render::DecodedImage& decoded);

// The first whole message, taken from the bytes; nothing while it is not there.
std::optional<QByteArray> takeMessage(QByteArray* bytes);
ImageRequest requestOf(const QByteArray& message);
// Its dots come from the memory. Null for an answer that cannot be right.
render::DecodedImage answerOf(const QByteArray& message, int dots);

// Decodes what the standard input asks for until it ends. The value is the exit status.
int decodeRequests();

}  // namespace quorvel::desktop
