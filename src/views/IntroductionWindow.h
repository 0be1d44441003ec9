// SPDX-License-Identifier: MIT
#pragma once

#include "ui/IntroductionModel.h"
#include "views/AppWindow.h"

#include <QPointer>

namespace kivo {

class FormButton;
class IntroductionPage;
class Page;
class ProgressDots;

// The introduction: a page at a time, with the way on below. Closing it counts as having seen it.
class IntroductionWindow final : public AppWindow {
public:
    IntroductionWindow(MainLoop& loop, Workspace& workspace, std::unique_ptr<IntroductionModel> model);
    ~IntroductionWindow() override;

protected:
    void activated() override;
    void dismissed() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeFooter(const OnboardingContent& content);
    void showPage();
    void turnPage();
    void fitFooter();
    void refresh();

    std::unique_ptr<IntroductionModel> model_;
    Page* page_ = nullptr;
    IntroductionPage* shown_ = nullptr;
    OnboardingStep step_ = OnboardingStep::welcome;
    QPointer<QWidget> turn_; // while it runs
    FormButton* back_ = nullptr;
    FormButton* primary_ = nullptr;
    ProgressDots* dots_ = nullptr;
    Subscription stepChange_;
};

} // namespace kivo
