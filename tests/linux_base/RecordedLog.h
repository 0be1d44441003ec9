// SPDX-License-Identifier: MIT
#pragma once

#include "support/Log.h"

#include <mutex>
#include <string>
#include <vector>

namespace kivo {

// Keeps the lines as "level category: message".
class RecordedLog final : public LogSink {
public:
    void log(LogLevel level, std::string_view category, std::string_view message) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::string(name(level)) + " " + std::string(category) + ": " + std::string(message));
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

} // namespace kivo
