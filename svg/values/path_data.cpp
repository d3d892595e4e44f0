// Path data is read to its end or refused: a drawing whose outlines break off half way would be measured wrongly.
// Arcs follow the SVG implementation notes (centre from end points, radii grown when too small).
#include "svg/values/path_data.h"
#include "svg/values/number.h"

#include <algorithm>
#include <numbers>

namespace quorvel::svg {
namespace {

constexpr double kLargestCoordinate = 1e9;
// Two anchors nearer than this are one where a subpath closes: relative path data drifts in its last digits.
constexpr float kClosingTolerance = 1e-3F;
// A quarter turn of rounded coordinates may come out a trifle more than a quarter.
constexpr double kQuarterSlack = 1e-5;

bool samePoint(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

bool meet(RealPoint a, RealPoint b) {
    return std::abs(a.h - b.h) <= kClosingTolerance && std::abs(a.v - b.v) <= kClosingTolerance;
}

}  // namespace

void PathShape::clear() {
    segments.clear();
    pieces.clear();
}

RealPoint PathBuilder::at(double x, double y) {
    const RealPoint point = map_.point(x, y);
    if (!(std::abs(point.h) <= kLargestCoordinate) || !(std::abs(point.v) <= kLargestCoordinate)) inRange_ = false;
    return point;
}

void PathBuilder::moveTo(double x, double y) {
    x_ = startX_ = x;
    y_ = startY_ = y;
    started_ = true;
    open_ = false;
    open();
}

void PathBuilder::open() {
    if (open_) return;
    open_ = true;
    shape_->pieces.push_back({static_cast<std::uint32_t>(shape_->segments.size()), 1, false});
    const RealPoint p = at(startX_, startY_);
    shape_->segments.push_back({p, p, p, 0});
}

void PathBuilder::lineTo(double x, double y) {
    open();
    const RealPoint p = at(x, y);
    shape_->segments.push_back({p, p, p, 0});
    ++shape_->pieces.back().count;
    x_ = x;
    y_ = y;
}

void PathBuilder::curveTo(double x1, double y1, double x2, double y2, double x, double y) {
    open();
    shape_->segments.back().out = at(x1, y1);
    const RealPoint p = at(x, y);
    shape_->segments.push_back({p, at(x2, y2), p, 0});
    ++shape_->pieces.back().count;
    x_ = x;
    y_ = y;
}

void PathBuilder::arcTo(double rx, double ry, double degrees, bool large, bool sweep, double x, double y) {
    if (x == x_ && y == y_) return;
    rx = std::abs(rx);
    ry = std::abs(ry);
    if (!(rx > 0) || !(ry > 0)) return lineTo(x, y);
    const double phi = std::fmod(degrees, 360) * std::numbers::pi / 180;
    const double cosPhi = std::cos(phi);
    const double sinPhi = std::sin(phi);
    const double halfX = (x_ - x) / 2;
    const double halfY = (y_ - y) / 2;
    const double px = (cosPhi * halfX + sinPhi * halfY) / rx;  // on the unit circle's scale
    const double py = (cosPhi * halfY - sinPhi * halfX) / ry;
    const double reach = px * px + py * py;
    double cx = 0;
    double cy = 0;
    if (reach > 1) {
        rx *= std::sqrt(reach);
        ry *= std::sqrt(reach);
    } else {
        const double height = std::sqrt(std::max(0.0, 1 / reach - 1)) * (large == sweep ? -1 : 1);
        cx = height * py;
        cy = -height * px;
    }
    const double grown = reach > 1 ? std::sqrt(reach) : 1;
    const double from = std::atan2(py / grown - cy, px / grown - cx);
    double turn = std::atan2(-py / grown - cy, -px / grown - cx) - from;
    if (sweep && turn < 0) turn += 2 * std::numbers::pi;
    if (!sweep && turn > 0) turn -= 2 * std::numbers::pi;
    const double centreX = (x_ + x) / 2 + cosPhi * rx * cx - sinPhi * ry * cy;
    const double centreY = (y_ + y) / 2 + sinPhi * rx * cx + cosPhi * ry * cy;
    if (!std::isfinite(from) || !std::isfinite(turn) || !std::isfinite(centreX) || !std::isfinite(centreY)) {
        inRange_ = false;
        return;
    }

    const int count = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (std::numbers::pi / 2) - kQuarterSlack)));
    const double step = turn / count;
    const double handle = 4.0 / 3.0 * std::tan(step / 4);
    const auto place = [&](double u, double v, double* toX, double* toY) {
        *toX = centreX + cosPhi * rx * u - sinPhi * ry * v;
        *toY = centreY + sinPhi * rx * u + cosPhi * ry * v;
    };
    for (int i = 1; i <= count; ++i) {
        const double a = from + step * (i - 1);
        const double b = i == count ? from + turn : from + step * i;
        double x1, y1, x2, y2, endX, endY;
        place(std::cos(a) - handle * std::sin(a), std::sin(a) + handle * std::cos(a), &x1, &y1);
        place(std::cos(b) + handle * std::sin(b), std::sin(b) - handle * std::cos(b), &x2, &y2);
        place(std::cos(b), std::sin(b), &endX, &endY);
        if (i == count) {
            endX = x;
            endY = y;
        }
        curveTo(x1, y1, x2, y2, endX, endY);
    }
}

