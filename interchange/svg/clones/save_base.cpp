// What is written out is read like any other part of a file, and the walk makes the same elements in the same order as
// before, now with markup of their own. Nested clones follow round by round.
#include "interchange/svg/clones/save_base.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/clones/clones.h"
#include "interchange/svg/clones/reread.h"
#include "interchange/svg/text.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"
#include "svg/values/number.h"

namespace quorvel::interchange {

using svg::Role;

namespace {

bool isIdentity(const RealMatrix& m) { return m.a == 1 && m.b == 0 && m.c == 0 && m.d == 1 && m.tx == 0 && m.ty == 0; }

bool sameMatrix(const RealMatrix& a, const RealMatrix& b) {
    return a.a == b.a && a.b == b.b && a.c == b.c && a.d == b.d && a.tx == b.tx && a.ty == b.ty;
}

// The style of the lowest path.
const AIPathStyle* styleOf(const doc::Document& document, const doc::Art& art) {
    const doc::Art* at = &art;
    while (at && !at->path) at = document.find(at->lastChild);
    return at ? at->path->style.get() : nullptr;
}

// What an element finds around it.
struct InheritedContext {
    svg::Affine map;
    std::int32_t style = -1;
    bool operator==(const InheritedContext&) const = default;
};

class CloneCheck {
  public:
    CloneCheck(const doc::Document& document, const SaveBase& base)
        : document_(document),
          base_(base),
          source_(base.source()),
          fate_(source_.tree.size(), CloneState::kGone),
          childCount_(source_.tree.size(), 0),
          targets_(source_.tree.size(), 0) {
        for (const svg::Element& element : source_.tree.elements)
            if (element.parent >= 0 && !element.isInstance) ++childCount_[static_cast<std::size_t>(element.parent)];
        for (doc::LayerId id : document.layers()) visitLayer(*document.layer(id));
        followInstances();
    }

    // Numbers among the source's uses.
    std::vector<std::size_t> stale() const {
        std::vector<std::size_t> found;
        for (std::size_t i = 0; i < source_.uses.size(); ++i) {
            const auto at = static_cast<std::size_t>(source_.uses[i].element);
            if (fate_[at] == CloneState::kChanged && targets_[at] != 0) found.push_back(i);
        }
        return found;
    }

    std::uint32_t target(std::size_t use) const {
        return targets_[static_cast<std::size_t>(source_.uses[use].element)];
    }

  private:
    enum class CloneState : std::uint8_t { kGone, kKept, kChanged };

    void visitLayer(const doc::Layer& layer) {
        const doc::Art& root = *document_.find(layer.root);
        const std::int32_t element = base_.elementOf(layer);
        const InheritedContext page{source_.tree.map(0), source_.record(0).style};
        if (element > 0) {
            visit(root, &layer, element, page);
        } else {
            visitChildren(root, page);
        }
    }

    // True when one of them has changed.
    bool visitChildren(const doc::Art& parent, const InheritedContext& inside) {
        bool changed = false;
        for (doc::ArtId id = parent.lastChild; id != 0;) {
            const doc::Art& child = *document_.find(id);
            changed |= visit(child, nullptr, base_.elementOf(child), inside);
            id = child.above;
        }
        return changed;
    }

    bool visit(const doc::Art& art, const doc::Layer* layer, std::int32_t number, const InheritedContext& around) {
        if (number < 0) {
            if (art.kind == kGroupArt) visitChildren(art, around);
            return true;
        }
        const svg::Element& element = source_.element(number);
        const InheritedContext expected{source_.tree.map(element.parent), source_.record(element.parent).style};
        bool changed = !(around == expected);
        if (svg::isGroup(element.role)) {
            InheritedContext inside{source_.tree.map(number), source_.record(number).style};
            if (!(around.map == expected.map)) inside = {around.map, -1};
            changed |= visitChildren(art, inside);
            changed |= !sameChildren(art, number);
        }
        const std::uint64_t revision = layer ? layer->revision : art.revision;
        const bool look =
            revision != 0 || art.kind == kCompoundPathArt || element.role == Role::kUse || base_.writtenOut(art);
        changed = changed || (look && (looksOther(document_, source_, art, layer, number) || otherId(art, element)));
        fate_[static_cast<std::size_t>(number)] = changed ? CloneState::kChanged : CloneState::kKept;
        return changed;
    }

    // A use element would no longer find it.
    bool otherId(const doc::Art& art, const svg::Element& element) const {
        if (art.parent == 0 || art.revision == 0) return false;
        const svg::StartTag tag(svg::startTagText(*source_.text, element.nameOffset), &source_.entities());
        return tag.attribute("id").value_or("") != art.name;
    }

