// SPDX-License-Identifier: MIT
#include "overlay/IslandMotion.h"

#include "overlay/Animations.h"

#include <algorithm>

namespace kivo {
namespace {

// Points to the right.
KeyframeTrack shakeTrack() {
    return KeyframeTrack({KeyframeTrack::spring(-8, 0.08), KeyframeTrack::spring(7, 0.1),
                          KeyframeTrack::spring(-4, 0.1), KeyframeTrack::spring(2, 0.1),
                          KeyframeTrack::spring(0, 0.14)});
}

void change(AnimatedValue& value, bool isOn, Manner manner, const Animation& on, const Animation& off,
            Duration now) {
    const double target = isOn ? 1 : 0;
    if (manner == Manner::atOnce)
        value.set(target);
    else
        value.animate(target, manner == Manner::fading ? animations::fade : isOn ? on : off, now);
}

} // namespace

void IslandMotion::show(const Showing& showing, Duration now) {
    metrics_ = showing.metrics;
    token_ = showing.token;
    const bool reduces = showing.reducesMotion;
    glow_.show(showing.content, showing.content.isUrgent && !reduces, now);
    const Manner replacement = reduces ? Manner::fading : Manner::moving;
    contents_.show(showing.content, showing.token, showing.isRetarget ? replacement : Manner::atOnce, now);
    if (!reduces)
        contents_.bounce(now);
}

void IslandMotion::setWide(bool isWide, Manner manner, Duration now) {
    const bool wasOut = phase_.isWide || phase_.isTall;
    phase_.isWide = isWide;
    change(wideness_, isWide, manner, animations::widen, animations::narrow, now);
    followVisibility(wasOut, manner, now);
}

void IslandMotion::setTall(bool isTall, Manner manner, Duration now) {
    const bool wasOut = phase_.isWide || phase_.isTall;
    phase_.isTall = isTall;
    change(tallness_, isTall, manner, animations::grow, animations::shrink, now);
    followVisibility(wasOut, manner, now);
}

void IslandMotion::followVisibility(bool wasOut, Manner manner, Duration now) {
    const bool isOut = phase_.isWide || phase_.isTall;
    if (isOut == wasOut)
        return;
    const Animation& moving = isOut ? animations::glowIn : animations::glowOut;
    glow_.setVisible(isOut, manner == Manner::fading ? animations::fade : moving, now);
}

void IslandMotion::setRingProgress(double progress, const std::optional<Animation>& animation, Duration now) {
    if (animation)
        ringProgress_.animate(progress, *animation, now);
    else
        ringProgress_.set(progress);
}

void IslandMotion::shake(Duration now) {
    nudge_.run(shakeTrack(), now);
}

void IslandMotion::fillBody(IslandFrame& frame, Duration at, bool reducesMotion) const {
    const IslandLayout layout = islandLayout(metrics_, contents_.current().position);
    const double wideness = wideness_.value(at);
    const double tallness = reducesMotion ? 1 : tallness_.value(at);
    // An island is out exactly while it is wide, so what shows of it follows its widening.
    const double out = std::clamp(wideness, 0.0, 1.0);
    frame.frame = reducesMotion ? layout.expanded : layout.frame(wideness, tallness);
    frame.isAttached = layout.isAttached;
    frame.bodyOpacity = layout.isAttached && !reducesMotion ? 1 : out;
    frame.contentOpacity = reducesMotion ? 1 : frame.bodyOpacity;
    frame.shadowOpacity *= out;
    frame.ringOpacity = out;
    const IslandShape wanted = layout.shape(tallness);
    frame.body = wanted.clamped({frame.frame.width, frame.frame.height});

    const auto inset = [](double length) { return std::max(length - 2 * ringLook::inset, 0.0); };
    frame.ring = {std::max(wanted.topRadius - ringLook::inset, 0.0),
                  std::max(wanted.bottomRadius - ringLook::inset, 0.0), metrics_.topInset};
    frame.ringFrame = {frame.frame.x + ringLook::inset, frame.frame.y + ringLook::inset,
                       inset(frame.frame.width), inset(frame.frame.height)};
    frame.ringProgress = ringProgress_.value(at);
    frame.tip = {frame.ring, frame.ringProgress, std::min(frame.ringProgress, ringLook::tipLength)};

    const auto [width, height] = IslandLayout::contentSize;
    frame.contentFrame = {frame.frame.midX() - width / 2, frame.frame.midY() - height / 2, width, height};
}

std::optional<IslandFrame> IslandMotion::frame(Duration at, bool reducesMotion) const {
    if (contents_.isEmpty())
        return std::nullopt;
    IslandFrame frame;
    frame.token = token_;
    frame.nudge = reducesMotion ? 0 : nudge_.value(at);
    contents_.fill(frame, at, reducesMotion);
    fillBody(frame, at, reducesMotion);
    frame.glow = glow_.frame(at);
    return frame;
}

Duration IslandMotion::settlesAt() const {
    return std::max({wideness_.settlesAt(), tallness_.settlesAt(), ringProgress_.settlesAt(),
                     nudge_.settlesAt(), contents_.settlesAt(), glow_.settlesAt()});
}

} // namespace kivo