void PathBuilder::close() {
    if (!open_) return;
    PathShape::Piece& piece = shape_->pieces.back();
    piece.closed = true;
    PathSegment& first = shape_->segments[piece.first];
    const PathSegment& last = shape_->segments.back();
    if (piece.count > 1 && meet(first.p, last.p)) {
        // The handle keeps its place beside the anchor that stays. A retracted one stays retracted.
        first.in = samePoint(last.in, last.p) ? first.p : last.in;
        shape_->segments.pop_back();
        --piece.count;
    }
    open_ = false;
    x_ = startX_;
    y_ = startY_;
}

bool PathBuilder::finish() {
    for (PathSegment& segment : shape_->segments) segment.corner = cornerByHandles(segment);
    return inRange_;
}

bool cornerByHandles(const PathSegment& s) {
    constexpr double kSameLine = 5e-3;  // radians; floats of short handles are coarse
    const double inH = double(s.in.h) - s.p.h, inV = double(s.in.v) - s.p.v;
    const double outH = double(s.out.h) - s.p.h, outV = double(s.out.v) - s.p.v;
    const double lengths = std::sqrt((inH * inH + inV * inV) * (outH * outH + outV * outV));
    if (!(lengths > 0)) return true;
    return !(inH * outH + inV * outV < 0 && std::abs(inH * outV - inV * outH) <= kSameLine * lengths);
}

namespace {

int argumentCount(char command) {
    switch (command | 0x20) {
        case 'm':
        case 'l':
        case 't':
            return 2;
        case 'h':
        case 'v':
            return 1;
        case 'c':
            return 6;
        case 's':
        case 'q':
            return 4;
        case 'a':
            return 7;
        default:
            return 0;
    }
}

bool isCommand(char c) { return (c | 0x20) == 'z' || (c >= 'A' && argumentCount(c) > 0); }

class PathParser {
  public:
    PathParser(std::string_view data, PathBuilder* builder)
        : begin_(data.data()), at_(data.data()), end_(data.data() + data.size()), to_(*builder) {}

    bool parse(std::string* error) {
        skipBlanks();
        if (rest() == "none") return true;
        while (at_ != end_) {
            const char command = *at_;
            if (!isCommand(command)) return fail(error, "no path command");
            if (!to_.started() && (command | 0x20) != 'm') return fail(error, "path data must begin with a move");
            ++at_;
            if (!runCommand(command)) return fail(error, "bad number in path data");
            skipBlanks();
        }
        return true;
    }

  private:
    std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

    void skipBlanks() {
        while (at_ != end_ && (*at_ == ' ' || *at_ == '\n' || *at_ == '\t' || *at_ == '\r' || *at_ == '\f')) ++at_;
    }

    bool fail(std::string* error, const char* what) const {
        std::string near(rest().substr(0, 12));
        for (char& c : near) {
            if (c < ' ' || c > '~') c = '?';
        }
        *error = std::string(what) + " at character " + std::to_string(at_ - begin_ + 1) +
                 (near.empty() ? " (the end)" : ": \"" + near + "\"");
        return false;
    }

    bool readFlag(double* value) {
        if (at_ == end_ || (*at_ != '0' && *at_ != '1')) return false;
        *value = *at_++ - '0';
        return true;
    }

