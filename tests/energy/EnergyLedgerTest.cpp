// SPDX-License-Identifier: MIT
#include "energy/EnergyLedger.h"

#include <gtest/gtest.h>

#include <string>

namespace kivo {
namespace {

using Bucket = EnergyLedger::Bucket;
using Use = EnergyLedger::Use;

const Date noon = *Date::fromRFC3339("2026-01-05T12:00:00Z");
constexpr double hour = 3600;
constexpr double month = 2'592'000;

AppIdentity named(const std::string& key) {
    return {.key = key, .name = key + " name", .bundlePath = {}, .isApp = true};
}

// "k00" with 100 J, "k01" with 99 J and so on.
std::vector<Use> falling(int count, int first = 0) {
    std::vector<Use> usage;
    for (int i = first; i < first + count; ++i)
        usage.push_back({named((i < 10 ? "k0" : "k") + std::to_string(i)), 100.0 - i});
    return usage;
}

TEST(EnergyLedger, BooksIntoTheLastBucketOfTheSameHourOnly) {
    EnergyLedger ledger;
    ledger = ledger.record({{named("a"), 1}}, noon, TimeZone());
    ledger = ledger.record({{named("a"), 2}, {named("b"), 3}}, noon + 3599.5, TimeZone());
    EXPECT_EQ(ledger.buckets(), (std::vector<Bucket>{{noon, {{"a", 3}, {"b", 3}}}}));
    ledger = ledger.record({{named("a"), 4}}, noon + hour, TimeZone());
    // The clock was set back: the hour comes again, behind the others.
    ledger = ledger.record({{named("a"), 5}}, noon + 60, TimeZone());
    EXPECT_EQ(
        ledger.buckets(),
        (std::vector<Bucket>{{noon, {{"a", 3}, {"b", 3}}}, {noon + hour, {{"a", 4}}}, {noon, {{"a", 5}}}}));
    EXPECT_EQ(ledger.totals(noon), (std::vector<EnergyLedger::Total>{{"a", 12}, {"b", 3}}));
    EXPECT_EQ(ledger.totals(noon + 1), (std::vector<EnergyLedger::Total>{{"a", 4}}));
    EXPECT_TRUE(ledger.totals(noon + hour + 1).empty());
}

TEST(EnergyLedger, TwoIdentitiesOfOneKeyShareItAndTheLaterOneNamesIt) {
    AppIdentity later = named("a");
    later.bundlePath = "/a";
    const auto ledger = EnergyLedger().record({{named("a"), 1}, {later, 2}}, noon, TimeZone());
    EXPECT_EQ(ledger.buckets(), (std::vector<Bucket>{{noon, {{"a", 3}}}}));
    EXPECT_EQ(ledger.identities(), (EnergyLedger::Identities{{"a", later}}));
}

TEST(EnergyLedger, KeepsBucketsOfThirtyDays) {
    const auto first = EnergyLedger().record({{named("old"), 1}}, noon, TimeZone());
    struct Row {
        const char* label;
        double later;
        bool isKept;
    };
    for (const Row& row : {Row{"exactly thirty days", month, true}, Row{"a second more", month + 1, false}}) {
        SCOPED_TRACE(row.label);
        const auto second = first.record({{named("new"), 1}}, noon + row.later, TimeZone());
        EXPECT_EQ(second.buckets().size(), row.isKept ? 2u : 1u);
        EXPECT_EQ(second.identities().contains("old"), row.isKept);
        EXPECT_TRUE(second.identities().contains("new"));
    }
    EXPECT_EQ(first.record({}, noon + 2 * month, TimeZone()), first)
        << "an interval without use forgets nothing";
}

TEST(EnergyLedger, FoldsTheSmallestIntoOthers) {
    const auto joulesOf = [](const EnergyLedger& ledger) { return ledger.buckets().back().joules; };
    const auto full = EnergyLedger().record(falling(40), noon, TimeZone());
    EXPECT_EQ(joulesOf(full).size(), 40u);
    EXPECT_FALSE(joulesOf(full).contains("_others"));

    const auto capped = full.record(falling(1, 40), noon, TimeZone());
    EXPECT_EQ(joulesOf(capped).size(), 40u);
    EXPECT_EQ(joulesOf(capped).at("_others"), 61 + 60);
    EXPECT_EQ(joulesOf(capped).at("k38"), 62);
    EXPECT_FALSE(capped.identities().contains("k39"));
    EXPECT_FALSE(capped.identities().contains("_others"));

    // "_others" is the largest by now and stays among the first.
    const auto grown = capped.record(falling(2, 50), noon, TimeZone());
    EXPECT_EQ(joulesOf(grown).size(), 39u);
    EXPECT_EQ(joulesOf(grown).at("_others"), 61 + 60 + 62 + 50 + 49);

    // A small "_others" is part of the rest that it collects.
    const EnergyLedger small({{noon,
                               [] {
                                   std::map<std::string, double> joules{{"_others", 0.5}};
                                   for (const auto& use : falling(39))
                                       joules[use.identity.key] = use.joules;
                                   return joules;
                               }()}},
                             {});
    const auto again = small.record({{named("z"), 0.25}}, noon, TimeZone());
    EXPECT_EQ(joulesOf(again).size(), 40u);
    EXPECT_EQ(joulesOf(again).at("_others"), 0.75);
}

TEST(EnergyLedger, IdentitiesLiveAsLongAsTheirKeys) {
    const EnergyLedger loaded({{noon, {{"a", 1}}}}, {{"a", named("a")}, {"stray", named("stray")}});
    const auto next = loaded.record({{named("b"), 1}}, noon, TimeZone());
    EXPECT_EQ(next.identities(), (EnergyLedger::Identities{{"a", named("a")}, {"b", named("b")}}));
}

TEST(EnergyLedger, EqualityIsThatOfTheStoredValues) {
    const EnergyLedger one({{noon, {{"a", 1}, {"b", 2}}}}, {{"a", named("a")}});
    // The same keys, numbered the other way round.
    const EnergyLedger other = EnergyLedger().record({{named("b"), 2}, {named("a"), 1}}, noon, TimeZone());
    EXPECT_NE(one, other) << "identities differ";
    EXPECT_EQ(EnergyLedger(one.buckets(), other.identities()), other);
    EXPECT_NE(one, EnergyLedger({{noon, {{"a", 1}, {"b", 2.5}}}}, {{"a", named("a")}}));
    EXPECT_NE(one, EnergyLedger({{noon, {{"a", 1}, {"c", 2}}}}, {{"a", named("a")}}));
    EXPECT_NE(one, EnergyLedger({{noon + 1, {{"a", 1}, {"b", 2}}}}, {{"a", named("a")}}));
}

// Short-lived processes bring a new name every hour; neither names nor numbers may pile up.
TEST(EnergyLedger, ForgetsTheNamesOfThePast) {
    EnergyLedger ledger;
    for (int i = 0; i < 3000; ++i)
        ledger = ledger.record({{named("a"), 1}, {named("short" + std::to_string(i)), 2}}, noon + i * hour,
                               TimeZone());
    EXPECT_EQ(ledger.buckets().size(), 721u);
    EXPECT_EQ(ledger.identities().size(), 722u);
    EXPECT_LE(ledger.keys().size(), 2u * 722 + 256);
    EXPECT_EQ(ledger.totals(noon).front(), (EnergyLedger::Total{"a", 721}));
    EXPECT_EQ(ledger.buckets().front().joules, (std::map<std::string, double>{{"a", 1}, {"short2279", 2}}));
}

TEST(EnergyLedger, HoursFollowTheCalendar) {
    const auto kolkata = *TimeZone::named("Asia/Kolkata");
    const auto ledger = EnergyLedger()
                            .record({{named("a"), 1}}, noon + 29 * 60, kolkata)
                            .record({{named("a"), 1}}, noon + 31 * 60, kolkata);
    EXPECT_EQ(ledger.buckets(), (std::vector<Bucket>{{noon - 1800, {{"a", 1}}}, {noon + 1800, {{"a", 1}}}}));
}

} // namespace
} // namespace kivo
