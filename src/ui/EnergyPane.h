// SPDX-License-Identifier: MIT
#pragma once

#include "energy/EnergyMonitor.h"
#include "support/TimeZone.h"

#include <optional>
#include <string>
#include <vector>

namespace kivo {

// What the energy tab of the settings shows.
struct EnergyPaneContent {
    struct Row {
        std::string name;
        std::string value;
        double share = 0;                // 0…1, the length of its bar
        std::optional<std::string> icon; // path of the application's bundle; absent: the symbol for processes
        bool operator==(const Row&) const = default;
    };
    struct Empty {
        std::string symbol;
        std::string title;
        std::string text;
        bool operator==(const Empty&) const = default;
    };

    std::string title;
    std::string subtitle;
    std::optional<std::string> insight; // the span between double asterisks is bold
    std::vector<Row> rows;
    std::optional<Empty> empty; // present exactly when there are no rows
    std::string footnote;
    bool operator==(const EnergyPaneContent&) const = default;
};

// `calendar`: the user's time zone.
EnergyPaneContent energyPaneContent(EnergyMonitor& monitor, EnergyMonitor::Window window, bool showsApps,
                                    const TimeZone& calendar);

// "40 mW", "1.5 W"
std::string powerText(double watts);
// "500 mWh", "2.0 Wh"
std::string energyText(double joules);
// "<1%", "13%"
std::string shareText(double share);

} // namespace kivo
