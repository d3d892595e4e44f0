#include "svg/markup/xml_file.h"

#include <algorithm>
#include <optional>
#include <string>

#include "svg/markup/huge_pages.h"
#include "svg/markup/lines.h"
#include "svg/markup/utf8.h"

namespace quorvel::svg {
namespace {

// What entities add: a drawing of many elements, each with its style by an entity, grows by a few times its size.
constexpr std::size_t kGrowthAtLeast = std::size_t{4} << 20;
constexpr std::size_t kGrowthForEachByte = 4;
constexpr unsigned kFlags = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute;

}  // namespace

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

namespace {

Status checkEncoding(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return makeError(ErrorCode::kNotXmlInUtf8);
    if (const std::size_t at = firstForeignByte(text); at != std::string_view::npos)
        return atLine(text, at, ErrorCode::kForeignByte);
    return {};
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

// Writes the entities out in all attributes. Gives the element at which they become too much, else none.
XmlNode expandAttributes(pugi::xml_node root, const XmlEntities& entities, std::size_t allowance) {
    for (pugi::xml_node node = root; node;) {
        for (pugi::xml_attribute attribute : node.attributes()) {
            const std::string_view value = attribute.value();
            if (value.find('&') == std::string_view::npos) continue;
            const std::optional<std::string> text = expandText(value, entities, &allowance);
            if (!text) return XmlNode(node);
            if (*text != value) attribute.set_value(text->c_str());
        }
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && node != root && !node.next_sibling()) node = node.parent();
        node = node == root ? pugi::xml_node() : node.next_sibling();
    }
    return {};
}

}  // namespace

Error tooLargeFile() { return makeError(ErrorCode::kFileTooLarge, {std::to_string(kLargestFile >> 20)}); }

Status checkMarkup(std::string* text) {
    if (Status encoding = checkEncoding(*text); !encoding) return encoding;
    pugi::xml_document document;
    const std::size_t size = text->size();
    // Nothing is rewritten, so that the lines can still be counted, but for the zero bytes behind names and values.
    const pugi::xml_parse_result result =
        document.load_buffer_inplace(text->data(), size, pugi::parse_minimal, pugi::encoding_utf8);
    if (result) return {};
    return atLine(*text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), codeOf(result.status));
}

Status XmlFile::parse(std::string_view text) {
    if (text.size() > kLargestFile) return tooLargeFile();
    if (Status encoding = checkEncoding(text); !encoding) return encoding;
    buffer_ = std::make_unique_for_overwrite<char[]>(text.size() + 1);
    adviseHugePages(buffer_.get(), text.size() + 1);
    std::ranges::copy(text, buffer_.get());
    document_ = std::make_unique<pugi::xml_document>();
    const pugi::xml_parse_result result =
        document_->load_buffer_inplace(buffer_.get(), text.size(), kFlags, pugi::encoding_utf8);
    if (!result)
        return atLine(text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)),
                      codeOf(result.status));
    const pugi::xml_node root = document_->document_element();
    root_ = XmlNode(root);
    if (root.next_sibling()) return makeError(ErrorCode::kXmlSeveralRoots);
    Result<XmlEntities> entities = readEntities(text.substr(0, root_.offset()), &hasMarkupEntities_);
    if (!entities) return entities.error();
    entities_ = std::move(*entities);
    if (entities_.empty()) return {};
    const XmlNode tooLarge = expandAttributes(root, entities_, kGrowthAtLeast + kGrowthForEachByte * text.size());
    if (tooLarge) return atLine(text, tooLarge.offset(), ErrorCode::kEntitiesTooLarge);
    return {};
}

bool XmlFile::parseElement(std::string_view text, const XmlEntities& entities) {
    document_ = std::make_unique<pugi::xml_document>();
    if (!document_->load_buffer(text.data(), text.size(), kFlags, pugi::encoding_utf8)) return false;
    root_ = XmlNode(document_->document_element());
    return entities.empty() || !expandAttributes(document_->document_element(), entities,
                                                 kGrowthAtLeast + kGrowthForEachByte * text.size());
}

bool XmlFile::parseWithBlanks(std::string_view text) {
    document_ = std::make_unique<pugi::xml_document>();
    if (!document_->load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata,
                                pugi::encoding_utf8))
        return false;
    root_ = XmlNode(document_->document_element());
    return true;
}

}  // namespace quorvel::svg
