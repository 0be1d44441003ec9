// SPDX-License-Identifier: MIT
#include "app/LoginItem.h"

#include "platform/LoginService.h"
#include "support/Text.h"

namespace kivo {

LoginItem::LoginItem(LoginService& service, LogSink& log)
    : service_(service), logger_(log, "login-item"), isEnabled_(service.isEnabled()) {
    service_.onLateOutcome = lifetime_.guard([this](const std::optional<std::string>& error) { show(error); });
}

void LoginItem::setEnabled(bool isEnabled) {
    show(isEnabled ? service_.registerItem() : service_.unregisterItem());
}

void LoginItem::show(const std::optional<std::string>& error) {
    if (error) {
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
