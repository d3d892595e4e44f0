// First all runs are shaped, then lengths are adjusted, then each chunk is placed: a chunk begins where the text says
// an absolute place, and is anchored as a whole.
#include "render/text/text_layout.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/text.h"
#include "render/outline.h"
#include "render/text/glyph_outlines.h"

namespace quorvel::render {
namespace {

constexpr std::size_t kLongestText = 20'000;  // longer ones are painted as the document measures them
constexpr std::size_t kMostGlyphs = 500'000;  // of all layouts that are kept; about 60 MB

// An instance's art has no record: it is written anew as soon as it is changed.
bool isAsRead(const interchange::SvgSource& source, const doc::Art& art) {
    const std::int32_t origin = source.record(art.ref.index).text;
    if (origin < 0) return source.element(art.ref.index).isInstance;
    return source.texts[static_cast<std::size_t>(origin)].wording == interchange::textHash(*art.text, true);
}

struct Run {
    fonts::ShapingRun shaping;
    std::size_t style = 0;
    signed char level = 0;
    std::vector<fonts::ShapedGlyph> glyphs;
};

// How far the baseline that is to be at the text's height is above the alphabetic one, in shares of the font size.
double heightOf(svg::Baseline baseline, const fonts::Face& face) {
    switch (baseline) {
        case svg::Baseline::kTextTop:
            return face.ascent;
        case svg::Baseline::kTextBottom:
            return face.descent;
        case svg::Baseline::kCentral:
            return (face.ascent + face.descent) / 2;
        case svg::Baseline::kMiddle:
            return face.xHeight / 2;
        case svg::Baseline::kHanging:
            return face.ascent * 0.8;  // as fonts without a table of baselines are set elsewhere
        case svg::Baseline::kMathematical:
            return face.ascent / 2;
        default:
            return 0;
    }
}

class Layouter {
  public:
    explicit Layouter(const TextCharacters& text)
        : text_(text), extra_(text.text.size(), 0.0), stretch_(text.text.size(), 1.0) {}

    TextLayout layOut() {
        shapeRuns();
        for (const TextLengthRange& range : text_.lengths) adjust(range);
        for (std::size_t first = 0; first < runs_.size();) {
            std::size_t last = first + 1;
            while (last < runs_.size() && !startsChunk(runs_[last].shaping.begin)) ++last;
            placeChunk(first, last);
            first = last;
        }
        layout_.text = text_.text;
        return std::move(layout_);
    }

  private:
    const svg::ComputedStyle& styleAt(std::size_t character) const {
        return text_.styles[text_.characters[character].style];
    }
    bool startsChunk(std::size_t character) const {
        const TextCharacter& one = text_.characters[character];
        return character == 0 || one.x || one.y;
    }

    void shapeRuns() {
        const std::u32string& text = text_.text;
        if (text.empty()) return;
        const bool isRightToLeft = text_.styles.front().direction == svg::Direction::kRightToLeft;
        const std::vector<signed char> levels = fonts::bidiLevels(text, isRightToLeft);
        std::uint32_t script = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const std::size_t style = text_.characters[i].style;
            const std::uint32_t own = fonts::scriptOf(text[i]);
            // A mark is in the face of its letter.
            const bool joins = own == 0 && !runs_.empty() && runs_.back().style == style &&
                               runs_.back().shaping.face != nullptr && text[i] >= 0x300;
            const fonts::Face* face = joins ? runs_.back().shaping.face : faceAt(i);
            const bool isNew = runs_.empty() || startsChunk(i) || runs_.back().style != style ||
                               runs_.back().level != levels[i] || runs_.back().shaping.face != face ||
                               (own != 0 && script != 0 && own != script);
            if (isNew) {
                const bool hasLigatures = text_.styles[style].letterSpacing == 0;
                runs_.push_back({{face, i, i, (levels[i] & 1) != 0, hasLigatures}, style, levels[i], {}});
                script = 0;
            }
            if (own != 0) script = own;
            runs_.back().shaping.end = i + 1;
        }
        for (Run& run : runs_)
            if (run.shaping.face != nullptr) run.glyphs = fonts::shape(text, run.shaping);
    }

