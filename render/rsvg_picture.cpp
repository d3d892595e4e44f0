#include "render/rsvg_picture.h"

#include <gio/gio.h>
#include <librsvg/rsvg.h>

#include <memory>

namespace quorvel::render {

namespace {

struct Release {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

}  // namespace

bool drawSvgText(const std::string& text, QImage* picture) {
    const std::unique_ptr<GInputStream, Release> stream(
        g_memory_input_stream_new_from_data(text.data(), static_cast<gssize>(text.size()), nullptr));
    // Without an address of its own a text can refer to nothing outside. Without the flag, long texts are refused.
    const std::unique_ptr<RsvgHandle, Release> handle(
        rsvg_handle_new_from_stream_sync(stream.get(), nullptr, RSVG_HANDLE_FLAG_UNLIMITED, nullptr, nullptr));
    if (handle == nullptr) return false;
    rsvg_handle_set_dpi(handle.get(), 96);
    const std::unique_ptr<cairo_surface_t, Release> surface(
        cairo_image_surface_create_for_data(picture->bits(), CAIRO_FORMAT_ARGB32, picture->width(), picture->height(),
                                            static_cast<int>(picture->bytesPerLine())));
    const std::unique_ptr<cairo_t, Release> context(cairo_create(surface.get()));
    const RsvgRectangle page{0, 0, double(picture->width()), double(picture->height())};
    const bool isDrawn = rsvg_handle_render_document(handle.get(), context.get(), &page, nullptr) != FALSE;
    cairo_surface_flush(surface.get());
    return isDrawn && cairo_status(context.get()) == CAIRO_STATUS_SUCCESS;
}

}  // namespace quorvel::render
