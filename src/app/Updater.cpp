// SPDX-License-Identifier: MIT
#include "app/Updater.h"

#include "platform/UpdateService.h"

namespace kivo {

Updater::Updater(UpdateService& service) : service_(service) {
    service_.start();
    observation_ =
        service_.observeCanCheckForUpdates([this] { canCheckForUpdates_.set(service_.canCheckForUpdates()); });
    canCheckForUpdates_.set(service_.canCheckForUpdates());
}

void Updater::checkForUpdates() {
    service_.checkForUpdates();
}

bool Updater::automaticallyChecksForUpdates() const {
    return service_.automaticallyChecksForUpdates();
}

void Updater::setAutomaticallyChecksForUpdates(bool isAutomatic) {
    service_.setAutomaticallyChecksForUpdates(isAutomatic);
}

} // namespace kivo
