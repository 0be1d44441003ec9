// SPDX-License-Identifier: MIT
#include "core/AlertEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

using namespace kivo;
using Kind = AlertTrigger::Kind;
using Source = BatterySnapshot::PowerSource;

namespace {

std::string label(const AlertTrigger& trigger) {
    std::string text(triggerKinds.name(trigger.kind));
    return hasThreshold(trigger.kind) ? text + std::to_string(trigger.threshold) : text;
}

std::string labels(const std::vector<FiredAlert>& alerts) {
    std::string text;
    for (const auto& alert : alerts) {
        text += (text.empty() ? "" : " ") + label(alert.rule.trigger);
        if (const auto* device = std::get_if<PowerDevice>(&alert.subject))
            text += "@" + device->id;
    }
    return text;
}

std::vector<AlertRule> rules(std::initializer_list<AlertTrigger> triggers) {
    std::vector<AlertRule> list;
    for (const auto& trigger : triggers)
        list.push_back({.trigger = trigger});
    return list;
}

BatterySnapshot battery(std::int64_t level) {
    return {.level = level, .source = Source::battery};
}
BatterySnapshot charger(std::int64_t level, bool isCharged = false) {
    return {.level = level, .source = Source::ac, .isCharging = !isCharged, .isCharged = isCharged};
}
PowerDevice device(std::string id, std::int64_t level, bool isCharging = false) {
    return {.id = std::move(id), .level = level, .isCharging = isCharging};
}

} // namespace

