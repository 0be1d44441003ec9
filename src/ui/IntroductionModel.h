// SPDX-License-Identifier: MIT
#pragma once

#include "ui/ChangeWatch.h"
#include "ui/Onboarding.h"

#include <functional>

namespace kivo {

// The introduction as whoever draws it knows it. It lives as long as the window and begins on the first page.
class IntroductionModel {
public:
    IntroductionModel(MainLoop& loop, AppCoordinator& coordinator, UserDefaults& defaults);

    // Events in
    // The window has come to the front: what the user may have granted elsewhere is read anew.
    void refresh();

    // What the pages show and what their controls do.
    Onboarding& onboarding() { return onboarding_; }

    // Something that the page shows has changed, whoever changed it.
    void setOnChange(std::function<void()> listener) { watch_.onChange = std::move(listener); }

private:
    AppCoordinator& coordinator_;
    Onboarding onboarding_;
    ChangeWatch watch_;
};

} // namespace kivo
