// SPDX-License-Identifier: MIT
#include "support/Text.h"

#include "support/UTF8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cwctype>
#include <locale.h>
#include <utility>

namespace kivo {
namespace {

TextCatalogue& catalogue() {
    static TextCatalogue installed;
    return installed;
}

struct Placeholder {
    std::size_t length = 0;   // 0: no placeholder starts here
    std::size_t position = 0; // 1, 2 …; 0: the next argument in turn
};

Placeholder placeholderAt(std::string_view text) {
    std::size_t place = 1;
    std::size_t position = 0;
    while (place < text.size() && text[place] >= '0' && text[place] <= '9' && place < 4)
        position = position * 10 + static_cast<std::size_t>(text[place++] - '0');
    if (place > 1 && (place == text.size() || text[place++] != '$'))
        return {};
    const auto rest = text.substr(place);
    if (rest.starts_with("lld"))
        return {place + 3, position};
    if (rest.starts_with("@"))
        return {place + 1, position};
    return {};
}

} // namespace

void installTextCatalogue(TextCatalogue newCatalogue) {
    catalogue() = std::move(newCatalogue);
}

std::string formatted(std::string_view pattern, std::initializer_list<TextArgument> arguments) {
    std::string result;
    std::size_t inTurn = 0;
    for (std::size_t place = 0; place < pattern.size();) {
        const auto placeholder = pattern[place] == '%' ? placeholderAt(pattern.substr(place)) : Placeholder{};
        const std::size_t index = placeholder.position > 0 ? placeholder.position - 1 : inTurn;
        if (placeholder.length == 0 || index >= arguments.size()) {
            result += pattern[place++];
            continue;
        }
        const TextArgument& argument = arguments.begin()[index];
        if (const auto* integer = std::get_if<std::int64_t>(&argument))
            result += std::to_string(*integer);
        else
            result += std::get<std::string>(argument);
        if (placeholder.position == 0)
            ++inTurn;
        place += placeholder.length;
    }
    return result;
}

std::string localized(std::string_view key, std::initializer_list<TextArgument> arguments) {
    const auto it = catalogue().find(key);
    return formatted(it == catalogue().end() ? key : std::string_view(it->second), arguments);
}

std::string lowercased(std::string_view text) {
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8::characterLength(text);
        if (length > 1 && unicode) {
            const auto code = static_cast<wint_t>(utf8::decoded(text.substr(0, length)));
            utf8::append(result, static_cast<std::uint32_t>(towlower_l(code, unicode)));
        } else if (length == 1 && text[0] >= 'A' && text[0] <= 'Z') {
            result += static_cast<char>(text[0] + ('a' - 'A'));
        } else {
            result += text.substr(0, std::max(length, std::size_t{1}));
        }
        text.remove_prefix(std::max(length, std::size_t{1}));
    }
    return result;
}

std::string decimalText(double value, int decimals) {
    // The largest double has 309 digits before its point.
    std::array<char, 512> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 100))
                         .ptr;
    return {text.data(), end};
}

} // namespace kivo
