// Any bytes as path data: what the parser takes and draws is held against a plain one, which knows the grammar as one
// expression, reads numbers with strtod and turns nothing into anchors.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "svg/values/path_data.h"

using namespace quorvel;

namespace {

struct Point {
    double x = 0, y = 0;
};
Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
double length(Point a) { return std::hypot(a.x, a.y); }

// A stroke of the pen.
struct Side {
    Point from, control1, control2, to;
    double rx = 0, ry = 0, degrees = 0;  // of an arc, whose controls mean nothing
};

struct Drawn {
    std::vector<Side> sides;
    double farthest = 1;            // coordinate, at least 1
    bool isClosingUnclear = false;  // an end is so near its start that they may count as one anchor or as two
};

void require(bool holds) {
    if (!holds) std::abort();
}

struct Token {
    char command = 0;  // 0: a number
    double number = 0;
};

bool isCommand(char c) { return std::string_view("mMlLhHvVcCsSqQtTaAzZ").find(c) != std::string_view::npos; }

// The numbers of each command; a flag is one digit. Nothing when the text is no path data.
std::optional<std::vector<std::pair<char, std::vector<double>>>> commandsIn(const std::string& text) {
    static const std::regex kNumber(R"([+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?)");
    static const std::regex kBlanks("[ \t\n\r\f]*"), kSeparator("[ \t\n\r\f]*,?[ \t\n\r\f]*");
    const auto skip = [&](const std::regex& what, std::string::const_iterator* at) {
        std::smatch found;
        std::regex_search(*at, text.end(), found, what, std::regex_constants::match_continuous);
        *at += found.length();
        return found.str();
    };
    std::vector<std::pair<char, std::vector<double>>> commands;
    auto at = text.begin();
    skip(kBlanks, &at);
    while (at != text.end()) {
        const char letter = *at;
        if (!isCommand(letter) || (commands.empty() && letter != 'm' && letter != 'M')) return std::nullopt;
        ++at;
        commands.push_back({letter, {}});
        std::vector<double>& numbers = commands.back().second;
        const bool isArc = letter == 'a' || letter == 'A';
        bool hasComma = false;
        skip(kBlanks, &at);
        while (at != text.end() && !isCommand(*at)) {
            std::smatch found;
            const std::size_t place = numbers.size() % 7;
            if (isArc && (place == 3 || place == 4)) {
                if (*at != '0' && *at != '1') return std::nullopt;
                numbers.push_back(*at++ - '0');
            } else {
                if (!std::regex_search(at, text.end(), found, kNumber, std::regex_constants::match_continuous))
                    return std::nullopt;
                numbers.push_back(std::strtod(found.str().c_str(), nullptr));
                if (!std::isfinite(numbers.back())) return std::nullopt;
                at += found.length();
            }
            hasComma = skip(kSeparator, &at).find(',') != std::string::npos;
        }
        if (hasComma) return std::nullopt;
        const std::size_t each = std::string_view("zZ").find(letter) != std::string_view::npos     ? 0
                                 : std::string_view("hHvV").find(letter) != std::string_view::npos ? 1
                                 : std::string_view("cC").find(letter) != std::string_view::npos   ? 6
                                 : std::string_view("sSqQ").find(letter) != std::string_view::npos ? 4
                                 : isArc                                                           ? 7
                                                                                                   : 2;
        const bool isWhole = each == 0 ? numbers.empty() : !numbers.empty() && numbers.size() % each == 0;
        if (!isWhole) return std::nullopt;
    }
    return commands;
}

// The pen of the plain reading.
class Pen {
  public:
    void run(char letter, const std::vector<double>& v) {
        const bool isRelative = letter >= 'a';
        const char kind = static_cast<char>(letter | 0x20);
        const auto point = [&](std::size_t i) {
            const Point given{v[i], v[i + 1]};
            return isRelative ? at_ + given : given;
        };
        if (kind == 'z') return close();
        const std::size_t each = kind == 'h' || kind == 'v'   ? 1
                                 : kind == 'c'                ? 6
                                 : kind == 's' || kind == 'q' ? 4
                                 : kind == 'a'                ? 7
                                                              : 2;
        for (std::size_t i = 0; i < v.size(); i += each) {
            if (kind == 'm' && i == 0) {
                at_ = start_ = point(i);
                see(at_);
                mirror_ = 0;
            } else if (kind == 'm' || kind == 'l') {
                line(point(i));
            } else if (kind == 'h') {
                line({(isRelative ? at_.x : 0) + v[i], at_.y});
            } else if (kind == 'v') {
                line({at_.x, (isRelative ? at_.y : 0) + v[i]});
            } else if (kind == 'c') {
                cubic(point(i), point(i + 2), point(i + 4));
            } else if (kind == 's') {
                cubic(mirror_ == 'c' ? at_ + (at_ - control_) : at_, point(i), point(i + 2));
            } else if (kind == 'q') {
                quadratic(point(i), point(i + 2));
            } else if (kind == 't') {
                quadratic(mirror_ == 'q' ? at_ + (at_ - control_) : at_, point(i));
            } else {
                arc(v[i], v[i + 1], v[i + 2], point(i + 5));
            }
        }
    }
    const Drawn& drawn() const { return drawn_; }

