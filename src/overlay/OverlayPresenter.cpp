// SPDX-License-Identifier: MIT
#include "overlay/OverlayPresenter.h"

#include "platform/OverlayPanel.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr std::size_t longestQueue = 4;
// How long the exit takes; the panel must not go before.
const Duration exitTime = seconds(0.52);

} // namespace

OverlayPresenter::OverlayPresenter(MainLoop& loop, Screens& screens, OverlayPanel& panel)
    : screens_(screens), panel_(panel), dwell_(loop) {}

void OverlayPresenter::present(IslandContent content) {
    const auto& current = model_.content.get();
    if (!current || !isBusy() || current->subjectID == content.subjectID) {
        show(content);
        return;
    }
    std::erase_if(queue_, [&](const IslandContent& waiting) { return waiting.subjectID == content.subjectID; });
    queue_.push_back(std::move(content));
    while (queue_.size() > longestQueue)
        queue_.pop_front();
}

void OverlayPresenter::screenChanged() {
    const auto screen = isBusy() ? targetScreen() : std::nullopt;
    if (!screen)
        return;
    panel_.setFrame(screen->frame);
    panel_.orderFront();
    model_.metrics.set(metrics(*screen));
}

void OverlayPresenter::show(const IslandContent& content) {
    const auto screen = targetScreen();
    if (!screen)
        return;
    panel_.setFrame(screen->frame);
    panel_.orderFront();
    const bool isRetarget = isBusy();
    const Duration dwell = content.dwell;
    model_.update(content, isRetarget, metrics(*screen));
    if (onPresent)
        onPresent(content);
    dwell_.start({
        {dwell, [this] { model_.isPresented.set(false); }},
        {exitTime, [this] { showNext(); }},
    });
}

void OverlayPresenter::showNext() {
    if (queue_.empty()) {
        panel_.orderOut();
        return;
    }
    const IslandContent next = std::move(queue_.front());
    queue_.pop_front();
    show(next);
}

std::optional<Screen> OverlayPresenter::targetScreen() {
    const auto screens = screens_.screens();
    const Point mouse = screens_.mouseLocation();
    const auto under = std::find_if(screens.begin(), screens.end(),
                                    [&](const Screen& screen) { return contains(screen.frame, mouse); });
    if (under != screens.end())
        return *under;
    if (const auto main = screens_.mainScreen())
        return main;
    return screens.empty() ? std::nullopt : std::optional(screens.front());
}

IslandMetrics OverlayPresenter::metrics(const Screen& screen) {
    IslandMetrics metrics;
    metrics.screenSize = {screen.frame.width, screen.frame.height};
    if (screen.auxiliaryTopLeft && screen.auxiliaryTopRight) {
        metrics.notchWidth =
            std::max(0.0, screen.frame.width - *screen.auxiliaryTopLeft - *screen.auxiliaryTopRight);
    }
    metrics.topInset = std::max(screen.safeTop, screens_.statusBarThickness());
    return metrics;
}

} // namespace kivo
