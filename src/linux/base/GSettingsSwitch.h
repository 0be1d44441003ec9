// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/NoticeSwitch.h"

#include <memory>

namespace kivo {

// GNOME's notifications of the power panel, which its settings daemon sends all its power notices under. The
// value is true, false, or null when the user never set it. The library is loaded when it is first asked, and
// never leaves the process again.
class GSettingsSwitch final : public NoticeSwitch {
public:
    static constexpr std::string_view ownName = "gnome";

    GSettingsSwitch();
    ~GSettingsSwitch() override;

    std::string_view name() const override { return ownName; }
    std::optional<PropertyValue> read() override;
    PropertyValue silenced(const PropertyValue& value) override;
    PropertyValue restored(const PropertyValue& now, const PropertyValue& before) override;
    std::optional<std::string> write(const PropertyValue& value) override;

private:
    struct Library;
    struct Settings;
    // A null pointer where the library, the schema or the right to write is missing.
    Settings* settings();

    std::unique_ptr<Library> library_;
    std::unique_ptr<Settings> settings_;
};

} // namespace kivo
