// Whether the points of a dimension can follow their art, asked without a rebuild.
#pragma once

#include <memory>
#include <vector>

#include "hostapi/dimensions.h"
#include "plugin/shell/globals.h"

namespace quorvel {

// Holds what reading a dimension overwrites, the settings and the state of the tool, and puts it back at its end.
class KeptState {
  public:
    explicit KeptState(PluginGlobals* globals);
    ~KeptState();
    KeptState(const KeptState&) = delete;
    KeptState& operator=(const KeptState&) = delete;

  private:
    PluginGlobals* globals_;
    std::unique_ptr<PrefsRecord> prefs_;
    std::unique_ptr<ToolState> live_, drawn_;
};

// from, to, stops; of a mark from and its text; empty when the group is neither.
std::vector<DimensionEnd> ExamineDimension(AIArtHandle group);
// Tells the host which points of a dimension that a tool has just made cannot follow.
void ReportUnheldEnds(AIArtHandle group);

}  // namespace quorvel
