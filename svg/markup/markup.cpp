// A scan that follows quotes, comments and sections and nothing else: whether the text is well-formed was settled when
// it was read.
#include "svg/markup/markup.h"

#include <algorithm>
#include <charconv>

#include "svg/css/style_sheet.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

std::size_t behind(std::string_view text, std::string_view mark, std::size_t from) {
    const std::size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
}

// Behind the ">" that ends the tag whose "<" is at begin.
std::size_t tagEndOf(std::string_view text, std::size_t begin) {
    std::size_t at = begin;
    for (;;) {
        at = text.find_first_of("\"'>", at);
        if (at == std::string_view::npos) return text.size();
        if (text[at] == '>') return at + 1;
        at = behind(text, text.substr(at, 1), at + 1);
    }
}

// Calls start(begin, tagEnd, empty) and finish(begin, end) for the elements from the tag at `at` on, until finish
// gives false.
template <class Start, class Finish>
void scan(std::string_view text, std::size_t at, Start start, Finish finish) {
    while ((at = text.find('<', at)) != std::string_view::npos) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            at = behind(text, "-->", at + 4);
        } else if (rest.starts_with("<![CDATA[")) {
            at = behind(text, "]]>", at + 9);
        } else if (rest.starts_with("<?")) {
            at = behind(text, "?>", at + 2);
        } else if (rest.starts_with("</")) {
            const std::size_t end = behind(text, ">", at);
            if (!finish(at, end)) return;
            at = end;
        } else {
            const std::size_t end = tagEndOf(text, at);
            const bool empty = text[end - 2] == '/';
            start(at, end, empty);
            if (empty && !finish(end, end)) return;
            at = end;
        }
    }
}

}  // namespace

std::vector<ElementSpan> findElements(std::string_view text, std::span<const std::uint32_t> nameOffsets) {
    std::vector<ElementSpan> spans(nameOffsets.size());
    if (nameOffsets.empty()) return spans;
    std::vector<std::int64_t> open;  // numbers of the elements around, -1 for those that are not asked for
    std::size_t next = 0;
    scan(
        text, nameOffsets[0] - 1,
        [&](std::size_t begin, std::size_t tagEnd, bool) {
            const bool asked = next < nameOffsets.size() && nameOffsets[next] == begin + 1;
            if (asked) {
                spans[next].begin = static_cast<std::uint32_t>(begin);
                spans[next].tagEnd = static_cast<std::uint32_t>(tagEnd);
            }
            open.push_back(asked ? static_cast<std::int64_t>(next++) : -1);
        },
        [&](std::size_t begin, std::size_t end) {
            if (open.empty()) return false;
            if (open.back() >= 0) {
                ElementSpan& span = spans[static_cast<std::size_t>(open.back())];
                span.contentEnd = static_cast<std::uint32_t>(begin);
                span.end = static_cast<std::uint32_t>(end);
            }
            open.pop_back();
            return !open.empty();
        });
    return spans;
}

std::vector<ElementSpan> allElements(std::string_view element) {
    std::vector<ElementSpan> spans;
    std::vector<std::size_t> open;
    scan(
        element, 0,
        [&](std::size_t begin, std::size_t tagEnd, bool) {
            open.push_back(spans.size());
            spans.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(tagEnd), 0, 0});
        },
        [&](std::size_t begin, std::size_t end) {
            if (open.empty()) return false;
            spans[open.back()].contentEnd = static_cast<std::uint32_t>(begin);
            spans[open.back()].end = static_cast<std::uint32_t>(end);
            open.pop_back();
            return !open.empty();
        });
    return spans;
}

std::vector<std::string_view> startTagsAround(std::string_view text, std::uint32_t rootNameOffset,
                                              std::uint32_t nameOffset) {
    std::vector<std::string_view> open;
    bool reached = false;
    scan(
        text.substr(0, nameOffset + std::size_t{1}), rootNameOffset - 1,
        [&](std::size_t begin, std::size_t tagEnd, bool) {
            reached |= begin + 1 >= nameOffset;
            if (!reached) open.push_back(text.substr(begin, tagEnd - begin));
        },
        [&](std::size_t, std::size_t) {
            if (!reached && !open.empty()) open.pop_back();
            return !reached;
        });
    return open;
}

std::string_view elementText(std::string_view text, std::uint32_t nameOffset) {
    const ElementSpan span = findElements(text, std::span(&nameOffset, 1))[0];
    return text.substr(span.begin, span.end - span.begin);
}

