#include "svg/markup/entities.h"

#include <algorithm>
#include <charconv>

#include "svg/markup/lines.h"
#include "svg/markup/scan.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

// Entities are for names of namespaces and single signs; more than that is an attack.
constexpr std::size_t kMostEntities = 64;
constexpr std::size_t kLongestEntity = 2048;

}  // namespace

Result<XmlEntities> readEntities(std::string_view prolog, bool* passedMarkup) {
    XmlEntities entities;
    for (std::size_t at = prolog.find("<!ENTITY"); at != std::string_view::npos; at = prolog.find("<!ENTITY", at + 8)) {
        const auto refusal = [&](ErrorCode code) { return atLine(prolog, at, code); };
        const std::size_t name = prolog.find_first_not_of(" \t\r\n", at + 8);
        const std::size_t nameEnd = prolog.find_first_of(" \t\r\n", name);
        const std::size_t open = prolog.find_first_not_of(" \t\r\n", nameEnd);
        if (open == std::string_view::npos) return refusal(ErrorCode::kBrokenEntity);
        if (prolog[open] != '"' && prolog[open] != '\'') return refusal(ErrorCode::kExternalEntity);
        const std::size_t close = prolog.find(prolog[open], open + 1);
        if (close == std::string_view::npos) return refusal(ErrorCode::kBrokenEntity);
        const std::string_view value = prolog.substr(open + 1, close - open - 1);
        if (value.find('%') != std::string_view::npos) return refusal(ErrorCode::kNestedEntity);
        if (value.find('<') != std::string_view::npos) {
            *passedMarkup = true;
            continue;
        }
        std::size_t allowance = kLongestEntity;
        const std::optional<std::string> plain = expandText(value, entities, &allowance);
        if (entities.size() == kMostEntities || !plain || plain->size() > kLongestEntity)
            return refusal(ErrorCode::kEntitiesTooMany);
        entities.push_back({std::string(prolog.substr(name, nameEnd - name)), *plain});
    }
    return entities;
}

std::optional<std::string> expandText(std::string_view text, const XmlEntities& entities, std::size_t* allowance) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t mark = std::min(text.find('&', at), text.size());
        out += text.substr(at, mark - at);
        at = mark;
        if (at == text.size()) break;
        const std::size_t end = std::min(text.find_first_of("&;", at + 1), text.size());
        const auto entity = std::ranges::find(entities, text.substr(at + 1, end - at - 1), &XmlEntity::name);
        if (end == text.size() || text[end] == '&' || entity == entities.end()) {
            out += text.substr(at, end - at);
            at = end;
            continue;
        }
        if (entity->value.size() > *allowance) return std::nullopt;
        *allowance -= entity->value.size();
        out += entity->value;
        at = end + 1;
    }
    return out;
}

std::string escapeXml(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 8);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\n':
                out += "&#10;";
                break;
            case '\r':
                out += "&#13;";
                break;
            case '\t':
                out += "&#9;";
                break;
            case '\xEF':  // U+FFFE and U+FFFF
                if (text.substr(i, 3) == "\xEF\xBF\xBE" || text.substr(i, 3) == "\xEF\xBF\xBF") {
                    i += 2;
                } else {
                    out += c;
                }
                break;
            default:
                if (static_cast<unsigned char>(c) >= ' ') out += c;
        }
    }
    return out;
}

namespace {

void appendUtf8(std::string* out, unsigned code) {
    if (code < 0x80) {
        *out += static_cast<char>(code);
    } else if (code < 0x800) {
        *out += static_cast<char>(0xC0 | code >> 6);
        *out += static_cast<char>(0x80 | (code & 63));
    } else if (code < 0x10000) {
        *out += static_cast<char>(0xE0 | code >> 12);
        *out += static_cast<char>(0x80 | (code >> 6 & 63));
        *out += static_cast<char>(0x80 | (code & 63));
    } else if (code < 0x110000) {
        *out += static_cast<char>(0xF0 | code >> 18);
        *out += static_cast<char>(0x80 | (code >> 12 & 63));
        *out += static_cast<char>(0x80 | (code >> 6 & 63));
        *out += static_cast<char>(0x80 | (code & 63));
    }
}

// False when it is none that XML knows by itself.
bool appendEntity(std::string* out, std::string_view name) {
    struct Entity {
        std::string_view name;
        char character;
    };
    static constexpr Entity kEntities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const Entity& entity : kEntities) {
        if (entity.name == name) {
            *out += entity.character;
            return true;
        }
    }
    if (!name.starts_with('#')) return false;
    const bool hex = name.size() > 1 && name[1] == 'x';
    const std::string_view digits = name.substr(hex ? 2 : 1);
    unsigned code = 0;
    const auto [end, status] = std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
    if (status != std::errc() || end != digits.data() + digits.size()) return false;
    appendUtf8(out, code);
    return true;
}

}  // namespace

std::string unescapeXml(std::string_view text, const XmlEntities& entities) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&') {
            const std::size_t end = std::min(text.find_first_of("&;", i + 1), text.size());
            const std::string_view name = text.substr(i + 1, end - i - 1);
            const bool closed = end < text.size() && text[end] == ';';
            const auto own = closed ? std::ranges::find(entities, name, &XmlEntity::name) : entities.end();
            if (own != entities.end()) out += own->value;
            if (own != entities.end() || (closed && appendEntity(&out, name))) {
                i = end;
                continue;
            }
        }
        if (text.substr(i, 2) == "\r\n") ++i;  // one line end
        const bool isSpace = text[i] == '\t' || text[i] == '\n' || text[i] == '\r';
        out += isSpace ? ' ' : text[i];
    }
    return out;
}

std::string asciiXml(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            out += text[i];
            continue;
        }
        unsigned code = lead & (lead >= 0xF0 ? 7U : lead >= 0xE0 ? 15U : 31U);
        for (; i + 1 < text.size() && (text[i + 1] & 0xC0) == 0x80; ++i)
            code = code << 6 | (static_cast<unsigned char>(text[i + 1]) & 0x3FU);
        out += "&#" + std::to_string(code) + ";";
    }
    return out;
}

std::optional<std::string> expandMarkup(std::string_view markup, const XmlEntities& entities, std::size_t* allowance) {
    if (entities.empty()) return std::string(markup);
    std::string out;
    std::size_t copied = 0;
    const auto copyUpTo = [&](std::size_t end) {
        out += markup.substr(copied, end - copied);
        copied = end;
    };
    for (std::size_t at = 0; (at = markup.find_first_of("<&", at)) != std::string_view::npos;) {
        if (markup.substr(at).starts_with("<![CDATA[")) {
            at = behind(markup, "]]>", at);
        } else if (markup.substr(at).starts_with("<!--")) {
            at = behind(markup, "-->", at);
        } else if (markup[at] == '<') {
            ++at;
        } else {
            const std::size_t end = std::min(markup.find_first_of("&;", at + 1), markup.size());
            const auto own = std::ranges::find(entities, markup.substr(at + 1, end - at - 1), &XmlEntity::name);
            if (own != entities.end() && end < markup.size() && markup[end] == ';') {
                copyUpTo(at);
                const std::string value = escapeXml(own->value);
                if (value.size() > *allowance) return std::nullopt;
                *allowance -= value.size();
                out += value;
                copied = end + 1;
            }
            at = std::min(end + (end < markup.size() && markup[end] == ';' ? 1 : 0), markup.size());
        }
    }
    copyUpTo(markup.size());
    return out;
}

}  // namespace quorvel::svg
