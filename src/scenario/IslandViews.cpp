// SPDX-License-Identifier: MIT
#include "overlay/IslandDemo.h"
#include "overlay/IslandRing.h"
#include "overlay/IslandShape.h"
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "support/VirtualLoop.h"

namespace kivo {
namespace {

// Chords stay well within the twentieth of a point that readers may rely on.
constexpr double flatness = 0.02;

PropertyValue islandView(ScenarioRun& run) {
    const IslandChoreography& island = run.application()->island;
    const auto frame = island.frame(run.machine().loop().now());
    if (!frame)
        return {};
    PropertyValue glow;
    if (frame->glow)
        glow = Dictionary{{"visibility", frame->glow->visibility}, {"brightness", frame->glow->brightness}};
    return Dictionary{{"isWide", island.phase().isWide},
                      {"isTall", island.phase().isTall},
                      {"showsContent", island.showsContent()},
                      {"frame", record(frame->frame)},
                      {"topRadius", frame->body.topRadius},
                      {"bottomRadius", frame->body.bottomRadius},
                      {"ringProgress", frame->ringProgress},
                      {"bodyOpacity", frame->bodyOpacity},
                      {"contentOpacity", frame->title.opacity},
                      {"nudge", frame->nudge},
                      {"glow", glow}};
}

// The demo runs for as long as its page shows, which no page does here: it is run on a time of its own, from
// the launch until now.
PropertyValue demoView(ScenarioRun& run) {
    VirtualLoop loop;
    IslandDemo demo(loop, run.machine().workspace());
    demo.start();
    loop.advanceTo(run.machine().loop().now() - run.application()->launchedAt);
    const IslandFrame frame = demo.frame(loop.now());
    return Dictionary{{"isWide", demo.phase().isWide},       {"isTall", demo.phase().isTall},
                      {"showsContent", demo.showsContent()}, {"ringProgress", frame.ringProgress},
                      {"frame", record(frame.frame)},        {"content", record(demo.content())}};
}

PropertyValue outline(const Path& path) {
    Array subpaths;
    for (const Path::Polyline& line : path.flattened(flatness)) {
        Array points;
        for (const Point& point : line.points)
            points.push_back(record(point));
        subpaths.push_back(std::move(points));
    }
    return Dictionary{
        {"subpaths", std::move(subpaths)}, {"closed", path.isClosed()}, {"totalLength", path.length()}};
}

ViewTable::View readShape(RecordReader& options) {
    const std::string kind = options.requireString("kind");
    const auto sides = reading::numbers(options.require("rect"), options.path("rect"), 4);
    const Rect rect{sides[0], sides[1], sides[2], sides[3]};
    const double top = options.optionalNumber("topRadius").value_or(0);
    const double bottom = options.optionalNumber("bottomRadius").value_or(0);
    const IslandRing ring{top, bottom, options.optionalNumber("attachedTopInset").value_or(0)};
    const double head = options.optionalNumber("head").value_or(0);
    const double length = options.optionalNumber("length").value_or(0);
    Path path;
    if (kind == "body")
        path = IslandShape{top, bottom}.path(rect);
    else if (kind == "ring")
        path = ring.path(rect);
    else if (kind == "segment")
        path = RingSegment{ring, head, length}.path(rect);
    else
        throw DecodingError(options.path("kind") + ": expected body, ring or segment, found \"" + kind + "\"");
    return [record = outline(path)](ScenarioRun&) { return record; };
}

} // namespace

void addIslandViews(ViewTable& views) {
    views.addPlain("island", islandView);
    views.addPlain("demo", demoView);
    views.add("shape", readShape);
}

} // namespace kivo
