// SPDX-License-Identifier: MIT
#include "overlay/OverlayPresenter.h"

#include "platform/OverlayPanel.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <string>

using namespace kivo;

namespace {

struct Desktop : Screens, OverlayPanel {
    std::vector<Screen> screens() override { return list; }
    std::optional<Screen> mainScreen() override { return main; }
    Point mouseLocation() override { return mouse; }
    double statusBarThickness() override { return 24; }
    void setFrame(Rect newFrame) override { frame = newFrame; }
    void orderFront() override { isVisible = true; }
    void orderOut() override { isVisible = false; }

    std::vector<Screen> list{{.frame = {0, 0, 1440, 900}}};
    std::optional<Screen> main = list[0];
    Point mouse{0, 1};
    Rect frame;
    bool isVisible = false;
};

IslandContent about(const std::string& subject, const std::string& title = "", bool isUrgent = false) {
    return {.subjectID = subject, .title = title, .isUrgent = isUrgent, .dwell = seconds(isUrgent ? 4.5 : 3)};
}

struct OverlayPresenterTest : testing::Test {
    OverlayPresenterTest() {
        presenter.onPresent = [this](const IslandContent& content) {
            shown += content.subjectID + content.title + (presenter.model().isRetarget.get() ? "! " : " ");
        };
    }
    void present(const std::string& subject, const std::string& title = "") {
        presenter.present(about(subject, title));
    }

    VirtualLoop loop;
    Desktop desktop;
    OverlayPresenter presenter{loop, desktop, desktop};
    std::string shown;
};

} // namespace

TEST_F(OverlayPresenterTest, anIslandLeavesAfterItsDwellAndThePanelAfterTheExit) {
    presenter.present(about("mac", "", true));
    loop.advance(seconds(4.499));
    EXPECT_TRUE(presenter.model().isPresented.get());
    loop.advance(seconds(0.001));
    EXPECT_FALSE(presenter.model().isPresented.get());
    loop.advance(seconds(0.519));
    EXPECT_TRUE(desktop.isVisible);
    loop.advance(seconds(0.001));
    EXPECT_FALSE(desktop.isVisible);
    EXPECT_EQ(presenter.model().content.get()->subjectID, "mac") << "the content stays for the view";
    present("mac");
    EXPECT_EQ(shown, "mac mac ") << "an idle panel shows at once and retargets nothing";
    loop.advance(seconds(10));
    EXPECT_EQ(loop.pending(), 0u);
}

TEST_F(OverlayPresenterTest, theSameSubjectRetargetsAndItsDwellBeginsAnew) {
    present("mac", "1");
    loop.advance(seconds(2.9));
    present("mac", "2");
    loop.advance(seconds(2.9));
    EXPECT_TRUE(presenter.model().isPresented.get());
    loop.advance(seconds(0.1));
    EXPECT_FALSE(presenter.model().isPresented.get());
    loop.advance(seconds(0.5));
    present("mac", "3");
    EXPECT_TRUE(presenter.model().isPresented.get()) << "it comes back out while it leaves";
    EXPECT_EQ(shown, "mac1 mac2! mac3! ");
    EXPECT_EQ(presenter.model().token.get(), 3);
    loop.advance(seconds(3.519));
    EXPECT_TRUE(desktop.isVisible);
    loop.advance(seconds(0.001));
    EXPECT_FALSE(desktop.isVisible);
}

TEST_F(OverlayPresenterTest, othersWaitForTheExitAndAreNoRetargets) {
    present("a");
    present("b");
    EXPECT_EQ(shown, "a ");
    loop.advance(seconds(3.519));
    EXPECT_EQ(shown, "a ");
    loop.advance(seconds(0.001));
    EXPECT_EQ(shown, "a b ");
    EXPECT_TRUE(desktop.isVisible);
    loop.advance(seconds(3.1));
    present("c");
    EXPECT_EQ(shown, "a b ") << "while one leaves, another subject waits";
    loop.advance(seconds(0.42));
    EXPECT_EQ(shown, "a b c ");
}

TEST_F(OverlayPresenterTest, theLineHoldsTheNewestFourAndOneOfASubject) {
    for (const char* subject : {"1", "2", "3", "4", "5", "6"})
        present(subject);
    present("4", "new");
    ASSERT_EQ(presenter.queue().size(), 4u);
    loop.advance(seconds(60));
    EXPECT_EQ(shown, "1 3 5 6 4new ");
}

