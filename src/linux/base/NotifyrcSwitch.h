// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Folders.h"
#include "linux/base/NoticeSwitch.h"

#include <string>
#include <vector>

namespace kivo {

// Plasma's pop-up for the event "lowbattery" of its power management: the word "Popup" in the event's list of
// actions. Sounds and what else the user chose stay. The value is the whole text of the user's
// powerdevil.notifyrc, null when there is no such file. The event "criticalbattery" is left alone: its pop-up
// is where the user can still stop the computer from going to sleep.
class NotifyrcSwitch final : public NoticeSwitch {
public:
    static constexpr std::string_view ownName = "powerdevil";

    explicit NotifyrcSwitch(const EnvironmentLookup& environment = environmentVariable);

    std::string_view name() const override { return ownName; }
    std::optional<PropertyValue> read() override;
    PropertyValue silenced(const PropertyValue& value) override;
    PropertyValue restored(const PropertyValue& now, const PropertyValue& before) override;
    std::optional<std::string> write(const PropertyValue& value) override;

private:
    // The actions that count while the user's own file does not name them.
    std::optional<std::string> defaultActions() const;

    std::string path_;
    std::vector<std::string> systemFiles_; // of the administrator, then of the program itself; earlier ones win
    std::size_t administratorFiles_ = 0;
};

} // namespace kivo
