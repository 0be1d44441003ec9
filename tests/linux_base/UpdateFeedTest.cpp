// SPDX-License-Identifier: MIT
#include "linux/base/UpdateFeed.h"

#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

TEST(Version, ordersAsItsMakersCount) {
    // Each before the next.
    const char* ascending[] = {"0",
                               "0.0.9",
                               "0.1-1",
                               "0.1",
                               "1.0.0-alpha",
                               "1.0.0-alpha.1",
                               "1.0.0-alpha.beta",
                               "1.0.0-beta.2",
                               "1.0.0-beta.11",
                               "1.0.0-rc.1",
                               "1.0.0",
                               "1.0.0.1",
                               "1.9",
                               "1.10",
                               "2.0-99999999999999999999",
                               "2.0-x",
                               "2",
                               "2.0.00000000000000000000000000001",
                               "10.0",
                               "18446744073709551616",
                               "18446744073709551617"};
    for (std::size_t i = 0; i < std::size(ascending); ++i) {
        for (std::size_t j = 0; j < std::size(ascending); ++j) {
            const auto a = Version::parse(ascending[i]);
            const auto b = Version::parse(ascending[j]);
            ASSERT_TRUE(a && b) << ascending[i] << " " << ascending[j];
            EXPECT_EQ(*a <=> *b, i <=> j) << ascending[i] << " " << ascending[j];
        }
    }
    const std::pair<const char*, const char*> same[] = {
        {"1.2", "1.2.0"}, {"1.02", "1.2"}, {"1.2+build.7", "1.2"}, {"1-rc.01+x", "1.0-rc.1"}, {"0", "0.0"}};
    for (const auto& [a, b] : same)
        EXPECT_EQ(*Version::parse(a), *Version::parse(b)) << a << " " << b;
}

TEST(Version, refusesWhatIsNone) {
    for (const char* text : {"", ".", "1.", ".1", "1..2", "v1", "1.x", "-1", "1-", "1-a..b", "1-a_b", "1+",
                             "1+a b", " 1", "1 ", "1.2.3.4.5.6.7.8.9", "1,2", "１"})
        EXPECT_FALSE(Version::parse(text)) << text;
    EXPECT_FALSE(Version::parse(std::string(129, '1')));
}

std::string release(const std::string& version, const std::string& more = R"(, "notes": [])") {
    return R"({"version": ")" + version + R"(", "page": "https://example.org/)" + version + R"(")" + more + "}";
}

std::string feed(const std::string& releases, const std::string& serial = "1") {
    return R"({"application": "io.github.kivo.Kivo", "serial": )" + serial + R"(, "releases": [)" + releases +
           "]}";
}

TEST(UpdateFeed, offersWhatIsNewer) {
    const std::string several = release("1.1") + "," + release("2.0-beta.1") + "," + release("1.10") + "," +
                                release("1.9") + "," + release("0.9");
    const struct {
        const char* current;
        Lines offered;
    } rows[] = {
        {"1.10", {}},
        {"1.10.1", {}},
        {"1.9", {"1.10"}},
        {"1.0", {"1.10", "1.9", "1.1"}},
        {"1.9-rc.1", {"2.0-beta.1", "1.10", "1.9"}},
        {"2.0-beta.1", {}},
        {"2.0", {}},
    };
    const UpdateFeed all = UpdateFeed::decode(json::parse(feed(several)));
    for (const auto& row : rows) {
        const auto finding = all.finding(*Version::parse(row.current), row.current);
        Lines offered;
        for (const auto& one : finding.releases)
            offered.push_back(one.version);
        EXPECT_EQ(offered, row.offered) << row.current;
        EXPECT_EQ(finding.kind == UpdateFinding::Kind::available, !row.offered.empty()) << row.current;
        EXPECT_EQ(finding.page, row.offered.empty() ? "" : "https://example.org/" + row.offered[0]);
        EXPECT_EQ(finding.current, row.current);
    }
    const auto notes = UpdateFeed::decode(json::parse(feed(release("2", R"(, "notes": ["a", "b"])"))));
    EXPECT_EQ(notes.finding(*Version::parse("1"), "1").releases[0].notes, (Lines{"a", "b"}));
}

TEST(UpdateFeed, refusesWhatIsNone) {
    const std::string page = R"({"version": "1", "page": )";
    const struct {
        std::string text;
        const char* reason;
    } rows[] = {
        {"[]", "feed"},
        {R"({"application": "org.example.Other", "serial": 1, "releases": []})", "org.example.Other"},
        {R"({"serial": 1, "releases": []})", "application"},
        {feed("", "0"), "serial"},
        {feed("", "1.5"), "serial"},
        {feed("", "true"), "serial"},
        {feed("7"), "release"},
        {feed(release("one")), "no version"},
        {feed(R"({"version": "1"})"), "page"},
        {feed(page + R"("http://example.org/"})"), "https"},
        {feed(page + R"("file:///etc/passwd"})"), "https"},
        {feed(page + R"("https://"})"), "https"},
        {feed(page + R"("https:///path"})"), "https"},
        {feed(page + R"("https://example.org/ --new"})"), "https"},
        {feed(page + R"("https://example.org/\u0007"})"), "https"},
        {feed(release("1", R"(, "notes": "text")")), "notes"},
        {feed(release("1", R"(, "notes": [1])")), "notes"},
    };
    for (const auto& row : rows) {
        try {
            UpdateFeed::decode(json::parse(row.text));
            ADD_FAILURE() << row.text;
        } catch (const DecodingError& error) {
            EXPECT_NE(std::string(error.what()).find(row.reason), std::string::npos)
                << row.text << ": " << error.what();
        }
    }
}

} // namespace
} // namespace kivo
