// Any bytes as path data: what the parser takes and draws is held against a plain reader, which knows the grammar as
// regular expressions, reads numbers with strtod and keeps the sides of each subpath instead of anchors.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "svg/values/path_data.h"

using namespace quorvel;
using fuzz::require;

namespace {

struct Point {
    double x = 0, y = 0;
};
Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
Point operator*(double k, Point a) { return {k * a.x, k * a.y}; }
double cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
double length(Point a) { return std::hypot(a.x, a.y); }

// A cubic, or an arc as the text gives it.
struct Side {
    Point from, control1, control2, to;
    double rx = 0, ry = 0, degrees = 0;  // of an arc, whose control points mean nothing
    bool isLarge = false, isSwept = false;
    bool isArc() const { return rx > 0; }
    bool isPoint() const {
        return !isArc() && length(to - from) + length(control1 - from) + length(control2 - to) == 0;
    }
};

struct Subpath {
    std::vector<Side> sides;
    bool isClosed = false;
};

// --- the plain reading -------------------------------------------------------------------------------------------

struct Command {
    char letter = 0;
    std::vector<double> numbers;
};

std::size_t numbersOf(char letter) {
    static constexpr std::pair<std::string_view, std::size_t> kCounts[] = {{"zZ", 0},   {"hHvV", 1}, {"mMlLtT", 2},
                                                                           {"sSqQ", 4}, {"cC", 6},   {"aA", 7}};
    for (const auto& row : kCounts)
        if (row.first.find(letter) != std::string_view::npos) return row.second;
    return SIZE_MAX;
}
bool isCommand(char c) { return numbersOf(c) != SIZE_MAX; }

class PlainReader {
  public:
    explicit PlainReader(const std::string& text) : at_(text.begin()), end_(text.end()) {}

    // Nothing when the text is no path data.
    std::optional<std::vector<Command>> read() {
        static const std::regex kBlanks("[ \t\n\r\f]*");
        std::vector<Command> commands;
        for (take(kBlanks); at_ != end_;) {
            if (!isCommand(*at_) || (commands.empty() && (*at_ | 0x20) != 'm')) return std::nullopt;
            commands.push_back({*at_++, {}});
            take(kBlanks);
            std::vector<double>& numbers = commands.back().numbers;
            const std::size_t each = numbersOf(commands.back().letter);
            if (!readNumbers(each == 7, &numbers)) return std::nullopt;
            const bool isWhole = each == 0 ? numbers.empty() : !numbers.empty() && numbers.size() % each == 0;
            if (!isWhole) return std::nullopt;
        }
        return commands;
    }

  private:
    std::string take(const std::regex& what) {
        std::smatch found;
        std::regex_search(at_, end_, found, what, std::regex_constants::match_continuous);
        at_ += found.length();
        return found.str();
    }

    // A flag of an arc is one digit. A comma has another number behind it.
    bool readNumbers(bool isArc, std::vector<double>* numbers) {
        static const std::regex kNumber(R"([+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?)"), kFlag("[01]"),
            kSeparator("[ \t\n\r\f]*,?[ \t\n\r\f]*");
        bool hasComma = false;
        while (at_ != end_ && !isCommand(*at_)) {
            const std::size_t place = numbers->size() % 7;
            const std::string number = take(isArc && (place == 3 || place == 4) ? kFlag : kNumber);
            if (number.empty()) return false;
            numbers->push_back(std::strtod(number.c_str(), nullptr));
            if (!std::isfinite(numbers->back())) return false;
            hasComma = take(kSeparator).find(',') != std::string::npos;
        }
        return !hasComma;
    }

    std::string::const_iterator at_, end_;
};

class Pen {
  public:
    void run(const Command& command) {
        const char kind = static_cast<char>(command.letter | 0x20);
        if (kind == 'z') return close();
        const std::size_t each = numbersOf(command.letter);
        for (std::size_t i = 0; i < command.numbers.size(); i += each)
            draw(kind == 'm' && i > 0 ? 'l' : kind, command.letter >= 'a' ? at_ : Point(), command.numbers.data() + i);
    }
    const std::vector<Subpath>& subpaths() const { return subpaths_; }
    double farthest() const { return farthest_; }
    bool isClosingUnclear() const { return isClosingUnclear_; }

