// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <optional>
#include <string_view>

namespace kivo {

// One database of the user's settings: values by key, kept across launches. A write is seen by the next read
// at once and survives the end of the process at any later instant.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    virtual std::optional<PropertyValue> value(std::string_view key) = 0;
    virtual void set(std::string_view key, PropertyValue value) = 0;
    virtual void remove(std::string_view key) = 0;
};

// Typed reads; a value of another type counts as missing.
inline bool boolValue(UserDefaults& defaults, std::string_view key) {
    const auto value = defaults.value(key);
    return value && value->boolean().value_or(false);
}

} // namespace kivo
