// SPDX-License-Identifier: MIT
#include "views/TrayMenu.h"

#include "views/MenuPlacement.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace kivo {

namespace {

QScreen* screenOf(const QPoint& point) {
    QScreen* screen = QGuiApplication::screenAt(point);
    return screen ? screen : QGuiApplication::primaryScreen();
}

} // namespace

TrayMenu::TrayMenu(MainLoop& loop, MenuModel& model) : loop_(loop), model_(model) {
    opening_ = model_.isOpen().onChange([this] { follow(); });
}

TrayMenu::~TrayMenu() {
    opening_.cancel();
    contentChange_.cancel();
}

void TrayMenu::toggle(std::optional<QRect> icon) {
    icon_ = icon;
    model_.toggle();
}

void TrayMenu::open(std::optional<QRect> icon) {
    if (window_) {
        window_->raise();
        window_->activateWindow();
        return;
    }
    icon_ = icon;
    model_.open();
}

void TrayMenu::follow() {
    if (model_.isOpen().get() && !window_)
        makeWindow();
    else if (!model_.isOpen().get() && window_)
        dropWindow();
}

void TrayMenu::makeWindow() {
    window_ = std::make_unique<MenuWindow>(loop_, symbols_, model_.reducesMotion());
    window_->onAction = [this](FooterControl::Action action) { model_.perform(action); };
    window_->onNote = [this] { model_.openBatterySettings(); };
    window_->onForget = [this](const std::string& id) { model_.forget(id); };
    window_->onClose = [this] { model_.close(); };
    window_->onFocusLost = [this] { model_.loseFocus(); };
    contentChange_ = model_.content().onChange([this] { window_->setContent(model_.content().get()); });
    window_->setContent(model_.content().get());
    place();
    window_->onResize = [this] { place(); };
    window_->show();
    window_->raise();
    window_->activateWindow();
    window_->setFocus();
}

// This may well be called by the window: it goes once its caller has returned.
void TrayMenu::dropWindow() {
    contentChange_.cancel();
    window_->onResize = nullptr;
    window_->onFocusLost = nullptr;
    window_->hide();
    symbols_.clear();
    loop_.post([dying = std::shared_ptr<MenuWindow>(std::move(window_)), done = onGone]() mutable {
        dying.reset();
        if (done)
            done();
    });
}

void TrayMenu::place() {
    QScreen* screen = screenOf(icon_ ? icon_->center() : QCursor::pos());
    if (!screen)
        return;
    const QRect all = screen->geometry();
    const QRect available = screen->availableGeometry();
    const QRect icon = icon_.value_or(trayCorner(all, available));
    window_->setRoom(available.size() - QSize(16, 16));
    window_->setGeometry(menuPlace(window_->size(), icon, all, available));
}

} // namespace kivo
