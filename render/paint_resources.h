// What the painter of a drawing shares with those of what is in its definitions: its images and its budget.
#pragma once

#include <memory>
#include <utility>

#include "render/linked_image.h"
#include "render/paint_budget.h"

namespace quorvel::render {

struct PaintResources {
    // decoder: null to decode images in this process.
    static std::shared_ptr<PaintResources> of(ImageAccess access, ImageDecoder* decoder = nullptr) {
        return std::make_shared<PaintResources>(std::move(access), decoder, DrawingsWithin(),
                                                std::make_shared<PaintBudget>());
    }
    // Of a drawing that is an image in others, whose budget it spends; null: its own.
    static std::shared_ptr<PaintResources> within(ImageAccess access, DrawingsWithin drawings,
                                                  std::shared_ptr<PaintBudget> budget) {
        const bool isOwn = budget == nullptr;
        auto made = std::make_shared<PaintResources>(std::move(access), nullptr, std::move(drawings),
                                                     isOwn ? std::make_shared<PaintBudget>() : std::move(budget));
        made->isOutermost = isOwn;
        return made;
    }
    PaintResources(ImageAccess access, ImageDecoder* decoder, DrawingsWithin drawings,
                   std::shared_ptr<PaintBudget> shared)
        : budget(std::move(shared)), images(std::move(access), decoder, std::move(drawings), budget) {}

    std::shared_ptr<PaintBudget> budget;
    LinkedImages images;
    bool isOutermost = true;  // its painting begins the budget
};

}  // namespace quorvel::render
