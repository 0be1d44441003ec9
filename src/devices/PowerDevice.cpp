// SPDX-License-Identifier: MIT
#include "devices/PowerDevice.h"

#include "support/Json.h"
#include "support/Text.h"

#include <array>

namespace kivo {
namespace {

using Category = PowerDevice::Category;

struct Recognition {
    std::string_view word;
    Category category;
};

// Tested in order; the longer names stand before those that they contain.
constexpr std::array byName{
    Recognition{"airpods max", Category::airpodsMax}, Recognition{"airpods pro", Category::airpodsPro},
    Recognition{"airpods", Category::airpods},        Recognition{"mouse", Category::mouse},
    Recognition{"trackpad", Category::trackpad},      Recognition{"keyboard", Category::keyboard},
    Recognition{"teclado", Category::keyboard},
};
constexpr std::array byHint{
    Recognition{"headset", Category::headphones}, Recognition{"headphone", Category::headphones},
    Recognition{"audio", Category::headphones},   Recognition{"mouse", Category::mouse},
    Recognition{"keyboard", Category::keyboard},  Recognition{"trackpad", Category::trackpad},
    Recognition{"game", Category::gamepad},
};

template <std::size_t count>
std::optional<Category> recognise(const std::array<Recognition, count>& tests, std::string_view text) {
    const std::string lower = lowercased(text);
    for (const auto& test : tests) {
        if (lower.find(test.word) != std::string::npos)
            return test.category;
    }
    return std::nullopt;
}

PowerDevice::Part decodePart(const PropertyValue& stored) {
    const Dictionary& object = decoding::object(stored, "parts");
    return {
        .kind = decoding::requireCase(devicePartKinds, object, "kind"),
        .level = decoding::requireInteger(object, "level"),
        .isCharging = decoding::requireBool(object, "isCharging"),
    };
}

} // namespace

Category classify(std::string_view name, const std::optional<std::string>& hint) {
    if (const auto category = recognise(byName, name))
        return *category;
    if (const auto category = recognise(byHint, hint.value_or("")))
        return *category;
    return Category::other;
}

std::string_view symbol(Category category) {
    switch (category) {
    case Category::mac:
        return "laptopcomputer";
    case Category::airpods:
        return "airpods";
    case Category::airpodsPro:
        return "airpodspro";
    case Category::airpodsMax:
        return "airpodsmax";
    case Category::headphones:
        return "headphones";
    case Category::iphone:
        return "iphone";
    case Category::ipad:
        return "ipad";
    case Category::mouse:
        return "magicmouse.fill";
    case Category::keyboard:
        return "keyboard.fill";
    case Category::trackpad:
        return "rectangle.and.hand.point.up.left.fill";
    case Category::gamepad:
        return "gamecontroller.fill";
    case Category::other:
        break;
    }
    return "dot.radiowaves.left.and.right";
}

std::string shortLabel(PowerDevice::Part::Kind kind) {
    switch (kind) {
    case PowerDevice::Part::Kind::left:
        return localized("L");
    case PowerDevice::Part::Kind::right:
        return localized("R");
    case PowerDevice::Part::Kind::chargingCase:
        break;
    }
    return localized("Case");
}

std::optional<std::string> partsSummary(const PowerDevice& device) {
    if (device.parts.empty())
        return std::nullopt;
    std::string summary;
    for (const auto& part : device.parts) {
        if (!summary.empty())
            summary += " · ";
        summary += shortLabel(part.kind) + " " + std::to_string(part.level) + "%";
    }
    return summary;
}

PropertyValue encode(const PowerDevice& device) {
    Array parts;
    for (const auto& part : device.parts) {
        parts.emplace_back(Dictionary{
            {"kind", devicePartKinds.name(part.kind)}, {"level", part.level}, {"isCharging", part.isCharging}});
    }
    Dictionary object{
        {"id", device.id},       {"name", device.name},
        {"level", device.level}, {"category", deviceCategories.name(device.category)},
        {"parts", parts},        {"isCharging", device.isCharging},
    };
    if (device.healthPercent)
        object["healthPercent"] = *device.healthPercent;
    if (device.cycleCount)
        object["cycleCount"] = *device.cycleCount;
    if (device.connection)
        object["connection"] = *device.connection;
    if (device.lastSeen)
        object["lastSeen"] = device.lastSeen->secondsSince2001;
    return object;
}

PropertyValue encode(const std::vector<PowerDevice>& devices) {
    Array list;
    for (const auto& device : devices)
        list.push_back(encode(device));
    return list;
}

PowerDevice decodePowerDevice(const PropertyValue& stored) {
    const Dictionary& object = decoding::object(stored, "device");
    PowerDevice device{
        .id = decoding::requireString(object, "id"),
        .name = decoding::requireString(object, "name"),
        .category = decoding::requireCase(deviceCategories, object, "category"),
        .level = decoding::requireInteger(object, "level"),
        .isCharging = decoding::requireBool(object, "isCharging"),
        .parts = {},
        .healthPercent = decoding::optionalInteger(object, "healthPercent"),
        .cycleCount = decoding::optionalInteger(object, "cycleCount"),
        .connection = decoding::optionalString(object, "connection"),
        .lastSeen = {},
    };
    for (const auto& part : decoding::requireArray(object, "parts"))
        device.parts.push_back(decodePart(part));
    if (const auto lastSeen = decoding::optionalNumber(object, "lastSeen"))
        device.lastSeen = Date{*lastSeen};
    return device;
}

std::vector<PowerDevice> decodePowerDevices(const PropertyValue& stored) {
    std::vector<PowerDevice> devices;
    for (const auto& device : decoding::list(stored, "devices"))
        devices.push_back(decodePowerDevice(device));
    return devices;
}

} // namespace kivo
