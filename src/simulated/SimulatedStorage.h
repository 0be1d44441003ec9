// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SupportFiles.h"
#include "platform/UserDefaults.h"
#include "simulated/SimulatedCore.h"

namespace kivo {

// Data as scenarios write it: {"json": …} when the bytes are JSON, else {"text": …}.
PropertyValue describeContents(const std::string& bytes);

class SimulatedDefaults final : public UserDefaults {
public:
    enum class Suite { standard, group };
    SimulatedDefaults(SimulatedCore& core, Suite suite) : core_(core), suite_(suite) {}

    // Whether the suite can be opened.
    bool isThere() const { return values() != nullptr; }
    std::optional<PropertyValue> value(std::string_view key) override;
    void set(std::string_view key, PropertyValue value) override;
    void remove(std::string_view key) override;

private:
    Dictionary* values() const;
    void record(std::string_view key, const PropertyValue& value);

    SimulatedCore& core_;
    Suite suite_;
};

class SimulatedFiles final : public SupportFiles {
public:
    explicit SimulatedFiles(SimulatedCore& core) : core_(core) {}
    std::optional<std::string> read(std::string_view path) override;
    bool keepAside(std::string_view path) override;
    std::optional<std::string> write(std::string_view path, const std::string& text) override;
    void writeInBackground(std::string_view path, std::string text,
                           std::function<void(std::optional<std::string> error)> done) override;

private:
    SimulatedCore& core_;
};

} // namespace kivo
