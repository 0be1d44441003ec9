// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "support/Json.h"

namespace kivo {
namespace {

constexpr std::int64_t usualLimit = 20;

PropertyValue record(const AppEnergyUsage& row) {
    return Dictionary{
        {"key", row.identity.key},     {"name", row.identity.name}, {"bundlePath", row.identity.bundlePath},
        {"isApp", row.identity.isApp}, {"joules", row.joules},      {"share", row.share}};
}

PropertyValue record(const std::vector<AppEnergyUsage>& rows) {
    Array list;
    for (const auto& row : rows)
        list.push_back(record(row));
    return list;
}

PropertyValue energy(ScenarioRun& run) {
    auto& monitor = run.coordinator()->energy();
    const auto insight = monitor.insight();
    return Dictionary{{"now", record(monitor.now().get())},
                      {"nowSeconds", monitor.nowSeconds().get()},
                      {"ledger", json::parse(encode(monitor.ledger().get()))},
                      {"insight", insight ? record(*insight) : PropertyValue()}};
}

ViewTable::View readUsage(RecordReader& options) {
    const auto window = EnergyMonitor::windows.value(options.requireString("window"));
    if (!window)
        reading::mismatch(options.path("window"), "\"now\", \"hour\", \"day\", \"week\" or \"month\"",
                          options.require("window"));
    const bool apps = options.optionalBool("apps").value_or(true);
    const auto limit = options.optionalInteger("limit").value_or(usualLimit);
    if (limit < 0)
        reading::mismatch(options.path("limit"), "an integer of at least 0", options.require("limit"));
    return [=](ScenarioRun& run) {
        return record(run.coordinator()->energy().usage(*window, apps, static_cast<std::size_t>(limit)));
    };
}

} // namespace

void addEnergyViews(ViewTable& views) {
    views.addPlain("energy", energy);
    views.add("usage", readUsage);
}

} // namespace kivo
