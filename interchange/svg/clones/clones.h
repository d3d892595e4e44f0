// A use element written out: the group that shows the same everywhere, made of a copy of what it refers to. The copy
// keeps its bytes but for ids, our tags and what definitions it holds, which stay with the original.
#pragma once

#include <cstdint>
#include <string>

#include "interchange/svg/rules.h"
#include "interchange/svg/source.h"

namespace quorvel::interchange {

// In place of the use element: its start tag, what it holds itself (descriptions and the like), and the rest.
struct ExpandedUse {
    std::string startTag, rest;
};
// target: offset of the name of the element that it refers to.
ExpandedUse expandedUse(const SvgSource& source, const SvgRules& rules, const SvgUse& use, std::uint32_t target);

}  // namespace quorvel::interchange
