// Paints that refer to other elements, as colours of the document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "interchange/svg/paint.h"
#include "interchange/svg/source.h"
#include "svg/tree/gradient.h"

namespace quorvel::interchange {

// Gradients get their angle; patterns and the like are kept as texts.
class SvgPaints : public PaintLookup {
  public:
    explicit SvgPaints(SvgSource* source);
    AIColor paintOf(std::string_view reference, const svg::Affine& toDocument) override;

  private:
    struct Known {
        std::int32_t number = 0;
        const svg::Gradient* gradient = nullptr;
    };
    SvgSource& source_;
    std::unordered_map<std::string, Known> known_;  // by their texts
};

}  // namespace quorvel::interchange
