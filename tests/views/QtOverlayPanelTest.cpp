// SPDX-License-Identifier: MIT
#include "views/QtOverlayPanel.h"
#include "Stage.h"
#include "views/PaintedWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <gtest/gtest.h>

namespace kivo {
namespace {

class Desktop final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return {}; }
    std::optional<std::string> environment(std::string_view) override { return {}; }
    bool reduceMotion() override { return false; }
};

class QtOverlayPanelTest : public testing::Test {
protected:
    QtOverlayPanelTest() { panel.show(model, desktop); }

    void present(const IslandContent& content) {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const Size size{static_cast<double>(screen.width()), static_cast<double>(screen.height())};
        panel.setFrame({0, 0, size.width, size.height});
        panel.orderFront();
        model.update(content, model.isPresented.get(), {size, 0, 24});
    }
    void advance(double time) {
        loop.advance(seconds(time));
        QCoreApplication::processEvents();
    }
    static QList<QWindow*> windows() {
        QList<QWindow*> seen;
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible())
                seen.push_back(window);
        }
        return seen;
    }

    VirtualLoop loop;
    Desktop desktop;
    OverlayModel model;
    PaintedWindows display;
    QtOverlayPanel panel{loop, display};
};

TEST_F(QtOverlayPanelTest, HasOneSmallWindowThatLetsEverythingThrough) {
    present(batteryContent(60));
    advance(2);
    ASSERT_EQ(windows().size(), 1);
    QWindow& window = *windows().front();
    EXPECT_LT(window.width() * window.height(), 560 * 220) << "no full-screen image";
    EXPECT_TRUE(window.geometry().contains(
        QRect(QGuiApplication::primaryScreen()->geometry().center().x() - 186, 32, 372, 66)));
    for (Qt::WindowType flag :
         {Qt::WindowTransparentForInput, Qt::WindowDoesNotAcceptFocus, Qt::X11BypassWindowManagerHint,
          Qt::WindowStaysOnTopHint, Qt::FramelessWindowHint})
        EXPECT_TRUE(window.flags() & flag) << flag;
}

TEST_F(QtOverlayPanelTest, RunsOnlyWhileSomethingMoves) {
    EXPECT_EQ(loop.pending(), 0U);
    present(batteryContent(60));
    EXPECT_GT(loop.pending(), 0U);
    advance(0.1);
    EXPECT_GT(loop.pending(), 0U) << "growing";
    advance(2);
    EXPECT_EQ(loop.pending(), 0U) << "it holds still: no frame waits";
    model.isPresented.set(false);
    EXPECT_GT(loop.pending(), 0U);
    panel.orderOut();
    advance(2);
    EXPECT_EQ(loop.pending(), 0U);
    EXPECT_TRUE(windows().empty()) << "nothing is left of it";
}

TEST_F(QtOverlayPanelTest, KeepsItsOwnWindowForTheNextIslandButNoGlow) {
    IslandContent glowing = batteryContent(4, red);
    glowing.glowsScreen = true;
    present(glowing);
    advance(1);
    ASSERT_EQ(windows().size(), 5);
    model.isPresented.set(false);
    advance(1);
    panel.orderOut();
    advance(1);
    ASSERT_EQ(QGuiApplication::topLevelWindows().size(), 1);
    // One at another place, that the kept window has to go to.
    IslandContent content = batteryContent(30);
    content.position = OverlayPosition::center;
    present(content);
    advance(1);
    ASSERT_EQ(windows().size(), 1);
    EXPECT_EQ(windows().front(), QGuiApplication::topLevelWindows().front());
    const QPoint middle = QGuiApplication::primaryScreen()->geometry().center();
    EXPECT_LT((windows().front()->geometry().center() - middle).manhattanLength(), 3);
    panel.showNothing();
    EXPECT_TRUE(QGuiApplication::topLevelWindows().empty());
}

TEST_F(QtOverlayPanelTest, TheGlowIsFourStripsWhoseOpacityPulses) {
    IslandContent content = batteryContent(4, red);
    content.glowsScreen = true;
    content.isUrgent = true;
    content.position = OverlayPosition::center;
    present(content);
    advance(0.3);
    ASSERT_EQ(windows().size(), 5);
    auto glow = [&] {
        double opacity = 0;
        for (QWindow* window : windows())
            opacity = std::max(opacity, window->opacity() < 1 ? window->opacity() : 0);
        return opacity;
    };
    advance(0.35);
    EXPECT_NEAR(glow(), 0.3, 0.05) << "its lowest";
    advance(3);
    for (QWindow* window : windows())
        EXPECT_EQ(window->opacity(), 1) << "steady at full strength";
    EXPECT_EQ(loop.pending(), 0U);
    model.isPresented.set(false);
    advance(2);
    EXPECT_EQ(windows().size(), 1) << "the glow goes with the island";
}

TEST_F(QtOverlayPanelTest, ARetargetToAnotherPlaceHoldsBoth) {
    present(batteryContent(60));
    advance(1);
    IslandContent content = batteryContent(60);
    content.position = OverlayPosition::center;
    present(content);
    advance(2);
    ASSERT_EQ(windows().size(), 1);
    const QPoint middle = QGuiApplication::primaryScreen()->geometry().center();
    EXPECT_TRUE(windows().front()->geometry().contains(QRect(middle.x() - 180, middle.y() - 30, 360, 60)));
}

} // namespace
} // namespace kivo
