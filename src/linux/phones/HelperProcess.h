// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kivo {

// A running kivo-ios whose standard input and output are one socket to us. It ends, killed if need be, and is
// buried with this object, which takes a moment: prefer a background job. Any thread.
class HelperProcess {
public:
    // A null pointer when it cannot be started. The child has no other descriptors, says nothing to standard
    // error, and none of its signals are blocked.
    static std::unique_ptr<HelperProcess> start(const std::string& program,
                                                const std::vector<std::string>& arguments);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    int descriptor() const { return descriptor_; }

    // Beside this program, or where packages put helpers; empty when it is in neither place.
    static std::string findProgram();

private:
    HelperProcess(int descriptor, pid_t process) : descriptor_(descriptor), process_(process) {}

    int descriptor_;
    pid_t process_;
};

} // namespace kivo
