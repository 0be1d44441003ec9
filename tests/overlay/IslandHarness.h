// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandChoreography.h"
#include "overlay/OverlayModel.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

namespace kivo {

class QuietWorkspace final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return reducesMotion; }

    bool reducesMotion = false;
};

inline constexpr IslandMetrics notched{{1512, 982}, 200, 38};
inline constexpr IslandMetrics plain{{1440, 900}, 0, 24};

inline IslandContent level(double progress, OverlayPosition position = OverlayPosition::top) {
    IslandContent content;
    content.subjectID = "mac";
    content.title = "Unplugged";
    content.leading = IslandContent::Battery{};
    content.tint = {76, 217, 100};
    content.progress = progress;
    content.position = position;
    content.dwell = seconds(3);
    return content;
}
inline IslandContent urgent(double progress) {
    IslandContent content = level(progress);
    content.isUrgent = true;
    content.tint = {255, 59, 48};
    content.dwell = seconds(4.5);
    return content;
}

// The choreography with a presenter's hand on the model.
struct IslandHarness {
    VirtualLoop loop;
    QuietWorkspace workspace;
    OverlayModel model;
    IslandChoreography island{loop, model, workspace};

    void show(const IslandContent& content, const IslandMetrics& metrics = notched) {
        model.update(content, false, metrics);
    }
    void retarget(const IslandContent& content, const IslandMetrics& metrics = notched) {
        model.update(content, true, metrics);
    }
    void leave() { model.isPresented.set(false); }
    void to(double time) { loop.advanceTo(seconds(time)); }
    IslandFrame frame() const { return *island.frame(loop.now()); }
    IslandFrame frameAt(double time) {
        to(time);
        return frame();
    }
};

} // namespace kivo
