// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <numbers>
#include <vector>

namespace kivo {

// A short sound being built: tones and noises are laid over each other, `finish` makes it fit to play. One
// channel, 48,000 samples a second. Times in seconds, frequencies in hertz. The same calls give the same
// samples.
class SoundSketch {
public:
    static constexpr int rate = 48'000;
    static constexpr double turn = 2 * std::numbers::pi;

    explicit SoundSketch(double length);

    struct Tone {
        double start = 0;
        double length = 0;
        double frequency = 440;
        double amplitude = 1;
        double attack = 0.002;               // time constant of the rise
        double decay = 1000;                 // time constant of the fall
        std::vector<double> harmonics = {1}; // of the first, second, … multiple of the frequency
        double dulling = 0;                  // how fast the higher ones fall on top of the decay, 1 / seconds
        double glideFrom = 0;                // the frequency at the start, when another one
        double glide = 0.05;                 // time constant of the way from there
        double vibrato = 0;                  // depth, as a part of the frequency
        double vibratoRate = 5.5;
        double swell = 0; // depth, as a part of the amplitude, at the vibrato's rate
    };
    void tone(const Tone& tone);

    // A band of noise around a frequency that moves in a straight line.
    struct Noise {
        double start = 0;
        double length = 0;
        double from = 1000;
        double to = 1000;
        double width = 0.5; // as a part of the frequency: small is nearly a tone
        double amplitude = 1;
        double attack = 0.002;
        double decay = 1000;
    };
    void noise(const Noise& noise);

    // Repeats what is there so far, quieter and duller, as a room does.
    void echo(double delay, double gain, int times);

    // Removes what cannot be heard or clicks, and brings every sound to the same loudness; nothing exceeds
    // 0.85.
    std::vector<float> finish();

private:
    void fadeEnds();

    std::vector<double> samples_;
    std::uint32_t seed_ = 0x2545f491;
};

} // namespace kivo
