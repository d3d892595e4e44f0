// The walk over a file's markup that makes the resolved tree, element by element, and shows each to a visitor while its
// markup is at hand. It keeps its own stack, so that no depth of nesting costs more than an error.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "svg/css/computed_style.h"
#include "svg/markup/xml.h"
#include "svg/tree/tree.h"
#include "svg/values/length.h"

namespace quorvel::svg {

// How a use element places what it refers to, in user units; a size of 0 is none.
struct UsePlace {
    double x = 0, y = 0, width = 0, height = 0;
};

// An element on its way through the walk.
struct Visit {
    std::string_view text;  // in which the offset of the node counts
    XmlNode node;
    std::string_view name;  // without prefix
    Role role = Role::kGroup;
    std::int32_t element = -1;  // its number in the tree
    bool isInstance = false;
    ComputedStyle style;
    Affine map;             // of its content, with its own transform
    Viewport viewport;      // that it belongs to
    UsePlace use;           // of a use element
    LengthContext lengths;  // but for what percentages are of
};

// An error ends the walk, but for faults of a single element (isFaultOfElement): of these what SVG draws was loaded,
// and they are warnings. The walk adds the line and the element.
bool isFaultOfElement(ErrorCode code);

class TreeVisitor {
  public:
    virtual ~TreeVisitor() = default;
    virtual void begin(const Visit& root) = 0;  // of the tree
    virtual Status visit(const Visit& visit) = 0;
    // Behind all that is in a group or use element that was visited.
    virtual void leave(const Element& element, std::int32_t number) = 0;
};

class TreeWalk {
  public:
    // The tree has its file and nothing else. Both outlive the walk.
    TreeWalk(Tree* tree, TreeVisitor* visitor);

    // What of the drawing is kept but not understood.
    std::set<Error> warnings;

    // The whole file.
    Status wholeFile();
    // All that is in the element, which becomes the tree's root; style: its own, computed.
    Status content(const XmlNode& element, const ComputedStyle& style, const Affine& map, const Viewport& viewport);

    // Where a part of a drawing is.
    struct Place {
        std::uint32_t style = 0;  // of the element around it
        Affine map;
        Viewport viewport;
        int depth = 0;  // elements around it
    };
    // One element of a text that is to take its place in the file; offsets of it and what is in it are in that text,
    // those of instances in the file. An element of the place, a root, comes before it in the tree.
    Status part(const XmlNode& element, std::string_view text, const Place& place);

  private:
    struct Frame {
        XmlNode next;  // child to be read
        std::int32_t element = 0;
        ComputedStyle style;  // what is inherited
        Affine map;
        Viewport viewport;
        double diagonal = 0;   // of the viewport
        bool isOfFile = true;  // its elements are of the file, not of a part
        bool copied = false;   // below a use element
        bool single = false;   // only this one child: what a use element refers to, or a switch element chooses
        XmlNode target;        // of the use element that this frame is of
        UsePlace use;          // of that use element
    };

    Status walk(Frame frame, const Visit& root);
    Status step();
    Status readChild(const XmlNode& node);
    Status readElement(Visit* visit);
    Status enterGroup(Visit* visit);
    Status enterUse(Visit* visit);
    // Puts the element into the tree and shows it.
    Status leaf(Visit* visit);
    void endShift(ComputedStyle* style) const;
    std::optional<Error> openViewport(Visit* visit, Frame* frame);
    void warn(const XmlNode& node, Error error);
    void warnOfLength(const XmlNode& node, const std::string& bad);
    bool payForCopy(const XmlNode& node);
    void record(Visit* visit);
    void push(Frame frame, const Visit& visit);
    Error at(const XmlNode& node, Error error) const;
    Error at(const XmlNode& node, ErrorCode code) const { return at(node, makeError(code)); }

    Tree& tree_;
    File& file_;
    TreeVisitor& visitor_;
    LengthContext lengths_;
    std::vector<Frame> stack_;
    std::string_view part_;  // the text of the part that is walked
    int depth_ = 0;          // elements around it
    std::size_t copies_ = 0;
};

// An attribute that is a length, in user units. Nothing for one that is missing or "auto", and for a bad one, which
// *bad then names.
std::optional<double> readLength(const Visit& visit, std::string_view name, double percentOf, std::string* bad);

}  // namespace quorvel::svg
