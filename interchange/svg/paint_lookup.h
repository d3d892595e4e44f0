// Paints that refer to other elements, as colours of the document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "document/document.h"
#include "interchange/svg/paint.h"
#include "svg/tree/file.h"
#include "svg/tree/gradient.h"

namespace quorvel::interchange {

// Gradients get their angle; patterns and the like are kept as texts.
class SvgPaints : public PaintLookup {
  public:
    SvgPaints(svg::File* file, doc::Document* document);
    AIColor paintOf(std::string_view reference, const svg::Affine& toDocument) override;

  private:
    struct Known {
        std::int32_t number = 0;
        const svg::Gradient* gradient = nullptr;
    };
    svg::File& file_;
    doc::Document& document_;
    std::unordered_map<std::string, Known> known_;  // by their texts
};

}  // namespace quorvel::interchange
