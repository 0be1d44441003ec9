// SPDX-License-Identifier: MIT
#include "views/GeneralTab.h"

#include "ui/SettingsModel.h"
#include "views/HelpCard.h"
#include "views/PermissionControl.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kivo {

namespace {

// A button that stands in a row alone.
QWidget* buttonRow(FormButton* button) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(16 - focusRoom, 8, 16, 8);
    line->addWidget(button);
    line->addStretch(1);
    return row;
}

TextBlock* title(const std::string& text) {
    return new TextBlock(TextBlock::Style::row, text);
}

} // namespace

GeneralTab::GeneralTab(Kit& kit, SettingsModel& model) : kit_(kit), model_(model) {
    const GeneralPaneContent content = model.general();
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(24);
    lines->addWidget(makeBehaviour());
    lines->addWidget(makeChargeLimit(content));
    lines->addWidget(makePermissions(content));
    lines->addWidget(makeLogin());
    updates_ = makeUpdates();
    lines->addWidget(updates_);
    lines->addWidget(makeIntroduction(content));
    lines->addWidget(helpSection(kit, helpContent()));
    lines->addStretch(1);
    refresh();
}

Switch* GeneralTab::addSwitch(const std::string& title, void (SettingsModel::*change)(bool)) {
    auto* control = new Switch(kit_, title);
    connect(control, &Switch::toggled, this, [this, change](bool isOn) { (model_.*change)(isOn); });
    return control;
}

QWidget* GeneralTab::makeBehaviour() {
    auto* card = new Card;
    showsOverlay_ = addSwitch(texts_.showsOverlay, &SettingsModel::setShowsOverlay);
    playsSound_ = addSwitch(texts_.playsSound, &SettingsModel::setPlaysSound);
    card->addRow(switchRow(showsOverlay_, texts_.showsOverlay));
    card->addRow(switchRow(playsSound_, texts_.playsSound));
    return card;
}

QWidget* GeneralTab::makeChargeLimit(const GeneralPaneContent& content) {
    auto* card = new Card;
    auto* open = new FormButton(kit_, FormButton::Kind::plain, content.chargeLimitButton);
    connect(open, &FormButton::clicked, this, [this] { model_.openBatterySettings(); });
    auto* text = new TextBlock(TextBlock::Style::caption, content.chargeLimitText);
    card->addRow(new Row(textColumn({text}), open));
    return section(texts_.chargeLimit, {}, nullptr, card);
}

QWidget* GeneralTab::makePermissions(const GeneralPaneContent& content) {
    auto* card = new Card;
    notifications_ = new PermissionControl(kit_, texts_.notifications, texts_.granted, FormButton::Kind::plain,
                                           [this] { model_.requestNotifications(); });
    notifications_->show(content.notifications.button);
    card->addRow(new Row(textColumn({title(texts_.notifications)}), notifications_));
    dismisses_ = addSwitch(texts_.dismisses, &SettingsModel::setDismissesSystemAlerts);
    card->addRow(switchRow(dismisses_, texts_.dismisses, content.dismissesText));
    accessibility_ = new PermissionControl(kit_, texts_.accessibility, texts_.granted, FormButton::Kind::plain,
                                           [this] { model_.requestAccessibility(); });
    accessibility_->show(content.accessibility.button);
    card->addRow(new Row(textColumn({title(texts_.accessibility)}), accessibility_));
    return section(texts_.permission, {}, nullptr, card);
}

QWidget* GeneralTab::makeLogin() {
    auto* card = new Card;
    opensAtLogin_ = addSwitch(texts_.openAtLogin, &SettingsModel::setOpensAtLogin);
    loginError_ = new TextBlock(TextBlock::Style::caption);
    loginError_->setForegroundRole(QPalette::LinkVisited);
    card->addRow(new Row(textColumn({title(texts_.openAtLogin), loginError_}), opensAtLogin_));
    return card;
}

QWidget* GeneralTab::makeUpdates() {
    auto* card = new Card;
    updatesAutomatically_ = addSwitch(texts_.updatesAutomatically, &SettingsModel::setUpdatesAutomatically);
    card->addRow(switchRow(updatesAutomatically_, texts_.updatesAutomatically));
    checkForUpdates_ = new FormButton(kit_, FormButton::Kind::plain, texts_.checkForUpdates);
    connect(checkForUpdates_, &FormButton::clicked, this, [this] { model_.checkForUpdates(); });
    card->addRow(buttonRow(checkForUpdates_));
    return section(texts_.updates, {}, nullptr, card);
}

QWidget* GeneralTab::makeIntroduction(const GeneralPaneContent& content) {
    auto* card = new Card;
    auto* button = new FormButton(kit_, FormButton::Kind::plain, content.introduction);
    connect(button, &FormButton::clicked, this, [this] { model_.showIntroduction(); });
    card->addRow(buttonRow(button));
    return card;
}

void GeneralTab::refresh() {
    const GeneralPaneContent content = model_.general();
    showsOverlay_->show(content.showsOverlay);
    playsSound_->show(content.playsSound);
    notifications_->show(content.notifications.button);
    dismisses_->show(content.dismissesSystemAlerts);
    accessibility_->show(content.accessibility.button);
    opensAtLogin_->show(content.opensAtLogin);
    loginError_->show(content.loginError.value_or(std::string()));
    loginError_->setVisible(content.loginError.has_value());
    updates_->setVisible(content.updates.has_value());
    if (content.updates) {
        updatesAutomatically_->show(content.updates->isAutomatic);
        checkForUpdates_->setEnabled(content.updates->canCheck);
    }
}

} // namespace kivo
