// Rules that held and hold no more are said in the style attribute; properties of rules that hold only now are set back
// to what stood behind them: the attribute of that name, else what an element has by itself.
#include "interchange/svg/rules.h"

#include <algorithm>
#include <array>

#include "svg/css/style_attribute.h"

namespace quorvel::interchange {
namespace {

struct Reset {
    std::string_view property, value;
};

// Properties that the host's styles have no word for and that change what is seen, as an element has them by itself.
constexpr std::array kResets = {
    Reset{"clip-path", "none"},        Reset{"clip-rule", "nonzero"},
    Reset{"display", "inline"},        Reset{"fill-opacity", "1"},
    Reset{"fill-rule", "nonzero"},     Reset{"filter", "none"},
    Reset{"letter-spacing", "normal"}, Reset{"marker", "none"},
    Reset{"marker-end", "none"},       Reset{"marker-mid", "none"},
    Reset{"marker-start", "none"},     Reset{"mask", "none"},
    Reset{"mix-blend-mode", "normal"}, Reset{"opacity", "1"},
    Reset{"paint-order", "normal"},    Reset{"stroke-opacity", "1"},
    Reset{"text-decoration", "none"},  Reset{"transform", "none"},
    Reset{"vector-effect", "none"},    Reset{"visibility", "visible"},
    Reset{"word-spacing", "normal"},
};
static_assert(std::ranges::is_sorted(kResets, {}, &Reset::property));

const Reset* resetOf(std::string_view property) {
    const auto row = std::ranges::lower_bound(kResets, property, {}, &Reset::property);
    return row == kResets.end() || row->property != property ? nullptr : &*row;
}

constexpr std::string_view kNotInherited[] = {"clip-path",     "display",        "filter",
                                              "mask",          "opacity",        "transform",
                                              "vector-effect", "mix-blend-mode", "text-decoration"};

const svg::CssDeclaration* find(const std::vector<svg::CssDeclaration>& declarations, std::string_view property) {
    const auto found = std::ranges::find(declarations, property, &svg::CssDeclaration::property);
    return found == declarations.end() ? nullptr : &*found;
}

// The last one of each property, or the last important one.
std::vector<svg::CssDeclaration> winners(const std::vector<svg::CssDeclaration>& declarations) {
    std::vector<svg::CssDeclaration> result;
    for (const bool important : {false, true}) {
        for (const svg::CssDeclaration& declaration : declarations) {
            if (declaration.important != important) continue;
            std::erase_if(result, [&](const auto& earlier) { return earlier.property == declaration.property; });
            result.push_back(declaration);
        }
    }
    return result;
}

std::string_view localPart(std::string_view name) { return name.substr(name.find(':') + 1); }

void say(svg::StartTag* tag, std::string_view property, std::string_view value, bool important) {
    svg::removeProperty(tag, property);
    svg::setProperty(tag, property, std::string(value) + (important ? " !important" : ""));
}

}  // namespace

SvgRules::SvgRules(const SvgSource& source) {
    for (const std::string& sheet : source.tree.file->sheets()) sheet_.add(sheet);
    sheet_.expect(std::size_t{1} << 40);  // what it costs was settled when the file was read
}

// A sheet that asks for too much work has been refused when the file was read.
std::vector<svg::CssDeclaration> SvgRules::declarationsFor(std::string_view type, std::string_view id,
                                                           const svg::StartTag& tag, svg::Unplaced unplaced) const {
    std::vector<svg::CssDeclaration> declarations;
    const std::string classes = tag.attribute("class").value_or("");
    (void)sheet_.match({type, id, svg::classList(classes), {}, unplaced}, &declarations);
    return winners(declarations);
}

void SvgRules::preserveComputedStyle(svg::StartTag* tag, std::string_view wasType, std::string_view wasId) const {
    if (sheet_.empty()) return;
    constexpr svg::Unplaced kUnplaced = svg::Unplaced::kFails;
    const std::vector<svg::CssDeclaration> before = declarationsFor(wasType, wasId, *tag, kUnplaced);
    const std::vector<svg::CssDeclaration> after =
        declarationsFor(localPart(tag->name()), tag->attribute("id").value_or(""), *tag, kUnplaced);
    const std::string style = tag->attribute("style").value_or("");
    std::vector<svg::CssDeclaration> own;
    svg::parseDeclarations(style, &own);
    own = winners(own);
    const auto ownWins = [&](const svg::CssDeclaration& rule) {
        const svg::CssDeclaration* said = find(own, rule.property);
        return said && (said->important || !rule.important);
    };
    for (const svg::CssDeclaration& rule : before) {
        const svg::CssDeclaration* now = find(after, rule.property);
        const bool same = now && now->value == rule.value && now->important == rule.important;
        if (!same && !ownWins(rule)) say(tag, rule.property, rule.value, rule.important || (now && now->important));
    }
    for (const svg::CssDeclaration& rule : after) {
        if (find(before, rule.property) || ownWins(rule)) continue;
        const svg::CssDeclaration* said = find(own, rule.property);
        const std::optional<std::string> attribute = tag->attribute(rule.property);
        const bool inherited = std::ranges::find(kNotInherited, rule.property) == std::end(kNotInherited);
        const Reset* reset = resetOf(rule.property);
        const std::string value = said               ? std::string(said->value)
                                  : attribute        ? *attribute
                                  : inherited        ? "inherit"
                                  : reset != nullptr ? std::string(reset->value)
                                                     : "initial";
        say(tag, rule.property, value, rule.important);
    }
}

bool SvgRules::refersToOthers(const svg::StartTag& tag) const {
    const auto refers = [](std::string_view property, std::string_view value) {
        static constexpr std::string_view kProperties[] = {"clip-path", "mask", "fill", "stroke", "filter"};
        return value.find("url(") != std::string_view::npos &&
               std::ranges::find(kProperties, property) != std::end(kProperties);
    };
    for (const std::string& name : tag.attributeNames()) {
        if (name != "style" && refers(name, tag.attribute(name).value_or(""))) return true;
    }
    const std::string style = tag.attribute("style").value_or("");
    std::vector<svg::CssDeclaration> declarations =
        declarationsFor(localPart(tag.name()), tag.attribute("id").value_or(""), tag, svg::Unplaced::kHolds);
    svg::parseDeclarations(style, &declarations);
    return std::ranges::any_of(declarations, [&](const auto& one) { return refers(one.property, one.value); });
}

void SvgRules::blockInheritedStyle(svg::StartTag* tag) const {
    if (sheet_.empty()) return;
    const std::string style = tag->attribute("style").value_or("");
    std::vector<svg::CssDeclaration> own;
    svg::parseDeclarations(style, &own);
    for (const svg::CssDeclaration& rule :
         declarationsFor(localPart(tag->name()), tag->attribute("id").value_or(""), *tag, svg::Unplaced::kHolds)) {
        const svg::CssDeclaration* said = find(own, rule.property);
        const Reset* reset = resetOf(rule.property);
        if (said && rule.important) say(tag, rule.property, said->value, true);
        if (!said && reset) say(tag, rule.property, reset->value, rule.important);
    }
}

}  // namespace quorvel::interchange
