// SPDX-License-Identifier: MIT
#include "views/MenuWindow.h"

#include "Stage.h"
#include "support/VirtualLoop.h"
#include "views/MenuPlacement.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QScreen>

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Source = BatterySnapshot::PowerSource;

PowerDevice phone(int number, std::optional<Date> lastSeen) {
    return {.id = "p" + std::to_string(number),
            .name = "Phone " + std::to_string(number),
            .category = PowerDevice::Category::iphone,
            .level = 10 + number,
            .lastSeen = lastSeen};
}

MenuSource onBattery(int devices, bool isRemembered = true) {
    MenuSource source{.macName = "Laptop",
                      .snapshot = BatterySnapshot{.level = 64, .source = Source::battery},
                      .health = BatteryHealth{.cycleCount = 3},
                      .now = Date{1000}};
    for (int i = 0; i < devices; ++i)
        source.devices.push_back(phone(i, isRemembered ? std::optional(Date{100}) : std::nullopt));
    return source;
}

// Counts how often the window is painted.
class Paintings : public QObject {
public:
    explicit Paintings(QWidget& window) { window.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::UpdateRequest;
        return false;
    }
};

struct MenuWindowTest : testing::Test {
    MenuWindowTest() {
        window.onForget = [this](const std::string& id) { forgotten.push_back(id); };
        window.onAction = [this](FooterControl::Action action) { actions.push_back(action); };
        window.onClose = [this] { ++closings; };
        window.onNote = [this] { ++notes; };
    }
    void show(const MenuSource& source) {
        window.setContent(menuContent(source));
        if (window.isVisible())
            return;
        window.show();
        window.activateWindow();
        window.setFocus();
        settle();
    }
    void settle() {
        loop.advance(seconds(5));
        QApplication::processEvents();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = window.focusWidget() ? window.focusWidget() : &window;
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(target, &event);
    }
    QString focusName() { return window.focusWidget() ? window.focusWidget()->accessibleName() : QString(); }
    QWidget* part(const QString& name) {
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            if (widget->accessibleName().startsWith(name))
                return widget;
        }
        return nullptr;
    }

    VirtualLoop loop;
    SymbolPainter symbols;
    MenuWindow window{loop, symbols, false};
    std::vector<std::string> forgotten;
    std::vector<FooterControl::Action> actions;
    int closings = 0;
    int notes = 0;
};

TEST_F(MenuWindowTest, PaintsNoOftenerThanThingsChange) {
    MenuWindow still(loop, symbols, true); // nothing moves: a painting is a change's
    MenuSource source = onBattery(9);      // some of them out of sight
    still.setRoom({1264, 784});
    still.setContent(menuContent(source));
    still.show();
    settle();
    settle();
    Paintings paintings(still);
    still.setContent(menuContent(source));
    QApplication::processEvents();
    EXPECT_EQ(paintings.count, 0) << "the same content again";
    for (int change = 1; change <= 5; ++change) {
        source.snapshot->level -= 1;
        source.devices[2].level += 3;
        still.setContent(menuContent(source));
        QApplication::processEvents();
        EXPECT_LE(paintings.count, change);
    }
    EXPECT_GE(paintings.count, 5) << "each change is seen";
    loop.advance(seconds(10));
    QApplication::processEvents();
    EXPECT_EQ(paintings.count, 5) << "and nothing more is painted";
    EXPECT_EQ(loop.pending(), 0u);
}

TEST_F(MenuWindowTest, MovesUntilItRestsAndThenWaitsForNothing) {
    MenuSource source = onBattery(1);
    show(source);
    EXPECT_FALSE(window.isMoving()) << "what opens stands still";
    source.snapshot->level = 20;
    show(source);
    EXPECT_TRUE(window.isMoving());
    loop.advance(seconds(4));
    EXPECT_FALSE(window.isMoving());
    source.snapshot->isCharging = true;
    show(source);
    loop.advance(seconds(60));
    EXPECT_TRUE(window.isMoving()) << "the light runs on while it charges";
    source.snapshot->isCharging = false;
    show(source);
    loop.advance(seconds(4));
    EXPECT_FALSE(window.isMoving());
    EXPECT_EQ(loop.pending(), 0u);
}

