// Finds objects under the mouse and changes what is selected.
#include "desktop/editing.h"

#include <QPainterPathStroker>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "cli/script.h"
#include "desktop/outline.h"
#include "desktop/recorder.h"

namespace quorvel::desktop {

namespace {

constexpr float kPasteOffset = 12;         // points, to the right and down
constexpr int kMostOutlinePoints = 10000;  // drawn at each move of the mouse

void SelectBelow(host::Document& document, host::ArtId id, bool selected) {
    document.setSelected(id, selected);
    for (host::ArtId child = document.find(id)->firstChild; child != 0; child = document.find(child)->below)
        SelectBelow(document, child, selected);
}

// Gives the largest objects whose parts are all selected, the top one first; true when the art itself is one of them.
// A part that is hidden or locked is taken with the whole alone.
bool GatherSelected(const host::Document& document, const host::Art& art, std::vector<host::ArtId>* found) {
    const std::size_t before = found->size();
    bool whole = art.selected;
    if (!whole && art.kind == kGroupArt && art.firstChild != 0) {
        whole = true;
        for (host::ArtId id = art.firstChild; id != 0; id = document.find(id)->below) {
            const host::Art& child = *document.find(id);
            const std::size_t above = found->size();
            whole = GatherSelected(document, child, found) && whole;
            if (child.hidden || child.locked) found->resize(above);
        }
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
    const std::optional<QRectF> box = BoxOf(document, art);
    if (!box || !box->adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(point)) return false;
    if (art.kind == kTextFrameArt) return true;
    if (art.kind == kForeignArt) return FrameOf(document, art).contains(point);
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
        if (!CanBeTaken(art, layer)) return true;
        const std::optional<QRectF> own = BoxOf(*desk_->document(), art);
        if (own && box.left() <= own->left() && box.right() >= own->right() && box.top() <= own->top() &&
            box.bottom() >= own->bottom())
            found.push_back(art.id);
        return true;
    });
    return found;
}

// It is asked for at each paint, and a walk over the whole drawing is too much for that.
const Editing::Seen* Editing::seen() const {
    const host::Document* document = desk_->document();
    if (document == nullptr) return nullptr;
    if (seen_ && seen_->drawing == document->number() && seen_->change == document->changeCount()) return &*seen_;
    seen_ = Seen{document->number(), document->changeCount(), {}, {}, {}};
    ForEachObject(*document, [&](const host::Art& art, const host::Layer& layer) {
        if (CanBeTaken(art, layer)) GatherSelected(*document, art, &seen_->selection);
        return true;
    });
    for (const host::ArtId id : seen_->selection) {
        const std::optional<QRectF> box = BoxOf(*document, *document->find(id));
        if (!box) continue;
        const QRectF one = box->adjusted(0, 0, 1e-6, 1e-6);
        seen_->box = seen_->box.isNull() ? one : seen_->box.united(one);
    }
    return &*seen_;
}

const std::vector<host::ArtId>& Editing::selection() const {
    static const std::vector<host::ArtId> kNone;
    const Seen* now = seen();
    return now == nullptr ? kNone : now->selection;
}

QRectF Editing::selectionBox() const {
    const Seen* now = seen();
    return now == nullptr ? QRectF() : now->box;
}

const QPainterPath& Editing::selectionOutline() const {
    static const QPainterPath kNone;
    if (seen() == nullptr) return kNone;
    if (seen_->outline) return *seen_->outline;
    seen_->outline.emplace();
    for (const host::ArtId id : seen_->selection) {
        seen_->outline->addPath(OutlineBelow(*desk_->document(), *desk_->document()->find(id)));
        if (seen_->outline->elementCount() <= kMostOutlinePoints) continue;
        seen_->outline->clear();
        break;
    }
    return *seen_->outline;
}

// --- selecting
// --------------------------------------------------------------------------------------------------------

void Editing::select(const std::vector<host::ArtId>& objects) {
    const host::Document* document = desk_->document();
    if (document == nullptr) return;
    // What has gone since it was pointed at is nothing.
    std::vector<host::ArtId> living = objects;
    std::erase_if(living, [&](host::ArtId id) { return document->find(id) == nullptr; });
    std::vector<host::ArtId> now;
    ForEachObject(*document, [&](const host::Art& art, const host::Layer&) {
        GatherSelected(*document, art, &now);
        return true;
    });
    if (living == now) return;
    std::string words;
    if (desk_->recorder().on()) {
        cli::ArtNames names(*document);
        for (const host::ArtId id : living) words += ' ' + cli::quotedWord(names.of(id));
    }
    desk_->recorder().line("select" + (words.empty() ? " none" : words));
    desk_->host().edit("Select", [&](host::Document& changed) {
        ForEachObject(changed, [&](const host::Art& art, const host::Layer&) {
            SelectBelow(changed, art.id, false);
            return true;
        });
        for (const host::ArtId id : living) SelectBelow(changed, id, true);
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

host::StepName StepNameOf(const Desk& desk, const char* english, const char* japanese) {
    const std::string name = desk.say(english, japanese).toStdString();
    return desk.english() ? host::StepName{"Undo " + name, "Redo " + name}
                          : host::StepName{name + "の取り消し", name + "のやり直し"};
}

template <typename Change>
void Editing::changeSelection(const host::StepName& name, Change change, const std::string& verb,
                              const std::string& words) {
    const std::vector<host::ArtId> objects = selection();
    if (objects.empty()) return;
    std::vector<std::string> lines;
    if (desk_->recorder().on()) {
        cli::ArtNames names(*desk_->document());
        for (const host::ArtId id : objects) lines.push_back(verb + ' ' + cli::quotedWord(names.of(id)) + words);
        // The last first: what is deleted takes a place from those behind it alone.
        std::reverse(lines.begin(), lines.end());
    }
    desk_->recorder().plan(lines);
    std::vector<bool> changed;  // what changes nothing makes no step in a script
    const bool done = desk_->host().edit(name, [&](host::Document& document) {
        bool all = true;
        for (auto id = objects.rbegin(); id != objects.rend(); ++id) {
            const std::uint64_t before = document.changeCount();
            all = change(document, *id) && all;
            changed.push_back(document.changeCount() != before);
        }
        return all;
    });
    const bool any = done && std::find(changed.begin(), changed.end(), true) != changed.end();
    auto place = changed.begin();
    std::erase_if(lines, [&](const std::string&) { return !any || !*place++; });
    desk_->recorder().step(lines);
    if (any) sendTracking();
}

// What follows the art is a part of the same deed, and one undo takes both back.
void Editing::sendTracking() {
    desk_->recorder().line(std::string("notify ") + kTrackingNotifier);
    int steps = 0;
    const auto counting = QObject::connect(desk_, &Desk::stepMade, [&steps] { ++steps; });
    desk_->host().notify(kTrackingNotifier);
    QObject::disconnect(counting);
    const bool joins = steps > 0;
    for (; steps > 0 && desk_->document()->joinLastSteps(); --steps) desk_->recorder().lastStepsJoined();
    if (joins) emit desk_->stepMade(QString::fromStdString(*desk_->document()->undoName()));
}

void Editing::move(RealPoint by) {
    const RealMatrix matrix{1, 0, 0, 1, by.h, by.v};
    changeSelection(
        StepNameOf(*desk_, "Move", "移動"),
        [&](host::Document& document, host::ArtId id) { return document.transform(id, matrix, 1); }, "move",
        ' ' + Shortest(by.h) + ' ' + Shortest(by.v));
}

void Editing::turn(double degrees, RealPoint pivot) {
    const RealMatrix matrix = turnMatrix(degrees, pivot);
    changeSelection(
        StepNameOf(*desk_, "Rotate", "回転"),
        [&](host::Document& document, host::ArtId id) { return document.transform(id, matrix, 1); }, "turn",
        ' ' + Shortest(degrees) + ' ' + Shortest(pivot.h) + ' ' + Shortest(pivot.v));
}

void Editing::removeAs(const host::StepName& name) {
    changeSelection(
        name, [](host::Document& document, host::ArtId id) { return document.removeArt(id); }, "delete", "");
}

void Editing::remove() { removeAs(StepNameOf(*desk_, "Delete", "消去")); }

// --- copies
// -----------------------------------------------------------------------------------------------------------

void Editing::copy() {
    const std::vector<host::ArtId>& taken = selection();
    if (taken.empty()) return;
    if (desk_->recorder().on()) {
        cli::ArtNames names(*desk_->document());
        std::string words;
        for (const host::ArtId id : taken) words += ' ' + cli::quotedWord(names.of(id));
        desk_->recorder().line("clip" + words);
    }
    clipboard_.take(*desk_->document(), taken);
    pastes_ = 0;
}

void Editing::cut() {
    copy();
    removeAs(StepNameOf(*desk_, "Cut", "カット"));
}

// Each paste lies beside the one before.
void Editing::paste() {
    if (desk_->document() == nullptr || clipboard_.empty()) return;
    const float away = kPasteOffset * static_cast<float>(pastes_ + 1);
    desk_->recorder().plan({"paste " + Shortest(away) + ' ' + Shortest(-away)});
    std::optional<cli::Clipboard::Pasted> pasted;
    desk_->host().edit(StepNameOf(*desk_, "Paste", "ペースト"), [&](host::Document& document) {
        pasted = clipboard_.paste(document, {away, -away});
        return pasted.has_value();
    });
    const bool made = pasted && !pasted->arts.empty();
    desk_->recorder().step(made ? std::vector{"paste " + Shortest(away) + ' ' + Shortest(-away)}
                                : std::vector<std::string>());
    if (made) {
        ++pastes_;
        select(pasted->arts);
    }
    if (!pasted)
        desk_->user().showAlert(desk_
                                    ->say("There is no layer to paste into: all are hidden or locked.",
                                          "ペーストできるレイヤーがありません。すべて非表示またはロックされています。")
                                    .toStdString());
    else if (pasted->left > 0)
        desk_->user().showAlert(desk_
                                    ->say("Images stay in the drawing that they are from; they have not been pasted.",
                                          "画像は元の図面にのみ置けるため、ペーストされませんでした。")
                                    .toStdString());
}

}  // namespace quorvel::desktop
