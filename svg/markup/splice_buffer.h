// A long text made of pieces of another one and of texts of its own. Copying stretches costs nothing until the whole is
// asked for.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "svg/markup/entities.h"

namespace quorvel::svg {

// The new text as pieces of the old one and texts of its own.
class SpliceBuffer {
  public:
    // ascii: texts of its own get character references for all that is none.
    SpliceBuffer(std::string_view source, bool ascii) : source_(source), ascii_(ascii) {}

    void copy(std::size_t begin, std::size_t end) {
        if (begin >= end) return;
        const std::string_view piece = source_.substr(begin, end - begin);
        if (!pieces_.empty() && pieces_.back().data() + pieces_.back().size() == piece.data()) {
            pieces_.back() = {pieces_.back().data(), pieces_.back().size() + piece.size()};
        } else {
            pieces_.push_back(piece);
        }
    }

    void add(std::string text) { pieces_.push_back(keep(std::move(text))); }

    // A place for a text that is known later.
    std::size_t leave() {
        pieces_.emplace_back();
        return pieces_.size() - 1;
    }

    void fill(std::size_t place, std::string text) { pieces_[place] = keep(std::move(text)); }

    std::string join() const {
        std::size_t size = 0;
        for (std::string_view piece : pieces_) size += piece.size();
        std::string out;
        out.reserve(size);
        for (std::string_view piece : pieces_) out += piece;
        return out;
    }

  private:
    std::string_view keep(std::string text) {
        own_.push_back(ascii_ ? asciiXml(text) : std::move(text));
        return own_.back();
    }

    std::string_view source_;
    bool ascii_;
    std::deque<std::string> own_;
    std::vector<std::string_view> pieces_;
};

}  // namespace quorvel::svg
