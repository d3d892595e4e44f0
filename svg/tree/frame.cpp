#include "svg/tree/frame.h"

#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/length.h"

namespace quorvel::svg {

Frame frameOf(const Tree& tree, std::string_view text, std::int32_t element) {
    const StartTag tag(startTagText(text, tree[element].nameOffset), &tree.file->entities());
    const Viewport& around = tree.viewportIn(tree[element].parent);
    const double fontSize = tree.file->styles().text(tree[element].style).fontSize;
    const auto length = [&](std::string_view name, double percentOf) -> std::optional<double> {
        const std::optional<std::string> value = tag.attribute(name);
        return value ? parseLength(*value, {percentOf, fontSize}) : std::nullopt;
    };
    return {length("x", around.width).value_or(0), length("y", around.height).value_or(0),
            length("width", around.width), length("height", around.height)};
}

}  // namespace quorvel::svg
