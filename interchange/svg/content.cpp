#include "interchange/svg/content.h"

#include "interchange/svg/art_loader.h"
#include "svg/tree/walk.h"

namespace quorvel::interchange {

std::unique_ptr<doc::Document> openContent(const std::shared_ptr<svg::File>& file, const svg::Content& content,
                                           const svg::Viewport& viewport) {
    auto source = std::make_unique<SvgSource>();
    source->tree.file = file;
    source->text = file->text();
    auto document = std::make_unique<doc::Document>(1.0F, 1.0F);
    ArtLoader loader(document.get(), source.get());
    loader.readsLayers = false;
    svg::TreeWalk walk(&source->tree, &loader);
    if (!walk.content(content.element, file->styles().at(content.style), {1, 0, 0, -1, 0, 0}, viewport)) return nullptr;
    loader.finish();
    document->setSource(std::move(source));
    document->finishLoading();
    return document;
}

}  // namespace quorvel::interchange
