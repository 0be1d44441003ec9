// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UpdateFinding.h"
#include "views/UpdateWindow.h"

#include <functional>
#include <memory>
#include <string>

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

private:
    struct LaterDeleted {
        void operator()(UpdateWindow* window) const;
    };

    MainLoop& loop_;
    std::unique_ptr<UpdateWindow, LaterDeleted> window_;
};

} // namespace kivo