    // A command with all the groups of arguments that follow it.
    bool runCommand(char command) {
        const int count = argumentCount(command);
        if (count == 0) {
            to_.close();
            lastCommand_ = 'z';
            return true;
        }
        skipBlanks();
        for (bool first = true;; first = false) {
            double v[7];
            for (int i = 0; i < count; ++i) {
                if (i > 0) skipSeparator(&at_, end_);
                const bool flag = count == 7 && (i == 3 || i == 4);
                if (!(flag ? readFlag(&v[i]) : readNumber(&at_, end_, &v[i]))) return false;
            }
            // Further pairs after a move are lines.
            const char kind = static_cast<char>(command | 0x20);
            draw(kind == 'm' && !first ? 'l' : kind, command >= 'a', v);
            skipBlanks();
            const bool comma = at_ != end_ && *at_ == ',';
            if (comma) {
                ++at_;
                skipBlanks();
            }
            // A comma promises another number.
            if (at_ == end_ || isCommand(*at_)) return !comma;
        }
    }

    void draw(char kind, bool relative, const double* v) {
        const double x = relative ? to_.x() : 0;
        const double y = relative ? to_.y() : 0;
        // The reflected control point of the last curve, for the smooth commands.
        const bool afterCubic = lastCommand_ == 'c' || lastCommand_ == 's';
        const bool afterQuadratic = lastCommand_ == 'q' || lastCommand_ == 't';
        switch (kind) {
            case 'm':
                to_.moveTo(x + v[0], y + v[1]);
                break;
            case 'l':
                to_.lineTo(x + v[0], y + v[1]);
                break;
            case 'h':
                to_.lineTo(x + v[0], to_.y());
                break;
            case 'v':
                to_.lineTo(to_.x(), y + v[0]);
                break;
            case 'c':
                cubic(x + v[0], y + v[1], x + v[2], y + v[3], x + v[4], y + v[5]);
                break;
            case 's':
                cubic(afterCubic ? 2 * to_.x() - controlX_ : to_.x(), afterCubic ? 2 * to_.y() - controlY_ : to_.y(),
                      x + v[0], y + v[1], x + v[2], y + v[3]);
                break;
            case 'q':
                quadratic(x + v[0], y + v[1], x + v[2], y + v[3]);
                break;
            case 't':
                quadratic(afterQuadratic ? 2 * to_.x() - controlX_ : to_.x(),
                          afterQuadratic ? 2 * to_.y() - controlY_ : to_.y(), x + v[0], y + v[1]);
                break;
            default:
                to_.arcTo(v[0], v[1], v[2], v[3] != 0, v[4] != 0, x + v[5], y + v[6]);
                break;
        }
        lastCommand_ = kind;
    }

    void cubic(double x1, double y1, double x2, double y2, double x, double y) {
        controlX_ = x2;
        controlY_ = y2;
        to_.curveTo(x1, y1, x2, y2, x, y);
    }

    void quadratic(double cx, double cy, double x, double y) {
        controlX_ = cx;
        controlY_ = cy;
        to_.curveTo(to_.x() + (cx - to_.x()) * 2 / 3, to_.y() + (cy - to_.y()) * 2 / 3, x + (cx - x) * 2 / 3,
                    y + (cy - y) * 2 / 3, x, y);
    }

    const char* begin_;
    const char* at_;
    const char* end_;
    PathBuilder& to_;
    char lastCommand_ = 0;
    double controlX_ = 0, controlY_ = 0;
};

}  // namespace

bool parsePathData(std::string_view data, PathBuilder* builder, std::string* error) {
    if (!PathParser(data, builder).parse(error)) return false;
    if (builder->finish()) return true;
    *error = "coordinate out of range in path data";
    return false;
}

bool parsePoints(std::string_view points, bool closed, PathBuilder* builder, std::string* error) {
    const char* at = points.data();
    const char* end = at + points.size();
    while (at != end && (*at == ' ' || *at == '\n' || *at == '\t' || *at == '\r')) ++at;
    while (at != end) {
        double x = 0;
        double y = 0;
        if (!readNumber(&at, end, &x)) {
            *error = "bad number in points at character " + std::to_string(at - points.data() + 1);
            return false;
        }
        skipSeparator(&at, end);
        if (at == end) break;  // half a point draws nothing
        if (!readNumber(&at, end, &y)) {
            *error = "bad number in points at character " + std::to_string(at - points.data() + 1);
            return false;
        }
        skipSeparator(&at, end);
        if (builder->started()) {
            builder->lineTo(x, y);
        } else {
            builder->moveTo(x, y);
        }
    }
    if (closed) builder->close();
    if (builder->finish()) return true;
    *error = "coordinate out of range in points";
    return false;
}

