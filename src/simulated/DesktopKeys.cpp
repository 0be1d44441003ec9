// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

#include "platform/MobileDeviceLibrary.h"
#include "support/TimeZone.h"

#include <algorithm>
#include <array>

namespace kivo {
namespace {

// What the system finds by name at run time, besides the entry points for mobile devices.
constexpr std::array<std::string_view, 4> namesThatCanMiss = {
    "IOPSCopyPowerSourcesByType",
    "IOPSNotificationCreateRunLoopSource",
    "responsibility_get_pid_responsible_for_pid",
    "MobileDevice.framework",
};

bool canMiss(std::string_view name) {
    const auto& entryPoints = MobileDeviceLibrary::entryPoints;
    return std::find(namesThatCanMiss.begin(), namesThatCanMiss.end(), name) != namesThatCanMiss.end() ||
           std::find(entryPoints.begin(), entryPoints.end(), name) != entryPoints.end();
}

NameSet readMissing(const PropertyValue& value) {
    NameSet missing;
    for (auto& name : reading::strings(value, "missing")) {
        if (!canMiss(name))
            throw DecodingError("missing names \"" + name + "\", which the system never looks for");
        missing.insert(std::move(name));
    }
    return missing;
}

Date readTime(const PropertyValue& value) {
    const auto date = Date::fromRFC3339(reading::string(value, "time"));
    if (!date)
        throw DecodingError("time must be a date like \"2026-01-05T09:00:00Z\"");
    return *date;
}

// A zone is looked up only where the system has zone files at all.
std::string readTimeZone(const PropertyValue& value) {
    const std::string& name = reading::string(value, "timeZone");
    if (!TimeZone::named(name) && TimeZone::named("Etc/GMT"))
        throw DecodingError("timeZone \"" + name + "\" is no IANA zone");
    return name;
}

TextMap readEnvironment(const PropertyValue& value) {
    TextMap environment;
    for (const auto& [name, text] : reading::object(value, "environment"))
        environment.emplace(name, reading::string(text, "environment." + name));
    return environment;
}

NameSet readSounds(const PropertyValue& value) {
    const auto names = reading::strings(value, "sounds");
    return NameSet(names.begin(), names.end());
}

std::vector<Screen> readScreens(const PropertyValue& value) {
    std::vector<Screen> screens;
    for (const auto& element : reading::list(value, "screens")) {
        RecordReader record(element, "screens[" + std::to_string(screens.size()) + "]");
        const auto frame = reading::numbers(record.require("frame"), record.path("frame"), 4);
        Screen screen;
        screen.frame = {frame[0], frame[1], frame[2], frame[3]};
        screen.safeTop = record.optionalNumber("safeTop").value_or(0);
        screen.auxiliaryTopLeft = record.optionalNumber("auxiliaryTopLeft");
        screen.auxiliaryTopRight = record.optionalNumber("auxiliaryTopRight");
        record.finish();
        screens.push_back(screen);
    }
    return screens;
}

std::optional<std::size_t> readMainScreen(const PropertyValue& value) {
    if (value.isNull())
        return std::nullopt;
    const std::int64_t index = reading::integer(value, "mainScreen");
    if (index < 0)
        throw DecodingError("mainScreen must not be negative");
    return static_cast<std::size_t>(index);
}

Point readMouse(const PropertyValue& value) {
    const auto place = reading::numbers(value, "mouse", 2);
    return {place[0], place[1]};
}

void addIdentityKeys(MachineKeyTable& table) {
    table["time"] = [](const PropertyValue& value) { return replacing(&MachineState::time, readTime(value)); };
    table["timeZone"] = [](const PropertyValue& value) {
        return replacing(&MachineState::timeZone, readTimeZone(value));
    };
    table["environment"] = [](const PropertyValue& value) {
        return replacing(&MachineState::environment, readEnvironment(value));
    };
    table["computerName"] = [](const PropertyValue& value) {
        const auto name = value.isNull() ? std::nullopt : std::optional(reading::string(value, "computerName"));
        return replacing(&MachineState::computerName, name);
    };
    table["missing"] = [](const PropertyValue& value) {
        return replacing(&MachineState::missing, readMissing(value));
    };
}

} // namespace

void addDesktopKeys(MachineKeyTable& table) {
    addIdentityKeys(table);
    table["sounds"] = [](const PropertyValue& value) {
        return replacing(&MachineState::sounds, readSounds(value));
    };
    table["screens"] = [](const PropertyValue& value) {
        return replacing(&MachineState::screens, readScreens(value));
    };
    table["mainScreen"] = [](const PropertyValue& value) {
        return replacing(&MachineState::mainScreen, readMainScreen(value));
    };
    table["statusBarThickness"] = [](const PropertyValue& value) {
        return replacing(&MachineState::statusBarThickness, reading::number(value, "statusBarThickness"));
    };
    table["mouse"] = [](const PropertyValue& value) {
        return replacing(&MachineState::mouse, readMouse(value));
    };
    table["reduceMotion"] = [](const PropertyValue& value) {
        return replacing(&MachineState::reduceMotion, reading::boolean(value, "reduceMotion"));
    };
}

} // namespace kivo
