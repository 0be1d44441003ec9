// SPDX-License-Identifier: MIT
#pragma once

#include "ui/Onboarding.h"
#include "views/Kit.h"

#include <QWidget>

#include <memory>

namespace kivo {

// One page of the introduction. Shows the content of its own step; others are not for it.
class IntroductionPage : public QWidget {
public:
    virtual void show(const OnboardingContent& content) = 0;
};

// The page of the content's step.
std::unique_ptr<IntroductionPage> introductionPage(Kit& kit, Onboarding& onboarding,
                                                   const OnboardingContent& content);

} // namespace kivo
