// SPDX-License-Identifier: MIT
#pragma once

#include "views/Blocks.h"
#include "views/SettingsTabView.h"

#include <vector>

namespace kivo {

class StyleRow;

// The menu-bar tab: how the battery stands in the panel.
class MenuBarTab final : public SettingsTabView {
public:
    MenuBarTab(Kit& kit, SettingsModel& model);

    void refresh() override;

private:
    SettingsModel& model_;
    std::vector<StyleRow*> styles_;
    TextBlock* note_;
};

} // namespace kivo
