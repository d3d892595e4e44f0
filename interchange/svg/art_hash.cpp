// 64 bits each: that a change goes unseen has a chance of one in 10^19.
#include "interchange/svg/art_hash.h"

#include <algorithm>
#include <bit>

namespace quorvel::interchange {

void ArtHash::add(std::uint64_t word) {
    value_ = std::rotl((value_ ^ word) * 0xD6E8FEB86659FD93, 29);
    value_ ^= value_ >> 31;
}

void ArtHash::add(float value) { add(std::uint64_t{std::bit_cast<std::uint32_t>(value + 0.0F)}); }

void ArtHash::add(RealPoint point) {
    const std::uint64_t h = std::bit_cast<std::uint32_t>(point.h + 0.0F);
    add(h << 32 | std::bit_cast<std::uint32_t>(point.v + 0.0F));
}

void ArtHash::add(std::string_view bytes) {
    add(std::uint64_t{bytes.size()});
    for (char c : bytes) add(std::uint64_t{static_cast<unsigned char>(c)});
}

void ArtHash::add(const AIColor& color) {
    add(std::uint64_t(color.kind));
    if (color.kind == kGrayPaint) add(color.gray);
    if (color.kind == kRgbPaint) {
        for (float channel : color.rgb) add(channel);
    }
    if (color.kind == kGradientPaint) {
        add(color.gradientAngle);
        add(color.gradientHiliteAngle);
    }
    if (color.kind == kGradientPaint || color.kind == kOtherPaint) add(std::uint64_t(color.reference));
}

void ArtHash::add(const AIPathStyle& style) {
    add(std::uint64_t(style.fillPaint != 0) | std::uint64_t(style.strokePaint != 0) << 1 |
        std::uint64_t(style.cap) << 2 | std::uint64_t(style.join) << 4 | std::uint64_t(style.dashCount) << 6);
    if (style.fillPaint) add(style.fill);
    if (style.strokePaint) add(style.stroke);
    add(style.strokeWidth);
    add(style.miterLimit);
    add(style.dashOffset);
    for (int i = 0; i < std::min(style.dashCount, 6); ++i) add(style.dashes[i]);
}

void ArtHash::add(const doc::CharFeatures& features, bool withFont) {
    if (withFont) add(std::string_view(features.font));
    for (float value : {features.size, features.horizontalScale, features.verticalScale, features.baselineShift,
                        features.miterLimit}) {
        add(value);
    }
    add(std::uint64_t(features.fillOn) | std::uint64_t(features.strokeOn) << 1);
    if (features.fillOn) add(features.fill);
    if (features.strokeOn) add(features.stroke);
}

void ArtHash::add(std::span<const PathSegment> segments, bool closed, bool guide) {
    add(std::uint64_t{segments.size()} << 2 | std::uint64_t(closed) << 1 | std::uint64_t(guide));
    for (const PathSegment& segment : segments) {
        add(segment.p);
        add(segment.in);
        add(segment.out);
        add(std::uint64_t(segment.corner != 0));
    }
}

namespace {

void addOutline(const doc::Document& document, const doc::Art& art, ArtHash* print) {
    if (art.path) {
        print->add(art.path->segments, art.path->closed, art.path->guide);
        return;
    }
    for (doc::ArtId id = art.lastChild; id != 0;) {
        const doc::Art* member = document.find(id);
        addOutline(document, *member, print);
        id = member->above;
    }
}

void addMatrix(const RealMatrix& m, ArtHash* print) {
    for (float value : {m.a, m.b, m.c, m.d, m.tx, m.ty}) print->add(value);
}

std::uint64_t flags(const doc::Art& art) { return std::uint64_t(art.hidden) | std::uint64_t(art.locked) << 1; }

}  // namespace

std::uint64_t outlineHash(const doc::Document& document, const doc::Art& art) {
    ArtHash print;
    print.add(std::uint64_t(art.kind));
    addOutline(document, art, &print);
    return print.value();
}

std::uint64_t contentHash(const doc::Document& document, const doc::Art& art) {
    ArtHash print;
    print.add(std::uint64_t(art.kind));
    if (art.path) {
        addOutline(document, art, &print);
        if (art.path->style) print.add(*art.path->style);
    }
    if (art.text) {
        print.add(textHash(*art.text, true));
        addMatrix(art.text->matrix, &print);
    }
    if (art.kind == kForeignArt) addMatrix(art.foreignMatrix, &print);
    for (doc::ArtId id = art.lastChild; id != 0;) {
        const doc::Art* child = document.find(id);
        print.add(contentHash(document, *child));
        print.add(flags(*child));
        for (const doc::Tag& tag : child->tags) {
            print.add(std::string_view(tag.name));
            print.add(std::string_view(tag.value));
        }
        print.add(std::string_view(child->name));
        id = child->above;
    }
    return print.value();
}

std::uint64_t textHash(const doc::TextData& text, bool withFonts) {
    ArtHash print;
    print.add(std::uint64_t(text.type) | std::uint64_t(text.orientation) << 8 |
              std::uint64_t(text.justification) << 16);
    print.add(text.firstLineIndent);
    print.add(text.startIndent);
    for (char16_t unit : text.text) print.add(std::uint64_t{unit});
    for (const doc::TextRun& run : text.runs) {
        print.add(std::uint64_t(run.length));
        print.add(run.features, withFonts);
    }
    return print.value();
}

bool paintsAlike(const AIColor& a, const AIColor& b) {
    ArtHash first, second;
    first.add(a);
    second.add(b);
    return first.value() == second.value();
}

bool stylesAlike(const AIPathStyle& a, const AIPathStyle& b) {
    ArtHash first, second;
    first.add(a);
    second.add(b);
    return first.value() == second.value();
}

}  // namespace quorvel::interchange
