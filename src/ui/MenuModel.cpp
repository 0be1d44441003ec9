// SPDX-License-Identifier: MIT
#include "ui/MenuModel.h"

#include "app/AppCoordinator.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <utility>

namespace kivo {

namespace {

// Between the moment in which a click takes the focus and the one in which the panel tells of the click.
constexpr double clickSeconds = 0.4;

} // namespace

MenuModel::MenuModel(MainLoop& loop, AppCoordinator& coordinator, Workspace& workspace, Windows& windows)
    : loop_(loop), coordinator_(coordinator), workspace_(workspace), windows_(windows) {}

void MenuModel::open() {
    lostFocusAt_.reset();
    if (isOpen_.get())
        return;
    follow();
    coordinator_.menuWillOpen();
    update();
    isOpen_.set(true);
}

void MenuModel::close() {
    watch_.reset();
    ageing_.cancel();
    isOpen_.set(false);
}

void MenuModel::toggle() {
    const auto lostFocusAt = std::exchange(lostFocusAt_, std::nullopt);
    if (isOpen_.get())
        close();
    else if (!lostFocusAt || loop_.now() - *lostFocusAt > seconds(clickSeconds))
        open();
}

void MenuModel::loseFocus() {
    if (!isOpen_.get())
        return;
    lostFocusAt_ = loop_.now();
    close();
}

bool MenuModel::reducesMotion() const {
    return workspace_.reduceMotion();
}

void MenuModel::perform(FooterControl::Action action) {
    SettingsStore& store = coordinator_.settings();
    switch (action) {
    case FooterControl::Action::showsOverlay:
        store.change([](AlertSettings& settings) { settings.showsOverlay = !settings.showsOverlay; });
        break;
    case FooterControl::Action::playsSound:
        store.change([](AlertSettings& settings) { settings.playsSound = !settings.playsSound; });
        break;
    case FooterControl::Action::settings:
        close();
        windows_.open("settings");
        break;
    case FooterControl::Action::quit:
        if (onQuit)
            onQuit();
        break;
    }
}

void MenuModel::openBatterySettings() {
    close();
    workspace_.open(batterySettingsPage);
}

void MenuModel::forget(std::string_view deviceID) {
    const auto& devices = coordinator_.devices().devices().get();
    const auto found = std::find_if(devices.begin(), devices.end(),
                                    [&](const PowerDevice& device) { return device.id == deviceID; });
    if (found == devices.end() || !isRemembered(*found))
        return;
    // A copy: forgetting changes the list that the device stands in.
    const PowerDevice device = *found;
    coordinator_.devices().ios().forget(device);
}

void MenuModel::follow() {
    watch_.emplace(loop_);
    watch_->onChange = [this] { update(); };
    watch_->follow(coordinator_.monitor().snapshot());
    watch_->follow(coordinator_.monitor().health());
    watch_->follow(coordinator_.monitor().condition());
    watch_->follow(coordinator_.devices().devices());
    watch_->follow(coordinator_.devices().hasLoaded());
    watch_->follow(coordinator_.settings());
}

void MenuModel::update() {
    const MenuSource source = menuSource(coordinator_, loop_.date());
    content_.set(menuContent(source));
    ageing_.cancel();
    if (const auto lasts = menuLasts(source))
        ageing_ = loop_.after(seconds(*lasts), [this] { update(); });
}

} // namespace kivo
