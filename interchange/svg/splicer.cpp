#include "interchange/svg/splicer.h"

#include <algorithm>
#include <cstdint>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/definitions.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/svg.h"
#include "svg/css/style_attribute.h"
#include "svg/values/number.h"

namespace quorvel::interchange {

using svg::Role;

namespace {

// Marks the longest run of rising numbers: what keeps its order stays where it is, the rest moves.
std::vector<bool> longestRise(const std::vector<std::int64_t>& numbers) {
    std::vector<std::size_t> tails;  // index of the smallest last number of a run of each length
    std::vector<std::size_t> before(numbers.size(), SIZE_MAX);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] < 0) continue;
        const auto at = std::ranges::lower_bound(tails, numbers[i], {}, [&](std::size_t k) { return numbers[k]; });
        if (at != tails.begin()) before[i] = *(at - 1);
        if (at == tails.end()) {
            tails.push_back(i);
        } else {
            *at = i;
        }
    }
    std::vector<bool> kept(numbers.size(), false);
    for (std::size_t i = tails.empty() ? SIZE_MAX : tails.back(); i != SIZE_MAX; i = before[i]) kept[i] = true;
    return kept;
}

// A file that says so is read as ASCII by others.
bool declaredAscii(std::string_view text) {
    std::string head(text.substr(0, std::min<std::size_t>(text.find("?>"), 200)));
    std::ranges::transform(head, head.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return head.find("<?xml") < 4 && head.find("us-ascii", head.find("encoding")) != std::string::npos;
}

std::string indentStep(const std::string& lineBreak) { return lineBreak.ends_with('\t') ? "\t" : "  "; }

}  // namespace

Splicer::Splicer(const doc::Document& document, const SaveBase& base, std::string_view rulerUnit)
    : document_(document),
      base_(base),
      source_(base.source()),
      text_(*source_.text),
      rulerUnit_(rulerUnit),
      plan_(document, base),
      writer_(document, base),
      buffer_(text_, declaredAscii(text_)) {}

std::string Splicer::write() {
    if (!plan_.isChanged() && !rootChanges() && plan_.currentId().empty()) return *source_.text;
    findSpans();
    buffer_.copy(0, spans_[0].begin);
    svg::StartTag tag = startTag(0);
    const std::size_t place = buffer_.leave();
    container(&tag, 0, plan_.rootItems(), scopeIn(0), "\n", nullptr);
    finishRoot(&tag);
    buffer_.fill(place, tag.str());
    buffer_.copy(spans_[0].end, text_.size());
    return buffer_.join();
}

svg::StartTag Splicer::startTag(std::int32_t number) const {
    return svg::StartTag(svg::startTagText(text_, element(number).nameOffset), &source_.entities());
}

// What is in an element, as it was read.
SvgScope Splicer::scopeIn(std::int32_t number) const {
    return {source_.tree.map(number), record(number).style,
            unmodelledProperties(source_.tree.file->styles(), element(number).style), ""};
}

// Of the elements that are written in the file; instances have none.
void Splicer::findSpans() {
    std::vector<std::uint32_t> offsets;
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < source_.tree.size(); ++i) {
        if (source_.tree.elements[i].isInstance) continue;
        offsets.push_back(source_.tree.elements[i].nameOffset);
        numbers.push_back(i);
    }
    const std::vector<svg::ElementSpan> found = svg::findElements(text_, offsets);
    spans_.resize(source_.tree.size());
    for (std::size_t i = 0; i < found.size(); ++i) spans_[numbers[i]] = found[i];
}

// --- the root's own attributes ---------------------------------------------------------------------------------

bool Splicer::rootChanges() {
    svg::StartTag tag = startTag(0);
    const std::string before = tag.str();
    setRootAttributes(&tag);
    return tag.str() != before;
}

void Splicer::setRootAttributes(svg::StartTag* tag) {
    if (plan_.looseTitles() && plan_.looseTitles()->empty())
        tag->remove(source_.names().own + own_attribute::kLayerTitles);
    if (plan_.looseTitles() && !plan_.looseTitles()->empty())
        tag->set(writer_.ownName(own_attribute::kLayerTitles), *plan_.looseTitles());
    if (!rulerUnit_.empty() && rulerUnit_ != source_.rulerUnit)
        tag->set(writer_.ownName(own_attribute::kRuler), rulerUnit_);
    if (!plan_.currentId().empty() && source_.namedViewOffset == 0)
        tag->set(writer_.ownName(own_attribute::kCurrentLayer), plan_.currentId());
    if (plan_.rootNeedsId()) tag->set("id", plan_.currentId());
}

