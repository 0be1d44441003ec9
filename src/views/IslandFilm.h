// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandChoreography.h"
#include "overlay/OverlayModel.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"
#include "views/IslandPainter.h"

#include <QImage>

namespace kivo {

// An island's life in virtual time, painted at any instant and without a screen: for pictures and for checks
// of what is painted.
class IslandFilm {
public:
    explicit IslandFilm(IslandMetrics metrics, bool reducesMotion = false);

    // Takes the place of an island that is out or leaving.
    void present(const IslandContent& content);
    void leave();
    void advanceTo(double instant) { loop_.advanceTo(seconds(instant)); } // seconds since the film began

    std::optional<IslandFrame> frame() const { return choreography_.frame(loop_.now()); }
    bool isMoving() const { return choreography_.isMoving(loop_.now()); }
    // Paints what the panel shows over what is on the painter's surface, in points of the screen.
    void paint(QPainter& painter, double scale);

private:
    class Desktop final : public Workspace {
    public:
        void open(std::string_view) override {}
        std::optional<std::string> computerName() override { return {}; }
        std::optional<std::string> environment(std::string_view) override { return {}; }
        bool reduceMotion() override { return reducesMotion; }
        bool reducesMotion = false;
    };

    IslandMetrics metrics_;
    Desktop desktop_;
    VirtualLoop loop_;
    OverlayModel model_;
    IslandPainter painter_;
    IslandChoreography choreography_;
};

} // namespace kivo
