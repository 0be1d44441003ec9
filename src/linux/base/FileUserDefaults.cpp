// SPDX-License-Identifier: MIT
#include "linux/base/FileUserDefaults.h"

#include "linux/base/WholeFile.h"
#include "support/Json.h"

#include <utility>

namespace kivo {
namespace {

// Marks of what JSON cannot tell apart: an object with one of these as its only key.
constexpr std::string_view textMark = "$text";   // data that is text, byte for byte
constexpr std::string_view bytesMark = "$bytes"; // any other data, as hexadecimal digits
constexpr std::string_view valueMark = "$value"; // a list or dictionary that is not data

bool isMarked(const PropertyValue& value) {
    const auto* members = value.dictionary();
    if (!members || members->size() != 1)
        return false;
    const std::string& key = members->begin()->first;
    return key == textMark || key == bytesMark || key == valueMark;
}

PropertyValue marked(std::string_view mark, PropertyValue value) {
    Dictionary result;
    result.emplace(mark, std::move(value));
    return result;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char byte : bytes) {
        result += digits[static_cast<unsigned char>(byte) >> 4];
        result += digits[static_cast<unsigned char>(byte) & 15];
    }
    return result;
}

std::string fromHexadecimal(std::string_view digits) {
    const auto value = [](char digit) {
        if (digit >= '0' && digit <= '9')
            return digit - '0';
        if (digit >= 'a' && digit <= 'f')
            return digit - 'a' + 10;
        throw DecodingError("data must be hexadecimal digits");
    };
    if (digits.size() % 2 != 0)
        throw DecodingError("data must be pairs of hexadecimal digits");
    std::string result;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        result += static_cast<char>(value(digits[i]) * 16 + value(digits[i + 1]));
    return result;
}

PropertyValue encodeData(const std::string& bytes) {
    try {
        // Within brackets, because a text that is as deep as can be read is too deep for inside the file.
        const auto enclosed = json::parse("[" + bytes + "]");
        if (enclosed.array()->size() != 1)
            throw DecodingError("several values");
        const auto& value = enclosed.array()->front();
        if ((value.array() || value.dictionary()) && !isMarked(value) && json::write(value) == bytes)
            return value;
    } catch (const DecodingError&) {
        // Not JSON: one of the other forms below.
    }
    const auto text = json::parse(json::write(PropertyValue(bytes)));
    if (*text.string() == bytes)
        return marked(textMark, bytes);
    return marked(bytesMark, hexadecimal(bytes));
}

PropertyValue encodeValue(const PropertyValue& value) {
    if (const auto* data = value.data())
        return encodeData(data->bytes);
    return value.array() || value.dictionary() ? marked(valueMark, value) : value;
}

PropertyValue decodeValue(const PropertyValue& value) {
    if (isMarked(value)) {
        const auto& [mark, content] = *value.dictionary()->begin();
        if (mark == valueMark)
            return content;
        if (!content.string())
            throw DecodingError("\"" + mark + "\" must be a string");
        return PropertyValue::Data{mark == textMark ? *content.string() : fromHexadecimal(*content.string())};
    }
    if (value.array() || value.dictionary())
        return PropertyValue::Data{json::write(value)};
    return value;
}

} // namespace

std::string defaults::encode(const Dictionary& values) {
    std::string text = "{";
    for (const auto& [key, value] : values) {
        text += text.size() == 1 ? "\n  " : ",\n  ";
        text += json::write(PropertyValue(key)) + ": " + json::write(encodeValue(value));
    }
    return text + "\n}\n";
}

Dictionary defaults::decode(std::string_view text) {
    const auto parsed = json::parse(text);
    Dictionary values;
    for (const auto& [key, value] : decoding::object(parsed, "settings"))
        if (!value.isNull())
            values.emplace(key, decodeValue(value));
    return values;
}

// What became of the last save; only the writer's thread touches it while there is something to write.
struct FileUserDefaults::Outcome {
    std::string lastError;
};

FileUserDefaults::FileUserDefaults(std::string path, DiskWriter& writer, LogSink& log)
    : path_(std::move(path)), writer_(writer), logger_(log, "defaults"), outcome_(std::make_shared<Outcome>()) {
    load();
}

FileUserDefaults::~FileUserDefaults() {
    writer_.flush();
    if (outcome_->lastError.empty())
        return;
    save();
    writer_.flush();
}

void FileUserDefaults::load() {
    auto file = readWholeFile(path_);
    if (file.state == FileText::State::missing)
        return;
    if (file.state == FileText::State::read) {
        try {
            values_ = defaults::decode(file.text);
            return;
        } catch (const DecodingError& error) {
            file.error = path_ + ": " + error.what();
        }
    }
    keepsOld_ = std::make_shared<std::atomic<bool>>(true);
    logger_.error("Reading settings failed, starting without them: " + file.error);
}

std::optional<PropertyValue> FileUserDefaults::value(std::string_view key) {
    const auto* value = find(values_, key);
    return value ? std::optional(*value) : std::nullopt;
}

void FileUserDefaults::set(std::string_view key, PropertyValue value) {
    if (value.isNull())
        return remove(key);
    values_.insert_or_assign(std::string(key), std::move(value));
    save();
}

void FileUserDefaults::remove(std::string_view key) {
    const auto it = values_.find(key);
    if (it == values_.end())
        return;
    values_.erase(it);
    save();
}

void FileUserDefaults::save() {
    auto report = [logger = logger_, outcome = outcome_](const std::optional<std::string>& error) {
        // A full disk fails each step of a slider: one line says it.
        if (error && *error != outcome->lastError)
            logger.error("Saving settings to disk failed: " + *error);
        outcome->lastError = error.value_or("");
    };
    writer_.write(path_, defaults::encode(values_), std::move(report), keepsOld_);
}

} // namespace kivo
