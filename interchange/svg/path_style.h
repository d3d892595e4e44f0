// The host's path style both ways: from a computed SVG style, and to the properties that say it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "document/document.h"
#include "interchange/svg/paint.h"
#include "svg/css/style_table.h"
#include "svg/values/affine.h"

namespace quorvel::interchange {

AIPathStyle pathStyleOf(const svg::ComputedStyle& style, const svg::Affine& toDocument, PaintLookup* lookup);

// Gives equal styles one object and one number.
class StyleTable {
  public:
    // The styles that are there already keep their numbers.
    explicit StyleTable(std::vector<doc::StylePtr>* styles);
    std::int32_t add(const AIPathStyle& style);

  private:
    std::vector<doc::StylePtr>* styles_;
    std::unordered_map<std::uint64_t, std::int32_t> byFingerprint_;
};

// --- writing -------------------------------------------------------------------------------------------------------

// Reasons that keep new art from looking as its own style says, inherited by a container's content.
enum UnmodelledProperty : std::uint8_t {
    kFillOpacity = 1,
    kStrokeOpacity = 2,
    kMarkers = 4,
    kLetterSpacing = 8,
    kInvisible = 16,  // visibility
};
std::uint8_t unmodelledProperties(const svg::StyleTable& styles, std::uint32_t style);

struct StyleProperty {
    std::string_view name;
    std::string value;
};
// Properties in which the style differs from what is in effect; all when there is nothing to compare with. The scale
// is user units to points.
std::vector<StyleProperty> styleProperties(const AIPathStyle& style, const AIPathStyle* inForce, double scale,
                                           const PaintSources& sources);
// Properties that undo what a container would do to new art.
std::vector<StyleProperty> resetProperties(std::uint8_t unmodelledProperties);
std::string joinProperties(const std::vector<StyleProperty>& properties);

}  // namespace quorvel::interchange
