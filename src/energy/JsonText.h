// SPDX-License-Identifier: MIT
#pragma once

#include "support/Json.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// The text as a JSON string with its quotes. What is no UTF-8 becomes the replacement character.
std::string jsonString(std::string_view text);

// Walks over a JSON text from front to back without building anything: for texts of megabytes whose shape is
// known. Every call throws DecodingError when something else comes next. `text` must outlive the cursor.
class JsonCursor {
public:
    explicit JsonCursor(std::string_view text)
        : position_(text.data()), begin_(text.data()), end_(text.data() + text.size()) {}

    // Calls `member(key)` with the cursor on each member's value, which it must read. The key is valid until
    // the next text is read.
    template <typename Member>
    void object(Member&& member) {
        expect('{');
        if (take('}'))
            return;
        do {
            const std::string_view key = string();
            expect(':');
            member(key);
        } while (take(','));
        expect('}');
    }
    // Calls `element()` with the cursor on each element, which it must read.
    template <typename Element>
    void array(Element&& element) {
        expect('[');
        if (take(']'))
            return;
        do
            element();
        while (take(','));
        expect(']');
    }

    // Valid until the next text is read.
    std::string_view string();
    // The nearest double; throws for numbers too large for one.
    double number();
    bool boolean();
    // Whether a null was next, and is now read.
    bool null();
    // Reads a value of any kind, at most 256 levels deep.
    void skip() { skip(0); }
    // Nothing but white space may be left.
    void finish();

private:
    void skipSpace() {
        while (position_ != end_ && isSpace(*position_))
            ++position_;
    }
    static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }
    bool take(char expected) {
        skipSpace();
        if (position_ == end_ || *position_ != expected)
            return false;
        ++position_;
        return true;
    }
    void expect(char expected) {
        if (!take(expected))
            failExpecting(expected);
    }
    [[noreturn]] void fail(const char* what) const;
    [[noreturn]] void failExpecting(char expected) const;
    const char* endOfPlain(const char* from) const;
    const char* endOfNumber() const;
    std::string_view escapedString(const char* plainUntil);
    void unescape();
    unsigned hexDigits();
    bool word(std::string_view word);
    void skip(std::size_t depth);

    const char* position_;
    const char* begin_;
    const char* end_;
    std::string unescaped_;
};

} // namespace kivo
