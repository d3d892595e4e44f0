// A drawing under the hand of a user and of a test: paths are drawn, tools are led over them by the host's messages,
// and what they made is read back piece by piece. Functions of the plug-in can be called as within a message.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/plugin_host.h"

namespace quorvel::tests {

// One art of a dimension.
struct Piece {
    std::vector<PathSegment> segments;  // of a path
    bool closed = false, filled = false;
    AIPathStyle style;
    doc::TextData data;   // of a text
    std::u16string text;  // the same, with where its anchor stands and the direction it runs in, radians
    RealPoint place;
    double angle = 0;
};

class DraftingTable : public PluginHost {
  public:
    explicit DraftingTable(PluginHostOptions options = {});

    doc::Document& document() { return *host().document(); }
    // On top of the current layer, stroked.
    doc::ArtId draw(const std::vector<PathSegment>& segments, bool closed);
    doc::ArtId drawLines(const std::vector<RealPoint>& anchors, bool closed);
    // Four anchors, from the right one anticlockwise.
    doc::ArtId drawCircle(RealPoint centre, float radius);
    void change(const std::function<bool(doc::Document&)>& how);
    void move(doc::ArtId art, float h, float v);
    static AIArtHandle handle(doc::ArtId art);
    static doc::ArtId artOf(AIArtHandle handle);  // 0 for null

    // Runs the job as a message of the host, with the suites held.
    void inside(const std::function<void()>& job);
    // A new group on top of the current layer, and what the job puts into it in a message.
    doc::ArtId newGroup(const std::function<void(AIArtHandle)>& job);

    void choose(const char* title);
    void track(RealPoint cursor, std::uint16_t modifiers = 0);
    void drag(RealPoint cursor, std::uint16_t modifiers = 0);
    void down(std::uint16_t modifiers = 0);
    void up(std::uint16_t modifiers = 0);
    // Takes the tool, presses at the first point, drags to the second and lets go, with stops on the way.
    void pull(const char* tool, RealPoint from, RealPoint to, const std::vector<RealPoint>& stops = {},
              std::uint16_t modifiers = 0);
    // The same, with a click where the dimension is to stand.
    void measure(const char* tool, RealPoint from, RealPoint to, RealPoint placement,
                 const std::vector<RealPoint>& stops = {});
    int beeps() { return user().beeps(); }

    void removeDimensions();
    std::vector<doc::ArtId> dimensions();               // in walk order: the last made comes first in its layer
    doc::ArtId dimension();                             // the only one
    std::vector<Piece> pieces(doc::ArtId group);        // bottom to top
    std::string tag(doc::ArtId art, const char* name);  // "(none)" when it is absent

  private:
    RealPoint cursor_;
};

PathSegment Corner(RealPoint anchor);

}  // namespace quorvel::tests
