// Saving a drawing: the file's text is copied, and only what differs from the document is spliced in. First it is found
// out which elements have anything changed in or below them; all others go through in one piece.
#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/art_writer.h"
#include "interchange/svg/definitions.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/save_base.h"
#include "interchange/svg/svg.h"
#include "svg/css/style_attribute.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/splice_buffer.h"
#include "svg/markup/start_tag.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::interchange {

using svg::Role;

namespace {

// What is written as one element: an art, a layer, or a stretch of art in no layer element that becomes a layer.
struct Item {
    const doc::Art* art = nullptr;
    const doc::Layer* layer = nullptr;
    std::int32_t element = -1;  // where it stands in the file, -1 when it is new
};

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

class Splicer {
  public:
    Splicer(const doc::Document& document, const SaveBase& base, std::string_view rulerUnit)
        : document_(document),
          base_(base),
          source_(base.source()),
          text_(*source_.text),
          rulerUnit_(rulerUnit),
          writer_(document, base),
          rope_(*source_.text, declaredAscii(*source_.text)) {}

    std::string write() {
        listChildren();
        planLayers();
        const bool changed = checkArt();
        if (!changed && !rootChanges() && currentId_.empty()) return *source_.text;
        findSpans();
        rope_.copy(0, spans_[0].begin);
        SvgScope scope = scopeIn(0);
        svg::StartTag tag = startTag(0);
        const std::size_t place = rope_.leave();
        container(&tag, 0, rootItems_, scope, "\n", nullptr);
        finishRoot(&tag);
        rope_.fill(place, tag.str());
        rope_.copy(spans_[0].end, text_.size());
        return rope_.join();
    }

  private:
    const svg::Element& element(std::int32_t number) const { return source_.element(number); }
    const SvgRecord& record(std::int32_t number) const { return source_.record(number); }
    const svg::ElementSpan& span(std::int32_t number) const { return spans_[static_cast<std::size_t>(number)]; }
    svg::StartTag startTag(std::int32_t number) const { return tagNamedAt(element(number).nameOffset); }
    svg::StartTag tagNamedAt(std::uint32_t offset) const {
        return svg::StartTag(svg::startTagText(text_, offset), &source_.entities());
    }

    // --- what is there and what should be --------------------------------------------------------------------------

    // What is in an element, as it was read.
    SvgScope scopeIn(std::int32_t number) const {
        return {source_.tree.map(number), record(number).style,
                unmodelledProperties(source_.tree.file->styles(), element(number).style), ""};
    }