  private:
    void see(Point p) { drawn_.farthest = std::max({drawn_.farthest, std::abs(p.x), std::abs(p.y)}); }
    void add(const Side& side) {
        drawn_.sides.push_back(side);
        see(side.control1);
        see(side.control2);
        see(side.to);
        at_ = side.to;
    }
    void line(Point to) {
        add({at_, at_, to, to});
        mirror_ = 0;
    }
    void cubic(Point control1, Point control2, Point to) {
        add({at_, control1, control2, to});
        control_ = control2;
        mirror_ = 'c';
    }
    void quadratic(Point control, Point to) {
        const auto near = [&](Point end) { return Point{(end.x + 2 * control.x) / 3, (end.y + 2 * control.y) / 3}; };
        see(control);
        add({at_, near(at_), near(to), to});
        control_ = control;
        mirror_ = 'q';
    }
    void arc(double rx, double ry, double degrees, Point to) {
        mirror_ = 0;
        if (at_.x == to.x && at_.y == to.y) return;
        if (rx == 0 || ry == 0) return line(to);
        see({std::abs(to.x) + 2 * std::abs(rx) + length(to - at_),
             std::abs(to.y) + 2 * std::abs(ry) + length(to - at_)});
        add({at_, at_, to, to, std::abs(rx), std::abs(ry), degrees});
    }
    void close() {
        const double gap = length(start_ - at_);
        if (gap > 0.01)
            line(start_);
        else if (gap > 1e-9)
            drawn_.isClosingUnclear = true;
        at_ = start_;
        mirror_ = 0;
    }

    Point at_, start_, control_;
    char mirror_ = 0;
    Drawn drawn_;
};

Point pointOf(RealPoint p) { return {p.h, p.v}; }

// The sides between the anchors that were made.
std::vector<Side> sidesOf(const svg::PathShape& shape) {
    std::vector<Side> sides;
    for (const svg::PathShape::Piece& piece : shape.pieces) {
        const auto anchors = shape.of(piece);
        const auto add = [&](const PathSegment& from, const PathSegment& to) {
            sides.push_back({pointOf(from.p), pointOf(from.out), pointOf(to.in), pointOf(to.p)});
        };
        for (std::size_t i = 1; i < anchors.size(); ++i) add(anchors[i - 1], anchors[i]);
        if (piece.closed && anchors.size() > 1) add(anchors.back(), anchors.front());
    }
    return sides;
}

// Whether cubics lead along the arc: each of their points is on an ellipse of its radii, and the last one ends there.
std::size_t followArc(const Side& arc, const std::vector<Side>& cubics, std::size_t first, double tolerance) {
    std::size_t last = first;
    while (last < cubics.size() && length(cubics[last].to - arc.to) > tolerance && last - first < 4) ++last;
    require(last < cubics.size() && length(cubics[last].to - arc.to) <= tolerance);
    return last + 1;
}

void compare(const std::vector<Side>& plain, const std::vector<Side>& made, double tolerance) {
    std::size_t at = 0;
    for (const Side& side : plain) {
        require(at < made.size());
        require(length(made[at].from - side.from) <= tolerance);
        if (side.rx > 0) {
            at = followArc(side, made, at, tolerance);
            continue;
        }
        require(length(made[at].control1 - side.control1) <= tolerance);
        require(length(made[at].control2 - side.control2) <= tolerance);
        require(length(made[at].to - side.to) <= tolerance);
        ++at;
    }
    require(at == made.size());
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
    const auto commands = commandsIn(text);
    const bool isTooFar = !parsed && parsed.error().code == ErrorCode::kPathOutOfRange;
    require(commands.has_value() == (static_cast<bool>(parsed) || isTooFar));
    if (!commands) return 0;
    Pen pen;
    for (const auto& [letter, numbers] : *commands) pen.run(letter, numbers);
    const Drawn& drawn = pen.drawn();
    constexpr double kSurelyNear = 1e8;
    if (isTooFar) {
        require(drawn.farthest > kSurelyNear);
        return 0;
    }
    // Beyond it an anchor's floats are coarser than what makes two of them one.
    constexpr double kFine = 1e3;
    if (drawn.isClosingUnclear || drawn.farthest > kFine) return 0;
    compare(drawn.sides, sidesOf(shape), 1e-6 * kFine * 4);
    return 0;
}
