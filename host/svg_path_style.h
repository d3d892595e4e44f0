// The host's path style both ways: from a computed SVG style, and to the properties that say it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/svg_style.h"

namespace quorvel::host {

AIPathStyle pathStyleOf(const SvgStyle& style, const Affine& toDocument, PaintLookup* lookup);

// Gives equal styles one object and one number.
class StyleTable {
  public:
    explicit StyleTable(std::vector<StylePtr>* styles) : styles_(styles) {}
    std::int32_t add(const AIPathStyle& style);

  private:
    std::vector<StylePtr>* styles_;
    std::unordered_map<std::uint64_t, std::int32_t> byFingerprint_;
};

// --- writing -------------------------------------------------------------------------------------------------------

struct StyleProperty {
    std::string_view name;
    std::string value;
};
// Properties in which the style differs from what is in force; all when there is nothing to compare with. The scale
// is user units to points.
std::vector<StyleProperty> styleProperties(const AIPathStyle& style, const AIPathStyle* inForce, double scale,
                                           const PaintSources& sources);
// Properties that undo what a container would do to new art.
std::vector<StyleProperty> resetProperties(std::uint8_t oddities);
std::string joinProperties(const std::vector<StyleProperty>& properties);

}  // namespace quorvel::host
