#include "fonts/faces.h"

#include <fontconfig/fontconfig.h>
#include <fribidi.h>
#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <map>
#include <memory>
#include <tuple>
#include <unordered_map>

namespace quorvel::fonts {
namespace {

constexpr int kMostFamilies = 64;          // of one CSS list that are looked for
constexpr std::size_t kMostQueries = 256;  // whose orders of substitutes are kept; each takes up to a megabyte
constexpr std::string_view kInitialFamilies = "Times New Roman, serif";

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

// For the life of the process, as the faces are.
FcConfig* configuration() {
    static FcConfig* const config = FcInitLoadConfigAndFonts();
    return config;
}

std::string textOf(FcPattern* pattern, const char* object) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, object, 0, &text) == FcResultMatch ? reinterpret_cast<const char*>(text) : "";
}

void applyVariations(const std::string& variations, hb_font_t* font) {
    std::vector<hb_variation_t> axes;
    for (std::size_t at = 0; at < variations.size();) {
        const std::size_t end = std::min(variations.find(',', at), variations.size());
        hb_variation_t axis{};
        if (hb_variation_from_string(variations.data() + at, static_cast<int>(end - at), &axis)) axes.push_back(axis);
        at = end + 1;
    }
    if (!axes.empty()) hb_font_set_variations(font, axes.data(), static_cast<unsigned>(axes.size()));
}

// A font that cannot be read has no glyphs, and is passed over by its lack of characters.
std::unique_ptr<Face> openFace(const std::string& file, int index, const std::string& variations, double slant) {
    auto face = std::make_unique<Face>(Face{file, index & 0xFFFF, variations, slant, nullptr, 1000});
    hb_blob_t* blob = hb_blob_create_from_file(file.c_str());
    hb_face_t* opened = hb_face_create(blob, static_cast<unsigned>(face->index));
    face->font = hb_font_create(opened);
    face->unitsPerEm = std::max(1U, hb_face_get_upem(opened));
    applyVariations(variations, face->font);
    hb_font_extents_t extents{};
    if (hb_font_get_h_extents(face->font, &extents)) {
        face->ascent = extents.ascender / face->unitsPerEm;
        face->descent = extents.descender / face->unitsPerEm;
    }
    hb_position_t height = 0;
    if (hb_ot_metrics_get_position(face->font, HB_OT_METRICS_TAG_X_HEIGHT, &height) && height > 0)
        face->xHeight = height / face->unitsPerEm;
    hb_face_destroy(opened);
    hb_blob_destroy(blob);
    return face;
}

const Face* faceOf(FcPattern* query, FcPattern* font) {
    static std::map<std::tuple<std::string, int, std::string, double>, std::unique_ptr<Face>> opened;
    const Owned<FcPattern> prepared(FcFontRenderPrepare(configuration(), query, font));
    if (prepared == nullptr) return nullptr;
    int index = 0;
    FcPatternGetInteger(prepared.get(), FC_INDEX, 0, &index);
    FcMatrix* matrix = nullptr;
    FcPatternGetMatrix(prepared.get(), FC_MATRIX, 0, &matrix);
    const std::string file = textOf(prepared.get(), FC_FILE);
    const std::string variations = textOf(prepared.get(), FC_FONT_VARIATIONS);
    const double slant = matrix != nullptr ? matrix->xy : 0;
    std::unique_ptr<Face>& face = opened[{file, index, variations, slant}];
    if (face == nullptr) face = openFace(file, index, variations, slant);
    return face.get();
}

