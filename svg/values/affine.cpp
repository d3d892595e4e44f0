// Transforms as SVG writes them.
#include "svg/values/affine.h"
#include "svg/values/number.h"

#include <array>
#include <cmath>
#include <numbers>

namespace quorvel::svg {

bool Affine::finite() const {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c) && std::isfinite(d) && std::isfinite(e) &&
           std::isfinite(f);
}

Affine compose(const Affine& outer, const Affine& inner) {
    return {outer.a * inner.a + outer.c * inner.b,           outer.b * inner.a + outer.d * inner.b,
            outer.a * inner.c + outer.c * inner.d,           outer.b * inner.c + outer.d * inner.d,
            outer.a * inner.e + outer.c * inner.f + outer.e, outer.b * inner.e + outer.d * inner.f + outer.f};
}

bool invert(const Affine& map, Affine* inverse) {
    const double det = map.determinant();
    if (!(std::abs(det) > 1e-300) || !map.finite()) return false;
    Affine result{map.d / det, -map.b / det, -map.c / det, map.a / det, 0, 0};
    result.e = -(result.a * map.e + result.c * map.f);
    result.f = -(result.b * map.e + result.d * map.f);
    if (!result.finite()) return false;
    *inverse = result;
    return true;
}

namespace {

struct TransformName {
    std::string_view name;
    int least, most;
    Affine (*make)(const double* values, int count);
};

double radians(double degrees) { return degrees * std::numbers::pi / 180; }

// Quarter turns are exact, so that a drawing turned by 90 degrees keeps straight lines straight.
Affine rotation(double degrees) {
    const double turn = std::fmod(degrees, 360);
    if (turn == 0) return {};
    if (turn == 90 || turn == -270) return {0, 1, -1, 0, 0, 0};
    if (turn == 180 || turn == -180) return {-1, 0, 0, -1, 0, 0};
    if (turn == 270 || turn == -90) return {0, -1, 1, 0, 0, 0};
    const double s = std::sin(radians(degrees));
    const double c = std::cos(radians(degrees));
    return {c, s, -s, c, 0, 0};
}

constexpr TransformName kTransforms[] = {
    {"matrix", 6, 6, [](const double* v, int) { return Affine{v[0], v[1], v[2], v[3], v[4], v[5]}; }},
    {"translate", 1, 2, [](const double* v, int n) { return Affine{1, 0, 0, 1, v[0], n > 1 ? v[1] : 0}; }},
    {"scale", 1, 2, [](const double* v, int n) { return Affine{v[0], 0, 0, n > 1 ? v[1] : v[0], 0, 0}; }},
    {"rotate", 1, 3,
     [](const double* v, int n) {
         const Affine turn = rotation(v[0]);
         if (n < 3) return turn;
         return compose(compose(Affine{1, 0, 0, 1, v[1], v[2]}, turn), Affine{1, 0, 0, 1, -v[1], -v[2]});
     }},
    {"skewX", 1, 1, [](const double* v, int) { return Affine{1, 0, std::tan(radians(v[0])), 1, 0, 0}; }},
    {"skewY", 1, 1, [](const double* v, int) { return Affine{1, std::tan(radians(v[0])), 0, 1, 0, 0}; }},
};

const TransformName* findTransform(std::string_view name) {
    for (const TransformName& row : kTransforms) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

bool readArguments(const char** at, const char* end, std::array<double, 6>* values, int* count) {
    skipBlanks(at, end);
    if (*at == end || *(*at)++ != '(') return false;
    skipBlanks(at, end);
    for (*count = 0; *at != end && **at != ')'; ++*count) {
        if (*count == 6 || !readNumber(at, end, &(*values)[static_cast<std::size_t>(*count)])) return false;
        skipSeparator(at, end);
    }
    if (*at == end) return false;
    ++*at;
    return true;
}

}  // namespace

bool parseTransform(std::string_view text, Affine* map) {
    const char* at = text.data();
    const char* end = at + text.size();
    Affine result;
    skipBlanks(&at, end);
    if (std::string_view(at, static_cast<std::size_t>(end - at)).starts_with("none")) {
        *map = result;
        return true;
    }
    while (at != end) {
        const char* name = at;
        while (at != end && ((*at >= 'a' && *at <= 'z') || *at == 'X' || *at == 'Y')) ++at;
        const TransformName* row = findTransform({name, static_cast<std::size_t>(at - name)});
        std::array<double, 6> values{};
        int count = 0;
        if (!row || !readArguments(&at, end, &values, &count)) return false;
        if (count < row->least || count > row->most || (row->most == 3 && count == 2)) return false;
        result = compose(result, row->make(values.data(), count));
        skipSeparator(&at, end);
    }
    if (!result.finite()) return false;
    *map = result;
    return true;
}

LocalPoint localPoint(const Affine& map, const Affine& inverse, RealPoint target) {
    const double x = inverse.x(target.h, target.v);
    const double y = inverse.y(target.h, target.v);
    const auto reaches = [&](double px, double py) {
        const RealPoint got = map.point(px, py);
        return got.h == target.h && got.v == target.v;
    };
    if (map.b == 0 && map.c == 0) {
        return {fewestDecimals(x, [&](double q) { return map.point(q, y).h == target.h; }),
                fewestDecimals(y, [&](double q) { return map.point(x, q).v == target.v; })};
    }
    if (map.a == 0 && map.d == 0) {
        return {fewestDecimals(x, [&](double q) { return map.point(q, y).v == target.v; }),
                fewestDecimals(y, [&](double q) { return map.point(x, q).h == target.h; })};
    }
    // Both coordinates move both numbers: round them together.
    for (double power = 1; power <= 1e15; power *= 10) {
        const double qx = std::nearbyint(x * power) / power + 0.0;
        const double qy = std::nearbyint(y * power) / power + 0.0;
        if (std::abs(qx * power) < 9007199254740992.0 && std::abs(qy * power) < 9007199254740992.0 && reaches(qx, qy))
            return {qx, qy};
    }
    return {x, y};
}

double localLength(double scale, float target) {
    if (!(scale > 0)) return target;
    return fewestDecimals(target / scale, [&](double q) { return static_cast<float>(q * scale) == target; });
}

}  // namespace quorvel::svg
