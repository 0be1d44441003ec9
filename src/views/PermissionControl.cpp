// SPDX-License-Identifier: MIT
#include "views/PermissionControl.h"

#include "views/Convert.h"

#include <QHBoxLayout>

namespace kivo {

PermissionControl::PermissionControl(Kit& kit, const std::string& subject, const std::string& done,
                                     FormButton::Kind kind, std::function<void()> ask) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    button_ = new FormButton(kit, kind, {});
    button_->setAccessibleDescription(toQString(subject));
    connect(button_, &FormButton::clicked, this, [ask = std::move(ask)] { ask(); });
    line->addWidget(button_);
    sign_ = new QWidget;
    auto* parts = new QHBoxLayout(sign_);
    parts->setContentsMargins(focusRoom, 0, focusRoom, 0);
    parts->setSpacing(5);
    parts->addWidget(new SymbolBlock(kit, "checkmark.circle.fill", color(LevelTone::charging), 18));
    auto* text = new TextBlock(TextBlock::Style::field, done);
    text->setWordWrap(false);
    parts->addWidget(text);
    line->addWidget(sign_);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void PermissionControl::show(const std::optional<std::string>& button) {
    if (button)
        button_->setText(toQString(*button));
    button_->setVisible(button.has_value());
    sign_->setVisible(!button);
}

} // namespace kivo