TEST(AlertEngine, macRulesFireOnTheCrossingAlone) {
    struct Row {
        std::optional<BatterySnapshot> previous;
        BatterySnapshot current;
        const char* fired;
    };
    const std::array rows{
        Row{{}, battery(3), ""},
        Row{battery(21), battery(21), ""},
        Row{battery(21), battery(20), "macBelow20"},
        Row{battery(20), battery(20), ""},
        Row{battery(20), battery(19), ""},
        Row{battery(21), battery(9), "macBelow10"},
        Row{battery(21), battery(3), "macBelow5"},
        Row{battery(9), battery(30), ""},
        Row{charger(79), charger(80), "macReached80"},
        Row{charger(80), charger(81), ""},
        Row{charger(79), charger(100), "macReached100"},
        Row{charger(80), battery(80), "unplugged"},
        Row{battery(80), charger(80), "pluggedIn"},
        Row{battery(79), charger(80), "pluggedIn macReached80"},
        Row{charger(30), battery(19), "unplugged macBelow20"},
        Row{battery(21), charger(19), "pluggedIn"},
        Row{charger(99), charger(99, true), "macReached100"},
        Row{charger(100), charger(100), ""},
        Row{charger(90, true), charger(100), ""},
        Row{charger(90, true), charger(100, true), ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(labels(AlertEngine::evaluateMac(row.previous, row.current, defaultRules())), row.fired)
            << (row.previous ? row.previous->level : -1) << " > " << row.current.level;
}

TEST(AlertEngine, amongMacRulesTheDeepestThenTheFirstFires) {
    auto list = rules({{Kind::macBelow, 20},
                       {Kind::macBelow, 20},
                       {Kind::macBelow, 25},
                       {Kind::pluggedIn},
                       {Kind::pluggedIn},
                       {Kind::macReached, 100},
                       {Kind::macReached, 250},
                       {Kind::macReached, 250}});
    const auto below = AlertEngine::evaluateMac(battery(30), battery(10), list);
    ASSERT_EQ(labels(below), "macBelow20");
    EXPECT_EQ(below[0].rule.id, list[0].id);
    EXPECT_EQ(std::get<BatterySnapshot>(below[0].subject), battery(10));
    const auto full = AlertEngine::evaluateMac(battery(99), charger(100), list);
    ASSERT_EQ(labels(full), "pluggedIn pluggedIn macReached250");
    EXPECT_EQ(full[2].rule.id, list[6].id);
    list[0].isEnabled = false;
    EXPECT_EQ(AlertEngine::evaluateMac(battery(30), battery(10), list)[0].rule.id, list[1].id);
    for (auto& rule : list)
        rule.isEnabled = false;
    EXPECT_TRUE(AlertEngine::evaluateMac(battery(99), charger(100), list).empty());
}

TEST(AlertEngine, deviceRulesFireOncePerDevice) {
    struct Row {
        std::optional<std::vector<PowerDevice>> previous;
        std::vector<PowerDevice> current;
        const char* fired;
    };
    using List = std::vector<PowerDevice>;
    const std::array rows{
        Row{{}, {device("m", 5)}, ""},
        Row{List{}, {device("m", 5), device("k", 90)}, "deviceConnected@m deviceConnected@k"},
        Row{List{device("m", 21)}, {device("m", 20)}, "deviceBelow20@m"},
        Row{List{device("m", 20)}, {device("m", 19)}, ""},
        Row{List{device("m", 21)}, {device("m", 9)}, "deviceBelow10@m"},
        Row{List{device("m", 21)}, {device("m", 19, true)}, ""},
        Row{List{device("m", 21, true)}, {device("m", 19)}, "deviceBelow20@m"},
        Row{List{device("m", 21)}, {device("m", 100)}, "deviceReached100@m"},
        Row{List{device("m", 99, true)}, {device("m", 100, true)}, "deviceReached100@m"},
        Row{List{device("m", 100)}, {device("m", 100)}, ""},
        Row{List{device("m", 15), device("m", 30)}, {device("m", 12)}, ""},
        Row{List{device("m", 30), device("m", 15)}, {device("m", 12)}, "deviceBelow20@m"},
        Row{List{device("m", 30)}, {}, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(labels(AlertEngine::evaluateDevices(row.previous, row.current, defaultRules())), row.fired);
}

TEST(AlertEngine, oneDeviceKeepsItsMostUrgentRule) {
    const std::vector<PowerDevice> previous{device("d", 15)};
    // Both a fall below 90 and a rise to 10 cannot happen; thresholds around a rise from 15 to 60 can.
    const auto list = rules({{Kind::deviceReached, 20},
                             {Kind::deviceReached, 60},
                             {Kind::deviceReached, 60},
                             {Kind::deviceReached, 50},
                             {Kind::macReached, 50},
                             {Kind::unplugged}});
    const auto fired = AlertEngine::evaluateDevices(previous, {device("d", 60)}, list);
    ASSERT_EQ(labels(fired), "deviceReached60@d");
    EXPECT_EQ(fired[0].rule.id, list[1].id);
    const auto connects = rules({{Kind::deviceConnected}, {Kind::deviceConnected}});
    EXPECT_EQ(AlertEngine::evaluateDevices(previous, {device("new", 1)}, connects)[0].rule.id, connects[0].id);
    const auto below = rules({{Kind::deviceBelow, 10}, {Kind::deviceBelow, 12}, {Kind::deviceBelow, 10}});
    EXPECT_EQ(AlertEngine::evaluateDevices(previous, {device("d", 9)}, below)[0].rule.id, below[0].id);
}

TEST(AlertEngine, sortsByUrgencyAndKeepsTheOrderOfEquals) {
    std::vector<FiredAlert> alerts;
    for (const auto& rule : rules({{Kind::deviceConnected},
                                   {Kind::deviceReached, 100},
                                   {Kind::macReached, 99},
                                   {Kind::unplugged},
                                   {Kind::pluggedIn},
                                   {Kind::macReached, 100},
                                   {Kind::deviceBelow, 5},
                                   {Kind::macBelow, 50},
                                   {Kind::macBelow, 5},
                                   {Kind::macReached, 300}}))
        alerts.push_back({rule, battery(1)});
    std::stable_sort(alerts.begin(), alerts.end(), AlertEngine::isMoreUrgent);
    std::string order;
    for (const auto& alert : alerts)
        order += label(alert.rule.trigger) + " ";
    EXPECT_EQ(order, "macBelow50 macBelow5 deviceBelow5 macReached100 macReached300 pluggedIn unplugged "
                     "macReached99 deviceReached100 deviceConnected ");
}

// A second engine, written as a search over all rules for each question, without any of the first one's code.
namespace naive {

bool crosses(const AlertRule& r, const BatterySnapshot& p, const BatterySnapshot& c) {
    const auto t = r.trigger.threshold;
    if (!r.isEnabled)
        return false;
    if (r.trigger.kind == Kind::macBelow)
        return c.source == Source::battery && p.level > t && t >= c.level;
    if (r.trigger.kind != Kind::macReached || c.source != Source::ac)
        return false;
    if (t < 100)
        return p.level < t && t <= c.level;
    return p.level < 100 && !p.isCharged && (c.isCharged || c.level >= 100);
}

std::vector<UUID> mac(const BatterySnapshot& p, const BatterySnapshot& c, const std::vector<AlertRule>& list) {
    std::vector<UUID> fired;
    for (const auto& r : list) {
        const bool plugs = p.source != c.source &&
                           r.trigger.kind == (c.source == Source::ac ? Kind::pluggedIn : Kind::unplugged);
        if (r.isEnabled && plugs)
            fired.push_back(r.id);
    }
    std::vector<AlertRule> matches;
    std::copy_if(list.begin(), list.end(), std::back_inserter(matches),
                 [&](const auto& r) { return crosses(r, p, c); });
    std::stable_sort(matches.begin(), matches.end(), [&](const auto& a, const auto& b) {
        return c.source == Source::battery ? a.trigger.threshold < b.trigger.threshold
                                           : a.trigger.threshold > b.trigger.threshold;
    });
    if (!matches.empty())
        fired.push_back(matches.front().id);
    return fired;
}

} // namespace naive

TEST(AlertEngine, agreesWithANaiveModelOnRandomWalks) {
    std::mt19937 random(7);
    const auto pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int walk = 0; walk < 200; ++walk) {
        std::vector<AlertRule> list;
        for (int i = pick(0, 14); i > 0; --i) {
            const auto kind = triggerKinds.entries[static_cast<std::size_t>(pick(0, 6))].value;
            list.push_back(
                {.trigger = {kind, hasThreshold(kind) ? 10 * pick(-1, 12) : 0}, .isEnabled = pick(0, 4) > 0});
        }
        BatterySnapshot previous = battery(pick(0, 100));
        for (int step = 0; step < 200; ++step) {
            BatterySnapshot current = previous;
            if (pick(0, 5) == 0)
                current.source = current.source == Source::ac ? Source::battery : Source::ac;
            current.level = std::clamp<std::int64_t>(current.level + pick(-15, 15), 0, 100);
            current.isCharged = pick(0, 9) == 0;
            std::vector<UUID> fired;
            for (const auto& alert : AlertEngine::evaluateMac(previous, current, list))
                fired.push_back(alert.rule.id);
            ASSERT_EQ(fired, naive::mac(previous, current, list)) << "walk " << walk << ", step " << step;
            previous = current;
        }
    }
}
