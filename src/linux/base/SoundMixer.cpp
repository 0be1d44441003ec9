// SPDX-License-Identifier: MIT
#include "linux/base/SoundMixer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kivo {
namespace {

// A sound that is stopped is gone after 5 ms.
constexpr float fadeStep = 1.0F / 240;

// Several loud sounds at once bend towards the limit instead of being cut.
float limited(float sample) {
    constexpr float knee = 0.85F;
    const float size = std::abs(sample);
    if (size <= knee)
        return sample;
    return std::copysign(knee + (1 - knee) * std::tanh((size - knee) / (1 - knee)), sample);
}

} // namespace

void SoundMixer::start(std::string_view name, std::vector<float> samples) {
    stop(name);
    voices_.push_back({.name = std::string(name), .samples = std::move(samples)});
}

void SoundMixer::stop(std::string_view name) {
    for (auto& voice : voices_)
        voice.isEnding = voice.isEnding || voice.name == name;
}

void SoundMixer::render(float* output, std::size_t count) {
    std::fill(output, output + count, 0.0F);
    for (auto& voice : voices_) {
        for (std::size_t i = 0; i < count && voice.position < voice.samples.size(); ++i) {
            output[i] += voice.gain * voice.samples[voice.position++];
            if (!voice.isEnding)
                continue;
            voice.gain -= fadeStep;
            if (voice.gain <= 0)
                voice.position = voice.samples.size();
        }
    }
    std::erase_if(voices_, [](const Voice& voice) { return voice.position >= voice.samples.size(); });
    std::transform(output, output + count, output, limited);
}

} // namespace kivo
