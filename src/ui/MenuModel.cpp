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
    changes_.clear();
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
    AlertSettings settings = coordinator_.settings().value();
    switch (action) {
    case FooterControl::Action::showsOverlay:
        settings.showsOverlay = !settings.showsOverlay;
        coordinator_.settings().setValue(std::move(settings));
        break;
    case FooterControl::Action::playsSound:
        settings.playsSound = !settings.playsSound;
        coordinator_.settings().setValue(std::move(settings));
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
    workspace_.open("x-apple.systempreferences:com.apple.Battery-Settings.extension");
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
    const auto changed = [this] { updateSoon(); };
    BatteryMonitor& battery = coordinator_.monitor();
    DeviceMonitor& devices = coordinator_.devices();
    changes_.push_back(battery.snapshot().onChange(changed));
    changes_.push_back(battery.health().onChange(changed));
    changes_.push_back(battery.condition().onChange(changed));
    changes_.push_back(devices.devices().onChange(changed));
    changes_.push_back(devices.hasLoaded().onChange(changed));
    changes_.push_back(coordinator_.settings().onChange(changed));
}

void MenuModel::updateSoon() {
    if (std::exchange(isUpdateDue_, true))
        return;
    loop_.post(lifetime_.guard([this] {
        isUpdateDue_ = false;
        if (isOpen_.get())
            update();
    }));
}

void MenuModel::update() {
    const MenuSource source = menuSource(coordinator_, loop_.date());
    content_.set(menuContent(source));
    ageing_.cancel();
    if (const auto lasts = menuLasts(source))
        ageing_ = loop_.after(seconds(*lasts), [this] { update(); });
}

} // namespace kivo
