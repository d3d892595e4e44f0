// What one question to the geometry kernel costs: beside the plain reading of its tables, which it must equal to the
// last bit and beat, and beside lib2geom, which answers the same questions by other means. Run bench_geometry; it
// checks the bits first and ends with the ratios.
#include <benchmark/benchmark.h>

#include <2geom/bezier-curve.h>
#include <2geom/d2.h>
#include <2geom/path.h>
#include <2geom/piecewise.h>
#include <2geom/sbasis-geometric.h>
#include <2geom/sbasis-to-bezier.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/support/plain_bezier.h"

namespace {

using namespace quorvel;

struct Case {
    PathSegment s, t;
    DoublePoint near, anywhere;  // a cursor within two points of the curve; one somewhere on the same sheet
    Geom::CubicBezier curve;
};

BezierBasisTables tables;
std::vector<Case> cases;
constexpr double kOffsetDistance = 10, kTolerance = 2;

bool IsGeneral(const Case& c) {
    ArcCircle circle;
    return !IsStraightSegment(c.s, c.t) && !IsCircularArc(c.s, c.t, &circle.centre, &circle.radius);
}

void MakeCases(int count) {
    std::mt19937 engine(17);
    std::uniform_real_distribution<float> place(0, 300), aside(-kTolerance, kTolerance);
    const auto point = [&] { return RealPoint{place(engine), place(engine)}; };
    while (static_cast<int>(cases.size()) < count) {
        Case c;
        c.s.p = c.s.in = point();
        c.s.out = point();
        c.t.in = point();
        c.t.p = c.t.out = point();
        if (!IsGeneral(c)) continue;
        c.anywhere = ToDoublePoint(point());
        const DoublePoint on = BezierSample(tables, 32, 1 + static_cast<int>(cases.size() % 31), ToDoublePoint(c.s.p),
                                            ToDoublePoint(c.s.out), ToDoublePoint(c.t.in), ToDoublePoint(c.t.p));
        c.near = {on.h + aside(engine), on.v + aside(engine)};
        c.curve =
            Geom::CubicBezier({c.s.p.h, c.s.p.v}, {c.s.out.h, c.s.out.v}, {c.t.in.h, c.t.in.v}, {c.t.p.h, c.t.p.v});
        cases.push_back(c);
    }
}

// Each method answers a case with one number that depends on the whole result. The plain reading sorts out the shape as
// the kernel's functions do.
using Method = double (*)(const Case&);

double PlainDistance(const Case& c, const DoublePoint& p) {
    DoublePoint nearest;
    std::int16_t side = 0;
    if (!IsGeneral(c)) return 0;
    const double distance = plain::DistanceToCurve(tables, c.s, c.t, p, &nearest, &side);
    return distance + nearest.h + nearest.v + side;
}
double KernelDistance(const Case& c, const DoublePoint& p) {
    DoublePoint nearest;
    std::int16_t side = 0;
    const double distance = DistanceToSegment(tables, c.s, c.t, p, &nearest, &side);
    return distance + nearest.h + nearest.v + side;
}
double LibraryDistance(const Case& c, const DoublePoint& p) {
    const Geom::Point point(p.h, p.v);
    return Geom::distance(point, c.curve.pointAt(c.curve.nearestTime(point)));
}
double PlainSnap(const Case& c, const DoublePoint& p) {
    if (!IsGeneral(c)) return 0;
    DoublePoint snapped = ToDoublePoint(ToRealPoint(p));
    const bool hit = plain::SnapToChords(tables, &snapped, c.s, c.t, kTolerance);
    const RealPoint point = ToRealPoint(snapped);
    return hit + point.h + point.v;
}
double KernelSnap(const Case& c, const DoublePoint& p) {
    RealPoint point = ToRealPoint(p);
    const bool hit = SnapPointToCurve(tables, &point, c.s, c.t, kTolerance, kAnyCurve);
    return hit + point.h + point.v;
}
double LibrarySnap(const Case& c, const DoublePoint& p) {
    const Geom::Point point(p.h, p.v), found = c.curve.pointAt(c.curve.nearestTime(point));
    return Geom::distance(point, found) < kTolerance ? found[Geom::X] : point[Geom::X];
}
double PlainLength(const Case& c) { return IsGeneral(c) ? plain::CurveLength(tables, c.s, c.t, nullptr) : 0; }
double KernelLength(const Case& c) { return SegmentLength(tables, c.s, c.t, nullptr); }
double LibraryLength(const Case& c) { return c.curve.length(0.01); }

double SumOf(const SegmentList& list) {
    double sum = list.count;
    for (int i = 0; i < list.count; ++i) {
        const PathSegment& s = list.segments[i];
        sum += s.p.h + s.p.v + s.in.h + s.in.v + s.out.h + s.out.v;
    }
    return sum;
}
double PlainOffset(const Case& c) {
    static SegmentList list;
    const std::vector<DoublePoint> points =
        plain::OffsetCurve(tables, c.s, c.t, nullptr, nullptr, kLeftSide, kOffsetDistance);
    list.count = 0;
    for (std::size_t i = 0; i < points.size(); i += 2) {
        PathSegment& record = list.segments[list.count++];
        record.p = record.in = record.out = ToRealPoint(i + 2 < points.size() ? points[i] : points.back());
    }
    return SumOf(list);
}
double KernelOffset(const Case& c) {
    static SegmentList list;
    OffsetSegment(tables, c.s, c.t, nullptr, nullptr, kLeftSide, kOffsetDistance, &list, 0);
    return SumOf(list);
}
double LibraryOffset(const Case& c) {
    const Geom::Piecewise<Geom::D2<Geom::SBasis>> curve(c.curve.toSBasis());
    const Geom::Piecewise<Geom::D2<Geom::SBasis>> normal = Geom::rot90(Geom::unitVector(Geom::derivative(curve)));
    const Geom::PathVector paths = Geom::path_from_piecewise(curve + normal * kOffsetDistance, 0.2);
    return paths.empty() ? 0 : static_cast<double>(paths[0].size());
}
double PlainFit(const Case& c) {
    static SegmentList list;
    plain::FitCubics(tables, plain::OffsetCurve(tables, c.s, c.t, nullptr, nullptr, kLeftSide, kOffsetDistance), &list);
    return SumOf(list);
}
double KernelFit(const Case& c) {
    static SegmentList list;
    OffsetSegment(tables, c.s, c.t, nullptr, nullptr, kLeftSide, kOffsetDistance, &list, 1);
    return SumOf(list);
}

struct Question {
    const char* name;
    int cases;     // how many are asked in one turn
    double limit;  // the share of the plain reading's time that the kernel may take; 0 for no promise
    Method plain, kernel, library;
};

const Question kQuestions[] = {
    {"DistanceToSegment, near", 2000, 0.5, [](const Case& c) { return PlainDistance(c, c.near); },
     [](const Case& c) { return KernelDistance(c, c.near); }, [](const Case& c) { return LibraryDistance(c, c.near); }},
    {"DistanceToSegment, anywhere", 2000, 0.5, [](const Case& c) { return PlainDistance(c, c.anywhere); },
     [](const Case& c) { return KernelDistance(c, c.anywhere); },
     [](const Case& c) { return LibraryDistance(c, c.anywhere); }},
    {"SegmentLength", 2000, 0.6, PlainLength, KernelLength, LibraryLength},
    {"SnapPointToCurve, near", 2000, 0, [](const Case& c) { return PlainSnap(c, c.near); },
     [](const Case& c) { return KernelSnap(c, c.near); }, [](const Case& c) { return LibrarySnap(c, c.near); }},
    {"SnapPointToCurve, anywhere", 2000, 0, [](const Case& c) { return PlainSnap(c, c.anywhere); },
     [](const Case& c) { return KernelSnap(c, c.anywhere); }, [](const Case& c) { return LibrarySnap(c, c.anywhere); }},
    {"OffsetSegment, polyline", 500, 0, PlainOffset, KernelOffset, LibraryOffset},
    {"OffsetSegment, cubics", 10, 0, PlainFit, KernelFit, LibraryOffset},
};

bool BitsAgree() {
    for (const Question& question : kQuestions) {
        for (int i = 0; i < question.cases; ++i) {
            const double a = question.plain(cases[i]), b = question.kernel(cases[i]);
            if (std::memcmp(&a, &b, sizeof a) == 0) continue;
            std::printf("%s: case %d differs: %a and %a\n", question.name, i, a, b);
            return false;
        }
    }
    return true;
}

void Ask(benchmark::State& state, Method method, int count) {
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < count; ++i) sum += method(cases[i]);
        benchmark::DoNotOptimize(sum);
    }
    state.counters["ns"] = benchmark::Counter(
        static_cast<double>(count) * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Keeps the shortest time of each run: a machine that others use too only ever makes a run longer.
class ShortestTimes : public benchmark::ConsoleReporter {
  public:
    std::map<std::string, double> seconds;

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
            const auto [entry, isNew] = seconds.try_emplace(run.run_name.function_name, time);
            if (!isNew) entry->second = std::min(entry->second, time);
        }
    }
};