// One query's fonts, the nearest first.
class Substitutes {
  public:
    explicit Substitutes(const FaceQuery& query) : query_(FcPatternCreate()) {
        addFamilies(query.families.empty() ? kInitialFamilies : query.families);
        FcPatternAddInteger(query_.get(), FC_WEIGHT, FcWeightFromOpenType(query.weight));
        FcPatternAddInteger(query_.get(), FC_SLANT, query.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(query_.get(), FC_SCALABLE, FcTrue);
        FcConfigSubstitute(configuration(), query_.get(), FcMatchPattern);
        FcDefaultSubstitute(query_.get());
        FcResult result = FcResultNoMatch;
        set_.reset(FcFontSort(configuration(), query_.get(), FcFalse, nullptr, &result));
        if (set_ != nullptr) faces_.resize(static_cast<std::size_t>(set_->nfont), nullptr);
    }

    const Face* faceFor(char32_t character) {
        const auto [place, isNew] = byCharacter_.try_emplace(character, 0);
        if (isNew) place->second = find(character);
        return face(place->second);
    }

  private:
    void addFamilies(std::string_view list) {
        constexpr std::string_view kAround = " \t\r\n\"'";
        for (int i = 0; i < kMostFamilies && !list.empty(); ++i) {
            const std::size_t comma = list.find(',');
            std::string_view name = list.substr(0, comma);
            list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
            const std::size_t first = name.find_first_not_of(kAround);
            if (first == std::string_view::npos) continue;
            const std::string family(name.substr(first, name.find_last_not_of(kAround) - first + 1));
            FcPatternAddString(query_.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
        }
    }

    std::size_t find(char32_t character) const {
        for (int i = 0; set_ != nullptr && i < set_->nfont; ++i) {
            FcCharSet* characters = nullptr;
            if (FcPatternGetCharSet(set_->fonts[i], FC_CHARSET, 0, &characters) == FcResultMatch &&
                FcCharSetHasChar(characters, character))
                return static_cast<std::size_t>(i);
        }
        return 0;
    }

    const Face* face(std::size_t number) {
        if (number >= faces_.size()) return nullptr;
        if (faces_[number] == nullptr) faces_[number] = faceOf(query_.get(), set_->fonts[number]);
        return faces_[number];
    }

    Owned<FcPattern> query_;
    Owned<FcFontSet> set_;
    std::vector<const Face*> faces_;
    std::unordered_map<char32_t, std::size_t> byCharacter_;
};

}  // namespace

const Face* faceFor(const FaceQuery& query, char32_t character) {
    static std::map<std::tuple<std::string, int, bool>, Substitutes> known;
    static FaceQuery lastQuery;
    static std::string lastFamilies;
    static Substitutes* last = nullptr;
    if (last == nullptr || query != lastQuery) {
        if (known.size() >= kMostQueries) known.clear();
        const std::tuple key(std::string(query.families), query.weight, query.isItalic);
        const auto found = known.find(key);
        last = found != known.end() ? &found->second : &known.try_emplace(key, query).first->second;
        lastFamilies = query.families;
        lastQuery = {lastFamilies, query.weight, query.isItalic};
    }
    return last->faceFor(character);
}

std::vector<ShapedGlyph> shape(std::u32string_view text, const ShapingRun& run) {
    const Owned<hb_buffer_t> buffer(hb_buffer_create());
    static_assert(sizeof(char32_t) == sizeof(hb_codepoint_t));
    hb_buffer_add_codepoints(buffer.get(), reinterpret_cast<const hb_codepoint_t*>(text.data()),
                             static_cast<int>(text.size()), static_cast<unsigned>(run.begin),
                             static_cast<int>(run.end - run.begin));
    hb_buffer_guess_segment_properties(buffer.get());
    hb_buffer_set_direction(buffer.get(), run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    static constexpr hb_feature_t kNoLigatures[] = {
        {HB_TAG('l', 'i', 'g', 'a'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
        {HB_TAG('c', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END}};
    hb_shape(run.face->font, buffer.get(), kNoLigatures, run.hasLigatures ? 0 : 2);
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer.get(), &count);
    std::vector<ShapedGlyph> glyphs(count);
    for (unsigned i = 0; i < count; ++i) {
        const double unit = 1 / run.face->unitsPerEm;
        glyphs[i] = {infos[i].codepoint, infos[i].cluster, positions[i].x_advance * unit, positions[i].x_offset * unit,
                     positions[i].y_offset * unit};
    }
    return glyphs;
}

std::vector<signed char> bidiLevels(std::u32string_view text, bool isRightToLeft) {
    std::vector<signed char> levels(text.size(), isRightToLeft ? 1 : 0);
    // All that is below the first right-to-left script, as most texts are.
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char32_t c) { return c < 0x590; });
    if (text.empty() || (isPlain && !isRightToLeft)) return levels;
    static_assert(sizeof(char32_t) == sizeof(FriBidiChar));
    const auto* characters = reinterpret_cast<const FriBidiChar*>(text.data());
    const auto count = static_cast<FriBidiStrIndex>(text.size());
    std::vector<FriBidiCharType> types(text.size());
    std::vector<FriBidiBracketType> brackets(text.size());
    fribidi_get_bidi_types(characters, count, types.data());
    fribidi_get_bracket_types(characters, count, types.data(), brackets.data());
    FriBidiParType direction = isRightToLeft ? FRIBIDI_PAR_RTL : FRIBIDI_PAR_LTR;
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &direction, levels.data()) == 0)
        levels.assign(text.size(), isRightToLeft ? 1 : 0);
    return levels;
}

std::uint32_t scriptOf(char32_t character) {
    const hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), character);
    const bool hasNone = script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
    return hasNone ? 0 : static_cast<std::uint32_t>(script);
}

}  // namespace quorvel::fonts
