// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NotificationCenter.h"
#include "platform/PowerSources.h"
#include "platform/Processes.h"
#include "platform/Screens.h"
#include "support/Date.h"
#include "support/Geometry.h"
#include "support/PropertyValue.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kivo {

using NameSet = std::set<std::string, std::less<>>;
using TextMap = std::map<std::string, std::string, std::less<>>;

// What `system_profiler` prints, and how long it takes.
struct SystemProfilerState {
    std::string output;
    double seconds = 0;
};

struct ProcessState {
    std::int32_t pid = 0;
    std::optional<std::string> name;     // absent: the kernel has none
    std::optional<std::uint64_t> energy; // nanojoules; absent: reading the use is refused
    std::int32_t responsible = 0;        // 0: none known
};

struct MobileDeviceState {
    std::optional<std::string> identifier;
    int interfaceType = 1;
    int connectStatus = 0;
    int isPaired = 1;
    int validateStatus = 0;
    int sessionStatus = 0;
    std::map<std::string, Dictionary, std::less<>> values; // by domain; "" is no domain
    // Absent: the diagnostics service cannot be started.
    struct Diagnostics {
        int startStatus = 0;
        Array replies; // null: a failed receive
    };
    std::optional<Diagnostics> diagnostics;
    double readSeconds = 0;
};

struct DefaultsState {
    Dictionary standard;
    std::optional<Dictionary> group = Dictionary(); // absent: the suite cannot be opened
};

struct NotificationState {
    NotificationCenter::Authorization authorization{true, std::nullopt};
    NotificationStatus status = NotificationStatus::authorized;
    std::optional<std::string> addError;
};

struct AccessibilityElementState {
    Dictionary attributes;                           // "AXValue" …, of any type
    std::optional<std::vector<std::string>> actions; // absent: reading them fails
    std::optional<std::vector<AccessibilityElementState>> children;
    bool performError = false;
};

struct AccessibilityApplicationState {
    std::string bundleIdentifier;
    std::int32_t pid = 0;
    std::optional<std::vector<AccessibilityElementState>> windows; // absent: reading them fails
};

struct AccessibilityState {
    bool isTrusted = false;
    bool grantsOnPrompt = false;
    std::vector<AccessibilityApplicationState> applications;
};

struct LoginState {
    bool isEnabled = false;
    std::optional<std::string> error; // the next change fails with it
};

struct UpdateState {
    bool canCheck = true;
    bool isAutomatic = true;
};

// All that a simulated machine is made of. It outlives the processes that run on it; services read it anew at
// each call and write back what the system changes. The defaults are a computer without a battery, with
// everything granted.
struct MachineState {
    MachineState();

    Date time; // of the wall clock at launch
    std::string timeZone = "UTC";
    TextMap environment;
    std::optional<std::string> computerName = "MacBook Pro";
    NameSet missing; // names that cannot be found at run time

    std::optional<std::vector<PowerSourceDescription>> powerSources;
    std::optional<std::vector<PowerSourceDescription>> accessorySources;
    using Services = std::optional<std::vector<std::optional<Dictionary>>>;
    std::map<std::string, Services, std::less<>> registry; // by service class
    bool lowPowerMode = false;
    std::optional<SystemProfilerState> systemProfiler; // absent: cannot be launched

    std::optional<std::vector<ProcessState>> processes; // absent: listing fails
    std::vector<RunningApplication> applications;
    std::map<std::string, MobileDeviceState, std::less<>> mobileDevices; // by reference name
    std::vector<std::string> attached;                                   // reference names

    DefaultsState defaults;
    TextMap support; // file texts by path
    bool supportWritable = true;

    NotificationState notifications;
    NameSet sounds;
    std::vector<Screen> screens;
    std::optional<std::size_t> mainScreen = 0;
    double statusBarThickness = 24;
    Point mouse{0, 1};
    bool reduceMotion = false;
    AccessibilityState accessibility;
    LoginState login;
    UpdateState updates;

    bool isMissing(std::string_view name) const { return missing.find(name) != missing.end(); }
};

} // namespace kivo
