// A file's text as markup: checked to be UTF-8, parsed, its own entities written out in attributes.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "base/result.h"
#include "svg/markup/entities.h"
#include "svg/markup/xml.h"

namespace quorvel::svg {

constexpr std::size_t kLargestFile = std::size_t{512} << 20;
Error tooLargeFile();
// As the XML declaration says it, in lower case; empty when it says none.
std::string declaredEncoding(std::string_view text);

// Whether the text is well-formed XML in UTF-8, with the line where it is not. Overwrites the text, so that no second
// one is needed.
Status checkMarkup(std::string* text);

class XmlFile {
  public:
    // Offsets of its nodes are those in the text, of which nothing is kept. An error names its line where it has one.
    Status parse(std::string_view text);
    // One element of a file with these entities, from "<" to its end. False when it cannot be read.
    [[nodiscard]] bool parseElement(std::string_view text, const XmlEntities& entities);
    // One element without entities of a file's own; blanks between its elements are texts too.
    [[nodiscard]] bool parseWithBlanks(std::string_view text);

    XmlNode root() const { return root_; }
    const XmlEntities& entities() const { return entities_; }  // of the document type

    bool hasMarkupEntities() const { return hasMarkupEntities_; }  // which are not read

  private:
    std::unique_ptr<char[]> buffer_;
    std::unique_ptr<pugi::xml_document> document_;
    XmlNode root_;
    XmlEntities entities_;
    bool hasMarkupEntities_ = false;
};

}  // namespace quorvel::svg
