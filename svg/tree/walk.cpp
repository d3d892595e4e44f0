// Each element goes the same way: its style, its transform, its number in the tree, then the visitor.
#include "svg/tree/walk.h"

#include <algorithm>
#include <cstdlib>

#include "svg/css/declarations.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/lines.h"
#include "svg/tree/roles.h"
#include "svg/values/byte_text.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

// Work that copies made by use elements may cost, in elements or 256 bytes of what is read again for them.
constexpr std::size_t kMostCopies = 300'000;
constexpr std::size_t kBytesForOne = 256;

// The language that SVG's systemLanguage is asked for, in lower case: that of the environment, else English.
std::string userLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') continue;
        std::string language = lowerCase(std::string_view(value).substr(0, std::string_view(value).find('.')));
        std::ranges::replace(language, '_', '-');
        return language == "c" || language == "posix" ? "en" : language;
    }
    return "en";
}

// Does the list name the language, or one of which it is a kind ("en" of "en-us") or the other way round?
bool namesLanguage(std::string_view list, const std::string& language) {
    const auto isKindOf = [](std::string_view kind, std::string_view of) {
        return kind.starts_with(of) && (kind.size() == of.size() || kind[of.size()] == '-');
    };
    for (std::size_t at = 0; at <= list.size();) {
        const std::size_t comma = std::min(list.find(',', at), list.size());
        const std::string name = lowerCase(trimmed(list.substr(at, comma - at)));
        if (!name.empty() && (isKindOf(language, name) || isKindOf(name, language))) return true;
        at = comma + 1;
    }
    return false;
}

// The first child of a switch element that can be drawn (SVG 1.1, 5.8.2).
XmlNode chosenChild(const XmlNode& element, const SvgNames& names) {
    for (const XmlNode& child : element.children()) {
        if (!child.isElement() || !names.isSvg(child)) continue;
        const ElementKind* kind = elementKind(child.localName());
        if (kind == nullptr || !kind->role) continue;
        const XmlAttribute language = child.attribute("systemLanguage");
        const bool needsMore = !child.attribute("requiredExtensions").value().empty();
        if (!needsMore && (!language || namesLanguage(language.value(), userLanguage()))) return child;
    }
    return {};
}

bool hasTextPath(const XmlNode& text) {
    bool found = false;
    forEachElement(text, [&](const XmlNode& node, int) {
        found = node.localName() == "textPath";
        return !found;
    });
    return found;
}

}  // namespace

std::optional<double> readLength(const Visit& visit, std::string_view name, double percentOf, std::string* bad) {
    const XmlAttribute attribute = visit.node.attribute(name);
    if (!attribute || attribute.value() == "auto") return std::nullopt;
    LengthContext context = visit.lengths;
    context.percentOf = percentOf;
    context.fontSize = visit.style.fontSize;
    const std::optional<double> value = parseLength(attribute.value(), context);
    if (!value) *bad = name;
    return value;
}

bool isFaultOfElement(ErrorCode code) {
    static constexpr ErrorCode kFaults[] = {
        ErrorCode::kBadTransform,  ErrorCode::kBadLength,  ErrorCode::kNoPathCommand,  ErrorCode::kNoFirstMove,
        ErrorCode::kBadPathNumber, ErrorCode::kPathCutOff, ErrorCode::kBadPointsNumber};
    return std::ranges::find(kFaults, code) != std::end(kFaults);
}

TreeWalk::TreeWalk(Tree* tree, TreeVisitor* visitor) : tree_(*tree), file_(*tree->file), visitor_(*visitor) {
    lengths_.pageWidth = file_.page().width / kPointsPerPixel;
    lengths_.pageHeight = file_.page().height / kPointsPerPixel;
    lengths_.rootFontSize = file_.rootFontSize();
}

Error TreeWalk::at(const XmlNode& node, Error error) const {
    constexpr std::size_t kLongestId = 80;
    error.line = lineAt(*file_.text(), node.offset());
    error.element = node.name();
    const std::string_view id = node.attribute("id").value();
    if (id.size() < kLongestId) error.elementId = encodeBytes(id);
    return error;
}

Status TreeWalk::wholeFile() {
    const XmlNode root = file_.root();
    const Page& page = file_.page();
    ComputedStyle style;
    if (!file_.cascade().compute(root, file_.styles().at(0), page.viewport.diagonal(), &style))
        return at(root, ErrorCode::kStyleSheetsTooCostly);
    return content(root, style, page.map, page.viewport);
}

Status TreeWalk::content(const XmlNode& element, const ComputedStyle& style, const Affine& map,
                         const Viewport& viewport) {
    Visit root;
    root.text = *file_.text();
    root.node = element;
    root.name = element.localName();
    root.style = style;
    root.map = map;
    root.viewport = viewport;
    Frame frame;
    frame.next = element.firstChild();
    return walk(std::move(frame), root);
}

