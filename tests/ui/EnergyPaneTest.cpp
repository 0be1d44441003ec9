// SPDX-License-Identifier: MIT
#include "ui/EnergyPane.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace kivo;

TEST(EnergyPane, unitsChangeAtOneAndSharesAtAPercent) {
    struct Row {
        std::string text;
        const char* expected;
    };
    const double zero = 0;
    const std::array rows{
        Row{powerText(2.4 / 60), "40 mW"}, Row{powerText(0.9994), "999 mW"},
        Row{powerText(0.0005), "1 mW"},    Row{powerText(1), "1.0 W"},
        Row{powerText(1.25), "1.3 W"},     Row{powerText(12.34), "12.3 W"},
        Row{energyText(1800), "500 mWh"},  Row{energyText(3599.9), "1000 mWh"},
        Row{energyText(3600), "1.0 Wh"},   Row{energyText(7200), "2.0 Wh"},
        Row{energyText(8100), "2.3 Wh"},   Row{shareText(0.0099), "<1%"},
        Row{shareText(0.01), "1%"},        Row{shareText(0.126), "13%"},
        Row{shareText(0.125), "13%"},      Row{shareText(1), "100%"},
        Row{shareText(0.0 / zero), "<1%"}, Row{powerText(-1e300), "-9007199254740992 mW"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text, row.expected);
}
