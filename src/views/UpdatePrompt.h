// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UpdateFinding.h"
#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "views/UpdateWindow.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

// Shows what a check for updates found, in one window: a newer finding takes the older one's place. Nothing of
// the window stays when it closes. What nobody asked for does not take the keyboard from what is being typed.
class UpdatePrompt {
public:
    explicit UpdatePrompt(MainLoop& loop) : loop_(loop) {}

    void show(const UpdateFinding& finding);
    void close();
    bool isOpen() const { return window_ != nullptr; }

    // Callbacks out
    std::function<void(const std::string& page)> onOpenPage;
    std::function<void(const std::string& version)> onSkip;
    // The window is gone, and what it held.
    std::function<void()> onGone;

private:
    MainLoop& loop_;
    std::unique_ptr<UpdateWindow> window_;
    std::vector<std::unique_ptr<UpdateWindow>> leaving_;
    Lifetime lifetime_;
};

} // namespace kivo
