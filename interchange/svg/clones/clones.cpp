// The maps along the way are built of the same factors as when the use element was read, so that the copy's coordinates
// are the same to the last bit.
#include "interchange/svg/clones/clones.h"

#include <algorithm>

#include "interchange/svg/definitions.h"
#include "interchange/svg/own_attributes.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/number.h"

namespace quorvel::interchange {
namespace {

std::string_view localPart(std::string_view name) { return name.substr(name.find(':') + 1); }

bool isHref(std::string_view name) { return name == "href" || name.ends_with(":href"); }

std::string number(double value) {
    std::string text;
    svg::appendNumber(&text, value);
    return text;
}

class CopiedText {
  public:
    CopiedText(const SvgSource& source, const SvgRules& rules, std::uint32_t target)
        : source_(source),
          rules_(rules),
          target_(target),
          text_(svg::elementText(*source.text, target)),
          spans_(svg::allElements(text_)),
          root_(tagAt(spans_.front())),
          id_(root_.attribute("id").value_or("")) {
        strip(&root_);
        declareNamespaces();
    }

    svg::StartTag& root() { return root_; }

    std::string str() const {
        std::string out = root_.str();
        std::size_t cursor = spans_.front().tagEnd;
        std::size_t kept = 0;  // end of an element of another language, which is kept as it is
        for (std::size_t i = 1; i < spans_.size(); ++i) {
            const svg::ElementSpan& span = spans_[i];
            if (span.begin < cursor || span.begin < kept) continue;
            svg::StartTag tag = tagAt(span);
            const std::string_view name = localPart(tag.name());
            // Others refer to the original; a second style sheet would change the order of the rules.
            if (isDefinition(name)) {
                out += text_.substr(cursor, std::max(cursor, lineBegin(span.begin)) - cursor);
                cursor = span.end;
                continue;
            }
            if (name == "foreignObject") kept = span.end;
            strip(&tag);
            out += text_.substr(cursor, span.begin - cursor);
            out += tag.str();
            cursor = span.tagEnd;
        }
        const svg::ElementSpan& whole = spans_.front();
        if (whole.empty()) return out;
        return out + std::string(text_.substr(cursor, whole.contentEnd - cursor)) + "</" + root_.name() + ">";
    }

  private:
    svg::StartTag tagAt(const svg::ElementSpan& span) const {
        return svg::StartTag(text_.substr(span.begin, span.tagEnd - span.begin), &source_.entities());
    }

    // The blanks before it, with the line end, when nothing else is on the line.
    std::size_t lineBegin(std::size_t at) const {
        const std::size_t blanks = text_.find_last_not_of(" \t", at - 1);
        if (blanks == std::string_view::npos || text_[blanks] != '\n') return at;
        return blanks > 0 && text_[blanks - 1] == '\r' ? blanks - 1 : blanks;
    }

    void strip(svg::StartTag* tag) const {
        const std::string id = tag->attribute("id").value_or("");
        tag->remove("id");
        tag->remove("xml:id");
        tag->remove(source_.names().sodipodi + "insensitive");
        for (const std::string& name : tag->attributeNames()) {
            if (name.starts_with(source_.names().own) && tagOfAttribute(name.substr(source_.names().own.size())))
                tag->remove(name);
            // What refers to the thing that holds it shows nothing.
            if (isHref(name) && !id_.empty() && localPart(tag->name()) == "use" && tag->attribute(name) == "#" + id_)
                tag->remove(name);
        }
        if (!id.empty()) rules_.preserveComputedStyle(tag, localPart(tag->name()), id);
    }

    // The copy may be outside the elements that declare its prefixes.
    void declareNamespaces() {
        const std::size_t rootEnd =
            source_.element(0).nameOffset + svg::startTagText(*source_.text, source_.element(0).nameOffset).size();
        if (source_.text->find("xmlns", rootEnd) == std::string::npos) return;
        auto around = svg::startTagsAround(*source_.text, source_.element(0).nameOffset, target_);
        std::ranges::reverse(around);
        for (std::size_t i = 0; i + 1 < around.size(); ++i) {
            const svg::StartTag tag(around[i], &source_.entities());
            for (const std::string& name : tag.attributeNames()) {
                const bool declares = name == "xmlns" || name.starts_with("xmlns:");
                if (declares && !root_.attribute(name)) root_.set(name, *tag.attribute(name));
            }
        }
    }

    const SvgSource& source_;
    const SvgRules& rules_;
    std::uint32_t target_;
    std::string_view text_;
    std::vector<svg::ElementSpan> spans_;
    svg::StartTag root_;
    std::string id_;
};

// Into a tag that has no transform yet, so that no two are multiplied beforehand.
void moveBy(double x, double y, bool innerIsViewport, svg::StartTag* outer, svg::StartTag* inner) {
    if (x == 0 && y == 0) return;
    const std::string shift = "translate(" + number(x) + "," + number(y) + ")";
    if (!outer->attribute("transform")) {
        outer->set("transform", shift);
    } else if (!innerIsViewport && !inner->attribute("transform")) {
        inner->set("transform", shift);
    } else if (innerIsViewport && !inner->attribute("x") && !inner->attribute("y") && !inner->attribute("transform")) {
        inner->set("x", number(x));
        inner->set("y", number(y));
    } else {
        outer->set("transform", *outer->attribute("transform") + " " + shift);
    }
}

std::string lineBreakBefore(std::string_view text, std::size_t at) {
    const std::size_t blanks = text.substr(0, at).find_last_not_of(" \t");
    if (blanks == std::string_view::npos || text[blanks] != '\n') return "";
    const std::size_t begin = blanks > 0 && text[blanks - 1] == '\r' ? blanks - 1 : blanks;
    return std::string(text.substr(begin, at - begin));
}

}  // namespace

ExpandedUse expandedUse(const SvgSource& source, const SvgRules& rules, const SvgUse& use, std::uint32_t target) {
    const std::uint32_t nameOffset = source.element(use.element).nameOffset;
    svg::StartTag group(svg::startTagText(*source.text, nameOffset), &source.entities());
    const std::string id = group.attribute("id").value_or("");
    group.rename(source.names().svg + "g");
    for (const std::string& name : group.attributeNames()) {
        if (isHref(name) || name == source.names().inkscape + "groupmode") group.remove(name);
    }
    for (const char* name : {"x", "y", "width", "height"}) group.remove(name);

    CopiedText copy(source, rules, target);
    svg::StartTag& root = copy.root();
    const std::string type(localPart(root.name()));
    const bool isViewport = type == "symbol" || type == "svg";
    if (isViewport) {
        root.rename(source.names().svg + "svg");
        if (use.width > 0) root.set("width", number(use.width));
        if (use.height > 0) root.set("height", number(use.height));
        rules.preserveComputedStyle(&root, type, "");
    }
    moveBy(use.x, use.y, isViewport, &group, &root);
    rules.preserveComputedStyle(&group, "use", id);

    const std::string around = lineBreakBefore(*source.text, nameOffset - 1);
    const std::string inside = around.empty() ? "" : around + (around.ends_with('\t') ? "\t" : "  ");
    group.setSelfClosing(false);
    return {group.str(), inside + copy.str() + around + "</" + group.name() + ">"};
}

}  // namespace quorvel::interchange
