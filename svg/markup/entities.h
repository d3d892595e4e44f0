// Characters and entities of XML: escaping, and entities that a file declares for itself.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace quorvel::svg {

// What a file's document type declares, plain text by name.
struct XmlEntity {
    std::string name, value;
};
using XmlEntities = std::vector<XmlEntity>;

// Those that the document type declares, from the text before the root. Entities of other files or of parameters are
// refused, with their line; one that holds markup is passed over, which *passedMarkup then says.
Result<XmlEntities> readEntities(std::string_view prolog, bool* passedMarkup);

// For attribute values and character data; characters that XML forbids are left out.
std::string escapeXml(std::string_view text);
std::string unescapeXml(std::string_view text, const XmlEntities& entities = {});
// Character references for all that is no ASCII.
std::string asciiXml(std::string_view text);
// A text in which the entities are written out. Nothing when it would grow by more than *allowance, which is less
// afterwards.
std::optional<std::string> expandText(std::string_view text, const XmlEntities& entities, std::size_t* allowance);
// Markup whose own entities are written out; in sections of plain characters there are none. The same allowance.
std::optional<std::string> expandMarkup(std::string_view markup, const XmlEntities& entities, std::size_t* allowance);

}  // namespace quorvel::svg