    bool sameChildren(const doc::Art& art, std::int32_t number) const {
        std::size_t count = 0;
        std::int32_t last = -1;
        for (doc::ArtId id = art.lastChild; id != 0; ++count) {
            const doc::Art& child = *document_.find(id);
            const std::int32_t element = base_.elementOf(child);
            if (element <= last || source_.element(element).parent != number) return false;
            last = element;
            id = child.above;
        }
        return count == childCount_[static_cast<std::size_t>(number)];
    }

    // A clone does not stay one when anything that it shows has changed.
    void followInstances() {
        std::vector<std::int32_t> owners(source_.tree.size(), -1);
        for (std::size_t i = 1; i < source_.tree.size(); ++i) {
            const svg::Element& instance = source_.tree.elements[i];
            if (!instance.isInstance) continue;
            const auto around = static_cast<std::size_t>(instance.parent);
            const bool isTop = !source_.tree.elements[around].isInstance;
            owners[i] = isTop ? instance.parent : owners[around];
            const auto owner = static_cast<std::size_t>(owners[i]);
            if (isTop) targets_[owner] = instance.nameOffset;
            const std::int32_t shown = base_.elementAt(instance.nameOffset);
            if (shown >= 0 && fate_[owner] == CloneState::kKept &&
                fate_[static_cast<std::size_t>(shown)] != CloneState::kKept)
                fate_[owner] = CloneState::kChanged;
        }
    }

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    std::vector<CloneState> fate_;
    std::vector<std::size_t> childCount_;
    std::vector<std::uint32_t> targets_;  // of use elements: the name's offset of what they refer to
};

// An element whose transform is to be changed.
struct TransformEdit {
    std::int32_t element = -1;
    RealMatrix motion;
    std::string startTag;
};

bool isTurnOrShift(const RealMatrix& m) {
    constexpr double kLeast = 1e-4;  // points; what moves less stays
    const bool linear = std::abs(m.a - 1) > 1e-6 || std::abs(m.b) > 1e-6;
    return std::abs(double(m.a) * m.a + double(m.b) * m.b - 1) < 1e-5 && std::abs(m.a - m.d) < 1e-5 &&
           std::abs(m.b + m.c) < 1e-5 && (linear || std::abs(m.tx) > kLeast || std::abs(m.ty) > kLeast);
}

// Shifts to a billionth of a unit: beyond lie the sums that led to them.
svg::Affine withoutNoise(svg::Affine map) {
    for (double* shift : {&map.e, &map.f})
        *shift = svg::fewestDecimals(*shift, [&](double q) { return std::abs(q - *shift) < 1e-9; });
    return map;
}

// Finds the outermost elements that refer to others, are where they were and have moved as a whole. Clones that are
// written out are among them: what they show may refer to anything.
class FollowerSearch {
  public:
    FollowerSearch(const doc::Document& document, const SaveBase& base)
        : document_(document), base_(base), source_(base.source()), rules_(source_) {
        for (doc::LayerId id : document.layers()) {
            const doc::Layer& layer = *document.layer(id);
            const std::int32_t element = base.elementOf(layer);
            if (element >= 0) visitChildren(*document.find(layer.root), element);
        }
    }

    std::vector<TransformEdit> found() { return std::move(found_); }

  private:
    void visitChildren(const doc::Art& parent, std::int32_t number) {
        for (doc::ArtId id = parent.lastChild; id != 0;) {
            const doc::Art& child = *document_.find(id);
            const std::int32_t element = base_.elementOf(child);
            if (element >= 0 && source_.element(element).parent == number) visit(child, element);
            id = child.above;
        }
    }

    void visit(const doc::Art& art, std::int32_t number) {
        const Role role = source_.element(number).role;
        // Those that are moved by their transform in any case are done by the way.
        if (role == Role::kForeign || role == Role::kUse || role == Role::kText) return;
        Motion motion;
        addMotion(art, &motion);
        if (motion.alike && isTurnOrShift(motion.matrix) && take(art, number, motion)) return;
        if (svg::isGroup(role) && motion.any) visitChildren(art, number);
    }

    struct Motion {
        RealMatrix matrix;
        bool begun = false, any = false, alike = true;
        bool ownAngles = false;  // paints and texts that have their angle by themselves
    };

