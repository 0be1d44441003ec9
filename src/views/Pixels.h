// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"

#include <algorithm>
#include <cstdint>

// Arithmetic on premultiplied ARGB pixels, alpha in the highest byte.
namespace kivo {

// The nearest whole number to one that is not negative: the library's own is slow, and needed for every pixel.
inline std::uint32_t nearest(double value) {
    return static_cast<std::uint32_t>(value + 0.5); // NOLINT(bugprone-incorrect-roundings)
}

inline std::uint32_t premultiplied(Color color, double opacity) {
    auto part = [opacity](double value) { return nearest(value * opacity); };
    return part(255) << 24 | part(color.red) << 16 | part(color.green) << 8 | part(color.blue);
}

// All four parts times share / 255, rounded.
inline std::uint32_t scaled(std::uint32_t pixel, std::uint32_t share) {
    auto divided = [](std::uint32_t pair) {
        return (pair + ((pair >> 8) & 0xff00ff) + 0x800080) >> 8 & 0xff00ff;
    };
    return divided((pixel & 0xff00ff) * share) | divided((pixel >> 8 & 0xff00ff) * share) << 8;
}

inline std::uint32_t over(std::uint32_t upper, std::uint32_t lower) {
    return upper + scaled(lower, 255 - (upper >> 24));
}

// A pixel and the light of a white one of this strength, 0…255.
inline std::uint32_t plus(std::uint32_t pixel, std::uint32_t light) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8)
        result |= std::min((pixel >> shift & 0xff) + light, std::uint32_t(255)) << shift;
    return result;
}

} // namespace kivo
