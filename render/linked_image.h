// The images that a drawing names, each looked up and decoded once for all painters of the drawing.
#pragma once

#include <QByteArray>
#include <QImage>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>

#include "base/error.h"
#include "render/image_decoder.h"

namespace quorvel::render {

struct LinkedImage {
    QImage image;            // null while it is waited for, and for what is left out
    bool isWaiting = false;  // it may be there later
};

class LinkedImages {
  public:
    // decoder: null to decode in this process.
    LinkedImages(ImageAccess access, ImageDecoder* decoder, DrawingsWithin within, std::shared_ptr<PaintBudget> budget);

    // Good until forgetWaiting().
    const LinkedImage& of(const std::string& href);
    // What was waited for is asked for again. False when there is no such image.
    bool forgetWaiting();
    // Each image that cannot be shown, once.
    const std::set<Error>& warnings() const { return warnings_; }
    void warn(const Error& warning) { warnings_.insert(warning); }

  private:
    LinkedImage read(const std::string& href);
    LinkedImage decode(const ImageSource& source);

    ImageAccess access_;
    ImageDecoder* decoder_;
    DrawingsWithin within_;
    std::shared_ptr<PaintBudget> budget_;
    // By what the drawing says, and by the key of what that leads to: a file has names without number.
    std::unordered_map<std::string, LinkedImage> known_;
    std::unordered_map<QByteArray, LinkedImage> decoded_;
    double pixels_ = 0;  // of all
    std::set<Error> warnings_;
};

}  // namespace quorvel::render
