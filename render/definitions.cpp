#include "render/definitions.h"

#include <sstream>
#include <unordered_set>
#include <vector>

#include "svg/css/declarations.h"
#include "svg/markup/entities.h"

namespace quorvel::render {

namespace {

// Those that tell how something is drawn and are handed down to what is in an element.
constexpr const char* kInherited[] = {"clip-rule",
                                      "color",
                                      "fill",
                                      "fill-opacity",
                                      "fill-rule",
                                      "font-family",
                                      "font-size",
                                      "font-stretch",
                                      "font-style",
                                      "font-weight",
                                      "letter-spacing",
                                      "stroke",
                                      "stroke-dasharray",
                                      "stroke-dashoffset",
                                      "stroke-linecap",
                                      "stroke-linejoin",
                                      "stroke-miterlimit",
                                      "stroke-opacity",
                                      "stroke-width",
                                      "text-anchor",
                                      "visibility",
                                      "word-spacing"};
constexpr std::size_t kMostReferred = 1 << 20;  // bytes of definitions that one piece may bring along

std::string printed(const pugi::xml_node& node) {
    std::ostringstream text;
    node.print(text, "", pugi::format_raw);
    return text.str();
}

// Calls visit(id) for whatever looks like a reference to an element of this file.
template <typename Visit>
void forEachReference(std::string_view markup, Visit visit) {
    for (std::size_t hash = markup.find('#'); hash != std::string_view::npos; hash = markup.find('#', hash + 1)) {
        const char before = hash == 0 ? '\0' : markup[hash - 1];
        if (before == '(' || before == '"' || before == '\'' || before == ';') visit(referredId(markup.substr(hash)));
    }
}

}  // namespace

std::string_view localName(const pugi::xml_node& node) {
    const std::string_view name = node.name();
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string propertyOf(const pugi::xml_node& node, std::string_view name) {
    std::vector<svg::CssDeclaration> declarations;
    svg::parseDeclarations(node.attribute("style").value(), &declarations);
    for (auto one = declarations.rbegin(); one != declarations.rend(); ++one)
        if (one->property == name) return std::string(one->value);
    return node.attribute(std::string(name).c_str()).value();
}

std::string referredId(std::string_view reference) {
    const std::size_t hash = reference.find('#');
    if (hash == std::string_view::npos) return {};
    const std::size_t end = reference.find_first_of(")\"' &", hash);
    return std::string(reference.substr(hash + 1, end == std::string_view::npos ? end : end - hash - 1));
}

std::string groupInheriting(const AttributeLookup& attribute) {
    std::string style;
    const std::string own = attribute("style").value_or("");
    std::vector<svg::CssDeclaration> declarations;
    svg::parseDeclarations(own, &declarations);
    for (const char* name : kInherited) {
        std::string value = attribute(name).value_or("");
        for (const svg::CssDeclaration& one : declarations)
            if (one.property == name) value = one.value;
        if (!value.empty()) style += std::string(name) + ':' + value + ';';
    }
    std::string start = "<g";
    if (const auto classes = attribute("class")) start += " class=\"" + svg::escapeXml(*classes) + '"';
    if (!style.empty()) start += " style=\"" + svg::escapeXml(style) + '"';
    return start + '>';
}

void Definitions::parse() {
    if (parsed_) return;
    parsed_ = true;
    if (!document_.load_buffer(text_.data(), text_.size())) return;
    struct Gather : pugi::xml_tree_walker {
        Definitions* into = nullptr;
        bool for_each(pugi::xml_node& node) override {
            if (const char* id = node.attribute("id").value(); *id != '\0') into->byId_.emplace(id, node);
            if (localName(node) == "style" && node.type() == pugi::node_element) into->sheets_ += printed(node);
            return true;
        }
    } gather;
    gather.into = this;
    document_.traverse(gather);
}

pugi::xml_node Definitions::find(const std::string& id, std::string_view kind) {
    parse();
    const auto found = byId_.find(id);
    if (found == byId_.end() || (!kind.empty() && localName(found->second) != kind)) return {};
    return found->second;
}

std::string Definitions::fileAround(const std::string& content) {
    parse();
    std::string definitions;
    std::unordered_set<std::string> there;
    std::vector<std::string> open{content};
    while (!open.empty() && definitions.size() < kMostReferred) {
        const std::string markup = std::move(open.back());
        open.pop_back();
        forEachReference(markup, [&](const std::string& id) {
            const pugi::xml_node node = there.insert(id).second ? find(id) : pugi::xml_node();
            // What holds the piece itself is no definition.
            if (!node || node == document_.document_element()) return;
            open.push_back(printed(node));
            definitions += open.back();
        });
    }
    const pugi::xml_node root = document_.document_element();
    const std::string name = root ? root.name() : "svg";
    const std::string prefix = name.substr(0, name.size() - 3);
    std::string file = '<' + name + " width=\"1pt\" height=\"1pt\" viewBox=\"0 0 1 1\"";
    for (const pugi::xml_attribute& one : root.attributes())
        if (std::string_view(one.name()).starts_with("xmlns"))
            file += std::string(" ") + one.name() + "=\"" + svg::escapeXml(one.value()) + '"';
    file += '>' + sheets_ + '<' + prefix + "defs>" + definitions + "</" + prefix + "defs>" + content;
    return file + "</" + name + '>';
}

std::string Definitions::fileOfContent(const pugi::xml_node& element) {
    std::string content, ends;
    std::vector<pugi::xml_node> around;
    for (pugi::xml_node node = element; node.type() == pugi::node_element; node = node.parent()) around.push_back(node);
    const std::string name = document_.document_element().name();
    const std::string prefix = name.substr(0, name.size() - 3);
    for (auto node = around.rbegin(); node != around.rend(); ++node) {
        std::string group = groupInheriting([&](const char* attribute) -> std::optional<std::string> {
            const pugi::xml_attribute found = node->attribute(attribute);
            return found ? std::optional<std::string>(found.value()) : std::nullopt;
        });
        content += '<' + prefix + group.substr(1);
        ends += "</" + prefix + "g>";
    }
    for (const pugi::xml_node& child : element.children()) content += printed(child);
    return fileAround(content + ends);
}

}  // namespace quorvel::render