Status TreeWalk::part(const XmlNode& element, std::string_view text, const Place& place) {
    part_ = text;
    depth_ = place.depth;
    bool isTooDeep = false;
    forEachElement(element, [&](const XmlNode&, int depth) {
        isTooDeep = depth + depth_ > kDeepestElement;
        return !isTooDeep;
    });
    if (isTooDeep) return makeError(ErrorCode::kElementsTooDeep, {std::to_string(kDeepestElement)});
    Visit root;
    root.text = text;
    root.style = file_.styles().at(place.style);
    root.map = place.map;
    root.viewport = place.viewport;
    Frame frame;
    frame.next = element;
    frame.single = true;
    frame.isOfFile = false;
    return walk(std::move(frame), root);
}

Status TreeWalk::walk(Frame frame, const Visit& place) {
    Visit root = place;
    root.role = Role::kRoot;
    root.element = static_cast<std::int32_t>(tree_.size());
    stack_.clear();
    stack_.reserve(kDeepestElement + 2);  // frames stay where they are
    tree_.elements.push_back({.nameOffset = root.node ? root.node.offset() : 0,
                              .ctm = static_cast<std::uint32_t>(tree_.ctms.size()),
                              .style = root.style.number,
                              .role = Role::kRoot});
    tree_.ctms.push_back(root.map);
    tree_.viewports.push_back({root.element, root.viewport});
    visitor_.begin(root);
    frame.map = root.map;
    frame.viewport = root.viewport;
    push(std::move(frame), root);
    while (!stack_.empty())
        if (Status done = step(); !done) return done;
    return {};
}

Status TreeWalk::step() {
    Frame& frame = stack_.back();
    if (!frame.next) {
        const std::int32_t number = frame.element;
        stack_.pop_back();
        if (!stack_.empty()) visitor_.leave(tree_[number], number);
        return {};
    }
    const XmlNode node = frame.next;
    frame.next = frame.single ? XmlNode() : node.nextSibling();
    if (frame.copied && !payForCopy(node)) return at(node, ErrorCode::kTooManyCopies);
    if (!node.isElement()) return {};
    return readChild(node);
}

bool TreeWalk::payForCopy(const XmlNode& node) {
    std::size_t bytes = 0;
    for (const XmlAttribute& attribute : node.attributes()) bytes += attribute.name().size() + attribute.value().size();
    // A text is parsed anew, which costs more than an attribute of its size.
    if (node.isElement() && node.localName() == "text") bytes += 4 * elementText(*file_.text(), node.offset()).size();
    copies_ += 1 + bytes / kBytesForOne;
    return copies_ <= kMostCopies;
}

Status TreeWalk::readChild(const XmlNode& node) {
    if (!file_.names().isSvg(node)) return {};
    Visit visit;
    visit.text = stack_.back().isOfFile ? std::string_view(*file_.text()) : part_;
    visit.node = node;
    visit.name = node.localName();
    const ElementKind* kind = elementKind(visit.name);
    if (!kind) {
        warnings.insert(makeError(ErrorCode::kUnknownElements, {encodeBytes(visit.name.substr(0, 40))}));
        return {};
    }
    const bool isUsedSymbol = stack_.back().single && visit.name == "symbol";
    if (!kind->role && !isUsedSymbol) return {};
    visit.role = kind->role.value_or(Role::kViewport);
    if (stack_.size() + static_cast<std::size_t>(depth_) > kDeepestElement)
        return at(node, ErrorCode::kNestedTooDeeply);
    return readElement(&visit);
}

Status TreeWalk::readElement(Visit* visit) {
    const Frame& frame = stack_.back();
    const XmlNode& node = visit->node;
    visit->isInstance = frame.copied;
    visit->viewport = frame.viewport;
    visit->lengths = lengths_;
    visit->map = frame.map;
    if (!file_.cascade().compute(node, frame.style, frame.diagonal, &visit->style))
        return at(node, ErrorCode::kStyleSheetsTooCostly);
    if (const XmlAttribute transform = node.attribute("transform")) {
        Affine own;
        if (!parseTransform(transform.value(), &own)) warn(node, makeError(ErrorCode::kBadTransform));
        visit->map = compose(frame.map, own);
        if (!visit->map.finite()) return at(node, ErrorCode::kTransformOutOfRange);
    }
    if (isGroup(visit->role)) return enterGroup(visit);
    if (visit->role == Role::kUse) return enterUse(visit);
    if (visit->role == Role::kText && hasTextPath(node)) visit->role = Role::kForeign;
    if (visit->role == Role::kForeign)
        warnings.insert(visit->name == "text" ? makeError(ErrorCode::kKeptTextsOnPaths)
                                              : makeError(ErrorCode::kKeptElements, {std::string(visit->name)}));
    return leaf(visit);
}

