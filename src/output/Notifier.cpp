// SPDX-License-Identifier: MIT
#include "output/Notifier.h"

#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/Workspace.h"

#include <utility>

namespace kivo {

Notifier::Notifier(MainLoop& loop, NotificationCenter& center, Workspace& workspace, LogSink& log)
    : loop_(loop), center_(center), workspace_(workspace), logger_(log, "notifications") {}

void Notifier::requestAuthorization() {
    center_.becomeDelegate();
    center_.requestAuthorization({"alert", "sound"},
                                 lifetime_.guard([this](const NotificationCenter::Authorization& answer) {
                                     if (answer.error)
                                         logger_.error("Notification authorization failed: " + *answer.error);
                                     else
                                         isAuthorized_.set(answer.isGranted);
                                 }));
}

void Notifier::refreshAuthorization() {
    center_.authorizationStatus(lifetime_.guard([this](NotificationStatus status) {
        isAuthorized_.set(status == NotificationStatus::authorized ||
                          status == NotificationStatus::provisional);
    }));
}

void Notifier::post(std::string title, std::string body, const std::string& subjectID) {
    NotificationRequest request{"kivo." + subjectID, std::move(title), std::move(body)};
    loop_.post(lifetime_.guard([this, request = std::move(request)] {
        center_.add(request, lifetime_.guard([this](const std::optional<std::string>& error) {
            if (error)
                logger_.error("Posting notification failed: " + *error);
        }));
    }));
}

void Notifier::openSettings() {
    workspace_.open("x-apple.systempreferences:com.apple.Notifications-Settings.extension?id=" +
                    std::string(applicationIdentifier));
}

} // namespace kivo
