// SPDX-License-Identifier: MIT
#include "scenario/Records.h"

namespace kivo {
namespace {

PropertyValue record(const IslandContent::Leading& leading) {
    if (const auto* battery = std::get_if<IslandContent::Battery>(&leading))
        return Dictionary{
            {"battery", Dictionary{{"level", battery->level}, {"isCharging", battery->isCharging}}}};
    return Dictionary{{"symbol", std::get<IslandContent::Symbol>(leading).name}};
}

PropertyValue optionalNumber(const std::optional<double>& value) {
    return value ? plainNumber(*value) : PropertyValue();
}

} // namespace

PropertyValue record(Color color) {
    return Array{color.red, color.green, color.blue};
}

PropertyValue record(const BatterySnapshot& snapshot) {
    return Dictionary{
        {"level", snapshot.level},
        {"source", name(snapshot.source)},
        {"isCharging", snapshot.isCharging},
        {"isCharged", snapshot.isCharged},
        {"minutesToEmpty", snapshot.minutesToEmpty},
        {"minutesToFull", snapshot.minutesToFull},
        {"isLowPowerMode", snapshot.isLowPowerMode},
    };
}

PropertyValue record(const BatteryHealth& health) {
    return Dictionary{
        {"cycleCount", health.cycleCount},
        {"ratedCycles", health.ratedCycles},
        {"designCapacity", health.designCapacity},
        {"fullChargeCapacity", health.fullChargeCapacity},
        {"temperatureCelsius", optionalNumber(health.temperatureCelsius)},
        {"voltageMillivolts", health.voltageMillivolts},
        {"amperageMilliamps", health.amperageMilliamps},
    };
}

PropertyValue record(const PowerDevice& device) {
    const PropertyValue stored = encode(device);
    Dictionary members = *stored.dictionary();
    for (const char* key : {"healthPercent", "cycleCount", "connection", "lastSeen"})
        members.try_emplace(key);
    return members;
}

PropertyValue record(const std::vector<PowerDevice>& devices) {
    Array list;
    for (const PowerDevice& device : devices)
        list.push_back(record(device));
    return list;
}

PropertyValue record(const IslandContent& content) {
    return Dictionary{
        {"subjectID", content.subjectID},
        {"title", content.title},
        {"subtitle", content.subtitle},
        {"leading", record(content.leading)},
        {"tint", record(content.tint)},
        {"progress", plainNumber(content.progress)},
        {"isCharging", content.isCharging},
        {"position", overlayPositions.name(content.position)},
        {"glowsScreen", content.glowsScreen},
        {"isUrgent", content.isUrgent},
        {"sound", alertSounds.name(content.sound)},
        {"dwell", plainNumber(inSeconds(content.dwell))},
    };
}

PropertyValue record(const IslandMetrics& metrics) {
    return Dictionary{
        {"screenSize", record(metrics.screenSize)},
        {"notchWidth", plainNumber(metrics.notchWidth)},
        {"topInset", plainNumber(metrics.topInset)},
    };
}

} // namespace kivo
