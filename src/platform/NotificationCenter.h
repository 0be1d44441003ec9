// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// One notification, delivered at once and without a sound of its own.
struct NotificationRequest {
    std::string identifier; // a later request with the same one replaces this one
    std::string title;
    std::string body;
    bool operator==(const NotificationRequest&) const = default;
};

enum class NotificationStatus { notDetermined, denied, authorized, provisional, ephemeral };

// The desktop's notifications. All callbacks run on the main thread, never within the call.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    // Decides how a notification shows while the application is frontmost: always listed and as a banner.
    virtual void becomeDelegate() = 0;

    struct Authorization {
        bool isGranted = false;
        std::optional<std::string> error; // present: there was no answer
    };
    // Options are the names of what is asked for: "alert", "sound".
    virtual void requestAuthorization(std::vector<std::string> options,
                                      std::function<void(Authorization)> done) = 0;
    virtual void authorizationStatus(std::function<void(NotificationStatus)> done) = 0;
    // `done` gets the error's description when the request could not be added.
    virtual void add(NotificationRequest request, std::function<void(std::optional<std::string>)> done) = 0;
};

} // namespace kivo
