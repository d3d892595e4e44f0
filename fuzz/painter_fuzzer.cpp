// Any bytes as a drawing that is painted small: in one go and item by item it gives the same picture, and it can be
// written as PDF.
#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "interchange/svg/svg.h"
#include "render/painter.h"

using namespace quorvel;
using fuzz::require;

namespace {

constexpr int kSide = 48;  // pixels

class Picture {
  public:
    explicit Picture(const doc::Document& document) : painter_(document, QString()) {
        const double scale = kSide / double(std::max(document.width(), document.height()));
        toDevice_ = QTransform(scale, 0, 0, -scale, 0, scale * document.height());
        image_.fill(Qt::white);
    }

    QImage atOnce() {
        QPainter on(&image_);
        painter_.paint(&on, toDevice_, clip_, {});
        return image_;
    }
    QImage itemByItem() {
        QPainter on(&image_);
        const auto items = painter_.order(toDevice_, clip_, {});
        for (std::size_t next = 0; next < items.size();) {
            const std::size_t former = next;
            next = painter_.paintItems(&on, toDevice_, clip_, {}, items, next, QDeadlineTimer(0));
            require(next > former);
        }
        return image_;
    }

  private:
    render::DocumentPainter painter_;
    QTransform toDevice_;
    QRectF clip_{0, 0, kSide, kSide};
    QImage image_{kSide, kSide, QImage::Format_ARGB32_Premultiplied};
};

void writePdf(const doc::Document& document) {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    {
        QPdfWriter pdf(&bytes);
        QPainter on(&pdf);
        render::DocumentPainter(document, QString()).paint(&on, {}, QRectF(-1e4, -1e4, 2e4, 2e4), {});
    }
    require(bytes.data().trimmed().endsWith("%%EOF"));
}

}  // namespace

// The font libraries keep what they have read until the process ends.
extern "C" int __lsan_is_turned_off() { return 1; }

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication application(*argc, *argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = interchange::readSvg(std::string(reinterpret_cast<const char*>(data), size));
    if (!read) return 0;
    const doc::Document& document = *read->document;
    require(Picture(document).atOnce() == Picture(document).itemByItem());
    constexpr std::size_t kOneIn = 4;  // a PDF takes longer than a picture
    if (size % kOneIn == 0) writePdf(document);
    return 0;
}
