// SPDX-License-Identifier: MIT
#include "ui/BatteryBar.h"

#include "overlay/IslandContent.h"
#include "support/Color.h"
#include "support/Json.h"
#include "support/Text.h"

#include <algorithm>
#include <tuple>

namespace kivo {
namespace {

std::string percent(const PowerDevice& device) {
    return std::to_string(device.level) + "%";
}

std::string line(const PowerDevice& device) {
    std::string text = device.name + ": " + percent(device);
    if (device.isCharging)
        text += ", " + localized("charging");
    if (const auto parts = partsSummary(device))
        text += ", " + *parts;
    if (device.connection)
        text += ", " + *device.connection;
    if (isRemembered(device))
        text += ", " + localized("not connected");
    return text;
}

// Bars read their texts as markup.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

std::string_view className(const PowerDevice& device) {
    switch (levelTone(device.level, device.isCharging)) {
    case LevelTone::charging:
        return "charging";
    case LevelTone::critical:
        return "critical";
    case LevelTone::low:
        return "low";
    default:
        return "normal";
    }
}

const PowerDevice* mostUrgent(const std::vector<PowerDevice>& devices) {
    const auto rank = [](const PowerDevice& device) {
        return std::tuple(isRemembered(device), device.isCharging, device.level);
    };
    const auto found = std::min_element(devices.begin(), devices.end(),
                                        [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    return found == devices.end() || isRemembered(*found) ? nullptr : &*found;
}

} // namespace

std::string batteryLines(const std::vector<PowerDevice>& devices) {
    std::string text;
    for (const auto& device : devices)
        text += (text.empty() ? "" : "\n") + line(device);
    return text;
}

std::string waybarLine(const std::vector<PowerDevice>& devices) {
    Dictionary module{{"text", ""}, {"tooltip", escaped(batteryLines(devices))}, {"class", "none"}};
    if (const auto* device = mostUrgent(devices)) {
        module["text"] = escaped(device->name) + " " + percent(*device);
        module["class"] = className(*device);
        module["alt"] = deviceCategories.name(device->category);
        module["percentage"] = std::clamp<std::int64_t>(device->level, 0, 100);
    }
    return json::write(module);
}

} // namespace kivo