    const fonts::Face* faceAt(std::size_t character) const {
        const svg::ComputedStyle& style = styleAt(character);
        return fonts::faceFor({style.fontFamily, style.fontWeight, style.italic}, text_.text[character]);
    }

    // Of the glyph and of the space behind its cluster.
    double advanceOf(const Run& run, std::size_t glyph) const {
        const svg::ComputedStyle& style = text_.styles[run.style];
        const fonts::ShapedGlyph& shaped = run.glyphs[glyph];
        double advance = shaped.advance * style.fontSize * stretch_[shaped.cluster];
        if (glyph + 1 < run.glyphs.size() && run.glyphs[glyph + 1].cluster == shaped.cluster) return advance;
        advance += style.letterSpacing * stretch_[shaped.cluster] + extra_[shaped.cluster];
        const char32_t character = text_.text[shaped.cluster];
        if (character == ' ' || character == 0xA0) advance += style.wordSpacing * stretch_[shaped.cluster];
        return advance;
    }

    void adjust(const TextLengthRange& range) {
        double natural = 0;
        std::vector<std::uint32_t> clusters;
        for (const Run& run : runs_) {
            for (std::size_t i = 0; i < run.glyphs.size(); ++i) {
                const std::uint32_t cluster = run.glyphs[i].cluster;
                if (cluster < range.begin || cluster >= range.end) continue;
                natural += advanceOf(run, i);
                if (clusters.empty() || clusters.back() != cluster) clusters.push_back(cluster);
            }
        }
        if (!(natural > 0)) return;
        if (range.hasStretchedGlyphs) {
            for (const std::uint32_t cluster : clusters) {
                stretch_[cluster] *= range.length / natural;
                extra_[cluster] *= range.length / natural;
            }
        } else if (clusters.size() > 1) {
            const double extra = (range.length - natural) / double(clusters.size() - 1);
            for (const std::uint32_t cluster : clusters)
                if (cluster != clusters.back()) extra_[cluster] += extra;
        }
    }

    // The runs as they are read from left to right: sequences of the highest levels are turned round first.
    std::vector<std::size_t> visualOrder(std::size_t first, std::size_t last) const {
        std::vector<std::size_t> order;
        signed char highest = 0;
        for (std::size_t i = first; i < last; ++i) {
            order.push_back(i);
            highest = std::max(highest, runs_[i].level);
        }
        for (signed char level = highest; level > 0; --level) {
            for (std::size_t i = 0; i < order.size();) {
                std::size_t end = i;
                while (end < order.size() && runs_[order[end]].level >= level) ++end;
                std::reverse(order.begin() + static_cast<std::ptrdiff_t>(i),
                             order.begin() + static_cast<std::ptrdiff_t>(end));
                i = end + 1;
            }
        }
        return order;
    }

    void placeChunk(std::size_t first, std::size_t last) {
        const std::size_t begin = runs_[first].shaping.begin;
        const TextCharacter& start = text_.characters[begin];
        penX_ = start.x.value_or(penX_);
        penY_ = start.y.value_or(penY_);
        const std::vector<std::size_t> order = visualOrder(first, last);
        double width = 0;
        for (const std::size_t run : order)
            for (std::size_t i = 0; i < runs_[run].glyphs.size(); ++i) width += advanceOf(runs_[run], i);
        for (std::size_t i = begin + 1; i < runs_[last - 1].shaping.end; ++i) width += text_.characters[i].dx;
        const svg::ComputedStyle& style = styleAt(begin);
        ATEJustification anchor = style.anchor;
        if (style.direction == svg::Direction::kRightToLeft && anchor != kJustifyCenter)
            anchor = anchor == kJustifyLeft ? kJustifyRight : kJustifyLeft;
        if (anchor == kJustifyCenter) penX_ -= width / 2;
        if (anchor == kJustifyRight) penX_ -= width;
        for (const std::size_t run : order) place(runs_[run]);
    }