void Splicer::finishRoot(svg::StartTag* tag) {
    setRootAttributes(tag);
    const auto declare = [&](bool used, bool declared, const std::string& prefix, std::string_view uri) {
        if (used && !declared) tag->set("xmlns:" + prefix.substr(0, prefix.size() - 1), uri);
    };
    const svg::SvgNames& names = source_.names();
    declare(writer_.usesOwn, names.ownDeclared, names.own, svg::kOwnNamespace);
    declare(writer_.usesInkscape, names.inkscapeDeclared, names.inkscape, svg::kInkscapeNamespace);
    declare(writer_.usesSodipodi, names.sodipodiDeclared, names.sodipodi, svg::kSodipodiNamespace);
}

// Text between elements; the named view may be among it.
void Splicer::gap(std::size_t begin, std::size_t end) {
    const std::size_t view = source_.namedViewOffset;
    if (plan_.currentId().empty() || view == 0 || view - 1 < begin || view >= end) {
        buffer_.copy(begin, end);
        return;
    }
    const std::string_view whole = svg::startTagText(text_, source_.namedViewOffset);
    svg::StartTag tag(whole, &source_.entities());
    tag.set(writer_.inkscapeName("current-layer"), plan_.currentId());
    buffer_.copy(begin, view - 1);
    buffer_.add(tag.str());
    buffer_.copy(view - 1 + whole.size(), end);
}

// --- containers ----------------------------------------------------------------------------------------------------

std::size_t Splicer::blanksBefore(std::size_t position, std::size_t least) const {
    while (position > least && svg::isBlank(text_[position - 1])) --position;
    return position;
}

// From the last line end of the blanks before the position; nothing when they hold none.
std::string Splicer::lineBreakBefore(std::size_t position) const {
    const std::string_view blanks = text_.substr(blanksBefore(position, 0), position - blanksBefore(position, 0));
    const std::size_t line = blanks.rfind('\n');
    if (line == std::string_view::npos) return "";
    return std::string(blanks.substr(line > 0 && blanks[line - 1] == '\r' ? line - 1 : line));
}

std::string Splicer::childBreak(std::int32_t number, const std::string& ownBreak) const {
    const auto children = plan_.childrenOf(number);
    for (std::int32_t child : children) {
        const std::string found = lineBreakBefore(span(child).begin);
        if (!found.empty()) return found;
    }
    if (!children.empty() || ownBreak.empty()) return "";
    return ownBreak + indentStep(ownBreak);
}

// Writes the element's content and end; its start tag too, but for the root's, which is filled in later.
void Splicer::container(svg::StartTag* tag, std::int32_t number, const std::vector<SaveItem>& items, SvgScope scope,
                        const std::string& ownBreak, const SvgScope* writeTag) {
    const svg::ElementSpan& whole = span(number);
    scope.lineBreak = childBreak(number, ownBreak);
    if (whole.empty()) {
        tag->setSelfClosing(items.empty());
        if (writeTag) buffer_.add(tag->str());
        for (const SaveItem& item : items) {
            buffer_.add(scope.lineBreak);
            write(item, scope);
        }
        if (!items.empty())
            buffer_.add(std::string(scope.lineBreak.empty() ? "" : ownBreak) + "</" + tag->name() + ">");
        return;
    }
    if (writeTag) buffer_.add(tag->str());
    mix(number, items, scope);
    const std::string_view end = text_.substr(whole.contentEnd, whole.end - whole.contentEnd);
    if (end.substr(2).starts_with(tag->name())) {
        buffer_.copy(whole.contentEnd, whole.end);
    } else {
        buffer_.add("</" + tag->name() + ">");
    }
}

// Children that kept their order stay; new and moved ones come directly above their lower neighbour.
void Splicer::mix(std::int32_t number, const std::vector<SaveItem>& items, const SvgScope& scope) {
    Mix mix{span(number), plan_.childrenOf(number), scope, span(number).tagEnd, 0, {}};
    std::vector<std::int64_t> places;
    for (const SaveItem& item : items) {
        const auto at = std::ranges::lower_bound(mix.children, item.element);
        places.push_back(at != mix.children.end() && *at == item.element ? at - mix.children.begin() : -1);
    }
    const std::vector<bool> stays = longestRise(places);
    bool isBehindOne = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!stays[i]) {
            mix.waiting.push_back(&items[i]);
            continue;
        }
        if (isBehindOne) placeWaiting(false, &mix);
        cutUpTo(static_cast<std::size_t>(places[i]), span(items[i].element).begin, &mix);
        placeWaiting(true, &mix);
        write(items[i], scope);
        mix.cursor = span(items[i].element).end;
        ++mix.nextChild;
        isBehindOne = true;
    }
    finishMix(number, isBehindOne, &mix);
}

