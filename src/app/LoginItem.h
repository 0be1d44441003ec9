// SPDX-License-Identifier: MIT
#pragma once

#include "support/Lifetime.h"
#include "support/Log.h"
#include "support/Observable.h"

#include <optional>
#include <string>

namespace kivo {

class LoginService;

// Opening at login, as the platform does it and as the user sees it.
class LoginItem {
public:
    LoginItem(LoginService& service, LogSink& log);

    // Changes it and shows what the platform actually did.
    void setEnabled(bool isEnabled);
    // Reads it anew.
    void refresh();

    // As last read from the platform.
    Observable<bool>& isEnabled() { return isEnabled_; }
    // In the user's language; absent unless the last change failed.
    Observable<std::optional<std::string>>& errorMessage() { return errorMessage_; }

private:
    void show(const std::optional<std::string>& error);

    LoginService& service_;
    Logger logger_;
    Observable<bool> isEnabled_;
    Observable<std::optional<std::string>> errorMessage_;
    Lifetime lifetime_;
};

} // namespace kivo
