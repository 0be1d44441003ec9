// SPDX-License-Identifier: MIT
#include "core/AlertSettings.h"

#include "core/AlertDisplay.h"
#include "support/Json.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

using namespace kivo;
using Kind = AlertTrigger::Kind;
using Family = AlertTrigger::Family;

namespace {

constexpr const char* rule = R"({"id":"6f1d0b4e-2c55-4c8a-9e3b-0d2b7a1c9f10","trigger":{"macBelow":{"_0":20}},
    "isEnabled":true,"position":"top","glowsScreen":false,"sound":"tink","tint":"auto","notifies":false})";

PropertyValue settingsWith(const std::string& rulePatch) {
    return Dictionary{{"rules", Array{json::mergePatch(json::parse(rule), json::parse(rulePatch))}}};
}

std::string message(const PropertyValue& stored) {
    try {
        decodeAlertSettings(stored);
    } catch (const DecodingError& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(AlertSettings, missingAndNullMembersTakeTheirDefaults) {
    EXPECT_EQ(decodeAlertSettings(json::parse("{}")), AlertSettings{});
    EXPECT_EQ(decodeAlertSettings(json::parse(
                  R"({"rules":null,"showsOverlay":null,"playsSound":null,"menuBarStyle":null,"other":1})")),
              AlertSettings{});
    const auto settings = decodeAlertSettings(json::parse(R"({"rules":[],"playsSound":false})"));
    EXPECT_TRUE(settings.rules.empty());
    EXPECT_FALSE(settings.playsSound);
    EXPECT_TRUE(settings.showsOverlay);
}

TEST(AlertSettings, aMemberOfAWrongTypeIsAnError) {
    for (const char* text : {"[]", "null", R"({"rules":{}})", R"({"rules":[1]})", R"({"showsOverlay":1})",
                             R"({"playsSound":"true"})", R"({"menuBarStyle":"Compact"})",
                             R"({"menuBarStyle":0})", R"({"dismissesSystemAlerts":0.0})"})
        EXPECT_THROW(decodeAlertSettings(json::parse(text)), DecodingError) << text;
}

TEST(AlertSettings, aRuleMustBeCompleteAndKnown) {
    ASSERT_EQ(message(settingsWith("{}")), "");
    for (const char* patch :
         {R"({"id":null})", R"({"id":"6f1d0b4e"})", R"({"id":7})", R"({"trigger":null})",
          R"({"isEnabled":null})", R"({"isEnabled":1})", R"({"position":null})", R"({"position":"bottom"})",
          R"({"glowsScreen":null})", R"({"sound":null})", R"({"sound":"Tink"})", R"({"tint":null})",
          R"({"tint":"pink"})", R"({"notifies":null})", R"({"trigger":{"macBelow":{"_0":20.0}}})",
          R"({"trigger":{"macBelow":{"_0":true}}})", R"({"trigger":{"macBelow":{"_0":null}}})",
          R"({"trigger":{"macBelow":20}})", R"({"trigger":{"macBelow":null,"unplugged":[]}})"})
        EXPECT_NE(message(settingsWith(patch)), "") << patch;
}

TEST(AlertSettings, aTriggerNamesExactlyOneCase) {
    const char* const expected = "Invalid number of keys found, expected one.";
    EXPECT_EQ(message(settingsWith(R"({"trigger":{"unplugged":{}}})")), expected) << "merged with macBelow";
    EXPECT_EQ(message(settingsWith(R"({"trigger":{"macBelow":null}})")), expected);
    EXPECT_EQ(message(settingsWith(R"({"trigger":{"macBelow":null,"macAbove":{"_0":1}}})")), expected);
    EXPECT_EQ(message(settingsWith(R"({"trigger":{"other":1}})")), "")
        << "unknown keys beside the case are ignored";
    EXPECT_EQ(message(settingsWith(R"({"trigger":{"macBelow":null,"pluggedIn":{"_0":"x"}}})")), "")
        << "the payload of a case without one is not looked at";
}

TEST(AlertSettings, everyValueSurvivesItsStoredForm) {
    AlertSettings settings{.showsOverlay = false, .playsSound = false, .dismissesSystemAlerts = true};
    settings.menuBarStyle = MenuBarStyle::percentOnly;
    settings.rules.clear();
    for (const auto& kind : triggerKinds) {
        for (const auto& sound : alertSounds) {
            settings.rules.push_back(
                {.trigger = {kind.value, hasThreshold(kind.value) ? -1'000'000'000'000 : 0},
                 .isEnabled = sound.value != AlertSound::none,
                 .position = OverlayPosition::center,
                 .glowsScreen = true,
                 .sound = sound.value,
                 .tint = AlertTint::purple,
                 .notifies = true});
        }
    }
    EXPECT_EQ(decodeAlertSettings(json::parse(json::write(encode(settings)))), settings);
    EXPECT_EQ(json::write(
                  *find(*encode(settings).dictionary()->at("rules").array()->front().dictionary(), "trigger")),
              R"({"macBelow":{"_0":-1000000000000}})");
}

TEST(AlertSettings, theDefaultRulesAreTheSameOnesForTheProcess) {
    ASSERT_EQ(defaultRules().size(), 11u);
    EXPECT_EQ(AlertSettings{}, AlertSettings{});
    std::set<UUID> ids;
    std::string summaries;
    for (const auto& each : defaultRules()) {
        ids.insert(each.id);
        summaries += title(each.trigger) + ": " + summary(each) + "\n";
    }
    EXPECT_EQ(ids.size(), 11u);
    EXPECT_EQ(summaries, "Drops below 20%: Top · Sound\n"
                         "Drops below 10%: Top · Glow · Sound\n"
                         "Drops below 5%: Center · Glow · Sound · Notification\n"
                         "Reaches 80%: Top · Sound\n"
                         "Fully charged: Top · Glow · Sound\n"
                         "When plugged in: Top · Sound\n"
                         "When unplugged: Top · Sound\n"
                         "Accessory drops below 20%: Top · Sound\n"
                         "Accessory drops below 10%: Top · Glow · Sound\n"
                         "Accessory charged: Top · Sound\n"
                         "Accessory connected: Top\n");
}

TEST(AlertDisplay, titlesChangeAtOneHundred) {
    EXPECT_EQ(title(AlertTrigger{Kind::macReached, 99}), "Reaches 99%");
    EXPECT_EQ(title(AlertTrigger{Kind::macReached, 250}), "Fully charged");
    EXPECT_EQ(title(AlertTrigger{Kind::deviceReached, 99}), "Accessory reaches 99%");
    EXPECT_EQ(title(AlertTrigger{Kind::deviceReached, 100}), "Accessory charged");
    EXPECT_EQ(title(AlertSound::submarine), "Submarine");
    EXPECT_EQ(title(AlertSound::none), "No sound");
}

TEST(AlertDisplay, eachFamilyOffersANewRuleButPower) {
    for (const auto& entry : triggerFamilies) {
        const auto added = newRule(entry.value);
        EXPECT_EQ(added.has_value(), entry.value != Family::power) << entry.name;
        if (!added)
            continue;
        EXPECT_EQ(family(added->trigger), entry.value);
        EXPECT_NE(added->id, newRule(entry.value)->id);
        EXPECT_EQ(summary(*added), "Top · Sound");
    }
    EXPECT_EQ(newRule(Family::charged)->trigger, (AlertTrigger{Kind::macReached, 90}));
    EXPECT_EQ(newRule(Family::devices)->trigger, (AlertTrigger{Kind::deviceBelow, 15}));
}
