// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace kivo {

// A value of any type, as machines describe their parts and as JSON texts hold them. Booleans, integers and
// doubles are kept apart: `true` is no number, 20.0 is no integer. Integers reach from the smallest signed to
// the largest unsigned 64-bit value. Absent things are not in the dictionary, or null.
class PropertyValue {
public:
    using Array = std::vector<PropertyValue>;
    using Dictionary = std::map<std::string, PropertyValue, std::less<>>;
    // Bytes without a meaning of their own.
    struct Data {
        std::string bytes;
        bool operator==(const Data&) const = default;
    };

    // Defined in the source file: they are large, and inlined everywhere they slow the build and mislead the
    // compiler's flow warnings.
    PropertyValue() noexcept;
    PropertyValue(const PropertyValue& other);
    PropertyValue(PropertyValue&& other) noexcept;
    PropertyValue& operator=(const PropertyValue& other);
    PropertyValue& operator=(PropertyValue&& other) noexcept;
    ~PropertyValue();

    PropertyValue(std::nullptr_t) noexcept : PropertyValue() {}
    PropertyValue(bool value) : value_(value) {}
    template <typename T>
    requires(std::is_integral_v<T> && !std::is_same_v<T, bool>) PropertyValue(T value) {
        if constexpr (std::is_signed_v<T>)
            value_ = static_cast<std::int64_t>(value);
        else if (value <= static_cast<std::uint64_t>(INT64_MAX))
            value_ = static_cast<std::int64_t>(value);
        else
            value_ = static_cast<std::uint64_t>(value);
    }
    PropertyValue(double value) : value_(value) {}
    PropertyValue(const char* value) : PropertyValue(std::string_view(value)) {}
    PropertyValue(std::string_view value);
    PropertyValue(std::string value);
    PropertyValue(Data value);
    PropertyValue(Array value);
    PropertyValue(Dictionary value);
    // An absent value is null.
    template <typename T>
    PropertyValue(const std::optional<T>& value) : PropertyValue() {
        if (value)
            *this = PropertyValue(*value);
    }

    bool isNull() const { return std::holds_alternative<std::monostate>(value_); }

    // Each gives the value when it is exactly of that type, else nothing (a null pointer).
    std::optional<bool> boolean() const;
    // An integer that fits a signed 64-bit one.
    std::optional<std::int64_t> integer() const;
    // The larger integers too.
    std::optional<std::uint64_t> unsignedInteger() const;
    // Any number, integers included.
    std::optional<double> number() const;
    const std::string* string() const { return std::get_if<std::string>(&value_); }
    const Data* data() const { return std::get_if<Data>(&value_); }
    const Array* array() const { return std::get_if<Array>(&value_); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }
    Array* array() { return std::get_if<Array>(&value_); }
    Dictionary* dictionary() { return std::get_if<Dictionary>(&value_); }

    // Any number as a register of 64 bits with a sign: large unsigned ones come out negative, fractions are
    // cut.
    std::optional<std::int64_t> wrappedInteger() const;

    // "boolean", "integer", "number", "string", "data", "array", "object" or "null", for messages.
    std::string_view typeName() const;

    bool operator==(const PropertyValue& other) const;

private:
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Data, Array,
                 Dictionary>
        value_;
};

using Dictionary = PropertyValue::Dictionary;
using Array = PropertyValue::Array;

// The value under `key`, or a null pointer when there is none.
const PropertyValue* find(const Dictionary& dictionary, std::string_view key);

// The same for a value of one type, as the accessors of PropertyValue tell types; nothing (a null pointer) when
// there is another value or none.
const std::string* stringAt(const Dictionary& dictionary, std::string_view key);
const Dictionary* dictionaryAt(const Dictionary& dictionary, std::string_view key);
const Array* arrayAt(const Dictionary& dictionary, std::string_view key);
std::optional<bool> booleanAt(const Dictionary& dictionary, std::string_view key);
std::optional<std::int64_t> integerAt(const Dictionary& dictionary, std::string_view key);
std::optional<double> numberAt(const Dictionary& dictionary, std::string_view key);

} // namespace kivo
