// What it costs to make all dimensions of a drawing true again: the recalculation by action, with the host's index and
// without it, of a thousand and ten thousand dimensions in drawings of ten and a hundred thousand arts. Both must
// leave the same drawing. The walked variant rebuilds a selected tenth of the dimensions, which is then scaled. Run
// bench_recalculate; it takes about five minutes, nearly all of them in the walked variant.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/mixed_drawing.h"
#include "bench/plugin_run.h"
#include "hostapi/records.h"

namespace {

using namespace quorvel;
using namespace quorvel::bench;

constexpr int kTurns = 3, kPasses = 5;
constexpr int kShare = 10;  // the walked variant rebuilds one dimension in so many
constexpr const char* kTools[] = {"Oblique Dimension Tool", "Straight Dimension Tool"};

// --- drawings with dimensions ---------------------------------------------------------------------------------------

void send(host::Host& host, const char* selector, RealPoint cursor) {
    if (host.sendTool(selector, cursor, 0) != kNoErr) throw std::runtime_error("an event failed");
}

// Moves the cursor from anchor to anchor and aside. False when the tool beeps, since the two snap to one point.
bool drawDimension(PluginRun& run, RealPoint from, RealPoint to) {
    host::Host& host = run.host();
    const std::size_t before = run.document().artCount();
    const RealPoint aside{(from.h + to.h) / 2 + (from.v - to.v) / 2, (from.v + to.v) / 2 + (to.h - from.h) / 2};
    send(host, kSelectorTrackCursor, from);
    send(host, kSelectorMouseDown, from);
    send(host, kSelectorMouseDrag, to);
    send(host, kSelectorMouseUp, to);
    send(host, kSelectorTrackCursor, aside);
    send(host, kSelectorMouseDown, aside);
    send(host, kSelectorMouseUp, aside);
    return run.document().artCount() > before;
}

// Each measures from one anchor of a path to the next, path after path, the first half of them by the one tool.
void drawDimensions(PluginRun& run, const std::vector<doc::ArtId>& paths, int count) {
    constexpr std::size_t kStride = 7919;  // a prime: neighbours in the tree are not measured one after the other
    int drawn = 0;
    for (const char* tool : kTools) {
        run.host().selectTool(run.tool(tool));
        const int end = tool == kTools[0] ? count / 2 : count;
        for (std::size_t i = 0; drawn < end && i < 2 * paths.size(); ++i) {
            const doc::ArtId path = paths[i * kStride % paths.size()];
            const std::vector<PathSegment>& segments = run.document().find(path)->path->segments;
            const std::size_t anchor = i / paths.size();
            if (drawDimension(run, segments[anchor].p, segments[(anchor + 1) % segments.size()].p)) ++drawn;
        }
        run.user().takeTranscript();
    }
    if (drawn < count) throw std::runtime_error("there is no room for so many dimensions");
}

void copyArt(const doc::Document& from, doc::ArtId art, doc::Document& to, doc::ArtId copy,
             std::map<doc::ArtId, doc::ArtId>* copies) {
    const doc::Art& original = *from.find(art);
    doc::Art& made = to.loading(copy);
    made.selected = original.selected;
    if (original.path) *made.path = *original.path;
    if (original.text) *made.text = *original.text;
    made.tags = original.tags;
    made.name = original.name;
    (*copies)[art] = copy;
    for (doc::ArtId child = original.lastChild; child != 0; child = from.find(child)->above)
        copyArt(from, child, to, to.loadArt(from.find(child)->kind, copy), copies);
}

// The same drawing for another host, as if it had been saved and opened again.
std::unique_ptr<doc::Document> copyOf(const doc::Document& original) {
    auto copy = std::make_unique<doc::Document>(original.width(), original.height());
    std::map<doc::ArtId, doc::ArtId> copies;
    for (std::size_t i = original.layers().size(); i-- > 0;) {
        const doc::Layer& layer = *original.layer(original.layers()[i]);
        const doc::LayerId made = copy->loadLayer(layer.title);
        copyArt(original, layer.root, *copy, copy->layer(made)->root, &copies);
    }
    copy->finishLoading();
    return copy;
}

std::unique_ptr<doc::Document> dimensionedDrawing(int arts, int dimensions) {
    PluginRun run({.artQuery = true, .settings = {{"flUseFcrs", "0"}, {"flUseFops", "0"}}});
    MixedDrawing drawing(arts);
    run.open(drawing.take());
    drawDimensions(run, drawing.paths(), dimensions);
    return copyOf(run.document());
}

// --- passes ---------------------------------------------------------------------------------------------------------

void visitArt(const doc::Document& document, const std::function<void(const doc::Art&)>& visit) {
    for (const doc::LayerId layer : document.layers()) {
        const doc::ArtId root = document.layer(layer)->root;
        for (const doc::Art* art = document.find(root); art != nullptr;) {
            visit(*art);
            doc::ArtId next = art->firstChild;
            while (next == 0 && art->id != root) {
                next = art->below;
                if (next == 0) art = document.find(art->parent);
            }
            art = next != 0 ? document.find(next) : nullptr;
        }
    }
}

std::vector<doc::ArtId> dimensionsOf(const doc::Document& document) {
    std::vector<doc::ArtId> groups;
    visitArt(document, [&](const doc::Art& art) {
        if (document.tag(art.id, kToolConfigTag) != nullptr) groups.push_back(art.id);
    });
    return groups;
}

// What a pass leaves, each art as one text.
std::vector<std::string> portrait(const doc::Document& document) {
    std::vector<std::string> all;
    visitArt(document, [&](const doc::Art& art) {
        std::string text = std::to_string(art.kind) + art.name;
        const auto add = [&text](const auto& value) {
            text.append(reinterpret_cast<const char*>(&value), sizeof value);
        };
        if (art.path) {
            for (const PathSegment& s : art.path->segments) {
                for (const RealPoint& point : {s.p, s.in, s.out}) add(point);
                add(s.corner);
            }
        }
        if (art.text) {
            for (const char16_t unit : art.text->text) add(unit);
            add(art.text->matrix);
        }
        for (const doc::Tag& tag : art.tags) text += tag.name + '=' + tag.value + '\n';
        all.push_back(std::move(text));
    });
    return all;
}

double passSeconds(PluginRun& run) {
    const std::uint64_t before = run.document().changeCount();
    const double seconds = secondsOf([&] {
        if (run.host().playAction(kRecalculateAction) != kNoErr) throw std::runtime_error("the action failed");
    });
    if (run.document().changeCount() == before) throw std::runtime_error("the pass has changed nothing");
    return seconds;
}

// The shortest of some passes over all dimensions, each undone again: what others do on the machine only ever makes a
// pass longer.
double timeWhole(const doc::Document& drawing) {
    PluginRun run({.artQuery = true});
    run.open(copyOf(drawing));
    std::vector<double> seconds;
    for (int pass = 0; pass < kPasses; ++pass) {
        seconds.push_back(passSeconds(run));
        if (pass + 1 < kPasses && !run.host().undo()) throw std::runtime_error("the pass cannot be undone");
    }
    return *std::min_element(seconds.begin(), seconds.end());
}

struct Share {
    double seconds = 0;
    std::vector<std::string> left;
};

Share timeShare(const doc::Document& drawing, bool artQuery) {
    PluginRun run({.artQuery = artQuery});
    run.open(copyOf(drawing));
    const std::vector<doc::ArtId> groups = dimensionsOf(run.document());
    const bool chosen = run.host().edit("Select", [&](doc::Document& document) {
        for (std::size_t i = 0; i < groups.size(); i += kShare) document.setSelected(groups[i], true);
        return true;
    });
    if (!chosen) throw std::runtime_error("the dimensions cannot be selected");
    Share share;
    share.seconds = passSeconds(run);
    share.left = portrait(run.document());
    return share;
}

bool sameLeft(const Share& indexed, const Share& walked) {
    if (indexed.left == walked.left) return true;
    std::size_t i = 0;
    while (i < indexed.left.size() && i < walked.left.size() && indexed.left[i] == walked.left[i]) ++i;
    std::printf("FAIL  the two variants leave different drawings, first at art %zu of %zu and %zu\n", i,
                indexed.left.size(), walked.left.size());
    return false;
}

}  // namespace

