#include "desktop/files/image_worker.h"

#include <sys/mman.h>
#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>

#include "desktop/files/image_messages.h"

namespace quorvel::desktop {

namespace {

constexpr double kMostKept = 1e8;     // dots: 400 MB
constexpr int kBetweenTellings = 30;  // milliseconds: a painting for several images

}  // namespace

// Beside the program that runs, which is it, or a test of it.
QString ImageWorker::ownProgram() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/quorvel-desktop");
}

ImageWorker::ImageWorker(QString program, int milliseconds) : program_(std::move(program)) {
    deadline_.setSingleShot(true);
    deadline_.setInterval(milliseconds);
    connect(&deadline_, &QTimer::timeout, this, &ImageWorker::fail);
    told_.setSingleShot(true);
    told_.setInterval(kBetweenTellings);
    connect(&told_, &QTimer::timeout, this, &ImageWorker::imagesDecoded);
}

ImageWorker::~ImageWorker() {
    if (process_ == nullptr) return;
    process_->disconnect(this);
    process_->kill();
    process_->waitForFinished();
}

std::optional<render::DecodedImage> ImageWorker::decode(const render::ImageSource& source,
                                                        const render::ImageAccess& access) {
    const QByteArray key = source.key() + '\n' + access.base.toUtf8() + (access.isEverywhere ? "\n+" : "\n-");
    const auto known = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& kept) { return kept.first == key; });
    if (known != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, known);
        return known->second;
    }
    if (std::any_of(requests_.begin(), requests_.end(), [&](const Request& one) { return one.key == key; }))
        return std::nullopt;
    files::Descriptor dots(::memfd_create("quorvel image", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const QString path = QStringLiteral("/proc/%1/fd/%2").arg(::getpid()).arg(dots.get());
    requests_.push_back({key, messageOf(ImageRequest{source, access, path}), std::move(dots)});
    startNext();
    return std::nullopt;
}

void ImageWorker::startNext() {
    if (isRunning_ || requests_.empty()) return;
    isRunning_ = true;
    if (process_ == nullptr) {
        process_ = std::make_unique<QProcess>();
        process_->setStandardErrorFile(QProcess::nullDevice());
        connect(process_.get(), &QProcess::readyReadStandardOutput, this, &ImageWorker::readAnswer);
        const auto gone = [this, process = ++processes_] {
            if (process == processes_) fail();
        };
        // Queued: a program that cannot be started says so while it is being started.
        connect(process_.get(), &QProcess::errorOccurred, this, gone, Qt::QueuedConnection);
        connect(process_.get(), &QProcess::finished, this, gone, Qt::QueuedConnection);
        process_->start(program_, {QLatin1String(kDecodeImages)});
    }
    answer_.clear();
    process_->write(requests_.front().message);
    deadline_.start();
}

void ImageWorker::readAnswer() {
    answer_ += process_->readAllStandardOutput();
    if (!isRunning_) return;
    if (const std::optional<QByteArray> message = takeMessage(&answer_))
        end(answerOf(*message, requests_.front().dots.get()));
}

// The image is given up, and the process with it.
void ImageWorker::fail() {
    if (process_ != nullptr) {
        process_->disconnect(this);
        process_->kill();
        process_.release()->deleteLater();  // it may be what calls
    }
    if (isRunning_) end({});
}

void ImageWorker::end(render::DecodedImage decoded) {
    deadline_.stop();
    isRunning_ = false;
    keep(requests_.front().key, std::move(decoded));
    requests_.pop_front();
    if (!told_.isActive()) told_.start();
    startNext();
}

void ImageWorker::keep(QByteArray key, render::DecodedImage decoded) {
    const auto dotsOf = [](const Kept& kept) { return double(kept.second.image.width()) * kept.second.image.height(); };
    kept_.emplace_front(std::move(key), std::move(decoded));
    dots_ += dotsOf(kept_.front());
    for (; dots_ > kMostKept && kept_.size() > 1; kept_.pop_back()) dots_ -= dotsOf(kept_.back());
}

void ImageWorker::finish() {
    while (!requests_.empty()) {
        const QByteArray key = requests_.front().key;
        const bool isAnswered = process_ != nullptr && process_->waitForReadyRead(deadline_.interval());
        if (!isAnswered && !requests_.empty() && requests_.front().key == key) fail();
    }
}

std::optional<render::DecodedImage> WaitingDecoder::decode(const render::ImageSource& source,
                                                           const render::ImageAccess& access) {
    if (auto decoded = worker_.decode(source, access)) return decoded;
    worker_.finish();
    return worker_.decode(source, access);
}

}  // namespace quorvel::desktop
