// Path data is drawn up to its first error, as SVG has it.
#include "svg/values/path_data.h"

#include "svg/values/number.h"
#include "svg/values/path_anchors.h"

namespace quorvel::svg {
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

    Status parse() {
        skipBlanks();
        if (rest() == "none") return {};
        while (at_ != end_) {
            const char command = *at_;
            if (!isCommand(command)) return errorHere(ErrorCode::kNoPathCommand);
            if (!to_.started() && (command | 0x20) != 'm') return errorHere(ErrorCode::kNoFirstMove);
            ++at_;
            if (!runCommand(command)) return errorHere(ErrorCode::kBadPathNumber);
            skipBlanks();
        }
        return {};
    }

  private:
    std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

    void skipBlanks() {
        while (at_ != end_ && (*at_ == ' ' || *at_ == '\n' || *at_ == '\t' || *at_ == '\r' || *at_ == '\f')) ++at_;
    }

    Error errorHere(ErrorCode code) const {
        const std::string place = std::to_string(at_ - begin_ + 1);
        std::string near(rest().substr(0, 12));
        if (near.empty()) return makeError(ErrorCode::kPathCutOff, {place});
        for (char& c : near) {
            if (c < ' ' || c > '~') c = '?';
        }
        return makeError(code, {place, near});
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

Status parsePathData(std::string_view data, PathBuilder* builder) {
    const Status parsed = PathParser(data, builder).parse();
    if (!builder->finish()) return makeError(ErrorCode::kPathOutOfRange);
    return parsed;
}

namespace {

// Up to the first error.
Status drawPoints(std::string_view points, PathBuilder* builder) {
    const auto badNumber = [&](const char* at) {
        return makeError(ErrorCode::kBadPointsNumber, {std::to_string(at - points.data() + 1)});
    };
    const char* at = points.data();
    const char* end = at + points.size();
    while (at != end && (*at == ' ' || *at == '\n' || *at == '\t' || *at == '\r')) ++at;
    while (at != end) {
        double x = 0;
        double y = 0;
        if (!readNumber(&at, end, &x)) return badNumber(at);
        skipSeparator(&at, end);
        if (at == end) break;  // half a point draws nothing
        if (!readNumber(&at, end, &y)) return badNumber(at);
        skipSeparator(&at, end);
        if (builder->started()) {
            builder->lineTo(x, y);
        } else {
            builder->moveTo(x, y);
        }
    }
    return {};
}

}  // namespace

Status parsePoints(std::string_view points, bool closed, PathBuilder* builder) {
    const Status drawn = drawPoints(points, builder);
    if (closed) builder->close();
    if (!builder->finish()) return makeError(ErrorCode::kPointsOutOfRange);
    return drawn;
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
