// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"

#include "support/Json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>

namespace kivo {
namespace {

using Bucket = EnergyLedger::Bucket;

const Date noon = *Date::fromRFC3339("2026-01-05T12:00:00Z");

std::string joined(const TextPieces& pieces) {
    std::string text;
    for (const auto& piece : pieces)
        text += *piece;
    return text;
}

// What a general JSON reader makes of the text.
EnergyLedger readBySomebodyElse(const std::string& text) {
    const PropertyValue document = json::parse(text);
    const auto& root = decoding::object(document, "ledger");
    std::vector<Bucket> buckets;
    for (const auto& element : decoding::requireArray(root, "buckets")) {
        const auto& object = decoding::object(element, "bucket");
        Bucket bucket{Date{decoding::requireNumber(object, "hourStart")}, {}};
        for (const auto& [key, joules] : decoding::requireObject(object, "joules"))
            bucket.joules[key] = joules.number().value();
        buckets.push_back(std::move(bucket));
    }
    EnergyLedger::Identities identities;
    for (const auto& [key, element] : decoding::requireObject(root, "identities")) {
        const auto& object = decoding::object(element, "identity");
        identities[key] = {.key = decoding::requireString(object, "key"),
                           .name = decoding::requireString(object, "name"),
                           .bundlePath = decoding::optionalString(object, "bundlePath"),
                           .isApp = decoding::optionalBool(object, "isApp")};
    }
    return EnergyLedger(buckets, std::move(identities));
}

TEST(EnergyLedgerText, StoredForm) {
    const EnergyLedger ledger({{noon, {{"a", 1.5}}}, {noon + 3600.25, {}}},
                              {{"a", {.key = "a", .name = "A", .bundlePath = "/A", .isApp = false}},
                               {"b", {.key = "b", .name = "B", .bundlePath = {}, .isApp = {}}}});
    EXPECT_EQ(encode(ledger), "{\"buckets\":[{\"hourStart\":789307200,\"joules\":{\"a\":1.5}},"
                              "{\"hourStart\":789310800.25,\"joules\":{}}],\"identities\":{"
                              "\"a\":{\"key\":\"a\",\"name\":\"A\",\"bundlePath\":\"/A\",\"isApp\":false},"
                              "\"b\":{\"key\":\"b\",\"name\":\"B\"}}}");
    EXPECT_EQ(encode(EnergyLedger()), "{\"buckets\":[],\"identities\":{}}");
}

TEST(EnergyLedgerText, TextsAndNumbersSurviveTheRoundTrip) {
    EnergyLedger::Identities identities;
    std::map<std::string, double> joules;
    const std::string keys[] = {"",
                                "\"",
                                "\\",
                                "/",
                                "a\nb",
                                std::string("z\0ero", 5),
                                "\x1f",
                                "é",
                                "€",
                                "😀",
                                "sixteen bytes.. ",
                                "fifteen bytes \""};
    for (const auto& key : keys) {
        identities[key] = {.key = key, .name = key + key, .bundlePath = key, .isApp = true};
        joules[key] = 1;
    }
    for (const double number : {0.0, 0.1, 1e-300, 5e-324, 1.7976931348623157e308, 1e22, 123456789012345678.0,
                                2.2250738585072011e-308, -1.5})
        joules["n" + std::to_string(joules.size())] = number;
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        double number;
        const std::uint64_t bits = random();
        static_assert(sizeof number == sizeof bits);
        std::memcpy(&number, &bits, sizeof number);
        if (std::isfinite(number))
            joules["r" + std::to_string(i)] = number;
    }
    const EnergyLedger ledger({{Date{-0.125}, joules}}, identities);
    EXPECT_EQ(decodeEnergyLedger(encode(ledger)), ledger);
    EXPECT_EQ(readBySomebodyElse(encode(ledger)), ledger);
}

TEST(EnergyLedgerText, WhatNoTextCanHoldIsReplaced) {
    const double infinite = std::numeric_limits<double>::infinity();
    const auto ledger = decodeEnergyLedger(encode(EnergyLedger({{noon, {{"caf\xE9", infinite}}}}, {})));
    EXPECT_EQ(ledger.buckets(),
              (std::vector<Bucket>{{noon, {{"caf\xEF\xBF\xBD", std::numeric_limits<double>::max()}}}}));
}

TEST(EnergyLedgerText, ReadsAnyJSONOfTheForm) {
    struct Row {
        const char* label;
        const char* text;
        std::vector<Bucket> buckets;
    };
    const Row rows[] = {
        {"white space and another order",
         " {\n\t\"identities\" : { } ,\r\n \"buckets\" : [ { \"joules\" : { \"a\" : 1 } , \"hourStart\" : 2 } "
         "] } \n",
         {{Date{2}, {{"a", 1}}}}},
        {"members of later versions",
         R"({"version":2,"buckets":[{"hourStart":1,"x":[{"y":[null,true,"z",-1e-5]}],"joules":{}}],"identities":{},"z":{}})",
         {{Date{1}, {}}}},
        {"escapes in names of members",
         R"({"\u0062uckets":[{"hourStart":1,"joules":{"\ud83d\ude00\/\t":1}}],"identities":{}})",
         {{Date{1}, {{"😀/\t", 1}}}}},
        {"the last of equal keys counts",
         R"({"buckets":[],"buckets":[{"hourStart":1,"hourStart":2,"joules":{"a":1,"b":3,"a":2}}],"identities":{}})",
         {{Date{2}, {{"a", 2}, {"b", 3}}}}},
        {"numbers in all forms",
         R"({"buckets":[{"hourStart":1E2,"joules":{"a":-0,"b":10e-1,"c":0.5e+1,"d":1e-999}}],"identities":{}})",
         {{Date{100}, {{"a", 0}, {"b", 1}, {"c", 5}, {"d", 0}}}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(decodeEnergyLedger(row.text).buckets(), row.buckets);
    }
    const auto old = decodeEnergyLedger(
        R"({"buckets":[],"identities":{"a":{"key":"b","name":"n"},"c":{"key":"c","name":"n","bundlePath":null,"isApp":null}}})");
    EXPECT_EQ(old.identities(),
              (EnergyLedger::Identities{{"a", {.key = "b", .name = "n", .bundlePath = {}, .isApp = {}}},
                                        {"c", {.key = "c", .name = "n", .bundlePath = {}, .isApp = {}}}}));
}

TEST(EnergyLedgerText, RefusesWhatIsNotTheForm) {
    const std::string deep =
        R"({"buckets":[],"identities":{},"x":)" + std::string(300, '[') + std::string(300, ']') + "}";
    const std::string texts[] = {
        "",
        " ",
        "null",
        "[]",
        "{",
        "{}",
        deep,
        R"({"buckets":[]})",
        R"({"identities":{}})",
        R"({"buckets":{},"identities":{}})",
        R"({"buckets":[],"identities":[]})",
        R"({"buckets":null,"identities":{}})",
        R"({"buckets":[],"identities":{}}x)",
        R"({"buckets":[],"identities":{},})",
        R"({"buckets":[{"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1}],"identities":{}})",
        R"({"buckets":[{"hourStart":"1","joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1,"joules":{"a":null}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1,"joules":{"a":true}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1,"joules":{"a":1},}],"identities":{}})",
        R"({"buckets":[{"hourStart":1,"joules":[]}],"identities":{}})",
        R"({"buckets":[{"hourStart":1e999,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":01,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1.,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":.5,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":+1,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":1e,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":nan,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":inf,"joules":{}}],"identities":{}})",
        R"({"buckets":[{"hourStart":0x1,"joules":{}}],"identities":{}})",
        R"({"buckets":[1],"identities":{}})",
        R"({"buckets":[],"identities":{"a":{"name":"n"}}})",
        R"({"buckets":[],"identities":{"a":{"key":"a"}}})",
        R"({"buckets":[],"identities":{"a":{"key":null,"name":"n"}}})",
        R"({"buckets":[],"identities":{"a":{"key":"a","name":"n","isApp":1}}})",
        R"({"buckets":[],"identities":{"a":{"key":"a","name":"n","bundlePath":1}}})",
        R"({"buckets":[],"identities":{"a":{"key":"\ud83d","name":"n"}}})",
        R"({"buckets":[],"identities":{"a":{"key":"\udc00","name":"n"}}})",
        R"({"buckets":[],"identities":{"a":{"key":"\x","name":"n"}}})",
        R"({"buckets":[],"identities":{"a":{"key":"\u12g4","name":"n"}}})",
        "{\"buckets\":[],\"identities\":{\"a\":{\"key\":\"\xFF\",\"name\":\"n\"}}}",
        "{\"buckets\":[],\"identities\":{\"a\":{\"key\":\"\n\",\"name\":\"n\"}}}",
        "\xEF\xBB\xBF{\"buckets\":[],\"identities\":{}}",
    };
    for (const auto& text : texts)
        EXPECT_THROW(decodeEnergyLedger(text), DecodingError) << text;
}