void TreeWalk::record(Visit* visit) {
    const Frame& frame = stack_.back();
    std::uint32_t ctm = tree_[frame.element].ctm;
    if (!(tree_.ctms[ctm] == visit->map)) {
        ctm = static_cast<std::uint32_t>(tree_.ctms.size());
        tree_.ctms.push_back(visit->map);
    }
    visit->element = static_cast<std::int32_t>(tree_.size());
    tree_.elements.push_back(
        {visit->node.offset(), frame.element, ctm, visit->style.number, visit->role, visit->isInstance});
}

Status TreeWalk::leaf(Visit* visit) {
    record(visit);
    const Status visited = visitor_.visit(*visit);
    if (visited) return {};
    if (!isFaultOfElement(visited.error().code)) return at(visit->node, visited.error());
    warn(visit->node, visited.error());
    return {};
}

void TreeWalk::warn(const XmlNode& node, Error error) {
    constexpr std::size_t kMostWarnings = 1000;
    if (warnings.size() < kMostWarnings) warnings.insert(at(node, std::move(error)));
}

void TreeWalk::warnOfLength(const XmlNode& node, const std::string& bad) {
    if (!bad.empty()) warn(node, makeError(ErrorCode::kBadLength, {bad}));
}

// What is in the element inherits its style, but for shifts of text, which end at a container.
void TreeWalk::push(Frame frame, const Visit& visit) {
    frame.element = visit.element;
    frame.style = visit.style;
    frame.copied |= visit.isInstance;
    frame.diagonal = frame.viewport.diagonal();
    stack_.push_back(std::move(frame));
}

std::optional<Error> TreeWalk::openViewport(Visit* visit, Frame* frame) {
    const Frame& around = stack_.back();
    std::string bad;
    const double x = readLength(*visit, "x", around.viewport.width, &bad).value_or(0);
    const double y = readLength(*visit, "y", around.viewport.height, &bad).value_or(0);
    Viewport size{readLength(*visit, "width", around.viewport.width, &bad).value_or(around.viewport.width),
                  readLength(*visit, "height", around.viewport.height, &bad).value_or(around.viewport.height)};
    warnOfLength(visit->node, bad);
    if (around.use.width > 0) size.width = around.use.width;
    if (around.use.height > 0) size.height = around.use.height;
    frame->viewport = size;
    visit->map = compose(visit->map, Affine{1, 0, 0, 1, x, y});
    visit->map = compose(visit->map, viewBoxMap(viewBoxOf(visit->node), size, &frame->viewport));
    if (!visit->map.finite()) return at(visit->node, ErrorCode::kViewBoxOutOfRange);
    return std::nullopt;
}

Status TreeWalk::enterGroup(Visit* visit) {
    Frame frame;
    frame.viewport = visit->viewport;
    frame.isOfFile = stack_.back().isOfFile;
    const bool makesViewport = visit->role == Role::kViewport;
    if (makesViewport)
        if (const std::optional<Error> error = openViewport(visit, &frame)) return *error;
    endShift(&visit->style);
    if (Status entered = leaf(visit); !entered) return entered;
    if (makesViewport) tree_.viewports.push_back({visit->element, frame.viewport});
    frame.single = visit->name == "switch";
    frame.next = frame.single ? chosenChild(visit->node, file_.names()) : visit->node.firstChild();
    frame.map = visit->map;
    push(std::move(frame), *visit);
    return {};
}

Status TreeWalk::enterUse(Visit* visit) {
    const XmlNode target = file_.find(hrefId(visit->node));
    const bool loops = std::ranges::any_of(stack_, [&](const Frame& frame) { return frame.target == target; });
    if (!target || loops || !file_.names().isSvg(target)) {
        warnings.insert(makeError(loops && target ? ErrorCode::kUseOfItself : ErrorCode::kUseOfNothing));
        visit->role = Role::kForeign;
        return leaf(visit);
    }
    const Viewport around = visit->viewport;
    std::string bad;
    visit->use = {readLength(*visit, "x", around.width, &bad).value_or(0),
                  readLength(*visit, "y", around.height, &bad).value_or(0),
                  readLength(*visit, "width", around.width, &bad).value_or(0),
                  readLength(*visit, "height", around.height, &bad).value_or(0)};
    warnOfLength(visit->node, bad);
    endShift(&visit->style);
    if (Status entered = leaf(visit); !entered) return entered;
    Frame frame;
    frame.next = target;
    frame.single = true;
    frame.copied = true;
    frame.target = target;
    frame.use = visit->use;
    frame.viewport = around;
    frame.map = compose(visit->map, Affine{1, 0, 0, 1, visit->use.x, visit->use.y});
    if (!frame.map.finite()) return at(visit->node, ErrorCode::kCoordinateOutOfRange);
    push(std::move(frame), *visit);
    return {};
}

void TreeWalk::endShift(ComputedStyle* style) const {
    if (style->baselineShift == 0) return;
    style->baselineShift = 0;
    file_.styles().intern(style, StyleTable::kText);
}

}  // namespace quorvel::svg
