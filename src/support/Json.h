// SPDX-License-Identifier: MIT
#pragma once

#include "support/EnumTable.h"
#include "support/PropertyValue.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace kivo {

// Why a text or a stored value is not what it should be. The message is English and for logs and developers.
class DecodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace json {

// Throws DecodingError for anything that is not one complete JSON text (UTF-8, at most 256 levels deep). A
// number without fraction and exponent is an integer when 64 bits hold it, any other number a double. When
// an object repeats a key the last value counts.
PropertyValue parse(std::string_view text);

// Whether `parse` takes the text, however deep it is. Builds nothing.
bool isValid(std::string_view text);

// One line without spaces. Data is written as a string; bytes that are no UTF-8 become the replacement
// character; numbers that JSON cannot hold become null.
std::string write(const PropertyValue& value);

// RFC 7396: members that are null are removed, objects are merged, anything else replaces.
PropertyValue mergePatch(PropertyValue target, const PropertyValue& patch);

} // namespace json

// Reading a stored record, one field at a time. All throw DecodingError when the field is missing (or null,
// for the `require` ones) or has another type; the message names the key.
namespace decoding {

const Dictionary& object(const PropertyValue& value, std::string_view what);
const Array& list(const PropertyValue& value, std::string_view what);
const PropertyValue& require(const Dictionary& object, std::string_view key);
bool requireBool(const Dictionary& object, std::string_view key);
std::int64_t requireInteger(const Dictionary& object, std::string_view key);
double requireNumber(const Dictionary& object, std::string_view key);
const std::string& requireString(const Dictionary& object, std::string_view key);
const Array& requireArray(const Dictionary& object, std::string_view key);
const Dictionary& requireObject(const Dictionary& object, std::string_view key);

// A stored case name of an enumeration; an unknown one throws too.
template <typename Enum, std::size_t count>
Enum requireCase(const EnumTable<Enum, count>& table, const Dictionary& object, std::string_view key) {
    const std::string& stored = requireString(object, key);
    if (const auto value = table.value(stored))
        return *value;
    throw DecodingError("\"" + std::string(key) + "\" has the unknown value \"" + stored + "\"");
}

// Missing and null are absence.
const PropertyValue* optional(const Dictionary& object, std::string_view key);
std::optional<bool> optionalBool(const Dictionary& object, std::string_view key);
std::optional<std::int64_t> optionalInteger(const Dictionary& object, std::string_view key);
std::optional<double> optionalNumber(const Dictionary& object, std::string_view key);
std::optional<std::string> optionalString(const Dictionary& object, std::string_view key);

} // namespace decoding
} // namespace kivo
