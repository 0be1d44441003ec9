// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "support/Log.h"
#include "support/Observable.h"

#include <utility>

namespace kivo {

class UserDefaults;

// The user's settings, one value for the whole application. Every write is stored before it returns.
// Invariant: the value is always complete and valid; settings that cannot be read count as the defaults and
// stay stored as they are until the next write.
class SettingsStore {
public:
    SettingsStore(UserDefaults& defaults, LogSink& log);

    const AlertSettings& value() const { return value_.get(); }
    // Replaces and stores the settings; observers hear only of a different value, the store is written anyway.
    void setValue(AlertSettings value);
    // The same for the settings as `edit`, called with a reference to them, leaves them.
    template <typename Edit>
    void change(Edit&& edit) {
        AlertSettings settings = value();
        std::forward<Edit>(edit)(settings);
        setValue(std::move(settings));
    }
    Subscription onChange(std::function<void()> listener) { return value_.onChange(std::move(listener)); }

private:
    void save();

    UserDefaults& defaults_;
    Logger logger_;
    Observable<AlertSettings> value_;
};

} // namespace kivo
