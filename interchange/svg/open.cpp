// Opening a drawing: the file is checked as XML, its namespaces, page and layers are found, and a walk loads its art.
// The document is handed out only when everything was read.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <pugixml.hpp>

#include "interchange/svg/art_loader.h"
#include "interchange/svg/own_attributes.h"
#include "interchange/svg/svg.h"
#include "svg/markup/huge_pages.h"
#include "svg/values/length.h"

namespace quorvel::interchange {
namespace {

// Entities are for names of namespaces and single signs; more than that is an attack.
constexpr std::size_t kMostEntities = 64;
constexpr std::size_t kLongestEntity = 2048;
// What they add: a drawing of many elements, each with its style by an entity, grows by a few times its size.
constexpr std::size_t kGrowthAtLeast = std::size_t{4} << 20;
constexpr std::size_t kGrowthForEachByte = 4;
constexpr double kPointsPerPixel = 0.75;

Error atLine(std::string_view text, std::size_t offset, Error error) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    error.line = std::count(text.begin(), end, '\n') + 1;
    return error;
}

Error atLine(std::string_view text, std::size_t offset, ErrorCode code) {
    return atLine(text, offset, makeError(code));
}

// The place of the first byte that is no UTF-8, npos when all are (RFC 3629: no overlong forms, no surrogates).
std::size_t firstForeignByte(std::string_view text) {
    const auto tail = [&](std::size_t at) { return at < text.size() && (text[at] & 0xC0) == 0x80; };
    for (std::size_t at = 0; at < text.size();) {
        // Nearly all of a drawing is ASCII: eight at a time.
        for (std::uint64_t eight = 0; at + 8 <= text.size(); at += 8) {
            std::memcpy(&eight, text.data() + at, 8);
            if (eight & 0x8080808080808080) break;
        }
        if (at == text.size()) break;
        const auto first = static_cast<unsigned char>(text[at]);
        const int more = first < 0x80 ? 0 : first >= 0xC2 && first < 0xE0 ? 1 : (first & 0xF0) == 0xE0 ? 2 : 3;
        if (more == 3 && (first < 0xF0 || first > 0xF4)) return at;
        for (int i = 1; i <= more; ++i)
            if (!tail(at + static_cast<std::size_t>(i))) return at;
        const auto second = static_cast<unsigned char>(more > 0 ? text[at + 1] : 0);
        if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) || (first == 0xF0 && second < 0x90) ||
            (first == 0xF4 && second > 0x8F))
            return at;
        at += static_cast<std::size_t>(more) + 1;
    }
    return std::string_view::npos;
}

