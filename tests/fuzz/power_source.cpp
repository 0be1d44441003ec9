// SPDX-License-Identifier: MIT
// A power source's description and a battery's registry properties as a machine may hand them over: what comes
// of them keeps its promises, and everything that is shown of them can be computed, from one state to the next.

#include "Input.h"
#include "battery/BatteryHealth.h"
#include "battery/BatterySnapshot.h"
#include "core/AlertEngine.h"
#include "overlay/IslandContent.h"

namespace {

using namespace kivo;

void show(const BatterySnapshot& snapshot) {
    fuzz::require(snapshot.level >= 0 && snapshot.level <= 100);
    fuzz::require(snapshot.minutesToEmpty.value_or(1) > 0 && snapshot.minutesToFull.value_or(1) > 0);
    fuzz::require(!statusText(snapshot).empty());

    BatterySnapshot before = snapshot;
    before.level = (snapshot.level + 37) % 101;
    before.source =
        snapshot.level % 2 == 0 ? BatterySnapshot::PowerSource::ac : BatterySnapshot::PowerSource::battery;
    for (const FiredAlert& alert : AlertEngine::evaluateMac(before, snapshot, defaultRules())) {
        const IslandContent content = islandContent(alert);
        fuzz::require(!content.title.empty() && !content.subtitle.empty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto value = fuzz::value(data, size);
    if (!value || !value->dictionary())
        return 0;
    if (const auto snapshot = parseSnapshot(*value->dictionary()))
        show(*snapshot);
    const BatteryHealth health = parseHealth(*value->dictionary());
    fuzz::require(!healthPercent(health) || (health.designCapacity && *health.designCapacity >= 1));
    fuzz::require(watts(health).has_value() ==
                  (health.voltageMillivolts.has_value() && health.amperageMilliamps.has_value()));
    return 0;
}
