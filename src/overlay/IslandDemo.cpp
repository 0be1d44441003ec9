// SPDX-License-Identifier: MIT
#include "overlay/IslandDemo.h"

#include "overlay/Animations.h"
#include "platform/Workspace.h"

namespace kivo {
namespace {

constexpr double level = 0.64;

const IslandMetrics metrics{demoScene::size, demoScene::notch.width, demoScene::menuBar.height};

IslandContent sampleContent() {
    AlertRule rule;
    rule.trigger = {AlertTrigger::Kind::pluggedIn};
    BatterySnapshot snapshot;
    snapshot.level = 64;
    snapshot.source = BatterySnapshot::PowerSource::ac;
    snapshot.isCharging = true;
    snapshot.minutesToFull = 52;
    return islandContent(FiredAlert{rule, snapshot});
}

} // namespace

IslandDemo::IslandDemo(MainLoop& loop, Workspace& workspace)
    : loop_(loop), workspace_(workspace), content_(sampleContent()), run_(loop) {
    motion_.show({content_, 0, metrics, false, true}, loop.now());
    motion_.setRingProgress(level, std::nullopt, loop.now());
}

IslandFrame IslandDemo::frame(Duration at) const {
    return *motion_.frame(at, isStill_);
}

void IslandDemo::start() {
    const Duration now = loop_.now();
    motion_.setTall(false, Manner::atOnce, now);
    motion_.setWide(false, Manner::atOnce, now);
    motion_.setShowsContent(false, Manner::atOnce, now);
    begin();
}

void IslandDemo::stop() {
    run_.cancel();
}

void IslandDemo::begin() {
    isStill_ = workspace_.reduceMotion();
    if (isStill_) {
        standStill();
        return;
    }
    motion_.setRingProgress(level, std::nullopt, loop_.now());
    const auto step = [this](Duration wait, void (*change)(IslandMotion&, Duration)) {
        return Sequence::Step{wait, [this, change] { this->step(change); }};
    };
    run_.start({
        step(seconds(0.5),
             [](IslandMotion& motion, Duration now) {
                 motion.setWide(true, Manner::moving, now);
                 motion.setTall(true, Manner::moving, now);
             }),
        step(seconds(0.09),
             [](IslandMotion& motion, Duration now) { motion.setShowsContent(true, Manner::moving, now); }),
        step(seconds(0.4), [](IslandMotion& motion,
                              Duration now) { motion.setRingProgress(1, Animation::linear(2.2), now); }),
        step(seconds(2.4),
             [](IslandMotion& motion, Duration now) { motion.setShowsContent(false, Manner::moving, now); }),
        step(seconds(0.08),
             [](IslandMotion& motion, Duration now) { motion.setTall(false, Manner::moving, now); }),
        step(seconds(0.05),
             [](IslandMotion& motion, Duration now) { motion.setWide(false, Manner::moving, now); }),
        {seconds(1.1), [this] { begin(); }},
    });
    changes_.notify();
}

void IslandDemo::standStill() {
    run_.cancel();
    const Duration now = loop_.now();
    motion_.setWide(true, Manner::atOnce, now);
    motion_.setTall(true, Manner::atOnce, now);
    motion_.setShowsContent(true, Manner::atOnce, now);
    motion_.setRingProgress(level, std::nullopt, now);
    changes_.notify();
}

void IslandDemo::step(void (*change)(IslandMotion&, Duration)) {
    change(motion_, loop_.now());
    changes_.notify();
}

} // namespace kivo
