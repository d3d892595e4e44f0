#include "svg/tree/shapes.h"

#include <optional>
#include <string>

namespace quorvel::svg {
namespace {

// Lengths of one element. Missing ones are nothing; bad ones are noted.
struct Lengths {
    const Visit& visit;
    std::string bad;

    std::optional<double> across(std::string_view name) { return readLength(visit, name, visit.viewport.width, &bad); }
    std::optional<double> down(std::string_view name) { return readLength(visit, name, visit.viewport.height, &bad); }
    std::optional<double> round(std::string_view name) {
        return readLength(visit, name, visit.viewport.diagonal(), &bad);
    }
};

// A radius that is not given, or below 0, is the other one.
void resolveRadii(std::optional<double>* rx, std::optional<double>* ry) {
    if (*rx < 0.0) rx->reset();
    if (*ry < 0.0) ry->reset();
    if (!*rx) *rx = *ry;
    if (!*ry) *ry = *rx;
}

void drawRectangle(Lengths* lengths, PathBuilder* builder) {
    const double width = lengths->across("width").value_or(0), height = lengths->down("height").value_or(0);
    std::optional<double> rx = lengths->across("rx"), ry = lengths->down("ry");
    resolveRadii(&rx, &ry);
    if (!(width > 0 && height > 0)) return;
    drawRect(lengths->across("x").value_or(0), lengths->down("y").value_or(0), width, height, rx.value_or(0),
             ry.value_or(0), builder);
}

void drawLine(Lengths* lengths, PathBuilder* builder) {
    builder->moveTo(lengths->across("x1").value_or(0), lengths->down("y1").value_or(0));
    builder->lineTo(lengths->across("x2").value_or(0), lengths->down("y2").value_or(0));
}

void drawRound(std::optional<double> rx, std::optional<double> ry, Lengths* lengths, PathBuilder* builder) {
    resolveRadii(&rx, &ry);
    if (rx && *rx > 0 && *ry > 0)
        drawEllipse(lengths->across("cx").value_or(0), lengths->down("cy").value_or(0), *rx, *ry, builder);
}

}  // namespace

Status drawOutline(const Visit& visit, PathBuilder* builder) {
    Lengths lengths{visit, {}};
    switch (visit.role) {
        case Role::kPath:
            return parsePathData(visit.node.attribute("d").value(), builder);
        case Role::kPolyline:
        case Role::kPolygon:
            return parsePoints(visit.node.attribute("points").value(), visit.role == Role::kPolygon, builder);
        case Role::kRect:
            drawRectangle(&lengths, builder);
            break;
        case Role::kLine:
            drawLine(&lengths, builder);
            break;
        case Role::kCircle: {
            const std::optional<double> radius = lengths.round("r");
            drawRound(radius, radius, &lengths, builder);
            break;
        }
        case Role::kEllipse: {
            const std::optional<double> rx = lengths.across("rx");
            drawRound(rx, lengths.down("ry"), &lengths, builder);
            break;
        }
        default:
            break;
    }
    if (!builder->finish()) return makeError(ErrorCode::kCoordinateOutOfRange);
    if (!lengths.bad.empty()) return makeError(ErrorCode::kBadLength, {lengths.bad});
    return {};
}

}  // namespace quorvel::svg
