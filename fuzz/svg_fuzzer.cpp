// Any bytes as a drawing: they are refused with one line, or they give a document that saves as the same bytes, that
// can be changed, and whose changed file opens again.
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "interchange/svg/svg.h"

using namespace quorvel;
using fuzz::require;
using fuzz::requireSame;

namespace {

// Something of everything that saving can splice.
void change(doc::Document& document) {
    const doc::LayerId layer = document.currentLayer();
    const doc::ArtId root = document.layer(layer)->root;
    if (const doc::ArtId top = document.find(root)->firstChild; top != 0) {
        document.setTag(top, "quorvel_object_id", "\x81\x5C%\"");
        document.transform(top, {0.5F, 0.25F, -0.25F, 0.5F, 3, 4}, 1);
        document.setHidden(top, !document.find(top)->hidden);
    }
    if (const doc::ArtId low = document.find(root)->lastChild; low != 0) document.moveArt(low, kPlaceInsideOnTop, root);
    const doc::ArtId path = document.insertArt(kPathArt, kPlaceInsideOnTop, root);
    const PathSegment ends[] = {{{1, 2}, {1, 2}, {3, 4}, 1}, {{5, 6}, {7, 8}, {5, 6}, 0}};
    document.setSegments(path, 0, ends);
    document.setLayerTitle(layer, "Title");
    document.insertLayer("New", layer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Result<interchange::SvgDrawing> read = interchange::readSvg(text);
    if (!read) {
        const Error& error = read.error();
        require(error.code != ErrorCode::kNone);
        std::string words = error.element + error.elementId;  // what is said of it stays one line
        for (const std::string& argument : error.arguments) words += argument;
        require(words.find('\n') == std::string::npos);
        return 0;
    }
    requireSame(text, interchange::writeSvg(*read->document));
    change(*read->document);
    const std::string changed = interchange::writeSvg(*read->document);
    const Result<interchange::SvgDrawing> again = interchange::readSvg(changed);
    require(static_cast<bool>(again));
    requireSame(changed, interchange::writeSvg(*again->document));
    require(again->document->layers().size() >= 2);
    return 0;
}
