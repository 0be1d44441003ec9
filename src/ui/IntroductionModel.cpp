// SPDX-License-Identifier: MIT
#include "ui/IntroductionModel.h"

#include "app/AppCoordinator.h"

namespace kivo {

IntroductionModel::IntroductionModel(MainLoop& loop, AppCoordinator& coordinator, UserDefaults& defaults)
    : coordinator_(coordinator), onboarding_(coordinator, defaults), watch_(loop) {
    watch_.follow(coordinator.settings());
    watch_.follow(coordinator.monitor().snapshot());
    watch_.follow(coordinator.devices().devices());
    watch_.follow(coordinator.notifier().isAuthorized());
    watch_.follow(coordinator.dismisser().isTrusted());
    watch_.follow(coordinator.loginItem().isEnabled());
}

void IntroductionModel::refresh() {
    coordinator_.refreshPermissions();
}

} // namespace kivo
