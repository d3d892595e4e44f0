// Decodes the images of drawings in another process, which may crash or never end without harm to the window.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <utility>

#include "files/descriptor.h"
#include "render/image_decoder.h"

namespace quorvel::desktop {

class ImageWorker : public QObject, public render::ImageDecoder {
    Q_OBJECT

  public:
    // program: does what decodeRequests() does, when its argument is kDecodeImages. milliseconds: for one image.
    explicit ImageWorker(QString program = ownProgram(), int milliseconds = 10'000);
    ~ImageWorker() override;

    // Nothing until imagesDecoded() has told of it. Images are kept by path and time.
    std::optional<render::DecodedImage> decode(const render::ImageSource& source,
                                               const render::ImageAccess& access) override;
    // Waits for all that has been asked for.
    void finish();

  signals:
    void imagesDecoded();

  private:
    struct Request {
        QByteArray key, message;
        files::Descriptor dots;  // of memory that the other process fills
    };
    using Kept = std::pair<QByteArray, render::DecodedImage>;

    static QString ownProgram();
    void startNext();
    void readAnswer();
    void fail();
    void end(render::DecodedImage decoded);
    void keep(QByteArray key, render::DecodedImage decoded);

    QString program_;
    std::deque<Request> requests_;  // the first is being done while the process runs it
    bool isRunning_ = false;
    std::unique_ptr<QProcess> process_;
    int processes_ = 0;  // until now
    QByteArray answer_;
    QTimer deadline_, told_;
    std::list<Kept> kept_;  // the newest first
    double dots_ = 0;       // of those
};

// An ImageDecoder that waits, for what is painted once.
class WaitingDecoder : public render::ImageDecoder {
  public:
    explicit WaitingDecoder(ImageWorker* worker) : worker_(*worker) {}
    std::optional<render::DecodedImage> decode(const render::ImageSource& source,
                                               const render::ImageAccess& access) override;

  private:
    ImageWorker& worker_;
};

}  // namespace quorvel::desktop
