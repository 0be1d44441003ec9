// SPDX-License-Identifier: MIT
#include "ui/EnergyPane.h"

#include "support/Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

namespace kivo {
namespace {

constexpr std::size_t mostRows = 20;

// A half is rounded away from zero. Past what a double counts one by one, amounts mean nothing.
std::int64_t rounded(double value) {
    constexpr double most = 9'007'199'254'740'992;
    return static_cast<std::int64_t>(std::clamp(std::round(value), -most, most));
}

// Exact halves go away from zero here too.
std::string oneDecimal(double value) {
    return decimalText(std::round(value * 10) / 10, 1);
}

// "Jan 5, 9 AM" by the clocks of the place.
std::string dayAndHour(Date date, const TimeZone& calendar) {
    using namespace std::chrono;
    // Hours come from a file; a calendar ends far sooner than doubles do.
    constexpr double farthest = 1e11;
    constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto local =
        static_cast<std::int64_t>(std::floor(std::clamp(date.unixSeconds(), -farthest, farthest))) +
        calendar.offset(date);
    const sys_days day = floor<days>(sys_seconds(std::chrono::seconds(local)));
    const year_month_day civil(day);
    const auto hour = (local - std::chrono::seconds(day.time_since_epoch()).count()) / 3600;
    return localized("%@ %lld, %lld %@",
                     {localized(months[static_cast<unsigned>(civil.month()) - 1]),
                      static_cast<std::int64_t>(static_cast<unsigned>(civil.day())),
                      static_cast<std::int64_t>((hour + 11) % 12 + 1), localized(hour < 12 ? "AM" : "PM")});
}

std::string valueText(const AppEnergyUsage& usage, EnergyMonitor::Window window, double nowSeconds) {
    const std::string amount =
        window == EnergyMonitor::Window::now ? powerText(usage.joules / nowSeconds) : energyText(usage.joules);
    return amount + " · " + shareText(usage.share);
}

} // namespace

std::string powerText(double watts) {
    if (watts < 1)
        return localized("%lld mW", {rounded(watts * 1000)});
    return localized("%@ W", {oneDecimal(watts)});
}

std::string energyText(double joules) {
    const double wattHours = joules / 3600;
    if (wattHours < 1)
        return localized("%lld mWh", {rounded(wattHours * 1000)});
    return localized("%@ Wh", {oneDecimal(wattHours)});
}

std::string shareText(double share) {
    // Not the other way round: a share of nothing at all is no number.
    if (!(share >= 0.01))
        return localized("<1%");
    return localized("%lld%", {rounded(share * 100)});
}

EnergyPaneContent energyPaneContent(EnergyMonitor& monitor, EnergyMonitor::Window window, bool showsApps,
                                    const TimeZone& calendar) {
    EnergyPaneContent content{.title = localized("Energy by app")};
    const auto firstHour = monitor.ledger().get().firstHour();
    content.subtitle = firstHour ? localized("History since %@", {dayAndHour(*firstHour, calendar)})
                                 : localized("Collecting history");
    if (const auto insight = monitor.insight()) {
        content.insight = localized("**%@** used %@ of the energy in the last hour",
                                    {insight->identity.name, shareText(insight->share)});
    }
    for (const auto& usage : monitor.usage(window, showsApps, mostRows)) {
        content.rows.push_back({.name = usage.identity.name,
                                .value = valueText(usage, window, monitor.nowSeconds().get()),
                                .share = usage.share,
                                .icon = usage.identity.bundlePath});
    }
    if (content.rows.empty()) {
        content.empty = {"bolt.slash", localized("No data yet"),
                         localized("Kivo measures every minute. Check back in a bit.")};
    }
    content.footnote = localized(
        "CPU energy the kernel measures for each process, added up under the app responsible for it "
        "(Chrome’s helpers count as Chrome). Percentages are of the total, apps and system together.");
    return content;
}

} // namespace kivo
