// SPDX-License-Identifier: MIT
#include "linux/phones/HelperProcess.h"

#include "linux/base/HelperProgram.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

constexpr const char* name = "kivo-ios";

// The attributes and file actions of a spawn, freed at the end.
struct Spawning {
    Spawning() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~Spawning() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;

    // Threads for background work block every signal, and children inherit that.
    void useOrdinarySignals() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    void useDescriptors(int socket) {
        posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, socket, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

} // namespace

std::unique_ptr<HelperProcess> HelperProcess::start(const std::string& program,
                                                    const std::vector<std::string>& arguments) {
    int ends[2];
    if (program.empty() || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return nullptr;
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const auto& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);

    Spawning spawning;
    spawning.useOrdinarySignals();
    spawning.useDescriptors(ends[1]);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, program.c_str(), &spawning.actions, &spawning.attributes, words.data(), environ);
    close(ends[1]);
    if (error != 0) {
        close(ends[0]);
        return nullptr;
    }
    return std::unique_ptr<HelperProcess>(new HelperProcess(ends[0], process));
}

HelperProcess::~HelperProcess() {
    close(descriptor_);
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::string HelperProcess::findProgram() {
    return helperProgram(name);
}

} // namespace kivo
