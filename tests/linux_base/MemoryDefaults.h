// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UserDefaults.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace kivo {

// User defaults that live as long as the test.
struct MemoryDefaults final : UserDefaults {
    std::optional<PropertyValue> value(std::string_view key) override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override { values.erase(std::string(key)); }

    std::map<std::string, PropertyValue, std::less<>> values;
};

} // namespace kivo
