// Start tags that are edited attribute by attribute, so that everything that is not touched keeps its bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "svg/markup/entities.h"

namespace quorvel::svg {

class StartTag {
  public:
    // From "<" to ">". The entities outlive the tag.
    explicit StartTag(std::string_view text, const XmlEntities* entities = nullptr);

    const std::string& name() const { return name_; }
    void rename(std::string name) { name_ = std::move(name); }
    bool selfClosing() const { return selfClosing_; }
    void setSelfClosing(bool selfClosing) { selfClosing_ = selfClosing; }
    // Unescaped.
    std::optional<std::string> attribute(std::string_view name) const;
    // Replaces the value, or adds the attribute behind the last, parted as that one is.
    void set(std::string_view name, std::string_view value);
    void remove(std::string_view name);
    std::vector<std::string> attributeNames() const;
    std::string str() const;

  private:
    struct Attribute {
        std::string before;  // blanks
        std::string name;
        std::string raw;  // as it is, with "=", quotes and escapes
        std::string_view value() const;
    };
    const Attribute* find(std::string_view name) const;
    std::string plain(const Attribute& attribute) const;

    std::string name_, tail_;  // tail: blanks before ">" or "/>"
    std::vector<Attribute> attributes_;
    bool selfClosing_ = false;
    const XmlEntities* entities_ = nullptr;
};

}  // namespace quorvel::svg
