// SPDX-License-Identifier: MIT
#include "devices/AccessoryBatteryReader.h"

#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace kivo {
namespace {

using Part = PowerDevice::Part;

constexpr std::string_view caseSuffix = " Case";

bool isAccessory(const Dictionary& description) {
    const auto* type = stringAt(description, "Type");
    return type && *type == "Accessory Source" && booleanAt(description, "Is Present").value_or(true);
}

// What the sources of one product share. A source without any of the three has no name either, so it could
// never become a device.
const std::string* groupKey(const Dictionary& description) {
    for (const auto key : {"Group Identifier", "Accessory Identifier", "Name"}) {
        if (const auto* text = stringAt(description, key))
            return text;
    }
    return nullptr;
}

bool isCase(const Dictionary& description) {
    const auto* part = stringAt(description, "Part Identifier");
    return part && *part == "Case";
}

std::optional<std::int64_t> percentage(const Dictionary& description) {
    const auto current = integerAt(description, "Current Capacity");
    const auto maximum = integerAt(description, "Max Capacity").value_or(100);
    if (!current || maximum < 1)
        return std::nullopt;
    if (*current <= 0)
        return 0;
    if (*current >= maximum)
        return 100;
    __extension__ using Wide = __int128;
    return static_cast<std::int64_t>(static_cast<Wide>(*current) * 100 / maximum);
}

std::optional<Part> partFrom(const Dictionary& description) {
    const auto* identifier = stringAt(description, "Part Identifier");
    const auto level = percentage(description);
    if (!identifier || !level)
        return std::nullopt;
    const bool isCharging = booleanAt(description, "Is Charging").value_or(false);
    if (*identifier == "Left")
        return Part{Part::Kind::left, *level, isCharging};
    if (*identifier == "Right")
        return Part{Part::Kind::right, *level, isCharging};
    if (*identifier == "Case")
        return Part{Part::Kind::chargingCase, *level, isCharging};
    return std::nullopt;
}

// The parts listed under "Combined Parts"; a list with anything but dictionaries in it is no such list.
std::vector<Part> combinedParts(const Dictionary& description) {
    const auto* elements = arrayAt(description, "Combined Parts");
    std::vector<Part> parts;
    if (!elements)
        return parts;
    for (const auto& element : *elements) {
        const auto* dictionary = element.dictionary();
        if (!dictionary)
            return {};
        if (const auto part = partFrom(*dictionary))
            parts.push_back(*part);
    }
    return parts;
}

std::string withoutCaseSuffix(std::string name) {
    for (auto at = name.find(caseSuffix); at != std::string::npos; at = name.find(caseSuffix, at))
        name.erase(at, caseSuffix.size());
    return name;
}

// One product from its sources, which are in the machine's order and at least one.
std::optional<PowerDevice> deviceFrom(const std::string& key, const std::vector<const Dictionary*>& group) {
    const auto caseSource =
        std::find_if(group.begin(), group.end(), [](const auto* one) { return isCase(*one); });
    const auto body = std::find_if(group.begin(), group.end(), [](const auto* one) { return !isCase(*one); });
    const bool isOnlyCase = body == group.end();
    const Dictionary& main = isOnlyCase ? **caseSource : **body;

    const auto* name = stringAt(main, "Name");
    const auto level = percentage(main);
    if (!name || !level)
        return std::nullopt;

    PowerDevice device;
    device.id = key;
    device.name = isOnlyCase ? withoutCaseSuffix(*name) : *name;
    const auto* hint = stringAt(main, "Accessory Category");
    device.category = classify(*name, hint ? std::optional(*hint) : std::nullopt);
    device.level = *level;
    device.isCharging = booleanAt(main, "Is Charging").value_or(false);
    device.parts = combinedParts(main);
    if (!isOnlyCase && caseSource != group.end()) {
        if (const auto part = partFrom(**caseSource))
            device.parts.push_back(*part);
    }
    std::stable_sort(device.parts.begin(), device.parts.end(),
                     [](const Part& a, const Part& b) { return a.kind < b.kind; });
    return device;
}

std::optional<PowerDevice> inputDeviceFrom(const Dictionary& properties) {
    const auto level = integerAt(properties, "BatteryPercent");
    const auto* product = stringAt(properties, "Product");
    if (!level || !product)
        return std::nullopt;
    const auto* address = stringAt(properties, "DeviceAddress");
    PowerDevice device;
    device.id = address ? *address : *product;
    device.name = *product;
    device.category = classify(*product, std::nullopt);
    device.level = *level;
    device.isCharging = (integerAt(properties, "BatteryStatusFlags").value_or(0) >> 1 & 1) != 0;
    return device;
}

} // namespace

AccessoryBatteryReader::AccessoryBatteryReader(AccessorySources& sources, DeviceRegistry& registry,
                                               LogSink& log)
    : sources_(sources), registry_(registry), logger_(log, "accessories") {}

std::vector<PowerDevice> AccessoryBatteryReader::readAccessories() {
    auto devices = readPowerSources();
    std::unordered_set<std::string> names;
    for (const auto& device : devices)
        names.insert(device.name);
    for (auto& device : readInputDevices()) {
        if (!names.contains(device.name))
            devices.push_back(std::move(device));
    }
    std::stable_sort(devices.begin(), devices.end(),
                     [](const PowerDevice& a, const PowerDevice& b) { return a.level < b.level; });
    return devices;
}

std::vector<PowerDevice> AccessoryBatteryReader::readPowerSources() {
    if (!canListAccessories_) {
        canListAccessories_ = sources_.resolve();
        if (!*canListAccessories_)
            logger_.error("IOPSCopyPowerSourcesByType unavailable; accessory batteries disabled");
    }
    if (!*canListAccessories_)
        return {};
    const auto sources = sources_.copyAccessorySources();
    if (!sources)
        return {};

    struct Group {
        const std::string* key;
        std::vector<const Dictionary*> members;
    };
    std::vector<Group> groups;
    std::unordered_map<std::string_view, std::size_t> indexes;
    for (const auto& description : *sources) {
        const auto* key = description && isAccessory(*description) ? groupKey(*description) : nullptr;
        if (!key)
            continue;
        const auto [known, isNew] = indexes.try_emplace(*key, groups.size());
        if (isNew)
            groups.push_back({key, {}});
        groups[known->second].members.push_back(&*description);
    }

    std::vector<PowerDevice> devices;
    for (const auto& group : groups) {
        if (auto device = deviceFrom(*group.key, group.members))
            devices.push_back(std::move(*device));
    }
    return devices;
}

std::vector<PowerDevice> AccessoryBatteryReader::readInputDevices() {
    std::vector<PowerDevice> devices;
    const auto services = registry_.matchingServices(hidBatteryClass);
    if (!services)
        return devices;
    for (const auto& properties : *services) {
        if (!properties)
            continue;
        if (auto device = inputDeviceFrom(*properties))
            devices.push_back(std::move(*device));
    }
    return devices;
}

} // namespace kivo
