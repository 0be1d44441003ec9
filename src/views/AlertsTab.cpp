// SPDX-License-Identifier: MIT
#include "views/AlertsTab.h"

#include "ui/SettingsModel.h"
#include "views/IslandPreview.h"
#include "views/Page.h"
#include "views/RuleView.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kivo {

namespace {

constexpr int ruleInset = 28;

// The button that adds a rule stands in a row of its own, under the titles of the others.
QWidget* addRow(FormButton* button) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(ruleInset - focusRoom - 8, 4, 12, 4);
    line->addWidget(button);
    line->addStretch(1);
    return row;
}

} // namespace

AlertsTab::AlertsTab(Kit& kit, SettingsModel& model) : kit_(kit), model_(model) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(24);
    auto* preview = new IslandPreview(kit);
    lines->addWidget(preview, 0, Qt::AlignHCenter);
    for (const auto& section : model.alerts().content().sections)
        addFamily(section);
    lines->addStretch(1);
    refresh();
}

AlertsTab::~AlertsTab() = default;

void AlertsTab::addFamily(const AlertsPaneContent::Section& content) {
    auto* card = new Card(ruleInset);
    FormButton* add = nullptr;
    if (content.canAdd) {
        add = new FormButton(kit_, FormButton::Kind::link, texts_.add, "plus");
        add->setAccessibleDescription(QString::fromStdString(content.title));
        connect(add, &FormButton::clicked, this,
                [this, family = content.family] { model_.alerts().addRule(family); });
        card->addRow(addRow(add));
    }
    families_.push_back({card, add, {}});
    auto* symbol = new SymbolBlock(kit_, content.symbol, content.color, 18);
    static_cast<QVBoxLayout*>(layout())->addWidget(section(content.title, content.detail, symbol, card));
}

void AlertsTab::refresh() {
    const AlertsPaneContent content = model_.alerts().content();
    for (std::size_t i = 0; i < families_.size() && i < content.sections.size(); ++i)
        showRules(families_[i], content.sections[i].rules);
    orderFocus(this);
}

void AlertsTab::showRules(Family& family, const std::vector<AlertsPaneContent::Rule>& rules) {
    const RuleActions actions{
        .toggleExpanded =
            [this](std::size_t index) {
                model_.alerts().toggleExpanded(index);
                refresh();
            },
        .test = [this](std::size_t index) { model_.alerts().test(index); },
        .remove = [this](std::size_t index) { model_.alerts().deleteRule(index); },
        .edit = [this](std::size_t index, const RuleEdit& edit) { model_.alerts().edit(index, edit); }};
    while (family.rules.size() < rules.size()) {
        auto* rule = new RuleView(kit_, texts_, actions);
        family.card->insertRow(static_cast<int>(family.rules.size()), rule);
        family.rules.push_back(rule);
        // Below them, also for the keyboard and for readers.
        if (family.add)
            family.add->parentWidget()->raise();
    }
    while (family.rules.size() > rules.size()) {
        RuleView* last = family.rules.back();
        family.rules.pop_back();
        if (family.rules.size() == rules.size() && family.add && last->isAncestorOf(window()->focusWidget()))
            family.add->setFocus(Qt::OtherFocusReason);
        last->hide();
        last->deleteLater();
    }
    for (std::size_t i = 0; i < rules.size(); ++i)
        family.rules[i]->show(rules[i]);
}

} // namespace kivo