  private:
    // origin: what the numbers are counted from.
    void draw(char kind, Point origin, const double* v) {
        const auto point = [&](int pair) { return origin + Point{v[2 * pair], v[2 * pair + 1]}; };
        const Point mirrored = mirror_ == kind || (kind == 's' && mirror_ == 'c') || (kind == 't' && mirror_ == 'q')
                                   ? at_ + (at_ - control_)
                                   : at_;
        const Point from = at_;
        if (kind == 'm') move(point(0));
        if (kind == 'l') line(point(0));
        if (kind == 'h') line({origin.x + v[0], at_.y});
        if (kind == 'v') line({at_.x, origin.y + v[0]});
        if (kind == 'c') add({from, point(0), control_ = point(1), point(2)});
        if (kind == 's') add({from, mirrored, control_ = point(0), point(1)});
        if (kind == 'q') quadratic(control_ = point(0), point(1));
        if (kind == 't') quadratic(control_ = mirrored, point(0));
        if (kind == 'a') arc(v, origin + Point{v[5], v[6]});
        mirror_ = kind;
    }
    void move(Point to) {
        at_ = start_ = to;
        see(at_);
        subpaths_.emplace_back();
        isOpen_ = true;
    }
    void see(Point p) { farthest_ = std::max({farthest_, std::abs(p.x), std::abs(p.y)}); }
    void add(const Side& side) {
        if (!isOpen_) subpaths_.emplace_back();
        isOpen_ = true;
        subpaths_.back().sides.push_back(side);
        for (const Point p : {side.control1, side.control2, side.to}) see(p);
        at_ = side.to;
    }
    void line(Point to) { add({at_, at_, to, to}); }
    void quadratic(Point control, Point to) {
        see(control);
        add({at_, 1.0 / 3 * at_ + 2.0 / 3 * control, 1.0 / 3 * to + 2.0 / 3 * control, to});
    }
    void arc(const double* v, Point to) {
        if (at_.x == to.x && at_.y == to.y) return;
        const double rx = std::abs(v[0]), ry = std::abs(v[1]);
        if (rx == 0 || ry == 0) return line(to);
        // Radii that are too small for the chord grow together.
        const double reach = 2 * (rx + ry + length(to - at_) * std::max(rx, ry) / std::min(rx, ry));
        see({std::abs(to.x) + reach, std::abs(to.y) + reach});
        add({at_, at_, to, to, rx, ry, v[2], v[3] != 0, v[4] != 0});
    }
    // A line back to the start, unless the pen is there already. How near that is differs between an end that was
    // written and one that relative coordinates have summed up.
    void close() {
        mirror_ = 'z';
        if (!isOpen_) return;
        isOpen_ = false;
        std::vector<Side>& sides = subpaths_.back().sides;
        const double gap = length(start_ - at_);
        if (gap > 0.01) sides.push_back({at_, at_, start_, start_});
        isClosingUnclear_ |= gap > 1e-9 && gap <= 0.01;
        // Nothing but a point is the same anchor with a side to itself and without.
        if (sides.size() == 1 && sides[0].isPoint()) sides.clear();
        subpaths_.back().isClosed = true;
        at_ = start_;
    }

