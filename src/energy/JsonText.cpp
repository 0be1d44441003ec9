// SPDX-License-Identifier: MIT
#include "energy/JsonText.h"

#include "support/UTF8.h"

#include <charconv>
#include <cstdint>
#include <cstring>

namespace kivo {
namespace {

constexpr std::size_t deepestLevel = 256;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether one of eight bytes is a quote, a backslash, a control character or beyond ASCII.
bool hasSpecial(const char* bytes) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t tops = 0x8080808080808080;
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    const auto zeroBytes = [](std::uint64_t x) { return (x - ones) & ~x; };
    const std::uint64_t controls = (word - ones * 0x20) & ~word;
    return ((controls | zeroBytes(word ^ (ones * '"')) | zeroBytes(word ^ (ones * '\\')) | word) & tops) != 0;
}

bool isPlain(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x80 && c != '"' &&
           c != '\\';
}

} // namespace

std::string jsonString(std::string_view text) {
    if (utf8::validPrefix(text) != text.size())
        return jsonString(utf8::repaired(text));
    static constexpr char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20) {
            result += "\\u00";
            result += digits[c >> 4];
            result += digits[c & 15];
        } else {
            if (c == '"' || c == '\\')
                result += '\\';
            result += c;
        }
    }
    return result += '"';
}

void JsonCursor::fail(const char* what) const {
    throw DecodingError(std::string(what) + " at byte " + std::to_string(position_ - begin_));
}

void JsonCursor::failExpecting(char expected) const {
    const char what[] = {'\'', expected, '\'', ' ', 'e', 'x', 'p', 'e', 'c', 't', 'e', 'd', '\0'};
    fail(what);
}

const char* JsonCursor::endOfPlain(const char* from) const {
    while (end_ - from >= 8 && !hasSpecial(from))
        from += 8;
    while (from != end_ && isPlain(*from))
        ++from;
    return from;
}

std::string_view JsonCursor::string() {
    if (!take('"'))
        fail("text expected");
    const char* const first = position_;
    const char* const plain = endOfPlain(first);
    if (plain == end_ || *plain != '"')
        return escapedString(plain);
    position_ = plain + 1;
    return {first, static_cast<std::size_t>(plain - first)};
}

// The rest of a text that is not all plain ASCII; its beginning up to `plainUntil` is.
std::string_view JsonCursor::escapedString(const char* plainUntil) {
    unescaped_.assign(position_, plainUntil);
    position_ = plainUntil;
    for (;;) {
        if (position_ == end_)
            fail("text without an end");
        if (*position_ == '"') {
            ++position_;
            return unescaped_;
        }
        if (*position_ == '\\') {
            ++position_;
            unescape();
            continue;
        }
        const auto length = utf8::characterLength({position_, static_cast<std::size_t>(end_ - position_)});
        if (length == 0 || static_cast<unsigned char>(*position_) < 0x20)
            fail("text with a character that is not allowed");
        unescaped_.append(position_, length);
        position_ += length;
    }
}

// What follows a backslash.
void JsonCursor::unescape() {
    static constexpr std::string_view letters = "\"\\/bfnrt";
    static constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    if (position_ == end_)
        fail("text without an end");
    const char letter = *position_++;
    if (const auto index = letters.find(letter); index != letters.npos) {
        unescaped_ += meanings[index];
        return;
    }
    if (letter != 'u')
        fail("unknown escape");
    std::uint32_t code = hexDigits();
    if (code >= 0xD800 && code < 0xDC00) {
        if (end_ - position_ < 2 || position_[0] != '\\' || position_[1] != 'u')
            fail("half a surrogate pair");
        position_ += 2;
        const std::uint32_t low = hexDigits();
        if (low < 0xDC00 || low > 0xDFFF)
            fail("half a surrogate pair");
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    } else if (code >= 0xDC00 && code <= 0xDFFF) {
        fail("half a surrogate pair");
    }
    utf8::append(unescaped_, code);
}

unsigned JsonCursor::hexDigits() {
    unsigned value = 0;
    if (end_ - position_ < 4)
        fail("text without an end");
    const auto result = std::from_chars(position_, position_ + 4, value, 16);
    if (result.ptr != position_ + 4)
        fail("unknown escape");
    position_ += 4;
    return value;
}

// JSON is stricter than what std::from_chars accepts.
const char* JsonCursor::endOfNumber() const {
    const char* p = position_;
    const auto digits = [&] {
        const char* const first = p;
        while (p != end_ && isDigit(*p))
            ++p;
        return p - first;
    };
    if (p != end_ && *p == '-')
        ++p;
    const bool startsWithZero = p != end_ && *p == '0';
    const auto whole = digits();
    if (whole == 0 || (startsWithZero && whole > 1))
        fail("number expected");
    if (p != end_ && *p == '.') {
        ++p;
        if (digits() == 0)
            fail("number expected");
    }
    if (p != end_ && (*p == 'e' || *p == 'E')) {
        ++p;
        if (p != end_ && (*p == '+' || *p == '-'))
            ++p;
        if (digits() == 0)
            fail("number expected");
    }
    return p;
}

double JsonCursor::number() {
    skipSpace();
    const char* const last = endOfNumber();
    double value = 0;
    const auto result = std::from_chars(position_, last, value);
    if (result.ec == std::errc::result_out_of_range) {
        // Too small is as good as zero, too large is not a double.
        const std::string_view text(position_, static_cast<std::size_t>(last - position_));
        const auto exponent = text.find_first_of("eE");
        const bool isTiny = exponent == text.npos ? text.starts_with("0.") || text.starts_with("-0.")
                                                  : text[exponent + 1] == '-';
        if (!isTiny)
            fail("number too large");
        value = 0;
    }
    position_ = last;
    return value;
}

bool JsonCursor::word(std::string_view word) {
    skipSpace();
    if (static_cast<std::size_t>(end_ - position_) < word.size() ||
        std::string_view(position_, word.size()) != word)
        return false;
    position_ += word.size();
    return true;
}

bool JsonCursor::boolean() {
    if (word("true"))
        return true;
    if (!word("false"))
        fail("boolean expected");
    return false;
}

bool JsonCursor::null() {
    return word("null");
}

void JsonCursor::skip(std::size_t depth) {
    skipSpace();
    if (position_ == end_)
        fail("value expected");
    if (depth == deepestLevel)
        fail("nested too deeply");
    switch (*position_) {
    case '{':
        object([&](std::string_view) { skip(depth + 1); });
        break;
    case '[':
        array([&] { skip(depth + 1); });
        break;
    case '"':
        string();
        break;
    case 't':
    case 'f':
        boolean();
        break;
    case 'n':
        if (!null())
            fail("value expected");
        break;
    default:
        number();
    }
}

void JsonCursor::finish() {
    skipSpace();
    if (position_ != end_)
        fail("end expected");
}

} // namespace kivo
