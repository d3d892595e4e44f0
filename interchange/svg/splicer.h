// Writes a drawing over the text that saving starts from: what the plan finds unchanged is copied, the rest is spliced
// in.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"
#include "interchange/svg/art_writer.h"
#include "interchange/svg/clones/save_base.h"
#include "interchange/svg/save_plan.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/splice_buffer.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

class Splicer {
  public:
    // All outlive the splicer. rulerUnit: empty for the one that was read.
    Splicer(const doc::Document& document, const SaveBase& base, std::string_view rulerUnit);
    std::string write();

  private:
    // What is between the children of an element, while they are mixed with new ones.
    struct Mix {
        const svg::ElementSpan& whole;
        std::span<const std::int32_t> children;
        const SvgScope& scope;
        std::size_t cursor = 0;     // up to here the text is written
        std::size_t nextChild = 0;  // of the children
        std::vector<const SaveItem*> waiting;
    };

    const svg::Element& element(std::int32_t number) const { return source_.element(number); }
    const SvgRecord& record(std::int32_t number) const { return source_.record(number); }
    const svg::ElementSpan& span(std::int32_t number) const { return spans_[static_cast<std::size_t>(number)]; }
    svg::StartTag startTag(std::int32_t number) const;
    SvgScope scopeIn(std::int32_t number) const;
    void findSpans();
    bool rootChanges();
    void setRootAttributes(svg::StartTag* tag);
    void finishRoot(svg::StartTag* tag);
    void gap(std::size_t begin, std::size_t end);
    std::size_t blanksBefore(std::size_t position, std::size_t least) const;
    std::string lineBreakBefore(std::size_t position) const;
    std::string childBreak(std::int32_t number, const std::string& ownBreak) const;
    void container(svg::StartTag* tag, std::int32_t number, const std::vector<SaveItem>& items, SvgScope scope,
                   const std::string& ownBreak, const SvgScope* writeTag);
    std::string definitionsOf(std::int32_t number) const;
    std::size_t lastEnd(std::span<const std::int32_t> children, std::size_t otherwise) const;
    void write(const SaveItem& item, const SvgScope& scope);
    void writeNewGroup(const SaveItem& item, const SvgScope& scope);
    void writeNewContent(svg::StartTag* tag, const std::vector<SaveItem>& items, const SvgScope& scope);
    void writeKnown(const SaveItem& item, const SvgScope& scope);
    void writeOutline(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace);
    void writeText(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace);
    void writeForeign(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool sameMap);
    void finishLeaf(const svg::StartTag& tag, const svg::ElementSpan& whole);
    SvgScope inside(svg::StartTag* tag, std::int32_t number, const SvgScope& scope, bool inPlace);
    void writeContainer(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace);
    void writeUse(svg::StartTag* tag, const SaveItem& item, const SvgScope& scope, bool inPlace);
    void mix(std::int32_t number, const std::vector<SaveItem>& items, const SvgScope& scope);
    void cutUpTo(std::size_t child, std::size_t end, Mix* mix);
    void placeWaiting(bool isBefore, Mix* mix);
    void finishMix(std::int32_t number, bool isBehindOne, Mix* mix);

    const doc::Document& document_;
    const SaveBase& base_;
    const SvgSource& source_;
    std::string_view text_;
    std::string_view rulerUnit_;
    SavePlan plan_;
    SvgArtWriter writer_;
    svg::SpliceBuffer buffer_;
    std::vector<svg::ElementSpan> spans_;  // of the elements; instances have none
};

}  // namespace quorvel::interchange
