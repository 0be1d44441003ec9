// SPDX-License-Identifier: MIT
#include "views/FooterView.h"

#include "views/Convert.h"

#include <QKeySequence>

#include <algorithm>

namespace kivo {

FooterView::FooterView(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

FooterView::Control FooterView::make(const FooterControl& record) {
    Control control{record, std::make_unique<IconButton>(context_, this), nullptr};
    const auto act = [this, action = record.action] {
        if (onAction)
            onAction(action);
    };
    IconButton& button = *control.button;
    connect(&button, &QAbstractButton::clicked, this, act);
    button.setAccessibleName(toQString(record.help));
    button.setToolTip(toQString(record.help));
    if (record.shortcut) {
        const QKeySequence keys =
            QKeySequence::fromString(toQString(*record.shortcut), QKeySequence::PortableText);
        control.shortcut = std::make_unique<QShortcut>(keys, this, act);
        button.setToolTip(toQString(record.help) + QStringLiteral("  ") + toQString(*record.shortcut));
        button.setAccessibleDescription(toQString(*record.shortcut));
    }
    button.show();
    return control;
}

void FooterView::setControls(const std::vector<FooterControl>& controls) {
    const bool isSame = std::equal(
        controls.begin(), controls.end(), controls_.begin(), controls_.end(),
        [](const FooterControl& wanted, const Control& shown) { return wanted.action == shown.record.action; });
    if (!isSame) {
        controls_.clear();
        for (const auto& record : controls)
            controls_.push_back(make(record));
        layOut();
    }
    for (std::size_t i = 0; i < controls.size(); ++i) {
        IconButton& button = *controls_[i].button;
        controls_[i].record = controls[i];
        button.setSymbol(controls[i].symbol);
        button.setCheckable(controls[i].isOn.has_value());
        button.setChecked(controls[i].isOn.value_or(false));
    }
}

std::vector<QWidget*> FooterView::focusable() const {
    std::vector<QWidget*> found;
    for (const auto& control : controls_)
        found.push_back(control.button.get());
    return found;
}

void FooterView::resizeEvent(QResizeEvent*) {
    layOut();
}

void FooterView::layOut() {
    constexpr int gap = 8;
    int left = 0;
    int right = width();
    for (auto& control : controls_) {
        if (!control.record.isOn)
            continue;
        control.button->move(left, 0);
        left += control.button->width() + gap;
    }
    for (auto control = controls_.rbegin(); control != controls_.rend(); ++control) {
        if (control->record.isOn)
            continue;
        right -= control->button->width();
        control->button->move(right, 0);
        right -= gap;
    }
}

} // namespace kivo
