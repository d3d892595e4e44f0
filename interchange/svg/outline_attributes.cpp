#include "interchange/svg/outline_attributes.h"

#include <cmath>

#include "svg/values/number.h"

namespace quorvel::interchange {

void readNodeTypes(std::string_view types, svg::PathShape* shape) {
    std::size_t plain = 0;
    std::size_t repeated = 0;
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        plain += piece.count;
        repeated += piece.count + (piece.closed ? 1 : 0);
    }
    if (types.size() != plain && types.size() != repeated) return;
    std::size_t at = 0;
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        for (std::uint32_t i = 0; i < piece.count; ++i, ++at) {
            const char type = types[at];
            if (type == 'c' || type == '1') shape->segments[piece.first + i].corner = 1;
            if (type == 's' || type == 'z' || type == 'a' || type == '0') shape->segments[piece.first + i].corner = 0;
        }
        if (types.size() == repeated && piece.closed) ++at;
    }
}

void readEnds(std::string_view ends, const svg::Affine& map, svg::PathShape* shape) {
    const char* at = ends.data();
    const char* end = at + ends.size();
    for (const svg::PathShape::Piece& piece : shape->pieces) {
        double v[4];
        if (at != end && *at != ';') {
            for (double& value : v) {
                if (!svg::readNumber(&at, end, &value)) return;
                svg::skipSeparator(&at, end);
            }
            const RealPoint in = map.point(v[0], v[1]);
            const RealPoint out = map.point(v[2], v[3]);
            if (!std::isfinite(in.h) || !std::isfinite(in.v) || !std::isfinite(out.h) || !std::isfinite(out.v)) return;
            if (!piece.closed && piece.count > 0) {
                PathSegment* segments = shape->segments.data() + piece.first;
                segments[0].in = in;
                segments[piece.count - 1].out = out;
                segments[0].corner = svg::cornerByHandles(segments[0]);
                segments[piece.count - 1].corner = svg::cornerByHandles(segments[piece.count - 1]);
            }
        }
        if (at == end) return;
        ++at;
    }
}

}  // namespace quorvel::interchange