// Copies what is between the children up to there; children before this one go.
void Splicer::cutUpTo(std::size_t child, std::size_t end, Mix* mix) {
    for (; mix->nextChild < child; ++mix->nextChild) {
        const svg::ElementSpan& gone = span(mix->children[mix->nextChild]);
        const std::string rest = definitionsOf(mix->children[mix->nextChild]);
        // Its line goes with it when nothing else is on it.
        const bool lineEnds = svg::isBlank(text_[gone.end]) || text_.substr(gone.end, 2) == "</";
        const bool wholeLine = lineEnds && rest.empty();
        const std::size_t cut = gone.begin - (wholeLine ? lineBreakBefore(gone.begin).size() : 0);
        gap(mix->cursor, std::max(cut, mix->cursor));
        buffer_.add(rest);
        mix->cursor = gone.end;
    }
    gap(mix->cursor, end);
    mix->cursor = end;
}

void Splicer::placeWaiting(bool isBefore, Mix* mix) {
    for (const SaveItem* item : mix->waiting) {
        if (!isBefore) buffer_.add(mix->scope.lineBreak);
        write(*item, mix->scope);
        if (isBefore) buffer_.add(mix->scope.lineBreak);
    }
    mix->waiting.clear();
}

void Splicer::finishMix(std::int32_t number, bool isBehindOne, Mix* mix) {
    const svg::ElementSpan& whole = mix->whole;
    if (isBehindOne) {
        placeWaiting(false, mix);
        cutUpTo(mix->children.size(), whole.contentEnd, mix);
        return;
    }
    const std::size_t blanks = blanksBefore(whole.contentEnd, whole.tagEnd);
    cutUpTo(mix->children.size(), std::max(blanks, lastEnd(mix->children, whole.tagEnd)), mix);
    const bool any = !mix->waiting.empty();
    placeWaiting(false, mix);
    const std::string ownBreak = lineBreakBefore(span(number).begin);
    if (any && mix->cursor == whole.contentEnd && !mix->scope.lineBreak.empty())
        buffer_.add(ownBreak.empty() ? "\n" : ownBreak);
    gap(mix->cursor, whole.contentEnd);
}

// What a removed element leaves behind: definitions in it that something elsewhere may refer to, in an element that
// shows nothing and hands down what the removed one did. Empty when there is none.
std::string Splicer::definitionsOf(std::int32_t number) const {
    if (plan_.isPresent(number) || element(number).role == Role::kForeign) return "";
    const svg::ElementSpan& whole = span(number);
    std::string rest;
    std::size_t cursor = whole.tagEnd;
    for (std::int32_t child : plan_.childrenOf(number)) {
        rest += definitionsIn(text_.substr(cursor, span(child).begin - cursor)) + definitionsOf(child);
        cursor = span(child).end;
    }
    rest += definitionsIn(text_.substr(cursor, whole.contentEnd - cursor));
    return rest.empty() ? "" : writer_.definitionsTag(startTag(number)) + rest + "</" + writer_.svgName("defs") + ">";
}

std::size_t Splicer::lastEnd(std::span<const std::int32_t> children, std::size_t otherwise) const {
    return children.empty() ? otherwise : span(children.back()).end;
}

// --- one item ------------------------------------------------------------------------------------------------------

void Splicer::write(const SaveItem& item, const SvgScope& scope) {
    if (item.element >= 0) {
        writeKnown(item, scope);
    } else if (item.layer || item.art->kind == kGroupArt) {
        writeNewGroup(item, scope);
    } else {
        buffer_.add(writer_.newLeaf(*item.art, scope));
    }
}

void Splicer::writeNewGroup(const SaveItem& item, const SvgScope& scope) {
    svg::StartTag tag = writer_.newTag("g");
    if (plan_.needsId(item.layer)) tag.set("id", plan_.currentId());
    if (item.layer) {
        writer_.layerTag(&tag, *item.layer, -1);
    } else {
        if (!item.art->name.empty()) tag.set("id", item.art->name);
        writer_.markTag(&tag, *item.art, -1);
    }
    writer_.rules().blockInheritedStyle(&tag);
    writeNewContent(&tag, plan_.itemsOf(*item.art), scope);
}

void Splicer::writeNewContent(svg::StartTag* tag, const std::vector<SaveItem>& items, const SvgScope& scope) {
    tag->setSelfClosing(items.empty());
    buffer_.add(tag->str());
    if (items.empty()) return;
    SvgScope inner = scope;
    if (!scope.lineBreak.empty()) inner.lineBreak += indentStep(scope.lineBreak);
    for (const SaveItem& item : items) {
        buffer_.add(inner.lineBreak);
        write(item, inner);
    }
    buffer_.add(scope.lineBreak + "</" + tag->name() + ">");
}

