// SPDX-License-Identifier: MIT
#include "battery/BatteryMonitor.h"

#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"
#include "platform/PowerState.h"
#include "platform/ProcessRunner.h"
#include "support/UTF8.h"

#include <utility>

namespace kivo {
namespace {

constexpr double secondsBetweenConditionChecks = 1800;

} // namespace

BatteryMonitor::BatteryMonitor(MainLoop& loop, PowerSources& powerSources, DeviceRegistry& registry,
                               PowerState& powerState, ProcessRunner& processRunner)
    : loop_(loop),
      powerSources_(powerSources),
      registry_(registry),
      powerState_(powerState),
      processRunner_(processRunner) {}

void BatteryMonitor::start() {
    if (powerSourceChanges_)
        return;
    refresh();
    powerSourceChanges_ = powerSources_.notifyPowerSourceChanges([this] { refresh(); });
    if (!powerSourceChanges_)
        return;
    powerStateChanges_ =
        powerState_.onPowerStateChange([this] { loop_.post(lifetime_.guard([this] { refresh(); })); });
}

void BatteryMonitor::refresh() {
    health_.set(readHealth());
    auto current = readSnapshot();
    if (!current || snapshot_.get() == current)
        return;
    const auto previous = snapshot_.get();
    snapshot_.set(current);
    if (onChange)
        onChange(previous, *current);
}

std::optional<BatterySnapshot> BatteryMonitor::readSnapshot() {
    const auto sources = powerSources_.copyPowerSources();
    if (!sources)
        return std::nullopt;
    for (const auto& description : *sources) {
        if (!description)
            continue;
        if (auto snapshot = parseSnapshot(*description)) {
            snapshot->isLowPowerMode = powerState_.isLowPowerModeEnabled();
            return snapshot;
        }
    }
    return std::nullopt;
}

std::optional<BatteryHealth> BatteryMonitor::readHealth() {
    const auto services = registry_.matchingServices(smartBatteryClass);
    if (!services || services->empty() || !services->front())
        return std::nullopt;
    return parseHealth(*services->front());
}

void BatteryMonitor::refreshConditionIfNeeded() {
    const Date now = loop_.date();
    if (conditionCheckedAt_ && now - *conditionCheckedAt_ < secondsBetweenConditionChecks)
        return;
    // Noted before reading, so that a failed request is not repeated at once either.
    conditionCheckedAt_ = now;
    loop_.post(lifetime_.guard([this] { readCondition(); }));
}

void BatteryMonitor::readCondition() {
    processRunner_.run(systemProfiler, {powerReportArgument},
                       lifetime_.guard([this](const std::optional<std::string>& output) {
                           condition_.set(output ? parseCondition(utf8::repaired(*output)) : std::nullopt);
                       }));
}

std::optional<std::string> parseCondition(std::string_view report) {
    while (!report.empty()) {
        const auto end = report.find_first_of("\n\v\f\r");
        std::string_view line = report.substr(0, end);
        report = end == std::string_view::npos ? std::string_view() : report.substr(end + 1);
        if (line.find("Condition:") == std::string_view::npos)
            continue;
        // The pieces before and after the first colon, empty ones dropped; the last one counts.
        const auto colon = line.find(':');
        std::string_view piece = line.substr(colon + 1);
        if (piece.empty())
            piece = line.substr(0, colon);
        const auto first = piece.find_first_not_of(" \t");
        if (first == std::string_view::npos)
            return std::string();
        return std::string(piece.substr(first, piece.find_last_not_of(" \t") - first + 1));
    }
    return std::nullopt;
}

} // namespace kivo
