// Prints the dimensions and frames of a drawing.
#include <iostream>

#include "app/dimension_list.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/json_output.h"

namespace quorvel::cli {

Result<int> listDrawing(const Options& options) {
    const auto drawing = DrawingSession::open(options, options.file);
    if (!drawing) return drawing.error();
    host::Host& host = (*drawing)->session().host();
    std::vector<app::RecordedDimension> dimensions = app::listDimensions(*host.document());
    app::examineEnds(host, &dimensions);
    if (options.isJson)
        std::cout << listJson(dimensions) << '\n';
    else
        std::cout << app::listText(dimensions);
    return kExitOk;
}

}  // namespace quorvel::cli
