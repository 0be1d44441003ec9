// SPDX-License-Identifier: MIT
#include "linux/base/Accessories.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <string_view>

namespace kivo {
namespace {

constexpr std::int64_t chargingState = 1;
constexpr std::int64_t leastLevelBeforeEmpty = 15;
constexpr std::size_t addressLength = 17; // "aa:bb:cc:dd:ee:ff"

struct Kind {
    std::int64_t type; // UPower's
    const char* category;
};
// What is none of these goes without a category. Adapters and uninterruptible supplies are no accessories.
constexpr std::int64_t linePower = 1;
constexpr std::int64_t uninterruptible = 3;
constexpr std::array kinds{Kind{5, "Mouse"},      Kind{6, "Keyboard"},         Kind{8, "Phone"},
                           Kind{10, "Tablet"},    Kind{12, "Game Controller"}, Kind{13, "Pen"},
                           Kind{14, "Trackpad"},  Kind{17, "Headset"},         Kind{18, "Speaker"},
                           Kind{19, "Headphone"}, Kind{21, "Audio"},           Kind{22, "Remote Control"},
                           Kind{26, "Wearable"}};

std::string text(const Dictionary& properties, std::string_view key) {
    const auto* value = find(properties, key);
    const auto* string = value ? value->string() : nullptr;
    return string ? *string : std::string();
}

std::int64_t integer(const Dictionary& properties, std::string_view key) {
    const auto* value = find(properties, key);
    return value ? value->integer().value_or(0) : 0;
}

const char* category(std::int64_t type) {
    const auto it =
        std::find_if(kinds.begin(), kinds.end(), [&](const Kind& kind) { return kind.type == type; });
    return it == kinds.end() ? nullptr : it->category;
}

bool isAddress(std::string_view candidate) {
    for (std::size_t i = 0; i < candidate.size(); ++i) {
        const auto character = static_cast<unsigned char>(candidate[i]);
        if (i % 3 == 2 ? character != ':' : std::isxdigit(character) == 0)
            return false;
    }
    return true;
}

// The Bluetooth address that a serial number or a kernel's or BlueZ's name holds, in lower case.
std::optional<std::string> addressIn(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char character) {
        return character == '_' ? ':' : static_cast<char>(std::tolower(character));
    });
    for (std::size_t i = 0; i + addressLength <= name.size(); ++i) {
        const auto candidate = std::string_view(name).substr(i, addressLength);
        if (isAddress(candidate))
            return std::string(candidate);
    }
    return std::nullopt;
}

std::string identifier(const std::string& path, const Dictionary& properties) {
    const std::string serial = text(properties, "Serial");
    const std::string native = text(properties, "NativePath");
    for (const auto& source : {serial, native}) {
        if (const auto address = addressIn(source))
            return *address;
    }
    if (!serial.empty())
        return serial;
    return native.empty() ? path : native;
}

std::optional<std::int64_t> level(const Dictionary& properties) {
    const auto* value = find(properties, "Percentage");
    const auto percent = value ? value->number() : std::nullopt;
    if (!percent || !(*percent >= 0 && *percent <= 100))
        return std::nullopt;
    return std::llround(*percent);
}

bool isAccessory(const Dictionary& properties) {
    const auto* powersComputer = find(properties, "PowerSupply");
    const auto* isPresent = find(properties, "IsPresent");
    const auto type = integer(properties, "Type");
    return powersComputer && powersComputer->boolean() == false && type != linePower &&
           type != uninterruptible && !(isPresent && isPresent->boolean() == false);
}

} // namespace

std::vector<Dictionary> Accessories::read(const UPowerDevices& devices) {
    std::vector<Dictionary> descriptions;
    std::map<std::string, std::int64_t> levels;
    for (const auto& [path, properties] : devices) {
        const auto percent = level(properties);
        if (!isAccessory(properties) || !percent)
            continue;
        const std::string id = identifier(path, properties);
        const auto last = levels_.find(id);
        if (*percent == 0 && (last == levels_.end() || last->second > leastLevelBeforeEmpty))
            continue;
        if (!levels.emplace(id, *percent).second)
            continue;
        const char* kind = category(integer(properties, "Type"));
        std::string name = text(properties, "Model");
        if (name.empty())
            name = kind ? kind : "Accessory";
        Dictionary description{{"Type", "Accessory Source"},
                               {"Accessory Identifier", id},
                               {"Name", name},
                               {"Current Capacity", *percent},
                               {"Max Capacity", 100},
                               {"Is Charging", integer(properties, "State") == chargingState}};
        if (kind)
            description["Accessory Category"] = kind;
        descriptions.push_back(std::move(description));
    }
    // Those that are silent just now keep their last level for when they come back.
    for (const auto& [id, percent] : levels)
        levels_[id] = percent;
    return descriptions;
}

} // namespace kivo
