// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kivo {

// An opaque sRGB colour, 8 bits a component.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Color&) const = default;
};

// What a battery's level means to its owner, most hopeful first.
enum class LevelTone { charging, normal, lowPower, low, critical };

constexpr Color color(LevelTone tone) {
    switch (tone) {
    case LevelTone::charging:
        return {52, 211, 91};
    case LevelTone::normal:
        return {76, 217, 100};
    case LevelTone::lowPower:
        return {255, 214, 10};
    case LevelTone::low:
        return {255, 69, 58};
    case LevelTone::critical:
        return {255, 59, 48};
    }
    return {};
}

// The case name, as in records and scenarios.
constexpr const char* name(LevelTone tone) {
    switch (tone) {
    case LevelTone::charging:
        return "charging";
    case LevelTone::normal:
        return "normal";
    case LevelTone::lowPower:
        return "lowPower";
    case LevelTone::low:
        return "low";
    case LevelTone::critical:
        return "critical";
    }
    return "";
}

// Health warnings and the energy insight.
inline constexpr Color amber{255, 176, 32};

} // namespace kivo
