// SPDX-License-Identifier: MIT
#include "support/UTF8.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(UTF8, Repaired) {
    struct Row {
        const char* label;
        std::string bytes, text;
    };
    const std::string mark = "\xEF\xBF\xBD";
    const Row rows[] = {
        {"plain", "kivo", "kivo"},
        {"two to four bytes", "é€😀", "é€😀"},
        {"stray continuation", "a\x80z", "a" + mark + "z"},
        {"cut short before a letter", "\xE2\x82z", mark + "z"},
        {"cut short at the end", "a\xF0\x9F\x98", "a" + mark},
        {"too long a form", "\xC0\xAF", mark + mark},
        {"surrogate", "\xED\xA0\x80", mark + mark + mark},
        {"above the last character", "\xF4\x90\x80\x80", mark + mark + mark + mark},
        {"Latin-1", "caf\xE9", "caf" + mark},
    };
    for (const Row& row : rows)
        EXPECT_EQ(utf8::repaired(row.bytes), row.text) << row.label;
}

TEST(UTF8, AppendWritesWhatIsWellFormedAndIsReadAgain) {
    for (const std::uint32_t code :
         {0x0u, 0x7Fu, 0x80u, 0x7FFu, 0x800u, 0xD7FFu, 0xE000u, 0xFFFFu, 0x10000u, 0x10FFFFu}) {
        std::string text;
        utf8::append(text, code);
        EXPECT_EQ(utf8::characterLength(text), text.size()) << code;
        EXPECT_EQ(utf8::decoded(text), code);
    }
}

} // namespace
} // namespace kivo
