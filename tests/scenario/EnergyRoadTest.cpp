// SPDX-License-Identifier: MIT
// Roads from the processes' counters to the lists, the insight and the file.
#include "Play.h"

#include <gtest/gtest.h>

#include <iterator>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

// The rows of a `usage` view or of a list in another view: "name joules share".
Lines rows(const PropertyValue& list) {
    Lines result;
    for (const auto& element : *list.array()) {
        const auto& row = *element.dictionary();
        result.push_back(*row.at("name").string() + " " + json::write(row.at("joules")) + " " +
                         json::write(row.at("share")));
    }
    return result;
}

std::vector<PropertyValue> views(const std::string& text) {
    std::vector<PropertyValue> contents;
    for (const Dictionary& event : play(text)) {
        if (event.at("event") == PropertyValue("view"))
            contents.push_back(event.at("content"));
    }
    return contents;
}

// Watt seconds in the counters' unit.
constexpr const char* machine = R"(
    "timeZone": "Asia/Kolkata",
    "processes": [{"pid": 10, "name": "browser", "energy": 1000000000},
                  {"pid": 11, "name": "renderer", "energy": 0, "responsible": 10},
                  {"pid": 20, "name": "indexer", "energy": 0},
                  {"pid": 30, "energy": 0}, {"pid": 40, "name": "secret"}],
    "applications": [{"pid": 10, "localizedName": "Browser", "bundleIdentifier": "org.browser",
                      "bundlePath": "/Applications/Browser.app", "regular": true}])";
constexpr const char* used = R"({"at": 30, "set": {"processes":
    [{"pid": 10, "name": "browser", "energy": 2000000000},
     {"pid": 11, "name": "renderer", "energy": 4000000000, "responsible": 10},
     {"pid": 20, "name": "indexer", "energy": 4000000000},
     {"pid": 30, "energy": 1000000000}, {"pid": 40, "name": "secret"}]}})";

