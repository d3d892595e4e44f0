// Finds objects under the mouse and changes what is selected.
#include "desktop/editing.h"

#include <QPainterPathStroker>
#include <cmath>
#include <numbers>

#include "cli/editing.h"
#include "cli/script.h"
#include "desktop/outline.h"
#include "desktop/recorder.h"

namespace quorvel::desktop {

namespace {

constexpr float kPasteOffset = 12;  // points, to the right and down

void SelectBelow(host::Document& document, host::ArtId id, bool selected) {
    document.setSelected(id, selected);
    for (host::ArtId child = document.find(id)->firstChild; child != 0; child = document.find(child)->below)
        SelectBelow(document, child, selected);
}

// Gives the largest objects whose parts are all selected, the top one first; true when the art itself is one of them.
bool GatherSelected(const host::Document& document, const host::Art& art, std::vector<host::ArtId>* found) {
    const std::size_t before = found->size();
    bool whole = art.selected;
    if (!whole && art.kind == kGroupArt && art.firstChild != 0) {
        whole = true;
        for (host::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
            whole = GatherSelected(document, *document.find(child), found) && whole;
    }
    if (whole) {
        found->resize(before);
        found->push_back(art.id);
    }
    return whole;
}

// Calls visit(object, layer) from the top one down, until it gives false.
template <typename Visit>
void ForEachObject(const host::Document& document, Visit visit) {
    for (const host::LayerId id : document.layers()) {
        const host::Layer* layer = document.layer(id);
        for (host::ArtId child = document.find(layer->root)->firstChild; child != 0;) {
            const host::Art* art = document.find(child);
            child = art->below;
            if (!visit(*art, *layer)) return;
        }
    }
}

bool CanBeTaken(const host::Art& art, const host::Layer& layer) {
    return layer.visible && layer.editable && !art.hidden && !art.locked;
}

bool Hits(const host::Document& document, const host::Art& art, QPointF point, double tolerance) {
    if (art.hidden) return false;
    const RealRect bounds = document.bounds(art.id);
    if (IsEmpty(bounds) || !ToQt(bounds).adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(point))
        return false;
    if (art.kind == kTextFrameArt || art.kind == kForeignArt) return true;
    if (art.kind == kGroupArt) {
        for (host::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
            if (Hits(document, *document.find(child), point, tolerance)) return true;
        return false;
    }
    const host::PathData* painted = PaintedPath(document, art);
    if (painted == nullptr || painted->style == nullptr) return false;
    const QPainterPath outline = OutlineOf(document, art);
    if (painted->style->fillPaint != 0 && outline.contains(point)) return true;
    QPainterPathStroker reach;
    reach.setWidth(std::max(double(painted->style->strokeWidth), 2 * tolerance));
    reach.setCurveThreshold(tolerance / 4);
    return reach.createStroke(outline).contains(point);
}

}  // namespace

RealMatrix Editing::turnMatrix(double degrees, RealPoint pivot) {
    const double angle = degrees * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    return {static_cast<float>(c),
            static_cast<float>(s),
            static_cast<float>(-s),
            static_cast<float>(c),
            static_cast<float>(pivot.h - c * pivot.h + s * pivot.v),
            static_cast<float>(pivot.v - s * pivot.h - c * pivot.v)};
}

// --- finding
// ----------------------------------------------------------------------------------------------------------

host::ArtId Editing::objectAt(RealPoint point, double tolerance) const {
    host::ArtId found = 0;
    ForEachObject(*desk_->document(), [&](const host::Art& art, const host::Layer& layer) {
        if (CanBeTaken(art, layer) && Hits(*desk_->document(), art, ToQt(point), tolerance)) found = art.id;
        return found == 0;
    });
    return found;
}

host::ArtId Editing::partAt(RealPoint point, double tolerance) const {
    const host::Document& document = *desk_->document();
    host::ArtId found = objectAt(point, tolerance);
    for (host::ArtId child = found; child != 0;) {
        const host::Art* art = document.find(child);
        const bool hit = !art->locked && Hits(document, *art, ToQt(point), tolerance);
        if (hit) found = child;
        child = !hit ? art->below : art->kind == kGroupArt ? art->firstChild : 0;
    }
    return found;
}

std::vector<host::ArtId> Editing::objectsIn(const QRectF& box) const {
    std::vector<host::ArtId> found;
    ForEachObject(*desk_->document(), [&](const host::Art& art, const host::Layer& layer) {
        const RealRect bounds = desk_->document()->bounds(art.id);
        if (CanBeTaken(art, layer) && !IsEmpty(bounds) && box.left() <= bounds.left && box.right() >= bounds.right &&
            box.top() <= bounds.bottom && box.bottom() >= bounds.top)
            found.push_back(art.id);
        return true;
    });
    return found;
}

std::vector<host::ArtId> Editing::selection() const {
    std::vector<host::ArtId> found;
    if (desk_->document() == nullptr) return found;
    ForEachObject(*desk_->document(), [&](const host::Art& art, const host::Layer&) {
        GatherSelected(*desk_->document(), art, &found);
        return true;
    });
    return found;
}

QRectF Editing::selectionBox() const {
    QRectF box;
    for (const host::ArtId id : selection()) {
        const RealRect bounds = desk_->document()->bounds(id);
        if (IsEmpty(bounds)) continue;
        const QRectF one = ToQt(bounds).adjusted(0, 0, 1e-6, 1e-6);
        box = box.isNull() ? one : box.united(one);
    }
    return box;
}

// --- selecting
// --------------------------------------------------------------------------------------------------------

void Editing::select(const std::vector<host::ArtId>& objects) {
    if (desk_->document() == nullptr || objects == selection()) return;
    std::string words;
    if (desk_->recorder().on()) {
        cli::ArtNames names(*desk_->document());
        for (const host::ArtId id : objects) words += ' ' + cli::quotedWord(names.of(id));
    }
    desk_->recorder().line("select" + (words.empty() ? " none" : words));
    desk_->host().edit("Select", [&](host::Document& document) {
        ForEachObject(document, [&](const host::Art& art, const host::Layer&) {
            SelectBelow(document, art.id, false);
            return true;
        });
        for (const host::ArtId id : objects) SelectBelow(document, id, true);
        return true;
    });
}

void Editing::selectAll() {
    if (desk_->document() == nullptr) return;
    std::vector<host::ArtId> all;
    ForEachObject(*desk_->document(), [&](const host::Art& art, const host::Layer& layer) {
        if (CanBeTaken(art, layer)) all.push_back(art.id);
        return true;
    });
    select(all);
}

// --- changing
// ---------------------------------------------------------------------------------------------------------

template <typename Change>
void Editing::changeSelection(const char* name, Change change, const std::string& verb, const std::string& words) {
    const std::vector<host::ArtId> objects = selection();
    if (objects.empty()) return;
    std::vector<std::string> lines;
    if (desk_->recorder().on()) {
        // The last first: what is deleted takes a place from those behind it alone.
        cli::ArtNames names(*desk_->document());
        for (auto id = objects.rbegin(); id != objects.rend(); ++id)
            lines.push_back(verb + ' ' + cli::quotedWord(names.of(*id)) + words);
    }
    const bool done = desk_->host().edit(name, [&](host::Document& document) {
        bool all = true;
        for (const host::ArtId id : objects) all = change(document, id) && all;
        return all;
    });
    if (!done) return;
    desk_->recorder().step(lines);
    sendTracking();
}

void Editing::sendTracking() {
    desk_->recorder().line(std::string("notify ") + kTrackingNotifier);
    desk_->host().notify(kTrackingNotifier);
}

void Editing::move(RealPoint by) {
    const RealMatrix matrix{1, 0, 0, 1, by.h, by.v};
    changeSelection(
        "Move", [&](host::Document& document, host::ArtId id) { return document.transform(id, matrix, 1); }, "move",
        ' ' + Shortest(by.h) + ' ' + Shortest(by.v));
}

void Editing::turn(double degrees, RealPoint pivot) {
    const RealMatrix matrix = turnMatrix(degrees, pivot);
    changeSelection(
        "Rotate", [&](host::Document& document, host::ArtId id) { return document.transform(id, matrix, 1); }, "turn",
        ' ' + Shortest(degrees) + ' ' + Shortest(pivot.h) + ' ' + Shortest(pivot.v));
}

void Editing::remove() {
    changeSelection(
        "Delete", [](host::Document& document, host::ArtId id) { return document.removeArt(id); }, "delete", "");
}

// --- copies
// -----------------------------------------------------------------------------------------------------------

ArtCopy Editing::copyOf(const host::Art& art) const {
    ArtCopy copy;
    copy.id = art.id;
    copy.drawing = drawing_;
    copy.kind = art.kind;
    copy.tags = art.tags;
    if (art.path != nullptr) copy.path = std::make_unique<host::PathData>(*art.path);
    if (art.text != nullptr) copy.text = std::make_unique<host::TextData>(*art.text);
    ForEachChildUpwards(*desk_->document(), art,
                        [&](const host::Art& child) { copy.children.push_back(copyOf(child)); });
    return copy;
}

void Editing::copy() {
    std::vector<ArtCopy> taken;
    for (const host::ArtId id : selection()) taken.push_back(copyOf(*desk_->document()->find(id)));
    if (!taken.empty()) clipboard_ = std::move(taken);
}

void Editing::cut() {
    copy();
    remove();
}

host::ArtId Editing::insert(host::Document& document, const ArtCopy& copy, host::ArtId parent) const {
    const host::ArtId made = document.insertArt(copy.kind, parent == 0 ? kPlaceAboveAll : kPlaceInsideOnTop, parent);
    if (made == 0) return 0;
    if (copy.path != nullptr) {
        document.setSegments(made, 0, copy.path->segments);
        document.setClosed(made, copy.path->closed);
        if (copy.path->style != nullptr) document.setStyle(made, *copy.path->style);
    }
    if (copy.text != nullptr) document.setText(made, *copy.text);
    for (const host::Tag& tag : copy.tags) document.setTag(made, tag.name, tag.value);
    for (const ArtCopy& child : copy.children) insert(document, child, made);
    return made;
}

std::string Editing::freeId(const host::Document& document) const {
    for (int n = 1;; ++n) {
        std::string name = "copy" + std::to_string(n);
        if (document.findBySvgId(name) == 0) return name;
    }
}

// Art that still stands is copied where it stands, with all that the host keeps of it; what was cut, or comes from
// another drawing, is made anew on the current layer.
void Editing::paste() {
    if (desk_->document() == nullptr || clipboard_.empty()) return;
    std::vector<std::string> lines;
    std::vector<host::ArtId> made;
    const RealMatrix beside{1, 0, 0, 1, kPasteOffset, -kPasteOffset};
    const bool done = desk_->host().edit("Paste", [&](host::Document& document) {
        for (auto copy = clipboard_.rbegin(); copy != clipboard_.rend(); ++copy) {
            const host::Art* original = copy->drawing == drawing_ ? document.find(copy->id) : nullptr;
            const std::string name = freeId(document);
            const std::string from =
                original != nullptr && desk_->recorder().on() ? cli::ArtNames(document).of(copy->id) : std::string();
            const host::ArtId id =
                original != nullptr ? document.duplicateArt(copy->id, name) : insert(document, *copy, 0);
            if (id == 0) return false;
            if (original == nullptr) document.setSvgId(id, name);
            document.transform(id, beside, 1);
            made.push_back(id);
            const bool said = original != nullptr;
            lines.push_back(said ? "copy " + cli::quotedWord(from) + ' ' + cli::quotedWord(name)
                                 : "# paste of art that does not stand in this drawing any more");
            if (said)
                lines.push_back("move " + cli::quotedWord(name) + ' ' + Shortest(kPasteOffset) + ' ' +
                                Shortest(-kPasteOffset));
        }
        return true;
    });
    if (!done) return;
    desk_->recorder().step(lines);
    select({made.rbegin(), made.rend()});
}

}  // namespace quorvel::desktop
