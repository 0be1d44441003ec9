// SPDX-License-Identifier: MIT
#include "linux/phones/PropertyListText.h"

#include "support/UTF8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace kivo::propertylist {
namespace {

constexpr std::string_view blanks = " \t\r\n";

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    PropertyValue document() {
        auto tag = nextTag();
        if (tag.name != "plist" || tag.isEmpty)
            fail("no property list");
        auto value = element(nextTag());
        if (!value || nextTag().name != "/plist")
            fail("not one value");
        skipBlanks();
        if (at_ != text_.size())
            fail("more than one list");
        return std::move(*value);
    }

private:
    struct Tag {
        std::string_view name; // "/name" for the end of an element
        bool isEmpty = false;
    };

    [[noreturn]] static void fail(const char* reason) {
        throw DecodingError(std::string("property list: ") + reason);
    }

    void skipBlanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

    void skipPast(std::string_view mark) {
        const auto end = text_.find(mark, at_);
        if (end == std::string_view::npos)
            fail("cut short");
        at_ = end + mark.size();
    }

    // The next tag; nothing but blanks, comments and declarations stand before it.
    Tag nextTag() {
        for (;;) {
            skipBlanks();
            const auto rest = text_.substr(at_);
            if (rest.starts_with("<!--"))
                skipPast("-->");
            else if (rest.starts_with("<?") || rest.starts_with("<!DOCTYPE"))
                skipPast(">");
            else
                break;
        }
        if (at_ == text_.size() || text_[at_] != '<')
            fail("text between elements");
        const auto start = at_ + 1;
        skipPast(">");
        auto inside = text_.substr(start, at_ - 1 - start);
        Tag tag;
        if (inside.ends_with('/')) {
            tag.isEmpty = true;
            inside.remove_suffix(1);
        }
        tag.name = inside.substr(0, std::min(inside.find_first_of(blanks), inside.size()));
        return tag;
    }

    // The value that a tag opens; nothing when it is of a kind that is left out.
    std::optional<PropertyValue> element(const Tag& tag) {
        if (++values_ > mostValues)
            fail("too many values");
        if (tag.isEmpty && (tag.name == "true" || tag.name == "false"))
            return PropertyValue(tag.name == "true");
        if (tag.name == "dict")
            return dictionary(tag);
        if (tag.name == "array")
            return array(tag);
        if (tag.name == "string")
            return PropertyValue(content(tag));
        if (tag.name == "integer")
            return integer(content(tag));
        if (tag.name == "real")
            return real(content(tag));
        if (tag.name != "data" && tag.name != "date")
            fail("an unknown element");
        content(tag);
        return std::nullopt;
    }

    PropertyValue dictionary(const Tag& opening) {
        Dictionary result;
        if (opening.isEmpty)
            return result;
        descend();
        for (auto tag = nextTag(); tag.name != "/dict"; tag = nextTag()) {
            if (tag.name != "key")
                fail("a value without a key");
            auto key = content(tag);
            if (auto value = element(nextTag()))
                result.insert_or_assign(std::move(key), std::move(*value));
        }
        --depth_;
        return result;
    }

    PropertyValue array(const Tag& opening) {
        Array result;
        if (opening.isEmpty)
            return result;
        descend();
        for (auto tag = nextTag(); tag.name != "/array"; tag = nextTag()) {
            if (auto value = element(tag))
                result.push_back(std::move(*value));
        }
        --depth_;
        return result;
    }

    void descend() {
        if (++depth_ > deepestLevel)
            fail("nested too deeply");
    }

    // The text up to the end of the element.
    std::string content(const Tag& opening) {
        if (opening.isEmpty)
            return {};
        const auto end = text_.find('<', at_);
        if (end == std::string_view::npos)
            fail("cut short");
        auto text = unescaped(text_.substr(at_, end - at_));
        at_ = end;
        const auto closing = nextTag();
        if (!closing.name.starts_with('/') || closing.name.substr(1) != opening.name)
            fail("an element inside a text");
        return text;
    }

    static std::string unescaped(std::string_view text) {
        std::string result;
        result.reserve(text.size());
        while (!text.empty()) {
            const auto plain = std::min(text.find('&'), text.size());
            result += text.substr(0, plain);
            text.remove_prefix(plain);
            if (text.empty())
                break;
            const auto end = text.find(';');
            if (end == std::string_view::npos)
                fail("an unknown entity");
            appendEntity(result, text.substr(1, end - 1));
            text.remove_prefix(end + 1);
        }
        return utf8::repaired(result);
    }

    static void appendEntity(std::string& text, std::string_view name) {
        static constexpr std::pair<std::string_view, char> named[] = {
            {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
        for (const auto& [known, character] : named) {
            if (name == known) {
                text += character;
                return;
            }
        }
        if (!name.starts_with('#'))
            fail("an unknown entity");
        name.remove_prefix(1);
        const int base = name.starts_with('x') ? 16 : 10;
        name.remove_prefix(base == 16 ? 1 : 0);
        std::uint32_t code = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code, base);
        const bool isCharacter = code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
        if (error != std::errc() || end != name.data() + name.size() || !isCharacter)
            fail("an unknown character");
        utf8::append(text, code);
    }

    template <typename Number>
    static std::optional<Number> number(std::string_view text) {
        Number result{};
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
        return error == std::errc() && end == text.data() + text.size() ? std::optional(result) : std::nullopt;
    }

    static PropertyValue integer(std::string_view text) {
        if (const auto value = number<std::int64_t>(text))
            return *value;
        if (const auto value = number<std::uint64_t>(text))
            return *value;
        fail("a number that is none");
    }

    static PropertyValue real(std::string_view text) {
        if (const auto value = number<double>(text))
            return *value;
        fail("a number that is none");
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
    std::size_t values_ = 0;
};

void appendEscaped(std::string& out, std::string_view text) {
    for (const char character : text) {
        switch (character) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        default:
            out += character;
        }
    }
}

// The shortest text that reads as the same number, in every locale.
std::string shortest(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

bool isWritable(const PropertyValue& value) {
    return !value.isNull() && !value.data();
}

void append(std::string& out, const PropertyValue& value) {
    if (const auto boolean = value.boolean()) {
        out += *boolean ? "<true/>" : "<false/>";
    } else if (const auto integer = value.integer()) {
        out += "<integer>" + std::to_string(*integer) + "</integer>";
    } else if (const auto large = value.unsignedInteger()) {
        out += "<integer>" + std::to_string(*large) + "</integer>";
    } else if (const auto real = value.number()) {
        out += "<real>" + shortest(*real) + "</real>";
    } else if (const auto* text = value.string()) {
        out += "<string>";
        appendEscaped(out, *text);
        out += "</string>";
    } else if (const auto* array = value.array()) {
        out += "<array>";
        for (const auto& one : *array) {
            if (isWritable(one))
                append(out, one);
        }
        out += "</array>";
    } else if (const auto* dictionary = value.dictionary()) {
        out += "<dict>";
        for (const auto& [key, one] : *dictionary) {
            if (!isWritable(one))
                continue;
            out += "<key>";
            appendEscaped(out, key);
            out += "</key>";
            append(out, one);
        }
        out += "</dict>";
    }
}

} // namespace

PropertyValue parse(std::string_view text) {
    return Parser(text).document();
}

std::string write(const Dictionary& dictionary) {
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">";
    append(out, dictionary);
    out += "</plist>\n";
    return out;
}

} // namespace kivo::propertylist
