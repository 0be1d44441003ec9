// SPDX-License-Identifier: MIT
#include "views/NotifiedIslands.h"

#include "platform/NotificationCenter.h"

namespace kivo {

OverlayChoice chooseOverlay(std::string_view platform) {
    if (platform.starts_with("wayland"))
        return {OverlayWay::notifications, "Islands show as notifications: Wayland without XWayland"};
    if (platform == "xcb")
        return {OverlayWay::windows, "Islands show in X11 windows"};
    return {OverlayWay::windows, "Islands show nowhere: there is no display"};
}

void NotifiedIslands::show(OverlayModel& model) {
    change_ = model.token.onChange([this, &model] {
        if (const auto& content = model.content.get())
            notifications_.add({"kivo." + content->subjectID, content->title, content->subtitle},
                               [](std::optional<std::string>) {});
    });
}

} // namespace kivo