void drawRect(double x, double y, double width, double height, double rx, double ry, PathBuilder* builder) {
    rx = std::min(rx, width / 2);
    ry = std::min(ry, height / 2);
    if (!(rx > 0) || !(ry > 0)) {
        builder->moveTo(x, y);
        builder->lineTo(x + width, y);
        builder->lineTo(x + width, y + height);
        builder->lineTo(x, y + height);
        builder->close();
        return;
    }
    // Sides that the radii use up leave no anchor of their own.
    const bool wide = width > 2 * rx;
    const bool high = height > 2 * ry;
    builder->moveTo(x + rx, y);
    if (wide) builder->lineTo(x + width - rx, y);
    builder->arcTo(rx, ry, 0, false, true, x + width, y + ry);
    if (high) builder->lineTo(x + width, y + height - ry);
    builder->arcTo(rx, ry, 0, false, true, x + width - rx, y + height);
    if (wide) builder->lineTo(x + rx, y + height);
    builder->arcTo(rx, ry, 0, false, true, x, y + height - ry);
    if (high) builder->lineTo(x, y + ry);
    builder->arcTo(rx, ry, 0, false, true, x + rx, y);
    builder->close();
}

void drawEllipse(double cx, double cy, double rx, double ry, PathBuilder* builder) {
    const double ratio = 4.0 / 3.0 * std::tan(std::numbers::pi / 8);
    const double hx = rx * ratio;
    const double hy = ry * ratio;
    builder->moveTo(cx + rx, cy);
    builder->curveTo(cx + rx, cy + hy, cx + hx, cy + ry, cx, cy + ry);
    builder->curveTo(cx - hx, cy + ry, cx - rx, cy + hy, cx - rx, cy);
    builder->curveTo(cx - rx, cy - hy, cx - hx, cy - ry, cx, cy - ry);
    builder->curveTo(cx + hx, cy - ry, cx + rx, cy - hy, cx + rx, cy);
    builder->close();
}

namespace {

class PathFormatter {
  public:
    explicit PathFormatter(const Affine& toDocument) : map_(toDocument) {
        // In a flat space no number leads to the point; document numbers at least lose nothing to infinity.
        if (!invert(map_, &inverse_)) inverse_ = {};
    }

    void piece(const PathPiece& piece) {
        const auto segments = piece.segments;
        if (segments.empty()) return;
        command('M', segments[0].p);
        for (std::size_t i = 1; i < segments.size(); ++i) side(segments[i - 1], segments[i]);
        if (!piece.closed) return;
        const PathSegment& last = segments.back();
        const PathSegment& first = segments.front();
        const bool straight = samePoint(last.out, last.p) && samePoint(first.in, first.p);
        // A reader merges a last anchor that lies on the first: one more side is there for it to merge.
        if (!straight || (segments.size() > 1 && meet(last.p, first.p))) side(last, first);
        out_ += " Z";
    }

    std::string take() { return std::move(out_); }

  private:
    void side(const PathSegment& from, const PathSegment& to) {
        if (samePoint(from.out, from.p) && samePoint(to.in, to.p)) {
            command('L', to.p);
            return;
        }
        command('C', from.out);
        point(to.in);
        point(to.p);
    }

    void command(char letter, RealPoint p) {
        if (!out_.empty()) out_ += ' ';
        out_ += letter;
        point(p);
    }

    void point(RealPoint p) {
        const LocalPoint local = localPoint(map_, inverse_, p);
        out_ += ' ';
        appendNumber(&out_, local.x);
        out_ += ',';
        appendNumber(&out_, local.y);
    }

    Affine map_, inverse_;
    std::string out_;
};

}  // namespace

std::string formatPathData(std::span<const PathPiece> pieces, const Affine& toDocument) {
    PathFormatter formatter(toDocument);
    for (const PathPiece& piece : pieces) formatter.piece(piece);
    return formatter.take();
}

}  // namespace quorvel::svg
