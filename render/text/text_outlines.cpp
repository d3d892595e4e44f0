// Glyphs are taken unhinted at one large size, kept, and scaled to each text.
#include "render/text/text_outlines.h"

#include <QHash>
#include <QRawFont>
#include <QTransform>
#include <memory>
#include <unordered_map>

#include "fonts/fonts.h"

namespace quorvel::render {

namespace {

constexpr double kGlyphSize = 1024;  // pixels
constexpr double kLeading = 1.2;     // em, as the host's bounds have it

bool endsLine(char32_t character) { return character == '\r' || character == '\n' || character == 3; }

const QRawFont& rawFont(const fonts::Font& font) {
    // Never destroyed: the toolkit's own font data may go before it when the program ends.
    static auto& loaded = *new std::unordered_map<const fonts::Font*, QRawFont>;
    const auto [place, added] = loaded.try_emplace(&font);
    if (added) {
        place->second = QRawFont(QString::fromStdString(font.file), kGlyphSize, QFont::PreferNoHinting);
    }
    return place->second;
}

// As the host measures: the font itself, else the first font that has the character.
const QRawFont& fontWith(const fonts::Font& font, char32_t character) {
    const QRawFont& own = rawFont(font);
    if (own.isValid() && own.supportsCharacter(character)) return own;
    for (const fonts::Font& other : fonts::fonts()) {
        const QRawFont& candidate = rawFont(other);
        if (candidate.isValid() && candidate.supportsCharacter(character)) return candidate;
    }
    return own;
}

// At size 1, y up.
const QPainterPath& glyph(const fonts::Font& font, char32_t character) {
    static std::unordered_map<const fonts::Font*, std::unordered_map<char32_t, QPainterPath>> kept;
    const auto [place, added] = kept[&font].try_emplace(character);
    if (!added) return place->second;
    const QRawFont& raw = fontWith(font, character);
    if (!raw.isValid()) return place->second;
    const QList<quint32> glyphs = raw.glyphIndexesForString(QString::fromUcs4(&character, 1));
    if (!glyphs.isEmpty())
        place->second = QTransform::fromScale(1 / kGlyphSize, -1 / kGlyphSize).map(raw.pathForGlyph(glyphs.first()));
    return place->second;
}

// One line's pieces, collected before its width is known.
struct Line {
    std::vector<TextPiece> pieces;
    double advance = 0, leading = 0;

    void add(const doc::CharFeatures& features, char32_t character) {
        leading = std::max(leading, kLeading * double(features.size));
        if (endsLine(character)) return;
        const fonts::Font* named = fonts::findFont(features.font);
        const fonts::Font& font = named != nullptr ? *named : fonts::fonts().front();
        const double width = double(features.size) * features.horizontalScale;
        const double height = double(features.size) * features.verticalScale;
        if (pieces.empty() || pieces.back().features != &features) pieces.push_back({{}, &features});
        pieces.back().outline.addPath(
            QTransform(width, 0, 0, height, advance, features.baselineShift).map(glyph(font, character)));
        advance += double(fonts::characterWidth(font, character)) * width;
    }
};

void finish(Line* line, ATEJustification justification, double baseline, std::vector<TextPiece>* pieces) {
    double left = 0;
    if (justification == kJustifyRight) left = -line->advance;
    if (justification == kJustifyCenter) left = -line->advance / 2;
    for (TextPiece& piece : line->pieces) {
        piece.outline.translate(left, baseline);
        piece.outline.setFillRule(Qt::WindingFill);
        pieces->push_back(std::move(piece));
    }
    *line = {};
}

}  // namespace

std::vector<TextPiece> textPieces(const doc::TextData& text) {
    std::vector<TextPiece> pieces;
    Line line;
    double baseline = 0;
    std::size_t unit = 0;
    for (const doc::TextRun& run : text.runs) {
        const std::size_t end = std::min(text.text.size(), unit + static_cast<std::size_t>(std::max(0, run.length)));
        const QString part = QString::fromUtf16(text.text.data() + unit, static_cast<qsizetype>(end - unit));
        for (const char32_t character : part.toUcs4()) {
            line.add(run.features, character);
            if (!endsLine(character)) continue;
            const double leading = line.leading;
            finish(&line, text.justification, baseline, &pieces);
            baseline -= leading;
        }
        unit = end;
    }
    finish(&line, text.justification, baseline, &pieces);
    return pieces;
}

}  // namespace quorvel::render
