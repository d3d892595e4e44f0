#include "plugin/record/examine.h"

#include "plugin/annotation/mark_record.h"
#include "plugin/record/follow.h"
#include "plugin/shell/suites.h"

namespace quorvel {

KeptState::KeptState(PluginGlobals* globals)
    : globals_(globals),
      prefs_(std::make_unique<PrefsRecord>(globals->prefs)),
      live_(std::make_unique<ToolState>(globals->liveState)),
      drawn_(std::make_unique<ToolState>(globals->drawnState)) {}

KeptState::~KeptState() {
    globals_->prefs = *prefs_;
    globals_->liveState = *live_;
    globals_->drawnState = *drawn_;
}

std::vector<DimensionEnd> ExamineDimension(AIArtHandle group) {
    if (!IsDimensionGroup(group)) return ExamineMark(group);
    const KeptState kept(gGlobals);
    return FindEnds(gGlobals, ReadDimensionRecord(group));
}

void ReportUnheldEnds(AIArtHandle group) {
    if (sDimension == nullptr) return;
    std::vector<DimensionEnd> ends = ExamineDimension(group);
    std::erase_if(ends, [](const DimensionEnd& end) { return end.state == kLinkHeld; });
    if (!ends.empty()) sDimension->ReportEnds(group, ends.data(), static_cast<std::int32_t>(ends.size()));
}

}  // namespace quorvel
