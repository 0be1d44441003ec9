// SPDX-License-Identifier: MIT
#include "support/Json.h"

#include <gtest/gtest.h>

#include <array>

using namespace kivo;

TEST(Json, keepsIntegersDoublesAndBooleansApart) {
    struct Row {
        const char* text;
        PropertyValue value;
        const char* type;
    };
    const std::array rows{
        Row{"20", 20, "integer"},
        Row{"-9223372036854775808", INT64_MIN, "integer"},
        Row{"18446744073709551615", UINT64_MAX, "integer"},
        Row{"20.0", 20.0, "number"},
        Row{"2e1", 20.0, "number"},
        Row{"18446744073709551616", 18446744073709551616.0, "number"},
        Row{"true", true, "boolean"},
        Row{"null", nullptr, "null"},
        Row{"\"\\u00e9\"", "é", "string"},
        Row{"[1,[]]", Array{1, Array{}}, "array"},
        Row{"{\"a\":1,\"a\":2}", Dictionary{{"a", 2}}, "object"},
    };
    for (const auto& row : rows) {
        const PropertyValue value = json::parse(row.text);
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_EQ(value.typeName(), row.type) << row.text;
        EXPECT_EQ(json::parse(json::write(value)), value) << row.text << " is the same after writing";
    }
    EXPECT_EQ(json::parse("1").boolean(), std::nullopt);
    EXPECT_EQ(json::parse("true").integer(), std::nullopt);
    EXPECT_EQ(json::parse("20.0").integer(), std::nullopt);
    EXPECT_EQ(json::parse("18446744073709550116").wrappedInteger(), -1500);
}

TEST(Json, refusesWhatIsNotOneCompleteText) {
    const std::string deep(100'000, '[');
    for (const std::string& text :
         {std::string(), std::string("{"), std::string("[1,]"), std::string("{} {}"), std::string("nul"),
          std::string("\"\xff\""), std::string("{\"a\" 1}"), deep})
        EXPECT_THROW(json::parse(text), DecodingError) << text.substr(0, 20);
}

TEST(Json, writesOneLineWhateverTheBytes) {
    EXPECT_EQ(json::write("\xff\n"), "\"\xef\xbf\xbd\\n\"");
    EXPECT_EQ(json::write(std::numeric_limits<double>::infinity()), "null");
    EXPECT_EQ(json::write(Dictionary{{"b", Array{1.5, false}}, {"a", nullptr}}),
              R"({"a":null,"b":[1.5,false]})");
}

TEST(Json, mergePatchReplacesMergesAndRemoves) {
    struct Row {
        const char* target;
        const char* patch;
        const char* result;
    };
    const std::array rows{
        Row{R"({"a":"b"})", R"({"a":"c"})", R"({"a":"c"})"},
        Row{R"({"a":"b","b":"c"})", R"({"a":null})", R"({"b":"c"})"},
        Row{R"({"a":["b"]})", R"({"a":"c"})", R"({"a":"c"})"},
        Row{R"({"a":{"b":"c"}})", R"({"a":{"b":"d","c":null}})", R"({"a":{"b":"d"}})"},
        Row{R"({"a":[1,2]})", R"({"a":[3]})", R"({"a":[3]})"},
        Row{R"(["a"])", R"({"a":{"b":null,"c":1}})", R"({"a":{"c":1}})"},
        Row{R"({"a":"b"})", "[\"c\"]", "[\"c\"]"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(json::write(json::mergePatch(json::parse(row.target), json::parse(row.patch))), row.result)
            << row.target << " with " << row.patch;
}
