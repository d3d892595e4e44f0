// What the panel's read-outs cost while nobody touches the drawing: one tick of the timer with a hundred thousand paths
// selected must stay under 5 milliseconds. Run bench_read_outs.
#include <cstdio>

#include "bench/mixed_drawing.h"
#include "bench/plugin_run.h"

namespace {

using namespace quorvel;
using namespace quorvel::bench;

constexpr int kPaths = 100'000;
constexpr int kTicks = 51;
constexpr std::int32_t kLengthField = 10, kAreaField = 30;

double tickSeconds(PluginRun& run) {
    return secondsOf([&] {
        if (run.host().tick() != kNoErr) throw std::runtime_error("a tick failed");
    });
}

std::string panelText(PluginRun& run, std::int32_t field) {
    std::string text;
    if (!run.user().panelText(field, &text) || text.empty()) throw std::runtime_error("a read-out is empty");
    return text;
}

void selectAll(PluginRun& run, const std::vector<doc::ArtId>& paths) {
    const bool done = run.host().edit("Select", [&](doc::Document& document) {
        for (const doc::ArtId path : paths) document.setSelected(path, true);
        return true;
    });
    if (!done) throw std::runtime_error("the paths cannot be selected");
}

}  // namespace

int main() {
    PluginRun run({});
    MixedDrawing drawing(kPaths);
    run.open(drawing.take());
    selectAll(run, drawing.paths());
    const double first = tickSeconds(run);
    const std::string length = panelText(run, kLengthField), area = panelText(run, kAreaField);
    std::vector<double> ticks;
    for (int i = 0; i < kTicks; ++i) ticks.push_back(tickSeconds(run));
    if (panelText(run, kLengthField) != length || panelText(run, kAreaField) != area) {
        std::printf("FAIL  the read-outs have changed under an unchanged selection\n");
        return 1;
    }
    std::printf("%d selected paths: %s, %s; the first tick %.1f ms\n", kPaths, length.c_str(), area.c_str(),
                first * 1e3);
    Promises promises;
    promises.check("an unchanged selection, milliseconds a tick", middleOf(ticks) * 1e3, 5);
    return promises.exitCode();
}
