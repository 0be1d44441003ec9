// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/OverlayModel.h"
#include "platform/Screens.h"
#include "support/Sequence.h"

#include <deque>
#include <functional>
#include <optional>

namespace kivo {

class OverlayPanel;

// Puts islands on screen, one at a time. A content about the subject on screen takes its place at once; any
// other waits in a line of at most four, where the newest about a subject counts and the oldest give way.
// Invariant: while an island is out or leaving there is exactly one running dwell; when it ends the next one
// shows or the panel goes.
class OverlayPresenter {
public:
    OverlayPresenter(MainLoop& loop, Screens& screens, OverlayPanel& panel);

    // Events in
    void present(IslandContent content);
    // The screen that the panel is on has gone or has another size: what is out goes on where it would show
    // now.
    void screenChanged();

    // State out
    OverlayModel& model() { return model_; }
    // Oldest first.
    const std::deque<IslandContent>& queue() const { return queue_; }

    // Callbacks out
    // Called when a content is put on screen, retargets and those that waited included. Not called for one
    // that is dropped because there is no screen.
    std::function<void(const IslandContent&)> onPresent;

private:
    bool isBusy() const { return model_.isPresented.get() || dwell_.isRunning(); }
    void show(const IslandContent& content);
    void showNext();
    std::optional<Screen> targetScreen();
    IslandMetrics metrics(const Screen& screen);

    Screens& screens_;
    OverlayPanel& panel_;
    OverlayModel model_;
    std::deque<IslandContent> queue_;
    Sequence dwell_;
};

} // namespace kivo
