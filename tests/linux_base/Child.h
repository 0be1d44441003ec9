// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace kivo {

// A program that runs beside the test and ends with it. Its standard output goes to a file; both streams are
// dropped without one.
class Child {
public:
    Child(std::vector<std::string> command, const std::string& output = "/dev/null") {
        std::vector<char*> arguments;
        for (auto& part : command)
            arguments.push_back(part.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        const int error = posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0)
            throw std::runtime_error(command[0] + " does not start");
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void end() {
        if (pid_ <= 0)
            return;
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }

private:
    pid_t pid_ = 0;
};

} // namespace kivo
