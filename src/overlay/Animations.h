// SPDX-License-Identifier: MIT
#pragma once

#include "support/Motion.h"

namespace kivo::animations {

// Every animation of the system, once. Springs by response (seconds) and damping fraction.

// Fast at first, then a long arrival.
inline constexpr TimingCurve swift{0.23, 1.0, 0.32, 1.0};

// The island, on screen and in the demo.
inline constexpr Animation widen = Animation::spring(0.46, 0.68);
inline constexpr Animation grow = Animation::spring(0.56, 0.8);
inline constexpr Animation contentIn = Animation::spring(0.35, 1.0);
inline constexpr Animation contentOut = Animation::curve(swift, 0.14);
inline constexpr Animation shrink = Animation::spring(0.3, 1.0);
inline constexpr Animation narrow = Animation::spring(0.36, 1.0);
inline constexpr Animation pop = Animation::spring(0.45, 0.6); // the leading glyph, the introduction's heroes
inline constexpr Animation ringFill = Animation::curve(swift, 0.45);
inline constexpr Animation glowIn = Animation::curve(swift, 0.35);
inline constexpr Animation glowOut = Animation::curve(swift, 0.6);

// The windows.
inline constexpr Animation settle =
    Animation::spring(0.4, 1.0); // rule row, device list, hero card, introduction
inline constexpr Animation levelChange = Animation::spring(1.1, 1.0);         // hero card
inline constexpr Animation press = Animation::easeOut(0.12);                  // rule row, buttons
inline constexpr Animation shine = Animation::linear(1.8).repeatingForever(); // hero card

// Whatever changes under Reduce Motion, and many views.
inline constexpr Animation fade = Animation::easeOut(0.2);

} // namespace kivo::animations
