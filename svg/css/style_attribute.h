// Editing the style attribute of a start tag property by property.
#pragma once

#include <string_view>

#include "svg/markup/start_tag.h"

namespace quorvel::svg {

// Replaces the value of the property's last declaration, or adds one behind the others. The attribute is made when it
// is missing.
void setProperty(StartTag* tag, std::string_view property, std::string_view value);
// Removes all its declarations, and the attribute when nothing else is in it.
void removeProperty(StartTag* tag, std::string_view property);

}  // namespace quorvel::svg
