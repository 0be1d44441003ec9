// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AlertsPane.h"
#include "ui/SettingsTexts.h"
#include "views/Blocks.h"
#include "views/SettingsTabView.h"

#include <memory>
#include <vector>

namespace kivo {

class FormButton;
class RuleView;

// The alerts tab: a preview of an island, then the families of rules.
class AlertsTab final : public SettingsTabView {
public:
    AlertsTab(Kit& kit, SettingsModel& model);
    ~AlertsTab() override;

    void refresh() override;

private:
    struct Family {
        Card* card = nullptr;
        FormButton* add = nullptr; // none where nothing can be added
        std::vector<RuleView*> rules;
    };
    void addFamily(const AlertsPaneContent::Section& content);
    void showRules(Family& family, const std::vector<AlertsPaneContent::Rule>& rules);

    Kit& kit_;
    SettingsModel& model_;
    RuleEditorTexts texts_ = ruleEditorTexts();
    std::vector<Family> families_;
};

} // namespace kivo