std::string_view startTagText(std::string_view text, std::uint32_t nameOffset) {
    const std::size_t begin = nameOffset - 1;
    return text.substr(begin, tagEndOf(text, begin) - begin);
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
        out += isBlank(text[i]) ? ' ' : text[i];
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

// --- start tags ----------------------------------------------------------------------------------------------------

std::string_view StartTag::Attribute::value() const {
    const std::size_t open = raw.find_first_of("\"'");
    if (open == std::string::npos) return {};
    return std::string_view(raw).substr(open + 1, raw.size() - open - 2);
}

StartTag::StartTag(std::string_view text, const XmlEntities* entities) : entities_(entities) {
    std::size_t at = 1;
    const auto blanks = [&] {
        const std::size_t start = at;
        while (at < text.size() && isBlank(text[at])) ++at;
        return std::string(text.substr(start, at - start));
    };
    const auto name = [&] {
        const std::size_t start = at;
        while (at < text.size() && !isBlank(text[at]) && text[at] != '=' && text[at] != '>' && text[at] != '/') ++at;
        return std::string(text.substr(start, at - start));
    };
    name_ = name();
    for (;;) {
        std::string before = blanks();
        if (at >= text.size() || text[at] == '>' || text[at] == '/') {
            tail_ = std::move(before);
            selfClosing_ = at < text.size() && text[at] == '/';
            return;
        }
        Attribute attribute;
        attribute.before = std::move(before);
        attribute.name = name();
        const std::size_t start = at;
        const std::size_t open = text.find_first_of("\"'", at);
        if (attribute.name.empty() || open == std::string_view::npos) return;
        at = behind(text, text.substr(open, 1), open + 1);
        attribute.raw = std::string(text.substr(start, at - start));
        attributes_.push_back(std::move(attribute));
    }
}

const StartTag::Attribute* StartTag::find(std::string_view name) const {
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    return found == attributes_.end() ? nullptr : &*found;
}

std::string StartTag::plain(const Attribute& attribute) const {
    static const XmlEntities kNone;
    return unescapeXml(attribute.value(), entities_ ? *entities_ : kNone);
}

std::optional<std::string> StartTag::attribute(std::string_view name) const {
    const Attribute* found = find(name);
    if (!found) return std::nullopt;
    return plain(*found);
}

void StartTag::set(std::string_view name, std::string_view value) {
    std::string escaped = escapeXml(value);
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    if (found == attributes_.end()) {
        // A first attribute has no neighbour to stand like.
        const std::string before = attributes_.empty() ? " " : attributes_.back().before;
        attributes_.push_back({before, std::string(name), "=\"" + escaped + "\""});
        return;
    }
    if (plain(*found) == value) return;
    const std::size_t open = found->raw.find_first_of("\"'");
    const char quote = found->raw[open];
    for (std::size_t at = 0; quote == '\'' && (at = escaped.find('\'', at)) != std::string::npos;)
        escaped.replace(at, 1, "&apos;");
    found->raw = found->raw.substr(0, open + 1) + escaped + quote;
}

void StartTag::remove(std::string_view name) {
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    if (found == attributes_.end()) return;
    // What follows the name of the element keeps the blanks that stood there.
    const auto next = found + 1;
    if (found == attributes_.begin() && next != attributes_.end()) next->before = found->before;
    attributes_.erase(found);
}

std::vector<std::string> StartTag::attributeNames() const {
    std::vector<std::string> names;
    for (const Attribute& attribute : attributes_) names.push_back(attribute.name);
    return names;
}

std::string StartTag::str() const {
    std::string out = "<" + name_;
    for (const Attribute& attribute : attributes_) {
        out += attribute.before;
        out += attribute.name;
        out += attribute.raw;
    }
    out += tail_;
    out += selfClosing_ ? "/>" : ">";
    return out;
}

void StartTag::setProperty(std::string_view property, std::string_view value) {
    const std::string style = attribute("style").value_or("");
    std::vector<CssDeclaration> declarations;
    parseDeclarations(style, &declarations);
    const auto last =
        std::ranges::find(declarations.rbegin(), declarations.rend(), property, &CssDeclaration::property);
    std::string changed = style;
    if (last != declarations.rend()) {
        const auto at = static_cast<std::size_t>(last->value.data() - style.data());
        changed.replace(at, last->value.size(), value);
    } else {
        const std::string_view kept = trimmed(style);
        changed = std::string(kept);
        if (!kept.empty() && !kept.ends_with(';')) changed += ';';
        changed += std::string(property) + ":" + std::string(value);
        if (kept.ends_with(';')) changed += ';';
    }
    set("style", changed);
}

void StartTag::removeProperty(std::string_view property) {
    const std::optional<std::string> style = attribute("style");
    if (!style) return;
    std::vector<CssDeclaration> declarations;
    parseDeclarations(*style, &declarations);
    std::string kept;
    bool found = false;
    for (const CssDeclaration& declaration : declarations) {
        if (declaration.property == property) {
            found = true;
            continue;
        }
        if (!kept.empty()) kept += ';';
        kept += std::string(declaration.property) + ":" + std::string(declaration.value);
        if (declaration.important) kept += " !important";
    }
    if (!found) return;
    if (kept.empty()) {
        remove("style");
    } else {
        set("style", kept);
    }
}

}  // namespace quorvel::svg
