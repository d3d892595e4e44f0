// Attributes, then style sheet rules, then the style attribute, then what is marked important. Properties that have no
// row in the table are left where they are.
#include "svg/css/cascade.h"

#include <algorithm>

#include "svg/values/number.h"

namespace quorvel::svg {

Cascade::Attributes Cascade::takeAttributes(const XmlNode& element) {
    Attributes found;
    declared_.clear();
    bool isSorted = true;
    for (const XmlAttribute& attribute : element.attributes()) {
        const std::string_view name = attribute.name();
        if (name == "d") continue;
        if (name == "style") {
            found.inlineStyle = attribute.value();
        } else if (name == "id") {
            found.id = attribute.value();
        } else if (name == "class") {
            found.classes = attribute.value();
        } else if (const Property* property = findProperty(name)) {
            isSorted = isSorted && !property->comesFirst;
            declared_.emplace_back(property, trimmed(attribute.value()));
        }
    }
    if (!isSorted)
        std::stable_partition(declared_.begin(), declared_.end(),
                              [](const auto& one) { return one.first->comesFirst; });
    return found;
}

void Cascade::orderDeclarations() {
    for (const bool important : {false, true}) {
        for (const auto* declarations : {&fromSheet_, &fromAttribute_}) {
            for (const CssDeclaration& declaration : *declarations) {
                if (declaration.important != important) continue;
                passedTransform |= declaration.property == "transform" && declaration.value != "none";
                if (const Property* property = findProperty(declaration.property))
                    declared_.emplace_back(property, declaration.value);
            }
        }
    }
}

void Cascade::apply(const Declared& declared, const ComputedStyle& parent, ComputedStyle* style) {
    const Property& property = *declared.first;
    std::string_view value = declared.second;
    std::string plain;
    if (value.find("/*") != std::string_view::npos) {
        plain = withoutComments(value);
        value = trimmed(plain);
        if (value.empty()) return;
    }
    applyProperty(property, {value, parent, diagonal_, styles_, rootFontSize}, style);
    changed_ |= property.group;
}

// The font size comes first, from all that set it: the em of the other properties is the element's own.
void Cascade::applyAll(const ComputedStyle& parent, ComputedStyle* style) {
    for (const Declared& declared : declared_)
        if (declared.first->setsFontSize) apply(declared, parent, style);
    const double fontSize = style->fontSize;
    for (const Declared& declared : declared_) {
        apply(declared, parent, style);
        style->fontSize = fontSize;
    }
}

bool Cascade::compute(const XmlNode& element, const ComputedStyle& parent, double diagonal, ComputedStyle* style) {
    const Attributes attributes = takeAttributes(element);
    // Most drawings repeat one style attribute over and over.
    const bool isInlineAlone = sheet.empty() && declared_.empty();
    if (isInlineAlone && hasLast_ && parent.number == lastParent_ && diagonal == lastDiagonal_ &&
        attributes.inlineStyle == lastInline_) {
        *style = last_;
        return true;
    }
    *style = parent;
    static_cast<ElementStyle&>(*style) = {};
    style->groups.element = 0;
    diagonal_ = diagonal;
    changed_ = 0;
    fromSheet_.clear();
    if (!sheet.empty()) {
        const ElementNames names{element.localName(), attributes.id, classList(attributes.classes), element};
        if (!sheet.match(names, &fromSheet_)) return false;
    }
    fromAttribute_.clear();
    parseDeclarations(attributes.inlineStyle, &fromAttribute_);
    orderDeclarations();
    applyAll(parent, style);
    styles_.intern(style, changed_);
    if (isInlineAlone) {
        hasLast_ = true;
        lastParent_ = parent.number;
        lastDiagonal_ = diagonal;
        lastInline_ = attributes.inlineStyle;
        last_ = *style;
    }
    return true;
}

bool Cascade::computeInPlace(const XmlNode& element, double diagonal, ComputedStyle* style) {
    std::vector<XmlNode> around;
    for (XmlNode node = element; node.isElement(); node = node.parent()) around.push_back(node);
    *style = styles_.at(0);
    for (auto node = around.rbegin(); node != around.rend(); ++node) {
        const ComputedStyle parent = *style;
        if (!compute(*node, parent, diagonal, style)) return false;
    }
    return true;
}

}  // namespace quorvel::svg
