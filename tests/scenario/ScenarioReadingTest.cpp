// SPDX-License-Identifier: MIT
#include "scenario/Scenario.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// The message that the scenario fails with, read or played; empty when it plays.
std::string failure(const std::string& text) {
    try {
        Scenario::read(text).play();
        return "";
    } catch (const ScenarioError& error) {
        return error.what();
    }
}

std::string withSteps(const std::string& steps) {
    return R"({"steps": [)" + steps + "]}";
}

TEST(ScenarioReading, NamesTheStepAndWhatIsWrong) {
    const struct {
        const char* steps;
        const char* expected; // how the message begins
    } rows[] = {
        {R"(5)", "step 1: a step must be an object"},
        {R"({"at": 0}, {})", "step 2: at is missing"},
        {R"({"at": "0"})", "step 1: at must be a number"},
        {R"({"at": -1})", "step 1: at must not be negative"},
        {R"({"at": 1e300})", "step 1: at is too far"},
        {R"({"at": 5}, {"at": 4.5})", "step 2: at must not be earlier"},
        {R"({"at": 0, "sett": {}})", "step 1: unknown step \"sett\""},
        {R"({"at": 0, "menu": "open", "test": 1})", "step 1: a step can do only one thing"},
        {R"({"at": 0}, {"at": 0, "set": []})", "step 2: set must be an object"},
        {R"({"at": 0, "set": {"lowPowerMode": 1}})", "step 1: lowPowerMode must be true or false"},
        {R"({"at": 0, "set": {"battery": 1}})", "step 1: unknown machine key \"battery\""},
        {R"({"at": 0, "attach": null})", "step 1: attach must be a text"},
        {R"({"at": 0, "message": {"code": 1}})", "step 1: message.device is missing"},
        {R"({"at": 0, "message": {"device": null, "code": -1}})", "step 1: message.code must be an integer"},
        {R"({"at": 0, "message": {"device": null, "code": 1.0}})", "step 1: message.code must be an integer"},
        {R"({"at": 0, "menu": "close"})", "step 1: menu can only be"},
        {R"({"at": 0, "settings": []})", "step 1: settings must be an object"},
        {R"({"at": 0, "test": 1.0})", "step 1: test must be an integer"},
        {R"({"at": 0, "dismisses": 1})", "step 1: dismisses must be true or false"},
        {R"({"at": 0, "requestTrust": false})", "step 1: requestTrust can only be true"},
        {R"({"at": 0, "terminate": "now"})", "step 1: terminate must be true"},
        {R"({"at": 0, "login": null})", "step 1: login must be true or false"},
        {R"({"at": 0, "settingsTab": "other"})", "step 1: settingsTab cannot be \"other\""},
        {R"({"at": 0, "previewSound": "Tink"})", "step 1: previewSound cannot be \"Tink\""},
        {R"({"at": 0, "relaunch": "crash"})", "step 1: relaunch must be"},
        {R"({"at": 0, "print": "everything"})", "step 1: unknown view \"everything\""},
        {R"({"at": 0, "print": 5})", "step 1: print must be a view's name"},
        {R"({"at": 0, "print": {"view": "state", "window": "day"}})", "step 1: print has an unknown member"},
        {R"({"at": 0, "print": {"view": "usage", "window": "year"}})",
         "step 1: print.window cannot be \"year\""},
        {R"({"at": 0, "print": {"view": "usage", "window": "day", "limit": -1}})",
         "step 1: print.limit must not be negative"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failure(withSteps(row.steps)).substr(0, std::string(row.expected).size()), row.expected)
            << row.steps << "\n"
            << failure(withSteps(row.steps));
}

TEST(ScenarioReading, RefusesWhatIsNoScenario) {
    for (const char* text : {"", "{", "[]", "null", R"({"steps": {}})", R"({"machine": []})",
                             R"({"machine": {"mouse": 1}})", R"({"stepps": []})", "{\"steps\": []} x"})
        EXPECT_NE(failure(text), "") << text;
    EXPECT_EQ(failure("{").substr(0, 43), "the text is not JSON: parse error at line 1");
    for (const char* text : {"{}", R"({"steps": []})", R"({"machine": {}})"})
        EXPECT_EQ(failure(text), "") << text;
}

TEST(ScenarioReading, NothingIsPrintedBeforeTheLastStepThatMayFail) {
    const auto printed = [](const char* last) {
        std::size_t lines = 0;
        const auto scenario = Scenario::read(
            withSteps(R"({"at": 0, "test": 0}, {"at": 9, "settings": {}}, {"at": 20, "print": "state"},)" +
                      std::string(last)));
        EXPECT_THROW(scenario.play([&](const std::string&) {
            if (++lines == 3)
                throw ScenarioError("enough");
        }),
                     ScenarioError);
        return lines;
    };
    EXPECT_EQ(printed(R"({"at": 21, "settings": {"rules": 1}})"), 0u) << "it fails before it prints";
    EXPECT_EQ(printed(R"({"at": 21, "settings": {"rules": []}})"), 3u);
}

TEST(ScenarioReading, SettingsThatDoNotDecodeAreFoundWhilePlaying) {
    EXPECT_EQ(failure(withSteps(R"({"at": 0}, {"at": 1, "settings": {"playsSound": "loud"}})")).substr(0, 8),
              "step 2: ");
    EXPECT_NE(failure(withSteps(R"({"at": 1, "settings": {"rules": [{}]}})")), "");
    EXPECT_EQ(failure(withSteps(R"({"at": 1, "settings": {"playsSound": null, "rules": []}})")), "");
}

} // namespace
} // namespace kivo