int main() {
    constexpr int kArts[] = {10'000, 100'000}, kFew = 1000, kMany = 10'000;
    Promises promises;
    std::vector<std::pair<std::string, double>> growths;
    double ratio = 0;
    std::printf("%10s %12s %16s %28s %12s\n", "arts", "dimensions", "indexed, ms", "walked, ms (10 x a tenth)",
                "ratio");
    for (const int arts : kArts) {
        const std::unique_ptr<doc::Document> few = dimensionedDrawing(arts, kFew),
                                             many = dimensionedDrawing(arts, kMany);
        std::vector<double> fewTimes, manyTimes, growth;
        for (int turn = 0; turn < kTurns; ++turn) {
            fewTimes.push_back(timeWhole(*few));
            manyTimes.push_back(timeWhole(*many));
            growth.push_back(manyTimes.back() / fewTimes.back());
        }
        growths.emplace_back("indexed, 10000 dimensions / 1000, in " + std::to_string(arts) + " arts",
                             middleOf(growth));
        for (const bool isMany : {false, true}) {
            const doc::Document& drawing = isMany ? *many : *few;
            const Share byIndex = timeShare(drawing, true), byWalk = timeShare(drawing, false);
            if (!sameLeft(byIndex, byWalk)) return 1;
            const double indexed = middleOf(isMany ? manyTimes : fewTimes), walked = byWalk.seconds * kShare;
            ratio = indexed / walked;
            std::printf("%10d %12d %16.1f %28.0f %12.6f\n", arts, isMany ? kMany : kFew, indexed * 1e3, walked * 1e3,
                        ratio);
            std::fflush(stdout);
        }
    }
    std::printf("Both variants left the same drawings.\n");
    promises.check("indexed / walked, 10000 dimensions in 100000 arts", ratio, 0.01);
    for (const auto& [what, growth] : growths) promises.check(what, growth, 12);
    return promises.exitCode();
}
