// Fields are parted by blanks, their parts by commas; texts are encoded so that they hold neither.
#include "interchange/svg/exact_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/own_attributes.h"
#include "svg/values/number.h"

namespace quorvel::interchange {
namespace {

// Blanks and commas part the fields.
std::string encodeField(std::string_view bytes) {
    std::string out;
    for (char c : encodeBytes(bytes)) {
        if (c == ' ') {
            out += "%20";
        } else if (c == ',') {
            out += "%2C";
        } else {
            out += c;
        }
    }
    return out;
}

std::vector<std::string_view> split(std::string_view text, char mark) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(mark, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

void appendFloat(std::string* out, float value) { svg::appendNumber(out, svg::localLength(1, value)); }

std::optional<float> readFloat(std::string_view text) {
    const char* at = text.data();
    double value = 0;
    if (!svg::readNumber(&at, text.data() + text.size(), &value) || at != text.data() + text.size())
        return std::nullopt;
    const auto result = static_cast<float>(value);
    if (!std::isfinite(result)) return std::nullopt;
    return result;
}

void appendColor(std::string* out, const AIColor& color, const PaintSources& sources) {
    *out += ',' + colorSpec(color);
    const auto number = static_cast<std::size_t>(color.reference);
    if (color.reference > 0 && number <= sources.size()) *out += '@' + encodeField(sources[number - 1]);
}

void appendRun(std::string* out, const doc::TextRun& run, const PaintSources& sources) {
    const doc::CharFeatures& f = run.features;
    *out += " r=" + std::to_string(run.length);
    for (float value : {f.size, f.horizontalScale, f.verticalScale, f.baselineShift, f.miterLimit}) {
        *out += ',';
        appendFloat(out, value);
    }
    *out += f.fillOn ? ",1" : ",0";
    *out += f.strokeOn ? ",1" : ",0";
    appendColor(out, f.fill, sources);
    appendColor(out, f.stroke, sources);
    *out += ',' + encodeField(f.font);
}

bool readMatrix(std::string_view value, RealMatrix* matrix) {
    const auto parts = split(value, ',');
    float* const fields[] = {&matrix->a, &matrix->b, &matrix->c, &matrix->d, &matrix->tx, &matrix->ty};
    if (parts.size() != 6) return false;
    for (std::size_t i = 0; i < 6; ++i) {
        const auto number = readFloat(parts[i]);
        if (!number) return false;
        *fields[i] = *number;
    }
    return true;
}

bool readColor(std::string_view value, const svg::Affine& toDocument, PaintLookup* paints, AIColor* color,
               std::vector<std::string>* keep) {
    const std::size_t at = value.find('@');
    const std::optional<AIColor> read = parseColorSpec(value.substr(0, at));
    if (!read) return false;
    *color = *read;
    if (at != std::string_view::npos) {
        keep->push_back(decodeBytes(value.substr(at + 1)));
        color->reference = paints->paintOf(keep->back(), toDocument).reference;
    }
    return true;
}

bool readRun(std::string_view value, const svg::Affine& toDocument, PaintLookup* paints, doc::TextRun* run) {
    const auto parts = split(value, ',');
    if (parts.size() != 11) return false;
    doc::CharFeatures& f = run->features;
    float* const fields[] = {&f.size, &f.horizontalScale, &f.verticalScale, &f.baselineShift, &f.miterLimit};
    const auto length = readFloat(parts[0]);
    if (!length || !(*length >= 0 && *length < 1e9F)) return false;
    std::from_chars(parts[0].data(), parts[0].data() + parts[0].size(), run->length);
    for (std::size_t i = 0; i < 5; ++i) {
        const auto number = readFloat(parts[i + 1]);
        if (!number) return false;
        *fields[i] = *number;
    }
    f.fillOn = parts[6] == "1";
    f.strokeOn = parts[7] == "1";
    f.font = decodeBytes(parts[10]);
    std::vector<std::string> keep;
    return readColor(parts[8], toDocument, paints, &f.fill, &keep) &&
           readColor(parts[9], toDocument, paints, &f.stroke, &keep);
}

bool readFrame(std::string_view value, doc::TextData* text) {
    const auto parts = split(value, ',');
    if (parts.size() != 5) return false;
    std::array<float, 5> numbers{};
    for (std::size_t i = 0; i < 5; ++i) {
        const auto number = readFloat(parts[i]);
        if (!number) return false;
        numbers[i] = *number;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (!(numbers[i] >= 0 && numbers[i] <= 2)) return false;
    }
    text->type = static_cast<AITextFrameType>(numbers[0]);
    text->orientation = static_cast<AITextOrientation>(std::min(numbers[1], 1.0F));
    text->justification = static_cast<ATEJustification>(numbers[2]);
    text->firstLineIndent = numbers[3];
    text->startIndent = numbers[4];
    return true;
}

std::u16string readUnits(std::string_view value) {
    const std::string units = decodeBytes(value);
    std::u16string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] == '\x1B' && i + 2 < units.size()) {
            text += static_cast<char16_t>(static_cast<unsigned char>(units[i + 1]) << 8 |
                                          static_cast<unsigned char>(units[i + 2]));
            i += 2;
        } else {
            text += static_cast<char16_t>(static_cast<unsigned char>(units[i]));
        }
    }
    return text;
}

}  // namespace

