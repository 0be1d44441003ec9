// SPDX-License-Identifier: MIT
#include "overlay/IslandChoreography.h"

#include "overlay/Animations.h"
#include "overlay/OverlayModel.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kivo {
namespace {

constexpr double contentWait = 0.09; // seconds after the island began to grow
constexpr double fillWait = 0.06;
constexpr double wrapWait = 0.45;
constexpr double shortestWrap = 0.3;
constexpr double shakeWait = 0.38;
constexpr double shrinkWait = 0.08; // after the content began to go
constexpr double narrowWait = 0.05;

} // namespace

IslandChoreography::IslandChoreography(MainLoop& loop, OverlayModel& model, Workspace& workspace)
    : loop_(loop),
      model_(model),
      workspace_(workspace),
      seenToken_(model.token.get()),
      wasPresented_(model.isPresented.get()),
      run_(loop) {
    metricsChange_ = model.metrics.onChange([this] {
        motion_.moveTo(model_.metrics.get());
        // Where nothing is out, they come with the next island.
        if (model_.isPresented.get() || isMoving(loop_.now()))
            changes_.notify();
    });
    tokenChange_ = model.token.onChange([this] { modelChanged(); });
    presentedChange_ = model.isPresented.onChange([this] { modelChanged(); });
}

std::optional<IslandFrame> IslandChoreography::frame(Duration at) const {
    return motion_.frame(at, workspace_.reduceMotion());
}

// A token that comes while the island is not presented counts once it is: the model writes it first.
void IslandChoreography::modelChanged() {
    const bool isPresented = model_.isPresented.get();
    const bool wasPresented = std::exchange(wasPresented_, isPresented);
    if (isPresented && model_.token.get() != seenToken_) {
        seenToken_ = model_.token.get();
        appear();
    } else if (wasPresented && !isPresented) {
        leave();
    }
}

void IslandChoreography::appear() {
    run_.cancel();
    const std::optional<IslandContent>& content = model_.content.get();
    if (!content)
        return;
    const Duration now = loop_.now();
    const bool isRetarget = model_.isRetarget.get();
    const bool reduces = workspace_.reduceMotion();
    motion_.show({*content, seenToken_, model_.metrics.get(), isRetarget, reduces}, now);
    if (reduces) {
        motion_.setWide(true, Manner::fading, now);
        motion_.setTall(true, Manner::fading, now);
        motion_.setShowsContent(true, Manner::fading, now);
        motion_.setRingProgress(content->progress, animations::fade, now);
    } else {
        growAndFill(*content, isRetarget, now);
    }
    changes_.notify();
}

void IslandChoreography::growAndFill(const IslandContent& content, bool isRetarget, Duration now) {
    if (!isRetarget) {
        motion_.setWide(false, Manner::atOnce, now);
        motion_.setTall(false, Manner::atOnce, now);
        motion_.setShowsContent(false, Manner::atOnce, now);
        motion_.setRingProgress(content.progress, std::nullopt, now);
    }
    motion_.setWide(true, Manner::moving, now);
    motion_.setTall(true, Manner::moving, now);

    const bool shakes = content.isUrgent && !isRetarget;
    const auto runRing = [this](double progress, const Animation& animation) {
        motion_.setRingProgress(progress, animation, loop_.now());
        changes_.notify();
    };
    std::vector<Sequence::Step> steps{
        {seconds(contentWait), [this, shakes] { revealContent(shakes); }},
        {seconds(fillWait), [runRing, level = content.progress] { runRing(level, animations::ringFill); }},
    };
    if (content.isCharging) {
        // The ring runs full just as the island leaves.
        const double rest = inSeconds(content.dwell) - (contentWait + fillWait + wrapWait);
        const auto wrap = Animation::linear(std::max(rest, shortestWrap));
        steps.push_back({seconds(wrapWait), [runRing, wrap] { runRing(1, wrap); }});
    }
    run_.start(std::move(steps));
}

void IslandChoreography::revealContent(bool shakes) {
    motion_.setShowsContent(true, Manner::moving, loop_.now());
    if (shakes) {
        // A wait of its own: a run that is cancelled meanwhile does not take the shake along.
        shakeWait_ = loop_.after(seconds(shakeWait), [this] {
            motion_.shake(loop_.now());
            changes_.notify();
        });
    }
    changes_.notify();
}

void IslandChoreography::leave() {
    run_.cancel();
    const Duration now = loop_.now();
    if (workspace_.reduceMotion()) {
        motion_.setTall(false, Manner::fading, now);
        motion_.setWide(false, Manner::fading, now);
        motion_.setShowsContent(false, Manner::fading, now);
    } else {
        motion_.setShowsContent(false, Manner::moving, now);
        const auto fold = [this](void (IslandMotion::*side)(bool, Manner, Duration)) {
            (motion_.*side)(false, Manner::moving, loop_.now());
            changes_.notify();
        };
        run_.start({{seconds(shrinkWait), [fold] { fold(&IslandMotion::setTall); }},
                    {seconds(narrowWait), [fold] { fold(&IslandMotion::setWide); }}});
    }
    changes_.notify();
}

} // namespace kivo
