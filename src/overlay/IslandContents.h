// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "support/Keyframes.h"
#include "support/Motion.h"

#include <vector>

namespace kivo {

// How a change comes about: at once, in motion, or by a fade alone (Reduce Motion).
enum class Manner { atOnce, moving, fading };

// What stands inside an island: the content, those it takes the place of, and how the glyph and the lines come
// and go.
class IslandContents {
public:
    // `atOnce`: nothing of earlier contents is left. Otherwise the current one goes and this one comes.
    void show(const IslandContent& content, std::int64_t token, Manner manner, Duration now);
    void setShown(bool isShown, Manner manner, Duration now);
    // The symbol bounces once.
    void bounce(Duration now);

    // State out
    bool isShown() const { return isShown_; }
    bool isEmpty() const { return layers_.empty(); }
    // Of the current content, once there is one.
    const IslandContent& current() const { return layers_.back().content; }
    // Fills in tint, shadow strength (as `shadowOpacity`), layers, glyph and lines.
    void fill(IslandFrame& frame, Duration at, bool reducesMotion) const;
    Duration settlesAt() const;

private:
    struct Layer {
        std::int64_t token;
        IslandContent content;
        AnimatedValue presence;
    };
    Color tint(Duration at) const;
    IslandContentLayer layerFrame(const Layer& layer, Duration at, bool reducesMotion) const;

    bool isShown_ = false;
    std::vector<Layer> layers_; // leaving ones first
    Color tintBefore_;
    AnimatedValue tintMix_{1};
    AnimatedValue shadow_;
    AnimatedValue leading_, title_, subtitle_; // 0 hidden, 1 in place
    AnimatedValue glyphScale_;
    KeyframeValue bounce_{1};
};

} // namespace kivo
