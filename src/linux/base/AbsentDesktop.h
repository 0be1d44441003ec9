// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OverlayPanel.h"
#include "platform/Windows.h"

namespace kivo {

// A machine without a desktop: nothing shows, sounds or lasts.

class AbsentOverlayPanel final : public OverlayPanel {
public:
    void setFrame(Rect) override {}
    void orderFront() override {}
    void orderOut() override {}
};

class AbsentWindows final : public Windows {
public:
    void open(std::string_view) override {}
    void close(std::string_view) override {}
};

} // namespace kivo
