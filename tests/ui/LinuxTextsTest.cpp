// SPDX-License-Identifier: MIT
#include "linux/base/LinuxTexts.h"

#include "app/AppDelegate.h"
#include "core/AlertDisplay.h"
#include "simulated/SimulatedMachine.h"
#include "ui/MenuContent.h"
#include "ui/Onboarding.h"
#include "ui/SettingsContent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace kivo;

namespace {

// Everything that the menu, the settings, the help and the introduction say.
std::vector<std::string> shownTexts() {
    SimulatedMachine machine;
    AppDelegate delegate(machine);
    AppCoordinator& coordinator = delegate.coordinator();
    std::vector<std::string> texts;
    for (const auto& family : triggerFamilies)
        texts.insert(texts.end(), {title(family.value), detail(family.value)});

    const MenuSource paused{.snapshot =
                                BatterySnapshot{.level = 80, .source = BatterySnapshot::PowerSource::ac},
                            .condition = "Service"};
    for (const auto& menu : {menuContent(paused), menuContent({})}) {
        texts.push_back(menu.hero ? menu.hero->notes.at(0).text : menu.empty->text);
        texts.push_back(menu.attention.value_or(""));
        for (const auto& control : menu.footer)
            texts.push_back(control.shortcut.value_or(""));
    }

    const auto general = generalPaneContent(coordinator);
    texts.insert(texts.end(), {general.chargeLimitText, general.dismissesText, *general.accessibility.button,
                               menuBarPaneContent({}, {}).note});
    for (const auto& topic : helpContent().topics) {
        texts.push_back(topic.title);
        texts.insert(texts.end(), topic.steps.begin(), topic.steps.end());
    }

    Onboarding introduction(coordinator, machine.standardDefaults());
    for (std::size_t page = 0; page < onboardingSteps.entries.size(); ++page) {
        const auto content = introduction.content();
        texts.insert(texts.end(), {content.title, content.message});
        for (const auto& permission : content.permissions)
            texts.insert(texts.end(), {permission.title, permission.detail});
        if (content.box)
            texts.insert(texts.end(), content.box->steps.begin(), content.box->steps.end());
        if (introduction.step().get() != OnboardingStep::done)
            introduction.next();
    }
    return texts;
}

} // namespace

TEST(LinuxTexts, noSentenceNamesAnotherSystem) {
    installTextCatalogue(linuxTexts());
    const auto texts = shownTexts();
    installTextCatalogue({});
    EXPECT_GT(texts.size(), 70u);
    for (const auto& text : texts) {
        for (const char* word :
             {"Mac ", "Mac'", "Mac.", "macOS", "Finder", "⌘", "Notification Center", "Apple "})
            EXPECT_EQ(text.find(word), std::string::npos) << text;
    }
}

TEST(LinuxTexts, everyEntryRewordsATextThatIsShown) {
    auto shown = shownTexts();
    // Shown only after a failure.
    shown.push_back("Couldn’t change this. Move Kivo to Applications and try again.");
    for (const auto& [key, reworded] : linuxTexts()) {
        // A key with a number in it is shown with the number.
        const std::string front = key.substr(0, key.find("%lld"));
        const bool isShown = std::any_of(shown.begin(), shown.end(),
                                         [&](const std::string& text) { return text.starts_with(front); });
        EXPECT_TRUE(isShown) << key;
        EXPECT_EQ(key.find("%lld") == std::string::npos, reworded.find("%lld") == std::string::npos) << key;
    }
}