TEST_F(MenuWindowTest, ShowsWhatOneOpenedAnewWould) {
    MenuSource source = onBattery(1);
    show(source);
    const auto becomes = [&](const char* what, std::int64_t level, bool isLowPowerMode) {
        source.snapshot->level = level;
        source.snapshot->isLowPowerMode = isLowPowerMode;
        show(source);
        for (int frame = 0; frame < 120; ++frame) {
            loop.advance(seconds(1.0 / 60));
            QApplication::processEvents();
        }
        // Without the corners, behind which something else lies.
        const QRect inside = window.rect().adjusted(12, 12, -12, -12);
        const QImage seen = window.screen()->grabWindow(window.winId()).copy(inside).toImage();
        const QImage anew = window.grab(inside).toImage();
        EXPECT_TRUE(seen.convertToFormat(QImage::Format_RGB32) == anew.convertToFormat(QImage::Format_RGB32))
            << what;
    };
    becomes("low power", 64, true);
    becomes("critical", 8, true);
    becomes("back", 50, false);
}

TEST_F(MenuWindowTest, ANoteFadesAndTakesItsRoomWithIt) {
    MenuSource source = onBattery(1);
    show(source);
    const int bare = window.height();
    source.snapshot->isLowPowerMode = true;
    show(source);
    EXPECT_GT(window.height(), bare);
    ASSERT_NE(part("Change…"), nullptr);
    press(Qt::Key_Tab);
    settle();
    press(Qt::Key_Home);
    EXPECT_EQ(focusName(), "Change…");
    press(Qt::Key_Return);
    EXPECT_EQ(notes, 1);

    source.snapshot->isLowPowerMode = false;
    show(source);
    EXPECT_GT(window.height(), bare) << "it is still leaving";
    loop.advance(seconds(0.25));
    EXPECT_EQ(window.height(), bare);
}

TEST_F(MenuWindowTest, TheKeyboardReachesEverythingInOrder) {
    MenuSource source = onBattery(2);
    source.snapshot->isLowPowerMode = true;
    show(source);
    QStringList reached;
    for (int i = 0; i < 7; ++i) {
        press(Qt::Key_Down);
        reached << focusName().section(QLatin1Char(','), 0, 0);
    }
    EXPECT_EQ(reached.join(QLatin1Char(';')).toStdString(),
              "Change…;Phone 0;Phone 1;On-screen animations;Sounds;Settings…;Quit Kivo");
    press(Qt::Key_Space);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    press(Qt::Key_Escape);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(actions, std::vector<FooterControl::Action>{FooterControl::Action::playsSound});
}

TEST_F(MenuWindowTest, ARememberedDeviceIsForgottenByKeyboardAndTheFocusGoesOn) {
    MenuSource source = onBattery(3);
    source.devices[0].lastSeen.reset();
    show(source);
    press(Qt::Key_Home);
    EXPECT_TRUE(focusName().startsWith("Phone 0"));
    press(Qt::Key_Delete);
    EXPECT_TRUE(forgotten.empty()) << "a connected one cannot be";
    press(Qt::Key_Down);
    press(Qt::Key_Delete);
    EXPECT_EQ(forgotten, std::vector<std::string>{"p1"});
    source.devices.erase(source.devices.begin() + 1);
    show(source);
    EXPECT_TRUE(focusName().startsWith("Phone 2")) << focusName().toStdString();

    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(window.focusWidget(), &menuKey);
    auto* menu = window.focusWidget()->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().front()->text(), "Forget Phone 2");
    menu->actions().front()->trigger();
    EXPECT_EQ(forgotten.back(), "p2");
}