    // Of the elements that are written in the file; instances have none.
    void findSpans() {
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

    // The elements below each element, in the order of the file.
    void listChildren() {
        const auto count = source_.tree.size();
        const auto forEachChild = [&](auto visit) {
            for (std::size_t i = 1; i < count; ++i) {
                const svg::Element& child = source_.tree.elements[i];
                if (!child.isInstance) visit(static_cast<std::size_t>(child.parent), static_cast<std::int32_t>(i));
            }
        };
        childStart_.assign(count + 1, 0);
        forEachChild([&](std::size_t parent, std::int32_t) { ++childStart_[parent + 1]; });
        for (std::size_t i = 0; i < count; ++i) childStart_[i + 1] += childStart_[i];
        childList_.resize(childStart_[count]);
        std::vector<std::size_t> next(childStart_.begin(), childStart_.end() - 1);
        forEachChild([&](std::size_t parent, std::int32_t child) { childList_[next[parent]++] = child; });
        dirty_.assign(count, false);
        present_.assign(count, false);
    }

    std::span<const std::int32_t> childrenOf(std::int32_t number) const {
        const auto at = static_cast<std::size_t>(number);
        return std::span(childList_).subspan(childStart_[at], childStart_[at + 1] - childStart_[at]);
    }

    std::vector<Item> itemsOf(const doc::Art& parent) const {
        std::vector<Item> items;
        for (doc::ArtId id = parent.lastChild; id != 0;) {
            const doc::Art* child = document_.find(id);
            items.push_back({child, nullptr, base_.elementOf(*child)});
            id = child->above;
        }
        return items;
    }

    // Art in no layer element stays so while its layer's state can be left unsaid.
    void planLayers() {
        const std::vector<doc::LayerId>& layers = document_.layers();
        std::vector<const doc::Layer*> loose;
        bool hasLayerElements = false, behindLoose = false;
        for (auto id = layers.rbegin(); id != layers.rend(); ++id) {
            const doc::Layer* layer = document_.layer(*id);
            const doc::Art* root = document_.find(layer->root);
            const std::int32_t element = base_.elementOf(*layer);
            const bool sayable = layer->visible && layer->editable && (root->firstChild != 0 || layers.size() == 1);
            // Two such layers that have come to lie on each other would be read as one.
            if (element == 0 && sayable && !behindLoose) {
                behindLoose = true;
                loose.push_back(layer);
                const std::vector<Item> items = itemsOf(*root);
                rootItems_.insert(rootItems_.end(), items.begin(), items.end());
            } else {
                hasLayerElements = true;
                behindLoose = false;
                if (element == 0) wrapped_.push_back(layer);
                rootItems_.push_back({root, layer, element > 0 ? element : -1});
            }
        }
        planTitles(loose, hasLayerElements);
        planCurrentLayer();
    }

    // The titles of loose layers are said only where a reader would give them others.
    void planTitles(const std::vector<const doc::Layer*>& loose, bool hasLayerElements) {
        const svg::StartTag root = startTag(0);
        const std::vector<std::string> said =
            decodeList(root.attribute(source_.names().own + own_attribute::kLayerTitles).value_or(""));
        bool asSaid = true;
        bool asGiven = true;
        std::vector<std::string> titles;
        for (std::size_t i = 0; i < loose.size(); ++i) {
            std::string given = "Layer 1";
            if (hasLayerElements) given = i == 0 ? "<root>" : "<root> " + std::to_string(i + 1);
            titles.push_back(loose[i]->title);
            asGiven &= loose[i]->title == given;
            asSaid &= loose[i]->title == (i < said.size() ? said[i] : given);
        }
        if (!asSaid) looseTitles_ = asGiven ? "" : encodeList(titles);
    }

    void planCurrentLayer() {
        const doc::LayerId current = document_.currentLayer();
        const doc::Layer* layer = document_.layer(current);
        if (!layer) return;
        // What a reader would find: the named layer while it is where it was, else the topmost.
        const auto wrapped = [&](const doc::Layer* one) { return std::ranges::find(wrapped_, one) != wrapped_.end(); };
        const doc::Layer* named = document_.layer(source_.currentLayer);
        const doc::LayerId given = named && !wrapped(named) ? named->id : document_.layers().front();
        if (given == current) return;
        const std::int32_t own = wrapped(layer) ? -1 : base_.elementOf(*layer);
        if (own >= 0) currentId_ = startTag(own).attribute("id").value_or("");
        if (currentId_.empty()) {
            int number = 1;
            do {
                currentId_ = "quorvel-layer-" + std::to_string(number++);
            } while (document_.isNameTaken(currentId_));
            needsId_ = layer;
        }
    }

    // True when anything but the root's own attributes differs; marks the elements that cannot be copied whole.
    bool checkArt() {
        bool changed = !sameItems(rootItems_, 0);
        for (const Item& item : rootItems_) changed |= check(item);
        dirty_[0] = changed;
        return changed;
    }

    bool sameItems(std::span<const Item> items, std::int32_t number) const {
        return std::ranges::equal(items, childrenOf(number), {}, &Item::element);
    }

    bool check(const Item& item) {
        if (item.element < 0) {
            for (const Item& child : itemsOf(*item.art)) check(child);
            return true;
        }
        const Role role = element(item.element).role;
        const doc::Art& art = *item.art;
        present_[static_cast<std::size_t>(item.element)] = true;
        bool changed = item.layer ? item.layer->revision != 0 || item.layer == needsId_ : art.revision != 0;
        if (svg::isGroup(role)) {
            const std::vector<Item> items = itemsOf(art);
            changed |= !sameItems(items, item.element);
            for (const Item& child : items) changed |= check(child);
        } else if (role == Role::kUse) {
            changed |= contentHash(document_, art) != record(item.element).content;
        } else if (art.kind == kCompoundPathArt) {
            changed |= membersChanged(art, record(item.element));
        }
        changed = changed || (base_.writtenOut(art) && looksOther(document_, source_, art, nullptr, item.element));
        dirty_[static_cast<std::size_t>(item.element)] = changed;
        return changed;
    }

    bool membersChanged(const doc::Art& art, const SvgRecord& record) const {
        if (outlineHash(document_, art) != record.content) return true;
        return std::ranges::any_of(itemsOf(art), [](const Item& item) { return item.art->revision != 0; });
    }

    // --- the root's own attributes ---------------------------------------------------------------------------------

    bool rootChanges() {
        svg::StartTag tag = startTag(0);
        const std::string before = tag.str();
        setRootAttributes(&tag);
        return tag.str() != before;
    }

    void setRootAttributes(svg::StartTag* tag) {
        if (looseTitles_ && looseTitles_->empty()) tag->remove(source_.names().own + own_attribute::kLayerTitles);
        if (looseTitles_ && !looseTitles_->empty())
            tag->set(writer_.ownName(own_attribute::kLayerTitles), *looseTitles_);
        if (!rulerUnit_.empty() && rulerUnit_ != source_.rulerUnit)
            tag->set(writer_.ownName(own_attribute::kRuler), rulerUnit_);
        if (!currentId_.empty() && source_.namedViewOffset == 0)
            tag->set(writer_.ownName(own_attribute::kCurrentLayer), currentId_);
        if (needsId_ && base_.elementOf(*needsId_) == 0 && std::ranges::find(wrapped_, needsId_) == wrapped_.end())
            tag->set("id", currentId_);
    }

    void finishRoot(svg::StartTag* tag) {
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
    void gap(std::size_t begin, std::size_t end) {
        const std::size_t view = source_.namedViewOffset;
        if (currentId_.empty() || view == 0 || view - 1 < begin || view >= end) {
            rope_.copy(begin, end);
            return;
        }
        const std::string_view whole = svg::startTagText(text_, source_.namedViewOffset);
        svg::StartTag tag(whole, &source_.entities());
        tag.set(writer_.inkscapeName("current-layer"), currentId_);
        rope_.copy(begin, view - 1);
        rope_.add(tag.str());
        rope_.copy(view - 1 + whole.size(), end);
    }

    // --- containers ------------------------------------------------------------------------------------------------

    std::size_t blanksBefore(std::size_t position, std::size_t least) const {
        while (position > least && isBlank(text_[position - 1])) --position;
        return position;
    }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    // From the last line end of the blanks before the position; nothing when they hold none.
    std::string lineBreakBefore(std::size_t position) const {
        const std::string_view blanks = text_.substr(blanksBefore(position, 0), position - blanksBefore(position, 0));
        const std::size_t line = blanks.rfind('\n');
        if (line == std::string_view::npos) return "";
        return std::string(blanks.substr(line > 0 && blanks[line - 1] == '\r' ? line - 1 : line));
    }

    std::string childBreak(std::int32_t number, const std::string& ownBreak) const {
        const auto children = childrenOf(number);
        for (std::int32_t child : children) {
            const std::string found = lineBreakBefore(span(child).begin);
            if (!found.empty()) return found;
        }
        if (!children.empty() || ownBreak.empty()) return "";
        return ownBreak + indentStep(ownBreak);
    }

    static std::string indentStep(const std::string& lineBreak) { return lineBreak.ends_with('\t') ? "\t" : "  "; }

    // Writes the element's content and end; its start tag too, but for the root's, which is filled in later.
    void container(svg::StartTag* tag, std::int32_t number, const std::vector<Item>& items, SvgScope scope,
                   const std::string& ownBreak, const SvgScope* writeTag) {
        const svg::ElementSpan& whole = span(number);
        scope.lineBreak = childBreak(number, ownBreak);
        if (whole.empty()) {
            tag->setSelfClosing(items.empty());
            if (writeTag) rope_.add(tag->str());
            for (const Item& item : items) {
                rope_.add(scope.lineBreak);
                write(item, scope);
            }
            if (!items.empty())
                rope_.add(std::string(scope.lineBreak.empty() ? "" : ownBreak) + "</" + tag->name() + ">");
            return;
        }
        if (writeTag) rope_.add(tag->str());
        mix(number, items, scope);
        const std::string_view end = text_.substr(whole.contentEnd, whole.end - whole.contentEnd);
        if (end.substr(2).starts_with(tag->name())) {
            rope_.copy(whole.contentEnd, whole.end);
        } else {
            rope_.add("</" + tag->name() + ">");
        }
    }

    // Children that kept their order stay; new and moved ones come directly above the one that they lie on.
    void mix(std::int32_t number, const std::vector<Item>& items, const SvgScope& scope) {
        const svg::ElementSpan& whole = span(number);
        const auto children = childrenOf(number);
        std::vector<std::int64_t> places;
        for (const Item& item : items) {
            const auto at = std::ranges::lower_bound(children, item.element);
            places.push_back(at != children.end() && *at == item.element ? at - children.begin() : -1);
        }
        const std::vector<bool> stays = longestRise(places);
        std::size_t cursor = whole.tagEnd;
        std::size_t nextChild = 0;
        bool behindOne = false;
        std::vector<const Item*> waiting;
        const auto cutUpTo = [&](std::size_t child, std::size_t end) {
            for (; nextChild < child; ++nextChild) {
                const svg::ElementSpan& gone = span(children[nextChild]);
                const std::string rest = definitionsOf(children[nextChild]);
                // Its line goes with it when nothing else stands there.
                const bool lineEnds = isBlank(text_[gone.end]) || text_.substr(gone.end, 2) == "</";
                const bool wholeLine = lineEnds && rest.empty();
                const std::size_t cut = gone.begin - (wholeLine ? lineBreakBefore(gone.begin).size() : 0);
                gap(cursor, std::max(cut, cursor));
                rope_.add(rest);
                cursor = gone.end;
            }
            gap(cursor, end);
            cursor = end;
        };
        const auto place = [&](bool before) {
            for (const Item* item : waiting) {
                if (!before) rope_.add(scope.lineBreak);
                write(*item, scope);
                if (before) rope_.add(scope.lineBreak);
            }
            waiting.clear();
        };
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (!stays[i]) {
                waiting.push_back(&items[i]);
                continue;
            }
            if (behindOne) place(false);
            cutUpTo(static_cast<std::size_t>(places[i]), span(items[i].element).begin);
            place(true);
            write(items[i], scope);
            cursor = span(items[i].element).end;
            ++nextChild;
            behindOne = true;
        }
        if (behindOne) {
            place(false);
            cutUpTo(children.size(), whole.contentEnd);
        } else {
            const std::size_t blanks = blanksBefore(whole.contentEnd, whole.tagEnd);
            cutUpTo(children.size(), std::max(blanks, lastEnd(children, whole.tagEnd)));
            const bool any = !waiting.empty();
            place(false);
            const std::string ownBreak = lineBreakBefore(span(number).begin);
            if (any && cursor == whole.contentEnd && !scope.lineBreak.empty()) {
                rope_.add(ownBreak.empty() ? "\n" : ownBreak);
            }
            gap(cursor, whole.contentEnd);
        }
    }

    // What a removed element leaves behind: definitions in it that something elsewhere may refer to, in an element that
    // shows nothing and hands down what the removed one did. Empty when there is none.
    std::string definitionsOf(std::int32_t number) const {
        if (present_[static_cast<std::size_t>(number)] || element(number).role == Role::kForeign) return "";
        const svg::ElementSpan& whole = span(number);
        std::string rest;
        std::size_t cursor = whole.tagEnd;
        for (std::int32_t child : childrenOf(number)) {
            rest += definitionsIn(text_.substr(cursor, span(child).begin - cursor)) + definitionsOf(child);
            cursor = span(child).end;
        }
        rest += definitionsIn(text_.substr(cursor, whole.contentEnd - cursor));
        return rest.empty() ? ""
                            : writer_.definitionsTag(startTag(number)) + rest + "</" + writer_.svgName("defs") + ">";
    }

    std::size_t lastEnd(std::span<const std::int32_t> children, std::size_t otherwise) const {
        return children.empty() ? otherwise : span(children.back()).end;
    }

    // --- one item --------------------------------------------------------------------------------------------------

    void write(const Item& item, const SvgScope& scope) {
        if (item.element >= 0) {
            writeKnown(item, scope);
        } else if (item.layer || item.art->kind == kGroupArt) {
            writeNewGroup(item, scope);
        } else {
            rope_.add(writer_.newLeaf(*item.art, scope));
        }
    }

    void writeNewGroup(const Item& item, const SvgScope& scope) {
        svg::StartTag tag = writer_.newTag("g");
        if (item.layer == needsId_ && needsId_) tag.set("id", currentId_);
        if (item.layer) {
            writer_.layerTag(&tag, *item.layer, -1);
        } else {
            if (!item.art->name.empty()) tag.set("id", item.art->name);
            writer_.markTag(&tag, *item.art, -1);
        }
        writer_.rules().blockInheritedStyle(&tag);
        writeNewContent(&tag, itemsOf(*item.art), scope);
    }

    void writeNewContent(svg::StartTag* tag, const std::vector<Item>& items, const SvgScope& scope) {
        tag->setSelfClosing(items.empty());
        rope_.add(tag->str());
        if (items.empty()) return;
        SvgScope inner = scope;
        if (!scope.lineBreak.empty()) inner.lineBreak += indentStep(scope.lineBreak);
        for (const Item& item : items) {
            rope_.add(inner.lineBreak);
            write(item, inner);
        }
        rope_.add(scope.lineBreak + "</" + tag->name() + ">");
    }

    void writeKnown(const Item& item, const SvgScope& scope) {
        const std::int32_t parent = element(item.element).parent;
        const svg::ElementSpan& whole = span(item.element);
        const bool sameMap = scope.map == source_.tree.map(parent);
        const bool inPlace = sameMap && scope.style == record(parent).style;
        if (inPlace && !dirty_[static_cast<std::size_t>(item.element)]) {
            rope_.copy(whole.begin, whole.end);
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

    void writeOutline(svg::StartTag* tag, const Item& item, const SvgScope& scope, bool inPlace) {
        const svg::StartTag was = *tag;
        writer_.editOutline(tag, *item.art, item.element, scope, inPlace);
        writer_.preserveComputedStyle(tag, was);
        finishLeaf(*tag, span(item.element));
    }

    void writeText(svg::StartTag* tag, const Item& item, const SvgScope& scope, bool inPlace) {
        const svg::StartTag was = *tag;
        const auto content = writer_.editText(tag, *item.art, item.element, scope, inPlace);
        writer_.preserveComputedStyle(tag, was);
        if (!content) return finishLeaf(*tag, span(item.element));
        tag->setSelfClosing(false);
        rope_.add(tag->str() + *content + "</" + tag->name() + ">");
    }

    void writeForeign(svg::StartTag* tag, const Item& item, const SvgScope& scope, bool sameMap) {
        const svg::StartTag was = *tag;
        writer_.markTag(tag, *item.art, item.element);
        if (!sameMap || !base_.isUnmoved(*item.art)) writer_.editForeign(tag, *item.art, scope);
        writer_.preserveComputedStyle(tag, was);
        finishLeaf(*tag, span(item.element));
    }

    // The rest of an element whose start tag alone has changed.
    void finishLeaf(const svg::StartTag& tag, const svg::ElementSpan& whole) {
        rope_.add(tag.str());
        if (whole.empty()) return;
        rope_.copy(whole.tagEnd, whole.contentEnd);
        const std::string end = "</" + tag.name();
        if (text_.substr(whole.contentEnd).starts_with(end)) {
            rope_.copy(whole.contentEnd, whole.end);
        } else {
            rope_.add(end + ">");
        }
    }

    // What is inside an element whose surroundings may have changed: its own transform is dropped when it would act on
    // another space than it was made for.
    SvgScope inside(svg::StartTag* tag, std::int32_t number, const SvgScope& scope, bool inPlace) {
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

    void writeContainer(svg::StartTag* tag, const Item& item, const SvgScope& scope, bool inPlace) {
        const svg::StartTag was = *tag;
        const SvgScope inner = inside(tag, item.element, scope, inPlace);
        if (!(inner.map == source_.tree.map(item.element)) && tag->name() == writer_.svgName("svg")) {
            tag->rename(writer_.svgName("g"));
            for (const char* name : {"x", "y", "width", "height", "viewBox", "preserveAspectRatio"}) tag->remove(name);
        }
        if (item.layer) {
            if (item.layer == needsId_) tag->set("id", currentId_);
            writer_.layerTag(tag, *item.layer, item.element);
        } else {
            writer_.markTag(tag, *item.art, item.element);
        }
        writer_.preserveComputedStyle(tag, was);
        const std::string ownBreak = lineBreakBefore(span(item.element).begin);
        container(tag, item.element, itemsOf(*item.art), inner, ownBreak, &scope);
    }

    // A use element whose copy has changed is written out before; only one in a circle comes here. It becomes a group
    // of what it showed, as far as the document knows it.
    void writeUse(svg::StartTag* tag, const Item& item, const SvgScope& scope, bool inPlace) {
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
        writeNewContent(tag, itemsOf(*item.art), inner);
    }

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    std::string_view text_;
    std::string_view rulerUnit_;
    SvgArtWriter writer_;
    svg::SpliceBuffer rope_;
    std::vector<std::size_t> childStart_;
    std::vector<std::int32_t> childList_;
    std::vector<bool> dirty_;
    std::vector<bool> present_;  // elements whose art is still in the document
    std::vector<svg::ElementSpan> spans_;
    std::vector<Item> rootItems_;
    std::vector<const doc::Layer*> wrapped_;  // art in no layer element that gets one now
    std::optional<std::string> looseTitles_;  // to be said, empty for none; nothing: what is said stands
    std::string currentId_;                   // empty: as a reader finds it
    const doc::Layer* needsId_ = nullptr;     // the current layer, when its element has no id yet
};

// --- a new file ----------------------------------------------------------------------------------------------------

struct PageUnit {
    std::string_view name;
    double points;
};

constexpr PageUnit kPageUnits[] = {{"mm", 72 / 25.4}, {"cm", 72 / 2.54}, {"in", 72},
                                   {"pc", 12},        {"px", 0.75},      {"pt", 1}};

// The length that a reader turns into exactly this number of points.
std::string pageSide(float points, const PageUnit& unit) {
    const auto text = [&](double value) {
        std::string out;
        svg::appendNumber(&out, value);
        return out + std::string(unit.name);
    };
    const double side = svg::fewestDecimals(points / unit.points, [&](double value) {
        return static_cast<float>(svg::parseLength(text(value), {}).value_or(0) * 0.75) == points;
    });
    return text(side);
}

std::string emptyFile(const doc::Document& document, std::string_view rulerUnit) {
    const auto known = std::ranges::find(kPageUnits, rulerUnit, &PageUnit::name);
    const PageUnit& unit = known == std::end(kPageUnits) ? kPageUnits[5] : *known;
    const std::string width = pageSide(document.width(), unit);
    const std::string height = pageSide(document.height(), unit);
    const auto plain = [&](const std::string& side) { return side.substr(0, side.size() - unit.name.size()); };
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:inkscape=\"" +
           std::string(svg::kInkscapeNamespace) + "\" width=\"" + width + "\" height=\"" + height +
           "\" viewBox=\"0 0 " + plain(width) + " " + plain(height) + "\"/>\n";
}

}  // namespace

std::string writeSvg(const doc::Document& document, std::string_view rulerUnit) {
    if (const SvgSource* source = svgSource(document))
        return Splicer(document, SaveBase(document, *source), rulerUnit).write();
    const std::string_view unit = rulerUnit.empty() ? "pt" : rulerUnit;
    const Result<SvgDrawing> page = readSvg(emptyFile(document, unit));
    if (!page) return {};
    SvgSource source = *svgSource(*page->document);
    source.currentLayer = 0;
    return Splicer(document, SaveBase(document, source), unit).write();
}

}  // namespace quorvel::interchange
