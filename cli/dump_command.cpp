// Prints the art tree of a drawing.
#include <iostream>

#include "app/dump.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"

namespace quorvel::cli {

Result<int> dumpDrawing(const Options& options) {
    const auto drawing = DrawingInput::read(options);
    if (!drawing) return drawing.error();
    std::cout << app::dumpDocument((*drawing)->document(), (*drawing)->rulerUnit()) << '\n';
    return kExitOk;
}

}  // namespace quorvel::cli
