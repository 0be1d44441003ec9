// SPDX-License-Identifier: MIT
#pragma once

#include "ui/SettingsContent.h"
#include "ui/SettingsTexts.h"
#include "views/Blocks.h"
#include "views/SettingsTabView.h"

namespace kivo {

class PermissionControl;

// The general tab: behaviour, permissions, login, updates, help.
class GeneralTab final : public SettingsTabView {
public:
    GeneralTab(Kit& kit, SettingsModel& model);

    void refresh() override;

private:
    QWidget* makeBehaviour();
    QWidget* makeChargeLimit(const GeneralPaneContent& content);
    QWidget* makePermissions(const GeneralPaneContent& content);
    QWidget* makeLogin();
    QWidget* makeUpdates();
    QWidget* makeIntroduction(const GeneralPaneContent& content);
    Switch* addSwitch(const std::string& title, void (SettingsModel::*change)(bool));

    Kit& kit_;
    SettingsModel& model_;
    GeneralPaneTexts texts_ = generalPaneTexts();
    Switch* showsOverlay_ = nullptr;
    Switch* playsSound_ = nullptr;
    PermissionControl* notifications_ = nullptr;
    Switch* dismisses_ = nullptr;
    PermissionControl* accessibility_ = nullptr;
    Switch* opensAtLogin_ = nullptr;
    TextBlock* loginError_ = nullptr;
    QWidget* updates_ = nullptr;
    Switch* updatesAutomatically_ = nullptr;
    FormButton* checkForUpdates_ = nullptr;
};

} // namespace kivo
