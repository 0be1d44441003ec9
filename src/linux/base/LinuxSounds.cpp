// SPDX-License-Identifier: MIT
#include "linux/base/LinuxSounds.h"

#include "linux/base/PulsePlayback.h"
#include "linux/base/SoundMixer.h"
#include "linux/base/SoundSketch.h"
#include "linux/base/SoundSynth.h"

#include <stdexcept>
#include <utility>

namespace kivo {
namespace {

// How much silence ends the connection. It covers what the server still holds of the last sound.
constexpr std::size_t longestSilence = 3 * SoundSketch::rate;

} // namespace

class LinuxSounds::Sound final : public NamedSound {
public:
    Sound(LinuxSounds& owner, std::string_view name) : owner_(owner), name_(name) {}
    std::string_view name() const { return name_; }
    void stop() override { owner_.give({name_, false}); }
    void play() override { owner_.give({name_, true}); }

private:
    LinuxSounds& owner_;
    std::string_view name_;
};

LinuxSounds::LinuxSounds(LogSink& log) : logger_(log, "sounds") {
    for (const auto name : soundNames())
        sounds_.push_back(std::make_unique<Sound>(*this, name));
}

LinuxSounds::~LinuxSounds() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    if (thread_.joinable())
        thread_.join();
}

NamedSound* LinuxSounds::named(std::string_view name) {
    for (const auto& sound : sounds_)
        if (sound->name() == name)
            return sound.get();
    return nullptr;
}

void LinuxSounds::give(Order order) {
    const std::lock_guard lock(mutex_);
    if (!isRunning_ && !order.plays)
        return;
    orders_.push_back(order);
    if (isRunning_)
        return;
    // The thread before this one has left its loop.
    if (thread_.joinable())
        thread_.join();
    thread_ = std::thread([this] { run(); });
    isRunning_ = true;
}

std::optional<LinuxSounds::Order> LinuxSounds::takeOrder() {
    const std::lock_guard lock(mutex_);
    if (orders_.empty())
        return std::nullopt;
    const Order order = orders_.front();
    orders_.pop_front();
    return order;
}

bool LinuxSounds::isClosing() {
    const std::lock_guard lock(mutex_);
    return isClosing_;
}

void LinuxSounds::run() {
    while (true) {
        try {
            play();
        } catch (const std::runtime_error& error) {
            if (!std::exchange(hasFailed_, true) && !isClosing())
                logger_.error("Playing sounds failed: " + std::string(error.what()));
            // A sound that comes late is worse than none.
            const std::lock_guard lock(mutex_);
            orders_.clear();
        }
        const std::lock_guard lock(mutex_);
        if (orders_.empty() || isClosing_) {
            isRunning_ = false;
            return;
        }
    }
}

void LinuxSounds::play() {
    PulsePlayback playback(SoundSketch::rate, [this] { return isClosing(); });
    hasFailed_ = false;
    SoundMixer mixer;
    std::size_t silence = 0;
    while (silence < longestSilence && !isClosing()) {
        // One at a time: calculating several in a row would make those that play falter.
        if (const auto order = takeOrder()) {
            if (order->plays)
                mixer.start(order->name, *synthesizeSound(order->name));
            else
                mixer.stop(order->name);
        }
        playback.step([&](float* samples, std::size_t count) {
            silence = mixer.isSilent() ? silence + count : 0;
            mixer.render(samples, count);
        });
    }
}

} // namespace kivo
