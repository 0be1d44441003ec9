// SPDX-License-Identifier: MIT
#pragma once

#include "support/Date.h"
#include "support/EnumTable.h"
#include "support/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// A battery other than the computer's own: an accessory, a phone or a tablet. (The computer itself appears in
// this form only in the list for widgets.) The field and case names are a stored format.
struct PowerDevice {
    struct Part {
        // In the order in which parts are shown.
        enum class Kind { left, right, chargingCase };

        Kind kind = Kind::left;
        std::int64_t level = 0; // percent, 0…100
        bool isCharging = false;
        bool operator==(const Part&) const = default;
    };

    enum class Category {
        mac,
        airpods,
        airpodsPro,
        airpodsMax,
        headphones,
        iphone,
        ipad,
        mouse,
        keyboard,
        trackpad,
        gamepad,
        other
    };

    std::string id; // the same device has the same one in every reading
    std::string name;
    Category category = Category::other;
    std::int64_t level = 0;                    // percent
    bool isCharging = false;                   // the device, or its main part
    std::vector<Part> parts;                   // separate batteries of one product; empty for one battery
    std::optional<std::int64_t> healthPercent; // phones and tablets that tell
    std::optional<std::int64_t> cycleCount;    // phones and tablets that tell
    std::optional<std::string> connection;     // "USB" or "Wi‑Fi"; absent for accessories
    std::optional<Date> lastSeen; // absent while live; when it was last read, for one shown from memory

    bool operator==(const PowerDevice&) const = default;
};

// Stored names, in declared order.
inline constexpr EnumTable<PowerDevice::Category, 12> deviceCategories{{{
    {PowerDevice::Category::mac, "mac"},
    {PowerDevice::Category::airpods, "airpods"},
    {PowerDevice::Category::airpodsPro, "airpodsPro"},
    {PowerDevice::Category::airpodsMax, "airpodsMax"},
    {PowerDevice::Category::headphones, "headphones"},
    {PowerDevice::Category::iphone, "iphone"},
    {PowerDevice::Category::ipad, "ipad"},
    {PowerDevice::Category::mouse, "mouse"},
    {PowerDevice::Category::keyboard, "keyboard"},
    {PowerDevice::Category::trackpad, "trackpad"},
    {PowerDevice::Category::gamepad, "gamepad"},
    {PowerDevice::Category::other, "other"},
}}};
inline constexpr EnumTable<PowerDevice::Part::Kind, 3> devicePartKinds{{{
    {PowerDevice::Part::Kind::left, "left"},
    {PowerDevice::Part::Kind::right, "right"},
    {PowerDevice::Part::Kind::chargingCase, "chargingCase"},
}}};

// Recognises the category of an accessory by its product name, then by the hint (the accessory's own words for
// its category). Never gives `mac`, `iphone` or `ipad`.
PowerDevice::Category classify(std::string_view name, const std::optional<std::string>& hint);

// The name of the category's symbol.
std::string_view symbol(PowerDevice::Category category);
inline std::string_view symbol(const PowerDevice& device) {
    return symbol(device.category);
}

// "L", "R", "Case", in the user's language.
std::string shortLabel(PowerDevice::Part::Kind kind);
// "L 80% · R 75% · Case 40%"; absent without parts.
std::optional<std::string> partsSummary(const PowerDevice& device);

// Shown from memory rather than live.
inline bool isRemembered(const PowerDevice& device) {
    return device.lastSeen.has_value();
}

// The stored form. Absent fields are left out; decoding throws DecodingError for anything incomplete, of a
// wrong type or of an unknown category or kind, and takes null for absence in the optional fields.
PropertyValue encode(const PowerDevice& device);
PropertyValue encode(const std::vector<PowerDevice>& devices);
PowerDevice decodePowerDevice(const PropertyValue& stored);
std::vector<PowerDevice> decodePowerDevices(const PropertyValue& stored);

} // namespace kivo