bool sameMatrix(const RealMatrix& a, const RealMatrix& b) {
    return a.a == b.a && a.b == b.b && a.c == b.c && a.d == b.d && a.tx == b.tx && a.ty == b.ty;
}

std::string fingerprintOf(const doc::TextData& plain) {
    ArtHash print;
    const RealMatrix& m = plain.matrix;
    for (float value : {m.a, m.b, m.c, m.d, m.tx, m.ty}) print.add(value);
    print.add(textHash(plain, false));
    std::array<char, 17> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), print.value(), 16).ptr;
    return {digits.data(), end};
}

void appendMatrix(std::string* out, const RealMatrix& m) {
    *out += " m=";
    for (float value : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
        if (out->back() != '=') *out += ',';
        appendFloat(out, value);
    }
}

// UTF-16 units that are no text are kept as units.
void appendWording(std::string* out, const doc::TextData& text, const PaintSources& sources) {
    *out += " w=" + std::to_string(text.type) + ',' + std::to_string(text.orientation) + ',' +
            std::to_string(text.justification) + ',';
    appendFloat(out, text.firstLineIndent);
    *out += ',';
    appendFloat(out, text.startIndent);
    std::string units;
    for (char16_t unit : text.text) {
        if (unit < 0x80 && unit != 0x1B) {
            units += static_cast<char>(unit);
        } else {
            units += {'\x1B', static_cast<char>(unit >> 8), static_cast<char>(unit & 255)};
        }
    }
    *out += " t=" + encodeField(units);
    for (const doc::TextRun& run : text.runs) appendRun(out, run, sources);
}

void applyExact(std::string_view attribute, const svg::Affine& toDocument, PaintLookup* paints, doc::TextData* text) {
    const auto fields = split(attribute, ' ');
    if (fields.empty() || fields[0] != fingerprintOf(*text)) return;
    doc::TextData exact = *text;
    bool worded = false;
    for (std::size_t i = 1; i < fields.size(); ++i) {
        if (fields[i].size() < 2 || fields[i][1] != '=') return;
        const std::string_view value = fields[i].substr(2);
        switch (fields[i][0]) {
            case 'm':
                if (!readMatrix(value, &exact.matrix)) return;
                break;
            case 'w':
                if (!readFrame(value, &exact)) return;
                exact.runs.clear();
                worded = true;
                break;
            case 't':
                exact.text = readUnits(value);
                break;
            case 'r':
                if (!worded || !readRun(value, toDocument, paints, &exact.runs.emplace_back())) return;
                break;
            default:
                return;
        }
    }
    std::int64_t units = 0;
    for (const doc::TextRun& run : exact.runs) units += run.length;
    if (exact.runs.empty() || units != static_cast<std::int64_t>(exact.text.size())) return;
    *text = std::move(exact);
}

std::string exactMatrix(const doc::TextData& text, const RealMatrix& plain) {
    if (sameMatrix(text.matrix, plain)) return "";
    doc::TextData without = text;
    without.matrix = plain;
    std::string exact = fingerprintOf(without);
    appendMatrix(&exact, text.matrix);
    return exact;
}

}  // namespace quorvel::interchange
