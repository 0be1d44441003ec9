// SPDX-License-Identifier: MIT
#include "views/SettingsWindow.h"

#include "views/AlertsTab.h"
#include "views/Blocks.h"
#include "views/EnergyTab.h"
#include "views/GeneralTab.h"
#include "views/MenuBarTab.h"
#include "views/Page.h"
#include "views/Surface.h"

#include <QPainter>
#include <QShortcut>
#include <QVBoxLayout>

namespace kivo {

namespace {

constexpr QSize wantedSize{680, 640};

class Hairline final : public QWidget {
public:
    Hairline() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(rect(), surfaceFor(palette()).hairline);
    }
};

} // namespace

SettingsWindow::SettingsWindow(MainLoop& loop, Workspace& workspace, std::unique_ptr<SettingsModel> model,
                               IconFor iconFor)
    : AppWindow(loop, workspace, settingsWindowTitle(), wantedSize),
      model_(std::move(model)),
      iconFor_(std::move(iconFor)) {
    auto* whole = new QWidget;
    auto* lines = new QVBoxLayout(whole);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    strip_ = new TabStrip(kit(), settingsTabTitles());
    auto* head = new QHBoxLayout;
    head->setContentsMargins(8, 6, 8, 6);
    head->addStretch(1);
    head->addWidget(strip_);
    head->addStretch(1);
    lines->addLayout(head);
    lines->addWidget(new Hairline);
    setCentralWidget(whole);
    strip_->setCurrentIndex(static_cast<int>(model_->tab()));
    connect(strip_, &QTabBar::currentChanged, this,
            [this](int index) { choose(settingsTabs.entries[static_cast<std::size_t>(index)].value); });
    for (int i = 0; i < strip_->count(); ++i) {
        const QKeySequence keys(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i));
        connect(new QShortcut(keys, this), &QShortcut::activated, this,
                [this, i] { strip_->setCurrentIndex(i); });
    }
    showTab(model_->tab());
    strip_->setFocus();
    model_->setOnChange([this] { tab_->refresh(); });
}

SettingsWindow::~SettingsWindow() {
    model_->setOnChange(nullptr);
    delete takeCentralWidget();
}

void SettingsWindow::activated() {
    model_->refresh();
}

void SettingsWindow::choose(SettingsTab tab) {
    model_->select(tab);
    strip_->setCurrentIndex(static_cast<int>(tab));
    showTab(tab);
}

void SettingsWindow::showTab(SettingsTab tab) {
    // The keyboard does not stay in what goes.
    if (page_ && page_->isAncestorOf(focusWidget()))
        strip_->setFocus();
    delete page_;
    tab_ = makeTab(tab).release();
    page_ = new Page(tab_, strip_->tabText(static_cast<int>(tab)).toStdString());
    static_cast<QVBoxLayout*>(centralWidget()->layout())->addWidget(page_, 1);
    orderFocus(centralWidget());
}

std::unique_ptr<SettingsTabView> SettingsWindow::makeTab(SettingsTab tab) {
    switch (tab) {
    case SettingsTab::alerts:
        return std::make_unique<AlertsTab>(kit(), *model_);
    case SettingsTab::energy:
        return std::make_unique<EnergyTab>(kit(), *model_, iconFor_);
    case SettingsTab::menuBar:
        return std::make_unique<MenuBarTab>(kit(), *model_);
    case SettingsTab::general:
        break;
    }
    return std::make_unique<GeneralTab>(kit(), *model_);
}

} // namespace kivo
