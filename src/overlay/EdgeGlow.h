// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "support/Keyframes.h"
#include "support/Motion.h"

namespace kivo {

// The light along the screen's edges while an island that asks for it is out: how visible it is and how bright
// at any instant.
// Invariant: it is as visible as the island is out, whether or not its content glows; so a glow that comes with
// a retarget is there at once.
class EdgeGlow {
public:
    // A content takes its place. A glow pulses twice when it is to, from the beginning each time; else it
    // shines steadily.
    void show(const IslandContent& content, bool pulses, Duration now);
    // Follows the island out and in.
    void setVisible(bool isVisible, const Animation& animation, Duration now);

    // Nothing when the content does not glow.
    std::optional<GlowFrame> frame(Duration at) const;
    Duration settlesAt() const;

private:
    bool glows_ = false;
    Color color_;
    AnimatedValue visibility_;
    KeyframeValue brightness_{1};
};

} // namespace kivo
