// SPDX-License-Identifier: MIT
// Whatever sources and input devices a machine describes, what is read of them is a sorted list of devices with
// names and levels that make sense. The text is a list of two lists of dictionaries.

#include "devices/AccessoryBatteryReader.h"
#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"
#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace kivo;
using Descriptions = std::vector<std::optional<Dictionary>>;

Descriptions descriptions(const PropertyValue& list) {
    Descriptions result;
    if (list.array()) {
        for (const auto& one : *list.array())
            result.push_back(one.dictionary() ? std::optional(*one.dictionary()) : std::nullopt);
    }
    return result;
}

struct Machine final : AccessorySources, DeviceRegistry, LogSink {
    Descriptions sources;
    Descriptions inputDevices;

    bool resolve() override { return true; }
    std::optional<Descriptions> copyAccessorySources() override { return sources; }
    std::optional<Descriptions> matchingServices(std::string_view) override { return inputDevices; }
    void log(LogLevel, std::string_view, std::string_view) override {}
};

void check(bool isTrue) {
    if (!isTrue)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PropertyValue lists;
    try {
        lists = json::parse(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const DecodingError&) {
        return 0;
    }
    if (!lists.array() || lists.array()->size() != 2)
        return 0;
    Machine machine;
    machine.sources = descriptions(lists.array()->at(0));
    machine.inputDevices = descriptions(lists.array()->at(1));
    AccessoryBatteryReader reader(machine, machine, machine);
    const auto devices = reader.readAccessories();
    check(devices.size() <= machine.sources.size() + machine.inputDevices.size());
    for (std::size_t i = 0; i < devices.size(); ++i) {
        check(i == 0 || devices[i - 1].level <= devices[i].level);
        for (std::size_t part = 0; part < devices[i].parts.size(); ++part) {
            check(devices[i].parts[part].level >= 0 && devices[i].parts[part].level <= 100);
            check(part == 0 || devices[i].parts[part - 1].kind <= devices[i].parts[part].kind);
        }
    }
    return 0;
}
