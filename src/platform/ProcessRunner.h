// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// The program that reports on the computer's parts, and the argument for the battery's.
inline constexpr const char* systemProfiler = "/usr/sbin/system_profiler";
inline constexpr const char* powerReportArgument = "SPPowerDataType";

// Runs helper programs off the main thread.
class ProcessRunner {
public:
    virtual ~ProcessRunner() = default;

    // Runs the program at `path`; `done` gets all it wrote to standard output (any bytes) on the main thread
    // once it has ended, or nothing when it could not be launched. Its exit status does not matter. `done` is
    // never called within this call.
    virtual void run(std::string path, std::vector<std::string> arguments,
                     std::function<void(std::optional<std::string>)> done) = 0;
};

} // namespace kivo
