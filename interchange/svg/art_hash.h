// Fingerprints of art, by which saving tells what has changed since a file was read. Two arts that are written alike
// have the same one.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "document/document.h"

namespace quorvel::interchange {

class ArtHash {
  public:
    void add(std::uint64_t word);
    void add(float value);
    void add(RealPoint point);
    void add(std::string_view bytes);
    void add(const AIColor& color);
    void add(const AIPathStyle& style);
    void add(const doc::CharFeatures& features, bool withFont);
    void add(std::span<const PathSegment> segments, bool closed, bool guide);
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 0x9E3779B97F4A7C15;
};

// Outline of a path or of a compound path's members.
std::uint64_t outlineHash(const doc::Document& document, const doc::Art& art);
// Everything below a group, for elements that are written whole or not at all.
std::uint64_t contentHash(const doc::Document& document, const doc::Art& art);
// A text but for its matrix. Without fonts it is the same on machines with other fonts.
std::uint64_t textHash(const doc::TextData& text, bool withFonts);

bool paintsAlike(const AIColor& a, const AIColor& b);
// Of what is written: paints count only where they are on.
bool stylesAlike(const AIPathStyle& a, const AIPathStyle& b);

}  // namespace quorvel::interchange
