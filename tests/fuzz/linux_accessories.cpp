// SPDX-License-Identifier: MIT
// Whatever UPower, BlueZ and the kernel tell of accessories, each device is described once, with a name and a
// level from 1 to 100. The text is a list of three objects: devices by path, devices by path, attributes by
// name.

#include "linux/base/Accessories.h"
#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>

namespace {

using namespace kivo;

std::map<std::string, Dictionary> objects(const PropertyValue& value) {
    std::map<std::string, Dictionary> result;
    if (value.dictionary()) {
        for (const auto& [path, properties] : *value.dictionary())
            result[path] = properties.dictionary() ? *properties.dictionary() : Dictionary{};
    }
    return result;
}

KernelSupplies attributes(const PropertyValue& value) {
    KernelSupplies result;
    for (const auto& [name, properties] : objects(value)) {
        for (const auto& [key, text] : properties) {
            if (text.string())
                result[name][key] = *text.string();
        }
    }
    return result;
}

void check(bool isTrue) {
    if (!isTrue)
        std::abort();
}

bool isLevel(const PropertyValue& value) {
    return value.integer() && *value.integer() >= 1 && *value.integer() <= 100;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PropertyValue lists;
    try {
        lists = json::parse(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const DecodingError&) {
        return 0;
    }
    if (!lists.array() || lists.array()->size() != 3)
        return 0;
    std::set<std::string> identities;
    for (const auto& one :
         accessoryDescriptions(objects(lists.array()->at(0)), objects(lists.array()->at(1)))) {
        check(identities.insert(*find(one, "Accessory Identifier")->string()).second);
        check(isLevel(*find(one, "Current Capacity")));
        check(!find(one, "Name")->string()->empty());
    }
    for (const auto& one : inputDeviceProperties(attributes(lists.array()->at(2)))) {
        check(isLevel(*find(one, "BatteryPercent")));
        check(find(one, "Product")->string() && find(one, "DeviceAddress")->string());
    }
    return 0;
}
