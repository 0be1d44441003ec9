// SPDX-License-Identifier: MIT
#include "overlay/EdgeGlow.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr double dimmed = 0.3;

KeyframeTrack brightnessTrack(bool pulses) {
    const double low = pulses ? dimmed : 1;
    return KeyframeTrack({KeyframeTrack::cubic(1, 0.3), KeyframeTrack::cubic(low, 0.35),
                          KeyframeTrack::cubic(1, 0.35), KeyframeTrack::cubic(low, 0.35),
                          KeyframeTrack::cubic(1, 0.35)});
}

} // namespace

void EdgeGlow::show(const IslandContent& content, bool pulses, Duration now) {
    const bool glowedBefore = glows_;
    glows_ = content.glowsScreen;
    color_ = content.tint;
    if (!glows_)
        return;
    if (!glowedBefore)
        brightness_.set(1);
    // A steady glow that is at its full strength has nothing to run through.
    if (pulses || brightness_.value(now) != 1)
        brightness_.run(brightnessTrack(pulses), now);
    else
        brightness_.set(1);
}

void EdgeGlow::setVisible(bool isVisible, const Animation& animation, Duration now) {
    visibility_.animate(isVisible ? 1 : 0, animation, now);
}

std::optional<GlowFrame> EdgeGlow::frame(Duration at) const {
    if (!glows_)
        return std::nullopt;
    // The track swings a little beyond full strength where it turns.
    return GlowFrame{color_, visibility_.value(at), std::clamp(brightness_.value(at), 0.0, 1.0)};
}

Duration EdgeGlow::settlesAt() const {
    return glows_ ? std::max(visibility_.settlesAt(), brightness_.settlesAt()) : Duration::min();
}

} // namespace kivo