void Splicer::writeKnown(const SaveItem& item, const SvgScope& scope) {
    const std::int32_t parent = element(item.element).parent;
    const svg::ElementSpan& whole = span(item.element);
    const bool sameMap = scope.map == source_.tree.map(parent);
    const bool inPlace = sameMap && scope.style == record(parent).style;
    if (inPlace && !plan_.isDirty(item.element)) {
        buffer_.copy(whole.begin, whole.end);
        return;
    }
    svg::StartTag tag = startTag(item.element);
    switch (element(item.element).role) {
        case Role::kText:
            writeText(&tag, item, scope, inPlace);
            break;
        case Role::kForeign:
            writeForeign(&tag, item, scope, sameMap);
            break;
        case Role::kUse:
            writeUse(&tag, item, scope, inPlace);
            break;
        case Role::kGroup:
        case Role::kViewport:
            writeContainer(&tag, item, scope, inPlace);
            break;
        default:
            writeOutline(&tag, item, scope, inPlace);
    }
}

void Splicer::writeOutline(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace) {
    const svg::StartTag was = *tag;
    writer_.editOutline(tag, *item.art, item.element, scope, inPlace);
    writer_.preserveComputedStyle(tag, was);
    finishLeaf(*tag, span(item.element));
}

void Splicer::writeText(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace) {
    const svg::StartTag was = *tag;
    const auto content = writer_.editText(tag, *item.art, item.element, scope, inPlace);
    writer_.preserveComputedStyle(tag, was);
    if (!content) return finishLeaf(*tag, span(item.element));
    tag->setSelfClosing(false);
    buffer_.add(tag->str() + *content + "</" + tag->name() + ">");
}

void Splicer::writeForeign(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool sameMap) {
    const svg::StartTag was = *tag;
    writer_.markTag(tag, *item.art, item.element);
    if (!sameMap || !base_.isUnmoved(*item.art)) writer_.editForeign(tag, *item.art, scope);
    writer_.preserveComputedStyle(tag, was);
    finishLeaf(*tag, span(item.element));
}

// The rest of an element whose start tag alone has changed.
void Splicer::finishLeaf(const svg::StartTag& tag, const svg::ElementSpan& whole) {
    buffer_.add(tag.str());
    if (whole.empty()) return;
    buffer_.copy(whole.tagEnd, whole.contentEnd);
    const std::string end = "</" + tag.name();
    if (text_.substr(whole.contentEnd).starts_with(end)) {
        buffer_.copy(whole.contentEnd, whole.end);
    } else {
        buffer_.add(end + ">");
    }
}

// What is inside an element whose surroundings may have changed: its own transform is dropped when it would act on
// another space than it was made for.
SvgScope Splicer::inside(svg::StartTag* tag, std::int32_t number, const SvgScope& scope, bool inPlace) {
    SvgScope inner = scopeIn(number);
    if (!(scope.map == source_.tree.map(element(number).parent))) {
        tag->remove("transform");
        inner.map = scope.map;
        inner.style = -1;
    } else if (!inPlace) {
        const AIPathStyle& style = *source_.styles[static_cast<std::size_t>(record(number).style)];
        for (const StyleProperty& property :
             styleProperties(style, nullptr, inner.map.scale(), paintTexts(document_))) {
            svg::setProperty(tag, property.name, property.value);
        }
    }
    return inner;
}

void Splicer::writeContainer(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace) {
    const svg::StartTag was = *tag;
    const SvgScope inner = inside(tag, item.element, scope, inPlace);
    if (!(inner.map == source_.tree.map(item.element)) && tag->name() == writer_.svgName("svg")) {
        tag->rename(writer_.svgName("g"));
        for (const char* name : {"x", "y", "width", "height", "viewBox", "preserveAspectRatio"}) tag->remove(name);
    }
    if (item.layer) {
        if (plan_.needsId(item.layer)) tag->set("id", plan_.currentId());
        writer_.layerTag(tag, *item.layer, item.element);
    } else {
        writer_.markTag(tag, *item.art, item.element);
    }
    writer_.preserveComputedStyle(tag, was);
    const std::string ownBreak = lineBreakBefore(span(item.element).begin);
    container(tag, item.element, plan_.itemsOf(*item.art), inner, ownBreak, &scope);
}

// A use element whose copy has changed is written out before; only one in a circle comes here. It becomes a group
// of what it showed, as far as the document knows it.
void Splicer::writeUse(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace) {
    if (inPlace && contentHash(document_, *item.art) == record(item.element).content) {
        writer_.markTag(tag, *item.art, item.element);
        finishLeaf(*tag, span(item.element));
        return;
    }
    SvgScope inner = inside(tag, item.element, scope, inPlace);
    tag->rename(writer_.svgName("g"));
    for (const char* name : {"x", "y", "width", "height"}) tag->remove(name);
    for (const std::string& name : tag->attributeNames()) {
        if (name == "href" || name.ends_with(":href")) tag->remove(name);
    }
    writer_.markTag(tag, *item.art, item.element);
    inner.lineBreak = scope.lineBreak;
    writeNewContent(tag, plan_.itemsOf(*item.art), inner);
}

}  // namespace quorvel::interchange
