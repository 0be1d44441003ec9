// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace kivo {

// An enumeration's cases in declared order with their stored names: the one place where both stand.
template <typename Enum, std::size_t count>
struct EnumTable {
    struct Entry {
        Enum value;
        std::string_view name;
    };
    std::array<Entry, count> entries;

    constexpr std::string_view name(Enum value) const {
        for (const Entry& entry : entries) {
            if (entry.value == value)
                return entry.name;
        }
        return {};
    }
    constexpr std::optional<Enum> value(std::string_view name) const {
        for (const Entry& entry : entries) {
            if (entry.name == name)
                return entry.value;
        }
        return std::nullopt;
    }
    constexpr auto begin() const { return entries.begin(); }
    constexpr auto end() const { return entries.end(); }
};

} // namespace kivo
