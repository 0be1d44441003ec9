// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/ProcessRunner.h"
#include "support/MainLoop.h"

#include <QObject>

namespace kivo {

// Runs programs, and answers for the system profiler, which this system has not got: the battery's condition
// follows from how much of its design capacity it still holds. Without that figure the profiler is a program
// that cannot be launched.
class LinuxProcessRunner final : public ProcessRunner {
public:
    LinuxProcessRunner(MainLoop& loop, DeviceRegistry& registry) : loop_(loop), registry_(registry) {}

    void run(std::string path, std::vector<std::string> arguments,
             std::function<void(std::optional<std::string>)> done) override;

private:
    MainLoop& loop_;
    DeviceRegistry& registry_;
    QObject context_; // the programs that run end with it
};

} // namespace kivo
