// Finds objects under the mouse and changes what is selected.
#include "desktop/canvas/selection_editing.h"

#include <QPainterPathStroker>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "app/recorder.h"
#include "app/script.h"
#include "render/outline.h"

namespace quorvel::desktop {

namespace {

constexpr float kPasteOffset = 12;         // points, to the right and down
constexpr int kMostOutlinePoints = 10000;  // drawn at each move of the mouse

void selectBelow(doc::Document& document, doc::ArtId id, bool selected) {
    document.setSelected(id, selected);
    for (doc::ArtId child = document.find(id)->firstChild; child != 0; child = document.find(child)->below)
        selectBelow(document, child, selected);
}

// Gives the largest objects whose parts are all selected, the top one first; true when the art itself is one of them.
// A part that is hidden or locked is taken with the whole alone.
bool gatherSelected(const doc::Document& document, const doc::Art& art, std::vector<doc::ArtId>* found) {
    const std::size_t before = found->size();
    bool whole = art.selected;
    if (!whole && art.kind == kGroupArt && art.firstChild != 0) {
        whole = true;
        for (doc::ArtId id = art.firstChild; id != 0; id = document.find(id)->below) {
            const doc::Art& child = *document.find(id);
            const std::size_t above = found->size();
            whole = gatherSelected(document, child, found) && whole;
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
void forEachObject(const doc::Document& document, Visit visit) {
    for (const doc::LayerId id : document.layers()) {
        const doc::Layer* layer = document.layer(id);
        for (doc::ArtId child = document.find(layer->root)->firstChild; child != 0;) {
            const doc::Art* art = document.find(child);
            child = art->below;
            if (!visit(*art, *layer)) return;
        }
    }
}

bool canBeTaken(const doc::Art& art, const doc::Layer& layer) {
    return layer.visible && layer.editable && !art.hidden && !art.locked;
}

bool hits(const doc::Document& document, const doc::Art& art, QPointF point, double tolerance) {
    if (art.hidden) return false;
    const std::optional<QRectF> box = render::boxOf(document, art);
    if (!box || !box->adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(point)) return false;
    if (art.kind == kTextFrameArt) return true;
    if (art.kind == kForeignArt) return render::frameOf(document, art).contains(point);
    if (art.kind == kGroupArt) {
        for (doc::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
            if (hits(document, *document.find(child), point, tolerance)) return true;
        return false;
    }
    const doc::PathData* painted = render::paintedPath(document, art);
    if (painted == nullptr || painted->style == nullptr) return false;
    const QPainterPath outline = render::outlineOf(document, art);
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

doc::ArtId Editing::objectAt(RealPoint point, double tolerance) const {
    doc::ArtId found = 0;
    forEachObject(*session_->document(), [&](const doc::Art& art, const doc::Layer& layer) {
        if (canBeTaken(art, layer) && hits(*session_->document(), art, render::toQt(point), tolerance)) found = art.id;
        return found == 0;
    });
    return found;
}

doc::ArtId Editing::partAt(RealPoint point, double tolerance) const {
    const doc::Document& document = *session_->document();
    doc::ArtId found = objectAt(point, tolerance);
    for (doc::ArtId child = found; child != 0;) {
        const doc::Art* art = document.find(child);
        const bool hit = !art->locked && hits(document, *art, render::toQt(point), tolerance);
        if (hit) found = child;
        child = !hit ? art->below : art->kind == kGroupArt ? art->firstChild : 0;
    }
    return found;
}

std::vector<doc::ArtId> Editing::objectsIn(const QRectF& box) const {
    std::vector<doc::ArtId> found;
    forEachObject(*session_->document(), [&](const doc::Art& art, const doc::Layer& layer) {
        if (!canBeTaken(art, layer)) return true;
        const std::optional<QRectF> own = render::boxOf(*session_->document(), art);
        if (own && box.left() <= own->left() && box.right() >= own->right() && box.top() <= own->top() &&
            box.bottom() >= own->bottom())
            found.push_back(art.id);
        return true;
    });
    return found;
}

// It is asked for at each paint, and a walk over the whole drawing is too much for that.
const Editing::Seen* Editing::seen() const {
    const doc::Document* document = session_->document();
    if (document == nullptr) return nullptr;
    if (seen_ && seen_->drawing == document->number() && seen_->change == document->changeCount()) return &*seen_;
    seen_ = Seen{document->number(), document->changeCount(), {}, {}, {}};
    forEachObject(*document, [&](const doc::Art& art, const doc::Layer& layer) {
        if (canBeTaken(art, layer)) gatherSelected(*document, art, &seen_->selection);
        return true;
    });
    for (const doc::ArtId id : seen_->selection) {
        const std::optional<QRectF> box = render::boxOf(*document, *document->find(id));
        if (!box) continue;
        const QRectF one = box->adjusted(0, 0, 1e-6, 1e-6);
        seen_->box = seen_->box.isNull() ? one : seen_->box.united(one);
    }
    return &*seen_;
}

const std::vector<doc::ArtId>& Editing::selection() const {
    static const std::vector<doc::ArtId> kNone;
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
    for (const doc::ArtId id : seen_->selection) {
        seen_->outline->addPath(render::outlineBelow(*session_->document(), *session_->document()->find(id)));
        if (seen_->outline->elementCount() <= kMostOutlinePoints) continue;
        seen_->outline->clear();
        break;
    }
    return *seen_->outline;
}

// --- selecting
// --------------------------------------------------------------------------------------------------------

void Editing::select(const std::vector<doc::ArtId>& objects) {
    const doc::Document* document = session_->document();
    if (document == nullptr) return;
    // What has gone since it was pointed at is nothing.
    std::vector<doc::ArtId> living = objects;
    std::erase_if(living, [&](doc::ArtId id) { return document->find(id) == nullptr; });
    std::vector<doc::ArtId> now;
    forEachObject(*document, [&](const doc::Art& art, const doc::Layer&) {
        gatherSelected(*document, art, &now);
        return true;
    });
    if (living == now) return;
    std::string words;
    if (session_->recorder().on()) {
        app::ArtNames names(*document);
        for (const doc::ArtId id : living) words += ' ' + app::quotedWord(names.of(id));
    }
    session_->recorder().line("select" + (words.empty() ? " none" : words));
    session_->host().edit("Select", [&](doc::Document& changed) {
        forEachObject(changed, [&](const doc::Art& art, const doc::Layer&) {
            selectBelow(changed, art.id, false);
            return true;
        });
        for (const doc::ArtId id : living) selectBelow(changed, id, true);
        return true;
    });
}

void Editing::selectAll() {
    if (session_->document() == nullptr) return;
    std::vector<doc::ArtId> all;
    forEachObject(*session_->document(), [&](const doc::Art& art, const doc::Layer& layer) {
        if (canBeTaken(art, layer)) all.push_back(art.id);
        return true;
    });
    select(all);
}

// --- changing
// ---------------------------------------------------------------------------------------------------------

host::StepName stepNameOf(const Session& session, const char* english, const char* japanese) {
    const std::string name = session.say(english, japanese).toStdString();
    return session.english() ? host::StepName{"Undo " + name, "Redo " + name}
                             : host::StepName{name + "の取り消し", name + "のやり直し"};
}

template <typename Change>
void Editing::changeSelection(const host::StepName& name, Change change, const std::string& verb,
                              const std::string& words) {
    const std::vector<doc::ArtId> objects = selection();
    if (objects.empty()) return;
    std::vector<std::string> lines;
    if (session_->recorder().on()) {
        app::ArtNames names(*session_->document());
        for (const doc::ArtId id : objects) lines.push_back(verb + ' ' + app::quotedWord(names.of(id)) + words);
        // The last first: what is deleted takes a place from those behind it alone.
        std::reverse(lines.begin(), lines.end());
    }
    session_->recorder().plan(lines);
    std::vector<bool> changed;  // what changes nothing makes no step in a script
    const bool done = session_->host().edit(name, [&](doc::Document& document) {
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
    session_->recorder().step(lines);
    if (any) sendTracking();
}

// What follows the art is part of the same step: one undo reverts both.
void Editing::sendTracking() {
    session_->recorder().line("follow");
    int steps = 0;
    const auto counting = QObject::connect(session_, &Session::stepMade, [&steps] { ++steps; });
    session_->host().followSelection();
    QObject::disconnect(counting);
    const bool joins = steps > 0;
    for (; steps > 0 && session_->document()->joinLastSteps(); --steps) session_->recorder().lastStepsJoined();
    if (joins) emit session_->stepMade(QString::fromStdString(*session_->document()->undoName()));
}

void Editing::move(RealPoint by) {
    const RealMatrix matrix{1, 0, 0, 1, by.h, by.v};
    changeSelection(
        stepNameOf(*session_, "Move", "移動"),
        [&](doc::Document& document, doc::ArtId id) { return document.transform(id, matrix, 1); }, "move",
        ' ' + app::shortestText(by.h) + ' ' + app::shortestText(by.v));
}

void Editing::turn(double degrees, RealPoint pivot) {
    const RealMatrix matrix = turnMatrix(degrees, pivot);
    changeSelection(
        stepNameOf(*session_, "Rotate", "回転"),
        [&](doc::Document& document, doc::ArtId id) { return document.transform(id, matrix, 1); }, "turn",
        ' ' + app::shortestText(degrees) + ' ' + app::shortestText(pivot.h) + ' ' + app::shortestText(pivot.v));
}

void Editing::removeAs(const host::StepName& name) {
    changeSelection(
        name, [](doc::Document& document, doc::ArtId id) { return document.removeArt(id); }, "delete", "");
}

void Editing::remove() { removeAs(stepNameOf(*session_, "Delete", "消去")); }

// --- copies
// -----------------------------------------------------------------------------------------------------------

void Editing::copy() {
    const std::vector<doc::ArtId>& taken = selection();
    if (taken.empty()) return;
    if (session_->recorder().on()) {
        app::ArtNames names(*session_->document());
        std::string words;
        for (const doc::ArtId id : taken) words += ' ' + app::quotedWord(names.of(id));
        session_->recorder().line("clip" + words);
    }
    clipboard_.take(*session_->document(), taken);
    pastes_ = 0;
}

void Editing::cut() {
    copy();
    removeAs(stepNameOf(*session_, "Cut", "カット"));
}

// Each paste is placed beside the one before.
void Editing::paste() {
    if (session_->document() == nullptr || clipboard_.empty()) return;
    const float away = kPasteOffset * static_cast<float>(pastes_ + 1);
    session_->recorder().plan({"paste " + app::shortestText(away) + ' ' + app::shortestText(-away)});
    std::optional<app::Clipboard::Pasted> pasted;
    session_->host().edit(stepNameOf(*session_, "Paste", "ペースト"), [&](doc::Document& document) {
        pasted = clipboard_.paste(document, {away, -away});
        return pasted.has_value();
    });
    const bool made = pasted && !pasted->arts.empty();
    session_->recorder().step(made ? std::vector{"paste " + app::shortestText(away) + ' ' + app::shortestText(-away)}
                                   : std::vector<std::string>());
    if (made) {
        ++pastes_;
        select(pasted->arts);
    }
    if (!pasted)
        session_->user().dialogs().showAlert(
            session_
                ->say("There is no layer to paste into: all are hidden or locked.",
                      "ペーストできるレイヤーがありません。すべて非表示またはロックされています。")
                .toStdString());
    else if (pasted->left > 0)
        session_->user().dialogs().showAlert(
            session_
                ->say("Images stay in the drawing that they are from; they have not been pasted.",
                      "画像は元の図面にのみ置けるため、ペーストされませんでした。")
                .toStdString());
}

}  // namespace quorvel::desktop