    // Of all that stood in the file; what is new is drawn for where it is.
    void addMotion(const doc::Art& art, Motion* motion) const {
        if (art.kind == kGroupArt) {
            for (doc::ArtId id = art.lastChild; id != 0; id = document_.find(id)->above)
                addMotion(*document_.find(id), motion);
            return;
        }
        if (base_.elementOf(art) < 0) return;
        const doc::Art* bearer = &art;
        while (bearer->kind == kCompoundPathArt && bearer->lastChild != 0) bearer = document_.find(bearer->lastChild);
        motion->alike &= !motion->begun || sameMatrix(motion->matrix, bearer->foreignMatrix);
        motion->any |= !isIdentity(bearer->foreignMatrix);
        motion->matrix = bearer->foreignMatrix;
        motion->begun = true;
        motion->ownAngles |= bearer->text != nullptr;
        if (bearer->path && bearer->path->style) {
            const AIPathStyle& style = *bearer->path->style;
            motion->ownAngles |= (style.fillPaint && style.fill.kind == kGradientPaint) ||
                                 (style.strokePaint && style.stroke.kind == kGradientPaint);
        }
    }

    bool inheritsPaint(const doc::Art& art) const {
        const AIPathStyle* style = art.kind == kGroupArt ? nullptr : styleOf(document_, art);
        return style &&
               ((style->fillPaint && style->fill.reference > 0) || (style->strokePaint && style->stroke.reference > 0));
    }

