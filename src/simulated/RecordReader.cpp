// SPDX-License-Identifier: MIT
#include "simulated/RecordReader.h"

#include <algorithm>

namespace kivo {
namespace {

// In seconds; a clock of nanoseconds cannot hold much more.
constexpr double longestTime = 9e9;

} // namespace

namespace reading {

void mismatch(std::string_view what, std::string_view expected, const PropertyValue& value) {
    throw DecodingError(std::string(what) + " must be " + std::string(expected) + ", not " +
                        (value.isNull() ? std::string("null") : "of type " + std::string(value.typeName())));
}

bool boolean(const PropertyValue& value, std::string_view what) {
    if (const auto result = value.boolean())
        return *result;
    mismatch(what, "true or false", value);
}

std::int64_t integer(const PropertyValue& value, std::string_view what) {
    if (const auto result = value.integer())
        return *result;
    // No rule, percentage or process is as far as the integers beyond: they stand for the largest.
    if (value.unsignedInteger())
        return std::numeric_limits<std::int64_t>::max();
    mismatch(what, "an integer", value);
}

std::int32_t int32(const PropertyValue& value, std::string_view what) {
    const std::int64_t result = integer(value, what);
    if (result < std::numeric_limits<std::int32_t>::min() || result > std::numeric_limits<std::int32_t>::max())
        throw DecodingError(std::string(what) + " does not fit into 32 bits");
    return static_cast<std::int32_t>(result);
}

double number(const PropertyValue& value, std::string_view what) {
    if (const auto result = value.number())
        return *result;
    mismatch(what, "a number", value);
}

const std::string& string(const PropertyValue& value, std::string_view what) {
    if (const auto* result = value.string())
        return *result;
    mismatch(what, "a text", value);
}

const Array& list(const PropertyValue& value, std::string_view what) {
    if (const auto* result = value.array())
        return *result;
    mismatch(what, "a list", value);
}

const Dictionary& object(const PropertyValue& value, std::string_view what) {
    if (const auto* result = value.dictionary())
        return *result;
    mismatch(what, "an object", value);
}

std::vector<std::string> strings(const PropertyValue& value, std::string_view what) {
    std::vector<std::string> result;
    for (const auto& element : list(value, what))
        result.push_back(string(element, std::string(what) + "[" + std::to_string(result.size()) + "]"));
    return result;
}

std::vector<double> numbers(const PropertyValue& value, std::string_view what, std::size_t count) {
    std::vector<double> result;
    for (const auto& element : list(value, what))
        result.push_back(number(element, std::string(what) + "[" + std::to_string(result.size()) + "]"));
    if (result.size() != count)
        throw DecodingError(std::string(what) + " must have " + std::to_string(count) + " numbers, not " +
                            std::to_string(result.size()));
    return result;
}

void affirmation(const PropertyValue& value, std::string_view what) {
    if (!boolean(value, what))
        throw DecodingError(std::string(what) + " can only be true");
}

} // namespace reading

RecordReader::RecordReader(const PropertyValue& value, std::string what)
    : record_(reading::object(value, what)), what_(std::move(what)) {}

const PropertyValue* RecordReader::find(std::string_view key) {
    known_.push_back(key);
    return kivo::find(record_, key);
}

const PropertyValue& RecordReader::require(std::string_view key) {
    if (const auto* value = find(key))
        return *value;
    throw DecodingError(path(key) + " is missing");
}

std::string RecordReader::requireString(std::string_view key) {
    return reading::string(require(key), path(key));
}

std::int32_t RecordReader::requireInt32(std::string_view key) {
    return reading::int32(require(key), path(key));
}

std::optional<bool> RecordReader::optionalBool(std::string_view key) {
    const auto* value = find(key);
    return value && !value->isNull() ? std::optional(reading::boolean(*value, path(key))) : std::nullopt;
}

std::optional<std::int64_t> RecordReader::optionalInteger(std::string_view key) {
    const auto* value = find(key);
    return value && !value->isNull() ? std::optional(reading::integer(*value, path(key))) : std::nullopt;
}

std::optional<std::int32_t> RecordReader::optionalInt32(std::string_view key) {
    const auto* value = find(key);
    return value && !value->isNull() ? std::optional(reading::int32(*value, path(key))) : std::nullopt;
}

std::optional<double> RecordReader::optionalNumber(std::string_view key) {
    const auto* value = find(key);
    return value && !value->isNull() ? std::optional(reading::number(*value, path(key))) : std::nullopt;
}

double RecordReader::secondsOrNone(std::string_view key) {
    const double seconds = optionalNumber(key).value_or(0);
    if (seconds < 0)
        throw DecodingError(path(key) + " must not be negative");
    if (seconds > longestTime)
        throw DecodingError(path(key) + " is too long");
    return seconds;
}

std::optional<std::string> RecordReader::optionalString(std::string_view key) {
    const auto* value = find(key);
    return value && !value->isNull() ? std::optional(reading::string(*value, path(key))) : std::nullopt;
}

void RecordReader::finish() const {
    for (const auto& [key, value] : record_) {
        if (std::find(known_.begin(), known_.end(), key) == known_.end())
            throw DecodingError(what_ + " has an unknown member \"" + key + "\"");
    }
}

} // namespace kivo