    void place(const Run& run) {
        const svg::ComputedStyle& style = text_.styles[run.style];
        GlyphRun out{run.shaping.face,
                     style.fontSize,
                     run.shaping.begin,
                     run.shaping.end,
                     text_.characters[run.shaping.begin].unit,
                     style.number,
                     style.visible,
                     {}};
        if (!(style.fontSize > 0) || out.face == nullptr) return;
        const bool isAligned = style.alignmentBaseline != svg::Baseline::kAuto;
        const double drop =
            heightOf(isAligned ? style.alignmentBaseline : style.dominantBaseline, *out.face) * style.fontSize -
            style.baselineShift;
        for (std::size_t i = 0; i < run.glyphs.size(); ++i) {
            const fonts::ShapedGlyph& glyph = run.glyphs[i];
            const TextCharacter& character = text_.characters[glyph.cluster];
            if (i == 0 || run.glyphs[i - 1].cluster != glyph.cluster) {
                penX_ += character.dx;
                penY_ += character.dy;
            }
            const double stretch = stretch_[glyph.cluster];
            QTransform there;
            there.translate(penX_, penY_);
            if (character.rotate) there.rotate(*character.rotate);
            there.translate(glyph.x * style.fontSize * stretch, -glyph.y * style.fontSize + drop);
            there.scale(style.fontSize * stretch, -style.fontSize);
            out.glyphs.push_back({glyph.id, glyph.cluster, there});
            penX_ += advanceOf(run, i);
        }
        layout_.box = layout_.box.united(out.outline().controlPointRect());
        layout_.runs.push_back(std::move(out));
    }

    const TextCharacters& text_;
    std::vector<double> extra_, stretch_;  // by character: behind it, and its own width
    std::vector<Run> runs_;
    TextLayout layout_;
    double penX_ = 0, penY_ = 0;
};

}  // namespace

QPainterPath GlyphRun::outline() const {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const PlacedGlyph& glyph : glyphs) path.addPath(glyph.place.map(glyphOutline(*face, glyph.id)));
    return path;
}

TextLayout layOut(const TextCharacters& characters) { return Layouter(characters).layOut(); }

const TextLayout* TextLayoutCache::of(const interchange::SvgSource* source, const doc::Art& art,
                                      QTransform* toDocument) {
    if (source == nullptr || art.ref.index < 0 || art.text == nullptr) return nullptr;
    if (art.text->text.size() > kLongestText) return nullptr;
    if (source->element(art.ref.index).role != svg::Role::kText) return nullptr;
    if (text_ != source->text || glyphs_ > kMostGlyphs) {
        text_ = source->text;
        layouts_.clear();
        glyphs_ = 0;
        source->tree.file->renewAllowance();
    }
    const svg::Affine& map = source->tree.map(art.ref.index);
    const auto [known, isNew] = layouts_.try_emplace(art.ref.index);
    if (isNew) {
        ++glyphs_;
        if (const auto characters = readTextCharacters(*source, art.ref.index); characters) {
            known->second = std::make_unique<TextLayout>(layOut(*characters));
            known->second->wording = characters->units;
            known->second->place = toQt(interchange::textMatrix(map, characters->x, characters->y));
            glyphs_ += characters->units.size();
        }
    }
    const TextLayout* layout = known->second.get();
    if (layout == nullptr || layout->wording != art.text->text || !isAsRead(*source, art)) return nullptr;
    const QTransform now = toQt(art.text->matrix);
    *toDocument = toQt(map);
    if (now != layout->place) *toDocument = *toDocument * layout->place.inverted() * now;
    return layout;
}

}  // namespace quorvel::render
