// SPDX-License-Identifier: MIT
#include "support/Json.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace kivo {
namespace {

constexpr std::size_t deepestLevel = 256;

// Builds PropertyValues straight from the parser's events, without a document in between.
class Builder final : public nlohmann::json_sax<nlohmann::json> {
public:
    bool null() override { return add(PropertyValue()); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Dictionary()); }
    bool key(string_t& value) override {
        keys_.back() = std::move(value);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Array()); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
        // Without the library's own mark in front: "[json.exception.parse_error.101] …".
        const std::string_view message = error.what();
        const auto mark = message.find("] ");
        complaint = "the text is not JSON: ";
        complaint += mark == std::string_view::npos ? message : message.substr(mark + 2);
        return false;
    }

    PropertyValue result;
    std::string complaint = "the text is not JSON";

private:
    bool add(PropertyValue value) {
        if (open_.empty()) {
            result = std::move(value);
            return true;
        }
        if (auto* array = open_.back().array())
            array->push_back(std::move(value));
        else
            open_.back().dictionary()->insert_or_assign(std::move(keys_.back()), std::move(value));
        return true;
    }
    bool open(PropertyValue container) {
        if (open_.size() == deepestLevel) {
            complaint = "the text is nested too deeply";
            return false;
        }
        open_.push_back(std::move(container));
        keys_.emplace_back();
        return true;
    }
    bool close() {
        PropertyValue container = std::move(open_.back());
        open_.pop_back();
        keys_.pop_back();
        return add(std::move(container));
    }

    std::vector<PropertyValue> open_;
    std::vector<std::string> keys_;
};

nlohmann::json toLibrary(const PropertyValue& value) {
    if (const auto boolean = value.boolean())
        return *boolean;
    if (const auto integer = value.integer())
        return *integer;
    if (const auto integer = value.unsignedInteger())
        return *integer;
    if (const auto number = value.number())
        return *number;
    if (const auto* string = value.string())
        return *string;
    if (const auto* data = value.data())
        return data->bytes;
    if (const auto* array = value.array()) {
        auto result = nlohmann::json::array();
        for (const auto& element : *array)
            result.push_back(toLibrary(element));
        return result;
    }
    if (const auto* dictionary = value.dictionary()) {
        auto result = nlohmann::json::object();
        for (const auto& [key, member] : *dictionary)
            result[key] = toLibrary(member);
        return result;
    }
    return nullptr;
}

} // namespace

PropertyValue json::parse(std::string_view text) {
    Builder builder;
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder))
        throw DecodingError(builder.complaint);
    return std::move(builder.result);
}

bool json::isValid(std::string_view text) {
    return nlohmann::json::accept(text.begin(), text.end());
}

std::string json::write(const PropertyValue& value) {
    return toLibrary(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

PropertyValue json::mergePatch(PropertyValue target, const PropertyValue& patch) {
    const auto* members = patch.dictionary();
    if (!members)
        return patch;
    Dictionary merged = target.dictionary() ? std::move(*target.dictionary()) : Dictionary();
    for (const auto& [key, value] : *members) {
        if (value.isNull()) {
            merged.erase(key);
            continue;
        }
        const auto it = merged.find(key);
        PropertyValue old = it == merged.end() ? PropertyValue() : std::move(it->second);
        merged.insert_or_assign(key, mergePatch(std::move(old), value));
    }
    return merged;
}

namespace decoding {
namespace {

[[noreturn]] void mismatch(std::string_view what, std::string_view expected, const PropertyValue& value) {
    throw DecodingError("\"" + std::string(what) + "\" must be " + std::string(expected) + ", not " +
                        std::string(value.typeName()));
}

bool asBool(const PropertyValue& value, std::string_view key) {
    if (const auto result = value.boolean())
        return *result;
    mismatch(key, "a boolean", value);
}

std::int64_t asInteger(const PropertyValue& value, std::string_view key) {
    if (const auto result = value.integer())
        return *result;
    mismatch(key, "an integer", value);
}

double asNumber(const PropertyValue& value, std::string_view key) {
    if (const auto result = value.number())
        return *result;
    mismatch(key, "a number", value);
}

const std::string& asString(const PropertyValue& value, std::string_view key) {
    if (const auto* result = value.string())
        return *result;
    mismatch(key, "a string", value);
}

} // namespace

const Dictionary& object(const PropertyValue& value, std::string_view what) {
    if (const auto* result = value.dictionary())
        return *result;
    mismatch(what, "an object", value);
}

const Array& list(const PropertyValue& value, std::string_view what) {
    if (const auto* result = value.array())
        return *result;
    mismatch(what, "an array", value);
}

const PropertyValue& require(const Dictionary& object, std::string_view key) {
    if (const auto* value = find(object, key))
        return *value;
    throw DecodingError("\"" + std::string(key) + "\" is missing");
}

bool requireBool(const Dictionary& object, std::string_view key) {
    return asBool(require(object, key), key);
}

std::int64_t requireInteger(const Dictionary& object, std::string_view key) {
    return asInteger(require(object, key), key);
}

double requireNumber(const Dictionary& object, std::string_view key) {
    return asNumber(require(object, key), key);
}

const std::string& requireString(const Dictionary& object, std::string_view key) {
    return asString(require(object, key), key);
}

const Array& requireArray(const Dictionary& object, std::string_view key) {
    return list(require(object, key), key);
}

const Dictionary& requireObject(const Dictionary& record, std::string_view key) {
    return object(require(record, key), key);
}

const PropertyValue* optional(const Dictionary& object, std::string_view key) {
    const auto* value = find(object, key);
    return value && !value->isNull() ? value : nullptr;
}

std::optional<bool> optionalBool(const Dictionary& object, std::string_view key) {
    const auto* value = optional(object, key);
    return value ? std::optional(asBool(*value, key)) : std::nullopt;
}

std::optional<std::int64_t> optionalInteger(const Dictionary& object, std::string_view key) {
    const auto* value = optional(object, key);
    return value ? std::optional(asInteger(*value, key)) : std::nullopt;
}

std::optional<double> optionalNumber(const Dictionary& object, std::string_view key) {
    const auto* value = optional(object, key);
    return value ? std::optional(asNumber(*value, key)) : std::nullopt;
}

std::optional<std::string> optionalString(const Dictionary& object, std::string_view key) {
    const auto* value = optional(object, key);
    return value ? std::optional(asString(*value, key)) : std::nullopt;
}

} // namespace decoding
} // namespace kivo
