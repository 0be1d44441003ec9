// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kivo {

enum class LogLevel { debug, info, default_, error };

// "debug", "info", "default", "error".
std::string_view name(LogLevel level);

// Where log lines go. Callable from any thread.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void log(LogLevel level, std::string_view category, std::string_view message) = 0;
};

// One component's voice in the log. Messages are English, whatever the user's language is.
class Logger {
public:
    Logger(LogSink& sink, std::string category) : sink_(&sink), category_(std::move(category)) {}

    void debug(std::string_view message) const { sink_->log(LogLevel::debug, category_, message); }
    void info(std::string_view message) const { sink_->log(LogLevel::info, category_, message); }
    void log(std::string_view message) const { sink_->log(LogLevel::default_, category_, message); }
    void error(std::string_view message) const { sink_->log(LogLevel::error, category_, message); }

private:
    LogSink* sink_;
    std::string category_;
};

} // namespace kivo
