// What commands print with --json, as indented text. Bytes that are no UTF-8, as file names may hold, become U+FFFD.
#pragma once

#include <string>
#include <vector>

#include "app/dimension_list.h"
#include "app/drawing_information.h"
#include "app/recalculation.h"

namespace quorvel::cli {

std::string listJson(const std::vector<app::RecordedDimension>& dimensions);
std::string informationJson(const std::string& file, const app::DrawingInformation& information,
                            app::Language language);
// "{"version": 1, "drawings": [", before the drawings; each is from checkJson, informationJson or errorJson, and "]}"
// ends them. The version grows when something that was there has changed or gone.
constexpr int kDrawingsJsonVersion = 1;
std::string drawingsJsonHead();
std::string checkJson(const std::string& file, const std::vector<app::DimensionCheck>& checks);
std::string errorJson(const std::string& file, const std::string& cause);

}  // namespace quorvel::cli