TEST_F(MenuWindowTest, RowsThatChangedPlacesAreReadInTheirNewOrder) {
    MenuSource source = onBattery(3);
    show(source);
    std::swap(source.devices[0], source.devices[2]);
    source.devices.insert(source.devices.begin() + 1, phone(7, std::nullopt));
    show(source);
    loop.advance(seconds(0.1));
    EXPECT_NE(part("Phone 2")->y(), 0) << "it is under way";
    settle();
    std::string order;
    for (QObject* child : part("Phone 0")->parentWidget()->children())
        order +=
            static_cast<QWidget*>(child)->accessibleName().section(QLatin1Char(','), 0, 0).toStdString() + ";";
    EXPECT_EQ(order, "Phone 2;Phone 7;Phone 1;Phone 0;");
    EXPECT_EQ(part("Phone 2")->y(), 0);
    EXPECT_EQ(part("Phone 7")->y(), part("Phone 2")->height());
}

TEST_F(MenuWindowTest, FortyDevicesScrollWithTheFocus) {
    window.setRoom({1264, 784});
    show(onBattery(40));
    EXPECT_LE(window.height(), 784 * 0.7 + 1);
    press(Qt::Key_End);
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Up);
    QWidget* row = part("Phone 39");
    ASSERT_EQ(window.focusWidget(), row);
    EXPECT_EQ(row->visibleRegion().boundingRect().size(), row->size()) << "the whole row is seen";
    EXPECT_TRUE(part("Phone 0")->visibleRegion().isEmpty());
    MenuSource changed = onBattery(40);
    changed.snapshot->level = 12;
    show(changed);
    EXPECT_TRUE(part("Phone 0")->visibleRegion().isEmpty()) << "a change leaves one where one is";
}

TEST_F(MenuWindowTest, IsReadByAssistiveTechnologies) {
    MenuSource source = onBattery(1);
    source.playsSound = false;
    show(source);
    struct Row {
        const char* name;
        QAccessible::Role role;
        const char* action;
    };
    const Row rows[] = {{"Laptop, 64%, On Battery", QAccessible::StaticText, nullptr},
                        {"Cycles, 3, charge cycles", QAccessible::StaticText, nullptr},
                        {"Devices 1", QAccessible::Heading, nullptr},
                        {"Phone 0, 10%, Seen 15 minutes ago", QAccessible::ListItem, "Forget Phone 0"},
                        {"Sounds", QAccessible::CheckBox, "Toggle"},
                        {"Settings…", QAccessible::Button, "Press"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        QWidget* widget = part(row.name);
        ASSERT_NE(widget, nullptr);
        QAccessibleInterface* shown = QAccessible::queryAccessibleInterface(widget);
        EXPECT_EQ(shown->text(QAccessible::Name), row.name);
        EXPECT_EQ(shown->role(), row.role);
        const QStringList names = shown->actionInterface()->actionNames();
        EXPECT_TRUE(!row.action || names.contains(QString::fromUtf8(row.action)));
    }
    QStringList order;
    for (QObject* child : part("Laptop")->parentWidget()->children())
        order << static_cast<QWidget*>(child)->accessibleName().section(QLatin1Char(','), 0, 0);
    EXPECT_EQ(order.join(QLatin1Char(';')).toStdString(), "Laptop;mAh;Cycles;Watts;Status;Devices 1;Devices");
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(part("Sounds"))->state().checked);
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(part("On-screen"))->state().checked);
    QAccessible::queryAccessibleInterface(part("Phone 0"))->actionInterface()->doAction("Forget Phone 0");
    EXPECT_EQ(forgotten, std::vector<std::string>{"p0"});
}

