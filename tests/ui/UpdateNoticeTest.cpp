// SPDX-License-Identifier: MIT
#include "ui/UpdateNotice.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Kind = UpdateFinding::Kind;

TEST(UpdateNotice, saysWhatWasFound) {
    const struct {
        Kind kind;
        const char* title;
        const char* text;
    } rows[] = {
        {Kind::available, "A new version of Kivo is available", "Kivo 2.0 is out; you have 1.0."},
        {Kind::upToDate, "Kivo is up to date", "You have the newest version, 1.0."},
        {Kind::unreachable, "Couldn’t check for updates", "Nobody answered. Try again when you are online."},
        {Kind::refused, "Couldn’t check for updates",
         "What came is damaged, or not from the makers of this Kivo. It was thrown away."},
    };
    for (const auto& row : rows) {
        UpdateFinding finding{.kind = row.kind, .current = "1.0"};
        if (row.kind == Kind::available)
            finding.releases = {{"2.0", {"a"}}, {"1.9", {}}, {"1.8", {"b"}}};
        const auto notice = updateNotice(finding);
        EXPECT_EQ(notice.title, row.title);
        EXPECT_EQ(notice.text, row.text);
        EXPECT_EQ(notice.page.has_value(), row.kind == Kind::available) << row.title;
        EXPECT_EQ(notice.skip.has_value(), row.kind == Kind::available) << row.title;
    }
}

TEST(UpdateNotice, aWindowIsNoBook) {
    UpdateFinding finding{.kind = Kind::available, .current = "1.0"};
    for (int i = 100; i > 1; --i)
        finding.releases.push_back({std::to_string(i), std::vector<std::string>(i % 2 == 0 ? 100 : 0, "note")});
    const auto notice = updateNotice(finding);
    ASSERT_EQ(notice.sections.size(), 5u);
    EXPECT_EQ(notice.sections[0].heading, "100");
    EXPECT_EQ(notice.sections[1].heading, "98") << "a version without notes has no section";
    EXPECT_EQ(notice.sections[0].lines.size(), 12u);
}

} // namespace
} // namespace kivo
