// SPDX-License-Identifier: MIT
#include "views/UpdatePrompt.h"

#include "support/VirtualLoop.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

UpdateFinding available(std::vector<std::string> notes = {"Something new"}) {
    return {.kind = UpdateFinding::Kind::available,
            .isAsked = true,
            .current = "1.0",
            .releases = {{"1.2", std::move(notes)}, {"1.1", {"Something older"}}},
            .page = "https://example.org/kivo"};
}

struct Prompt {
    Prompt() {
        prompt.onOpenPage = [this](const std::string& page) { heard.push_back("open " + page); };
        prompt.onGone = [this] { ++gone; };
        prompt.onSkip = [this](const std::string& version) { heard.push_back("skip " + version); };
    }
    UpdateWindow* window() {
        loop.runPosted();
        UpdateWindow* found = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* one = dynamic_cast<UpdateWindow*>(widget)) {
                EXPECT_EQ(found, nullptr) << "one window at a time";
                found = one;
            }
        }
        return found;
    }
    QAbstractButton* button(const char* title) {
        for (auto* one : window()->findChildren<QAbstractButton*>()) {
            if (one->text() == QLatin1String(title))
                return one;
        }
        return nullptr;
    }
    Lines buttons() {
        Lines titles;
        for (auto* one : window()->findChildren<QAbstractButton*>())
            titles.push_back(one->text().toStdString());
        return titles;
    }

    VirtualLoop loop;
    Lines heard;
    int gone = 0;
    UpdatePrompt prompt{loop};
};

TEST(UpdatePrompt, eachButtonDoesItsPartAndClosesTheWindow) {
    const struct {
        const char* button;
        Lines heard;
    } rows[] = {
        {"Open Download Page", {"open https://example.org/kivo"}},
        {"Skip This Version", {"skip 1.2"}},
        {"Later", {}},
    };
    for (const auto& row : rows) {
        Prompt prompt;
        prompt.prompt.show(available());
        ASSERT_NE(prompt.button(row.button), nullptr) << row.button;
        prompt.button(row.button)->click();
        EXPECT_EQ(prompt.heard, row.heard);
        EXPECT_FALSE(prompt.prompt.isOpen());
        EXPECT_EQ(prompt.window(), nullptr);
        EXPECT_EQ(prompt.gone, 1);
    }
}

TEST(UpdatePrompt, whatIsNoNewVersionOnlyCloses) {
    for (const auto kind :
         {UpdateFinding::Kind::upToDate, UpdateFinding::Kind::unreachable, UpdateFinding::Kind::refused}) {
        Prompt prompt;
        prompt.prompt.show({.kind = kind, .isAsked = true, .current = "1.0"});
        EXPECT_EQ(prompt.buttons(), Lines{"OK"});
        EXPECT_NE(prompt.window()->accessibleName(), QString());
        prompt.button("OK")->click();
        EXPECT_EQ(prompt.window(), nullptr);
    }
}

TEST(UpdatePrompt, aNewerFindingTakesTheOlderOnesPlace) {
    Prompt prompt;
    prompt.prompt.show(available());
    prompt.prompt.show({.kind = UpdateFinding::Kind::upToDate, .current = "1.2"});
    ASSERT_NE(prompt.window(), nullptr);
    EXPECT_EQ(prompt.buttons(), Lines{"OK"});
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(prompt.window(), &escape);
    EXPECT_EQ(prompt.window(), nullptr);
    prompt.prompt.show(available());
    prompt.window()->close(); // by the desktop
    EXPECT_EQ(prompt.window(), nullptr);
    EXPECT_EQ(prompt.heard, Lines{});
}

TEST(UpdatePrompt, aKeyThatWasHeldBeforeIsNotMeantForIt) {
    Prompt prompt;
    prompt.prompt.show(available());
    for (const bool isHeld : {true, false}) {
        ASSERT_NE(prompt.window(), nullptr);
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), isHeld);
        QCoreApplication::sendEvent(prompt.button("Open Download Page"), &enter);
    }
    EXPECT_EQ(prompt.heard, Lines{"open https://example.org/kivo"});
}

TEST(UpdatePrompt, everythingFitsHoweverLittleRoomThereIs) {
    for (const QSize room : {QSize(1264, 784), QSize(320, 480), QSize(240, 320)}) {
        for (const auto& notes :
             {Lines{"One"}, Lines(200, "A note that is as long as a sentence gets when it says it all")}) {
            Prompt prompt;
            UpdateWindow window(prompt.loop, updateNotice(available(notes)));
            const QSize size = window.sizeWithin(room);
            window.setFixedSize(size);
            window.show();
            QCoreApplication::processEvents();
            EXPECT_LE(size.width(), room.width());
            EXPECT_LE(size.height(), std::max(room.height(), 400));
            QRect last;
            for (auto* button : window.findChildren<QAbstractButton*>()) {
                EXPECT_TRUE(window.rect().contains(button->geometry())) << room.width();
                EXPECT_FALSE(button->geometry().intersects(last)) << room.width();
                EXPECT_GE(button->width(), button->sizeHint().width()) << room.width();
                last = button->geometry();
            }
        }
    }
}

} // namespace
} // namespace kivo
