// SPDX-License-Identifier: MIT
#include "app/LoginItem.h"

#include "platform/LoginService.h"
#include "support/Text.h"

namespace kivo {

LoginItem::LoginItem(LoginService& service, LogSink& log)
    : service_(service), logger_(log, "login-item"), isEnabled_(service.isEnabled()) {}

void LoginItem::setEnabled(bool isEnabled) {
    if (const auto error = isEnabled ? service_.registerItem() : service_.unregisterItem()) {
        logger_.error("Login item change failed: " + *error);
        errorMessage_.set(localized("Couldn’t change this. Move Kivo to Applications and try again."));
    } else {
        errorMessage_.set(std::nullopt);
    }
    refresh();
}

void LoginItem::refresh() {
    isEnabled_.set(service_.isEnabled());
}

} // namespace kivo