// Visits all elements below and including top until visit gives false.
template <class Visit>
void forEachElement(pugi::xml_node top, Visit visit) {
    int depth = 0;
    for (pugi::xml_node node = top; node;) {
        if (node.type() == pugi::node_element && !visit(node, depth)) return;
        if (node.first_child()) {
            node = node.first_child();
            ++depth;
            continue;
        }
        while (node && node != top && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        node = node == top ? pugi::xml_node() : node.next_sibling();
    }
}

// The file's text as a tree, on a copy of its own.
struct ParsedFile {
    std::unique_ptr<char[]> buffer;
    pugi::xml_document document;
    pugi::xml_node root;
};

std::string declaredEncoding(std::string_view text) {
    const std::string_view head = text.substr(0, std::min<std::size_t>(text.find("?>"), 200));
    const std::size_t at = head.find("encoding");
    if (!head.substr(0, 8).ends_with("<?xml") && !head.starts_with("<?xml")) return "";
    if (at == std::string_view::npos) return "";
    const std::size_t open = head.find_first_of("\"'", at);
    if (open == std::string_view::npos) return "";
    std::string name(head.substr(open + 1, head.find(head[open], open + 1) - open - 1));
    std::ranges::transform(name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return name;
}

ErrorCode codeOf(pugi::xml_parse_status status) {
    switch (status) {
        case pugi::status_out_of_memory:
            return ErrorCode::kXmlNoMemory;
        case pugi::status_bad_pi:
            return ErrorCode::kXmlBadInstruction;
        case pugi::status_bad_comment:
            return ErrorCode::kXmlBadComment;
        case pugi::status_bad_cdata:
            return ErrorCode::kXmlBadCdata;
        case pugi::status_bad_doctype:
            return ErrorCode::kXmlBadDocumentType;
        case pugi::status_bad_pcdata:
            return ErrorCode::kXmlBadText;
        case pugi::status_bad_start_element:
            return ErrorCode::kXmlBadStartTag;
        case pugi::status_bad_attribute:
            return ErrorCode::kXmlBadAttribute;
        case pugi::status_bad_end_element:
            return ErrorCode::kXmlBadEndTag;
        case pugi::status_end_element_mismatch:
            return ErrorCode::kXmlTagMismatch;
        case pugi::status_no_document_element:
            return ErrorCode::kXmlNoElement;
        default:
            return ErrorCode::kXmlBadTag;
    }
}

Status parseXml(std::string_view text, ParsedFile* file) {
    if (text.size() > kLargestSvg) return tooLargeSvg();
    if (text.find('\0') != std::string_view::npos) return makeError(ErrorCode::kNotXmlInUtf8);
    const std::string encoding = declaredEncoding(text);
    if (!encoding.empty() && encoding != "utf-8" && encoding != "utf8" && encoding != "us-ascii")
        return makeError(ErrorCode::kForeignEncoding, {encodeBytes(encoding)});
    if (const std::size_t at = firstForeignByte(text); at != std::string_view::npos)
        return atLine(text, at, ErrorCode::kForeignByte);
    file->buffer = std::make_unique_for_overwrite<char[]>(text.size() + 1);
    svg::adviseHugePages(file->buffer.get(), text.size() + 1);
    std::ranges::copy(text, file->buffer.get());
    constexpr unsigned kFlags = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute;
    const pugi::xml_parse_result result =
        file->document.load_buffer_inplace(file->buffer.get(), text.size(), kFlags, pugi::encoding_utf8);
    if (!result)
        return atLine(text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)),
                      codeOf(result.status));
    file->root = file->document.document_element();
    if (file->root.next_sibling()) return makeError(ErrorCode::kXmlSeveralRoots);
    return {};
}

// --- entities ------------------------------------------------------------------------------------------------------

struct Entity {
    std::string_view name, value;
};

// <!ENTITY name "value"> of the document type, before the root. Entities of other files, of parameters or of other
// entities are refused.
Status readEntities(std::string_view prolog, std::vector<Entity>* entities) {
    for (std::size_t at = prolog.find("<!ENTITY"); at != std::string_view::npos; at = prolog.find("<!ENTITY", at + 8)) {
        const std::size_t name = prolog.find_first_not_of(" \t\r\n", at + 8);
        const std::size_t nameEnd = prolog.find_first_of(" \t\r\n", name);
        const std::size_t open = prolog.find_first_not_of(" \t\r\n", nameEnd);
        if (open == std::string_view::npos) return atLine(prolog, at, ErrorCode::kBrokenEntity);
        if (prolog[open] != '"' && prolog[open] != '\'') return atLine(prolog, at, ErrorCode::kExternalEntity);
        const std::size_t close = prolog.find(prolog[open], open + 1);
        if (close == std::string_view::npos) return atLine(prolog, at, ErrorCode::kBrokenEntity);
        const std::string_view value = prolog.substr(open + 1, close - open - 1);
        if (value.find_first_of("&%<") != std::string_view::npos) return atLine(prolog, at, ErrorCode::kNestedEntity);
        if (entities->size() == kMostEntities || value.size() > kLongestEntity)
            return atLine(prolog, at, ErrorCode::kEntitiesTooMany);
        entities->push_back({prolog.substr(name, nameEnd - name), value});
    }
    return {};
}

