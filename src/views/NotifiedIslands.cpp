// SPDX-License-Identifier: MIT
#include "views/NotifiedIslands.h"

#include "platform/NotificationCenter.h"

namespace kivo {

void NotifiedIslands::show(OverlayModel& model) {
    change_ = model.token.onChange([this, &model] { notify(model); });
    if (model.isPresented.get())
        notify(model);
}

void NotifiedIslands::notify(const OverlayModel& model) {
    if (const auto& content = model.content.get())
        notifications_.add({"kivo." + content->subjectID, content->title, content->subtitle},
                           [](const std::optional<std::string>&) {});
}

} // namespace kivo
