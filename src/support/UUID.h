// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A 128-bit identity. Text form: 36 characters, hexadecimal, hyphenated 8-4-4-4-12.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    // A fresh random one (version 4).
    static UUID random();
    // From now on `random` yields a fixed row of identities, so that a run can be repeated exactly.
    static void makeRepeatable(std::uint64_t seed);
    // Either letter case; nothing when the text is no UUID.
    static std::optional<UUID> fromString(std::string_view text);
    // Upper case.
    std::string string() const;

    auto operator<=>(const UUID&) const = default;
};

} // namespace kivo