// Cut anywhere, or with any byte changed: an error or a ledger, never a read beyond the text, and never
// another opinion than that of a general reader.
TEST(EnergyLedgerText, DamagedTexts) {
    const EnergyLedger ledger(
        {{noon, {{"org.example.editor", 1.25e-3}, {"é\"", 7}}}, {noon + 3600, {{"b", 0.1}}}},
        {{"b", {.key = "b", .name = "Bé", .bundlePath = "/b", .isApp = true}}});
    const std::string whole = encode(ledger);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<char> exact(whole.data(), whole.data() + length);
        EXPECT_THROW(decodeEnergyLedger({exact.data(), exact.size()}), DecodingError) << length;
    }
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const char byte : {'\0', ' ', '"', '\\', '0', '-', 'e', '{', ']', ',', '\x7f', '\x80', '\xC3'}) {
            std::string bent = whole;
            bent[i] = byte;
            std::optional<EnergyLedger> ours, theirs;
            try {
                ours = decodeEnergyLedger(bent);
            } catch (const DecodingError&) {
            }
            try {
                theirs = readBySomebodyElse(bent);
            } catch (const std::exception&) {
            }
            EXPECT_EQ(ours.has_value(), theirs.has_value()) << bent;
            if (ours && theirs) {
                EXPECT_EQ(*ours, *theirs) << bent;
            }
        }
    }
}

