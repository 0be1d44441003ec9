// SPDX-License-Identifier: MIT
#include "overlay/IslandContents.h"

#include "overlay/Animations.h"

#include <algorithm>
#include <cmath>

namespace kivo {
namespace {

constexpr double titleDelay = 0.045; // seconds after the glyph
constexpr double subtitleDelay = 0.09;
constexpr double riseOffset = 6;
constexpr double riseBlur = 4;
constexpr double hiddenGlyphScale = 0.6;

// A content that is replaced sinks back and blurs, soon gone so that two texts are never read at once; the new
// one comes up from there.
constexpr double replacedScale = 0.9;
constexpr double replacedOffset = 4;
constexpr double replacedBlur = 6;

constexpr double shadowOpacity = 0.25;
constexpr double urgentShadowOpacity = 0.65;

KeyframeTrack bounceTrack() {
    return KeyframeTrack({KeyframeTrack::spring(1.3, 0.12, Spring::bouncing(0.3, 0)),
                          KeyframeTrack::spring(1, 0.4, Spring::bouncing(0.4, 0.4))});
}

void change(AnimatedValue& value, double target, Manner manner, const Animation& animation, Duration now) {
    if (manner == Manner::atOnce)
        value.set(target);
    else
        value.animate(target, manner == Manner::moving ? animation : animations::fade, now);
}

double fraction(double value) {
    return std::clamp(value, 0.0, 1.0);
}

RiseIn riseIn(double shown, double offset, double blur) {
    return {fraction(shown), offset * (1 - shown), blur * fraction(1 - shown)};
}

} // namespace

void IslandContents::show(const IslandContent& content, std::int64_t token, Manner manner, Duration now) {
    const double strength = content.isUrgent ? urgentShadowOpacity : shadowOpacity;
    if (manner == Manner::atOnce || layers_.empty()) {
        layers_.clear();
        layers_.push_back({token, content, AnimatedValue(1)});
        tintMix_.set(1);
        shadow_.set(strength);
        return;
    }
    tintBefore_ = tint(now);
    tintMix_.set(0);
    change(tintMix_, 1, manner, animations::contentIn, now);
    change(shadow_, strength, manner, animations::contentIn, now);
    std::erase_if(layers_, [&](const Layer& layer) { return !(layer.presence.value(now) > 0); });
    for (Layer& layer : layers_)
        change(layer.presence, 0, manner, animations::contentOut, now);
    layers_.push_back({token, content, AnimatedValue(0)});
    change(layers_.back().presence, 1, manner, animations::contentIn, now);
}

void IslandContents::setShown(bool isShown, Manner manner, Duration now) {
    isShown_ = isShown;
    const double target = isShown ? 1 : 0;
    const Animation& animation = isShown ? animations::contentIn : animations::contentOut;
    change(leading_, target, manner, animation, now);
    change(title_, target, manner, isShown ? animation.delayed(titleDelay) : animation, now);
    change(subtitle_, target, manner, isShown ? animation.delayed(subtitleDelay) : animation, now);
    change(glyphScale_, target, manner, isShown ? animations::pop : animation, now);
}

void IslandContents::bounce(Duration now) {
    bounce_.run(bounceTrack(), now);
}

Color IslandContents::tint(Duration at) const {
    const double mix = fraction(tintMix_.value(at));
    const auto blend = [mix](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(std::lround(from + (to - from) * mix));
    };
    const Color& target = layers_.back().content.tint;
    return {blend(tintBefore_.red, target.red), blend(tintBefore_.green, target.green),
            blend(tintBefore_.blue, target.blue)};
}

IslandContentLayer IslandContents::layerFrame(const Layer& layer, Duration at, bool reducesMotion) const {
    const double presence = layer.presence.value(at);
    IslandContentLayer result{layer.token, layer.content};
    result.opacity = fraction(presence);
    if (reducesMotion)
        return result;
    result.scale = replacedScale + (1 - replacedScale) * presence;
    result.offset = replacedOffset * (1 - presence);
    result.blur = replacedBlur * fraction(1 - presence);
    result.symbolBounce = &layer == &layers_.back() ? bounce_.value(at) : 1;
    return result;
}

void IslandContents::fill(IslandFrame& frame, Duration at, bool reducesMotion) const {
    frame.tint = tint(at);
    frame.shadowOpacity = shadow_.value(at);
    for (const Layer& layer : layers_) {
        const bool isCurrent = &layer == &layers_.back();
        if (isCurrent || layer.presence.value(at) > 0)
            frame.layers.push_back(layerFrame(layer, at, reducesMotion));
    }
    const double offset = reducesMotion ? 0 : riseOffset;
    const double blur = reducesMotion ? 0 : riseBlur;
    frame.leading = riseIn(leading_.value(at), 0, 0);
    frame.title = riseIn(title_.value(at), offset, blur);
    frame.subtitle = riseIn(subtitle_.value(at), offset, blur);
    frame.glyphScale = reducesMotion ? 1 : hiddenGlyphScale + (1 - hiddenGlyphScale) * glyphScale_.value(at);
}

Duration IslandContents::settlesAt() const {
    Duration last =
        std::max({leading_.settlesAt(), title_.settlesAt(), subtitle_.settlesAt(), glyphScale_.settlesAt(),
                  bounce_.settlesAt(), tintMix_.settlesAt(), shadow_.settlesAt()});
    for (const Layer& layer : layers_)
        last = std::max(last, layer.presence.settlesAt());
    return last;
}

} // namespace kivo