// Nothing when it would grow by more than *allowance, which is less afterwards.
std::optional<std::string> expanded(std::string_view value, const std::vector<Entity>& entities,
                                    std::size_t* allowance) {
    std::string out;
    for (std::size_t at = 0; at < value.size();) {
        const std::size_t mark = std::min(value.find('&', at), value.size());
        out += value.substr(at, mark - at);
        at = mark;
        if (at == value.size()) break;
        const std::size_t end = std::min(value.find_first_of("&;", at + 1), value.size());
        const auto entity = std::ranges::find(entities, value.substr(at + 1, end - at - 1), &Entity::name);
        if (end == value.size() || value[end] == '&' || entity == entities.end()) {
            out += value.substr(at, end - at);
            at = end;
            continue;
        }
        if (entity->value.size() > *allowance) return std::nullopt;
        *allowance -= entity->value.size();
        out += entity->value;
        at = end + 1;
    }
    return out;
}

Status expandEntities(const ParsedFile& file, std::string_view fileText, const std::vector<Entity>& entities) {
    std::size_t allowance = kGrowthAtLeast + kGrowthForEachByte * fileText.size();
    pugi::xml_node tooLarge;
    forEachElement(file.root, [&](pugi::xml_node node, int) {
        for (pugi::xml_attribute attribute : node.attributes()) {
            const std::string_view value = attribute.value();
            if (value.find('&') == std::string_view::npos) continue;
            const std::optional<std::string> text = expanded(value, entities, &allowance);
            if (!text) {
                tooLarge = node;
                return false;
            }
            if (*text != value) attribute.set_value(text->c_str());
        }
        return true;
    });
    if (!tooLarge) return {};
    return atLine(fileText, static_cast<std::size_t>(tooLarge.offset_debug()), ErrorCode::kEntitiesTooLarge);
}

// --- the root ------------------------------------------------------------------------------------------------------

