// What a file defines for use elsewhere, by id: gradients, patterns, clip paths, masks and markers, each resolved when
// it is first asked for. What is in a definition is opened by whoever draws it, as a drawing of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "svg/css/computed_style.h"
#include "svg/markup/xml.h"
#include "svg/tree/gradient.h"
#include "svg/tree/viewport.h"
#include "svg/values/affine.h"

namespace quorvel::svg {

class File;

// What is in a definition: the element that holds it, and the number of the style that it inherits in its place.
struct Content {
    XmlNode element;
    std::uint32_t style = 0;
};

struct ClipPath {
    Content content;
    bool inBox = false;  // its content is in shares of the art's box
    Affine map;
    std::string_view clippedBy;  // id of the clip path that cuts it; empty: none
};

struct Mask {
    Content content;
    bool inBox = false;
    MaskType type = MaskType::kLuminance;
};

struct Marker {
    enum class Turn : std::uint8_t { kFixed, kAlong, kAlongReversedAtStart };
    Content content;
    Viewport size, inner;  // in its units, and in those of its content
    Affine map;            // from its content into its units, with its reference point at their origin
    bool isClipped = true;
    double left = 0, top = 0;  // of the window through which it is seen when it is clipped, in its units
    bool byStroke = true;      // a unit of it is the width of the stroke
    Turn turn = Turn::kFixed;
    double angle = 0;  // degrees, of kFixed
};

struct Pattern {
    Content content;
    bool inBox = true, contentInBox = false;
    double x = 0, y = 0, width = 0, height = 0;  // of a tile, in user units or in shares of the art's box
    Affine map;
    bool hasViewBox = false;
    Affine window;  // from its viewBox into a tile of that size at the origin
};

class Definitions {
  public:
    explicit Definitions(File* file);
    ~Definitions();

    // Each is null when the file has none with this id, or when it shows nothing by its own attributes.
    const Gradient* gradient(std::string_view id);
    const Pattern* pattern(std::string_view id);
    const ClipPath* clipPath(std::string_view id);
    const Mask* mask(std::string_view id);
    const Marker* marker(std::string_view id);

    // The nodes of contents are no longer good; gradients stay.
    void forgetMarkup();

  private:
    struct GradientPart;
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    template <class Value>
    using ById = std::unordered_map<std::string, std::unique_ptr<Value>, TextHash, std::equal_to<>>;

    template <class Value, class Read>
    const Value* lookUp(ById<Value>* known, std::string_view id, Read read);
    const GradientPart* gradientPart(std::string_view id);
    std::unique_ptr<GradientPart> readGradientPart(const XmlNode& node);
    void readStops(const XmlNode& gradient, std::vector<GradientStop>* stops);
    std::unique_ptr<Gradient> readGradient(std::string_view id);
    std::unique_ptr<Pattern> readPattern(const XmlNode& node);
    std::unique_ptr<Marker> readMarker(const XmlNode& node);
    bool readContent(const XmlNode& node, Content* content);
    // An element of this kind; none when the id is of another one.
    XmlNode find(std::string_view id, std::string_view kind);

    File& file_;
    ById<GradientPart> gradientParts_;
    ById<Gradient> gradients_;
    ById<Pattern> patterns_;
    ById<ClipPath> clipPaths_;
    ById<Mask> masks_;
    ById<Marker> markers_;
};

template <class Value, class Read>
const Value* Definitions::lookUp(ById<Value>* known, std::string_view id, Read read) {
    if (id.empty()) return nullptr;
    const auto found = known->find(id);
    if (found != known->end()) return found->second.get();
    std::unique_ptr<Value> value = read();
    return known->emplace(std::string(id), std::move(value)).first->second.get();
}

}  // namespace quorvel::svg