TEST(EnergyLedgerText, HoursThatAreOverAreEncodedOnce) {
    const AppIdentity a{.key = "a", .name = "A", .bundlePath = {}, .isApp = true};
    EnergyLedgerText text;
    EnergyLedger ledger;
    std::set<const std::string*> seen;
    std::vector<TextPieces> keptAlive;
    for (int minutes = 0; minutes < 33 * 24 * 60; minutes += 20) {
        const Date now = noon + minutes * 60.0;
        ledger = ledger.record({{a, 1}}, now, TimeZone());
        const auto pieces = text.encode(ledger);
        ASSERT_EQ(joined(pieces), encode(ledger)) << minutes;
        if (minutes < 24 * 60) {
            keptAlive.push_back(pieces);
            for (const auto& piece : pieces)
                seen.insert(piece.get());
        }
    }
    // A day: 23 closed hours, the open one with each of its 72 saves, a beginning and an end.
    EXPECT_EQ(seen.size(), 23u + 72 + 2);

    // Hours go from the middle, when the clock was set forward and back, and all at once.
    ledger = ledger.record({{a, 1}}, noon + 35 * 86400, TimeZone());
    ledger = ledger.record({{a, 1}}, noon + 34 * 86400, TimeZone());
    EXPECT_EQ(joined(text.encode(ledger)), encode(ledger));
    ledger = ledger.record({{a, 1}}, noon + 65 * 86400, TimeZone());
    EXPECT_EQ(ledger.buckets().size(), 2u);
    EXPECT_EQ(joined(text.encode(ledger)), encode(ledger));
    EXPECT_EQ(joined(text.encode(EnergyLedger())), encode(EnergyLedger()));
}

} // namespace
} // namespace kivo
