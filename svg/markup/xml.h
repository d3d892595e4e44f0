// The parsed markup: elements, attributes and texts as light values that are copied freely. They hold no data of their
// own and end with the file that they are from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <pugixml.hpp>
#include <string_view>

namespace quorvel::svg {

// "name" of "prefix:name".
constexpr std::string_view withoutPrefix(std::string_view name) { return name.substr(name.find(':') + 1); }

class XmlAttribute {
  public:
    XmlAttribute() = default;
    explicit XmlAttribute(pugi::xml_attribute attribute) : attribute_(attribute) {}

    explicit operator bool() const { return !attribute_.empty(); }
    bool operator==(const XmlAttribute&) const = default;
    std::string_view name() const { return attribute_.name(); }    // with its prefix
    std::string_view value() const { return attribute_.value(); }  // "" of a missing attribute
    XmlAttribute next() const { return XmlAttribute(attribute_.next_attribute()); }

  private:
    pugi::xml_attribute attribute_;
};

class XmlNode {
  public:
    XmlNode() = default;
    explicit XmlNode(pugi::xml_node node) : node_(node) {}

    explicit operator bool() const { return !node_.empty(); }
    bool operator==(const XmlNode&) const = default;
    bool isElement() const { return node_.type() == pugi::node_element; }
    bool isText() const { return node_.type() == pugi::node_pcdata || node_.type() == pugi::node_cdata; }
    std::string_view name() const { return node_.name(); }  // of an element, with its prefix
    std::string_view localName() const { return withoutPrefix(name()); }
    std::string_view value() const { return node_.value(); }  // of a text
    // Of an element's name in the text that was parsed.
    std::uint32_t offset() const { return static_cast<std::uint32_t>(node_.offset_debug()); }

    XmlAttribute firstAttribute() const { return XmlAttribute(node_.first_attribute()); }
    // By its whole name; false when there is none.
    XmlAttribute attribute(std::string_view name) const {
        for (pugi::xml_attribute at = node_.first_attribute(); at; at = at.next_attribute())
            if (at.name() == name) return XmlAttribute(at);
        return {};
    }
    // By its prefix, with the colon, and the rest of its name.
    XmlAttribute attribute(std::string_view prefix, std::string_view name) const {
        for (pugi::xml_attribute at = node_.first_attribute(); at; at = at.next_attribute()) {
            const std::string_view whole = at.name();
            if (whole.size() == prefix.size() + name.size() && whole.starts_with(prefix) && whole.ends_with(name))
                return XmlAttribute(at);
        }
        return {};
    }
    // The parent of the outermost element is no element.
    XmlNode parent() const { return XmlNode(node_.parent()); }
    XmlNode firstChild() const { return XmlNode(node_.first_child()); }
    XmlNode nextSibling() const { return XmlNode(node_.next_sibling()); }
    XmlNode previousSibling() const { return XmlNode(node_.previous_sibling()); }

    template <class Item>
    class Range;
    Range<XmlNode> children() const;
    Range<XmlAttribute> attributes() const;

  private:
    pugi::xml_node node_;
};

inline XmlNode nextOf(const XmlNode& node) { return node.nextSibling(); }
inline XmlAttribute nextOf(const XmlAttribute& attribute) { return attribute.next(); }

template <class Item>
class XmlNode::Range {
  public:
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item*;
        using reference = const Item&;
        Iterator() = default;
        explicit Iterator(Item item) : item_(item) {}
        reference operator*() const { return item_; }
        pointer operator->() const { return &item_; }
        Iterator& operator++() {
            item_ = nextOf(item_);
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator&) const = default;

      private:
        Item item_;
    };
    explicit Range(Item first) : first_(first) {}
    Iterator begin() const { return Iterator(first_); }
    Iterator end() const { return {}; }

  private:
    Item first_;
};

inline XmlNode::Range<XmlNode> XmlNode::children() const { return Range<XmlNode>(firstChild()); }
inline XmlNode::Range<XmlAttribute> XmlNode::attributes() const { return Range<XmlAttribute>(firstAttribute()); }

// Visits top and all elements below it in the order of the text, with their depth below top, until visit gives false.
template <class Visit>
void forEachElement(XmlNode top, Visit visit) {
    int depth = 0;
    for (XmlNode node = top; node;) {
        if (node.isElement() && !visit(node, depth)) return;
        if (const XmlNode child = node.firstChild()) {
            node = child;
            ++depth;
            continue;
        }
        while (node && node != top && !node.nextSibling()) {
            node = node.parent();
            --depth;
        }
        node = node == top ? XmlNode() : node.nextSibling();
    }
}

}  // namespace quorvel::svg
