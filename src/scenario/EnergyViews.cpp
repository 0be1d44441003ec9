// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"
#include "platform/Workspace.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "support/Json.h"
#include "ui/EnergyPane.h"

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

EnergyMonitor::Window windowNamed(const std::string& name, const std::string& what) {
    if (const auto window = EnergyMonitor::windows.value(name))
        return *window;
    throw DecodingError(what + " cannot be \"" + name + "\"");
}

ViewTable::View readUsage(RecordReader& options) {
    const auto window = windowNamed(options.requireString("window"), options.path("window"));
    const bool apps = options.optionalBool("apps").value_or(true);
    const auto limit = options.optionalInteger("limit").value_or(usualLimit);
    if (limit < 0)
        throw DecodingError(options.path("limit") + " must not be negative");
    return [=](ScenarioRun& run) {
        return record(run.coordinator()->energy().usage(window, apps, static_cast<std::size_t>(limit)));
    };
}

PropertyValue record(const EnergyPaneContent& pane) {
    Array rows;
    for (const auto& row : pane.rows)
        rows.push_back(
            Dictionary{{"name", row.name}, {"value", row.value}, {"share", row.share}, {"icon", row.icon}});
    PropertyValue empty;
    if (pane.empty) {
        empty = Dictionary{
            {"symbol", pane.empty->symbol}, {"title", pane.empty->title}, {"text", pane.empty->text}};
    }
    return Dictionary{{"title", pane.title},     {"subtitle", pane.subtitle},
                      {"insight", pane.insight}, {"rows", std::move(rows)},
                      {"empty", empty},          {"footnote", pane.footnote}};
}

ViewTable::View readPane(RecordReader& options) {
    const auto window = windowNamed(options.optionalString("window").value_or("day"), options.path("window"));
    const bool showsApps = options.optionalBool("showsApps").value_or(true);
    return [=](ScenarioRun& run) {
        const auto calendar = TimeZone::named(run.machine().workspace().timeZone());
        return record(
            energyPaneContent(run.coordinator()->energy(), window, showsApps, calendar.value_or(TimeZone())));
    };
}

} // namespace

void addEnergyViews(ViewTable& views) {
    views.addPlain("energy", energy);
    views.add("usage", readUsage);
    views.add("settings.energy", readPane);
}

} // namespace kivo
