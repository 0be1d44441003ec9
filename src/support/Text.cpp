// SPDX-License-Identifier: MIT
#include "support/Text.h"

#include <clocale>
#include <cwctype>
#include <locale.h>
#include <utility>

namespace kivo {
namespace {

struct CodePoint {
    char32_t value = 0;
    std::size_t length = 0; // in bytes; 0: the bytes are no UTF-8
};

// The character at the front of `text`, which is not empty. Overlong forms and surrogates are invalid.
CodePoint decodeFirst(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead >= 0xF0 && lead < 0xF5 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || lead >= 0xF5 || text.size() < length)
        return {};
    char32_t value = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return {};
        value = value << 6 | (byte(i) & 0x3Fu);
    }
    const bool isOverlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    return isOverlong || isSurrogate || value > 0x10FFFF ? CodePoint{} : CodePoint{value, length};
}

void appendUTF8(std::string& text, char32_t c) {
    const auto add = [&](char32_t bits) { text += static_cast<char>(bits); };
    if (c < 0x80) {
        add(c);
    } else if (c < 0x800) {
        add(0xC0 | c >> 6);
        add(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        add(0xE0 | c >> 12);
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    } else {
        add(0xF0 | c >> 18);
        add(0x80 | (c >> 12 & 0x3F));
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    }
}

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
        const CodePoint c = decodeFirst(text);
        if (c.length == 0) {
            result += text[0];
            text.remove_prefix(1);
            continue;
        }
        if (c.value < 0x80 || !unicode)
            appendUTF8(result, c.value >= 'A' && c.value <= 'Z' ? c.value + ('a' - 'A') : c.value);
        else
            appendUTF8(result, static_cast<char32_t>(towlower_l(static_cast<wint_t>(c.value), unicode)));
        text.remove_prefix(c.length);
    }
    return result;
}

std::string repairedUTF8(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    while (!bytes.empty()) {
        const CodePoint c = decodeFirst(bytes);
        if (c.length == 0)
            appendUTF8(result, 0xFFFD);
        else
            result += bytes.substr(0, c.length);
        bytes.remove_prefix(c.length == 0 ? 1 : c.length);
    }
    return result;
}

} // namespace kivo
