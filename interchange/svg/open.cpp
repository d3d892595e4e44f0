// Opening a drawing: its file is read, and one walk makes the tree and loads the art. The document is handed out only
// when everything was read.
#include <algorithm>
#include <memory>
#include <set>

#include "fonts/fonts.h"
#include "interchange/svg/art_loader.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/svg.h"
#include "svg/tree/file.h"
#include "svg/tree/walk.h"

namespace quorvel::interchange {
namespace {

svg::XmlNode namedViewOf(const svg::File& file, const svg::XmlNode& root) {
    const auto children = root.children();
    const auto found = std::find_if(children.begin(), children.end(), [&](const svg::XmlNode& child) {
        return child.isElement() && child.name() == file.names().sodipodi + "namedview";
    });
    return found == children.end() ? svg::XmlNode() : *found;
}

// The layer whose element, or an element within it, has the id.
doc::LayerId layerById(std::string_view id, const ArtLoader& loader, const SvgSource& source) {
    for (svg::XmlNode node = source.tree.file->find(id); node.isElement(); node = node.parent()) {
        // Of several layers for one element, the topmost.
        const auto found = std::find_if(loader.layers.rbegin(), loader.layers.rend(), [&](const auto& layer) {
            return source.element(layer.first).nameOffset == node.offset();
        });
        if (found != loader.layers.rend()) return found->second;
    }
    return 0;
}

std::vector<std::string> missingFonts(const ArtLoader& loader) {
    std::set<std::string> missing;
    for (const auto& font : loader.fonts()) missing.insert(fonts::missingFamily(std::get<0>(font.first)));
    missing.erase("");
    return {missing.begin(), missing.end()};
}

}  // namespace

Result<SvgDrawing> readSvg(std::string bytes) {
    Result<FileText> decoded = decodeText(std::move(bytes));
    if (!decoded) return decoded.error();
    Result<std::shared_ptr<svg::File>> opened = svg::File::open(std::move(decoded->text));
    if (!opened) return opened.error();
    const std::shared_ptr<svg::File>& file = *opened;
    const svg::XmlNode root = file->root();
    const svg::Page& page = file->page();
    auto source = std::make_unique<SvgSource>();
    source->tree.file = file;
    source->text = file->text();
    source->form = std::move(decoded->form);
    const auto rootOwn = [&](const char* name) { return root.attribute(file->names().own, name).value(); };
    source->rulerUnit = rootOwn(own_attribute::kRuler);
    if (source->rulerUnit.empty()) source->rulerUnit = page.unit;
    const svg::StyleSheet& sheet = file->cascade().sheet;
    source->hasStyleSheet = !sheet.empty() || sheet.skippedSome();

    SvgDrawing result;
    result.rulerUnit = source->rulerUnit;
    auto document = std::make_unique<doc::Document>(static_cast<float>(page.width), static_cast<float>(page.height));
    ArtLoader loader(document.get(), source.get());
    loader.looseLayerTitles = decodeList(rootOwn(own_attribute::kLayerTitles));
    svg::TreeWalk walk(&source->tree, &loader);
    if (Status walked = walk.wholeFile(); !walked) return walked.error();
    loader.finish();
    if (file->hasMarkupEntities()) walk.warnings.insert(makeError(ErrorCode::kMarkupEntities));
    if (sheet.skippedSome()) walk.warnings.insert(makeError(ErrorCode::kSkippedRules));
    if (file->cascade().passedTransform) walk.warnings.insert(makeError(ErrorCode::kTransformsInCss));

    std::string_view current = rootOwn(own_attribute::kCurrentLayer);
    if (const svg::XmlNode view = namedViewOf(*file, root)) {
        source->namedViewOffset = view.offset();
        if (const auto named = view.attribute(file->names().inkscape, "current-layer")) current = named.value();
    }
    const doc::LayerId layer = layerById(current, loader, *source);
    source->currentLayer = layer;
    result.missingFonts = missingFonts(loader);
    result.warnings.assign(walk.warnings.begin(), walk.warnings.end());
    file->releaseMarkup();
    source->tree.elements.shrink_to_fit();
    source->records.shrink_to_fit();
    document->setSource(std::move(source));
    document->finishLoading();
    document->setCurrentLayer(layer != 0 ? layer : document->layers().front());
    document->markSaved();
    result.document = std::move(document);
    return result;
}

std::unique_ptr<doc::Document> newDrawing(float width, float height) {
    auto document = std::make_unique<doc::Document>(width, height);
    document->setSource(std::make_unique<PaintTexts>());
    return document;
}

}  // namespace quorvel::interchange