    bool take(const doc::Art& art, std::int32_t number, const Motion& motion) {
        const RealMatrix& m = motion.matrix;
        const bool turned = std::abs(m.a - 1) > 1e-6 || std::abs(m.b) > 1e-6;
        if (turned && motion.ownAngles) return false;
        const svg::Element& element = source_.element(number);
        svg::StartTag tag(svg::startTagText(*source_.text, element.nameOffset), &source_.entities());
        if (!base_.isClone(art) && !inheritsPaint(art) && !rules_.refersToOthers(tag)) return false;
        const svg::Affine& around = source_.tree.map(element.parent);
        svg::Affine inverse, own;
        const std::string said = tag.attribute("transform").value_or("");
        if (!svg::invert(around, &inverse) || !svg::parseTransform(said, &own)) return false;
        if (turned) {
            // Floats turn with a trace of scale, which would show in every line width.
            const double scale = std::hypot(double(m.a), double(m.b));
            const svg::Affine turn{m.a / scale, m.b / scale, -m.b / scale, m.a / scale, m.tx, m.ty};
            tag.set("transform",
                    formatMatrix(withoutNoise(svg::compose(svg::compose(inverse, svg::compose(turn, around)), own))));
        } else {
            const svg::Affine shift = withoutNoise(svg::compose(inverse, concat(m, around)));
            std::string text = "translate(";
            svg::appendNumber(&text, shift.e);
            text += ',';
            svg::appendNumber(&text, shift.f);
            tag.set("transform", text + ")" + (said.empty() ? "" : " " + said));
        }
        found_.push_back({number, m, tag.str()});
        return true;
    }

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    SvgRules rules_;
    std::vector<TransformEdit> found_;
};

}  // namespace

bool looksOther(const doc::Document& document, const SvgSource& source, const doc::Art& art, const doc::Layer* layer,
                std::int32_t element) {
    const SvgRecord& record = source.record(element);
    if ((layer ? !layer->visible : art.hidden) != record.hidden) return true;
    switch (source.element(element).role) {
        case Role::kRoot:
        case Role::kGroup:
        case Role::kViewport:
            return false;
        case Role::kText: {
            const SvgTextOrigin& origin = source.texts[static_cast<std::size_t>(record.text)];
            return !sameMatrix(art.text->matrix, origin.matrix) || textHash(*art.text, true) != origin.wording;
        }
        case Role::kForeign:
            return !isIdentity(art.foreignMatrix);
        case Role::kUse:
            return contentHash(document, art) != record.content;
        default: {
            const AIPathStyle* style = styleOf(document, art);
            return outlineHash(document, art) != record.content ||
                   (style && !stylesAlike(*style, *source.styles[static_cast<std::size_t>(record.style)]));
        }
    }
}

SaveBase::SaveBase(const doc::Document& document, const SvgSource& source) : read_(source) {
    writeOutClones(document);
    rewriteMovedTransforms(document);
}

std::uint32_t SaveBase::offsetNow(std::uint32_t offsetInFile) const {
    for (const svg::TextEdits& edits : edits_) offsetInFile = edits.map(offsetInFile);
    return offsetInFile;
}

// False, and nothing is changed, when the changed elements do not read as the same art: a file whose use elements refer
// to each other in a circle may read otherwise.
bool SaveBase::apply(const svg::TextEdits& edits, std::span<const std::int32_t> changed) {
    SvgSource next = source();
    next.text = std::make_shared<const std::string>(edits.applied(*next.text));
    for (svg::Element& element : next.tree.elements) element.nameOffset = edits.map(element.nameOffset);
    if (next.namedViewOffset != 0) next.namedViewOffset = edits.map(next.namedViewOffset);
    edits_.push_back(edits);
    if (!rereadElements(
            changed, [this](std::uint32_t offset) { return offsetNow(offset); }, &next)) {
        edits_.pop_back();
        return false;
    }
    base_ = std::move(next);
    byOffset_.clear();
    return true;
}

void SaveBase::writeOutClones(const doc::Document& document) {
    while (!source().uses.empty()) {
        const CloneCheck check(document, *this);
        const std::vector<std::size_t> stale = check.stale();
        if (stale.empty()) return;
        const SvgSource& now = source();
        const SvgRules rules(now);
        svg::TextEdits edits;
        std::vector<std::int32_t> changed;
        for (std::size_t use : stale) {
            const std::int32_t element = now.uses[use].element;
            const std::uint32_t begin = now.element(element).nameOffset - 1;
            const std::string_view whole = svg::elementText(*now.text, begin + 1);
            const std::string_view start = svg::startTagText(whole, 1);
            const ExpandedUse expanded = expandedUse(now, rules, now.uses[use], check.target(use));
            changed.push_back(element);
            if (start.size() == whole.size()) {
                edits.replace(begin, begin + whole.size(), expanded.startTag + expanded.rest);
            } else {
                edits.replace(begin, begin + start.size(), expanded.startTag);
                edits.replace(begin + whole.rfind('<'), begin + whole.size(), expanded.rest);
            }
        }
        if (!apply(edits, changed)) return;
    }
}

void SaveBase::rewriteMovedTransforms(const doc::Document& document) {
    std::vector<TransformEdit> followers = FollowerSearch(document, *this).found();
    if (followers.empty()) return;
    std::ranges::sort(followers, {}, &TransformEdit::element);
    const SvgSource& now = source();
    svg::TextEdits edits;
    std::vector<std::int32_t> changed;
    std::vector<RealMatrix> motions(now.tree.size());
    for (TransformEdit& follower : followers) {
        const std::uint32_t begin = now.element(follower.element).nameOffset - 1;
        edits.replace(begin, begin + svg::startTagText(*now.text, begin + 1).size(), std::move(follower.startTag));
        changed.push_back(follower.element);
        motions[static_cast<std::size_t>(follower.element)] = follower.motion;
    }
    // Those around come first.
    for (std::size_t i = 1; i < motions.size(); ++i) {
        if (isIdentity(motions[i])) motions[i] = motions[static_cast<std::size_t>(now.tree.elements[i].parent)];
    }
    if (apply(edits, changed)) motions_ = std::move(motions);
}

const SvgSource& SaveBase::source() const { return base_ ? *base_ : read_; }

std::int32_t SaveBase::elementOf(const doc::Art& art) const { return source().elementOf(art.ref); }

std::int32_t SaveBase::elementOf(const doc::Layer& layer) const { return layer.ref.index; }

std::int32_t SaveBase::elementAt(std::uint32_t nameOffset) const {
    if (byOffset_.empty()) {
        const svg::Tree& tree = source().tree;
        for (std::size_t i = 0; i < tree.size(); ++i)
            if (!tree.elements[i].isInstance) byOffset_.push_back(static_cast<std::int32_t>(i));
    }
    const auto offsetOf = [&](std::int32_t number) { return source().element(number).nameOffset; };
    const auto found = std::ranges::lower_bound(byOffset_, nameOffset, {}, offsetOf);
    return found != byOffset_.end() && offsetOf(*found) == nameOffset ? *found : -1;
}

bool SaveBase::isClone(const doc::Art& art) const {
    const std::int32_t element = read_.elementOf(art.ref);
    return element >= 0 && read_.element(element).role == Role::kUse && source().element(element).role != Role::kUse;
}

bool SaveBase::isUnmoved(const doc::Art& art) const {
    const std::int32_t element = elementOf(art);
    const bool known = element >= 0 && !motions_.empty();
    return sameMatrix(art.foreignMatrix, known ? motions_[static_cast<std::size_t>(element)] : RealMatrix{});
}

svg::Affine SaveBase::placeOf(const doc::Art& art) const {
    return concat(art.foreignMatrix, read_.tree.map(art.ref.index));
}

bool SaveBase::writtenOut(const doc::Art& art) const { return read_.elementOf(art.ref) < 0 && elementOf(art) >= 0; }

}  // namespace quorvel::interchange
