// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <optional>
#include <string_view>

namespace kivo {

// Whether a program owns this selection of the X display, as compositors ("_NET_WM_CM_S0") and trays
// ("_NET_SYSTEM_TRAY_S0") do while they run. False on other displays.
bool isSelectionOwned(std::string_view name);

// Whether windows are blended on this display; if not, a translucent one shows black where it is clear.
bool isCompositing();

// The same for who asks often: the display is asked once, and tells when a compositor comes or goes.
class CompositingWatch final : private QAbstractNativeEventFilter {
public:
    CompositingWatch() = default;
    ~CompositingWatch() override = default;
    CompositingWatch(const CompositingWatch&) = delete;
    CompositingWatch& operator=(const CompositingWatch&) = delete;

    bool isCompositing();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    bool follow();

    std::optional<bool> known_; // nothing before it is followed
    std::uint32_t selection_ = 0;
    std::uint8_t change_ = 0; // the number of the display's event
};

} // namespace kivo
