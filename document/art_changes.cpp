// Changes of one art's content: geometry, style, text, tags, selection, flags. Each refuses, lets the journal keep what
// is there, changes, and tells the observers.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "document/bounds.h"
#include "document/document.h"
#include "document/document_impl.h"

namespace quorvel::doc {

namespace {

bool sameColor(const AIColor& a, const AIColor& b) {
    return a.kind == b.kind && a.gray == b.gray && std::equal(a.rgb, a.rgb + 3, b.rgb) &&
           a.gradientAngle == b.gradientAngle && a.gradientHiliteAngle == b.gradientHiliteAngle &&
           a.reference == b.reference;
}

bool sameStyle(const AIPathStyle& a, const AIPathStyle& b) {
    return a.fillPaint == b.fillPaint && a.strokePaint == b.strokePaint && sameColor(a.fill, b.fill) &&
           sameColor(a.stroke, b.stroke) && a.strokeWidth == b.strokeWidth && a.miterLimit == b.miterLimit &&
           a.cap == b.cap && a.join == b.join && a.dashOffset == b.dashOffset && a.dashCount == b.dashCount &&
           std::equal(a.dashes, a.dashes + 6, b.dashes);
}

// Not for what is no number.
bool isInRange(float coordinate) { return std::fabs(coordinate) <= kLargestCoordinate; }
bool isInRange(const RealPoint& point) { return isInRange(point.h) && isInRange(point.v); }
bool isInRange(const RealRect& rect) {
    return isInRange(rect.left) && isInRange(rect.top) && isInRange(rect.right) && isInRange(rect.bottom);
}

bool isSound(const PathSegment& segment) {
    return isInRange(segment.p) && isInRange(segment.in) && isInRange(segment.out);
}

bool isSound(const RealMatrix& matrix) { return isFinite(matrix) && isInRange(matrix.tx) && isInRange(matrix.ty); }

bool isSound(const AIPathStyle& style) {
    return isInRange(style.strokeWidth) && isInRange(style.dashOffset) &&
           std::all_of(style.dashes, style.dashes + 6, [](float dash) { return isInRange(dash); });
}

// The count of runs and units agree, and nothing in it is not a number.
bool isSound(const TextData& text) {
    std::int64_t units = 0;
    for (const TextRun& run : text.runs) {
        const CharFeatures& f = run.features;
        if (run.length < 0 || !isInRange(f.size) || !std::isfinite(f.horizontalScale)) return false;
        if (!std::isfinite(f.verticalScale) || !std::isfinite(f.baselineShift) || !std::isfinite(f.miterLimit)) {
            return false;
        }
        units += run.length;
    }
    return !text.runs.empty() && units == std::int64_t(text.text.size()) && isSound(text.matrix) &&
           std::isfinite(text.firstLineIndent) && std::isfinite(text.startIndent);
}

bool isIdentity(const RealMatrix& m) { return m.a == 1 && m.b == 0 && m.c == 0 && m.d == 1 && m.tx == 0 && m.ty == 0; }

std::vector<Tag>::iterator findTag(std::vector<Tag>& tags, std::string_view name) {
    return std::find_if(tags.begin(), tags.end(), [name](const Tag& tag) { return tag.name == name; });
}

}  // namespace

bool CharFeatures::operator==(const CharFeatures& o) const {
    return font == o.font && size == o.size && horizontalScale == o.horizontalScale &&
           verticalScale == o.verticalScale && baselineShift == o.baselineShift && fillOn == o.fillOn &&
           strokeOn == o.strokeOn && sameColor(fill, o.fill) && sameColor(stroke, o.stroke) &&
           miterLimit == o.miterLimit;
}

// Follows each change of one art's content.
void Document::Impl::done(Slot& slot, unsigned aspects) {
    if ((aspects & kShapeAspect) != 0) drawing.tree.invalidateBounds(slot.art.id);
    if ((aspects & kMarkAspect) != 0) slot.art.revision = ++lastRevision;
    drawing.tellChanged(slot.art.id);
}

bool Document::setSegments(ArtId id, std::size_t first, std::span<const PathSegment> segments) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path || first > slot->art.path->segments.size()) return false;
    for (const PathSegment& segment : segments) {
        if (!isSound(segment)) return impl_->refuseRange();
    }
    PathData& path = *slot->art.path;
    const bool grows = first + segments.size() > path.segments.size();
    if (!grows && (segments.empty() || std::memcmp(&path.segments[first], segments.data(), segments.size_bytes()) == 0))
        return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    if (grows) {
        path.segments.resize(first + segments.size());
        if (!path.segmentSelection.empty()) path.segmentSelection.resize(path.segments.size(), kSegmentNotSelected);
    }
    std::copy(segments.begin(), segments.end(), path.segments.begin() + std::ptrdiff_t(first));
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setSegmentCount(ArtId id, std::size_t count) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    PathData& path = *slot->art.path;
    if (path.segments.size() == count) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    path.segments.resize(count);
    if (!path.segmentSelection.empty()) path.segmentSelection.resize(count, kSegmentNotSelected);
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setClosed(ArtId id, bool closed) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    if (slot->art.path->closed == closed) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    slot->art.path->closed = closed;
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

StylePtr Document::Impl::shared(const AIPathStyle& style) {
    if (!sameStyle(*lastStyle, style)) lastStyle = std::make_shared<const AIPathStyle>(style);
    return lastStyle;
}

