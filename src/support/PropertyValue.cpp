// SPDX-License-Identifier: MIT
#include "support/PropertyValue.h"

#include <cmath>
#include <utility>

namespace kivo {

PropertyValue::PropertyValue() noexcept = default;
PropertyValue::PropertyValue(const PropertyValue& other) = default;
PropertyValue::PropertyValue(PropertyValue&& other) noexcept = default;
PropertyValue& PropertyValue::operator=(const PropertyValue& other) = default;
PropertyValue& PropertyValue::operator=(PropertyValue&& other) noexcept = default;
PropertyValue::~PropertyValue() = default;

PropertyValue::PropertyValue(std::string_view value) : value_(std::string(value)) {}
PropertyValue::PropertyValue(std::string value) : value_(std::move(value)) {}
PropertyValue::PropertyValue(Data value) : value_(std::move(value)) {}
PropertyValue::PropertyValue(Array value) : value_(std::move(value)) {}
PropertyValue::PropertyValue(Dictionary value) : value_(std::move(value)) {}

bool PropertyValue::operator==(const PropertyValue& other) const {
    return value_ == other.value_;
}

std::optional<bool> PropertyValue::boolean() const {
    if (const auto* value = std::get_if<bool>(&value_))
        return *value;
    return std::nullopt;
}

std::optional<std::int64_t> PropertyValue::integer() const {
    if (const auto* value = std::get_if<std::int64_t>(&value_))
        return *value;
    return std::nullopt;
}

std::optional<std::uint64_t> PropertyValue::unsignedInteger() const {
    if (const auto* value = std::get_if<std::uint64_t>(&value_))
        return *value;
    if (const auto* value = std::get_if<std::int64_t>(&value_); value && *value >= 0)
        return static_cast<std::uint64_t>(*value);
    return std::nullopt;
}

std::optional<double> PropertyValue::number() const {
    if (const auto* value = std::get_if<std::int64_t>(&value_))
        return static_cast<double>(*value);
    if (const auto* value = std::get_if<std::uint64_t>(&value_))
        return static_cast<double>(*value);
    if (const auto* value = std::get_if<double>(&value_))
        return *value;
    return std::nullopt;
}

std::optional<std::int64_t> PropertyValue::wrappedInteger() const {
    if (const auto* value = std::get_if<std::int64_t>(&value_))
        return *value;
    if (const auto* value = std::get_if<std::uint64_t>(&value_))
        return static_cast<std::int64_t>(*value);
    if (const auto* value = std::get_if<double>(&value_)) {
        if (std::isnan(*value))
            return 0;
        if (*value >= 9223372036854775808.0)
            return INT64_MAX;
        if (*value < -9223372036854775808.0)
            return INT64_MIN;
        return static_cast<std::int64_t>(*value);
    }
    return std::nullopt;
}

std::string_view PropertyValue::typeName() const {
    switch (value_.index()) {
    case 1:
        return "boolean";
    case 2:
    case 3:
        return "integer";
    case 4:
        return "number";
    case 5:
        return "string";
    case 6:
        return "data";
    case 7:
        return "array";
    case 8:
        return "object";
    default:
        return "null";
    }
}

const PropertyValue* find(const Dictionary& dictionary, std::string_view key) {
    const auto it = dictionary.find(key);
    return it == dictionary.end() ? nullptr : &it->second;
}

const std::string* stringAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->string() : nullptr;
}

const Dictionary* dictionaryAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->dictionary() : nullptr;
}

const Array* arrayAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->array() : nullptr;
}

std::optional<bool> booleanAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->boolean() : std::nullopt;
}

std::optional<std::int64_t> integerAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->integer() : std::nullopt;
}

std::optional<double> numberAt(const Dictionary& dictionary, std::string_view key) {
    const auto* value = find(dictionary, key);
    return value ? value->number() : std::nullopt;
}

} // namespace kivo
