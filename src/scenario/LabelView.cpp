// SPDX-License-Identifier: MIT
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "ui/MenuBarLabel.h"

namespace kivo {
namespace {

PropertyValue glyph(const BatteryGlyph& glyph) {
    return Dictionary{
        {"level", glyph.level},
        {"tint", glyph.tint ? record(*glyph.tint) : PropertyValue("primary")},
        {"showsNumber", glyph.showsNumber},
        {"isCharging", glyph.isCharging},
        {"height", plainNumber(glyph.height)},
        {"accessibilityLabel", glyph.accessibilityLabel},
    };
}

} // namespace

void addLabelView(ViewTable& views) {
    views.addPlain("label", [](ScenarioRun& run) -> PropertyValue {
        AppCoordinator& coordinator = *run.coordinator();
        const MenuBarLabel label =
            menuBarLabel(coordinator.monitor().snapshot().get(), coordinator.settings().value().menuBarStyle);
        return Dictionary{{"symbol", label.symbol},
                          {"glyph", label.glyph ? glyph(*label.glyph) : PropertyValue()},
                          {"text", label.text}};
    });
}

} // namespace kivo
