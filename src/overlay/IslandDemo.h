// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandMotion.h"
#include "support/Color.h"
#include "support/Observable.h"
#include "support/Sequence.h"

namespace kivo {

class Workspace;

// The preview of an island in the settings and the introduction: a charging computer's island that comes out
// of a drawn notch and goes again, for as long as the preview is on screen. Under Reduce Motion it stands
// there finished and still. Nothing runs while it is stopped.
class IslandDemo {
public:
    IslandDemo(MainLoop& loop, Workspace& workspace);

    // Events in
    void start(); // on screen: from the beginning, also when it runs already
    void stop();  // off screen

    // State out
    const IslandContent& content() const { return content_; }
    const IslandPhase& phase() const { return motion_.phase(); }
    bool showsContent() const { return motion_.showsContent(); }
    // In points of the scene. Now or later, as long as nothing else happens.
    IslandFrame frame(Duration at) const;
    Duration settlesAt() const { return motion_.settlesAt(); }
    bool isMoving(Duration at) const { return at < settlesAt(); }

    // Callbacks out
    // Something begins to move or changes at once.
    Subscription onChange(std::function<void()> listener) { return changes_.add(std::move(listener)); }

private:
    void begin();
    void standStill();
    void step(void (*change)(IslandMotion&, Duration));

    MainLoop& loop_;
    Workspace& workspace_;
    IslandContent content_;
    IslandMotion motion_;
    bool isStill_ = false;
    Listeners changes_;
    Sequence run_;
};

// What the preview is drawn on: a miniature screen top, scaled down as a whole.
namespace demoScene {
inline constexpr Size size{520, 150};
inline constexpr Color skyTop{59, 74, 107}; // a vertical gradient
inline constexpr Color skyBottom{143, 166, 200};
inline constexpr Rect menuBar{0, 0, 520, 30};
inline constexpr Color menuBarColor{0, 0, 0};
inline constexpr double menuBarOpacity = 0.18;
inline constexpr Rect notch{185, 0, 150, 30}; // black
inline constexpr double notchRadius = 10;     // of its two bottom corners
inline constexpr double scale = 0.82;
inline constexpr Size framedSize{426.4, 123};
inline constexpr double cornerRadius = 16; // continuous corners
inline constexpr double outlineWidth = 1;  // inside its edge, white
inline constexpr double outlineOpacity = 0.1;
// In English, as a key for the user's language.
inline constexpr const char* accessibilityLabel = "Example of a Kivo alert coming out of the notch";
} // namespace demoScene

} // namespace kivo
