// SPDX-License-Identifier: MIT
#pragma once

#include "ui/SettingsModel.h"
#include "views/AppWindow.h"
#include "views/SettingsTabView.h"
#include "views/TabStrip.h"

#include <QIcon>

namespace kivo {

class Page;

// The settings window: four tabs, of which only the chosen one exists.
class SettingsWindow final : public AppWindow {
public:
    // The icon of the application whose desktop entry has this path; a null one where it has none.
    using IconFor = std::function<QIcon(const std::string& path)>;

    SettingsWindow(MainLoop& loop, Workspace& workspace, std::unique_ptr<SettingsModel> model, IconFor iconFor);
    ~SettingsWindow() override;

    void choose(SettingsTab tab);

protected:
    void activated() override;

private:
    void showTab(SettingsTab tab);
    std::unique_ptr<SettingsTabView> makeTab(SettingsTab tab);

    std::unique_ptr<SettingsModel> model_;
    IconFor iconFor_;
    TabStrip* strip_ = nullptr;
    Page* page_ = nullptr;
    SettingsTabView* tab_ = nullptr;
};

} // namespace kivo
