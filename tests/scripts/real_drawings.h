// What tests on drawings of other programs share: where the page's box puts a point of their files, and the scripts
// that measure there.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>
#include <string>

namespace quorvel::tests {

constexpr double kMillimetre = 72 / 25.4;

struct Point {
    double h = 0, v = 0;
};
inline Point operator+(Point a, Point b) { return {a.h + b.h, a.v + b.v}; }
inline Point operator-(Point a, Point b) { return {a.h - b.h, a.v - b.v}; }
inline Point operator*(double s, Point a) { return {s * a.h, s * a.v}; }
inline double dot(Point a, Point b) { return a.h * b.h + a.v * b.v; }
inline double length(Point a) { return std::hypot(a.h, a.v); }
inline Point unit(Point a) { return 1 / length(a) * a; }
inline Point turned(Point a, double degrees) {
    const double angle = degrees * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    return {c * a.h - s * a.v, s * a.h + c * a.v};
}

// Where a page puts a point of its file: the box is fitted into the page, centred.
struct Page {
    const char* file;
    double width, height;        // points
    double boxWidth, boxHeight;  // user units
    double shiftX = 0, shiftY = 0;

    double scale() const { return std::min(width / boxWidth, height / boxHeight); }
    Point at(double x, double y) const {
        const double left = (width - boxWidth * scale()) / 2, top = (height - boxHeight * scale()) / 2;
        return {left + (x + shiftX) * scale(), height - top - (y + shiftY) * scale()};
    }
    std::string open() const { return std::string("open ../shared/drawings/") + file + "\n"; }
};

inline const Page kEndmill{"endmill.svg", 210 * kMillimetre, 297 * kMillimetre, 210, 297.00001, 0.19510138, 82.181594};
inline const Page kTablet{"intuos-pro-s.svg", 240, 156, 320, 208};  // pixels of 0.75 points
inline const Page kSheet{"A4_Landscape_ISO7200_Pep.svg", 297 * kMillimetre, 210 * kMillimetre, 297, 210};
inline const Page kTutorial{"tutorial-shapes.ja.svg", 255, 255, 340, 340};  // pixels; most of it lies below the page

// Ends of the endmill's straight lines.
inline const Point kHeightTop = kEndmill.at(131.26491, 22.267499), kHeightBottom = kEndmill.at(131.26491, 170.59241);
inline const Point kShankLeft = kEndmill.at(57.313954, -48.540717), kShankRight = kEndmill.at(116.35772, -48.540717);
inline const Point kUpperMark = kEndmill.at(114.72832 + 24.62222, 19.499193);
inline const Point kWidthMiddle = kEndmill.at(90, 179.67926);

inline std::string where(Point p) {
    std::ostringstream out;
    out.precision(9);
    out << ' ' << p.h << ' ' << p.v;
    return out.str();
}

// From a point to another and on to where the dimension stands, with the cursor a little off both points.
inline std::string measure(Point from, Point to, Point place) {
    return "track" + where(from + Point{0.6, -0.7}) + "\ndown\ndrag" + where(to + Point{-0.5, 0.8}) + "\nup\ntrack" +
           where(place) + "\ndown\n";
}

struct Language {
    const char *word, *straight, *straightUndo;
};
inline constexpr Language kLanguages[] = {
    {"ENGLISH", "Straight Dimension Tool", "undo \"Undo Straight Dimension Tool\""},
    {"JAPANESE", "寸法線ツール", "undo \"寸法線の取り消し\""}};

inline std::string speaking(const char* language, const std::string& more = "") {
    return std::string("set language ") + language + "\nset flArFName \"DejaVu Sans\"\nset flScFix 2\n" + more;
}
inline std::string taking(const char* tool) { return std::string("tool \"") + tool + "\"\n"; }

inline constexpr double kPlace = 2e-3;  // points: files hold six to eight digits, art holds floats

#define NEEDS_DRAWING(page) \
    if (sharedDrawing((page).file).empty()) GTEST_SKIP() << (page).file << " is not here"

}  // namespace quorvel::tests
