// What one movement of the cursor costs: whole Track Cursor messages through the plug-in's entry, all searches on, with
// the host's index and without it, on drawings of a thousand to a million paths. Both must find the same. Run
// bench_snap_event; it takes about a minute.
#include <bit>
#include <cstdio>
#include <random>

#include "bench/mixed_drawing.h"
#include "bench/plugin_run.h"

namespace {

using namespace quorvel;
using namespace quorvel::bench;

constexpr int kSizes[] = {1000, 10'000, 100'000, 1'000'000};
constexpr int kTurns = 3;
constexpr int kIndexedEvents = 4000;
constexpr char kTool[] = "Oblique Dimension Tool";

int walkedEvents(int paths) { return std::clamp(10'000'000 / paths, 10, 400); }

// Within four points of an anchor or of the middle between two: some cursors hit, others run every search in vain.
std::vector<RealPoint> cursorsNear(const doc::Document& document, const std::vector<doc::ArtId>& paths, int count) {
    std::mt19937_64 random(7);
    const auto aside = [&random] { return static_cast<float>(static_cast<double>(random() >> 11) * 0x1p-50 - 4); };
    std::vector<RealPoint> cursors;
    for (int i = 0; i < count; ++i) {
        const std::vector<PathSegment>& segments = document.find(paths[random() % paths.size()])->path->segments;
        const RealPoint a = segments[random() % segments.size()].p, b = segments[random() % segments.size()].p;
        cursors.push_back({(a.h + b.h) / 2 + aside(), (a.v + b.v) / 2 + aside()});
    }
    return cursors;
}

// All that can be seen of one event from outside the plug-in.
struct Observation {
    std::vector<std::uint64_t> seen;
    bool onArt = false;
};

Observation observe(PluginRun& run, RealPoint cursor) {
    const std::unique_ptr<QuorvelSnapMessage> report = run.host().snapReport(run.tool(kTool), cursor);
    if (report == nullptr) throw std::runtime_error("the plug-in gives no report");
    Observation observation{{static_cast<std::uint64_t>(run.user().lastCursor())}};
    const auto add = [&observation](auto value) { observation.seen.push_back(static_cast<std::uint64_t>(value)); };
    for (int i = 0; i < report->rowCount; ++i) {
        const QuorvelSnapRow& row = report->rows[i];
        add(row.kind);
        add(row.wins);
        add(std::bit_cast<std::uint32_t>(row.point.h));
        add(std::bit_cast<std::uint32_t>(row.point.v));
        for (int cell = 0; cell < row.cellCount; ++cell) {
            add(run.host().artOfHandle(row.arts[cell]));
            add(row.indices[cell]);
        }
        observation.onArt = observation.onArt || (row.wins && row.cellCount > 0);
    }
    return observation;
}

struct RoadResult {
    double secondsPerEvent = 0;
    double firstEvent = 0;
    std::vector<Observation> observations;  // of the first events
};

void track(PluginRun& run, RealPoint cursor) {
    if (run.host().sendTool(kSelectorTrackCursor, cursor, 0) != kNoErr) throw std::runtime_error("an event failed");
}

RoadResult measure(int paths, bool artQuery) {
    RoadResult result;
    PluginRun run({artQuery, {{"flUseGrid", "1"}, {"flUseFcnt", "1"}}});
    MixedDrawing drawing(paths);
    run.open(drawing.take());
    run.host().selectTool(run.tool(kTool));
    const int compared = walkedEvents(paths);
    const std::vector<RealPoint> cursors =
        cursorsNear(run.document(), drawing.paths(), artQuery ? kIndexedEvents : compared);
    // The first event meets bounds that nobody has asked for yet, and an index that is still empty.
    result.firstEvent = secondsOf([&] { track(run, {-100, -100}); });
    const double seconds = secondsOf([&] {
        for (const RealPoint& cursor : cursors) track(run, cursor);
    });
    result.secondsPerEvent = seconds / static_cast<double>(cursors.size());
    run.user().takeTranscript();
    // A cursor that stands still is not searched for again.
    track(run, {-100, -100});
    for (int i = 0; i < compared; ++i) {
        const RealPoint cursor = cursors[static_cast<std::size_t>(i)];
        track(run, cursor);
        result.observations.push_back(observe(run, cursor));
    }
    return result;
}

bool sameFound(int paths, const RoadResult& indexed, const RoadResult& walked) {
    for (std::size_t i = 0; i < walked.observations.size(); ++i) {
        if (indexed.observations[i].seen == walked.observations[i].seen) continue;
        std::printf("FAIL  with %d paths the two variants differ at cursor %zu\n", paths, i);
        return false;
    }
    return true;
}

std::ptrdiff_t hits(const RoadResult& result) {
    return std::count_if(result.observations.begin(), result.observations.end(),
                         [](const Observation& observation) { return observation.onArt; });
}

}  // namespace

int main() {
    Promises promises;
    std::vector<double> indexedToWalked, growth;
    std::printf("%10s %22s %22s %14s %26s\n", "paths", "indexed, us an event", "walked, us an event", "ratio",
                "first event (index), ms");
    for (int turn = 0; turn < kTurns; ++turn) {
        double before = 0;
        for (const int paths : kSizes) {
            const RoadResult indexed = measure(paths, true), walked = measure(paths, false);
            if (!sameFound(paths, indexed, walked)) return 1;
            const double ratio = indexed.secondsPerEvent / walked.secondsPerEvent;
            std::printf("%10d %22.1f %22.1f %14.6f %26.1f   (%td of %zu compared cursors on art)\n", paths,
                        indexed.secondsPerEvent * 1e6, walked.secondsPerEvent * 1e6, ratio, indexed.firstEvent * 1e3,
                        hits(indexed), indexed.observations.size());
            if (paths == 100'000) indexedToWalked.push_back(ratio);
            if (paths == 1'000'000) growth.push_back(indexed.secondsPerEvent / before);
            before = indexed.secondsPerEvent;
        }
    }
    std::printf("Both variants found the same at every compared cursor.\n");
    promises.check("indexed / walked, 100000 paths", middleOf(indexedToWalked), 1.0 / 300);
    promises.check("indexed, 1000000 paths / 100000 paths", middleOf(growth), 2);
    return promises.exitCode();
}
