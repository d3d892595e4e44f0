#include "svg/tree/excerpt.h"

#include <unordered_set>
#include <vector>

#include "svg/css/style_attribute.h"
#include "svg/css/style_text.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/entities.h"
#include "svg/markup/start_tag.h"

namespace quorvel::svg {
namespace {

constexpr std::size_t kMostReferred = std::size_t{1} << 20;  // bytes of definitions that one element may bring along

// Calls visit(id) for whatever looks like a reference to an element of this file.
template <typename Visit>
void forEachReference(std::string_view markup, Visit visit) {
    for (std::size_t hash = markup.find('#'); hash != std::string_view::npos; hash = markup.find('#', hash + 1)) {
        const char before = hash == 0 ? '\0' : markup[hash - 1];
        if (before != '(' && before != '"' && before != '\'' && before != ';') continue;
        const std::size_t end = markup.find_first_of(")\"' &", hash);
        visit(markup.substr(hash + 1, end == std::string_view::npos ? end : end - hash - 1));
    }
}

class Excerpt {
  public:
    explicit Excerpt(File* file) : file_(*file) {}

    // The markup with its entities written out; empty when they become too much.
    std::string plain(std::string_view markup) {
        return expandMarkup(markup, file_.entities(), &allowance_).value_or("");
    }
    std::string textOf(std::uint32_t nameOffset) { return plain(elementText(*file_.text(), nameOffset)); }

    std::string around(const std::string& content) {
        const std::string& prefix = file_.names().svg;
        const ExcerptParts parts = partsFor(content);
        return "<" + prefix + "svg width=\"1pt\" height=\"1pt\" viewBox=\"0 0 1 1\"" + parts.namespaces + '>' +
               parts.sheets + "<" + prefix + "defs>" + parts.definitions + "</" + prefix + "defs>" + content + "</" +
               prefix + "svg>";
    }

    ExcerptParts partsFor(const std::string& content) {
        ExcerptParts parts;
        const XmlNode root = file_.root();
        for (const XmlAttribute& attribute : root.attributes())
            if (attribute.name().starts_with("xmlns"))
                parts.namespaces += " " + std::string(attribute.name()) + "=\"" + escapeXml(attribute.value()) + '"';
        forEachElement(root, [&](const XmlNode& node, int) {
            if (node.localName() == "style") parts.sheets += textOf(node.offset());
            return true;
        });
        parts.definitions = definitionsFor(content);
        return parts;
    }

  private:
    std::string definitionsFor(const std::string& content) {
        std::string definitions;
        std::unordered_set<std::string> seen;
        std::vector<std::string> open{content};
        while (!open.empty() && definitions.size() < kMostReferred) {
            const std::string markup = std::move(open.back());
            open.pop_back();
            forEachReference(markup, [&](std::string_view id) {
                const XmlNode node = seen.emplace(id).second ? file_.find(id) : XmlNode();
                // What holds the element itself is no definition.
                if (!node || node == file_.root()) return;
                open.push_back(textOf(node.offset()));
                definitions += open.back();
            });
        }
        return definitions;
    }

    File& file_;
    std::size_t allowance_ = kMostReferred;
};

}  // namespace

ExcerptParts excerptParts(File* file, const std::string& content) { return Excerpt(file).partsFor(content); }

std::string excerptOf(const Tree& tree, std::int32_t number, std::string_view id) {
    const Element& element = tree[number];
    Excerpt excerpt(tree.file.get());
    const std::string whole = excerpt.textOf(element.nameOffset);
    if (whole.empty()) return {};
    const std::string_view start = startTagText(whole, 1);
    StartTag tag(start);
    tag.remove("transform");
    for (const char* done : {"opacity", "clip-path", "mask"}) {
        tag.remove(done);
        removeProperty(&tag, done);
    }
    tag.set("id", id);
    const std::string style = inheritedDeclarations(tree.file->styles().at(tree[element.parent].style));
    const std::string& prefix = tree.file->names().svg;
    return excerpt.around("<" + prefix + "g style=\"" + escapeXml(style) + "\">" + tag.str() +
                          whole.substr(start.size()) + "</" + prefix + "g>");
}

}  // namespace quorvel::svg
