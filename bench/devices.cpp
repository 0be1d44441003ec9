// SPDX-License-Identifier: MIT
// What a refresh of the list of devices costs: for 4, 64 and 1,000 accessories a line with their number, the
// nanoseconds of a refresh that finds every level changed, those of one that finds nothing changed, and those
// of merely copying the descriptions.

#include "devices/DeviceMonitor.h"
#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"
#include "platform/UserDefaults.h"
#include "support/VirtualLoop.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace kivo;

struct Sources final : AccessorySources {
    std::vector<PowerSourceDescription> list;
    bool resolve() override { return true; }
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override { return list; }
};
struct Registry final : DeviceRegistry {
    std::optional<std::vector<std::optional<Dictionary>>> matchingServices(std::string_view) override {
        return std::nullopt;
    }
};
struct Defaults final : UserDefaults {
    std::optional<PropertyValue> value(std::string_view) override { return std::nullopt; }
    void set(std::string_view, PropertyValue) override {}
    void remove(std::string_view) override {}
};
struct NoPhones final : MobileDeviceLibrary {
    bool open() override { return false; }
    bool hasSymbol(std::string_view) override { return false; }
    void subscribe(std::function<void(MobileDeviceReference, std::uint32_t)>) override {}
    void retain(MobileDeviceReference) override {}
    void release(MobileDeviceReference) override {}
    std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference) override { return std::nullopt; }
    int interfaceType(MobileDeviceReference) override { return 0; }
    int connect(MobileDeviceReference) override { return 1; }
    void disconnect(MobileDeviceReference) override {}
    int isPaired(MobileDeviceReference) override { return 0; }
    int validatePairing(MobileDeviceReference) override { return 1; }
    int startSession(MobileDeviceReference) override { return 1; }
    void stopSession(MobileDeviceReference) override {}
    std::optional<PropertyValue> copyValue(MobileDeviceReference, std::optional<std::string>,
                                           std::optional<std::string>) override {
        return std::nullopt;
    }
    int startService(MobileDeviceReference, const std::string&, MobileServiceConnection&) override { return 1; }
    int sendMessage(MobileServiceConnection, const Dictionary&) override { return 1; }
    int receiveMessage(MobileServiceConnection, std::optional<PropertyValue>&) override { return 1; }
    void invalidate(MobileServiceConnection) override {}
};
struct Silence final : LogSink {
    void log(LogLevel, std::string_view, std::string_view) override {}
};

std::int64_t cpu() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

// The median of many runs of `work`; `prepare` runs before each and is not counted.
template <typename Prepare, typename Work>
long long median(int runs, Prepare prepare, Work work) {
    std::vector<std::int64_t> times;
    for (int run = 0; run < runs; ++run) {
        prepare(run);
        const auto began = cpu();
        work();
        times.push_back(cpu() - began);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

void measure(int count) {
    VirtualLoop loop;
    Sources sources;
    Registry registry;
    Defaults defaults;
    NoPhones phones;
    Silence log;
    DeviceMonitor monitor(loop, sources, registry, phones, defaults, log);
    const auto setLevels = [&](int round) {
        sources.list.clear();
        for (int i = 0; i < count; ++i) {
            const auto name = "Accessory " + std::to_string(i);
            sources.list.emplace_back(Dictionary{{"Type", "Accessory Source"},
                                                 {"Accessory Identifier", name},
                                                 {"Name", name},
                                                 {"Current Capacity", (i * 37 + round) % 101},
                                                 {"Max Capacity", 100},
                                                 {"Is Charging", false}});
        }
    };
    const int runs = count > 500 ? 101 : 501;
    const auto changed = median(runs, setLevels, [&] { monitor.refresh(); });
    const auto same = median(
        runs, [](int) {}, [&] { monitor.refresh(); });
    const auto copied = median(
        runs, [](int) {}, [&] { sources.copyAccessorySources(); });
    std::printf("%d %lld %lld %lld\n", count, changed, same, copied);
}

} // namespace

int main() {
    for (const int count : {4, 64, 1000})
        measure(count);
}