// False when a promise is not kept.
bool PrintRatios(std::map<std::string, double>& seconds) {
    bool kept = true;
    std::printf("%-28s %12s %12s %12s %14s %16s\n", "nanoseconds a call", "plain", "kernel", "lib2geom",
                "kernel / plain", "kernel / lib2geom");
    for (const Question& question : kQuestions) {
        const std::string name = question.name;
        const auto time = [&](const char* method) { return seconds[name + '/' + method] / question.cases * 1e9; };
        const double ratio = time("kernel") / time("plain");
        std::printf("%-28s %12.0f %12.0f %12.0f %14.3f %16.3f", question.name, time("plain"), time("kernel"),
                    time("lib2geom"), ratio, time("kernel") / time("lib2geom"));
        if (question.limit > 0) {
            std::printf("   %s, at most %.1f", ratio <= question.limit ? "PASS" : "FAIL", question.limit);
            kept = kept && ratio <= question.limit;
        }
        std::printf("\n");
    }
    return kept;
}

}  // namespace

int main(int argc, char** argv) {
    // The methods take turns, so that a change of the machine's speed meets all of them.
    std::vector<char*> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    BuildBezierBasisTables(&tables);
    MakeCases(2000);
    if (!BitsAgree()) return 1;
    std::printf("The kernel's results are the plain reading's, to the last bit.\n");
    for (const Question& question : kQuestions) {
        const std::pair<const char*, Method> methods[] = {
            {"plain", question.plain}, {"kernel", question.kernel}, {"lib2geom", question.library}};
        for (const auto& [method, ask] : methods)
            benchmark::RegisterBenchmark((std::string(question.name) + '/' + method).c_str(), Ask, ask, question.cases)
                ->Repetitions(12)
                ->MinTime(0.02);
    }
    ShortestTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return PrintRatios(reporter.seconds) ? 0 : 1;
}
