// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "platform/UserDefaults.h"
#include "simulated/SimulatedMachine.h"
#include "views/IntroductionWindow.h"
#include "views/SettingsWindow.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPalette>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>

#include <gtest/gtest.h>

namespace kivo {
namespace {

struct AppWindowsTest : testing::Test {
    AppWindowsTest() {
        delegate.applicationDidFinishLaunching();
        windows.add("settings", [this] {
            auto model =
                std::make_unique<SettingsModel>(machine.loop(), delegate.coordinator(),
                                                machine.standardDefaults(), machine.workspace(), windows);
            return std::make_unique<SettingsWindow>(machine.loop(), machine.workspace(), std::move(model),
                                                    nullptr);
        });
        windows.add("onboarding", [this] {
            auto model = std::make_unique<IntroductionModel>(machine.loop(), delegate.coordinator(),
                                                             machine.standardDefaults());
            introduction = &model->onboarding();
            introduction->onFinish = [this] { windows.close("onboarding"); };
            return std::make_unique<IntroductionWindow>(machine.loop(), machine.workspace(), std::move(model));
        });
    }
    ~AppWindowsTest() override { windows.closeAll(); }

    static QWidget* window(const char* title) {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->windowTitle() == QLatin1String(title))
                return widget;
        }
        return nullptr;
    }
    static void layOut() {
        for (int i = 0; i < 3; ++i)
            QApplication::processEvents();
    }
    // How far what a window scrolls reaches over its sides.
    static int overhang(QWidget& window) {
        layOut();
        auto* page = window.findChild<QScrollArea*>();
        return page->widget()->minimumSizeHint().width() - page->viewport()->width();
    }

    SimulatedMachine machine{R"({"reduceMotion": false, "powerSources": [{"Type": "InternalBattery",
        "Current Capacity": 64, "Max Capacity": 100, "Power Source State": "Battery Power"}]})"};
    AppDelegate delegate{machine};
    AppWindows windows{machine.loop()};
    Onboarding* introduction = nullptr;
};

TEST_F(AppWindowsTest, NothingIsCutOffInANarrowWindow) {
    for (const auto& tab : settingsTabs) {
        machine.standardDefaults().set("settingsTab", std::string(tab.name));
        windows.open("settings");
        QWidget* settings = window("Kivo Settings");
        settings->resize(400, 480);
        EXPECT_LE(overhang(*settings), 0) << tab.name;
        windows.closeAll();
    }
    windows.open("onboarding");
    for (const auto& step : onboardingSteps) {
        window("Kivo")->resize(400, 480);
        EXPECT_LE(overhang(*window("Kivo")), 0) << step.name;
        if (step.value != OnboardingStep::done)
            introduction->next();
    }
}

TEST_F(AppWindowsTest, WhatUnfoldsOrHasTheKeyboardIsInView) {
    machine.standardDefaults().set("settingsTab", std::string("general"));
    windows.open("settings");
    QWidget* settings = window("Kivo Settings");
    settings->resize(500, 480);
    layOut();
    auto* page = settings->findChild<QScrollArea*>();
    const auto isInView = [page](const QWidget* part) {
        const QRect box(part->mapTo(page, QPoint(0, 0)), part->size());
        return page->rect().contains(box);
    };
    QPushButton* privacy = nullptr;
    for (auto* button : settings->findChildren<QPushButton*>())
        privacy = button->accessibleName() == QLatin1String("Privacy") ? button : privacy;
    ASSERT_TRUE(privacy);
    ASSERT_FALSE(isInView(privacy));
    settings->setAttribute(Qt::WA_KeyboardFocusChange); // as a pressed key does
    privacy->setFocus(Qt::BacktabFocusReason);
    EXPECT_TRUE(isInView(privacy));
    privacy->click();
    layOut();
    EXPECT_GT(privacy->parentWidget()->height(), privacy->height() + 20);
    EXPECT_TRUE(isInView(privacy->parentWidget()));
}

