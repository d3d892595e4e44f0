// The computed styles of a file, each once, and the texts in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "svg/css/computed_style.h"

namespace quorvel::svg {

// Numbers values in the order in which they first come; equal values have the same number. Values stay where they are.
template <class Value>
class InternTable {
  public:
    std::uint32_t numberOf(const Value& value) {
        if (2 * (values_.size() + 1) > places_.size()) grow();
        std::size_t place = placeOf(value.hash());
        for (; places_[place] != 0; place = next(place))
            if (values_[places_[place] - 1] == value) return places_[place] - 1;
        values_.push_back(value);
        places_[place] = static_cast<std::uint32_t>(values_.size());
        return places_[place] - 1;
    }
    const Value& operator[](std::uint32_t number) const { return values_[number]; }
    std::size_t size() const { return values_.size(); }

  private:
    std::size_t placeOf(std::uint64_t hash) const { return static_cast<std::size_t>(hash) & (places_.size() - 1); }
    std::size_t next(std::size_t place) const { return (place + 1) & (places_.size() - 1); }
    void grow() {
        places_.assign(places_.empty() ? 16 : 2 * places_.size(), 0);
        for (std::size_t i = 0; i < values_.size(); ++i) {
            std::size_t place = placeOf(values_[i].hash());
            while (places_[place] != 0) place = next(place);
            places_[place] = static_cast<std::uint32_t>(i + 1);
        }
    }

    std::deque<Value> values_;
    std::vector<std::uint32_t> places_;  // a power of two; numbers from 1, 0 for none
};

class StyleTable {
  public:
    enum Group : std::uint8_t { kPaint = 1, kText = 2, kElement = 4, kAll = 7 };

    StyleTable();  // style 0 is the initial one
    StyleTable(const StyleTable&) = delete;
    StyleTable& operator=(const StyleTable&) = delete;

    // Sets the style's numbers. Groups that are not among the changed ones are those of its numbers already.
    void intern(ComputedStyle* style, unsigned changed = kAll);
    ComputedStyle at(std::uint32_t number) const;
    const PaintStyle& paint(std::uint32_t number) const { return paints_[rows_[number].groups.paint]; }
    const TextStyle& text(std::uint32_t number) const { return texts_[rows_[number].groups.text]; }
    const ElementStyle& element(std::uint32_t number) const { return elements_[rows_[number].groups.element]; }

    // The same text for as long as the table lives.
    std::string_view keep(std::string_view text);

  private:
    struct Row {
        ComputedStyle::Number groups;
        bool operator==(const Row&) const = default;
        std::uint64_t hash() const;
    };
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    InternTable<PaintStyle> paints_;
    InternTable<TextStyle> texts_;
    InternTable<ElementStyle> elements_;
    InternTable<Row> rows_;
    std::unordered_set<std::string, TextHash, std::equal_to<>> kept_;
};

}  // namespace quorvel::svg
