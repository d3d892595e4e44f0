#include "render/text/glyph_outlines.h"

#include <hb.h>

#include <QTransform>
#include <unordered_map>

namespace quorvel::render {
namespace {

constexpr std::size_t kMostGlyphs = 20'000;  // of one face; about 60 MB of the most complicated

QPainterPath& pathOf(void* data) { return *static_cast<QPainterPath*>(data); }

hb_draw_funcs_t* drawing() {
    static hb_draw_funcs_t* const functions = [] {
        hb_draw_funcs_t* made = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(
            made, [](auto*, void* data, auto*, float x, float y, void*) { pathOf(data).moveTo(x, y); }, nullptr,
            nullptr);
        hb_draw_funcs_set_line_to_func(
            made, [](auto*, void* data, auto*, float x, float y, void*) { pathOf(data).lineTo(x, y); }, nullptr,
            nullptr);
        hb_draw_funcs_set_quadratic_to_func(
            made,
            [](auto*, void* data, auto*, float cx, float cy, float x, float y, void*) {
                pathOf(data).quadTo(cx, cy, x, y);
            },
            nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(
            made,
            [](auto*, void* data, auto*, float ax, float ay, float bx, float by, float x, float y, void*) {
                pathOf(data).cubicTo(ax, ay, bx, by, x, y);
            },
            nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(
            made, [](auto*, void* data, auto*, void*) { pathOf(data).closeSubpath(); }, nullptr, nullptr);
        hb_draw_funcs_make_immutable(made);
        return made;
    }();
    return functions;
}

}  // namespace

const QPainterPath& glyphOutline(const fonts::Face& face, std::uint32_t glyph) {
    static std::unordered_map<const fonts::Face*, std::unordered_map<std::uint32_t, QPainterPath>> known;
    auto& ofFace = known[&face];
    if (ofFace.size() >= kMostGlyphs) ofFace.clear();
    const auto [place, isNew] = ofFace.try_emplace(glyph);
    if (!isNew) return place->second;
    QPainterPath outline;
    hb_font_get_glyph_shape(face.font, glyph, drawing(), &outline);
    const double unit = 1 / face.unitsPerEm;
    place->second = QTransform(unit, 0, face.slant * unit, unit, 0, 0).map(outline);
    return place->second;
}

}  // namespace quorvel::render
