// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandMotion.h"
#include "support/Observable.h"
#include "support/Sequence.h"

#include <cstdint>
#include <optional>

namespace kivo {

class OverlayModel;
class Workspace;

// Runs the island on screen: grows it when the model shows a content (first wider, then taller, then the
// texts, then the ring), folds it when the model says that it leaves. With Reduce Motion it fades instead.
// Invariant: one run at a time; a new run takes over from wherever the one before it has brought things.
class IslandChoreography {
public:
    // Acts on what the model does from now on.
    IslandChoreography(MainLoop& loop, OverlayModel& model, Workspace& workspace);

    // State out: what the island is meant to be …
    const IslandPhase& phase() const { return motion_.phase(); }
    bool showsContent() const { return motion_.showsContent(); }
    // … and what it looks like now or later, as long as nothing else happens. Nothing before the first island.
    std::optional<IslandFrame> frame(Duration at) const;
    // From when on it holds still, as long as nothing else happens.
    Duration settlesAt() const { return motion_.settlesAt(); }
    bool isMoving(Duration at) const { return at < settlesAt(); }

    // Callbacks out
    // Something begins to move or changes at once: time to look at `frame` again, and on until `settlesAt`.
    Subscription onChange(std::function<void()> listener) { return changes_.add(std::move(listener)); }

private:
    void modelChanged();
    void appear();
    void leave();
    void growAndFill(const IslandContent& content, bool isRetarget, Duration now);
    void revealContent(bool shakes);

    MainLoop& loop_;
    OverlayModel& model_;
    Workspace& workspace_;
    IslandMotion motion_;
    std::int64_t seenToken_;
    bool wasPresented_;
    Listeners changes_;
    Sequence run_;
    Subscription shakeWait_;
    Subscription metricsChange_;
    Subscription tokenChange_;
    Subscription presentedChange_;
};

} // namespace kivo
