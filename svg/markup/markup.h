// The text of an XML file as a text: where its elements begin and end, and start tags that are edited attribute by
// attribute, so that everything that is not touched keeps its bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::svg {

// Offsets into the text. For an element without content, contentEnd equals tagEnd, and end too.
struct ElementSpan {
    std::uint32_t begin = 0;       // of "<"
    std::uint32_t tagEnd = 0;      // behind the start tag's ">"
    std::uint32_t contentEnd = 0;  // of the end tag's "<"
    std::uint32_t end = 0;         // behind the element
    bool empty() const { return contentEnd == end; }
};

// Finds the elements whose names begin at these rising offsets, the first being the outermost. The text is well-formed.
std::vector<ElementSpan> findElements(std::string_view text, std::span<const std::uint32_t> nameOffsets);
// All elements of one element's text, itself first, each before those in it.
std::vector<ElementSpan> allElements(std::string_view element);
// One element's text, from "<" to the end of its end tag.
std::string_view elementText(std::string_view text, std::uint32_t nameOffset);

// Its start tag alone.
std::string_view startTagText(std::string_view text, std::uint32_t nameOffset);

// The start tags of the elements that hold the one whose name begins at the offset, the outermost first.
std::vector<std::string_view> startTagsAround(std::string_view text, std::uint32_t rootNameOffset,
                                              std::uint32_t nameOffset);

// What a file's document type declares, plain text by name.
struct XmlEntity {
    std::string name, value;
};
using XmlEntities = std::vector<XmlEntity>;

// For attribute values and character data; characters that XML forbids are left out.
std::string escapeXml(std::string_view text);
std::string unescapeXml(std::string_view text, const XmlEntities& entities = {});
// Character references for all that is no ASCII.
std::string asciiXml(std::string_view text);
// Markup whose own entities are written out; in sections of plain characters there are none. Nothing when it would grow
// by more than *allowance, which is less afterwards.
std::optional<std::string> expandMarkup(std::string_view markup, const XmlEntities& entities, std::size_t* allowance);

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

    // Edits one property of the style attribute, which is made when it is missing.
    void setProperty(std::string_view property, std::string_view value);
    void removeProperty(std::string_view property);

  private:
    struct Attribute {
        std::string before;  // blanks
        std::string name;
        std::string raw;  // as it stands, with "=", quotes and escapes
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
