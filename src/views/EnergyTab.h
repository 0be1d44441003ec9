// SPDX-License-Identifier: MIT
#pragma once

#include "ui/EnergyPane.h"
#include "ui/SettingsTexts.h"
#include "views/Blocks.h"
#include "views/Pickers.h"
#include "views/SettingsTabView.h"

#include <QIcon>

#include <functional>

namespace kivo {

class EnergyRowView;

// The energy tab: who used the most, over a period to choose.
class EnergyTab final : public SettingsTabView {
public:
    using IconFor = std::function<QIcon(const std::string& path)>;

    EnergyTab(Kit& kit, SettingsModel& model, IconFor iconFor);

    void refresh() override;

private:
    QWidget* makePickers(Kit& kit);
    void showRows(const std::vector<EnergyPaneContent::Row>& rows);

    Kit& kit_;
    SettingsModel& model_;
    IconFor iconFor_;
    EnergyPaneTexts texts_ = energyPaneTexts();
    TextBlock* title_;
    TextBlock* subtitle_;
    Segments* period_ = nullptr;
    Segments* kind_ = nullptr;
    QWidget* insight_;
    TextBlock* insightText_;
    Card* card_;
    QWidget* empty_ = nullptr; // while there are no rows
    std::vector<EnergyRowView*> rows_;
    TextBlock* footnote_;
};

} // namespace kivo
