// SPDX-License-Identifier: MIT
#include "overlay/OverlayModel.h"

#include <utility>

namespace kivo {

void OverlayModel::update(IslandContent newContent, bool retarget, IslandMetrics newMetrics) {
    isRetarget.set(retarget);
    metrics.set(newMetrics);
    content.set(std::move(newContent));
    token.set(token.get() + 1);
    isPresented.set(true);
}

} // namespace kivo
