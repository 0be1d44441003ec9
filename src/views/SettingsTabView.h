// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace kivo {

class SettingsModel;

// What a tab of the settings window shows. Made when the tab is chosen, gone with the next choice.
class SettingsTabView : public QWidget {
public:
    // Shows what the model says now.
    virtual void refresh() = 0;
};

} // namespace kivo
