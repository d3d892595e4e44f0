#include "svg/tree/file.h"

#include "svg/markup/lines.h"
#include "svg/tree/definitions.h"
#include "svg/values/number.h"

namespace quorvel::svg {

File::File(std::string text)
    : text_(std::make_shared<const std::string>(std::move(text))),
      cascade_(&styles_),
      definitions_(std::make_unique<Definitions>(this)) {}

File::~File() = default;

Result<std::shared_ptr<File>> File::open(std::string text) {
    const std::shared_ptr<File> file(new File(std::move(text)));
    if (Status read = file->read(); !read) return read.error();
    return file;
}

Status File::read() {
    markup_ = std::make_unique<XmlFile>();
    if (Status parsed = markup_->parse(*text_); !parsed) return parsed;
    const XmlNode root = markup_->root();
    entities_ = markup_->entities();
    hasMarkupEntities_ = markup_->hasMarkupEntities();
    names_ = readNamespaces(root);
    if (root.localName() != "svg" || !names_.isSvg(root)) return makeError(ErrorCode::kNotSvg);
    if (Status surveyed = survey(); !surveyed) return surveyed;
    page_ = readPage(root);
    ComputedStyle style;
    if (cascade_.compute(root, styles_.at(0), page_.viewport.diagonal(), &style))
        cascade_.rootFontSize = style.fontSize;
    return {};
}

// Style sheets, the number of elements, and whether anything is nested too deeply, from one look at all elements.
Status File::survey() {
    XmlNode tooDeep;
    forEachElement(markup_->root(), [&](const XmlNode& node, int depth) {
        if (depth > kDeepestElement) {
            tooDeep = node;
            return false;
        }
        constexpr std::size_t kCopiedByOne = 10;
        const std::string_view name = node.name();
        styledElements_ += name.ends_with("use") ? kCopiedByOne : 1;
        if (name.ends_with("style") && node.localName() == "style") {
            std::string& sheet = sheets_.emplace_back();
            for (const XmlNode& child : node.children()) sheet += child.value();
        }
        return true;
    });
    if (tooDeep)
        return atLine(*text_, tooDeep.offset(),
                      makeError(ErrorCode::kElementsTooDeep, {std::to_string(kDeepestElement)}));
    for (const std::string& sheet : sheets_) cascade_.sheet.add(sheet);
    cascade_.sheet.expect(styledElements_);
    return {};
}

void File::releaseMarkup() {
    definitions_->forgetMarkup();
    byId_.clear();
    idsKnown_ = false;
    markup_.reset();
}

XmlNode File::root() {
    if (!markup_) {
        markup_ = std::make_unique<XmlFile>();
        if (!markup_->parse(*text_)) return {};  // only for want of memory: it was parsed before
        renewAllowance();
    }
    return markup_->root();
}

XmlNode File::find(std::string_view id) {
    if (id.empty()) return {};
    const XmlNode top = root();
    if (!idsKnown_) {
        idsKnown_ = true;
        forEachElement(top, [&](const XmlNode& node, int) {
            if (const XmlAttribute own = node.attribute("id")) byId_.try_emplace(own.value(), node);
            return true;
        });
    }
    const auto found = byId_.find(id);
    return found == byId_.end() ? XmlNode() : found->second;
}

std::string_view hrefId(const XmlNode& element) {
    for (const XmlAttribute& attribute : element.attributes()) {
        if (withoutPrefix(attribute.name()) != "href") continue;
        const std::string_view value = trimmed(attribute.value());
        if (value.starts_with('#')) return value.substr(1);
    }
    return {};
}

}  // namespace quorvel::svg
