// SPDX-License-Identifier: MIT
#pragma once

#include "support/Json.h"
#include "support/PropertyValue.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Reads people's JSON strictly: a member of another type, a missing one that has no default and a member
// that nobody asked for are errors (DecodingError), so that a typing mistake never passes in silence.
class RecordReader {
public:
    // Throws when the value is no object. The value must outlive the reader.
    RecordReader(const PropertyValue& value, std::string what);

    // The member, or a null pointer when it is missing. A member that is null is there.
    const PropertyValue* find(std::string_view key);
    const PropertyValue& require(std::string_view key);

    std::string requireString(std::string_view key);
    std::int32_t requireInt32(std::string_view key);
    // Missing and null are absence.
    std::optional<bool> optionalBool(std::string_view key);
    std::optional<std::int64_t> optionalInteger(std::string_view key);
    std::optional<std::int32_t> optionalInt32(std::string_view key);
    std::optional<double> optionalNumber(std::string_view key);
    // How long something takes: at least 0 and within three hundred years; 0 when it is missing.
    double secondsOrNone(std::string_view key);
    std::optional<std::string> optionalString(std::string_view key);

    // Throws when the record has a member that none of the calls above asked for.
    void finish() const;

    std::string path(std::string_view key) const { return what_ + "." + std::string(key); }

private:
    const Dictionary& record_;
    std::string what_;
    std::vector<std::string_view> known_;
};

// One value of exactly one type; `what` names it in the error.
namespace reading {

[[noreturn]] void mismatch(std::string_view what, std::string_view expected, const PropertyValue& value);
bool boolean(const PropertyValue& value, std::string_view what);
std::int64_t integer(const PropertyValue& value, std::string_view what);
std::int32_t int32(const PropertyValue& value, std::string_view what);
double number(const PropertyValue& value, std::string_view what);
const std::string& string(const PropertyValue& value, std::string_view what);
const Array& list(const PropertyValue& value, std::string_view what);
const Dictionary& object(const PropertyValue& value, std::string_view what);
std::vector<std::string> strings(const PropertyValue& value, std::string_view what);
// Exactly `count` numbers.
std::vector<double> numbers(const PropertyValue& value, std::string_view what, std::size_t count);
// Throws unless the value is `true`.
void affirmation(const PropertyValue& value, std::string_view what);

} // namespace reading
} // namespace kivo
