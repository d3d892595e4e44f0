#include "svg/markup/element_spans.h"

#include "svg/markup/scan.h"

namespace quorvel::svg {
namespace {

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

}  // namespace quorvel::svg
