#include "svg/markup/text_edits.h"

#include <algorithm>

namespace quorvel::svg {

void TextEdits::replace(std::size_t begin, std::size_t end, std::string text) {
    const std::int64_t before = edits_.empty() ? 0 : edits_.back().shift;
    const std::int64_t growth = static_cast<std::int64_t>(text.size()) - static_cast<std::int64_t>(end - begin);
    edits_.push_back({begin, end, std::move(text), before + growth});
}

std::string TextEdits::applied(std::string_view text) const {
    std::string out;
    out.reserve(text.size() +
                static_cast<std::size_t>(std::max<std::int64_t>(0, edits_.empty() ? 0 : edits_.back().shift)));
    std::size_t copied = 0;
    for (const Edit& edit : edits_) {
        out += text.substr(copied, edit.begin - copied);
        out += edit.text;
        copied = edit.end;
    }
    return out += text.substr(copied);
}

std::uint32_t TextEdits::map(std::uint32_t place) const {
    const auto behind = std::ranges::upper_bound(edits_, place, {}, &Edit::end);
    const std::int64_t shift = behind == edits_.begin() ? 0 : (behind - 1)->shift;
    return static_cast<std::uint32_t>(place + shift);
}

}  // namespace quorvel::svg
