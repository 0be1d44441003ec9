// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuContent.h"
#include "views/Buttons.h"

#include <QShortcut>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace kivo {

// The menu's last line: toggles on the left, buttons on the right, their shortcuts in the whole window.
class FooterView final : public QWidget {
public:
    static constexpr int footerHeight = 28;

    FooterView(ViewContext& context, QWidget* parent);

    void setControls(const std::vector<FooterControl>& controls);
    std::vector<QWidget*> focusable() const;

    std::function<void(FooterControl::Action)> onAction;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Control {
        FooterControl record;
        std::unique_ptr<IconButton> button;
        std::unique_ptr<QShortcut> shortcut;
    };
    Control make(const FooterControl& record);
    void layOut();

    ViewContext& context_;
    std::vector<Control> controls_;
};

} // namespace kivo