TEST_F(AppWindowsTest, AClosedWindowIsGoneAndLeavesNothingRunning) {
    windows.open("settings"); // with the preview, which never rests
    layOut();
    const QPointer<QWidget> settings = window("Kivo Settings");
    windows.open("settings");
    EXPECT_EQ(window("Kivo Settings"), settings) << "opened again it is the same window";
    machine.virtualLoop().advance(seconds(3));
    settings->close();
    machine.virtualLoop().runPosted();
    EXPECT_TRUE(settings.isNull());
    // Changes reach nobody any more.
    delegate.coordinator().settings().change([](AlertSettings& value) { value.rules.clear(); });
    machine.virtualLoop().advance(seconds(3));
}

TEST_F(AppWindowsTest, TheLastPageOfTheIntroductionClosesItAndItBeginsAnew) {
    windows.open("onboarding");
    const QPointer<QWidget> first = window("Kivo");
    for (std::size_t page = 0; page < onboardingSteps.entries.size(); ++page) {
        introduction->next();
        machine.virtualLoop().advance(seconds(0.1)); // before the page has turned
    }
    EXPECT_TRUE(first.isNull());
    windows.open("onboarding");
    EXPECT_EQ(introduction->step().get(), OnboardingStep::welcome);
}

TEST_F(AppWindowsTest, ASwitchWithoutARuleStaysOff) {
    delegate.coordinator().settings().change([](AlertSettings& value) { value.rules.resize(1); });
    windows.open("onboarding");
    introduction->next();
    layOut();
    const auto switches = window("Kivo")->findChildren<QCheckBox*>();
    ASSERT_FALSE(switches.empty());
    for (auto* control : switches) {
        control->setChecked(true); // as a screen reader does
        EXPECT_FALSE(control->isChecked()) << control->accessibleName().toStdString();
    }
}

TEST_F(AppWindowsTest, TheKeyboardGoesOnWhereARuleWasDeleted) {
    machine.standardDefaults().set("settingsTab", std::string("alerts"));
    windows.open("settings");
    QWidget* settings = window("Kivo Settings");
    settings->activateWindow();
    const auto button = [&](const char* name) {
        for (auto* each : settings->findChildren<QAbstractButton*>()) {
            if (each->isVisible() && (each->accessibleName() == name || each->text() == name))
                return each;
        }
        return static_cast<QAbstractButton*>(nullptr);
    };
    const auto removed = [&](const char* rule) {
        layOut();
        button(rule)->click();
        layOut();
        QAbstractButton* removal = button("Delete");
        removal->setFocus();
        removal->click();
        machine.virtualLoop().runPosted();
        layOut();
        const auto* focus = qobject_cast<QAbstractButton*>(settings->focusWidget());
        return focus ? (focus->accessibleName() + focus->text()).toStdString() : "nothing";
    };
    EXPECT_EQ(removed("Drops below 20%"), "Drops below 10%");
    EXPECT_EQ(removed("Drops below 5%"), "Add alert");
}

TEST_F(AppWindowsTest, FieldsWithAValueForANameHaveALabel) {
    machine.standardDefaults().set("settingsTab", std::string("alerts"));
    windows.open("settings");
    QWidget* settings = window("Kivo Settings");
    layOut();
    for (auto* each : settings->findChildren<QAbstractButton*>()) {
        if (each->accessibleName() == "Drops below 20%" && !qobject_cast<QCheckBox*>(each))
            each->click();
    }
    layOut();
    auto* sounds = settings->findChild<QComboBox*>();
    ASSERT_TRUE(sounds);
    const auto labels = QAccessible::queryAccessibleInterface(sounds)->relations(QAccessible::Label);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.first().first->text(QAccessible::Name), "Sound");
}

TEST_F(AppWindowsTest, ColoursFollowTheDesktopWhileOpen) {
    const QPalette before = QApplication::palette();
    windows.open("settings");
    const auto ground = [] { return window("Kivo Settings")->palette().color(QPalette::Window); };
    for (const bool isDark : {true, false}) {
        QPalette desktop = before;
        desktop.setColor(QPalette::Window, isDark ? QColor(30, 30, 30) : QColor(240, 240, 240));
        QApplication::setPalette(desktop);
        layOut();
        EXPECT_EQ(ground().lightness() < 128, isDark) << ground().name().toStdString();
    }
    QApplication::setPalette(before);
}

} // namespace
} // namespace kivo
