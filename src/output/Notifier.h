// SPDX-License-Identifier: MIT
#pragma once

#include "support/Lifetime.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <string>

namespace kivo {

class NotificationCenter;
class Workspace;

// Posts a system notification for each alert that asks for one, and knows whether the user allows them.
class Notifier {
public:
    Notifier(MainLoop& loop, NotificationCenter& center, Workspace& workspace, LogSink& log);

    // Asks for permission; an answer moves `isAuthorized`, an error is logged and leaves it.
    void requestAuthorization();
    // Reads the permission anew.
    void refreshAuthorization();
    // Posts without waiting, permitted or not. A later notification about the same subject ("mac" or a device's
    // id) takes the earlier one's place. A failure is logged and not repeated.
    void post(std::string title, std::string body, const std::string& subjectID);
    // Opens the system's notification settings for this application.
    void openSettings();

    // False until a request or refresh says otherwise.
    Observable<bool>& isAuthorized() { return isAuthorized_; }

private:
    MainLoop& loop_;
    NotificationCenter& center_;
    Workspace& workspace_;
    Logger logger_;
    Observable<bool> isAuthorized_{false};
    Lifetime lifetime_;
};

} // namespace kivo
