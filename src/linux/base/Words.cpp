// SPDX-License-Identifier: MIT
#include "linux/base/Words.h"

#include <algorithm>

namespace kivo {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto start = text.find_first_not_of(blanks);
    return start == text.npos ? std::string_view()
                              : text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == text.npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

bool isListed(std::string_view word, std::string_view list, char separator) {
    const auto parts = split(list, separator);
    return std::find(parts.begin(), parts.end(), word) != parts.end();
}

} // namespace kivo
