// Style sheet rules and saving: an element that gets another name or loses its id keeps the look that rules gave it,
// and new art takes on none that its own style does not say.
#pragma once

#include <string>
#include <string_view>

#include "interchange/svg/source.h"
#include "svg/css/declarations.h"
#include "svg/css/selector.h"
#include "svg/css/style_sheet.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

class SvgRules {
  public:
    explicit SvgRules(const SvgSource& source);

    // The tag has its new name and id; what it said itself is kept.
    void preserveComputedStyle(svg::StartTag* tag, std::string_view wasType, std::string_view wasId) const;
    // The tag is of new art and says all that the host's styles can say.
    void blockInheritedStyle(svg::StartTag* tag) const;

    // A clip path, a mask or a paint that is elsewhere in the file, said by the element or by rules for it.
    bool refersToOthers(const svg::StartTag& tag) const;

  private:
    // The place of the tag's element is not known.
    std::vector<svg::CssDeclaration> declarationsFor(std::string_view type, std::string_view id,
                                                     const svg::StartTag& tag, svg::Unplaced unplaced) const;

    svg::StyleSheet sheet_;
};

}  // namespace quorvel::interchange
