// All are read into one tree of their own, from which they take the places of the elements before.
#include "interchange/svg/clones/reread.h"

#include <algorithm>
#include <deque>

#include "interchange/svg/art_loader.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/xml_file.h"
#include "svg/tree/walk.h"

namespace quorvel::interchange {
namespace {

class ElementReader {
  public:
    ElementReader(const std::function<std::uint32_t(std::uint32_t)>& offsetNow, SvgSource* source)
        : offsetNow_(offsetNow), source_(*source), file_(*source->tree.file), document_(1, 1) {
        file_.renewAllowance();
        read_.tree.file = source->tree.file;
        read_.text = source->text;
        static_cast<PaintTexts&>(read_) = *source;
        read_.styles = source->styles;
    }

    bool read(std::span<const std::int32_t> elements) {
        ArtLoader loader(&document_, &read_);
        loader.readsLayers = false;
        svg::TreeWalk walk(&read_.tree, &loader);
        for (const std::int32_t number : elements) {
            const auto root = static_cast<std::int32_t>(read_.tree.size());
            const svg::Element& element = source_.element(number);
            const std::string_view text = svg::elementText(*source_.text, element.nameOffset);
            svg::XmlFile& markup = markups_.emplace_back();
            if (!markup.parseElement(text, source_.entities())) return false;
            const svg::TreeWalk::Place place{source_.element(element.parent).style, source_.tree.map(element.parent),
                                             source_.tree.viewportIn(element.parent), depthOf(number)};
            if (!walk.part(markup.root(), text, place) || !isSame(number, root)) return false;
            elements_.push_back({number, root, element.nameOffset - 1});
        }
        return true;
    }

    void takePlaces() {
        const auto ctms = static_cast<std::uint32_t>(source_.tree.ctms.size());
        const auto texts = static_cast<std::int32_t>(source_.texts.size());
        for (const ReadElement& read : elements_) {
            const std::int32_t parent = source_.element(read.number).parent;
            const std::int32_t end = static_cast<std::int32_t>(source_.tree.endOf(read.number));
            for (std::int32_t i = read.number, from = read.root + 1; i < end; ++i, ++from) {
                svg::Element element = read_.element(from);
                element.parent = element.parent == read.root ? parent : moved(read, element.parent);
                element.ctm += ctms;
                element.nameOffset =
                    element.isInstance ? offsetNow_(element.nameOffset) : read.begin + element.nameOffset;
                source_.tree.elements[static_cast<std::size_t>(i)] = element;
                SvgRecord record = read_.record(from);
                if (record.text >= 0) record.text += texts;
                source_.records[static_cast<std::size_t>(i)] = record;
            }
            replaceLists(read, end);
        }
        source_.tree.ctms.insert(source_.tree.ctms.end(), read_.tree.ctms.begin(), read_.tree.ctms.end());
        source_.texts.insert(source_.texts.end(), read_.texts.begin(), read_.texts.end());
        source_.styles = std::move(read_.styles);
        std::ranges::sort(source_.uses, {}, &SvgUse::element);
        std::ranges::sort(source_.tree.viewports, {}, &svg::Tree::ElementViewport::element);
    }

  private:
    struct ReadElement {
        std::int32_t number = 0;  // of the element in the source
        std::int32_t root = 0;    // before the element in what was read
        std::uint32_t begin = 0;  // of the element in the source's text
    };

    static std::int32_t moved(const ReadElement& read, std::int32_t number) {
        return read.number + (number - read.root - 1);
    }

    int depthOf(std::int32_t number) const {
        int depth = 0;
        for (std::int32_t around = source_.element(number).parent; around >= 0; around = source_.element(around).parent)
            ++depth;
        return depth;
    }

    bool isSame(std::int32_t number, std::int32_t root) const {
        const std::int32_t count = source_.tree.endOf(number) - number;
        if (static_cast<std::int32_t>(read_.tree.size()) - root - 1 != count) return false;
        for (std::int32_t i = 1; i < count; ++i) {
            const std::int32_t before = source_.element(number + i).parent - number;
            if (read_.element(root + 1 + i).parent - (root + 1) != before) return false;
        }
        return true;
    }

    void replaceLists(const ReadElement& read, std::int32_t end) {
        const auto isIn = [&](std::int32_t element) { return element >= read.number && element < end; };
        const auto isRead = [&](std::int32_t element) {
            return element > read.root && element - read.root <= end - read.number;
        };
        std::erase_if(source_.uses, [&](const SvgUse& use) { return isIn(use.element); });
        std::erase_if(source_.tree.viewports, [&](const auto& viewport) { return isIn(viewport.element); });
        for (SvgUse use : read_.uses) {
            if (!isRead(use.element)) continue;
            use.element = moved(read, use.element);
            source_.uses.push_back(use);
        }
        for (svg::Tree::ElementViewport viewport : read_.tree.viewports) {
            if (!isRead(viewport.element)) continue;
            viewport.element = moved(read, viewport.element);
            source_.tree.viewports.push_back(viewport);
        }
    }

    const std::function<std::uint32_t(std::uint32_t)>& offsetNow_;
    SvgSource& source_;
    svg::File& file_;
    doc::Document document_;  // the loader needs one; its art is not used
    SvgSource read_;          // for each element: a root, then what is read
    std::deque<svg::XmlFile> markups_;
    std::vector<ReadElement> elements_;
};

}  // namespace

bool rereadElements(std::span<const std::int32_t> elements,
                    const std::function<std::uint32_t(std::uint32_t)>& offsetNow, SvgSource* source) {
    ElementReader reader(offsetNow, source);
    if (!reader.read(elements)) return false;
    reader.takePlaces();
    return true;
}

}  // namespace quorvel::interchange
