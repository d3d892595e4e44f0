// Copies of art, beside their originals or in another drawing, and the names that they get.
#include <algorithm>

#include "document/document_impl.h"

namespace quorvel::doc {

bool Document::Impl::isNameTaken(std::string_view name) const {
    if (name.empty()) return false;
    if (drawing.tree.findByName(name) != 0) return true;
    if (source && !reservedNames) reservedNames = source->reservedNames();
    return reservedNames && reservedNames->contains(std::string(name));
}

bool Document::isNameTaken(std::string_view name) const { return impl_->isNameTaken(name); }

std::string Document::Impl::freeName(const std::string& base) const {
    for (int number = 2;; ++number) {
        std::string candidate = base + "-" + std::to_string(number);
        if (!isNameTaken(candidate)) return candidate;
    }
}

namespace {

// Calls visit(color) for each paint of the art that refers to one of the file's.
template <typename Visit>
void forEachPaint(PathData* path, TextData* text, Visit visit) {
    const auto check = [&](AIColor& color) {
        if (color.reference > 0) visit(color);
    };
    if (path != nullptr && path->style != nullptr) {
        AIPathStyle style = *path->style;
        check(style.fill);
        check(style.stroke);
        const bool same = style.fill.reference == path->style->fill.reference &&
                          style.stroke.reference == path->style->stroke.reference;
        if (!same) path->style = std::make_shared<const AIPathStyle>(style);
    }
    if (text == nullptr) return;
    for (TextRun& run : text->runs) {
        check(run.features.fill);
        check(run.features.stroke);
    }
}

bool comesAlong(const ArtCopy& copy, std::uint64_t drawing) {
    if (copy.kind == kForeignArt) return copy.drawing == drawing;
    return copy.children.empty() || std::any_of(copy.children.begin(), copy.children.end(),
                                                [&](const ArtCopy& child) { return comesAlong(child, drawing); });
}

}  // namespace

ArtCopy Document::copyOf(ArtId id) const {
    ArtCopy copy;
    const Art* art = find(id);
    if (art == nullptr) return copy;
    copy.original = id;
    copy.drawing = impl_->number;
    copy.kind = art->kind;
    copy.hidden = art->hidden;
    copy.locked = art->locked;
    if (art->path) copy.path = std::make_unique<PathData>(*art->path);
    if (copy.path) copy.path->segmentSelection.clear();
    if (art->text) copy.text = std::make_unique<TextData>(*art->text);
    copy.tags = art->tags;
    copy.name = art->name;
    forEachPaint(copy.path.get(), copy.text.get(), [&](const AIColor& color) {
        copy.paints.push_back(impl_->source ? impl_->source->paintText(color.reference) : std::string());
    });
    copy.foreignMatrix = art->foreignMatrix;
    copy.ref = {art->ref.index, true};
    for (ArtId child = art->lastChild; child != 0; child = find(child)->above) copy.children.push_back(copyOf(child));
    return copy;
}

// In no place, without names.
ArtId Document::Impl::make(const ArtCopy& copy, MadeCopies* made) {
    Art& art = drawing.tree.create(copy.kind).art;
    made->emplace_back(art.id, &copy);
    art.hidden = copy.hidden;
    art.locked = copy.locked;
    if (copy.path) *art.path = *copy.path;
    if (copy.text) *art.text = *copy.text;
    art.tags = copy.tags;
    if (copy.drawing == number) art.ref = copy.ref;
    art.foreignMatrix = copy.foreignMatrix;
    auto text = copy.paints.begin();
    forEachPaint(art.path.get(), art.text.get(), [&](AIColor& color) {
        if (copy.drawing == number) return;
        color.reference = source ? source->paintReference(*text) : 0;
        ++text;
    });
    for (const ArtCopy& child : copy.children)
        if (comesAlong(child, number)) drawing.tree.link(make(child, made), {art.id, art.firstChild});
    return art.id;
}

// With the names that are free.
ArtId Document::Impl::insertMade(const ArtCopy& copy, MadeCopies* made, const Place& place) {
    const ArtId top = make(copy, made);
    for (const auto& [id, from] : *made) {
        TextData* text = drawing.tree.slot(id).art.text.get();
        if (text == nullptr || text->pathObject == 0) continue;
        const auto path = std::find_if(made->begin(), made->end(),
                                       [&](const auto& one) { return one.second->original == text->pathObject; });
        const bool stays = copy.drawing == number && drawing.tree.living(text->pathObject) != nullptr;
        text->pathObject = path != made->end() ? path->first : stays ? text->pathObject : 0;
    }
    insertNew(top, place);
    for (const auto& [id, from] : *made) {
        if (from->name.empty()) continue;
        const bool taken = isNameTaken(from->name);
        drawing.tree.setName(drawing.tree.slot(id), taken ? freeName(from->name) : from->name);
    }
    return top;
}

ArtId Document::insertCopy(const ArtCopy& copy, AIPaintOrder placement, ArtId prep) {
    const std::optional<Place> place = impl_->placeFor(copy.kind, placement, prep);
    if (!place || copy.original == 0 || !comesAlong(copy, impl_->number)) return 0;
    MadeCopies made;
    return impl_->insertMade(copy, &made, *place);
}

ArtId Document::duplicateArt(ArtId id, const std::string& newName) {
    const Art* art = find(id);
    if (art == nullptr || art->parent == 0 || isNameTaken(newName)) return 0;
    ArtCopy copy = copyOf(id);
    copy.name = newName;
    MadeCopies made;
    const ArtId top = impl_->insertMade(copy, &made, {art->parent, id});
    for (const auto& [twin, from] : made) {
        Art& selected = impl_->drawing.tree.slot(twin).art;
        const Art& original = *find(from->original);
        selected.selected = original.selected;
        if (original.path) selected.path->segmentSelection = original.path->segmentSelection;
    }
    return top;
}

}  // namespace quorvel::doc
