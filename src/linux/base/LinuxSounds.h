// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Sounds.h"
#include "support/Log.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kivo {

// The named sounds, played through the user's sound server. Nothing of it exists while nothing sounds: the
// first sound starts a thread that connects and calculates the samples, and a few silent seconds end it.
// Without a server there is silence and one line in the log; every new sound tries again.
class LinuxSounds final : public Sounds {
public:
    explicit LinuxSounds(LogSink& log);
    // Cuts off what is playing.
    ~LinuxSounds() override;
    LinuxSounds(const LinuxSounds&) = delete;
    LinuxSounds& operator=(const LinuxSounds&) = delete;

    NamedSound* named(std::string_view name) override;

private:
    class Sound;
    struct Order {
        std::string_view name;
        bool plays = false; // else stops
    };
    void give(Order order);
    void run();
    void play();
    std::optional<Order> takeOrder();
    bool isClosing();

    std::vector<std::unique_ptr<Sound>> sounds_;
    Logger logger_;
    bool hasFailed_ = false; // the playing thread only

    std::mutex mutex_;
    std::deque<Order> orders_;
    bool isRunning_ = false;
    bool isClosing_ = false;
    std::thread thread_;
};

} // namespace kivo
