// An SVG file as all its readers share it: the text, its markup while that is needed, its style sheets, the styles that
// were computed, and what it defines by id.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/result.h"
#include "svg/css/cascade.h"
#include "svg/css/style_table.h"
#include "svg/markup/namespaces.h"
#include "svg/markup/xml_file.h"
#include "svg/tree/viewport.h"

namespace quorvel::svg {

// Elements deeper than this are refused; real drawings stay far below, and other readers stop here too.
constexpr int kDeepestElement = 256;

class Definitions;

class File {
  public:
    // Refused is what is no SVG drawing, with its line where there is one. The outline of elements is not looked at.
    static Result<std::shared_ptr<File>> open(std::string text);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const std::shared_ptr<const std::string>& text() const { return text_; }
    const XmlEntities& entities() const { return entities_; }
    bool hasMarkupEntities() const { return hasMarkupEntities_; }
    const SvgNames& names() const { return names_; }
    const Page& page() const { return page_; }
    const std::vector<std::string>& sheets() const { return sheets_; }  // texts of the style elements

    double rootFontSize() const { return cascade_.rootFontSize; }
    Cascade& cascade() { return cascade_; }
    StyleTable& styles() { return styles_; }
    const StyleTable& styles() const { return styles_; }
    Definitions& definitions() { return *definitions_; }

    // Style sheets may cost as much as for the whole file again.
    void renewAllowance() { cascade_.sheet.expect(styledElements_); }

    // The markup is large and is let go when a drawing is open. Asked for again it is parsed again and then stays;
    // nodes from before are no longer good.
    void releaseMarkup();
    XmlNode root();
    XmlNode find(std::string_view id);  // the first element with this id; none for ""

  private:
    explicit File(std::string text);
    Status read();
    Status survey();

    std::shared_ptr<const std::string> text_;
    XmlEntities entities_;
    bool hasMarkupEntities_ = false;
    SvgNames names_;
    Page page_;
    std::vector<std::string> sheets_;
    std::size_t styledElements_ = 0;  // with about as many as use elements make
    StyleTable styles_;
    Cascade cascade_;
    std::unique_ptr<XmlFile> markup_;  // null while it is not needed
    std::unordered_map<std::string_view, XmlNode> byId_;
    bool idsKnown_ = false;
    std::unique_ptr<Definitions> definitions_;
};

// "id" of an href attribute "#id" under any prefix; empty when there is none.
std::string_view hrefId(const XmlNode& element);

}  // namespace quorvel::svg