bool Document::setStyle(ArtId id, const AIPathStyle& style) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    if (!isSound(style)) return impl_->refuseRange();
    StylePtr& current = slot->art.path->style;
    if (current && sameStyle(*current, style)) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    current = impl_->shared(style);
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setText(ArtId id, const TextData& text) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.text) return false;
    if (!isSound(text)) return impl_->refuseRange();
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    *slot->art.text = text;
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

// What is moved too far could not be read again.
bool Document::Impl::canTransform(ArtId top, const RealMatrix& matrix) const {
    for (ArtId id = top; id != 0; id = drawing.tree.next(id, top)) {
        const Art& art = drawing.tree.slot(id).art;
        if (art.text && !isSound(concatMatrix(art.text->matrix, matrix))) return false;
        if (art.kind == kForeignArt && !isFinite(concatMatrix(art.foreignMatrix, matrix))) return false;
        if (!art.path) continue;
        const RealRect box = drawing.tree.withBounds(id).controlBounds;
        if (!isEmpty(box) && !isInRange(transformRect(matrix, box))) return false;
    }
    return true;
}

void Document::Impl::transformShape(Slot& slot, const RealMatrix& matrix, float lineScale) {
    Art& art = slot.art;
    if (art.path) {
        for (PathSegment& segment : art.path->segments) {
            for (RealPoint* point : {&segment.p, &segment.in, &segment.out}) *point = transformPoint(matrix, *point);
        }
        if (lineScale != 1 && art.path->style) {
            AIPathStyle style = *art.path->style;
            style.strokeWidth *= lineScale;
            art.path->style = shared(style);
        }
    }
    if (art.text) art.text->matrix = concatMatrix(art.text->matrix, matrix);
    if (const RealMatrix moved = concatMatrix(art.foreignMatrix, matrix); isFinite(moved)) art.foreignMatrix = moved;
}

bool Document::transform(ArtId id, const RealMatrix& matrix, float lineScale) {
    ArtTree& tree = impl_->drawing.tree;
    if (tree.living(id) == nullptr) return false;
    if (!isFinite(matrix) || !std::isfinite(lineScale) || !impl_->canTransform(id, matrix)) return impl_->refuseRange();
    if (isIdentity(matrix) && lineScale == 1) return true;
    for (ArtId below = id; below != 0; below = tree.next(below, id)) {
        Slot& slot = tree.slot(below);
        if (!slot.art.path && !slot.art.text && slot.art.kind != kForeignArt) continue;
        impl_->journal.keep(slot, kMarkAspect | kShapeAspect);
        impl_->transformShape(slot, matrix, lineScale);
        impl_->done(slot, kMarkAspect | kShapeAspect);
    }
    return true;
}

bool Document::setTag(ArtId id, std::string_view name, std::string_view value) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || name.empty()) return false;
    std::vector<Tag>& tags = slot->art.tags;
    const auto found = findTag(tags, name);
    if (found != tags.end() && found->value == value) return true;
    // The caller's text may be the one that is replaced.
    Tag tag{std::string(name), std::string(value)};
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    const std::string changed = tag.name;
    if (found != tags.end()) {
        found->value = std::move(tag.value);
    } else {
        tags.push_back(std::move(tag));
    }
    impl_->done(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tellTagChanged(id, changed);
    return true;
}

bool Document::removeTag(ArtId id, std::string_view name) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    std::vector<Tag>& tags = slot->art.tags;
    const auto found = findTag(tags, name);
    if (found == tags.end()) return true;
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    const std::string changed = std::move(found->name);
    tags.erase(found);
    impl_->done(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tellTagChanged(id, changed);
    return true;
}

bool Document::setSelected(ArtId id, bool selected) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    const bool inParts = slot->art.path && !slot->art.path->segmentSelection.empty();
    if (slot->art.selected == selected && !inParts) return true;
    impl_->journal.keep(*slot, kSelectionAspect);
    slot->art.selected = selected;
    if (inParts) slot->art.path->segmentSelection.clear();
    impl_->done(*slot, kSelectionAspect);
    return true;
}

bool Document::setSegmentSelected(ArtId id, std::size_t index, AISegmentSelection state) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path || index >= slot->art.path->segments.size()) return false;
    if (state < kSegmentNotSelected || state > kSegmentInAndOutSelected) return false;
    std::vector<std::uint8_t>& parts = slot->art.path->segmentSelection;
    const std::uint8_t whole = slot->art.selected ? kSegmentPointSelected : kSegmentNotSelected;
    if ((parts.empty() ? whole : parts[index]) == state) return true;
    impl_->journal.keep(*slot, kSelectionAspect);
    if (parts.empty()) parts.assign(slot->art.path->segments.size(), whole);
    parts[index] = std::uint8_t(state);
    slot->art.selected = std::any_of(parts.begin(), parts.end(), [](std::uint8_t part) { return part != 0; });
    if (!slot->art.selected) parts.clear();
    impl_->done(*slot, kSelectionAspect);
    return true;
}

bool Document::setHidden(ArtId id, bool hidden) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.hidden == hidden) return true;
    impl_->journal.keep(*slot, kMarkAspect);
    slot->art.hidden = hidden;
    impl_->done(*slot, kMarkAspect);
    return true;
}

bool Document::setLocked(ArtId id, bool locked) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.locked == locked) return true;
    impl_->journal.keep(*slot, kMarkAspect);
    slot->art.locked = locked;
    impl_->done(*slot, kMarkAspect);
    return true;
}

bool Document::setName(ArtId id, const std::string& name) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.name == name) return true;
    if (isNameTaken(name)) return false;
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tree.setName(*slot, name);
    impl_->done(*slot, kMarkAspect | kNameAspect);
    return true;
}

}  // namespace quorvel::doc