TEST_F(OverlayPresenterTest, whatIsOutGoesOnWhenItsScreenGoesOrChanges) {
    const Screen other{.frame = {1440, 0, 1000, 800}};
    desktop.list.push_back(other);
    desktop.mouse = {1500, 100};
    presenter.screenChanged();
    EXPECT_EQ(desktop.frame, Rect()) << "nothing is out";
    present("a");
    present("b");
    EXPECT_EQ(desktop.frame, other.frame);
    loop.advance(seconds(1));
    desktop.list.pop_back();
    presenter.screenChanged();
    EXPECT_EQ(desktop.frame, desktop.list[0].frame);
    EXPECT_EQ(presenter.model().metrics.get().screenSize, (Size{1440, 900}));
    desktop.list.clear();
    desktop.main = std::nullopt;
    presenter.screenChanged();
    EXPECT_TRUE(presenter.model().isPresented.get()) << "there may be a screen again in time";
    desktop.list.push_back(other);
    presenter.screenChanged();
    EXPECT_EQ(desktop.frame, other.frame);
    EXPECT_EQ(shown, "a ") << "it is no new island";
    loop.advance(seconds(2.519));
    EXPECT_EQ(shown, "a ") << "nor does it stay longer";
    loop.advance(seconds(0.001));
    EXPECT_EQ(shown, "a b ");
}

TEST_F(OverlayPresenterTest, withoutAScreenTheContentIsLostAndNothingHangs) {
    desktop.list.clear();
    desktop.main = std::nullopt;
    present("a");
    EXPECT_EQ(shown, "");
    EXPECT_FALSE(desktop.isVisible);
    EXPECT_FALSE(presenter.model().content.get());
    desktop.list = {{.frame = {0, 0, 800, 600}}};
    present("a");
    present("b");
    present("c");
    desktop.list.clear();
    loop.advance(seconds(3.52));
    EXPECT_EQ(shown, "a ") << "the screen vanished while b waited";
    desktop.list = {{.frame = {0, 0, 800, 600}}};
    present("d");
    EXPECT_EQ(shown, "a d ");
    loop.advance(seconds(60));
    EXPECT_EQ(shown, "a d c ");
    EXPECT_FALSE(desktop.isVisible);
}

TEST_F(OverlayPresenterTest, picksTheScreenUnderTheMouseThenTheMainOneThenTheFirst) {
    const Rect left{-1000, 0, 1000, 800};
    const Rect right{0, 0, 1440, 900};
    desktop.list = {{.frame = left}, {.frame = right}};
    desktop.main = Screen{.frame = right};
    struct Row {
        Point mouse;
        bool hasMain;
        Rect frame;
    };
    const Row rows[] = {
        {{-1000, 800}, true, left}, {{-1, 1}, true, left},        {{0, 800}, true, right},
        {{-1000, 0}, true, right},  {{-1000, 0}, false, left},    {{1440, 10}, true, right},
        {{0, 900}, true, right},    {{-500, 800.5}, false, left},
    };
    for (const auto& row : rows) {
        desktop.mouse = row.mouse;
        desktop.main = row.hasMain ? std::optional(Screen{.frame = right}) : std::nullopt;
        present("mac");
        EXPECT_EQ(desktop.frame, row.frame) << row.mouse.x << ", " << row.mouse.y;
    }
}

TEST_F(OverlayPresenterTest, measuresTheNotchAndTheBandAtTheTop) {
    struct Row {
        Screen screen;
        double notchWidth;
        double topInset;
    };
    const Rect frame{0, 0, 1512, 982};
    const Row rows[] = {
        {{.frame = frame}, 0, 24},
        {{.frame = frame, .safeTop = 24}, 0, 24},
        {{.frame = frame, .safeTop = 38, .auxiliaryTopLeft = 656, .auxiliaryTopRight = 656}, 200, 38},
        {{.frame = frame, .safeTop = 38, .auxiliaryTopLeft = 656}, 0, 38},
        {{.frame = frame, .safeTop = 10, .auxiliaryTopLeft = 800, .auxiliaryTopRight = 800}, 0, 24},
    };
    for (const auto& row : rows) {
        desktop.list = {row.screen};
        present("mac");
        EXPECT_EQ(presenter.model().metrics.get(), (IslandMetrics{{1512, 982}, row.notchWidth, row.topInset}));
    }
}
