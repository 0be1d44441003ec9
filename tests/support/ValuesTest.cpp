// SPDX-License-Identifier: MIT
#include "support/Date.h"
#include "support/Text.h"
#include "support/UUID.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

using namespace kivo;

TEST(Date, readsRFC3339) {
    struct Row {
        const char* text;
        std::optional<double> seconds;
    };
    const std::array rows{
        Row{"2001-01-01T00:00:00Z", 0},
        Row{"2026-01-05T09:00:00Z", 789296400},
        Row{"2026-01-05T10:30:00.25+01:30", 789296400.25},
        Row{"2000-12-31t23:59:59z", -1},
        Row{"2024-02-29T00:00:00-00:30", 730859400},
        Row{"2025-02-29T00:00:00Z", {}},
        Row{"2026-01-05T09:00:00", {}},
        Row{"2026-01-05", {}},
        Row{"2026-01-05T24:00:00Z", {}},
        Row{"2026-01-05T09:00:00Zx", {}},
        Row{"2026-01-05T09:00:00.Z", {}},
        Row{"-026-01-05T09:00:00Z", {}},
        Row{"", {}},
    };
    for (const auto& row : rows) {
        const auto date = Date::fromRFC3339(row.text);
        EXPECT_EQ(date.has_value(), row.seconds.has_value()) << row.text;
        if (date && row.seconds) {
            EXPECT_DOUBLE_EQ(date->secondsSince2001, *row.seconds) << row.text;
        }
    }
}

TEST(UUID, readsEitherCaseAndWritesUpperCase) {
    const auto uuid = UUID::fromString("6f1d0b4e-2c55-4C8A-9e3b-0d2b7a1c9f10");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->string(), "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9F10");
    for (const char* text : {"", "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9F1", "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9F100",
                             "6F1D0B4E02C55-4C8A-9E3B-0D2B7A1C9F10", "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9G10"})
        EXPECT_FALSE(UUID::fromString(text)) << text;
    EXPECT_NE(UUID::random(), UUID::random());
    EXPECT_EQ(UUID::random().string()[14], '4');
}

TEST(Text, fillsPlaceholdersAndLeavesEveryOtherCharacter) {
    struct Row {
        const char* pattern;
        const char* result;
    };
    const std::array rows{
        Row{"%lld%", "7%"},          Row{"%lld% · full in %@", "7% · full in x"},
        Row{"100%", "100%"},         Row{"%2$@ and %1$lld", "x and 7"},
        Row{"%lld %@ %@", "7 x %@"}, Row{"%d %1 %$@", "%d %1 %$@"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(formatted(row.pattern, {7, std::string("x")}), row.result) << row.pattern;
    EXPECT_EQ(formatted("%@", {std::string("50%@ off")}), "50%@ off") << "what was inserted is not read again";
    EXPECT_EQ(formatted("%lld", {-1234567}), "-1234567");
}

TEST(Text, aCatalogueTranslatesWhatItKnows) {
    installTextCatalogue({{"%lld% left", "noch %lld %"}});
    EXPECT_EQ(localized("%lld% left", {5}), "noch 5 %");
    EXPECT_EQ(localized("Unknown here"), "Unknown here");
    installTextCatalogue({});
    EXPECT_EQ(localized("%lld% left", {5}), "5% left");
}

TEST(Text, lowersBeyondASCIIAndLeavesWhatIsNoText) {
    EXPECT_EQ(lowercased("BATERÍA Baja Ñ"), "batería baja ñ");
    EXPECT_EQ(lowercased("A\xff\xc3"), "a\xff\xc3");
}

TEST(Text, decimalsAreWrittenTheSameInEveryLocale) {
    struct Row {
        double value;
        int decimals;
        const char* text;
    };
    const std::array rows{
        Row{12.34, 1, "12.3"}, Row{0.25, 1, "0.2"},       Row{-9.96, 1, "-10.0"},
        Row{99.5, 0, "100"},   Row{1234.5, 2, "1234.50"}, Row{std::nan(""), 1, "nan"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decimalText(row.value, row.decimals), row.text);
    EXPECT_EQ(decimalText(-1e308, 1).size(), 1u + 309 + 2);
}
