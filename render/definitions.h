// What a drawing's file defines for use elsewhere (clip paths, masks, markers, patterns), found by its id; and pieces
// of the file made into files of their own, which can then be drawn as a drawing is.
#pragma once

#include <functional>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quorvel::render {

std::string_view localName(const pugi::xml_node& node);
// A property as the style attribute or else the attribute of its name says it.
std::string propertyOf(const pugi::xml_node& node, std::string_view name);
// "id" of "url(#id)" or "#id"; empty when nothing in this file is referred to.
std::string referredId(std::string_view reference);

// The value of the element's attribute of this name, nothing when it has none.
using AttributeLookup = std::function<std::optional<std::string>(const char* name)>;
// The start of a group that hands down what an element with these attributes does: its inherited properties.
std::string groupInheriting(const AttributeLookup& attribute);

class Definitions {
  public:
    // The text must live as long; it is parsed when the first definition is asked for.
    explicit Definitions(const std::string& svg) : text_(svg) {}

    pugi::xml_node find(const std::string& id, std::string_view kind = {});
    // A file of one by one point, whose user units are points, with this content and all the definitions that it refers
    // to.
    std::string fileAround(const std::string& content);
    // The same around what is in an element, which inherits as it does there.
    std::string fileOfContent(const pugi::xml_node& element);

  private:
    void parse();

    const std::string& text_;
    bool parsed_ = false;
    pugi::xml_document document_;
    std::unordered_map<std::string, pugi::xml_node> byId_;
    std::string sheets_;  // its style elements
};

}  // namespace quorvel::render