TEST_F(MenuWindowTest, TilesStandInTwoLinesRatherThanShortenATextOrLeaveTheWindow) {
    const struct {
        const char* label;
        const char* condition;
        int room;
        bool isOneLine;
    } rows[] = {{"usual", "Normal", 1264, true},
                {"a long word", "Unusually-worn-out", 1264, false},
                {"a narrow screen", "Normal", 280, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        MenuSource source = onBattery(0);
        source.condition = row.condition;
        window.setRoom({row.room, 800});
        show(source);
        ASSERT_TRUE(part("mAh") && part("Status"));
        EXPECT_EQ(part("mAh")->y() == part("Status")->y(), row.isOneLine);
        EXPECT_LE(part("Status")->geometry().right(), window.width());
        EXPECT_EQ(part("Status")->toolTip().toStdString(), "");
    }
}

TEST(Surface, EveryTextCanBeRead) {
    auto contrast = [](const QColor& a, const QColor& b) {
        return (std::max(luminance(a), luminance(b)) + 0.05) / (std::min(luminance(a), luminance(b)) + 0.05);
    };
    for (const QColor& desktop : {QColor(239, 239, 239), QColor(45, 45, 48)}) {
        const Surface surface = surfaceFor(QPalette(desktop));
        SCOPED_TRACE(surface.isDark ? "dark" : "light");
        for (const QColor& ground : {surface.window, surface.card}) {
            for (const QColor& ink : {surface.ink, surface.secondary, surface.tertiary})
                EXPECT_GE(contrast(ink, ground), 4.5) << text(ink) << " on " << text(ground);
        }
        for (LevelTone tone : {LevelTone::charging, LevelTone::normal, LevelTone::lowPower, LevelTone::low,
                               LevelTone::critical}) {
            const QColor field = onCard(toQColor(color(tone)), 0.18, surface);
            EXPECT_GE(contrast(readable(toQColor(color(tone)), field), field), 4.5) << name(tone);
        }
    }
}

TEST(MenuPlacement, StandsBesideTheIconAndOnTheScreen) {
    const QRect screen(0, 0, 1920, 1080);
    const QRect second(1920, 200, 1280, 800);
    struct Row {
        const char* label;
        QRect icon, screen, available;
        QPoint place;
    };
    const QSize size(340, 500);
    const Row rows[] = {
        {"under a panel at the top", {1000, 4, 24, 24}, screen, screen.adjusted(0, 32, 0, 0), {842, 40}},
        {"its right end", {1890, 4, 24, 24}, screen, screen.adjusted(0, 32, 0, 0), {1572, 40}},
        {"above one at the bottom", {1700, 1050, 24, 24}, screen, screen.adjusted(0, 0, 0, -40), {1542, 532}},
        {"beside one on the left", {4, 500, 24, 24}, screen, screen.adjusted(48, 0, 0, 0), {56, 262}},
        {"the foot of one on the left", {12, 1050, 24, 24}, screen, screen.adjusted(48, 0, 0, 0), {56, 572}},
        {"beside one on the right", {1890, 20, 24, 24}, screen, screen.adjusted(0, 0, -48, 0), {1524, 8}},
        {"a panel that nobody tells of", {1600, 2, 24, 24}, screen, screen, {1442, 34}},
        {"the same at the side", {4, 700, 24, 24}, screen, screen, {36, 462}},
        {"a second screen", {3100, 204, 24, 24}, second, second.adjusted(0, 32, 0, 0), {2852, 240}},
        {"a single point in the middle", {900, 500, 1, 1}, screen, screen, {730, 509}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const QRect place = menuPlace(size, row.icon, row.screen, row.available);
        EXPECT_EQ(place.topLeft(), row.place) << place.x() << ", " << place.y();
        EXPECT_TRUE(row.available.contains(place));
    }
    EXPECT_EQ(menuPlace({340, 2000}, {1000, 4, 24, 24}, screen, screen).y(), 8) << "too high: its top is seen";
    EXPECT_EQ(trayCorner(screen, screen.adjusted(0, 32, 0, 0)).topLeft(), QPoint(1919, 0));
    EXPECT_EQ(trayCorner(screen, screen.adjusted(0, 0, 0, -40)).topLeft(), QPoint(1919, 1079));
    EXPECT_EQ(trayCorner(screen, screen.adjusted(48, 0, 0, 0)).topLeft(), QPoint(0, 1079));
}

} // namespace
} // namespace kivo
