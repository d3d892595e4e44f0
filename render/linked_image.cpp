#include "render/linked_image.h"

#include <utility>

#include "render/paint_budget.h"

namespace quorvel::render {

namespace {

constexpr double kOfAnImage = 50'000, kOfADot = 10, kOfAByte = 1;  // nanoseconds
constexpr double kMostPixels = 2e8;                                // of all images of a drawing: 800 MB

Error leftOut(const std::string& href) {
    return makeError(ErrorCode::kImageLeftOut, {href.starts_with("data:") ? "data:" : href});
}

}  // namespace

LinkedImages::LinkedImages(ImageAccess access, ImageDecoder* decoder, DrawingsWithin within,
                           std::shared_ptr<PaintBudget> budget)
    : access_(std::move(access)), decoder_(decoder), within_(std::move(within)), budget_(std::move(budget)) {}

LinkedImage LinkedImages::decode(const ImageSource& source) {
    if (!budget_->take(kOfAnImage + double(source.size) * kOfAByte)) return {};
    std::optional<DecodedImage> decoded =
        decoder_ != nullptr ? decoder_->decode(source, access_) : decodeImage(source, access_, within_, budget_);
    if (!decoded) return {{}, true};
    for (const Error& warning : decoded->warnings) warn(warning);
    const double dots = double(decoded->image.width()) * decoded->image.height();
    pixels_ += dots;
    if (pixels_ > kMostPixels || !budget_->take(dots * kOfADot)) return {};
    return {std::move(decoded->image), false};
}

LinkedImage LinkedImages::read(const std::string& href) {
    const Result<ImageSource> source = imageSource(QString::fromStdString(href), access_);
    if (!source) {
        warn(source.error());
        return {};
    }
    const QByteArray key = source->key();
    auto decoded = decoded_.find(key);
    if (decoded == decoded_.end()) decoded = decoded_.emplace(key, decode(*source)).first;
    if (decoded->second.image.isNull() && !decoded->second.isWaiting) warn(leftOut(href));
    return decoded->second;
}

const LinkedImage& LinkedImages::of(const std::string& href) {
    const auto known = known_.find(href);
    if (known != known_.end()) return known->second;
    LinkedImage image = read(href);  // which may ask for others
    return known_.emplace(href, std::move(image)).first->second;
}

bool LinkedImages::forgetWaiting() {
    const auto isWaiting = [](const auto& known) { return known.second.isWaiting; };
    std::erase_if(decoded_, isWaiting);
    return std::erase_if(known_, isWaiting) > 0;
}

}  // namespace quorvel::render