TEST(EnergyRoad, HelpersCountAsTheirApplication) {
    const auto contents = views(scenario(machine, std::string(used) + R"(,
        {"at": 59, "print": "energy"}, {"at": 60, "print": "energy"},
        {"at": 60, "print": {"view": "usage", "window": "now", "apps": true, "limit": 20}},
        {"at": 60, "print": {"view": "usage", "window": "month", "apps": false, "limit": 1}})"));
    ASSERT_EQ(contents.size(), 4u);
    const auto& before = *contents[0].dictionary();
    EXPECT_EQ(before.at("now"), PropertyValue(Array{}));
    EXPECT_EQ(before.at("nowSeconds"), PropertyValue(60.0));
    EXPECT_EQ(before.at("insight"), PropertyValue());
    const auto& after = *contents[1].dictionary();
    EXPECT_EQ(rows(after.at("now")), (Lines{"Browser 5.0 0.5", "indexer 4.0 0.4", "PID 30 1.0 0.1"}));
    EXPECT_EQ(json::write(after.at("ledger")),
              R"({"buckets":[{"hourStart":789294600,"joules":{"PID 30":1,"indexer":4,"org.browser":5}}],)"
              R"("identities":{"PID 30":{"isApp":false,"key":"PID 30","name":"PID 30"},)"
              R"("indexer":{"isApp":false,"key":"indexer","name":"indexer"},)"
              R"("org.browser":{"bundlePath":"/Applications/Browser.app","isApp":true,"key":"org.browser",)"
              R"("name":"Browser"}}})")
        << "the hour of Kolkata, whose clocks show a half hour more";
    EXPECT_EQ(*after.at("insight").dictionary()->at("name").string(), "Browser");
    EXPECT_EQ(rows(contents[2]), Lines{"Browser 5.0 0.5"});
    EXPECT_EQ(rows(contents[3]), Lines{"indexer 4.0 0.4"});
}

TEST(EnergyRoad, ThePaneTellsWhatItsPeriodHolds) {
    const auto contents = views(scenario(machine, std::string(used) + R"(,
        {"at": 59, "print": "settings.energy"}, {"at": 60, "print": "settings.energy"},
        {"at": 60, "print": {"view": "settings.energy", "window": "now", "showsApps": false}})"));
    ASSERT_EQ(contents.size(), 3u);
    const auto told = [&](std::size_t index) {
        const Dictionary& pane = *contents[index].dictionary();
        Lines lines{*pane.at("subtitle").string(), json::write(pane.at("insight"))};
        for (const auto& row : *pane.at("rows").array())
            lines.push_back(*row.dictionary()->at("name").string() + " " +
                            *row.dictionary()->at("value").string() + " " +
                            json::write(row.dictionary()->at("icon")));
        if (const auto* empty = pane.at("empty").dictionary())
            lines.push_back(*empty->at("title").string());
        return lines;
    };
    const std::string since = "History since Jan 5, 2 PM";
    const std::string insight = R"("**Browser** used 50% of the energy in the last hour")";
    EXPECT_EQ(told(0), (Lines{"Collecting history", "null", "No data yet"}));
    EXPECT_EQ(told(1), (Lines{since, insight, "Browser 1 mWh · 50% \"/Applications/Browser.app\""}));
    EXPECT_EQ(told(2), (Lines{since, insight, "indexer 67 mW · 40% null", "PID 30 17 mW · 10% null"}));
}

TEST(EnergyRoad, TheFileIsWrittenTenMinutesAfterTheLastSuccessAndAtTheEnd) {
    const auto lines =
        digests(scenario(std::string(machine) + R"(, "support": {"Kivo/energy.json": {"text": "no history"}})",
                         std::string(used) + R"(, {"at": 100, "set": {"supportWritable": false}},
                     {"at": 720}, {"at": 800, "set": {"supportWritable": true}}, {"at": 850, "terminate": true})"),
                {"file", "log", "quit"});
    Lines energy;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(energy), [](const auto& line) {
        return line.find(" log ") == line.npos || line.find("nergy") != line.npos;
    });
    const std::string failure =
        " log energy Saving energy history failed: You don’t have permission to save the "
        "file “Kivo/energy.json”.";
    EXPECT_EQ(energy,
              (Lines{"60 file.write Kivo/energy.json", "720" + failure, "780" + failure,
                     "840 file.write Kivo/energy.json", "850 file.write Kivo/energy.json", "850 quit"}));
}

TEST(EnergyRoad, AfterARelaunchTheHistoryGoesOn) {
    struct Row {
        const char* how;
        Lines month;
    };
    for (const Row& row : {Row{"quit", {"Browser 6.0 0.5454545454545454"}}, Row{"kill", {"Browser 5.0 0.5"}}}) {
        SCOPED_TRACE(row.how);
        const auto contents = views(scenario(machine, std::string(used) + R"(,
            {"at": 70, "set": {"processes": [{"pid": 10, "name": "browser", "energy": 3000000000}]}},
            {"at": 130, "relaunch": ")" + row.how + R"("},
            {"at": 200, "print": {"view": "usage", "window": "month", "apps": true, "limit": 20}})"));
        ASSERT_EQ(contents.size(), 1u);
        EXPECT_EQ(rows(contents[0]), row.month);
    }
}

TEST(EnergyRoad, ListingsThatFailBookNothing) {
    const auto contents = views(scenario(machine, R"(
        {"at": 30, "set": {"processes": null}}, )" + std::string(used).replace(7, 2, "90") +
                                                      R"(,
        {"at": 180, "print": {"view": "usage", "window": "month", "apps": true, "limit": 20}})"));
    EXPECT_EQ(rows(contents.at(0)), Lines{});
}

TEST(EnergyRoad, WrongOptionsAreErrors) {
    for (const char* view :
         {R"({"view": "usage"})", R"({"view": "usage", "window": "year"})",
          R"({"view": "usage", "window": "day", "limit": -1})",
          R"({"view": "usage", "window": "day", "apps": 1})", R"({"view": "energy", "window": "day"})"})
        EXPECT_THROW(Scenario::read(scenario("", std::string(R"({"at": 0, "print": )") + view + "}")),
                     std::exception)
            << view;
}

} // namespace
} // namespace kivo
