// SPDX-License-Identifier: MIT
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "ui/MenuContent.h"

namespace kivo {
namespace {

PropertyValue record(const Ink& ink) {
    if (const auto* color = std::get_if<Color>(&ink))
        return record(*color);
    return std::get<SurfaceInk>(ink) == SurfaceInk::primary ? "primary" : "secondary";
}

PropertyValue stat(const HeroCard::Stat& stat) {
    return Dictionary{{"label", stat.label}, {"value", stat.value}};
}

PropertyValue note(const HeroCard::Note& note) {
    return Dictionary{{"symbol", note.symbol}, {"text", note.text}, {"button", note.button}};
}

PropertyValue hero(const HeroCard& card) {
    return Dictionary{
        {"name", card.name},
        {"symbol", card.symbol},
        {"level", card.level},
        {"tone", name(card.tone)},
        {"pill", Dictionary{{"text", card.pill.text}, {"symbol", card.pill.symbol}}},
        {"stats", list(card.stats, stat)},
        {"notes", list(card.notes, note)},
        {"target", card.target},
        {"targetTip", card.targetTip},
    };
}

PropertyValue tile(const HealthTile& tile) {
    return Dictionary{{"symbol", tile.symbol},
                      {"label", tile.label},
                      {"value", tile.value},
                      {"caption", tile.caption},
                      {"tint", record(tile.tint)}};
}

PropertyValue part(const DeviceRow::Part& part) {
    return Dictionary{
        {"label", part.label}, {"level", part.level}, {"accessibilityLabel", part.accessibilityLabel}};
}

PropertyValue row(const DeviceRow& row) {
    Array details(row.details.begin(), row.details.end());
    return Dictionary{
        {"id", row.id},
        {"name", row.name},
        {"symbol", row.symbol},
        {"level", row.level},
        {"tone", name(row.tone)},
        {"isCharging", row.isCharging},
        {"parts", list(row.parts, part)},
        {"details", std::move(details)},
        {"forget", row.forget},
    };
}

PropertyValue control(const FooterControl& control) {
    return Dictionary{{"symbol", control.symbol},
                      {"help", control.help},
                      {"isOn", control.isOn},
                      {"shortcut", control.shortcut}};
}

} // namespace

void addMenuView(ViewTable& views) {
    views.addPlain("menu", [](ScenarioRun& run) -> PropertyValue {
        const MenuContent menu = menuContent(menuSource(*run.coordinator(), run.machine().loop().date()));
        PropertyValue empty;
        if (menu.empty)
            empty = Dictionary{{"symbol", menu.empty->symbol}, {"text", menu.empty->text}};
        return Dictionary{
            {"hero", menu.hero ? hero(*menu.hero) : PropertyValue()},
            {"empty", empty},
            {"tiles", list(menu.tiles, tile)},
            {"attention", menu.attention},
            {"devices", Dictionary{{"empty", menu.noDevices}, {"rows", list(menu.devices, row)}}},
            {"footer", list(menu.footer, control)},
        };
    });
}

} // namespace kivo