// Of an element or attribute, without colon. The parser lets more pass.
bool isName(std::string_view name) {
    const auto isLetter = [](char c) {
        return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
    };
    return !name.empty() && isLetter(name.front()) && std::ranges::all_of(name, [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

constexpr std::size_t kLongestPrefix = 256;

// The prefixes under which the root knows the namespaces.
void readNamespaces(const pugi::xml_node& root, svg::SvgNames* names, std::vector<std::string>* svgPrefixes) {
    const std::string_view name = root.name();
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos) names->svg = name.substr(0, colon + 1);
    struct Known {
        std::string_view uri;
        std::string* prefix;
        bool* declared;
    };
    const Known known[] = {{svg::kOwnNamespace, &names->own, &names->ownDeclared},
                           {svg::kInkscapeNamespace, &names->inkscape, &names->inkscapeDeclared},
                           {svg::kSodipodiNamespace, &names->sodipodi, &names->sodipodiDeclared}};
    std::vector<std::string> taken;
    bool defaultIsOther = false;
    for (const pugi::xml_attribute& attribute : root.attributes()) {
        const std::string_view declared = attribute.name();
        const std::string_view uri = attribute.value();
        if (declared == "xmlns") {
            if (uri == svg::kSvgNamespace) svgPrefixes->push_back("");
            defaultIsOther = uri != svg::kSvgNamespace;
        }
        // A prefix that could not begin an attribute's name is no prefix that we could write under.
        if (!declared.starts_with("xmlns:") || declared.size() > kLongestPrefix || !isName(declared.substr(6)))
            continue;
        const std::string prefix = std::string(declared.substr(6)) + ":";
        if (uri == svg::kSvgNamespace) svgPrefixes->push_back(prefix);
        for (const Known& row : known) {
            if (row.uri != uri || *row.declared) continue;
            *row.prefix = prefix;
            *row.declared = true;
        }
        taken.push_back(prefix);
    }
    for (const Known& row : known) {
        while (!*row.declared && std::ranges::find(taken, *row.prefix) != taken.end())
            row.prefix->insert(row.prefix->size() - 1, "-own");
    }
    // A drawing that names no namespace at all is taken for what it says it is.
    if (svgPrefixes->empty() && names->svg.empty() && !defaultIsOther) svgPrefixes->push_back("");
    std::ranges::sort(*svgPrefixes);
}

struct Page {
    double width = 0, height = 0;  // points
    svg::Affine map;               // from the root's user space, y down, to the document
    Viewport viewport;             // in user units
    std::string unit;
};

Page readPage(const pugi::xml_node& root) {
    constexpr double kSmallestPage = 1e-3;  // pixels
    constexpr double kLargestPage = 1e7;
    const auto sound = [&](double side) { return std::clamp(side, kSmallestPage, kLargestPage); };
    const auto side = [&](const char* name) -> double {
        const std::string_view text = root.attribute(name).value();
        if (svg::lengthUnit(text) == "%") return 0;
        const double pixels = svg::parseLength(text, {}).value_or(0);
        return pixels >= kSmallestPage && pixels <= kLargestPage ? pixels : 0;
    };
    Viewport size{side("width"), side("height")};
    Viewport box;
    viewBoxMap(root, {1, 1}, &box);
    // A side that is not given follows the viewBox; without one it is CSS's.
    if (box.width > 0 && size.width > 0 && size.height <= 0) size.height = sound(size.width * box.height / box.width);
    if (box.width > 0 && size.height > 0 && size.width <= 0) size.width = sound(size.height * box.width / box.height);
    if (size.width <= 0) size.width = box.width > 0 ? sound(box.width) : 300;
    if (size.height <= 0) size.height = box.height > 0 ? sound(box.height) : 150;

    Page page;
    page.width = size.width * kPointsPerPixel;
    page.height = size.height * kPointsPerPixel;
    page.viewport = size;
    const svg::Affine inner = viewBoxMap(root, {page.width, page.height}, &page.viewport);
    if (page.viewport.width == size.width && page.viewport.height == size.height && inner == svg::Affine{}) {
        page.map = {kPointsPerPixel, 0, 0, -kPointsPerPixel, 0, page.height};
    } else {
        page.map = svg::compose(svg::Affine{1, 0, 0, -1, 0, page.height}, inner);
    }
    const std::string_view unit = svg::lengthUnit(root.attribute("width").value());
    static constexpr std::string_view kUnits[] = {"mm", "in", "cm", "pt", "px", "pc"};
    page.unit = std::ranges::find(kUnits, unit) != std::end(kUnits) ? unit
                : root.attribute("width") && unit.empty()           ? "px"
                                                                    : "pt";
    return page;
}

// Style sheets, the named view and whether anything is nested too deeply, from one look at all elements.
struct Survey {
    std::size_t styled = 0;  // elements, with about as many as the use elements copy
    std::vector<std::string> sheets;
    pugi::xml_node namedView;
    pugi::xml_node tooDeep;
};

Survey survey(const pugi::xml_node& root, const svg::SvgNames& names) {
    Survey result;
    const std::string view = names.sodipodi + "namedview";
    forEachElement(root, [&](const pugi::xml_node& node, int depth) {
        if (depth > kDeepestElement) {
            result.tooDeep = node;
            return false;
        }
        const std::string_view name = node.name();
        constexpr std::size_t kCopiedByOne = 10;
        result.styled += name.ends_with("use") ? kCopiedByOne : 1;
        if (name.ends_with("style") && localName(node) == "style") {
            std::string text;
            for (const pugi::xml_node& child : node.children()) text += child.value();
            result.sheets.push_back(std::move(text));
        }
        if (depth == 1 && name == view && !result.namedView) result.namedView = node;
        return true;
    });
    return result;
}

// The layer whose element, or an element within it, bears the id.
doc::LayerId layerById(const std::string& id, const SvgWalk& walk, SvgIds* ids) {
    if (id.empty()) return 0;
    for (pugi::xml_node node = ids->find(id); node; node = node.parent()) {
        // Of several layers for one element, the topmost.
        const auto found = std::ranges::find(walk.layers.rbegin(), walk.layers.rend(), node,
                                             &std::pair<pugi::xml_node, doc::LayerId>::first);
        if (found != walk.layers.rend()) return found->second;
    }
    return 0;
}

}  // namespace

Error tooLargeSvg() { return makeError(ErrorCode::kFileTooLarge, {std::to_string(kLargestSvg >> 20)}); }

Result<SvgDrawing> readSvg(std::string text, std::vector<std::string> paintSources) {
    auto source = std::make_unique<SvgSource>();
    source->text = std::move(text);
    auto file = std::make_unique<ParsedFile>();
    if (const Status parsed = parseXml(source->text, file.get()); !parsed) return parsed.error();
    const pugi::xml_node root = file->root;
    std::vector<Entity> entities;
    const std::string_view prolog =
        std::string_view(source->text).substr(0, static_cast<std::size_t>(root.offset_debug()));
    if (const Status read = readEntities(prolog, &entities); !read) return read.error();
    if (!entities.empty())
        if (const Status expanded = expandEntities(*file, source->text, entities); !expanded) return expanded.error();

    std::vector<std::string> svgPrefixes;
    readNamespaces(root, &source->names, &svgPrefixes);
    if (localName(root) != "svg" || std::ranges::find(svgPrefixes, source->names.svg) == svgPrefixes.end())
        return makeError(ErrorCode::kNotSvg);
    const Survey found = survey(root, source->names);
    if (found.tooDeep) {
        return atLine(source->text, static_cast<std::size_t>(found.tooDeep.offset_debug()),
                      makeError(ErrorCode::kElementsTooDeep, {std::to_string(kDeepestElement)}));
    }

    const Page page = readPage(root);
    SvgDrawing result;
    const std::string& own = source->names.own;
    const auto rootOwn = [&](const char* name) { return std::string(root.attribute((own + name).c_str()).value()); };
    source->rulerUnit = rootOwn(own_attribute::kRuler);
    if (source->rulerUnit.empty()) source->rulerUnit = page.unit;
    result.rulerUnit = source->rulerUnit;
    auto document = std::make_unique<doc::Document>(static_cast<float>(page.width), static_cast<float>(page.height));
    document->paintSources = std::move(paintSources);
    SvgIds ids(root);
    SvgWalk walk(document.get(), source.get(), &ids);
    walk.svgPrefixes = std::move(svgPrefixes);
    walk.looseLayerTitles = decodeList(rootOwn(own_attribute::kLayerTitles));
    for (const Entity& entity : entities)
        source->entities.push_back({std::string(entity.name), std::string(entity.value)});
    for (const std::string& sheet : found.sheets) walk.resolver.sheet.add(sheet);
    source->sheets = found.sheets;
    walk.resolver.sheet.expect(found.styled);
    source->hasStyleSheet = !walk.resolver.sheet.empty() || walk.resolver.sheet.skippedSome();
    if (walk.resolver.sheet.skippedSome()) walk.warnings.insert(makeError(ErrorCode::kSkippedRules));
    if (const Status walked = walk.run(root, page.map, page.viewport); !walked) return walked.error();
    if (walk.resolver.passedTransform) walk.warnings.insert(makeError(ErrorCode::kTransformsInCss));

    std::string current = rootOwn(own_attribute::kCurrentLayer);
    if (found.namedView) {
        source->namedViewOffset = static_cast<std::uint32_t>(found.namedView.offset_debug());
        const auto view = found.namedView.attribute((source->names.inkscape + "current-layer").c_str());
        if (view) current = view.value();
    }
    const doc::LayerId layer = layerById(current, walk, &ids);
    source->currentLayer = layer;
    source->artCount = document->artCount();
    result.warnings.assign(walk.warnings.begin(), walk.warnings.end());
    file.reset();  // the tree is needed no more, and large
    source->elements.shrink_to_fit();
    document->setSource(std::move(source));
    document->finishLoading();
    document->setCurrentLayer(layer != 0 ? layer : document->layers().front());
    document->markSaved();
    result.document = std::move(document);
    return result;
}

}  // namespace quorvel::interchange