    Point at_, start_, control_;
    char mirror_ = 0;  // the last command
    bool isOpen_ = false;
    std::vector<Subpath> subpaths_;
    double farthest_ = 1;            // coordinate, at least 1
    bool isClosingUnclear_ = false;  // an end is so near its start that they may count as one anchor or as two
};

// --- what was made -----------------------------------------------------------------------------------------------

Point pointOf(RealPoint p) { return {p.h, p.v}; }

Subpath madeOf(const svg::PathShape& shape, const svg::PathShape::Piece& piece) {
    Subpath made{{}, piece.closed};
    const auto anchors = shape.of(piece);
    const auto add = [&](const PathSegment& from, const PathSegment& to) {
        made.sides.push_back({pointOf(from.p), pointOf(from.out), pointOf(to.in), pointOf(to.p)});
    };
    for (std::size_t i = 1; i < anchors.size(); ++i) add(anchors[i - 1], anchors[i]);
    if (piece.closed) add(anchors.back(), anchors.front());
    if (piece.closed && anchors.size() == 1 && made.sides[0].isPoint()) made.sides.clear();
    return made;
}

// Cubics from the place on lead along the arc: in the space where its ellipse is a circle, their ends and middles are
// on one circle of the right size, and go round it the right way and far enough. Gives the place behind them.
std::size_t followArc(const Side& arc, const std::vector<Side>& cubics, std::size_t first, double tolerance) {
    const double turn = std::fmod(arc.degrees, 360) * std::numbers::pi / 180;
    const auto unit = [&](Point p) {
        const Point d = p - arc.from;
        return Point{(std::cos(turn) * d.x + std::sin(turn) * d.y) / arc.rx,
                     (std::cos(turn) * d.y - std::sin(turn) * d.x) / arc.ry};
    };
    std::vector<Point> path{{}};
    std::size_t at = first;
    for (bool isDone = false; !isDone; ++at) {
        require(at < cubics.size() && at < first + 4);
        const Side& side = cubics[at];
        path.push_back(unit(0.125 * (side.from + side.to) + 0.375 * (side.control1 + side.control2)));
        path.push_back(unit(side.to));
        isDone = length(side.to - arc.to) <= tolerance;
    }
    const double halfChord = length(path.back()) / 2, radius = std::max(1.0, halfChord);
    // Floats and nearly straight or nearly whole arcs decide nothing.
    const double fine = tolerance / std::min(arc.rx, arc.ry);
    if (fine > 1e-3 || halfChord < 0.05 || std::abs(halfChord - 1) < 0.05) return at;
    const Point middle = 0.5 * path.back(), across{-path.back().y, path.back().x};
    const double height = std::sqrt(std::max(0.0, radius * radius - halfChord * halfChord)) / (2 * halfChord);
    const Point centre = middle + (arc.isLarge == arc.isSwept ? -height : height) * across;
    double turned = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        require(std::abs(length(path[i] - centre) - radius) <= 1e-3 + 10 * fine * radius);
        if (i == 0) continue;
        const Point a = path[i - 1] - centre, b = path[i] - centre;
        turned += std::atan2(cross(a, b), dot(a, b));
    }
    require((turned > 0) == arc.isSwept);
    if (halfChord < 0.95) require((std::abs(turned) > std::numbers::pi) == arc.isLarge);
    return at;
}

void compare(const Subpath& plain, const Subpath& made, double tolerance) {
    require(plain.isClosed == made.isClosed);
    std::size_t at = 0;
    for (const Side& side : plain.sides) {
        require(at < made.sides.size());
        const Side& found = made.sides[at];
        require(length(found.from - side.from) <= tolerance);
        if (side.isArc()) {
            at = followArc(side, made.sides, at, tolerance);
            continue;
        }
        const double off = length(found.control1 - side.control1) + length(found.control2 - side.control2);
        require(off + length(found.to - side.to) <= tolerance);
        ++at;
    }
    require(at == made.sides.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongest = 2000;  // the plain reading is slow
    if (size > kLongest) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    svg::PathShape shape;
    svg::PathBuilder builder(&shape, {});
    const Status parsed = svg::parsePathData(text, &builder);
    const std::size_t begin = text.find_first_not_of(" \t\n\r\f");
    if (begin != std::string::npos && text.substr(begin) == "none") return 0;
    const auto commands = PlainReader(text).read();
    const bool isTooFar = !parsed && parsed.error().code == ErrorCode::kPathOutOfRange;
    if (isTooFar && !commands) return 0;  // what comes before the error is too far already
    require(commands.has_value() == (static_cast<bool>(parsed) || isTooFar));
    if (!commands) return 0;
    Pen pen;
    for (const Command& command : *commands) pen.run(command);
    constexpr double kSurelyNear = 1e8;
    if (isTooFar) {
        require(pen.farthest() > kSurelyNear);
        return 0;
    }
    // Beyond it an anchor's floats are coarser than what makes two of them one.
    constexpr double kFine = 1e3, kTolerance = 4e-3;
    if (pen.isClosingUnclear() || pen.farthest() > kFine) return 0;
    require(pen.subpaths().size() == shape.pieces.size());
    for (std::size_t i = 0; i < shape.pieces.size(); ++i)
        compare(pen.subpaths()[i], madeOf(shape, shape.pieces[i]), kTolerance);
    return 0;
}
